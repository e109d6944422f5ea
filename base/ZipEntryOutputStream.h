#pragma once

#include <string>
#include <vector>

#include "base/OutputStream.h"
#include "base/ZipEntry.h"

namespace qro_base {

// Writes a new zip archive with minizip: PutNextEntry starts an entry
// (deflated, stamped with the local time), Write adds bytes to it,
// CloseEntry ends it, Close finishes the archive. The destructor finishes
// the archive when Close was not called.
class ZipEntryOutputStream : public OutputStream {
 public:
  // Creates (or truncates) the archive at path; open when that succeeded.
  explicit ZipEntryOutputStream(const char* path);
  ZipEntryOutputStream(const ZipEntryOutputStream&) = delete;
  ZipEntryOutputStream& operator=(const ZipEntryOutputStream&) = delete;
  ~ZipEntryOutputStream() override;

  // Starts an entry named entry.GetName() (its size is not used); the
  // previous entry, if still open, is ended first. On failure prints
  // "error in opening <name> in zipfile" to standard output and gives false.
  // Names longer than 65535 bytes do not fit a zip header and fail.
  bool PutNextEntry(ZipEntry& entry);
  // Single bytes are not supported: writes nothing and gives false.
  bool Write(char c) override;
  // Adds count bytes to the current entry; false when count is 0, when no
  // entry is started or on a write error.
  bool Write(const char* buffer, unsigned count) override;
  bool CloseEntry();
  // Finishes the archive; false when it was finished already or on error.
  bool Close() override;

  // Copies of the entries started so far, in order.
  const std::vector<ZipEntry>& GetEntries() const { return entries_; }

 private:
  std::string path_;
  void* zip_ = nullptr;  // zipFile
  std::vector<ZipEntry> entries_;
  bool closed_ = false;
};

}  // namespace qro_base
