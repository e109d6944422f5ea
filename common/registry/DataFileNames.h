#pragma once
// The names of every data file and folder of the font data, the version
// text of the cache, and two small helpers, kept in one place so that the
// package extracter, the cache and the font manager agree on them.

#include <string>

namespace qro_common {

// Version text at the head of the font information cache table.
const char* getFontInfoVersion();
// The font information table file, also its entry in the package.
const char* getFontInfoTableName();
// The named instances of the table's records, beside the table; also its
// entry in the package.
const char* getFontInstanceTableName();
// Folder of the per-face data files (followed by the info index).
const char* getFontInfoDataDirectoryName();
// Folder under the data directory holding all extracted and cache files.
const char* getFontInfoStorageName();
// Folder name of fonts delivered with the application.
const char* getAssetFontStorageName();
// Font chain list.
const char* getFontChainName();
// Default fonts list.
const char* getDefaultFontsName();
// Script default fonts list; language variants append "_" + language.
const char* getScriptDefaultFontsName();
// The default font-data package.
const char* getCompressedFontInfoFileName();
// Default font information file.
const char* getDefaultFontInfoFileName();
// Fonts of the code points the default font information has no slot for.
const char* getExtraDefaultFontsFileName();

// Bytes of a bit set covering the values first..last: ceil(n / 8) with
// n = last - first + 1; 0 when last < first.
int getByteSize(int first, int last);

// True when the path contains ".ttf", ".otf", ".ttc", ".TTF", ".OTF" or
// ".TTC" anywhere (a substring test: "a.ttf.bak" counts, "a.Ttf" does not).
bool isFontFile(const std::string& path);

}  // namespace qro_common
