#include "common/manager/WordCache.h"

#include <algorithm>
#include <string_view>

namespace qro_common {

namespace {

std::uint8_t styleOf(bool bold, bool italic) { return (bold ? 1 : 0) | (italic ? 2 : 0); }

}  // namespace

std::size_t WordCache::HashOf(int font, std::uint8_t style, const char16_t* text,
                              std::size_t length) {
  const std::size_t h = std::hash<std::u16string_view>()(std::u16string_view(text, length));
  return h ^ (static_cast<std::size_t>(font) * 0x9E3779B97F4A7C15ull + style);
}

std::size_t WordCache::SizeOf(const Entry& entry) {
  // The entry, its list and index nodes, and the arrays.
  const std::size_t n = entry.text.size();
  return sizeof(Entry) + 64 + n * (sizeof(char16_t) + sizeof(float) + sizeof(int) + 1);
}

WordCache::Iterator WordCache::Lookup(std::size_t hash, int font, std::uint8_t style,
                                      const char16_t* text, std::size_t length) {
  auto range = index_.equal_range(hash);
  for (auto it = range.first; it != range.second; ++it) {
    const Entry& e = *it->second;
    if (e.font == font && e.style == style && e.text.size() == length &&
        std::equal(text, text + length, e.text.begin())) {
      return it->second;
    }
  }
  return entries_.end();
}

bool WordCache::Find(int font, bool bold, bool italic, const char16_t* text, std::size_t length,
                     float& totalEm, float* advances, int* fonts, std::uint8_t* clusterStarts) {
  const std::uint8_t style = styleOf(bold, italic);
  const std::size_t hash = HashOf(font, style, text, length);
  std::lock_guard<std::mutex> lock(mutex_);
  Iterator it = Lookup(hash, font, style, text, length);
  if (it == entries_.end()) return false;
  entries_.splice(entries_.begin(), entries_, it);
  const RunMeasure& m = it->measure;
  totalEm = m.totalEm;
  if (advances != nullptr) std::copy(m.advances.begin(), m.advances.end(), advances);
  if (fonts != nullptr) std::copy(m.fonts.begin(), m.fonts.end(), fonts);
  if (clusterStarts != nullptr) {
    std::copy(m.clusterStarts.begin(), m.clusterStarts.end(), clusterStarts);
  }
  return true;
}

void WordCache::Insert(int font, bool bold, bool italic, const char16_t* text, std::size_t length,
                       const RunMeasure& measure) {
  const std::uint8_t style = styleOf(bold, italic);
  const std::size_t hash = HashOf(font, style, text, length);
  Entry entry{hash, font, style, std::u16string(text, length), measure};
  const std::size_t size = SizeOf(entry);
  if (size > capacity_) return;
  std::lock_guard<std::mutex> lock(mutex_);
  if (Lookup(hash, font, style, text, length) != entries_.end()) return;
  while (size_ + size > capacity_ && !entries_.empty()) {
    Entry& last = entries_.back();
    auto range = index_.equal_range(last.hash);
    for (auto it = range.first; it != range.second; ++it) {
      if (&*it->second == &last) {
        index_.erase(it);
        break;
      }
    }
    size_ -= SizeOf(last);
    entries_.pop_back();
  }
  entries_.push_front(std::move(entry));
  index_.emplace(hash, entries_.begin());
  size_ += size;
}

void WordCache::Clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  index_.clear();
  entries_.clear();
  size_ = 0;
}

std::size_t WordCache::GetSize() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return size_;
}

std::size_t WordCache::GetEntryCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return entries_.size();
}

}  // namespace qro_common
