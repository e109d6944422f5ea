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
  unsigned char header[10];
  if (in.Read(reinterpret_cast<char*>(header), 10) != 10) {
    Reset(-1, -1);
    return false;
  }
  unsigned first = 0;
  unsigned last = 0;
  for (int i = 3; i >= 0; --i) {
    first = (first << 8) | header[i];
    last = (last << 8) | header[4 + i];
  }
  const unsigned count = header[8] | (static_cast<unsigned>(header[9]) << 8);
  if (!isValidCodeRange(static_cast<int>(first), static_cast<int>(last))) {
    Reset(-1, -1);
    return false;
  }
  Reset(static_cast<int>(first), static_cast<int>(last));
  if (count > entries_.size()) {
    Reset(-1, -1);
    return false;
  }
  // The entries come in blocks read at once, not byte by byte.
  constexpr unsigned kEntriesPerBlock = 512;
  unsigned char block[4 * kEntriesPerBlock];
  int previous = -1;
  for (unsigned done = 0; done < count;) {
    const unsigned n = count - done < kEntriesPerBlock ? count - done : kEntriesPerBlock;
    if (in.Read(reinterpret_cast<char*>(block), 4 * n) != static_cast<int>(4 * n)) {
      Reset(-1, -1);
      return false;
    }
    for (unsigned i = 0; i < n; ++i) {
      const unsigned char* entry = block + 4 * i;
      const int offset = entry[0] | (entry[1] << 8);
      if (offset >= static_cast<int>(entries_.size()) || offset <= previous) {
        Reset(-1, -1);
        return false;
      }
      previous = offset;
      entries_[static_cast<size_t>(offset)] =
          static_cast<short>(static_cast<unsigned short>(entry[2] | (entry[3] << 8)));
    }
    done += n;
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
