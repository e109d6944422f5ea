#pragma once

#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace qro_base {

class SeekableStream {
 public:
  virtual ~SeekableStream() = default;
  virtual long Tell() = 0;
  // whence is SEEK_SET, SEEK_CUR or SEEK_END.
  virtual bool Seek(unsigned offset, int whence) = 0;
};

class SeekableInputStream : public InputStream, public SeekableStream {};

class SeekableOutputStream : public OutputStream, public SeekableStream {};

}  // namespace qro_base
