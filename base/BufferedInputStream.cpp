#include "base/BufferedInputStream.h"

#include <climits>
#include <cstring>

namespace qro_base {

BufferedInputStream::BufferedInputStream(InputStream* source, unsigned size)
    : source_(source), size_(size) {
  if (size_ == 0) return;
  buffer_ = new char[size_];
  pos_ = end_ = buffer_;
  FillBuffer();
  open_ = true;
}

BufferedInputStream::~BufferedInputStream() {
  delete[] buffer_;
  delete source_;
}

bool BufferedInputStream::FillBuffer(unsigned keep) {
  if (buffer_ == nullptr || exhausted_) return false;
  if (keep > Pending()) keep = Pending();
  if (keep > 0 && pos_ != buffer_) memmove(buffer_, pos_, keep);
  pos_ = buffer_;
  end_ = buffer_ + keep;
  unsigned wanted = size_ - keep;
  if (wanted == 0) return false;
  int got = source_ != nullptr ? source_->Read(end_, wanted) : 0;
  if (got < 0) got = 0;
  if (static_cast<unsigned>(got) > wanted) got = static_cast<int>(wanted);
  // A short block ends the source; so does an empty one after a full block,
  // when the source length is a multiple of the size.
  if (static_cast<unsigned>(got) < wanted) exhausted_ = true;
  end_ += got;
  return got > 0;
}

int BufferedInputStream::Read() {
  if (pos_ == end_ && !FillBuffer()) return -1;
  return static_cast<unsigned char>(*pos_++);
}

bool BufferedInputStream::Read(int& value) {
  int byte = Read();
  if (byte < 0) return false;
  value = byte;
  return true;
}

int BufferedInputStream::Read(char* buffer, unsigned count) {
  if (buffer == nullptr || buffer_ == nullptr) return 0;
  if (count > static_cast<unsigned>(INT_MAX)) count = INT_MAX;
  unsigned copied = 0;
  while (copied < count) {
    if (pos_ == end_ && !FillBuffer()) break;
    unsigned chunk = Pending();
    if (chunk > count - copied) chunk = count - copied;
    memcpy(buffer + copied, pos_, chunk);
    pos_ += chunk;
    copied += chunk;
  }
  return static_cast<int>(copied);
}

bool BufferedInputStream::Close() { return source_ != nullptr && source_->Close(); }

unsigned BufferedInputStream::Available() {
  unsigned long long total = Pending();
  if (source_ != nullptr) total += source_->Available();
  return total > static_cast<unsigned>(INT_MAX) ? static_cast<unsigned>(INT_MAX)
                                                 : static_cast<unsigned>(total);
}

bool BufferedInputStream::Skip(unsigned count) {
  if (buffer_ == nullptr) return false;
  while (count > Pending()) {
    count -= Pending();
    pos_ = end_;
    if (!FillBuffer()) return true;
  }
  pos_ += count;
  return true;
}

}  // namespace qro_base
