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
  if (!isTableUSBType(usb)) return -1;
  const DefaultFontRange* range = ranges_[static_cast<size_t>(usb)];
  return range != nullptr ? range->Get(code) : -1;
}

void DefaultFontInfo::RemoveAll() {
  for (DefaultFontRange*& range : ranges_) {
    delete range;
    range = nullptr;
  }
}

bool DefaultFontInfo::Read(qro_base::InputStream& in) {
  return ReadChecked(in) == ReadResult::kLoaded;
}

DefaultFontInfo::ReadResult DefaultFontInfo::ReadChecked(qro_base::InputStream& in) {
  RemoveAll();
  bool any = false;
  for (size_t usb = 0; usb < ranges_.size(); ++usb) {
    unsigned char type = 0;
    if (!qro_base::readUInt8(in, type)) {
      RemoveAll();
      return ReadResult::kDamaged;
    }
    if (type != DefaultFontRange::kEmpty) any = true;
    std::unique_ptr<DefaultFontRange> range;
    if (type == DefaultFontRange::kSingle) {
      range.reset(new SingleDefaultFontRange(-1, -1));
    } else if (type == DefaultFontRange::kMulti) {
      range.reset(new MultiDefaultFontRange(-1));
    } else {
      continue;  // 0, or a kind this reader does not know: the slot stays empty
    }
    if (!range->Read(in)) {
      RemoveAll();
      return ReadResult::kDamaged;
    }
    ranges_[usb] = range.release();
  }
  return any ? ReadResult::kLoaded : ReadResult::kEmpty;
}

bool DefaultFontInfo::Write(qro_base::OutputStream& out) const {
  for (const DefaultFontRange* range : ranges_) {
    bool ok =
        range == nullptr ? qro_base::writeUInt8(out, DefaultFontRange::kEmpty) : range->Write(out);
    if (!ok) return false;
  }
  return true;
}

}  // namespace qro_common
