#include "base/ZipEntryInputStream.h"

namespace qro_base {

ZipEntryInputStream::ZipEntryInputStream(ZipFile& zip, const char* name) {
  ZipEntry* entry = zip.GetEntry(name);
  if (entry == nullptr) return;
  impl_ = zip.GetImpl();
  // When the back end cannot open the entry, reads report its failure.
  impl_->OpenEntry(name);
  size_ = static_cast<uint32_t>(entry->GetSize());
  remaining_ = size_;
  open_ = true;
}

ZipEntryInputStream::~ZipEntryInputStream() = default;

int ZipEntryInputStream::Read() {
  if (!open_ || remaining_ == 0) return -1;
  int read = impl_->ReadEntry(reinterpret_cast<char*>(&byte_), 1);
  if (read != 1) return -1;
  --remaining_;
  return byte_;
}

int ZipEntryInputStream::Read(char* buffer, unsigned count) {
  if (!open_ || remaining_ == 0) return -1;
  int read = impl_->ReadEntry(buffer, count);
  if (read > 0) {
    unsigned delivered = static_cast<unsigned>(read);
    remaining_ = delivered < remaining_ ? remaining_ - delivered : 0;
  }
  return read;
}

bool ZipEntryInputStream::Close() {
  if (!open_) return false;
  open_ = false;
  remaining_ = 0;
  return size_ == 0 || impl_->CloseEntry();
}

unsigned ZipEntryInputStream::Available() { return open_ ? remaining_ : 0; }

bool ZipEntryInputStream::Skip(unsigned) { return false; }

}  // namespace qro_base
