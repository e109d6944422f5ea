#include "base/AtomicFileOutputStream.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/Log.h"

namespace qro_base {
namespace {

// syncfs(2) through its system call number: older C libraries (Android
// before API level 28) do not declare it.
int syncFileSystem(int fd) { return static_cast<int>(syscall(SYS_syncfs, fd)); }

int openDirectoryOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

}  // namespace

std::string AtomicFileOutputStream::TemporaryPathFor(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  return path + kTemporarySuffix + std::to_string(getpid()) + "-" +
         std::to_string(counter.fetch_add(1, std::memory_order_relaxed));
}

AtomicFileOutputStream::AtomicFileOutputStream(const std::string& path, Durability durability)
    : AtomicFileOutputStream(path, TemporaryPathFor(path), durability) {}

AtomicFileOutputStream::AtomicFileOutputStream(const std::string& path,
                                               const std::string& temporaryPath,
                                               Durability durability)
    : FileOutputStream(temporaryPath, "w"),
      path_(path),
      temporaryPath_(temporaryPath),
      durability_(durability) {
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
  if (!failed_ && durability_ == Durability::kFile && !Sync()) Fail();
  if (!failed_ && !FileOutputStream::Close()) Fail();
  // The folder's descriptor serves the file-system sync before the rename
  // and the folder's sync after it. Some file systems refuse to sync a
  // folder; that is not a failure of the write.
  const int folder = durability_ == Durability::kDeferred ? -1 : openDirectoryOf(path_);
  if (!failed_ && durability_ == Durability::kFileSystem &&
      (folder < 0 || syncFileSystem(folder) != 0)) {
    sync();  // a kernel without syncfs: every file system, then
  }
  if (failed_) {
    if (folder >= 0) close(folder);
    return Abandon();
  }
  if (std::rename(temporaryPath_.c_str(), path_.c_str()) != 0) {
    Fail();
    if (folder >= 0) close(folder);
    return Abandon();
  }
  finished_ = true;
  if (folder >= 0) {
    fsync(folder);
    close(folder);
  }
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
