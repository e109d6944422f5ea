#include "common/font_info/MultiDefaultFontRange.h"

#include <memory>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
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
  if (block < 0 || block >= static_cast<int>(ranges_.size())) return nullptr;
  return ranges_[static_cast<size_t>(block)];
}

void MultiDefaultFontRange::SetDefaultFontRange(int block, DefaultFontRange* range) {
  if (block < 0 || block >= static_cast<int>(ranges_.size())) {
    delete range;
    return;
  }
  DefaultFontRange*& slot = ranges_[static_cast<size_t>(block)];
  if (slot != range) delete slot;
  slot = range;
}

void MultiDefaultFontRange::RemoveAll() {
  for (DefaultFontRange*& range : ranges_) {
    delete range;
    range = nullptr;
  }
}

bool MultiDefaultFontRange::Read(qro_base::InputStream& in) {
  RemoveAll();
  unsigned char slotCount = 0;
  unsigned char occupied = 0;
  bool ok = qro_base::readUInt8(in, slotCount) && qro_base::readUInt8(in, occupied) &&
            occupied <= slotCount;
  if (ok && ranges_.size() != slotCount) ranges_.assign(slotCount, nullptr);
  int previous = -1;
  for (unsigned i = 0; ok && i < occupied; ++i) {
    unsigned char slot = 0;
    unsigned char ignoredType = 0;
    ok = qro_base::readUInt8(in, slot) && slot < slotCount && slot > previous &&
         qro_base::readUInt8(in, ignoredType);
    if (!ok) break;
    previous = slot;
    std::unique_ptr<DefaultFontRange> range(new SingleDefaultFontRange(-1, -1));
    ok = range->Read(in);
    if (ok) ranges_[slot] = range.release();
  }
  if (!ok) {
    RemoveAll();
    ranges_.clear();
  }
  return ok;
}

bool MultiDefaultFontRange::Write(qro_base::OutputStream& out) const {
  int occupied = 0;
  for (const DefaultFontRange* range : ranges_) occupied += range != nullptr;
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
