#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace qro_common {

// A measured run of text: per UTF-16 unit the advance (a cluster's on its
// first unit, 0 on the rest) as a ratio of the em square, the font index
// that shows it and whether a cluster begins there; the total advance.
struct RunMeasure {
  float totalEm = 0;
  std::vector<float> advances;
  std::vector<int> fonts;
  std::vector<std::uint8_t> clusterStarts;
};

// Measured runs keyed by (font, style, text), at most `capacity` bytes by
// an estimate of their size; the least recently used go first. Every call
// takes the cache's mutex, so any number of threads may use it at once.
class WordCache {
 public:
  explicit WordCache(std::size_t capacity) : capacity_(capacity) {}
  WordCache(const WordCache&) = delete;
  WordCache& operator=(const WordCache&) = delete;

  // On a hit copies the run's answers into the non-null outputs (each
  // `length` long) and returns true.
  bool Find(int font, bool bold, bool italic, const char16_t* text, std::size_t length,
            float& totalEm, float* advances, int* fonts, std::uint8_t* clusterStarts);
  // Keeps `measure` for the key (a present key keeps its entry).
  void Insert(int font, bool bold, bool italic, const char16_t* text, std::size_t length,
              const RunMeasure& measure);
  void Clear();

  std::size_t GetSize() const;
  std::size_t GetEntryCount() const;

 private:
  struct Entry {
    std::size_t hash;
    int font;
    std::uint8_t style;
    std::u16string text;
    RunMeasure measure;
  };
  using Iterator = std::list<Entry>::iterator;

  static std::size_t HashOf(int font, std::uint8_t style, const char16_t* text, std::size_t length);
  static std::size_t SizeOf(const Entry& entry);
  // Under mutex_: the entry of the key, or entries_.end().
  Iterator Lookup(std::size_t hash, int font, std::uint8_t style, const char16_t* text,
                  std::size_t length);

  const std::size_t capacity_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;  // most recently used first
  std::unordered_multimap<std::size_t, Iterator> index_;
  std::size_t size_ = 0;
};

}  // namespace qro_common
