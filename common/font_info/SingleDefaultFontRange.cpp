#include "common/font_info/SingleDefaultFontRange.h"

#include <string>

#include "base/ByteOrder.h"
#include "common/font_info/CodeRange.h"

namespace qro_common {

SingleDefaultFontRange::SingleDefaultFontRange(int first, int last) { Reset(first, last); }

void SingleDefaultFontRange::Reset(int first, int last) {
  first_ = first;
  last_ = last;
  entries_.clear();
  if (isValidCodeRange(first, last)) entries_.assign(static_cast<size_t>(last - first + 1), -1);
}

short SingleDefaultFontRange::Get(unsigned int code) const {
  unsigned offset = code - static_cast<unsigned>(first_);
  return offset < entries_.size() ? entries_[offset] : static_cast<short>(-1);
}

void SingleDefaultFontRange::Set(unsigned int code, short fontIndex) {
  unsigned offset = code - static_cast<unsigned>(first_);
  if (offset < entries_.size()) entries_[offset] = fontIndex;
}

bool SingleDefaultFontRange::Read(qro_base::InputStream& in) {
  int first = 0;
  int last = 0;
  unsigned short count = 0;
  if (!qro_base::readInt32(in, first) || !qro_base::readInt32(in, last) ||
      !isValidCodeRange(first, last)) {
    Reset(-1, -1);
    return false;
  }
  Reset(first, last);
  if (!qro_base::readUInt16(in, count) || count > entries_.size()) {
    Reset(-1, -1);
    return false;
  }
  int previous = -1;
  for (unsigned i = 0; i < count; ++i) {
    unsigned short offset = 0;
    short fontIndex = 0;
    if (!qro_base::readUInt16(in, offset) || !qro_base::readInt16(in, fontIndex) ||
        offset >= entries_.size() || offset <= previous) {
      Reset(-1, -1);
      return false;
    }
    previous = offset;
    entries_[offset] = fontIndex;
  }
  return true;
}

bool SingleDefaultFontRange::Write(qro_base::OutputStream& out) const {
  if (!isValidCodeRange(first_, last_)) return false;
  int count = 0;
  for (short entry : entries_) count += entry >= 0;
  std::string bytes;
  bytes.reserve(11 + 4 * static_cast<size_t>(count));
  qro_base::appendUInt8(bytes, kSingle);
  qro_base::appendInt32(bytes, first_);
  qro_base::appendInt32(bytes, last_);
  qro_base::appendUInt16(bytes, static_cast<unsigned short>(count));
  for (size_t offset = 0; offset < entries_.size(); ++offset) {
    if (entries_[offset] < 0) continue;
    qro_base::appendUInt16(bytes, static_cast<unsigned short>(offset));
    qro_base::appendUInt16(bytes, static_cast<unsigned short>(entries_[offset]));
  }
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
