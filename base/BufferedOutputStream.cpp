#include "base/BufferedOutputStream.h"

#include <cstring>

namespace qro_base {

BufferedOutputStream::BufferedOutputStream(OutputStream* sink, unsigned size)
    : sink_(sink), size_(size) {
  if (size_ == 0) return;
  buffer_ = new char[size_];
  pos_ = buffer_;
  end_ = buffer_ + size_;
  open_ = true;
}

BufferedOutputStream::~BufferedOutputStream() { delete[] buffer_; }

bool BufferedOutputStream::Write(char c) {
  if (buffer_ == nullptr) return false;
  if (pos_ == end_ && !Flush()) return false;
  *pos_++ = c;
  return true;
}

bool BufferedOutputStream::Write(const char* buffer, unsigned count) {
  if (buffer_ == nullptr) return false;
  if (count == 0) return true;
  if (buffer == nullptr) return false;
  if (count >= size_) {
    if (Pending() > 0 && !Flush()) return false;
    return sink_ != nullptr && sink_->Write(buffer, count);
  }
  if (count > Room() && !Flush()) return false;
  memcpy(pos_, buffer, count);
  pos_ += count;
  return true;
}

bool BufferedOutputStream::Flush() {
  if (buffer_ == nullptr || sink_ == nullptr) return false;
  if (Pending() > 0 && !sink_->Write(buffer_, Pending())) return false;
  pos_ = buffer_;
  return true;
}

bool BufferedOutputStream::Close() { return sink_ != nullptr && sink_->Close(); }

}  // namespace qro_base
