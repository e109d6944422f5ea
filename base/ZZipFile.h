#pragma once

#include <cstdint>
#include <vector>

#include "base/ZipFileImpl.h"

struct zzip_dir;
struct zzip_file;

namespace qro_base {

// Zip reading over zziplib; the back end of the default data package.
// Archives holding an entry name longer than 65000 bytes are not opened:
// zziplib cannot index such names safely.
class ZZipFile : public ZipFileImpl {
 public:
  // Opens the archive; a missing path, a path that is not a regular file or
  // a file that is not a zip archive leaves the back end without an archive.
  explicit ZZipFile(const char* path);
  ~ZZipFile() override;

  bool GetEntries(std::vector<ZipEntry*>& entries) override;
  // Opens the entry with exactly this name (case-sensitive, full path);
  // only stored and deflated entries can be opened.
  bool OpenEntry(const char* name) override;
  // 0 when no entry is open; otherwise zziplib's count, -1 on a read error
  // such as corrupt compressed data.
  int ReadEntry(char* buffer, unsigned count) override;
  bool CloseEntry() override;

 private:
  zzip_dir* dir_ = nullptr;
  zzip_file* entry_ = nullptr;
  uint32_t entryRemaining_ = 0;  // uncompressed bytes left in the open entry
};

}  // namespace qro_base
