#pragma once

#include <vector>

#include "base/ZipEntry.h"

namespace qro_base {

// A zip reading back end. It lists the archive's entries and has at most one
// entry open for reading at a time; opening another entry ends the previous
// one. A back end never delivers more bytes than remain in the entry it has
// open, whatever count it is asked for, so a buffer sized by the entry's
// remaining size cannot be overrun.
class ZipFileImpl {
 public:
  ZipFileImpl() = default;
  ZipFileImpl(const ZipFileImpl&) = delete;
  ZipFileImpl& operator=(const ZipFileImpl&) = delete;
  virtual ~ZipFileImpl();

  // Appends a new ZipEntry (owned by the caller) for each entry of the
  // archive, in archive order. False when the archive could not be opened.
  virtual bool GetEntries(std::vector<ZipEntry*>& entries) = 0;
  // Opens the entry with exactly this name for reading.
  virtual bool OpenEntry(const char* name) = 0;
  // Reads up to count bytes of the open entry; the number read, 0 at its end
  // or when nothing can be read, negative on a read error.
  virtual int ReadEntry(char* buffer, unsigned count) = 0;
  // Ends reading the open entry; false when none is open or on an error.
  virtual bool CloseEntry() = 0;
};

}  // namespace qro_base
