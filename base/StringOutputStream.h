#pragma once

#include <string>

#include "base/OutputStream.h"

namespace qro_base {

// Bytes written to a string the caller owns; never refuses a write.
class StringOutputStream : public OutputStream {
 public:
  explicit StringOutputStream(std::string& bytes) : bytes_(bytes) { open_ = true; }

  bool Write(char c) override {
    bytes_ += c;
    return true;
  }
  bool Write(const char* buffer, unsigned count) override {
    bytes_.append(buffer, count);
    return true;
  }
  bool Close() override {
    open_ = false;
    return true;
  }

 private:
  std::string& bytes_;
};

}  // namespace qro_base
