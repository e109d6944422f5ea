#include "base/FileInputStream.h"

#include <sys/types.h>

#include <climits>

namespace qro_base {

FileInputStream::FileInputStream(const char* path, bool) { Open(path); }

FileInputStream::FileInputStream(const std::string& path, bool) { Open(path.c_str()); }

FileInputStream::~FileInputStream() {
  if (file_ != nullptr) fclose(file_);
}

void FileInputStream::Open(const char* path) {
  if (path == nullptr) return;
  FILE* file = fopen(path, "r");
  if (file == nullptr) return;
  // Peek one byte: an empty file (and a directory, whose reads fail) is
  // already at its end and does not open.
  int first = fgetc(file);
  if (first == EOF || ungetc(first, file) == EOF || fseeko(file, 0, SEEK_END) != 0) {
    fclose(file);
    return;
  }
  off_t size = ftello(file);
  if (size <= 0 || fseeko(file, 0, SEEK_SET) != 0) {
    fclose(file);
    return;
  }
  file_ = file;
  size_ = static_cast<int64_t>(size);
  open_ = true;
}

int FileInputStream::Read() {
  unsigned char next;
  if (file_ != nullptr && fread(&next, 1, 1, file_) == 1) byte_ = next;
  return byte_;
}

int FileInputStream::Read(char* buffer, unsigned count) {
  if (file_ == nullptr || buffer == nullptr || count == 0) return 0;
  if (count > static_cast<unsigned>(INT_MAX)) count = INT_MAX;
  return static_cast<int>(fread(buffer, 1, count, file_));
}

bool FileInputStream::Close() {
  if (file_ == nullptr) return false;
  int result = fclose(file_);
  file_ = nullptr;
  open_ = false;
  return result == 0;
}

unsigned FileInputStream::Available() {
  if (file_ == nullptr) return 0;
  off_t position = ftello(file_);
  if (position < 0 || position >= size_) return 0;
  int64_t rest = size_ - static_cast<int64_t>(position);
  return rest > INT_MAX ? static_cast<unsigned>(INT_MAX) : static_cast<unsigned>(rest);
}

bool FileInputStream::Skip(unsigned count) {
  if (file_ == nullptr) return false;
  return fseeko(file_, static_cast<off_t>(count), SEEK_CUR) == 0;
}

long FileInputStream::Tell() {
  if (file_ == nullptr) return -1;
  off_t position = ftello(file_);
  if (position < 0) return -1;
  return position > LONG_MAX ? LONG_MAX : static_cast<long>(position);
}

bool FileInputStream::Seek(unsigned offset, int whence) {
  if (file_ == nullptr) return false;
  return fseeko(file_, static_cast<off_t>(offset), whence) == 0;
}

}  // namespace qro_base
