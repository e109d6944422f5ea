#include "common/registry/DataFileNames.h"

#include <cstdint>

namespace qro_common {

const char* getFontInfoVersion() { return "Table Version 2.054"; }
const char* getFontInfoTableName() { return "Ftable"; }
const char* getFontInstanceTableName() { return "vi"; }
const char* getFontInfoDataDirectoryName() { return "Fdata/"; }
const char* getFontInfoStorageName() { return "FInfo/"; }
const char* getAssetFontStorageName() { return "AFonts/"; }
const char* getFontChainName() { return "fc"; }
const char* getDefaultFontsName() { return "df"; }
const char* getScriptDefaultFontsName() { return "sf"; }
const char* getCompressedFontInfoFileName() { return "qrfont.zip"; }
const char* getDefaultFontInfoFileName() { return "fi"; }
const char* getExtraDefaultFontsFileName() { return "fx"; }

int getByteSize(int first, int last) {
  std::int64_t n = static_cast<std::int64_t>(last) - first + 1;
  if (n <= 0) return 0;
  return static_cast<int>(n / 8 + (n % 8 != 0 ? 1 : 0));
}

bool isFontFile(const std::string& path) {
  static const char* const kExtensions[] = {".ttf", ".otf", ".ttc", ".TTF", ".OTF", ".TTC"};
  for (const char* extension : kExtensions) {
    if (path.find(extension) != std::string::npos) return true;
  }
  return false;
}

}  // namespace qro_common
