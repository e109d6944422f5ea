#include "base/File.h"

namespace qro_base {

File::File(const char* path, int mode) {
  if (path == nullptr) return;
  // "rw" is handed over as it stands.
  file_ = fopen(path, mode != 0 ? "rw" : "r");
  if (file_ == nullptr) return;
  // An empty file (and a directory, whose reads fail) is at its end at once.
  if (fgetc(file_) == EOF || fseek(file_, 0, SEEK_SET) != 0) {
    fclose(file_);
    file_ = nullptr;
    return;
  }
  open_ = true;
}

File::~File() {
  if (file_ != nullptr) fclose(file_);
}

unsigned File::Read(char* buffer, unsigned count) const {
  if (file_ == nullptr || buffer == nullptr) return 0;
  return static_cast<unsigned>(fread(buffer, 1, count, file_));
}

unsigned File::Write(const char* buffer, unsigned count) {
  if (file_ == nullptr || buffer == nullptr) return 0;
  return static_cast<unsigned>(fwrite(buffer, 1, count, file_));
}

int File::Seek(long offset) { return Seek(offset, SEEK_SET); }

int File::Seek(long offset, int whence) {
  if (file_ == nullptr) return -1;
  return fseek(file_, offset, whence);
}

long File::Tell() const {
  if (file_ == nullptr) return -1;
  return ftell(file_);
}

}  // namespace qro_base
