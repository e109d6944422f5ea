// The facade's entry points and globals.

#include <cstdio>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"

CKelFontWidth* gKelFontWidth = nullptr;
int gKelFontInitStatus = 0;
std::clock_t startTime = 0;
std::clock_t endTime = 0;

int InitKelFont(const char* qrfontZipPath, const char* extractPath, const char* fontPath) {
  if (gKelFontWidth == nullptr) gKelFontWidth = new CKelFontWidth();
  gKelFontWidth->SetQrfontZipPath(qrfontZipPath);
  gKelFontWidth->SetExtractPath(extractPath);
  gKelFontWidth->SetFontPath(fontPath);
  // A failed status is never overwritten: one failure ends the facade for
  // the process.
  if (gKelFontInitStatus >= 0) {
    gKelFontInitStatus = gKelFontWidth->InitFontInfoSerializer();
    std::fputs("InitExtracter success\n", stdout);
  }
  if (gKelFontInitStatus >= 0) gKelFontInitStatus = gKelFontWidth->InitFontTable();
  gKelFontWidth->InitializeAdvanceRatioAdjustFontSet();
  if (gKelFontInitStatus < 0) {
    delete gKelFontWidth;
    gKelFontWidth = nullptr;
  }
  return gKelFontInitStatus;
}

void UnInitKelFont() {
  delete gKelFontWidth;
  gKelFontWidth = nullptr;
}

int IsKelFontInitialized() { return gKelFontInitStatus; }

int GetFontIndex(const char* fontName) {
  return gKelFontWidth == nullptr ? -1 : gKelFontWidth->GetFontIndex(fontName);
}

int GetFontCharInfo(int fontIndex, int ch, const bool& bold, const bool& italic, int& advance) {
  if (gKelFontWidth == nullptr) return -1;
  return gKelFontWidth->GetFontCharInfo(fontIndex, ch, bold, italic, advance);
}

int GetFontEmSquareFUnit(int fontIndex, const bool& bold, const bool& italic, int& emSquare) {
  if (gKelFontWidth == nullptr) return -1;
  return gKelFontWidth->GetFontEmSquareFUnit(fontIndex, bold, italic, emSquare);
}

int GetKerningInfo(int fontIndex, const bool& bold, const bool& italic, int first, int second,
                   int& delta) {
  // Stored atomically: callers on several threads write them at once.
  __atomic_store_n(&startTime, std::clock(), __ATOMIC_RELAXED);
  if (gKelFontWidth == nullptr) return -1;
  // Both time stamps are taken before the work is done.
  __atomic_store_n(&endTime, std::clock(), __ATOMIC_RELAXED);
  return gKelFontWidth->GetKerningInfo(fontIndex, bold, italic, first, second, delta);
}

void ClearKelFontCacheInfo() {
  if (gKelFontWidth != nullptr) gKelFontWidth->ClearKelFontCacheInfo();
}
