#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

#include "common/manager/CharKey.h"

namespace qro_common {

// A per-character answer cache keyed by CharKey: the first value stored
// for a key stays, and entries are only ever added (Clear() empties it
// whole). Values are 32 bits (float or int).
//
// A cached key of the basic plane with a font index below kMaxDenseFont is
// found in a few nanoseconds: per font index and style a table of 256
// pages, per page the 256 values of one code-point block, an empty slot
// holding a bit pattern no answer has (a signalling NaN as a float, a
// number beyond any advance as an int). Everything else (supplementary
// code points, negative or huge font indexes, a value with that very
// pattern) goes to a hash map. A font and style costs 2 KiB once asked,
// and 1 KiB per 256-code block with an answer: a Latin and Hangul text in
// one font takes under 50 KiB.
//
// Not synchronised: callers serialise inserts and look-ups. A read-mostly
// concurrent form keeps this layout: slots become atomic 32-bit words
// written once, page and table pointers are published with release stores
// and read with acquire loads, and the table per font index is made at its
// full size up front (or replaced whole, the old one kept alive) so that a
// reader never sees it move; Find() then takes no lock and only Insert()
// does.
template <typename Value>
class CharKeyCache {
  static_assert(sizeof(Value) == sizeof(std::uint32_t), "values are kept as 32-bit patterns");

 public:
  // Font indexes from 0 to this (excluded) use the dense tables.
  static constexpr int kMaxDenseFont = 1 << 12;

  // Whether `key` is cached; its value in `value` when it is.
  bool Find(const CharKey& key, Value& value) const {
    if (IsDense(key)) {
      const std::size_t style = StyleSlot(key);
      if (style < styles_.size()) {
        if (const Pages* pages = styles_[style].get()) {
          if (const Page* page = (*pages)[key.code >> kPageBits].get()) {
            const std::uint32_t bits = (*page)[key.code & kPageMask];
            if (bits != kEmpty) {
              std::memcpy(&value, &bits, sizeof value);
              return true;
            }
          }
        }
      }
      if (overflow_.empty()) return false;
    }
    auto it = overflow_.find(key);
    if (it == overflow_.end()) return false;
    value = it->second;
    return true;
  }

  // Stores `value` for `key` unless the key has a value already; whether it
  // was stored.
  bool Insert(const CharKey& key, Value value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    if (!IsDense(key) || bits == kEmpty) {
      if (IsDense(key) && SlotOf(key) != nullptr && *SlotOf(key) != kEmpty) return false;
      bool added = overflow_.emplace(key, value).second;
      size_ += added;
      return added;
    }
    std::uint32_t& slot = MakeSlot(key);
    if (slot != kEmpty) return false;
    if (!overflow_.empty() && overflow_.count(key) != 0) return false;
    slot = bits;
    ++size_;
    return true;
  }

  // Number of cached keys.
  std::size_t Size() const { return size_; }
  void Clear() {
    styles_.clear();
    overflow_.clear();
    size_ = 0;
  }

 private:
  static constexpr unsigned kPageBits = 8;
  static constexpr unsigned kPageSize = 1u << kPageBits;
  static constexpr unsigned kPageMask = kPageSize - 1;
  static constexpr unsigned kDenseCodes = 0x10000;
  static constexpr std::uint32_t kEmpty = 0x7FBADBADu;

  using Page = std::array<std::uint32_t, kPageSize>;
  using Pages = std::array<std::unique_ptr<Page>, kDenseCodes / kPageSize>;

  static bool IsDense(const CharKey& key) {
    return key.code < kDenseCodes && key.fontIndex >= 0 && key.fontIndex < kMaxDenseFont;
  }
  static std::size_t StyleSlot(const CharKey& key) {
    return static_cast<std::size_t>(key.fontIndex) * 4 + (key.bold ? 2 : 0) + (key.italic ? 1 : 0);
  }

  // The dense slot of `key` when its page exists; null otherwise.
  const std::uint32_t* SlotOf(const CharKey& key) const {
    const std::size_t style = StyleSlot(key);
    if (style >= styles_.size() || !styles_[style]) return nullptr;
    const Page* page = (*styles_[style])[key.code >> kPageBits].get();
    return page == nullptr ? nullptr : &(*page)[key.code & kPageMask];
  }

  std::uint32_t& MakeSlot(const CharKey& key) {
    const std::size_t style = StyleSlot(key);
    if (style >= styles_.size()) styles_.resize(style + 1);
    std::unique_ptr<Pages>& pages = styles_[style];
    if (!pages) pages.reset(new Pages());
    std::unique_ptr<Page>& page = (*pages)[key.code >> kPageBits];
    if (!page) {
      page.reset(new Page());
      page->fill(kEmpty);
    }
    return (*page)[key.code & kPageMask];
  }

  std::vector<std::unique_ptr<Pages>> styles_;
  std::unordered_map<CharKey, Value, CharKeyHash> overflow_;
  std::size_t size_ = 0;
};

}  // namespace qro_common
