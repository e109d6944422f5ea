#include "base/ZipFile.h"

#include "base/Log.h"
#include "base/MiniZipFile.h"
#include "base/ZZipFile.h"

namespace qro_base {

ZipFile::ZipFile(const char* path, bool useZZip)
    : impl_(nullptr), openClock_(clock()) {
  if (useZZip) {
    impl_ = new ZZipFile(path);
  } else {
    impl_ = new MiniZipFile(path);
  }
  impl_->GetEntries(entries_);
}

ZipFile::~ZipFile() {
  for (ZipEntry* entry : entries_) delete entry;
  entries_.clear();
  delete impl_;
  impl_ = nullptr;
  closeClock_ = clock();
  // clock() counts microseconds of processor time.
  logProfile("Elapsed Time of ZipFile == %.3f sec",
             static_cast<double>(closeClock_ - openClock_) / 1000000.0);
}

ZipEntry* ZipFile::GetEntry(const char* name) const {
  if (name == nullptr) return nullptr;
  for (ZipEntry* entry : entries_) {
    if (entry->GetName() == name) return entry;
  }
  return nullptr;
}

}  // namespace qro_base
