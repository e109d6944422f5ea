#pragma once

#include <cstdint>
#include <vector>

#include "base/ZipFileImpl.h"

namespace qro_base {

// Zip reading over minizip. Entry names are read into a 256-byte buffer:
// a name of 256 bytes or more is listed cut to its first 256 bytes, and
// such an entry cannot be opened by this back end (use ZZipFile for it).
class MiniZipFile : public ZipFileImpl {
 public:
  // Opens the archive; a missing path, a path that is not a regular file or
  // a file that is not a zip archive leaves the back end without an archive.
  explicit MiniZipFile(const char* path);
  ~MiniZipFile() override;

  bool GetEntries(std::vector<ZipEntry*>& entries) override;
  // Looks the name up case-sensitively and opens that entry; only stored
  // and deflated entries can be opened.
  bool OpenEntry(const char* name) override;
  // 0 without an archive; otherwise minizip's result: a count, or a
  // negative minizip error (also when no entry is open).
  int ReadEntry(char* buffer, unsigned count) override;
  // False when no entry is open, and when the whole entry was read and its
  // CRC does not match.
  bool CloseEntry() override;

 private:
  void* zip_ = nullptr;  // unzFile
  bool entryOpen_ = false;
  uint64_t entryRemaining_ = 0;  // uncompressed bytes left in the open entry
};

}  // namespace qro_base
