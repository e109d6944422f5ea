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

// False when the code's bit is not kept in the tables.
inline bool addAdvance(qro_common::CharMetricsInfo& info, unsigned code, unsigned short advance) {
  using namespace qro_common;
  FontUSBType::CodePointUSBInfo usb{};
  int bit = FontUSBType::GetCodePointUSBInfo(code, usb);
  if (bit == 57 || (bit > 122 && bit != 127)) return false;
  auto slot = static_cast<unsigned char>(bit);
  CharMetricsRange* range = info.GetCharMetricsRange(slot);
  if (range == nullptr) {
    range = usb.subRangeIndex >= 0
                ? static_cast<CharMetricsRange*>(new MultiCharMetricsRange(usb.subRangeCount))
                : new SingleCharMetricsRange(usb.rangeFirst, usb.rangeLast);
    info.SetCharMetricsRange(slot, range);
  }
  if (range->GetType() == CharMetricsRange::kMulti) {
    auto* multi = static_cast<MultiCharMetricsRange*>(range);
    range = multi->GetCharMetricsRange(usb.subRangeIndex);
    if (range == nullptr) {
      range = new SingleCharMetricsRange(usb.rangeFirst, usb.rangeLast);
      multi->SetCharMetricsRange(usb.subRangeIndex, range);
    }
  }
  static_cast<SingleCharMetricsRange*>(range)->Set(code, new CharMetrics(advance));
  return true;
}

inline bool addDefaultFont(qro_common::DefaultFontInfo& info, unsigned code, short fontIndex) {
  using namespace qro_common;
  FontUSBType::CodePointUSBInfo usb{};
  int bit = FontUSBType::GetCodePointUSBInfo(code, usb);
  if (bit == 57 || (bit > 122 && bit != 127)) return false;
  auto slot = static_cast<unsigned char>(bit);
  DefaultFontRange* range = info.GetDefaultFontRange(slot);
  if (range == nullptr) {
    range = usb.subRangeIndex >= 0
                ? static_cast<DefaultFontRange*>(new MultiDefaultFontRange(usb.subRangeCount))
                : new SingleDefaultFontRange(usb.rangeFirst, usb.rangeLast);
    info.SetDefaultFontRange(slot, range);
  }
  if (range->GetType() == DefaultFontRange::kMulti) {
    auto* multi = static_cast<MultiDefaultFontRange*>(range);
    range = multi->GetDefaultFontRange(usb.subRangeIndex);
    if (range == nullptr) {
      range = new SingleDefaultFontRange(usb.rangeFirst, usb.rangeLast);
      multi->SetDefaultFontRange(usb.subRangeIndex, range);
    }
  }
  static_cast<SingleDefaultFontRange*>(range)->Set(code, fontIndex);
  return true;
}

}  // namespace font_info_test
