#pragma once

#include "base/InputStream.h"

namespace qro_base {

// Reads its source in blocks of a fixed size. The source is owned and
// deleted with the buffered stream. A size of 0 gives a stream that is not
// open; otherwise the stream is open (also over a source that is not) and
// the first block is read at construction.
class BufferedInputStream : public InputStream {
 public:
  BufferedInputStream(InputStream* source, unsigned size);
  ~BufferedInputStream() override;
  BufferedInputStream(const BufferedInputStream&) = delete;
  BufferedInputStream& operator=(const BufferedInputStream&) = delete;

  // The next byte (0..255), -1 at the end.
  int Read() override;
  // Stores the next byte in value; false at the end.
  bool Read(int& value);
  // Copies up to count bytes (at most INT_MAX), refilling as needed; fewer
  // when the source ends.
  int Read(char* buffer, unsigned count) override;
  // Closes the source; bytes already buffered stay readable.
  bool Close() override;
  // The source's Available() plus the bytes still buffered (at most INT_MAX).
  unsigned Available() override;
  // Skips within the buffer and block by block beyond it; reaching the end
  // of the source on the way still counts as success.
  bool Skip(unsigned count) override;

 protected:
  // Reads the next block behind the `keep` bytes that are still unread
  // (moved to the start of the buffer first). Does nothing once a block came
  // back short, which means the source is exhausted. True when there are
  // bytes in the buffer afterwards that were not there before.
  bool FillBuffer(unsigned keep = 0);

  unsigned Pending() const { return static_cast<unsigned>(end_ - pos_); }

  InputStream* source_;
  unsigned size_;
  char* buffer_ = nullptr;
  char* pos_ = nullptr;
  char* end_ = nullptr;
  // Set once a block came back shorter than requested.
  bool exhausted_ = false;
};

}  // namespace qro_base
