#pragma once

#include "base/OutputStream.h"

namespace qro_base {

// Collects writes in a buffer of a fixed size and hands them to the sink in
// blocks. The sink is not owned. Close() closes the sink without flushing,
// and neither does the destructor: call Flush() first, or the pending bytes
// are lost. A size of 0 gives a stream that is not open.
class BufferedOutputStream : public OutputStream {
 public:
  BufferedOutputStream(OutputStream* sink, unsigned size);
  ~BufferedOutputStream() override;
  BufferedOutputStream(const BufferedOutputStream&) = delete;
  BufferedOutputStream& operator=(const BufferedOutputStream&) = delete;

  // Buffers one byte, flushing first when the buffer is full; false when
  // that flush failed or the stream is not open.
  bool Write(char c) override;
  // Blocks of at least the buffer size go straight to the sink (after the
  // pending bytes); smaller ones are buffered, flushing first when they do
  // not fit. False when a flush or the sink failed.
  bool Write(const char* buffer, unsigned count) override;
  // Writes the pending bytes to the sink; when the sink fails they are kept
  // and the result is false.
  bool Flush();
  bool Close() override;

 private:
  unsigned Pending() const { return static_cast<unsigned>(pos_ - buffer_); }
  unsigned Room() const { return static_cast<unsigned>(end_ - pos_); }

  OutputStream* sink_;
  unsigned size_;
  char* buffer_ = nullptr;
  char* pos_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace qro_base
