#pragma once
// Lowers the process's file size limit while it lives, so that a write
// past `bytes` fails with EFBIG as a write on a full disk fails with
// ENOSPC (SIGXFSZ is ignored meanwhile).

#include <signal.h>
#include <sys/resource.h>

namespace kelfont_test {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &old_);
    oldHandler_ = signal(SIGXFSZ, SIG_IGN);
    rlimit lowered = old_;
    lowered.rlim_cur = bytes;
    ok_ = setrlimit(RLIMIT_FSIZE, &lowered) == 0;
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    signal(SIGXFSZ, oldHandler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  bool ok() const { return ok_; }

 private:
  rlimit old_{};
  void (*oldHandler_)(int) = nullptr;
  bool ok_ = false;
};

}  // namespace kelfont_test
