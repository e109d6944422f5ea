#pragma once
// libkelfont: everything a host program calls. Include this header alone
// and link libkelfont.
//
// Every entry point is a free function in the global namespace (C++
// linkage). Status codes: 0 success; -1 not initialised or font index out
// of range; -2 cache serializer could not be created; -3 font table could
// not be created; -4 no face for the font index and style; -5 the face's
// cache data could not be read; -6 character not in the font; -7 no
// metrics. Results are delivered through the reference arguments.

#include <ctime>

// ---------------------------------------------------------------------------
// Font widths from an existing font information cache.
//
// InitKelFont reads the cache under `extractPath` ("FInfo/" there); it never
// scans fonts. A path that holds no cache (empty, missing, not writable)
// starts with an empty font table; a later InitKelFont on a good path reads
// its cache. A failed start-up (out of memory) is final for the process:
// later calls skip the start-up and report the same status. Start-up and
// UnInitKelFont run on one thread; the queries (GetFontIndex,
// GetFontCharInfo, GetKerningInfo, GetFontEmSquareFUnit,
// ClearKelFontCacheInfo) may then run on any number of threads at once.
// ---------------------------------------------------------------------------

class CKelFontWidth;

// The facade behind the functions below; null before InitKelFont, after
// UnInitKelFont and after a failed start-up.
extern CKelFontWidth* gKelFontWidth;
// 0 when initialised or not yet tried; otherwise the failed step's status.
extern int gKelFontInitStatus;
// clock() at the start of the last GetKerningInfo call, and once its facade
// check passed.
extern std::clock_t startTime;
extern std::clock_t endTime;

// Starts the facade (or reuses the existing one) on the cache under
// `extractPath` (a folder path ending in "/"). Prints "InitExtracter
// success" on standard output. Returns the resulting gKelFontInitStatus.
int InitKelFont(const char* qrfontZipPath, const char* extractPath, const char* fontPath);
// Destroys the facade; the status stays as it is.
void UnInitKelFont();
// gKelFontInitStatus: 0, or -2 / -3 after a failed start-up.
int IsKelFontInitialized();
// Font index of a font name or localized name (UTF-8); -1 when unknown or
// not initialised.
int GetFontIndex(const char* fontName);
// Advance of character `ch` in font design units, corrected for bold in a
// few Korean fonts.
int GetFontCharInfo(int fontIndex, int ch, const bool& bold, const bool& italic, int& advance);
// Units per em of the font.
int GetFontEmSquareFUnit(int fontIndex, const bool& bold, const bool& italic, int& emSquare);
// Kerning delta between `first` and `second` in font design units (0 for a
// pair without kerning).
int GetKerningInfo(int fontIndex, const bool& bold, const bool& italic, int first, int second,
                   int& delta);
// Drops the loaded per-character and kerning data; answers already given
// stay cached.
void ClearKelFontCacheInfo();

// ---------------------------------------------------------------------------
// The font manager: scans font folders, keeps the font information cache up
// to date and answers with fallback through FontManager::instance.
//
// Call SetSharedFontPath / SetUserFontPath first (later changes are not
// seen by an existing manager), then InitFontManager; UnInitFontManager at
// shut-down. The manager scans "/system/fonts/", then the shared folder,
// then the user folder. Start-up and shut-down run on one thread before
// and after any query. Lines go to the platform log (priority 6, tag
// "QRO-NATIVE-PROFILE").
// ---------------------------------------------------------------------------

#include "common/manager/FontManager.h"
#include "common/manager/Path.h"

// Replace the shared / user font folder (a copy of `path`; null clears it).
void SetSharedFontPath(const char* path);
void SetUserFontPath(const char* path);
// Creates the package extracter on `extractPath` and a font manager whose
// cache lies under `qrfontZipPath` (the folder that holds "qrfont.zip"),
// initialises it and installs it as qro_common::FontManager::instance, even
// when initialisation fails. False, with nothing created, when either path
// is null. An earlier manager is replaced without being destroyed.
bool InitFontManager(const char* qrfontZipPath, const char* extractPath);
// Destroys qro_common::FontManager::instance, when there is one.
void UnInitFontManager();

// ---------------------------------------------------------------------------
// Runs of text measured as they are shaped, through FontManager::instance.
//
// MeasureTextRun splits `text` (`length` UTF-16 units) into grapheme
// clusters, shows each cluster in a font of the fallback road and shapes
// consecutive clusters of one font together (see
// qro_common::RunMeasurer). It sets `totalEm`, the run's advance as a ratio
// of the em square, and fills the outputs that are not null, each `length`
// entries: unitAdvances[i] the advance of the cluster that begins at unit i
// (0 on its other units), unitFonts[i] the font index that shows unit i,
// clusterStarts[i] 1 where a cluster begins, else 0. Unpaired surrogates
// count as U+FFFD. Built without HarfBuzz, clusters take per-character
// advances. Results of runs up to 256 units are cached. Any number of
// threads may call it once the manager is initialised.
// Returns 0, or -1 when there is no initialised manager, the font index is
// unknown, `length` is negative or `text` is null with a positive length.
int MeasureTextRun(int fontIndex, bool bold, bool italic, const unsigned short* text, int length,
                   float& totalEm, float* unitAdvances, int* unitFonts,
                   unsigned char* clusterStarts);
