#pragma once
// Fill per-character tables the way the font analyzer does: the slot of a
// code's Unicode-range bit gets a single range of the code's block, or a
// multi range with one single range per block.

#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/SingleDefaultFontRange.h"

namespace font_info_test {

// Puts value() for `code` into the table of a face (advances or default
// fonts): the range of the code's block, made as the analyzer makes it.
template <typename Single, typename Multi, typename Range, typename Table, typename Value>
bool addToBlock(Table& table, unsigned code, Value value, Range* (Table::*get)(unsigned char) const,
                void (Table::*set)(unsigned char, Range*), Range* (Multi::*getBlock)(int) const,
                void (Multi::*setBlock)(int, Range*)) {
  qro_common::FontUSBType::CodePointUSBInfo usb{};
  const int bit = qro_common::FontUSBType::GetCodePointUSBInfo(code, usb);
  if (bit == 57 || (bit > 122 && bit != 127)) return false;
  const auto slot = static_cast<unsigned char>(bit);
  Range* range = (table.*get)(slot);
  if (range == nullptr) {
    range = usb.subRangeIndex >= 0 ? static_cast<Range*>(new Multi(usb.subRangeCount))
                                   : new Single(usb.rangeFirst, usb.rangeLast);
    (table.*set)(slot, range);
  }
  if (range->GetType() == Range::kMulti) {
    auto* multi = static_cast<Multi*>(range);
    range = (multi->*getBlock)(usb.subRangeIndex);
    if (range == nullptr) {
      range = new Single(usb.rangeFirst, usb.rangeLast);
      (multi->*setBlock)(usb.subRangeIndex, range);
    }
  }
  static_cast<Single*>(range)->Set(code, value());
  return true;
}

// False when the code's bit is not kept in the tables.
inline bool addAdvance(qro_common::CharMetricsInfo& info, unsigned code, unsigned short advance) {
  using namespace qro_common;
  return addToBlock<SingleCharMetricsRange, MultiCharMetricsRange>(
      info, code, [advance] { return new CharMetrics(advance); },
      &CharMetricsInfo::GetCharMetricsRange, &CharMetricsInfo::SetCharMetricsRange,
      &MultiCharMetricsRange::GetCharMetricsRange, &MultiCharMetricsRange::SetCharMetricsRange);
}

inline bool addDefaultFont(qro_common::DefaultFontInfo& info, unsigned code, short fontIndex) {
  using namespace qro_common;
  return addToBlock<SingleDefaultFontRange, MultiDefaultFontRange>(
      info, code, [fontIndex] { return fontIndex; }, &DefaultFontInfo::GetDefaultFontRange,
      &DefaultFontInfo::SetDefaultFontRange, &MultiDefaultFontRange::GetDefaultFontRange,
      &MultiDefaultFontRange::SetDefaultFontRange);
}

}  // namespace font_info_test
