#include "common/font_info/SingleCharMetricsRange.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

#include "base/ByteOrder.h"
#include "common/font_info/CodeRange.h"
#include "common/registry/DataFileNames.h"

namespace qro_common {

SingleCharMetricsRange::SingleCharMetricsRange(int first, int last) { Reset(first, last); }

void SingleCharMetricsRange::Reset(int first, int last) {
  first_ = first;
  last_ = last;
  advances_.clear();
  present_.clear();
  if (!isValidCodeRange(first, last)) return;
  advances_.assign(static_cast<size_t>(last - first + 1), CharMetrics());
  present_.assign(static_cast<size_t>(getByteSize(first, last)), 0);
}

CharMetrics* SingleCharMetricsRange::Get(unsigned int code) {
  unsigned offset = code - static_cast<unsigned>(first_);
  if (offset >= advances_.size() || !IsPresent(offset)) return nullptr;
  return &advances_[offset];
}

bool SingleCharMetricsRange::IsVisibleChar(unsigned int code) const {
  unsigned offset = code - static_cast<unsigned>(first_);
  return offset < advances_.size() && IsPresent(offset);
}

void SingleCharMetricsRange::Set(unsigned int code, CharMetrics* metrics) {
  std::less<const CharMetrics*> before;
  bool own = metrics != nullptr && !advances_.empty() && !before(metrics, advances_.data()) &&
             before(metrics, advances_.data() + advances_.size());
  unsigned offset = code - static_cast<unsigned>(first_);
  if (offset < advances_.size()) {
    if (metrics == nullptr) {
      advances_[offset] = CharMetrics();
      present_[offset >> 3] &= static_cast<unsigned char>(~(1u << (offset & 7)));
    } else {
      SetAdvance(code, metrics->GetAdvance());
    }
  }
  if (!own) delete metrics;
}

void SingleCharMetricsRange::SetAdvance(unsigned int code, unsigned short advance) {
  unsigned offset = code - static_cast<unsigned>(first_);
  if (offset >= advances_.size()) return;
  advances_[offset].SetAdvance(advance);
  present_[offset >> 3] |= static_cast<unsigned char>(1u << (offset & 7));
}

void SingleCharMetricsRange::RemoveAll() {
  std::fill(advances_.begin(), advances_.end(), CharMetrics());
  std::fill(present_.begin(), present_.end(), 0);
}

char* SingleCharMetricsRange::MakeVisibleCharInfo() const {
  // The presence bits are kept in exactly this layout.
  size_t size = present_.empty() ? 1 : present_.size();
  char* bits = new char[size]();
  if (!present_.empty()) std::memcpy(bits, present_.data(), present_.size());
  return bits;
}

CharMetrics* SingleCharMetricsRange::CheckZipCharMetrics() const {
  int count = 0;
  unsigned short common = 0;
  for (unsigned offset = 0; offset < advances_.size(); ++offset) {
    if (!IsPresent(offset)) continue;
    unsigned short advance = advances_[offset].GetAdvance();
    if (count == 0) {
      common = advance;
    } else if (advance != common) {
      return nullptr;
    }
    ++count;
  }
  return count >= 2 ? new CharMetrics(common) : nullptr;
}

int SingleCharMetricsRange::GetPresentCount() const {
  int count = 0;
  for (unsigned char byte : present_) count += __builtin_popcount(byte);
  return count;
}

bool SingleCharMetricsRange::Read(qro_base::InputStream& in) {
  int first = 0;
  int last = 0;
  unsigned short count = 0;
  if (!qro_base::readInt32(in, first) || !qro_base::readInt32(in, last) ||
      !isValidCodeRange(first, last)) {
    Reset(-1, -1);
    return false;
  }
  Reset(first, last);
  if (!qro_base::readUInt16(in, count) || count > advances_.size()) {
    Reset(-1, -1);
    return false;
  }
  int previous = -1;
  for (unsigned i = 0; i < count; ++i) {
    unsigned short offset = 0;
    unsigned short advance = 0;
    if (!qro_base::readUInt16(in, offset) || !qro_base::readUInt16(in, advance) ||
        offset >= advances_.size() || offset <= previous) {
      Reset(-1, -1);
      return false;
    }
    previous = offset;
    SetAdvance(static_cast<unsigned>(first_) + offset, advance);
  }
  return true;
}

bool SingleCharMetricsRange::Write(qro_base::OutputStream& out) const {
  if (!isValidCodeRange(first_, last_)) return false;
  std::string bytes;
  bytes.reserve(11 + 4 * static_cast<size_t>(GetPresentCount()));
  qro_base::appendUInt8(bytes, kSingle);
  qro_base::appendInt32(bytes, first_);
  qro_base::appendInt32(bytes, last_);
  qro_base::appendUInt16(bytes, static_cast<unsigned short>(GetPresentCount()));
  for (unsigned offset = 0; offset < advances_.size(); ++offset) {
    if (!IsPresent(offset)) continue;
    qro_base::appendUInt16(bytes, static_cast<unsigned short>(offset));
    qro_base::appendUInt16(bytes, advances_[offset].GetAdvance());
  }
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
