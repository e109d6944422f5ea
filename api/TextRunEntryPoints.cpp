// Runs of text measured as they are shaped.

#include "api/kelfont.h"
#include "common/registry/FontTable.h"

int MeasureTextRun(int fontIndex, bool bold, bool italic, const unsigned short* text, int length,
                   float& totalEm, float* unitAdvances, int* unitFonts,
                   unsigned char* clusterStarts) {
  qro_common::FontManager* manager = qro_common::FontManager::instance;
  if (manager == nullptr || manager->GetFontTable() == nullptr || length < 0 ||
      (text == nullptr && length > 0) || manager->GetFontTable()->GetFont(fontIndex) == nullptr) {
    return -1;
  }
  static_assert(sizeof(unsigned short) == sizeof(char16_t), "UTF-16 units");
  return manager->MeasureRun(fontIndex, bold, italic, reinterpret_cast<const char16_t*>(text),
                             static_cast<std::size_t>(length), totalEm, unitAdvances, unitFonts,
                             clusterStarts)
             ? 0
             : -1;
}
