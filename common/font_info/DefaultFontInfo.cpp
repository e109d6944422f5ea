#include "common/font_info/DefaultFontInfo.h"

#include <memory>
#include <stdexcept>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleDefaultFontRange.h"

namespace qro_common {

DefaultFontInfo::DefaultFontInfo() : ranges_(kUnicodeRangeSlotCount, nullptr) {}

DefaultFontInfo::~DefaultFontInfo() { RemoveAll(); }

DefaultFontRange* DefaultFontInfo::GetDefaultFontRange(unsigned char usb) const {
  return ranges_.at(usb);
}

void DefaultFontInfo::SetDefaultFontRange(unsigned char usb, DefaultFontRange* range) {
  if (usb >= ranges_.size()) {
    delete range;
    throw std::out_of_range("DefaultFontInfo::SetDefaultFontRange");
  }
  DefaultFontRange*& slot = ranges_[usb];
  if (slot != range) delete slot;
  slot = range;
}

int DefaultFontInfo::GetFontIndex(unsigned int code) const {
  int usb = FontUSBType::GetUSBType(code);
  const DefaultFontRange* range = isTableUSBType(usb) ? ranges_[static_cast<size_t>(usb)] : nullptr;
  const int font = range != nullptr ? range->Get(code) : -1;
  return font >= 0 || extra_.IsEmpty() ? font : extra_.GetFontIndex(code);
}

void DefaultFontInfo::RemoveAll() { deleteRanges(ranges_); }

bool DefaultFontInfo::Read(qro_base::InputStream& in) {
  return ReadChecked(in) == ReadResult::kLoaded;
}

DefaultFontInfo::ReadResult DefaultFontInfo::ReadChecked(qro_base::InputStream& in) {
  // 0, or a kind this reader does not know, leaves the slot empty.
  return readRangeTable(in, ranges_, [](unsigned char type) -> DefaultFontRange* {
    if (type == DefaultFontRange::kSingle) return new SingleDefaultFontRange(-1, -1);
    if (type == DefaultFontRange::kMulti) return new MultiDefaultFontRange(-1);
    return nullptr;
  });
}

bool DefaultFontInfo::Write(qro_base::OutputStream& out) const {
  return writeRangeTable(out, ranges_);
}

}  // namespace qro_common
