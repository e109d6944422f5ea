#pragma once

#include <string>

#include "common/registry/FontInfoFileExtracter.h"

namespace qro_base {
class ZipFile;
}

namespace qro_ni {

// Extracts files of the default package "qrfont.zip" (read with the zziplib
// back end) into <data directory>"FInfo/". The package stays open from
// construction until destruction or Reload(); closing it logs
// "Elapsed Time of ZipFile == %.3f sec".
//
// Extract() copies one entry to the file of the same name, replacing it as
// a whole (written beside it, synced, renamed over it: a kill or a full disk
// leaves the old file). It gives false, and writes nothing, when:
//   - the package is missing or is not a zip archive, or lacks the entry;
//   - the entry is empty or larger than kMaxEntrySize (a damaged or hostile
//     package is never trusted for the size of a buffer);
//   - the entry delivers fewer bytes than its size (a truncated cache file
//     would be misread later; an existing file is left as it was);
//   - the name could leave "FInfo/": absolute, a ".." component, or a "\".
// It also gives false, with a log line and the old file kept, when the
// output file cannot be created or the write fails. Folders are not created here: callers make sure that "FInfo/" and
// "FInfo/Fdata/" exist.
class DefaultFontInfoFileExtracter : public qro_common::FontInfoFileExtracter {
 public:
  // Entries above this size are refused.
  static constexpr unsigned kMaxEntrySize = 256u * 1024u * 1024u;

  // The data directory is the environment's file storage path (empty when
  // the host has not set one); the global environment is created when
  // missing. Both directories end in a path separator.
  explicit DefaultFontInfoFileExtracter(const std::string& packageDirectory);
  DefaultFontInfoFileExtracter(const std::string& dataDirectory,
                               const std::string& packageDirectory);
  ~DefaultFontInfoFileExtracter() override;

  // Opens <package directory>"qrfont.zip" and keeps it open.
  void Load();
  void Reload() override;

  // Copies the entry entryName to <data directory>"FInfo/"entryName.
  bool Extract(const char* entryName);

  // The table, and with it the named instances of its records when the
  // package has them.
  bool ExtractFontTable() override;
  bool ExtractFontChain() override;
  bool ExtractDefaultFontsList() override;
  bool ExtractScriptDefaultFontsList() override;
  // A language holding "/" or "\" (or null) is refused: the language text
  // must name a file inside "FInfo/".
  bool ExtractScriptDefaultFontsList(const char* language) override;
  void ExtractFontInfoData(int number) override;

  const std::string& GetDataDirectory() const { return dataDirectory_; }
  const std::string& GetPackageDirectory() const { return packageDirectory_; }

 private:
  std::string dataDirectory_;
  std::string packageDirectory_;
  qro_base::ZipFile* zip_ = nullptr;
};

}  // namespace qro_ni
