#pragma once

#include <cstdio>

namespace qro_base {

// A plain C file handle. Any mode other than 0 asks for "rw", which the C
// library takes as read-only (the "w" is ignored), so writes through a File
// fail; mode 0 opens with "r". The file counts as open when it opened and
// holds at least one byte.
class File {
 public:
  File(const char* path, int mode);
  virtual ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool IsOpen() const { return open_; }

  // Bytes transferred; 0 when the file did not open. A host may override
  // both.
  virtual unsigned Read(char* buffer, unsigned count) const;
  virtual unsigned Write(const char* buffer, unsigned count);

  // Absolute seek; the C result (0 on success, -1 on failure).
  int Seek(long offset);
  int Seek(long offset, int whence);
  // Current position, -1 when the file did not open.
  long Tell() const;

 private:
  FILE* file_ = nullptr;
  bool open_ = false;
};

}  // namespace qro_base
