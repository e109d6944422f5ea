#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/FileInputStream.h"
#include "base/FileOutputStream.h"
#include "base/NonCopyable.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"

namespace qro_common {

// The on-disk cache of font analysis under a base directory B (a prefix,
// normally ending in "/"):
//
//   B + "FInfo/Ftable"    text table: version, font directory times,
//                         default font indexes, one record per FontInfo
//   B + "FInfo/Fdata/N"   binary data of the info with info index N: its
//                         CharMetricsInfo, then its KerningInfo
//   B + "FInfo/fi"        binary DefaultFontInfo
//   B + "FInfo/vi"        text: the named instance of each record that is
//                         a named instance of a variable face (below)
//
// Every file is replaced as a whole (written beside the old one, synced,
// renamed over it): after a kill or a power loss a reader finds either the
// old or the new file, complete.
//
// The table is ASCII. Lengths are lower-case hex of fixed width (Size1
// "%1x", Size2 "%02x", Size4 "%04x"); numbers are decimal ("%d", "%u"),
// 32-bit values printed signed. A section is a Size4 length and that many
// bytes. Readers check every length against what is left and never read
// outside their buffer; damaged data files are rejected as a whole.
//
// "vi" is written with the table, before it (the table's sync commits
// both), and only when a record has a named instance; the table stays as
// it was for readers that know nothing of instances. ASCII lines, numbers
// decimal, fields separated by one space, each line ending in a line feed:
//
//   vi 1 <number of records in the table>
//   <record number> <face index> <named instance>     one line a record
//                                                      with an instance,
//                                                      ascending
//
// A file that is missing, does not parse as a whole, or does not go with
// the table read (another record count, a record of another face index)
// gives no instance at all.
class FontInfoSerializer : public qro_base::NonCopyable {
 public:
  // Files larger than this are taken as damage and not read.
  static constexpr unsigned kMaxFileSize = 64u << 20;
  // How much of the table ReadHeader() looks at.
  static constexpr unsigned kHeaderSize = 1000;

  // Creates B, B + "FInfo/" and B + "FInfo/Fdata/" when missing and notes
  // whether the table existed.
  explicit FontInfoSerializer(const std::string& basePath);
  ~FontInfoSerializer();

  // --- The table ---

  // Reads the version section and, when the version matches, the directory
  // time section from the first kHeaderSize bytes of the table. True only
  // when both were read and the version matched; false for a missing or
  // empty table.
  bool ReadHeader();
  // Compares the version text behind the section's Size2 length L with the
  // first L bytes of the current version (so "00" matches). Stores and
  // returns the result.
  bool CheckTableVersion(std::string& versionSection);
  // Reads the directory count as two decimal digits (a count written as
  // "0c" reads as 0), then up to that many Size2 time fields; stops at a
  // field that is empty or does not fit. Appends to the directory times.
  void BuildFontDirectoryLastModifiedTimeList(std::string& section);
  // True when the number of stored times differs from the number of
  // directories, or an existing directory's modification time ("%x %X" of
  // local time) differs from the stored one. Directories that cannot be
  // examined are skipped.
  bool IsModified(std::vector<const std::string*>& directories) const;

  // Reads every record of the table into new infos appended to `list` (the
  // caller owns them), with their named instances from "vi". False for a
  // missing or empty table, a version mismatch, or when no record was read.
  bool Read(std::vector<FontInfo*>& list);
  // The same from an open table stream.
  bool MakeFontInfoList(qro_base::FileInputStream& in, std::vector<FontInfo*>& list);
  // Parses one record body into `info`. False, leaving `info` unchanged,
  // when the body is shorter than 4 bytes or a field does not fit in it.
  bool Read(FontInfo& info, std::string& record);
  // Replaces the default font indexes by the section's five values (0 for
  // a value that cannot be read).
  void ReadDefaultFontIndex(std::string& section);

  // Replaces the table with the records of `list` numbered by position and
  // the times of `directories`. The new table is written beside the old one
  // and renamed over it once it is on disk, so a write cut short leaves the
  // old table whole. False (and a log line) when it could not be written;
  // the old table then stays.
  bool Write(std::vector<FontInfo*>& list, std::vector<const std::string*>& directories);
  // Appends the record body of `info` with record number `number`.
  bool Write(FontInfo& info, std::string& out, int number);
  // Makes the record of `info` fit the table's fixed-width lengths, so that
  // it reads back as written: names longer than 255 bytes, and localized
  // names whose entry (tag and name) would pass 255 bytes, are cut at a
  // UTF-8 character boundary (a font name taken from a localized name is
  // cut as that name is, so that the font is still found by it). False when it still does not fit (more than
  // 255 localized names, a file path or record above 65535 bytes). Write()
  // does not check; the scan fits every record it takes from a font file.
  bool FitToTable(FontInfo& info);
  // The three leading sections, each with its Size4 length; false when the
  // stream refused a byte.
  bool WriteTableVersion(qro_base::FileOutputStream& out);
  bool WriteFontDirectoryLastModifiedTimeList(std::vector<const std::string*>& directories,
                                              qro_base::FileOutputStream& out);
  bool WriteDefaultFontIndex(qro_base::FileOutputStream& out);

  // --- Data files ---

  // Bit 0 of the flags word of a data file's extra part: the kerning part
  // before it stands in for pairs left to the face's first kerning query.
  static constexpr unsigned kKerningLeftToFirstUse = 1;

  // Loads the character metrics and kerning of `info` from its data file.
  // False, leaving `info` unchanged, when the file is missing, empty, too
  // large or damaged. Otherwise the metrics are replaced (by none when all
  // 128 slots are empty), the kerning is replaced when the file has a
  // kerning part, and the result is whether either was loaded.
  bool ReadData(FontInfo& info);
  // Replaces the data file of `info` as the table is replaced: its
  // character metrics, then its kerning, each when present. True without a
  // file when it has neither. False (and a log line) when the file could not
  // be written; the old file then stays.
  bool WriteData(FontInfo& info);
  // Adds the kerning of `info` to its data file when that file holds
  // per-character data and no kerning part, leaving the bytes before it as
  // they are. False (the file unchanged) otherwise, and when `info` has no
  // kerning or the file could not be written.
  bool AppendKerning(const FontInfo& info);
  // Whether the data file of `info` exists.
  bool IsDataFile(const FontInfo& info);
  // Appends B + "FInfo/Fdata/" + the decimal info index to `path`.
  void MakeFontInfoDataFilePath(const FontInfo& info, std::string& path) const;

  // Reads the "fi" file; false when it is missing, empty, too large,
  // damaged (`out` is then empty) or has no range.
  bool ReadDefaultFontInfo(DefaultFontInfo& out);
  // Replaces the "fi" file as the table is replaced; false (and a log line)
  // when it could not be written, the old file staying.
  bool WriteDefaultFontInfo(DefaultFontInfo& in);
  // With "fi", ReadDefaultFontInfo() reads and WriteDefaultFontInfo()
  // writes (or removes, when there are none) the "fx" file: the fonts of
  // the code points no slot holds. Its first eight bytes are a fingerprint
  // of the "fi" bytes it was written with; read with other "fi" bytes, or
  // damaged, it gives none.
  std::string GetExtraDefaultFontsPath() const;

  // --- Primitives of the table text ---

  // Exactly 2 or 4 bytes of "%02x" / "%04x" of `value`.
  bool WriteSize2(qro_base::FileOutputStream& out, unsigned value);
  bool WriteSize4(qro_base::FileOutputStream& out, unsigned value);
  void WriteUInt8(std::string& out, unsigned char value);    // "%d"
  void WriteInt16(std::string& out, short value);            // "%d"
  void WriteUInt16(std::string& out, unsigned short value);  // "%u"
  void WriteUInt32(std::string& out, unsigned value);        // "%d" of the 32 bits
  void WriteSize1(std::string& out, unsigned value);         // "%1x"
  void WriteSize2(std::string& out, unsigned value);         // "%02x"
  void WriteSize4(std::string& out, unsigned value);         // "%04x"
  // Converts `length` bytes at *cursor as decimal text (leading digits, 0
  // when none; a 32-bit result, so "-2147483648" and "4294967295" give the
  // same bits back) and advances *cursor by `length`. Only the first 255
  // bytes are looked at. The caller makes sure the bytes exist.
  int ReadInt(const char** cursor, int length);

  // --- State ---

  bool IsTableExists() const { return tableExists_; }
  bool IsVersionMatched() const { return versionMatched_; }
  // The five indexes of the last default-font-index section read (or set);
  // null when none.
  const std::vector<int>* GetDefaultFontIndexes() const { return defaultFontIndexes_.get(); }
  void SetDefaultFontIndexes(const std::vector<int>& indexes);
  // Directory times read so far, in file order.
  const std::vector<std::string>& GetFontDirectoryTimes() const { return directoryTimes_; }
  const std::string& GetBasePath() const { return basePath_; }
  // B + "FInfo/Ftable", B + "FInfo/fi" and B + "FInfo/vi".
  std::string GetTablePath() const;
  std::string GetDefaultFontInfoPath() const;
  std::string GetInstanceTablePath() const;

 private:
  // Formats the modification time of `directory` into the time buffer;
  // false when it cannot be examined or is not a directory.
  bool FormatDirectoryTime(const std::string& directory) const;
  // Reads the version and directory sections of a table in memory,
  // advancing `cursor`; true when both were read and the version matched.
  bool ReadLeadingSections(const char*& cursor, const char* end);
  // Reads a length of `digits` hex digits and a decimal number of that
  // length; false when either does not fit before `end`.
  bool ReadNumberField(const char*& cursor, const char* end, int digits, int& value);
  // Appends a Size2-length field holding `text`.
  void AppendField2(std::string& out, const std::string& text);
  // Writes "vi" for the records of `list` (removes it when none has a named
  // instance); false when it could not be written.
  bool WriteInstances(const std::vector<FontInfo*>& list);
  // Gives the infos of `list` from `first` on their named instances from
  // "vi", for a table of `recordCount` records.
  void ReadInstances(std::vector<FontInfo*>& list, std::size_t first, int recordCount);

  bool tableExists_ = false;
  bool versionMatched_ = true;
  std::unique_ptr<std::vector<int>> defaultFontIndexes_;
  std::unique_ptr<char[]> timeBuffer_;
  std::unique_ptr<char[]> numberBuffer_;
  std::string basePath_;
  std::vector<std::string> directoryTimes_;
  std::string scratch_;
  // Record sections in the table last read by MakeFontInfoList().
  int recordCount_ = 0;
};

}  // namespace qro_common
