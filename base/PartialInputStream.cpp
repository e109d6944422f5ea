#include "base/PartialInputStream.h"

namespace qro_base {

PartialInputStream::PartialInputStream(InputStream& source, unsigned length)
    : source_(source), length_(length), remaining_(length) {}

int PartialInputStream::Read() {
  if (remaining_ == 0) return -1;
  int byte = source_.Read();
  // A source that ends early ends the view too.
  remaining_ = byte < 0 ? 0 : remaining_ - 1;
  return byte;
}

int PartialInputStream::Read(char* buffer, unsigned count) {
  if (remaining_ == 0 || buffer == nullptr || count == 0) return 0;
  bool all = count > remaining_;
  if (all) count = remaining_;
  int got = source_.Read(buffer, count);
  if (got < 0) got = 0;
  if (static_cast<unsigned>(got) > count) got = static_cast<int>(count);
  // Asking for more than remains ends the view whatever the source delivered.
  remaining_ = all ? 0 : remaining_ - static_cast<unsigned>(got);
  return got;
}

bool PartialInputStream::Close() {
  remaining_ = 0;
  return true;
}

bool PartialInputStream::Skip(unsigned count) {
  if (count <= remaining_) {
    bool skipped = source_.Skip(count);
    if (skipped) remaining_ -= count;
    return skipped;
  }
  bool skipped = source_.Skip(remaining_);
  if (skipped) remaining_ = 0;
  return skipped;
}

}  // namespace qro_base
