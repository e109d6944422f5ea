#include "common/font_info/ZippedCharMetricsRange.h"

#include <string>

#include "base/ByteOrder.h"
#include "common/font_info/CodeRange.h"
#include "common/registry/DataFileNames.h"

namespace qro_common {

ZippedCharMetricsRange::ZippedCharMetricsRange() = default;

ZippedCharMetricsRange::ZippedCharMetricsRange(int first, int last, CharMetrics* shared, char* bits)
    : first_(first), last_(last), shared_(shared), bits_(bits) {
  if (isValidCodeRange(first, last) && bits_ != nullptr) {
    size_ = static_cast<unsigned>(last - first + 1);
  }
}

void ZippedCharMetricsRange::Clear() {
  first_ = -1;
  last_ = -1;
  size_ = 0;
  bits_.reset();
}

CharMetrics* ZippedCharMetricsRange::Get(unsigned int code) {
  unsigned offset = code - static_cast<unsigned>(first_);
  return offset < size_ ? shared_.get() : nullptr;
}

bool ZippedCharMetricsRange::IsVisibleChar(unsigned int code) const {
  unsigned offset = code - static_cast<unsigned>(first_);
  return offset < size_ && ((static_cast<unsigned char>(bits_[offset >> 3]) >> (offset & 7)) & 1);
}

bool ZippedCharMetricsRange::Read(qro_base::InputStream& in) {
  Clear();
  if (!shared_) shared_.reset(new CharMetrics());
  int first = 0;
  int last = 0;
  if (!qro_base::readInt32(in, first) || !qro_base::readInt32(in, last) ||
      !isValidCodeRange(first, last)) {
    return false;
  }
  unsigned byteCount = static_cast<unsigned>(getByteSize(first, last));
  std::unique_ptr<char[]> bits(new char[byteCount]);
  if (in.Read(bits.get(), byteCount) != static_cast<int>(byteCount) || !shared_->Read(in)) {
    return false;
  }
  first_ = first;
  last_ = last;
  size_ = static_cast<unsigned>(last - first + 1);
  bits_ = std::move(bits);
  return true;
}

bool ZippedCharMetricsRange::Write(qro_base::OutputStream& out) const {
  if (!isValidCodeRange(first_, last_)) return false;
  std::string bytes;
  qro_base::appendUInt8(bytes, kZipped);
  qro_base::appendInt32(bytes, first_);
  qro_base::appendInt32(bytes, last_);
  int byteCount = getByteSize(first_, last_);
  for (int i = 0; i < byteCount; ++i) {
    bytes.push_back(size_ > 0 ? bits_[i] : '\0');
  }
  qro_base::appendUInt16(bytes, shared_ ? shared_->GetAdvance() : 0);
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
