#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "common/manager/CharKey.h"

namespace qro_common {

// An answer cache keyed by CharKey: the first value stored for a key stays,
// and entries are only ever added (Clear() empties it whole). Values are
// trivially copyable and 32 or 64 bits wide (a float, an int, a pointer, a
// packed record). kCodeBits is the width of the codes that take the dense
// tables: 16 for characters (the basic plane), 8 for script numbers, 0 for
// answers per font and style alone (the key's code is then 0).
//
// A cached key with a dense code and a font index below kMaxDenseFont is
// found in a few nanoseconds: per font index and style a table of pages, per
// page the values of 256 consecutive codes, an empty slot holding a bit
// pattern no answer has (a signalling NaN as a float, a number beyond any
// advance as an int). Everything else (supplementary code points, negative
// or huge font indexes, a value with that very pattern) goes to a hash map.
// With 32-bit values a font and style costs 2 KiB once asked and 1 KiB per
// 256-code block with an answer: a Latin and Hangul text in one font takes
// under 50 KiB.
//
// Threads: Find() may run on any number of threads while one Insert() at a
// time (they lock each other out) adds to the cache. Dense look-ups take no
// lock: slots are atomic words written once, pages and tables are published
// with release stores and found with acquire loads, and the table of font
// styles is replaced whole when it grows, the old one kept until Clear(), so
// a reader never sees memory move. The hash map is read under a shared
// lock. Clear() must run alone.
template <typename Value, unsigned kCodeBits = 16>
class CharKeyCache {
  static_assert(std::is_trivially_copyable<Value>::value, "values are kept as bit patterns");
  static_assert(sizeof(Value) == 4 || sizeof(Value) == 8, "values are 32 or 64 bits wide");
  static_assert(kCodeBits <= 16, "dense codes are at most 16 bits wide");

 public:
  // Font indexes from 0 to this (excluded) use the dense tables.
  static constexpr int kMaxDenseFont = 1 << 12;

  CharKeyCache() = default;
  CharKeyCache(const CharKeyCache&) = delete;
  CharKeyCache& operator=(const CharKeyCache&) = delete;
  ~CharKeyCache() { Clear(); }

  // Whether `key` is cached; its value in `value` when it is.
  bool Find(const CharKey& key, Value& value) const {
    if (IsDense(key)) {
      if (const Slot* slot = FindSlot(key)) {
        const Bits bits = slot->load(std::memory_order_relaxed);
        if (bits != kEmpty) {
          std::memcpy(&value, &bits, sizeof value);
          return true;
        }
      }
      if (overflowSize_.load(std::memory_order_acquire) == 0) return false;
    }
    return FindOverflow(key, value);
  }

  // Stores `value` for `key` unless the key has a value already; whether it
  // was stored.
  bool Insert(const CharKey& key, Value value) {
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    std::lock_guard<std::mutex> lock(insertMutex_);
    if (!IsDense(key) || bits == kEmpty) {
      if (IsDense(key)) {
        const Slot* slot = FindSlot(key);
        if (slot != nullptr && slot->load(std::memory_order_relaxed) != kEmpty) return false;
      }
      bool added;
      {
        std::unique_lock<std::shared_mutex> write(overflowMutex_);
        added = overflow_.emplace(key, value).second;
      }
      if (added) {
        overflowSize_.fetch_add(1, std::memory_order_release);
        size_.fetch_add(1, std::memory_order_relaxed);
      }
      return added;
    }
    Slot& slot = MakeSlot(key);
    if (slot.load(std::memory_order_relaxed) != kEmpty) return false;
    if (overflowSize_.load(std::memory_order_relaxed) != 0 && overflow_.count(key) != 0) {
      return false;
    }
    slot.store(bits, std::memory_order_relaxed);
    size_.fetch_add(1, std::memory_order_relaxed);
    return true;
  }

  // Number of cached keys.
  std::size_t Size() const { return size_.load(std::memory_order_relaxed); }

  void Clear() {
    if (Styles* styles = styles_.load(std::memory_order_relaxed)) {
      for (std::size_t i = 0; i < styles->count; ++i) {
        Pages* pages = styles->slots()[i].load(std::memory_order_relaxed);
        if (pages == nullptr) continue;
        for (auto& page : pages->pages) delete page.load(std::memory_order_relaxed);
        delete pages;
      }
      styles_.store(nullptr, std::memory_order_relaxed);
    }
    styleTables_.clear();
    overflow_.clear();
    overflowSize_.store(0, std::memory_order_relaxed);
    size_.store(0, std::memory_order_relaxed);
  }

 private:
  using Bits = typename std::conditional<sizeof(Value) == 4, std::uint32_t, std::uint64_t>::type;
  using Slot = std::atomic<Bits>;

  static constexpr unsigned kPageBits = kCodeBits < 8 ? kCodeBits : 8;
  static constexpr unsigned kPageSize = 1u << kPageBits;
  static constexpr unsigned kPageMask = kPageSize - 1;
  static constexpr unsigned kDenseCodes = 1u << kCodeBits;
  static constexpr unsigned kPageCount = kDenseCodes / kPageSize;
  static constexpr Bits kEmpty = static_cast<Bits>(0x7FBADBAD7FBADBADull);
  static constexpr std::size_t kFirstStyleCount = 64;

  struct Page {
    Page() {
      for (Slot& slot : slots) slot.store(kEmpty, std::memory_order_relaxed);
    }
    Slot slots[kPageSize];
  };
  struct Pages {
    std::atomic<Page*> pages[kPageCount] = {};
  };
  // One entry per font index and style, in the same block as the count;
  // replaced whole when it grows.
  struct Styles {
    std::size_t count;

    // The `count` entries, right after the count.
    std::atomic<Pages*>* slots() { return reinterpret_cast<std::atomic<Pages*>*>(this + 1); }
    const std::atomic<Pages*>* slots() const {
      return reinterpret_cast<const std::atomic<Pages*>*>(this + 1);
    }
    static Styles* Make(std::size_t n) {
      void* memory = ::operator new(sizeof(Styles) + n * sizeof(std::atomic<Pages*>));
      auto* styles = new (memory) Styles{n};
      for (std::size_t i = 0; i < n; ++i) new (&styles->slots()[i]) std::atomic<Pages*>(nullptr);
      return styles;
    }
    struct Free {
      void operator()(Styles* styles) const { ::operator delete(styles); }
    };
  };

  static bool IsDense(const CharKey& key) {
    return key.code < kDenseCodes && key.fontIndex >= 0 && key.fontIndex < kMaxDenseFont;
  }
  static std::size_t StyleSlot(const CharKey& key) {
    return static_cast<std::size_t>(key.fontIndex) * 4 + (key.bold ? 2 : 0) + (key.italic ? 1 : 0);
  }

  // Kept out of line, so that the dense look-up inlined into its callers
  // stays small.
  __attribute__((noinline)) bool FindOverflow(const CharKey& key, Value& value) const {
    std::shared_lock<std::shared_mutex> lock(overflowMutex_);
    auto it = overflow_.find(key);
    if (it == overflow_.end()) return false;
    value = it->second;
    return true;
  }

  // The dense slot of `key` when its page exists; null otherwise.
  const Slot* FindSlot(const CharKey& key) const {
    const Styles* styles = styles_.load(std::memory_order_acquire);
    const std::size_t style = StyleSlot(key);
    if (styles == nullptr || style >= styles->count) return nullptr;
    const Pages* pages = styles->slots()[style].load(std::memory_order_acquire);
    if (pages == nullptr) return nullptr;
    const Page* page = pages->pages[key.code >> kPageBits].load(std::memory_order_acquire);
    return page == nullptr ? nullptr : &page->slots[key.code & kPageMask];
  }

  // Under insertMutex_.
  Slot& MakeSlot(const CharKey& key) {
    const std::size_t style = StyleSlot(key);
    Styles* styles = styles_.load(std::memory_order_relaxed);
    if (styles == nullptr || style >= styles->count) styles = Grow(styles, style + 1);
    Pages* pages = styles->slots()[style].load(std::memory_order_relaxed);
    if (pages == nullptr) {
      pages = new Pages();
      styles->slots()[style].store(pages, std::memory_order_release);
    }
    std::atomic<Page*>& pageSlot = pages->pages[key.code >> kPageBits];
    Page* page = pageSlot.load(std::memory_order_relaxed);
    if (page == nullptr) {
      page = new Page();
      pageSlot.store(page, std::memory_order_release);
    }
    return page->slots[key.code & kPageMask];
  }

  // A styles table of at least `needed` entries holding the entries of
  // `old`, published; readers may go on using the old one, kept until
  // Clear().
  Styles* Grow(Styles* old, std::size_t needed) {
    std::size_t count = old == nullptr ? kFirstStyleCount : old->count * 2;
    count = std::min<std::size_t>(std::max(count, needed), std::size_t(kMaxDenseFont) * 4);
    std::unique_ptr<Styles, typename Styles::Free> grown(Styles::Make(count));
    if (old != nullptr) {
      for (std::size_t i = 0; i < old->count; ++i) {
        grown->slots()[i].store(old->slots()[i].load(std::memory_order_relaxed),
                                std::memory_order_relaxed);
      }
    }
    Styles* published = grown.get();
    styleTables_.push_back(std::move(grown));
    styles_.store(published, std::memory_order_release);
    return published;
  }

  std::atomic<Styles*> styles_{nullptr};
  // Every styles table made since the last Clear(), the current one last.
  std::vector<std::unique_ptr<Styles, typename Styles::Free>> styleTables_;
  std::mutex insertMutex_;
  mutable std::shared_mutex overflowMutex_;
  std::unordered_map<CharKey, Value, CharKeyHash> overflow_;
  std::atomic<std::size_t> overflowSize_{0};
  std::atomic<std::size_t> size_{0};
};

}  // namespace qro_common
