#pragma once
// A fixed-size chained hash map keyed by byte strings. The bucket count is
// a prime chosen at construction and never changes. Only the leading
// `hashKeyLength` key units enter the hash; equality always compares whole
// keys. Construction failures are reported on standard error and leave the
// map not valid; a map that is not valid finds nothing and stores nothing.

#include <cstdint>
#include <cstring>
#include <iostream>
#include <new>
#include <type_traits>

namespace qro_base {

// Accepted for compatibility; every method hashes the same way.
enum AKHashMapHashMethod {
  AKHashMapHashMethodDefault = 0,
};

template <typename KeyChar, typename Value>
class AKHMNode {
 public:
  AKHMNode() = default;
  ~AKHMNode() { delete[] key_; }
  AKHMNode(const AKHMNode&) = delete;
  AKHMNode& operator=(const AKHMNode&) = delete;

  // Releases the previous key and stores a copy of `length` units of `key`
  // followed by one zero unit. Returns false (keeping no key) when memory
  // runs out.
  bool SetKey(const KeyChar* key, unsigned int length) {
    delete[] key_;
    key_ = nullptr;
    keyLength_ = 0;
    KeyChar* copy = new (std::nothrow) KeyChar[static_cast<std::size_t>(length) + 1];
    if (copy == nullptr) return false;
    if (length > 0) std::memcpy(copy, key, sizeof(KeyChar) * length);
    copy[length] = KeyChar();
    key_ = copy;
    keyLength_ = length;
    return true;
  }

  AKHMNode* GetNext() const { return next_; }
  const KeyChar* GetKey() const { return key_; }
  unsigned int GetKeyLength() const { return keyLength_; }
  const Value& GetValue() const { return value_; }
  void SetValue(const Value& value) { value_ = value; }

 private:
  template <typename, typename>
  friend class AKHashMap;

  AKHMNode* next_ = nullptr;
  KeyChar* key_ = nullptr;
  unsigned int keyLength_ = 0;
  Value value_{};
};

template <typename KeyChar, typename Value>
class AKHashMap {
 public:
  using Node = AKHMNode<KeyChar, Value>;

  AKHashMap(unsigned int size, unsigned int hashKeyLength, AKHashMapHashMethod method)
      : method_(method), hashKeyLength_(hashKeyLength) {
    if (size < 10) {
      std::cerr << "AKHashMap Size is too small." << std::endl;
      return;
    }
    std::uint64_t count = NextPrime(size);
    if (count > UINT32_MAX) {
      std::cerr << "Out of Heap!" << std::endl;
      return;
    }
    buckets_ = new (std::nothrow) Node[static_cast<std::size_t>(count)];
    if (buckets_ == nullptr) {
      std::cerr << "Out of Heap!" << std::endl;
      return;
    }
    bucketCount_ = static_cast<unsigned int>(count);
    valid_ = true;
  }

  ~AKHashMap() {
    for (unsigned int i = 0; i < bucketCount_; ++i) {
      Node* node = buckets_[i].next_;
      while (node != nullptr) {
        Node* next = node->next_;
        delete node;
        node = next;
      }
    }
    delete[] buckets_;
  }

  AKHashMap(const AKHashMap&) = delete;
  AKHashMap& operator=(const AKHashMap&) = delete;

  // Overwrites the value of an existing key (the last insertion wins) or
  // links a new node at the front of its bucket. Returns the node, or null
  // when the map is not valid, `key` is null with a non-zero length, or
  // memory runs out.
  Node* Insert(const KeyChar* key, unsigned int length, const Value& value) {
    Node* node = FindNode(key, length);
    if (node != nullptr) {
      node->value_ = value;
      return node;
    }
    if (!valid_ || (key == nullptr && length > 0)) return nullptr;
    node = new (std::nothrow) Node();
    if (node == nullptr || !node->SetKey(key, length)) {
      delete node;
      std::cerr << "Out of Heap!" << std::endl;
      return nullptr;
    }
    node->value_ = value;
    Node& head = buckets_[BucketOf(key, length)];
    node->next_ = head.next_;
    head.next_ = node;
    ++entryCount_;
    lastFound_ = true;
    return node;
  }

  // The node whose key has exactly `length` units equal to `key`, or null.
  Node* FindNode(const KeyChar* key, unsigned int length) {
    lastFound_ = false;
    if (!valid_ || (key == nullptr && length > 0)) return nullptr;
    for (Node* node = buckets_[BucketOf(key, length)].next_; node != nullptr; node = node->next_) {
      if (node->keyLength_ == length &&
          (length == 0 || std::memcmp(node->key_, key, sizeof(KeyChar) * length) == 0)) {
        lastFound_ = true;
        return node;
      }
    }
    return nullptr;
  }

  // h = (h << 5) + unit over the first min(length, hashKeyLength) units,
  // each taken unsigned, in wrapping 32-bit arithmetic.
  static std::uint32_t Hash(const KeyChar* key, unsigned int length, unsigned int hashKeyLength) {
    using Unit = typename std::make_unsigned<KeyChar>::type;
    unsigned int n = length < hashKeyLength ? length : hashKeyLength;
    std::uint32_t h = 0;
    for (unsigned int i = 0; i < n; ++i) {
      h = static_cast<std::uint32_t>(h << 5) + static_cast<std::uint32_t>(static_cast<Unit>(key[i]));
    }
    return h;
  }

  // The smallest prime not below `size` (for sizes of 10 and more).
  static std::uint64_t NextPrime(unsigned int size) {
    std::uint64_t candidate = size;
    if (candidate % 2 == 0) ++candidate;
    for (;; candidate += 2) {
      bool prime = true;
      for (std::uint64_t d = 3; d * d <= candidate; d += 2) {
        if (candidate % d == 0) {
          prime = false;
          break;
        }
      }
      if (prime) return candidate;
    }
  }

  // The first node of a bucket's chain (newest first), or null.
  Node* GetBucketHead(unsigned int bucket) const {
    return valid_ && bucket < bucketCount_ ? buckets_[bucket].next_ : nullptr;
  }
  unsigned int GetBucketIndex(const KeyChar* key, unsigned int length) const {
    return valid_ && (key != nullptr || length == 0) ? BucketOf(key, length) : 0;
  }

  bool IsValid() const { return valid_; }
  unsigned int GetCount() const { return entryCount_; }
  unsigned int GetBucketCount() const { return bucketCount_; }
  unsigned int GetHashKeyLength() const { return hashKeyLength_; }
  AKHashMapHashMethod GetHashMethod() const { return method_; }
  // Whether the latest FindNode or Insert found or placed a node.
  bool IsLastFound() const { return lastFound_; }

 private:
  unsigned int BucketOf(const KeyChar* key, unsigned int length) const {
    return Hash(key, length, hashKeyLength_) % bucketCount_;
  }

  AKHashMapHashMethod method_;
  unsigned int entryCount_ = 0;
  unsigned int bucketCount_ = 0;
  // One sentinel node per bucket; the chain hangs off its next pointer.
  Node* buckets_ = nullptr;
  unsigned int hashKeyLength_;
  bool valid_ = false;
  bool lastFound_ = false;
};

}  // namespace qro_base
