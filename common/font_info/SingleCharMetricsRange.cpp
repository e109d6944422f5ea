#include "common/font_info/SingleCharMetricsRange.h"

#include <algorithm>
#include <functional>
#include <string>

#include "base/BitCount.h"
#include "base/ByteOrder.h"
#include "common/font_info/CodeRange.h"
#include "common/registry/DataFileNames.h"

namespace qro_common {

namespace {

// Entries read or written per block of the binary form.
constexpr unsigned kEntriesPerBlock = 512;

unsigned wordCount(unsigned size) { return (size + 63) / 64; }

void putUInt16(unsigned char* p, unsigned value) {
  p[0] = static_cast<unsigned char>(value & 0xFF);
  p[1] = static_cast<unsigned char>((value >> 8) & 0xFF);
}

unsigned getUInt16(const unsigned char* p) { return p[0] | (static_cast<unsigned>(p[1]) << 8); }

}  // namespace

SingleCharMetricsRange::SingleCharMetricsRange(int first, int last) { Reset(first, last); }

void SingleCharMetricsRange::Reset(int first, int last) {
  first_ = first;
  last_ = last;
  size_ = isValidCodeRange(first, last) ? static_cast<unsigned>(last - first + 1) : 0;
  bits_.assign(wordCount(size_), 0);
  RemoveAll();
}

void SingleCharMetricsRange::RemoveAll() {
  std::fill(bits_.begin(), bits_.end(), 0);
  std::vector<std::uint32_t>().swap(ranks_);
  std::vector<CharMetrics>().swap(advances_);
  count_ = 0;
  end_ = 0;
  shared_ = CharMetrics();
  uniform_ = true;
}

unsigned SingleCharMetricsRange::Rank(unsigned offset) const {
  const unsigned word = offset >> 6;
  const std::uint64_t below = (std::uint64_t{1} << (offset & 63)) - 1;
  return ranks_[word] + qro_base::popCount64(bits_[word] & below);
}

void SingleCharMetricsRange::Recount() {
  std::uint32_t count = 0;
  end_ = 0;
  for (std::size_t word = 0; word < bits_.size(); ++word) {
    if (!uniform_) ranks_[word] = count;
    count += qro_base::popCount64(bits_[word]);
    if (bits_[word] != 0) {
      end_ = static_cast<unsigned>(word * 64 + 64 - __builtin_clzll(bits_[word]));
    }
  }
  count_ = count;
}

void SingleCharMetricsRange::Spread(unsigned expected) {
  advances_.reserve(std::max(expected, count_ + 1));
  advances_.assign(count_, shared_);
  ranks_.assign(bits_.size(), 0);
  uniform_ = false;
  Recount();
}

CharMetrics* SingleCharMetricsRange::Get(unsigned int code) {
  const unsigned offset = code - static_cast<unsigned>(first_);
  if (offset >= size_ || !IsPresent(offset)) return nullptr;
  return uniform_ ? &shared_ : &advances_[Rank(offset)];
}

bool SingleCharMetricsRange::IsVisibleChar(unsigned int code) const {
  const unsigned offset = code - static_cast<unsigned>(first_);
  return offset < size_ && IsPresent(offset);
}

void SingleCharMetricsRange::Set(unsigned int code, CharMetrics* metrics) {
  std::less<const CharMetrics*> before;
  const bool own = metrics == &shared_ || (metrics != nullptr && !advances_.empty() &&
                                           !before(metrics, advances_.data()) &&
                                           before(metrics, advances_.data() + advances_.size()));
  const unsigned offset = code - static_cast<unsigned>(first_);
  if (offset < size_) {
    if (metrics != nullptr) {
      SetAdvance(code, metrics->GetAdvance());
    } else if (IsPresent(offset)) {
      if (!uniform_) advances_.erase(advances_.begin() + Rank(offset));
      bits_[offset >> 6] &= ~(std::uint64_t{1} << (offset & 63));
      Recount();
    }
  }
  if (!own) delete metrics;
}

void SingleCharMetricsRange::SetAdvance(unsigned int code, unsigned short advance) {
  const unsigned offset = code - static_cast<unsigned>(first_);
  if (offset >= size_) return;
  if (!IsPresent(offset)) {
    Add(offset, advance, 0);
    return;
  }
  if (uniform_) {
    if (advance == shared_.GetAdvance()) return;
    Spread(0);
  }
  advances_[Rank(offset)] = CharMetrics(advance);
}

void SingleCharMetricsRange::Add(unsigned offset, unsigned short advance, unsigned expected) {
  const unsigned word = offset >> 6;
  const std::uint64_t bit = std::uint64_t{1} << (offset & 63);
  if (uniform_ && (count_ == 0 || advance == shared_.GetAdvance())) {
    shared_ = CharMetrics(advance);
  } else {
    if (uniform_) Spread(expected);
    if (offset < end_) {
      // Before a present entry: the entries after it move.
      Recount();
      advances_.insert(advances_.begin() + Rank(offset), CharMetrics(advance));
      bits_[word] |= bit;
      Recount();
      return;
    }
    // After every present entry: appended. A word's count is set when it
    // gets its first entry; words without entries are never asked.
    if (bits_[word] == 0) ranks_[word] = count_;
    advances_.emplace_back(advance);
  }
  bits_[word] |= bit;
  ++count_;
  if (offset >= end_) end_ = offset + 1;
}

char* SingleCharMetricsRange::MakeVisibleCharInfo() const {
  const std::size_t size = size_ == 0 ? 1 : static_cast<std::size_t>(getByteSize(first_, last_));
  char* bits = new char[size]();
  for (std::size_t byte = 0; byte < size && size_ > 0; ++byte) {
    bits[byte] = static_cast<char>((bits_[byte >> 3] >> (8 * (byte & 7))) & 0xFF);
  }
  return bits;
}

CharMetrics* SingleCharMetricsRange::CheckZipCharMetrics() const {
  if (count_ < 2) return nullptr;
  const unsigned short common = uniform_ ? shared_.GetAdvance() : advances_.front().GetAdvance();
  for (const CharMetrics& entry : advances_) {
    if (entry.GetAdvance() != common) return nullptr;
  }
  return new CharMetrics(common);
}

bool SingleCharMetricsRange::Read(qro_base::InputStream& in) {
  unsigned char header[10];
  int first = 0;
  int last = 0;
  if (in.Read(reinterpret_cast<char*>(header), 10) != 10) {
    Reset(-1, -1);
    return false;
  }
  for (int i = 3; i >= 0; --i) {
    first = static_cast<int>((static_cast<unsigned>(first) << 8) | header[i]);
    last = static_cast<int>((static_cast<unsigned>(last) << 8) | header[4 + i]);
  }
  const unsigned count = getUInt16(header + 8);
  if (!isValidCodeRange(first, last)) {
    Reset(-1, -1);
    return false;
  }
  Reset(first, last);
  if (count > size_) {
    Reset(-1, -1);
    return false;
  }
  unsigned char block[4 * kEntriesPerBlock];
  for (unsigned done = 0; done < count;) {
    const unsigned n = std::min(count - done, kEntriesPerBlock);
    if (in.Read(reinterpret_cast<char*>(block), 4 * n) != static_cast<int>(4 * n)) {
      Reset(-1, -1);
      return false;
    }
    for (unsigned i = 0; i < n; ++i) {
      const unsigned offset = getUInt16(block + 4 * i);
      // Offsets ascend strictly inside the range: every entry is appended.
      if (offset >= size_ || (end_ > 0 && offset < end_)) {
        Reset(-1, -1);
        return false;
      }
      Add(offset, static_cast<unsigned short>(getUInt16(block + 4 * i + 2)), count);
    }
    done += n;
  }
  return true;
}

bool SingleCharMetricsRange::Write(qro_base::OutputStream& out) const {
  if (!isValidCodeRange(first_, last_)) return false;
  std::string bytes;
  bytes.reserve(11 + 4 * static_cast<std::size_t>(count_));
  qro_base::appendUInt8(bytes, kSingle);
  qro_base::appendInt32(bytes, first_);
  qro_base::appendInt32(bytes, last_);
  qro_base::appendUInt16(bytes, static_cast<unsigned short>(count_));
  const std::size_t head = bytes.size();
  bytes.resize(head + 4 * static_cast<std::size_t>(count_));
  unsigned char* p = reinterpret_cast<unsigned char*>(&bytes[head]);
  std::size_t entry = 0;
  for (std::size_t word = 0; word < bits_.size(); ++word) {
    for (std::uint64_t bits = bits_[word]; bits != 0; bits &= bits - 1) {
      const unsigned offset = static_cast<unsigned>(word * 64 + __builtin_ctzll(bits));
      putUInt16(p, offset);
      putUInt16(p + 2, (uniform_ ? shared_ : advances_[entry++]).GetAdvance());
      p += 4;
    }
  }
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
