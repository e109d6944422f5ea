#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/registry/FontTable.h"

namespace qro_common {
class FontFileAnalyzer;
class FontInfoSerializer;
}  // namespace qro_common

namespace kelfont_tool {

// Builds the default font-data package "qrfont.zip" that an app ships:
//
//   Ftable     the font information table, one record per analysed face,
//              with no file path and no font directory times, so that a
//              device always scans its own fonts once and knows these
//              faces by their metrics only;
//   Fdata/N    the advances and kerning of the face with info index N;
//   fc, df, sf and sf_<language>
//              the list files, copied byte for byte.
//
// Names longer than the table's two-digit lengths can announce (255
// bytes) are cut at a character boundary, with a warning: written whole
// they would spoil their record.
//
// Faces are analysed the way the font manager's scan does it, in the same
// order (directories in the order given, files in directory-listing order,
// faces of a collection in index order, subfolders not entered), so that a
// manager starting from the package alone hands out the same font indexes
// and advances as one that scanned the font files. Per-character data is
// written to a private staging folder as soon as a face is analysed and
// dropped from memory.
class PackageWriter {
 public:
  // Called once per face analysed: faces done, faces expected so far (a
  // collection raises the count when it is opened), the file.
  using Progress =
      std::function<void(std::size_t done, std::size_t total, const std::string& file)>;

  PackageWriter();
  ~PackageWriter();
  PackageWriter(const PackageWriter&) = delete;
  PackageWriter& operator=(const PackageWriter&) = delete;

  void SetProgress(Progress progress) { progress_ = std::move(progress); }

  // Analyses every font file directly inside each directory. False, with
  // Error() set, when a directory cannot be listed or the staging folder
  // cannot be written; files FreeType cannot read (or without an OS/2
  // table) are skipped with a warning.
  bool AnalyzeDirectories(const std::vector<std::string>& directories);
  // Takes the list files "fc", "df", "sf" (all three required) and every
  // "sf_<language>" from `directory`. False, with Error() set, when one is
  // missing, unreadable, empty or malformed; see FontLists.
  bool ReadLists(const std::string& directory);
  // Writes the package to `path` (through "<path>.partial", renamed at the
  // end, so a failed run leaves no half package). False with Error() set.
  bool Write(const std::string& path);

  const qro_common::FontTable& GetTable() const { return table_; }
  std::size_t GetFileCount() const { return fileCount_; }
  // Names of the package entries that Write() puts in, in order.
  std::vector<std::string> GetEntryNames() const;
  const std::vector<std::string>& GetWarnings() const { return warnings_; }
  // "<list>: <name>" for every list name that no analysed face has: fonts
  // that documents ask for, or that are used where installed.
  std::vector<std::string> GetUnknownListNames() const;
  const std::string& GetError() const { return error_; }

 private:
  bool EnsureStaging();
  bool AnalyzeFile(qro_common::FontFileAnalyzer& analyzer, const std::string& path,
                   std::size_t& expected);
  // One face, as the scan does it (`face` as FreeType takes it: a named
  // instance in the upper 16 bits); false when the face cannot be opened.
  bool AnalyzeFace(qro_common::FontFileAnalyzer& analyzer, const std::string& path, int face);
  bool StoreData(qro_common::FontInfo& info);
  bool Fail(const std::string& message);

  qro_common::FontTable table_;
  std::unique_ptr<qro_common::FontInfoSerializer> serializer_;
  std::string staging_;  // ends in "/"; empty until needed
  std::vector<std::pair<std::string, std::string>> lists_;  // entry name, bytes
  std::vector<std::string> warnings_;
  std::vector<std::pair<std::string, std::string>> listNames_;  // list, font name
  std::string error_;
  std::size_t fileCount_ = 0;
  std::size_t facesDone_ = 0;
  bool dataFailed_ = false;
  Progress progress_;
};

}  // namespace kelfont_tool
