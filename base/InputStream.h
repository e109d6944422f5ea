#pragma once

namespace qro_base {

// A source of bytes. Every stream has an open flag, set by its constructor
// when the underlying resource could be acquired; test IsOpen() right after
// construction. Read() gives a byte 0..255 or -1 at the end where the
// stream can tell; Read(buffer, count) gives the number of bytes delivered.
class InputStream {
 public:
  InputStream() = default;
  InputStream(const InputStream&) = default;
  virtual InputStream& operator=(const InputStream& other) {
    open_ = other.open_;
    return *this;
  }
  virtual ~InputStream() = default;

  virtual int Read() = 0;
  virtual int Read(char* buffer, unsigned count) = 0;
  virtual bool Close() = 0;
  virtual unsigned Available() = 0;
  virtual bool Skip(unsigned count) = 0;

  bool IsOpen() const { return open_; }

 protected:
  bool open_ = false;
};

}  // namespace qro_base
