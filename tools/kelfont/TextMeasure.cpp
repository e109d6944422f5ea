#include "tools/kelfont/TextMeasure.h"

#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontMetrics.h"
#include "common/manager/FontManager.h"
#include "common/registry/FontTable.h"

namespace kelfont_tool {

namespace {

int unitsPerEm(qro_common::FontManager& manager, int font, bool bold, bool italic) {
  const qro_common::FontMetrics* metrics =
      manager.GetFontTable() == nullptr ? nullptr
                                        : manager.GetFontTable()->GetFontMetrics(font, bold, italic);
  if (metrics == nullptr) metrics = manager.ResolveFontMetrics(font);
  return metrics == nullptr ? 0 : metrics->GetUnitsPerEm();
}

}  // namespace

TextMeasure TextMeasure::Measure(qro_common::FontManager& manager, int font,
                                 const std::u32string& text, bool bold, bool italic) {
  TextMeasure result;
  result.font = font;
  result.bold = bold;
  result.italic = italic;
  const int em = unitsPerEm(manager, font, bold, italic);
  for (std::size_t i = 0; i < text.size(); ++i) {
    MeasuredChar c;
    c.code = text[i];
    c.shownFont = font;
    c.shownCode = static_cast<unsigned>(text[i]);
    c.substituted = manager.ConfirmVisibleChar(c.shownFont, c.shownCode, bold, italic);
    c.ratio = manager.GetCharAdvanceRatio(font, static_cast<unsigned>(text[i]), bold, italic);
    if (const qro_common::CharMetrics* metrics =
            manager.GetCharMetrics(c.shownFont, c.shownCode, bold, italic)) {
      c.units = metrics->GetAdvance();
    }
    c.unitsPerEm = unitsPerEm(manager, c.shownFont, bold, italic);
    if (i > 0) {
      c.kerning = manager.GetKerningWidth(font, bold, italic, static_cast<unsigned>(text[i - 1]),
                                          static_cast<unsigned>(text[i]));
      c.kerningRatio = em > 0 ? static_cast<float>(c.kerning) / static_cast<float>(em) : 0.0f;
    }
    result.totalEm += static_cast<double>(c.ratio) + static_cast<double>(c.kerningRatio);
    result.chars.push_back(c);
  }
  return result;
}

}  // namespace kelfont_tool
