#include "tools/kelfont/TextMeasure.h"

#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontMetrics.h"
#include "common/manager/FontManager.h"
#include "common/manager/WordCache.h"
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

TextMeasure TextMeasure::MeasureShaped(qro_common::FontManager& manager, int font,
                                       const std::u32string& text, bool bold, bool italic) {
  TextMeasure result;
  result.font = font;
  result.bold = bold;
  result.italic = italic;
  result.shaped = true;
  std::u16string units;
  for (char32_t c : text) {
    if (c >= 0x10000 && c < 0x110000) {
      units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      units += static_cast<char16_t>(c < 0x10000 ? c : 0xFFFD);
    }
  }
  qro_common::RunMeasure run;
  if (!manager.MeasureRun(font, bold, italic, units.data(), units.size(), run)) return result;
  std::size_t unit = 0;
  for (char32_t code : text) {
    MeasuredChar c;
    c.code = code;
    c.shownFont = run.fonts[unit];
    c.shownCode = static_cast<unsigned>(code);
    c.substituted = c.shownFont != font;
    c.ratio = run.advances[unit];
    c.clusterStart = run.clusterStarts[unit] != 0;
    c.unitsPerEm = unitsPerEm(manager, c.shownFont, bold, italic);
    c.units = static_cast<int>(c.ratio * static_cast<float>(c.unitsPerEm) + 0.5f);
    result.chars.push_back(c);
    unit += code >= 0x10000 && code < 0x110000 ? 2 : 1;
  }
  result.totalEm = run.totalEm;
  return result;
}

}  // namespace kelfont_tool
