#pragma once
// In-memory byte streams for the font information tests.

#include <string>

#include "base/MemoryInputStream.h"
#include "base/OutputStream.h"

namespace font_info_test {

// Collects written bytes; refuses writes once `limit` bytes were taken.
class ByteSink : public qro_base::OutputStream {
 public:
  explicit ByteSink(size_t limit = std::string::npos) : limit_(limit) { open_ = true; }
  bool Write(char c) override { return Write(&c, 1); }
  bool Write(const char* buffer, unsigned count) override {
    if (bytes.size() + count > limit_) return false;
    bytes.append(buffer, count);
    return true;
  }
  bool Close() override { return true; }

  std::string bytes;

 private:
  size_t limit_;
};

inline qro_base::MemoryInputStream source(const std::string& bytes) {
  return qro_base::MemoryInputStream(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace font_info_test
