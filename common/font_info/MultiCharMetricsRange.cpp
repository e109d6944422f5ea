#include "common/font_info/MultiCharMetricsRange.h"

#include <memory>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
#include "common/font_info/RangeSlots.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"

namespace qro_common {

MultiCharMetricsRange::MultiCharMetricsRange(int count) {
  if (count >= 0 && count <= kMaxBlockCount) ranges_.assign(static_cast<size_t>(count), nullptr);
}

MultiCharMetricsRange::~MultiCharMetricsRange() { RemoveAll(); }

CharMetricsRange* MultiCharMetricsRange::RangeOf(unsigned int code) const {
  FontUSBType::CodePointUSBInfo info{};
  info.subRangeIndex = -1;
  FontUSBType::GetCodePointUSBInfo(code, info);
  int block = info.subRangeIndex;
  if (block < 0 || block >= static_cast<int>(ranges_.size())) return nullptr;
  return ranges_[static_cast<size_t>(block)];
}

CharMetrics* MultiCharMetricsRange::Get(unsigned int code) {
  CharMetricsRange* range = RangeOf(code);
  return range != nullptr ? range->Get(code) : nullptr;
}

bool MultiCharMetricsRange::IsVisibleChar(unsigned int code) const {
  const CharMetricsRange* range = RangeOf(code);
  return range != nullptr && range->IsVisibleChar(code);
}

CharMetricsRange* MultiCharMetricsRange::GetCharMetricsRange(int block) const {
  return rangeAt(ranges_, block);
}

void MultiCharMetricsRange::SetCharMetricsRange(int block, CharMetricsRange* range) {
  putRange(ranges_, block, range);
}

void MultiCharMetricsRange::RemoveAll() { deleteRanges(ranges_); }

bool MultiCharMetricsRange::Read(qro_base::InputStream& in) {
  // A block holds a single range, or a zipped one for any other type byte.
  return readRangeBlocks(in, ranges_, [](unsigned char type) -> CharMetricsRange* {
    if (type == kSingle) return new SingleCharMetricsRange(-1, -1);
    return new ZippedCharMetricsRange();
  });
}

bool MultiCharMetricsRange::Write(qro_base::OutputStream& out) const {
  return writeRangeBlocks(out, ranges_, kMulti);
}

}  // namespace qro_common
