#include "base/ZZipFile.h"

#include <sys/stat.h>
#include <zzip/lib.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

namespace qro_base {
namespace {

// Only regular files are handed to zziplib: a directory or a FIFO would make
// it read garbage or block.
bool isRegularFile(const char* path) {
  struct stat st;
  return path != nullptr && stat(path, &st) == 0 && S_ISREG(st.st_mode);
}

// zziplib indexes each central directory entry in a record whose 16-bit
// length holds about 28 bytes plus the name: a name near 64 KiB overflows it
// and sends zziplib's directory walk out of its buffer. zziplib indexes only
// headers that carry the central directory signature, so a file is safe for
// it when no such signature anywhere is followed by an overlong name length.
constexpr int kMaxNameLength = 65000;

bool hasOverlongEntryName(const char* path) {
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path, "rb"), &std::fclose);
  if (!file) return false;
  constexpr size_t kHeaderPrefix = 30;  // signature ... name length, extra length
  std::vector<unsigned char> buffer(64 * 1024 + kHeaderPrefix);
  size_t kept = 0;
  for (;;) {
    size_t got = std::fread(buffer.data() + kept, 1, buffer.size() - kept, file.get());
    size_t length = kept + got;
    for (size_t i = 0; i + kHeaderPrefix <= length; ++i) {
      const unsigned char* p = buffer.data() + i;
      if (p[0] == 'P' && p[1] == 'K' && p[2] == 1 && p[3] == 2 &&
          (p[28] | (p[29] << 8)) > kMaxNameLength) {
        return true;
      }
    }
    if (got == 0) return false;
    // Keep the tail that may hold the start of a header cut by the chunk end.
    kept = std::min(length, kHeaderPrefix - 1);
    std::memmove(buffer.data(), buffer.data() + length - kept, kept);
  }
}

}  // namespace

ZZipFile::ZZipFile(const char* path) {
  if (!isRegularFile(path) || hasOverlongEntryName(path)) return;
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
