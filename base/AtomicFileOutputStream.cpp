#include "base/AtomicFileOutputStream.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/Log.h"

namespace qro_base {
namespace {

// Makes a rename inside `path`'s directory durable. Some file systems
// refuse to sync a directory; that is not a failure of the write.
void syncDirectoryOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

}  // namespace

std::string AtomicFileOutputStream::TemporaryPathFor(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  return path + kTemporarySuffix + std::to_string(getpid()) + "-" +
         std::to_string(counter.fetch_add(1, std::memory_order_relaxed));
}

AtomicFileOutputStream::AtomicFileOutputStream(const std::string& path)
    : AtomicFileOutputStream(path, TemporaryPathFor(path)) {}

AtomicFileOutputStream::AtomicFileOutputStream(const std::string& path,
                                               const std::string& temporaryPath)
    : FileOutputStream(temporaryPath, "w"), path_(path), temporaryPath_(temporaryPath) {
  if (!IsOpen()) Fail();
}

AtomicFileOutputStream::~AtomicFileOutputStream() {
  if (!finished_) {
    FileOutputStream::Close();
    std::remove(temporaryPath_.c_str());
  }
}

void AtomicFileOutputStream::Fail() {
  if (failed_) return;
  failed_ = true;
  error_ = errno != 0 ? errno : EIO;
}

bool AtomicFileOutputStream::Write(char c) {
  if (FileOutputStream::Write(c)) return true;
  Fail();
  return false;
}

bool AtomicFileOutputStream::Write(const char* buffer, unsigned count) {
  if (FileOutputStream::Write(buffer, count)) return true;
  Fail();
  return false;
}

bool AtomicFileOutputStream::Commit() {
  if (finished_) return false;
  if (!failed_ && !Sync()) Fail();
  if (!failed_ && !FileOutputStream::Close()) Fail();
  if (failed_) return Abandon();
  if (std::rename(temporaryPath_.c_str(), path_.c_str()) != 0) {
    Fail();
    return Abandon();
  }
  finished_ = true;
  syncDirectoryOf(path_);
  return true;
}

bool AtomicFileOutputStream::Abandon() {
  finished_ = true;
  FileOutputStream::Close();
  std::remove(temporaryPath_.c_str());
  logProfile("Cannot write %s: %s", path_.c_str(), std::strerror(error_));
  return false;
}

}  // namespace qro_base
