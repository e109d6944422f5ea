#include "common/font_info/MultiDefaultFontRange.h"

#include <memory>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
#include "common/font_info/RangeSlots.h"
#include "common/font_info/SingleDefaultFontRange.h"

namespace qro_common {

MultiDefaultFontRange::MultiDefaultFontRange(int count) {
  if (count >= 0 && count <= kMaxBlockCount) ranges_.assign(static_cast<size_t>(count), nullptr);
}

MultiDefaultFontRange::~MultiDefaultFontRange() { RemoveAll(); }

short MultiDefaultFontRange::Get(unsigned int code) const {
  FontUSBType::CodePointUSBInfo info{};
  info.subRangeIndex = -1;
  FontUSBType::GetCodePointUSBInfo(code, info);
  const DefaultFontRange* range = GetDefaultFontRange(info.subRangeIndex);
  return range != nullptr ? range->Get(code) : static_cast<short>(-1);
}

DefaultFontRange* MultiDefaultFontRange::GetDefaultFontRange(int block) const {
  return rangeAt(ranges_, block);
}

void MultiDefaultFontRange::SetDefaultFontRange(int block, DefaultFontRange* range) {
  putRange(ranges_, block, range);
}

void MultiDefaultFontRange::RemoveAll() { deleteRanges(ranges_); }

bool MultiDefaultFontRange::Read(qro_base::InputStream& in) {
  // Every block is a single range; its type byte is not looked at.
  return readRangeBlocks(in, ranges_, [](unsigned char) -> DefaultFontRange* {
    return new SingleDefaultFontRange(-1, -1);
  });
}

bool MultiDefaultFontRange::Write(qro_base::OutputStream& out) const {
  return writeRangeBlocks(out, ranges_, kMulti);
}

}  // namespace qro_common
