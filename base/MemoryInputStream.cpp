#include "base/MemoryInputStream.h"

#include <cstring>

namespace qro_base {

MemoryInputStream::MemoryInputStream(const char* data, unsigned size)
    : data_(data), size_(data != nullptr ? size : 0) {
  open_ = data != nullptr || size == 0;
}

int MemoryInputStream::Read() {
  if (!open_ || position_ >= size_) return -1;
  return static_cast<unsigned char>(data_[position_++]);
}

int MemoryInputStream::Read(char* buffer, unsigned count) {
  if (!open_ || buffer == nullptr) return 0;
  unsigned n = Available();
  if (count < n) n = count;
  if (n > 0) std::memcpy(buffer, data_ + position_, n);
  position_ += n;
  return static_cast<int>(n);
}

bool MemoryInputStream::Close() {
  if (!open_) return false;
  open_ = false;
  return true;
}

unsigned MemoryInputStream::Available() { return open_ ? size_ - position_ : 0; }

bool MemoryInputStream::Skip(unsigned count) {
  if (!open_) return false;
  unsigned left = size_ - position_;
  if (count > left) {
    position_ = size_;
    return false;
  }
  position_ += count;
  return true;
}

}  // namespace qro_base
