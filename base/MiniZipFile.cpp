#include "base/MiniZipFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstring>

#if __has_include(<minizip/unzip.h>)
#include <minizip/unzip.h>
#else
#include <unzip.h>
#endif

namespace qro_base {
namespace {

// Only regular files are handed to minizip: a directory or a FIFO would make
// it read garbage or block.
bool isRegularFile(const char* path) {
  struct stat st;
  return path != nullptr && stat(path, &st) == 0 && S_ISREG(st.st_mode);
}

constexpr size_t kNameBufferSize = 256;
constexpr int kCaseSensitive = 1;
constexpr uLong kStored = 0;
constexpr uLong kDeflated = Z_DEFLATED;

}  // namespace

MiniZipFile::MiniZipFile(const char* path) {
  if (isRegularFile(path)) zip_ = unzOpen64(path);
}

MiniZipFile::~MiniZipFile() {
  if (zip_ == nullptr) return;
  if (entryOpen_) unzCloseCurrentFile(zip_);
  unzClose(zip_);
}

bool MiniZipFile::GetEntries(std::vector<ZipEntry*>& entries) {
  if (zip_ == nullptr) return false;
  unz_global_info64 global;
  if (unzGetGlobalInfo64(zip_, &global) != UNZ_OK) return false;
  int err = unzGoToFirstFile(zip_);
  for (ZPOS64_T i = 0; i < global.number_entry && err == UNZ_OK; ++i) {
    unz_file_info64 info;
    char name[kNameBufferSize];
    if (unzGetCurrentFileInfo64(zip_, &info, name, sizeof name, nullptr, 0, nullptr, 0) !=
        UNZ_OK) {
      break;
    }
    // minizip leaves the buffer unterminated when the name fills it.
    size_t stored = std::min<size_t>(info.size_filename, sizeof name);
    entries.push_back(new ZipEntry(std::string(name, strnlen(name, stored)),
                                   static_cast<int64_t>(info.uncompressed_size)));
    err = unzGoToNextFile(zip_);
  }
  return true;
}

bool MiniZipFile::OpenEntry(const char* name) {
  if (zip_ == nullptr || name == nullptr) return false;
  // A failed open must not leave the previous entry readable.
  if (entryOpen_) unzCloseCurrentFile(zip_);
  entryOpen_ = false;
  entryRemaining_ = 0;
  if (unzLocateFile(zip_, name, kCaseSensitive) != UNZ_OK) return false;
  unz_file_info64 info;
  if (unzGetCurrentFileInfo64(zip_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
    return false;
  }
  // minizip would hand out other methods' data still compressed (bzip2
  // entries, for one, come back raw and longer than the entry).
  if (info.compression_method != kStored && info.compression_method != kDeflated) return false;
  if (unzOpenCurrentFile(zip_) != UNZ_OK) return false;
  entryOpen_ = true;
  entryRemaining_ = info.uncompressed_size;
  return true;
}

int MiniZipFile::ReadEntry(char* buffer, unsigned count) {
  if (zip_ == nullptr) return 0;
  // Never ask for more than the open entry still holds (nothing when none
  // is open: minizip then answers with its parameter error).
  uint64_t limit = std::min<uint64_t>(entryRemaining_, INT_MAX);
  unsigned asked = static_cast<unsigned>(std::min<uint64_t>(count, limit));
  int read = unzReadCurrentFile(zip_, buffer, asked);
  if (read > 0) entryRemaining_ -= static_cast<uint64_t>(read);
  return read;
}

bool MiniZipFile::CloseEntry() {
  if (zip_ == nullptr) return false;
  entryOpen_ = false;
  entryRemaining_ = 0;
  return unzCloseCurrentFile(zip_) == UNZ_OK;
}

}  // namespace qro_base
