#pragma once

namespace qro_base {

// A sink of bytes; see InputStream for the open flag.
class OutputStream {
 public:
  OutputStream() = default;
  OutputStream(const OutputStream&) = default;
  virtual OutputStream& operator=(const OutputStream& other) {
    open_ = other.open_;
    return *this;
  }
  virtual ~OutputStream() = default;

  virtual bool Write(char c) = 0;
  virtual bool Write(const char* buffer, unsigned count) = 0;
  virtual bool Close() = 0;

  bool IsOpen() const { return open_; }

 protected:
  bool open_ = false;
};

}  // namespace qro_base
