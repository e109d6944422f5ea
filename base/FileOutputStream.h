#pragma once

#include <cstdio>
#include <string>

#include "base/SeekableStream.h"

namespace qro_base {

// Writes a file through the C library. The constructor tries the requested
// mode, then "r+" (update without truncating), then "w+" (create); the
// stream is open when one of them succeeded.
class FileOutputStream : public SeekableOutputStream {
 public:
  // Opens with "r+": an existing file is overwritten from its start without
  // being truncated, a missing one is created.
  explicit FileOutputStream(const char* path);
  FileOutputStream(const std::string& path, const char* mode);
  ~FileOutputStream() override;
  FileOutputStream(const FileOutputStream&) = delete;
  FileOutputStream& operator=(const FileOutputStream&) = delete;

  // True when the byte was written; false when no file is open.
  bool Write(char c) override;
  // True when all count bytes were written; false when no file is open.
  bool Write(const char* buffer, unsigned count) override;
  // False when no file is open; otherwise closes and tells whether closing
  // (which writes what the C library buffered) succeeded.
  bool Close() override;
  // Hands what the C library buffered to the system and waits until the
  // system has it on disk (fflush, then fsync). False when no file is open
  // or either step failed.
  bool Sync();

  long Tell() override;
  bool Seek(unsigned offset, int whence) override;

 private:
  void Open(const char* path, const char* mode);

  FILE* file_ = nullptr;
};

}  // namespace qro_base
