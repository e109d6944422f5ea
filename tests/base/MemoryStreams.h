#pragma once
// In-memory streams for the stream adapter tests.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace kelfont_test {

// Delivers `data`, at most `chunk` bytes per Read(buffer, count).
class MemoryInputStream : public qro_base::InputStream {
 public:
  explicit MemoryInputStream(std::string data, unsigned chunk = ~0u, bool* destroyed = nullptr)
      : data_(std::move(data)), chunk_(chunk), destroyed_(destroyed) {
    open_ = true;
  }
  ~MemoryInputStream() override {
    if (destroyed_ != nullptr) *destroyed_ = true;
  }
  int Read() override {
    return pos_ < data_.size() ? static_cast<unsigned char>(data_[pos_++]) : -1;
  }
  int Read(char* buffer, unsigned count) override {
    ++reads;
    size_t n = std::min<size_t>({count, chunk_, data_.size() - pos_});
    data_.copy(buffer, n, pos_);
    pos_ += n;
    return static_cast<int>(n);
  }
  bool Close() override {
    ++closes;
    return true;
  }
  unsigned Available() override { return static_cast<unsigned>(data_.size() - pos_); }
  bool Skip(unsigned count) override {
    pos_ = std::min(data_.size(), pos_ + count);
    return true;
  }

  int reads = 0;
  int closes = 0;

 private:
  std::string data_;
  size_t pos_ = 0;
  unsigned chunk_;
  bool* destroyed_;
};

// Records every block written; fails while `fail` is set.
class MemoryOutputStream : public qro_base::OutputStream {
 public:
  MemoryOutputStream() { open_ = true; }
  bool Write(char c) override { return Write(&c, 1); }
  bool Write(const char* buffer, unsigned count) override {
    if (fail) return false;
    blocks.emplace_back(buffer, count);
    data.append(buffer, count);
    return true;
  }
  bool Close() override {
    ++closes;
    return true;
  }

  bool fail = false;
  int closes = 0;
  std::string data;
  std::vector<std::string> blocks;
};

}  // namespace kelfont_test
