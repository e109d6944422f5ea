#include "base/ZZipFile.h"

#include <sys/stat.h>
#include <zzip/lib.h>

#include <algorithm>
#include <climits>

namespace qro_base {
namespace {

// Only regular files are handed to zziplib: a directory or a FIFO would make
// it read garbage or block.
bool isRegularFile(const char* path) {
  struct stat st;
  return path != nullptr && stat(path, &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

ZZipFile::ZZipFile(const char* path) {
  if (!isRegularFile(path)) return;
  zzip_error_t error = ZZIP_NO_ERROR;
  dir_ = zzip_dir_open(path, &error);
}

ZZipFile::~ZZipFile() {
  // zziplib keeps the directory alive while one of its files is open.
  if (entry_ != nullptr) zzip_file_close(entry_);
  if (dir_ != nullptr) zzip_dir_close(dir_);
}

bool ZZipFile::GetEntries(std::vector<ZipEntry*>& entries) {
  if (dir_ == nullptr) return false;
  zzip_rewinddir(dir_);
  ZZIP_DIRENT dirent;
  while (zzip_dir_read(dir_, &dirent)) {
    // zziplib reports sizes as int; they are sign-extended on purpose.
    entries.push_back(new ZipEntry(dirent.d_name != nullptr ? dirent.d_name : "",
                                   static_cast<int64_t>(dirent.st_size)));
  }
  return true;
}

bool ZZipFile::OpenEntry(const char* name) {
  if (dir_ == nullptr || name == nullptr) return false;
  CloseEntry();
  entry_ = zzip_file_open(dir_, name, 0);
  if (entry_ == nullptr) return false;
  ZZIP_STAT stat;
  if (zzip_file_stat(entry_, &stat) != 0) {
    CloseEntry();
    return false;
  }
  entryRemaining_ = static_cast<uint32_t>(stat.st_size);
  return true;
}

int ZZipFile::ReadEntry(char* buffer, unsigned count) {
  if (entry_ == nullptr) return 0;
  // Never ask for more than the open entry still holds.
  uint32_t limit = std::min<uint32_t>(entryRemaining_, INT_MAX);
  uint32_t asked = std::min<uint32_t>(count, limit);
  // zziplib treats an empty read of compressed data as an inflate error.
  if (asked == 0) return 0;
  zzip_ssize_t read = zzip_read(entry_, buffer, asked);
  if (read > 0) entryRemaining_ -= static_cast<uint32_t>(read);
  return static_cast<int>(read);
}

bool ZZipFile::CloseEntry() {
  if (entry_ == nullptr) return false;
  zzip_file_close(entry_);
  entry_ = nullptr;
  entryRemaining_ = 0;
  return true;
}

}  // namespace qro_base
