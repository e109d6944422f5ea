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

// Bytes from a hex text; spaces are ignored ("01 7F00" gives 01 7F 00).
inline std::string hex(const std::string& text) {
  std::string bytes;
  int high = -1;
  for (char c : text) {
    int v;
    if (c >= '0' && c <= '9') {
      v = c - '0';
    } else if (c >= 'A' && c <= 'F') {
      v = c - 'A' + 10;
    } else if (c >= 'a' && c <= 'f') {
      v = c - 'a' + 10;
    } else {
      continue;
    }
    if (high < 0) {
      high = v;
    } else {
      bytes.push_back(static_cast<char>(high * 16 + v));
      high = -1;
    }
  }
  return bytes;
}

// `count` zero bytes: the empty slots of a 128-slot table.
inline std::string zeros(size_t count) { return std::string(count, '\0'); }

}  // namespace font_info_test
