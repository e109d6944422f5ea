#include "common/font_info/MultiCharMetricsRange.h"

#include <memory>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
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
  if (block < 0 || block >= static_cast<int>(ranges_.size())) return nullptr;
  return ranges_[static_cast<size_t>(block)];
}

void MultiCharMetricsRange::SetCharMetricsRange(int block, CharMetricsRange* range) {
  if (block < 0 || block >= static_cast<int>(ranges_.size())) {
    delete range;
    return;
  }
  CharMetricsRange*& slot = ranges_[static_cast<size_t>(block)];
  if (slot != range) delete slot;
  slot = range;
}

void MultiCharMetricsRange::RemoveAll() {
  for (CharMetricsRange*& range : ranges_) {
    delete range;
    range = nullptr;
  }
}

bool MultiCharMetricsRange::Read(qro_base::InputStream& in) {
  RemoveAll();
  unsigned char slotCount = 0;
  unsigned char occupied = 0;
  bool ok = qro_base::readUInt8(in, slotCount) && qro_base::readUInt8(in, occupied) &&
            occupied <= slotCount;
  if (ok && ranges_.size() != slotCount) ranges_.assign(slotCount, nullptr);
  int previous = -1;
  for (unsigned i = 0; ok && i < occupied; ++i) {
    unsigned char slot = 0;
    unsigned char type = 0;
    ok = qro_base::readUInt8(in, slot) && slot < slotCount && slot > previous &&
         qro_base::readUInt8(in, type);
    if (!ok) break;
    previous = slot;
    std::unique_ptr<CharMetricsRange> range;
    if (type == kSingle) {
      range.reset(new SingleCharMetricsRange(-1, -1));
    } else {
      range.reset(new ZippedCharMetricsRange());
    }
    ok = range->Read(in);
    if (ok) ranges_[slot] = range.release();
  }
  if (!ok) {
    RemoveAll();
    ranges_.clear();
  }
  return ok;
}

bool MultiCharMetricsRange::Write(qro_base::OutputStream& out) const {
  int occupied = 0;
  for (const CharMetricsRange* range : ranges_) occupied += range != nullptr;
  bool ok = qro_base::writeUInt8(out, kMulti) &&
            qro_base::writeUInt8(out, static_cast<unsigned char>(ranges_.size())) &&
            qro_base::writeUInt8(out, static_cast<unsigned char>(occupied));
  for (size_t slot = 0; ok && slot < ranges_.size(); ++slot) {
    if (ranges_[slot] == nullptr) continue;
    ok = qro_base::writeUInt8(out, static_cast<unsigned char>(slot)) && ranges_[slot]->Write(out);
  }
  return ok;
}

}  // namespace qro_common
