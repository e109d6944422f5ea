#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "base/SeekableStream.h"

namespace qro_base {

// Reads a file through the C library. The stream is open when the file
// could be opened for reading and holds at least one byte: an empty file, a
// directory or a missing path leave it closed with Available() 0.
class FileInputStream : public SeekableInputStream {
 public:
  // The flag is accepted for compatibility and has no effect.
  explicit FileInputStream(const char* path, bool unused = false);
  explicit FileInputStream(const std::string& path, bool unused = false);
  ~FileInputStream() override;
  FileInputStream(const FileInputStream&) = delete;
  FileInputStream& operator=(const FileInputStream&) = delete;

  // Reads one byte and returns it. At the end of the file the previous byte
  // is returned again (255 before the first byte), never -1: use Available()
  // or a BufferedInputStream to see the end.
  int Read() override;
  // Returns the number of bytes read (at most INT_MAX per call).
  int Read(char* buffer, unsigned count) override;
  // False when no file is open or closing failed; the handle is dropped in
  // both cases because the C library releases it either way.
  bool Close() override;
  // Bytes from the current position to the end measured at opening; 0 when
  // closed or past that end, at most INT_MAX.
  unsigned Available() override;
  // Moves forward; true when the seek succeeded (also beyond the end).
  bool Skip(unsigned count) override;

  // Current position, -1 when closed.
  long Tell() override;
  bool Seek(unsigned offset, int whence) override;

  // The size measured at opening (0 when not open).
  int64_t Size() const { return size_; }

 private:
  void Open(const char* path);

  FILE* file_ = nullptr;
  int64_t size_ = 0;
  unsigned char byte_ = 0xFF;
};

}  // namespace qro_base
