#pragma once

#include <string>
#include <vector>

namespace qro_common {
class FontManager;
}

namespace kelfont_tool {

// One character of a measured text, as the font manager answers for it.
struct MeasuredChar {
  char32_t code = 0;
  int shownFont = -1;        // ConfirmVisibleChar: the font that shows it
  unsigned shownCode = 0;    // ... and the character drawn there
  bool substituted = false;  // not the requested font
  float ratio = 0;           // GetCharAdvanceRatio: advance / em
  int units = -1;            // advance of shownCode in shownFont, design units; -1 unknown
  int unitsPerEm = 0;        // of shownFont
  int kerning = 0;           // GetKerningWidth(previous, this) in the requested font
  float kerningRatio = 0;    // kerning / em of the requested font
  bool clusterStart = true;  // shaped: a cluster begins here (ratio is the cluster's)
};

// A text measured in one font and style: per character the font that
// shows it, the advance ratio, design units and kerning with the previous
// character; the total width in em (advance ratios plus kerning).
struct TextMeasure {
  int font = -1;
  bool bold = false;
  bool italic = false;
  std::vector<MeasuredChar> chars;
  double totalEm = 0;
  bool shaped = false;

  static TextMeasure Measure(qro_common::FontManager& manager, int font,
                             const std::u32string& text, bool bold, bool italic);
  // The text measured as shaped (FontManager::MeasureRun): per character
  // the font of its cluster, the cluster's advance on its first character
  // (0 on the others), no kerning of its own (shaping includes it).
  static TextMeasure MeasureShaped(qro_common::FontManager& manager, int font,
                                   const std::u32string& text, bool bold, bool italic);
};

}  // namespace kelfont_tool
