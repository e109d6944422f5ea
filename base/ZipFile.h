#pragma once

#include <ctime>
#include <vector>

#include "base/ZipEntry.h"
#include "base/ZipFileImpl.h"

namespace qro_base {

// A zip archive opened for reading: the list of its entries, built once at
// opening, and the back end that reads them (zziplib or minizip, chosen by
// the caller; both list the same entries). On destruction it logs the
// processor time it was open: "Elapsed Time of ZipFile == %.3f sec".
class ZipFile {
 public:
  // Opens path with ZZipFile when useZZip is true, else with MiniZipFile,
  // and lists its entries. A missing or unreadable archive has no entries.
  ZipFile(const char* path, bool useZZip);
  ZipFile(const ZipFile&) = delete;
  ZipFile& operator=(const ZipFile&) = delete;
  virtual ~ZipFile();

  // The first entry whose name equals name byte for byte; nullptr if none.
  // The entry belongs to the ZipFile.
  ZipEntry* GetEntry(const char* name) const;
  const std::vector<ZipEntry*>& GetEntries() const { return entries_; }
  // The back end, for the entry streams. It reads one entry at a time.
  ZipFileImpl* GetImpl() const { return impl_; }

 private:
  ZipFileImpl* impl_;
  std::vector<ZipEntry*> entries_;
  clock_t openClock_;
  clock_t closeClock_ = 0;
};

}  // namespace qro_base
