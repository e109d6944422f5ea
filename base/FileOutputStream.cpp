#include "base/FileOutputStream.h"

#include <sys/types.h>
#include <unistd.h>

#include <climits>

namespace qro_base {

FileOutputStream::FileOutputStream(const char* path) { Open(path, "r+"); }

FileOutputStream::FileOutputStream(const std::string& path, const char* mode) {
  Open(path.c_str(), mode);
}

FileOutputStream::~FileOutputStream() {
  if (file_ != nullptr) fclose(file_);
}

void FileOutputStream::Open(const char* path, const char* mode) {
  if (path == nullptr) return;
  if (mode != nullptr) file_ = fopen(path, mode);
  if (file_ == nullptr) file_ = fopen(path, "r+");
  if (file_ == nullptr) file_ = fopen(path, "w+");
  open_ = file_ != nullptr;
}

bool FileOutputStream::Write(char c) {
  if (file_ == nullptr) return false;
  return fwrite(&c, 1, 1, file_) == 1;
}

bool FileOutputStream::Write(const char* buffer, unsigned count) {
  if (file_ == nullptr) return false;
  if (count == 0) return true;
  if (buffer == nullptr) return false;
  return fwrite(buffer, 1, count, file_) == count;
}

bool FileOutputStream::Close() {
  if (file_ == nullptr) return false;
  int result = fclose(file_);
  file_ = nullptr;
  open_ = false;
  return result == 0;
}

bool FileOutputStream::Sync() {
  if (file_ == nullptr) return false;
  if (fflush(file_) != 0) return false;
  return fsync(fileno(file_)) == 0;
}

long FileOutputStream::Tell() {
  if (file_ == nullptr) return -1;
  off_t position = ftello(file_);
  if (position < 0) return -1;
  return position > LONG_MAX ? LONG_MAX : static_cast<long>(position);
}

bool FileOutputStream::Seek(unsigned offset, int whence) {
  if (file_ == nullptr) return false;
  return fseeko(file_, static_cast<off_t>(offset), whence) == 0;
}

}  // namespace qro_base
