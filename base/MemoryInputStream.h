#pragma once

#include "base/InputStream.h"

namespace qro_base {

// An input stream over bytes in memory. It does not own the bytes; they
// must outlive the stream. Unlike a file stream, Read() gives -1 at the end,
// so readers can tell truncated data. Open after construction unless the
// data pointer is null with a non-zero size; Close() ends it.
class MemoryInputStream : public InputStream {
 public:
  MemoryInputStream(const char* data, unsigned size);
  MemoryInputStream(const MemoryInputStream&) = default;
  MemoryInputStream& operator=(const MemoryInputStream&) = default;
  ~MemoryInputStream() override = default;

  // The next byte 0..255, or -1 at the end or when closed.
  int Read() override;
  // Copies up to count bytes; the number copied.
  int Read(char* buffer, unsigned count) override;
  // False when the stream was not open.
  bool Close() override;
  // Bytes left; 0 when closed.
  unsigned Available() override;
  // Moves forward; false (and at the end) when fewer than count bytes remain.
  bool Skip(unsigned count) override;

  // Bytes consumed so far.
  unsigned Position() const { return position_; }

 private:
  const char* data_;
  unsigned size_;
  unsigned position_ = 0;
};

}  // namespace qro_base
