#pragma once

#include <zlib.h>

#include "base/InputStream.h"

namespace qro_base {

// Decompresses a whole zlib stream (with header) from its source into
// memory in one call. The source is not owned. The caller states the
// uncompressed length; the stream never writes more than that (or than the
// destination size of the second form), and data that does not fit, that
// ends early or that is corrupt is deliberately an error (never a short
// success).
class InflateInputStream : public InputStream {
 public:
  InflateInputStream(InputStream& source, unsigned length);
  // Read() decompresses into destination, which holds destinationSize bytes.
  InflateInputStream(InputStream& source, unsigned length, char* destination,
                     unsigned destinationSize);
  InflateInputStream(const InflateInputStream&) = delete;
  InflateInputStream& operator=(const InflateInputStream&) = delete;

  // With a destination: decompresses into it and returns the number of
  // bytes produced (the length when the data is as announced), or a negative
  // zlib code on failure (Z_DATA_ERROR for corrupt data, Z_MEM_ERROR,
  // Z_BUF_ERROR for data that ends early or does not fit). 0 without one.
  int Read() override;
  // Decompresses everything into buffer, which must hold `length` bytes
  // whatever count says (count is not a limit). Returns the number of bytes
  // produced (the length when the data is as announced), 0 on any failure.
  int Read(char* buffer, unsigned count) override;
  // Nothing to release: true.
  bool Close() override { return true; }
  // The source's Available() at construction.
  unsigned Available() override { return available_; }
  // Not supported: false.
  bool Skip(unsigned) override { return false; }

  // The zlib result of the last decompression.
  int Status() const { return status_; }

 private:
  static constexpr unsigned kBlockSize = 16384;

  // Decompresses into out, writing at most limit bytes. Stores the bytes
  // produced and returns Z_OK when the stream ended properly, else the error.
  int Inflate(char* out, unsigned limit, unsigned& produced);

  InputStream& source_;
  unsigned length_;
  char* destination_ = nullptr;
  unsigned destinationSize_ = 0;
  unsigned available_;
  int status_ = Z_OK;
  unsigned produced_ = 0;
  z_stream zstream_;
  unsigned inputBytes_ = 0;
  unsigned char input_[kBlockSize];
};

}  // namespace qro_base
