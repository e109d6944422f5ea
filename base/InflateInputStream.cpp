#include "base/InflateInputStream.h"

#include <climits>
#include <cstring>

namespace qro_base {

InflateInputStream::InflateInputStream(InputStream& source, unsigned length)
    : source_(source), length_(length), available_(source.Available()) {
  memset(&zstream_, 0, sizeof zstream_);
  memset(input_, 0, sizeof input_);
  open_ = true;
}

InflateInputStream::InflateInputStream(InputStream& source, unsigned length, char* destination,
                                       unsigned destinationSize)
    : InflateInputStream(source, length) {
  destination_ = destination;
  destinationSize_ = destinationSize;
}

int InflateInputStream::Inflate(char* out, unsigned limit, unsigned& produced) {
  produced = 0;
  memset(&zstream_, 0, sizeof zstream_);
  int result = inflateInit(&zstream_);
  if (result != Z_OK) return result == Z_MEM_ERROR ? Z_MEM_ERROR : Z_STREAM_ERROR;

  bool sourceDone = false;
  for (;;) {
    if (zstream_.avail_in == 0 && !sourceDone) {
      int got = source_.Read(reinterpret_cast<char*>(input_), kBlockSize);
      if (got <= 0) {
        sourceDone = true;
        inputBytes_ = 0;
      } else {
        inputBytes_ = static_cast<unsigned>(got) > kBlockSize ? kBlockSize : static_cast<unsigned>(got);
        zstream_.next_in = input_;
        zstream_.avail_in = inputBytes_;
      }
    }
    unsigned room = limit - produced;
    if (room > kBlockSize) room = kBlockSize;
    zstream_.next_out = reinterpret_cast<Bytef*>(out + produced);
    zstream_.avail_out = room;
    uInt inputBefore = zstream_.avail_in;

    result = inflate(&zstream_, Z_NO_FLUSH);
    produced_ = room - zstream_.avail_out;
    produced += produced_;

    if (result == Z_STREAM_END) {
      result = Z_OK;
      break;
    }
    if (result == Z_NEED_DICT) result = Z_DATA_ERROR;
    if (result != Z_OK && result != Z_BUF_ERROR) break;
    // Without progress the data either ended early or does not fit.
    if (produced_ == 0 && zstream_.avail_in == inputBefore) {
      result = Z_BUF_ERROR;
      break;
    }
  }
  inflateEnd(&zstream_);
  return result;
}

int InflateInputStream::Read(char* buffer, unsigned count) {
  (void)count;
  if (buffer == nullptr) return 0;
  unsigned produced = 0;
  status_ = Inflate(buffer, length_, produced);
  if (status_ != Z_OK) return 0;
  return produced > static_cast<unsigned>(INT_MAX) ? INT_MAX : static_cast<int>(produced);
}

int InflateInputStream::Read() {
  if (destination_ == nullptr || destinationSize_ == 0) return 0;
  unsigned produced = 0;
  status_ = Inflate(destination_, destinationSize_, produced);
  if (status_ != Z_OK) return status_;
  return produced > static_cast<unsigned>(INT_MAX) ? INT_MAX : static_cast<int>(produced);
}

}  // namespace qro_base
