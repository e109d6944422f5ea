#include "common/font_info/FontInfoSerializer.h"

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>

#include "base/AtomicFileOutputStream.h"
#include "base/ByteOrder.h"
#include "base/FileUtils.h"
#include "base/Log.h"
#include "base/MemoryInputStream.h"
#include "base/StringOutputStream.h"
#include "common/analysis/LangCode.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/ExtraCharMetrics.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/DataFileNames.h"

namespace qro_common {

namespace {

constexpr size_t kTimeBufferSize = 65536;
constexpr size_t kNumberBufferSize = 256;
constexpr int kDefaultFontIndexCount = 5;
constexpr int kPanoseFieldCount = 10;

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 0;
}

// A length of `digits` hex digits; false (value 0) when fewer bytes remain.
bool readHex(const char*& cursor, const char* end, int digits, int& value) {
  value = 0;
  if (end - cursor < digits) return false;
  for (int i = 0; i < digits; ++i) value = value * 16 + hexDigit(cursor[i]);
  cursor += digits;
  return true;
}

// `length` bytes into `out`; false when they do not fit before `end`.
bool readText(const char*& cursor, const char* end, int length, std::string& out) {
  if (length < 0 || end - cursor < length) return false;
  out.assign(cursor, static_cast<size_t>(length));
  cursor += length;
  return true;
}

// A Size2 (or Size4) length and that many bytes.
bool readField(const char*& cursor, const char* end, int digits, std::string& out) {
  int length = 0;
  return readHex(cursor, end, digits, length) && readText(cursor, end, length, out);
}

// A section: a Size4 length and that many bytes, as [begin, end).
bool readSection(const char*& cursor, const char* end, const char*& sectionBegin,
                 const char*& sectionEnd) {
  int length = 0;
  if (!readHex(cursor, end, 4, length) || end - cursor < length) return false;
  sectionBegin = cursor;
  sectionEnd = cursor + length;
  cursor = sectionEnd;
  return true;
}

// The whole file at `path` when it opens, is not empty and is not larger
// than the limit.
bool readWholeFile(const std::string& path, std::vector<char>& bytes) {
  qro_base::FileInputStream in(path);
  if (!in.IsOpen()) return false;
  unsigned size = in.Available();
  bool ok = size > 0 && size <= FontInfoSerializer::kMaxFileSize;
  if (ok) {
    bytes.resize(size);
    ok = in.Read(bytes.data(), size) == static_cast<int>(size);
  }
  in.Close();
  return ok;
}

// A file whose content could not be made whole is not replaced: the
// temporary file goes with its stream, and the old file stays.
bool refused(const std::string& path) {
  qro_base::logProfile("Cannot write %s: %s", path.c_str(), "incomplete content");
  return false;
}

// The fingerprint of the "fi" bytes that an "fx" file goes with: FNV-1a's
// step over 8-byte little-endian words (the last one zero-padded), then
// the byte count mixed in. A word at a time, it costs a warm start far less
// than a byte-wise checksum of the quarter megabyte.
std::uint64_t fingerprint(const char* bytes, std::size_t size) {
  std::uint64_t hash = 14695981039346656037ull;
  for (std::size_t i = 0; i < size; i += 8) {
    std::uint64_t value = 0;
    if (size - i >= 8) {
      std::memcpy(&value, bytes + i, 8);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
      value = __builtin_bswap64(value);
#endif
    } else {
      for (std::size_t b = size; b-- > i;) value = (value << 8) | static_cast<unsigned char>(bytes[b]);
    }
    hash = (hash ^ value) * 1099511628211ull;
  }
  return hash ^ size;
}

void appendFingerprint(std::string& bytes, std::uint64_t value) {
  for (int i = 0; i < 8; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
}

std::unique_ptr<std::string> optionalName(const std::string& text) {
  return text.empty() ? nullptr : std::unique_ptr<std::string>(new std::string(text));
}

}  // namespace

FontInfoSerializer::FontInfoSerializer(const std::string& basePath)
    : timeBuffer_(new char[kTimeBufferSize]()),
      numberBuffer_(new char[kNumberBufferSize]()),
      basePath_(basePath) {
  scratch_.reserve(16);
  // An empty base path names no storage folder: nothing is created (the
  // process's working directory is not the library's to fill), and only
  // files that are already there can be read.
  std::string storage = basePath_ + getFontInfoStorageName();
  if (!basePath_.empty()) {
    qro_base::confirmFilePathExists(basePath_.c_str());
    qro_base::confirmFilePathExists(storage.c_str());
  }
  tableExists_ = qro_base::isFileExists(GetTablePath().c_str());
  if (!basePath_.empty()) {
    qro_base::confirmFilePathExists((storage + getFontInfoDataDirectoryName()).c_str());
  }
}

FontInfoSerializer::~FontInfoSerializer() = default;

std::string FontInfoSerializer::GetTablePath() const {
  return basePath_ + getFontInfoStorageName() + getFontInfoTableName();
}

std::string FontInfoSerializer::GetDefaultFontInfoPath() const {
  return basePath_ + getFontInfoStorageName() + getDefaultFontInfoFileName();
}

std::string FontInfoSerializer::GetInstanceTablePath() const {
  return basePath_ + getFontInfoStorageName() + getFontInstanceTableName();
}

void FontInfoSerializer::SetDefaultFontIndexes(const std::vector<int>& indexes) {
  defaultFontIndexes_.reset(new std::vector<int>(indexes));
}

// --- Primitives ---

bool FontInfoSerializer::WriteSize2(qro_base::FileOutputStream& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%02x", value);
  return out.Write(numberBuffer_.get(), 2);
}

bool FontInfoSerializer::WriteSize4(qro_base::FileOutputStream& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%04x", value);
  return out.Write(numberBuffer_.get(), 4);
}

void FontInfoSerializer::WriteUInt8(std::string& out, unsigned char value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%d", value);
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteInt16(std::string& out, short value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%d", value);
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteUInt16(std::string& out, unsigned short value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%u", static_cast<unsigned>(value));
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteUInt32(std::string& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%d", static_cast<int>(value));
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteSize1(std::string& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%1x", value);
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteSize2(std::string& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%02x", value);
  out += numberBuffer_.get();
}

void FontInfoSerializer::WriteSize4(std::string& out, unsigned value) {
  std::snprintf(numberBuffer_.get(), kNumberBufferSize, "%04x", value);
  out += numberBuffer_.get();
}

int FontInfoSerializer::ReadInt(const char** cursor, int length) {
  if (cursor == nullptr || *cursor == nullptr || length <= 0) return 0;
  size_t copied = static_cast<size_t>(length) < kNumberBufferSize ? static_cast<size_t>(length)
                                                                  : kNumberBufferSize - 1;
  std::memcpy(numberBuffer_.get(), *cursor, copied);
  numberBuffer_[copied] = '\0';
  *cursor += length;
  long long value = std::strtoll(numberBuffer_.get(), nullptr, 10);
  return static_cast<int>(static_cast<std::uint32_t>(static_cast<unsigned long long>(value)));
}

bool FontInfoSerializer::ReadNumberField(const char*& cursor, const char* end, int digits,
                                         int& value) {
  int length = 0;
  if (!readHex(cursor, end, digits, length) || end - cursor < length) return false;
  value = ReadInt(&cursor, length);
  return true;
}

void FontInfoSerializer::AppendField2(std::string& out, const std::string& text) {
  WriteSize2(out, static_cast<unsigned>(text.size()));
  out += text;
}

// --- Header ---

bool FontInfoSerializer::CheckTableVersion(std::string& versionSection) {
  const char* cursor = versionSection.data();
  const char* end = cursor + versionSection.size();
  int length = 0;
  if (!readHex(cursor, end, 2, length)) {
    versionMatched_ = false;
    return false;
  }
  const char* version = getFontInfoVersion();
  bool equal = true;
  for (int i = 0; i < length; ++i) {
    char stored = cursor + i < end ? cursor[i] : '\0';
    if (version[i] != stored) {
      equal = false;
      break;
    }
    if (stored == '\0') break;
  }
  versionMatched_ = equal;
  return equal;
}

void FontInfoSerializer::BuildFontDirectoryLastModifiedTimeList(std::string& section) {
  const char* cursor = section.data();
  const char* end = cursor + section.size();
  if (end - cursor < 2) return;
  // The count is written in hex but read as decimal: keep it so.
  int count = ReadInt(&cursor, 2);
  for (int i = 0; i < count; ++i) {
    int length = 0;
    std::string time;
    if (!readHex(cursor, end, 2, length) || length < 1 || !readText(cursor, end, length, time)) {
      break;
    }
    directoryTimes_.push_back(time);
  }
}

bool FontInfoSerializer::ReadLeadingSections(const char*& cursor, const char* end) {
  const char* begin = nullptr;
  const char* sectionEnd = nullptr;
  if (!readSection(cursor, end, begin, sectionEnd)) return false;
  std::string section(begin, sectionEnd);
  if (!CheckTableVersion(section)) return false;
  if (!readSection(cursor, end, begin, sectionEnd)) return false;
  section.assign(begin, sectionEnd);
  BuildFontDirectoryLastModifiedTimeList(section);
  return true;
}

bool FontInfoSerializer::ReadHeader() {
  qro_base::FileInputStream in(GetTablePath());
  if (!in.IsOpen()) return false;
  unsigned size = in.Available();
  if (size > kHeaderSize) size = kHeaderSize;
  std::vector<char> bytes(size);
  int got = size > 0 ? in.Read(bytes.data(), size) : 0;
  in.Close();
  if (got <= 0) return false;
  const char* cursor = bytes.data();
  return ReadLeadingSections(cursor, cursor + got);
}

bool FontInfoSerializer::FormatDirectoryTime(const std::string& directory) const {
  struct stat info;
  if (lstat(directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return false;
  struct tm local;
  time_t modified = info.st_mtime;
  if (localtime_r(&modified, &local) == nullptr) return false;
  if (std::strftime(timeBuffer_.get(), kTimeBufferSize, "%x %X", &local) == 0) {
    timeBuffer_[0] = '\0';
  }
  return true;
}

bool FontInfoSerializer::IsModified(std::vector<const std::string*>& directories) const {
  if (directoryTimes_.size() != directories.size()) return true;
  for (size_t i = 0; i < directories.size(); ++i) {
    if (directories[i] == nullptr || !FormatDirectoryTime(*directories[i])) continue;
    const std::string& stored = directoryTimes_[i];
    if (std::strncmp(timeBuffer_.get(), stored.c_str(), stored.size()) != 0) return true;
  }
  return false;
}

// --- Table ---

bool FontInfoSerializer::Read(std::vector<FontInfo*>& list) {
  qro_base::FileInputStream in(GetTablePath());
  if (!in.IsOpen()) return false;
  const std::size_t first = list.size();
  bool result = MakeFontInfoList(in, list);
  in.Close();
  if (result) ReadInstances(list, first, recordCount_);
  return result;
}

bool FontInfoSerializer::MakeFontInfoList(qro_base::FileInputStream& in,
                                          std::vector<FontInfo*>& list) {
  // True only for records read here, not for what the caller's list held.
  unsigned size = in.Available();
  if (size == 0 || size > kMaxFileSize) return false;
  std::unique_ptr<char[]> bytes(new char[size + 1]);
  int got = in.Read(bytes.get(), size);
  if (got <= 0) return false;
  const char* cursor = bytes.get();
  const char* end = cursor + got;
  const char* begin = nullptr;
  const char* sectionEnd = nullptr;
  if (!ReadLeadingSections(cursor, end)) return false;
  if (!readSection(cursor, end, begin, sectionEnd)) return false;
  std::string section(begin, sectionEnd);
  ReadDefaultFontIndex(section);
  const std::size_t before = list.size();
  recordCount_ = 0;
  while (readSection(cursor, end, begin, sectionEnd)) {
    ++recordCount_;
    section.assign(begin, sectionEnd);
    std::unique_ptr<FontInfo> info(new FontInfo());
    if (Read(*info, section)) list.push_back(info.release());
  }
  return list.size() > before;
}

void FontInfoSerializer::ReadDefaultFontIndex(std::string& section) {
  const char* cursor = section.data();
  const char* end = cursor + section.size();
  std::unique_ptr<std::vector<int>> indexes(new std::vector<int>(kDefaultFontIndexCount, 0));
  for (int i = 0; i < kDefaultFontIndexCount; ++i) {
    if (!ReadNumberField(cursor, end, 2, (*indexes)[static_cast<size_t>(i)])) break;
  }
  defaultFontIndexes_ = std::move(indexes);
}

bool FontInfoSerializer::Read(FontInfo& info, std::string& record) {
  if (record.size() < 4) return false;
  const char* cursor = record.data();
  const char* end = cursor + record.size();

  int number = 0;
  int faceIndex = 0;
  int fileSize = 0;
  std::string fontName;
  std::string familyName;
  std::string styleName;
  if (!ReadNumberField(cursor, end, 2, number) || !ReadNumberField(cursor, end, 2, faceIndex) ||
      !ReadNumberField(cursor, end, 2, fileSize) || !readField(cursor, end, 2, fontName) ||
      !readField(cursor, end, 2, familyName) || !readField(cursor, end, 2, styleName) ||
      end - cursor < 3) {
    return false;
  }
  bool persisted = ReadInt(&cursor, 1) == 1;
  bool verticalMetrics = ReadInt(&cursor, 1) == 1;
  bool cjk = ReadInt(&cursor, 1) == 1;

  // Blocks: a length and a body that must lie inside the record; their
  // fields must lie inside the block.
  const char* block = nullptr;
  const char* blockEnd = nullptr;
  auto takeBlock = [&](int digits) {
    int length = 0;
    if (!readHex(cursor, end, digits, length) || end - cursor < length) return false;
    block = cursor;
    blockEnd = cursor + length;
    cursor = blockEnd;
    return true;
  };

  std::unique_ptr<Panose> panose;
  if (!takeBlock(2)) return false;
  if (block != blockEnd) {
    panose.reset(new Panose());
    for (int i = 0; i < kPanoseFieldCount; ++i) {
      int value = 0;
      if (!ReadNumberField(block, blockEnd, 1, value)) return false;
      panose->Set(i, static_cast<unsigned char>(value));
    }
  }

  std::unique_ptr<Sig> sig;
  if (!takeBlock(2)) return false;
  if (block != blockEnd) {
    int values[6] = {};
    for (int& value : values) {
      if (!ReadNumberField(block, blockEnd, 1, value)) return false;
    }
    auto word = [&](int i) { return static_cast<unsigned>(values[i]); };
    sig.reset(new Sig(word(2), word(3), word(4), word(5), word(0), word(1)));
  }

  std::unique_ptr<FontMetrics> metrics;
  if (!takeBlock(2)) return false;
  if (block != blockEnd) {
    int values[4] = {};
    for (int& value : values) {
      if (!ReadNumberField(block, blockEnd, 1, value)) return false;
    }
    metrics.reset(new FontMetrics(static_cast<short>(values[1]), static_cast<short>(values[2]),
                                  static_cast<short>(values[3]),
                                  static_cast<unsigned short>(values[0])));
  }

  std::vector<std::pair<std::string, std::string>> localizedNames;
  if (!takeBlock(4)) return false;
  if (block != blockEnd) {
    if (blockEnd - block < 2) return false;
    // The count is written in hex but read as two decimal digits: "0c"
    // reads as 0. Keep it so.
    int count = ReadInt(&block, 2);
    for (int i = 0; i < count; ++i) {
      int ignoredEntryLength = 0;
      std::string tag;
      std::string name;
      if (!readHex(block, blockEnd, 2, ignoredEntryLength) || !readField(block, blockEnd, 2, tag) ||
          !readField(block, blockEnd, 2, name)) {
        return false;
      }
      localizedNames.emplace_back(tag, name);
    }
  }

  std::string filePath;
  if (!readField(cursor, end, 4, filePath)) return false;

  info.SetInfoIndex(number);
  info.SetFaceIndex(static_cast<unsigned char>(faceIndex));
  info.SetFileSize(fileSize);
  info.SetFontName(optionalName(fontName).release());
  info.SetFamilyName(optionalName(familyName).release());
  info.SetStyleName(optionalName(styleName).release());
  info.SetPersisted(persisted);
  info.SetVerticalMetrics(verticalMetrics);
  info.SetCJK(cjk);
  if (panose) info.SetPanose(panose.release());
  if (sig) info.SetSig(sig.release());
  if (metrics) info.SetFontMetrics(metrics.release());
  for (const auto& entry : localizedNames) {
    info.AddLocalizedName(LangCode::GetLangCode(entry.first.c_str()), entry.second);
  }
  if (!filePath.empty()) info.SetFilePath(new std::string(filePath));
  return true;
}

bool FontInfoSerializer::Write(FontInfo& info, std::string& out, int number) {
  std::string& text = scratch_;
  auto numberField = [&](auto write, auto value) {
    text.clear();
    (this->*write)(text, value);
    AppendField2(out, text);
  };
  auto nameField = [&](const std::string* name) {
    if (name == nullptr || name->empty()) {
      out += "00";
    } else {
      AppendField2(out, *name);
    }
  };
  // A block of Size1 fields of the given texts, behind its Size2 length.
  std::string block;
  auto smallField = [&](const std::string& value) {
    WriteSize1(block, static_cast<unsigned>(value.size()));
    block += value;
  };

  numberField(&FontInfoSerializer::WriteUInt16, static_cast<unsigned short>(number & 0xFFFF));
  numberField(&FontInfoSerializer::WriteUInt8, info.GetFaceIndex());
  numberField(&FontInfoSerializer::WriteUInt32, static_cast<unsigned>(info.GetFileSize()));
  nameField(info.GetFontName());
  nameField(info.GetFamilyName());
  nameField(info.GetStyleName());
  out += info.IsPersisted() ? '1' : '0';
  out += info.HasVerticalMetrics() ? '1' : '0';
  out += info.IsCJK() ? '1' : '0';

  block.clear();
  if (const Panose* panose = info.GetPanose()) {
    for (int i = 0; i < kPanoseFieldCount; ++i) {
      text.clear();
      WriteUInt32(text, panose->Get(i));
      smallField(text);
    }
  }
  WriteSize2(out, static_cast<unsigned>(block.size()));
  out += block;

  block.clear();
  if (const Sig* sig = info.GetSig()) {
    unsigned words[6] = {sig->GetCodePageRange(1), sig->GetCodePageRange(2),
                         sig->GetUnicodeRange(1),  sig->GetUnicodeRange(2),
                         sig->GetUnicodeRange(3),  sig->GetUnicodeRange(4)};
    for (unsigned word : words) {
      text.clear();
      WriteUInt32(text, word);
      smallField(text);
    }
  }
  WriteSize2(out, static_cast<unsigned>(block.size()));
  out += block;

  block.clear();
  if (const FontMetrics* metrics = info.GetFontMetrics()) {
    text.clear();
    WriteUInt16(text, metrics->GetUnitsPerEm());
    smallField(text);
    for (short value : {metrics->GetAscender(), metrics->GetDescender(), metrics->GetLineGap()}) {
      text.clear();
      WriteInt16(text, value);
      smallField(text);
    }
  }
  WriteSize2(out, static_cast<unsigned>(block.size()));
  out += block;

  block.clear();
  const std::map<int, std::string>& names = info.GetLocalizedNames();
  if (!names.empty()) {
    WriteSize2(block, static_cast<unsigned>(names.size()));
    std::string entry;
    for (const auto& name : names) {
      const char* tag = LangCode::GetLang(static_cast<unsigned short>(name.first));
      entry.clear();
      AppendField2(entry, tag != nullptr ? tag : "");
      AppendField2(entry, name.second);
      AppendField2(block, entry);
    }
  }
  WriteSize4(out, static_cast<unsigned>(block.size()));
  out += block;

  const std::string* path = info.GetFilePath();
  WriteSize4(out, path != nullptr ? static_cast<unsigned>(path->size()) : 0);
  if (path != nullptr) out += *path;
  out += '\n';
  return true;
}

bool FontInfoSerializer::FitToTable(FontInfo& info) {
  constexpr size_t kMax2 = 0xFF;
  constexpr size_t kMax4 = 0xFFFF;
  auto cut = [](const std::string& text, size_t limit) {
    size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
  };
  auto fit = [&](const std::string* name) -> const std::string* {
    return name != nullptr && name->size() > kMax2 ? new std::string(cut(*name, kMax2)) : nullptr;
  };
  std::map<int, std::string>& names = info.GetLocalizedNames();
  if (names.size() > kMax2) return false;
  // The font name is one of the localized names, and the font is found by
  // those: when that name is cut, the font name becomes the same cut text.
  const std::string* fontName = info.GetFontName();
  const std::string* cutFontName = nullptr;
  for (auto& [code, name] : names) {
    // An entry: the tag and the name, each behind a two-digit length.
    const char* tag = LangCode::GetLang(static_cast<unsigned short>(code));
    size_t room = kMax2 - 4 - std::strlen(tag != nullptr ? tag : "");
    if (name.size() <= room) continue;
    bool isFontName = fontName != nullptr && name == *fontName;
    name = cut(name, room);
    if (isFontName && cutFontName == nullptr) cutFontName = &name;
  }
  if (cutFontName != nullptr) {
    info.SetFontName(new std::string(*cutFontName));
  } else if (const std::string* name = fit(fontName)) {
    info.SetFontName(name);
  }
  if (const std::string* name = fit(info.GetFamilyName())) info.SetFamilyName(name);
  if (const std::string* name = fit(info.GetStyleName())) info.SetStyleName(name);
  const std::string* path = info.GetFilePath();
  if (path != nullptr && path->size() > kMax4) return false;
  // The localized-name block is at most 2 + 255 * 257 bytes; the record
  // with it may still pass its four-digit length.
  std::string body;
  Write(info, body, 0);
  return body.size() <= kMax4;
}

bool FontInfoSerializer::WriteTableVersion(qro_base::FileOutputStream& out) {
  std::string body;
  AppendField2(body, getFontInfoVersion());
  body += '\n';
  return WriteSize4(out, static_cast<unsigned>(body.size())) &&
         out.Write(body.data(), static_cast<unsigned>(body.size()));
}

bool FontInfoSerializer::WriteFontDirectoryLastModifiedTimeList(
    std::vector<const std::string*>& directories, qro_base::FileOutputStream& out) {
  std::string body;
  WriteSize2(body, static_cast<unsigned>(directories.size()));
  for (const std::string* directory : directories) {
    if (directory == nullptr || !FormatDirectoryTime(*directory)) continue;
    AppendField2(body, timeBuffer_.get());
  }
  body += '\n';
  return WriteSize4(out, static_cast<unsigned>(body.size())) &&
         out.Write(body.data(), static_cast<unsigned>(body.size()));
}

bool FontInfoSerializer::WriteDefaultFontIndex(qro_base::FileOutputStream& out) {
  std::string body;
  std::string text;
  for (int i = 0; i < kDefaultFontIndexCount; ++i) {
    int index = 0;
    if (defaultFontIndexes_ && static_cast<size_t>(i) < defaultFontIndexes_->size()) {
      index = (*defaultFontIndexes_)[static_cast<size_t>(i)];
    }
    text.clear();
    WriteUInt32(text, static_cast<unsigned>(index));
    AppendField2(body, text);
  }
  body += '\n';
  return WriteSize4(out, static_cast<unsigned>(body.size())) &&
         out.Write(body.data(), static_cast<unsigned>(body.size()));
}

bool FontInfoSerializer::Write(std::vector<FontInfo*>& list,
                               std::vector<const std::string*>& directories) {
  // The table is replaced as a whole: a write cut short (a kill, a full
  // disk) leaves the previous table in place.
  // The commit point of a scan: one sync of the file system puts the data
  // files and the default-font map written before (unsynced) on disk
  // together with the new table, before the table is renamed into place.
  if (!WriteInstances(list)) return false;
  qro_base::AtomicFileOutputStream out(GetTablePath(),
                                       qro_base::AtomicFileOutputStream::Durability::kFileSystem);
  bool ok = WriteTableVersion(out) && WriteFontDirectoryLastModifiedTimeList(directories, out) &&
            WriteDefaultFontIndex(out);
  std::string body;
  for (size_t i = 0; ok && i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    body.clear();
    Write(*list[i], body, static_cast<int>(i));
    ok = WriteSize4(out, static_cast<unsigned>(body.size())) &&
         out.Write(body.data(), static_cast<unsigned>(body.size()));
  }
  return out.Commit() && ok;  // a failed write fails the commit
}

bool FontInfoSerializer::WriteInstances(const std::vector<FontInfo*>& list) {
  std::string lines;
  int records = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    ++records;
    if (list[i]->GetNamedInstance() == 0) continue;
    lines += std::to_string(i % 65536) + " " + std::to_string(list[i]->GetFaceIndex()) + " " +
             std::to_string(list[i]->GetNamedInstance()) + "\n";
  }
  const std::string path = GetInstanceTablePath();
  if (lines.empty()) {
    // A file left from an earlier table must not be read with this one.
    return std::remove(path.c_str()) == 0 || !qro_base::isFileExists(path.c_str());
  }
  lines.insert(0, "vi 1 " + std::to_string(records) + "\n");
  qro_base::AtomicFileOutputStream out(path,
                                       qro_base::AtomicFileOutputStream::Durability::kDeferred);
  const bool written = out.Write(lines.data(), static_cast<unsigned>(lines.size()));
  return out.Commit() && written;
}

void FontInfoSerializer::ReadInstances(std::vector<FontInfo*>& list, std::size_t first,
                                       int recordCount) {
  std::vector<char> bytes;
  if (!readWholeFile(GetInstanceTablePath(), bytes)) return;
  // Every number is a run of digits followed by the expected separator.
  std::size_t at = 0;
  auto number = [&](char separator, long& value) {
    const std::size_t start = at;
    value = 0;
    while (at < bytes.size() && at - start < 9 && bytes[at] >= '0' && bytes[at] <= '9') {
      value = value * 10 + (bytes[at++] - '0');
    }
    return at > start && at < bytes.size() && bytes[at++] == separator;
  };
  static constexpr char kHead[] = "vi 1 ";
  long count = 0;
  if (bytes.size() < sizeof kHead - 1 || std::memcmp(bytes.data(), kHead, sizeof kHead - 1) != 0)
    return;
  at = sizeof kHead - 1;
  if (!number('\n', count) || count != recordCount) return;
  std::map<long, std::pair<long, long>> instances;  // record -> face, instance
  long last = -1;
  while (at < bytes.size()) {
    long record = 0, face = 0, instance = 0;
    if (!number(' ', record) || !number(' ', face) || !number('\n', instance) || record <= last ||
        instance == 0 || instance > 0xFFFF) {
      return;
    }
    last = record;
    instances[record] = {face, instance};
  }
  for (std::size_t i = first; i < list.size(); ++i) {
    auto found = instances.find(list[i]->GetInfoIndex());
    if (found != instances.end() && found->second.first == list[i]->GetFaceIndex()) {
      list[i]->SetNamedInstance(static_cast<unsigned short>(found->second.second));
    }
  }
}

// --- Data files ---

void FontInfoSerializer::MakeFontInfoDataFilePath(const FontInfo& info, std::string& path) const {
  path += basePath_;
  path += getFontInfoStorageName();
  path += getFontInfoDataDirectoryName();
  path += std::to_string(info.GetInfoIndex());
}

bool FontInfoSerializer::IsDataFile(const FontInfo& info) {
  std::string path;
  MakeFontInfoDataFilePath(info, path);
  return qro_base::isFileExists(path.c_str());
}

bool FontInfoSerializer::ReadData(FontInfo& info) {
  std::string path;
  MakeFontInfoDataFilePath(info, path);
  std::vector<char> bytes;
  if (!readWholeFile(path, bytes)) return false;
  qro_base::MemoryInputStream in(bytes.data(), static_cast<unsigned>(bytes.size()));

  std::unique_ptr<CharMetricsInfo> charMetrics(new CharMetricsInfo());
  CharMetricsInfo::ReadResult metricsResult = charMetrics->ReadChecked(in);
  if (metricsResult == CharMetricsInfo::ReadResult::kDamaged) return false;
  std::unique_ptr<KerningInfo> kerning;
  if (in.Available() > 0) {
    kerning.reset(new KerningInfo());
    if (!kerning->Read(in)) return false;
  }
  // After the kerning part, the characters no slot holds: a flags word
  // (bit 0: the kerning part is a stand-in, the pairs are left to the
  // face's first kerning query), then the characters.
  bool kerningLeft = false;
  if (in.Available() > 0) {
    unsigned flags = 0;
    std::unique_ptr<ExtraCharMetrics> extra(new ExtraCharMetrics());
    if (!qro_base::readUInt32(in, flags) || !extra->Read(in)) return false;
    kerningLeft = (flags & kKerningLeftToFirstUse) != 0;
    if (kerningLeft) kerning.reset();
    if (extra->GetCount() > 0) charMetrics->SetExtraCharMetrics(extra.release());
  }
  info.SetKerningLeftToFirstUse(kerningLeft || !kerning);

  bool result = false;
  if (metricsResult == CharMetricsInfo::ReadResult::kLoaded) {
    info.SetCharMetricsInfo(charMetrics.release());
    result = true;
  } else {
    info.SetCharMetricsInfo(nullptr);
  }
  if (kerning) {
    info.SetKerningInfo(kerning.release());
    result = true;
  }
  return result;
}

bool FontInfoSerializer::WriteData(FontInfo& info) {
  const CharMetricsInfo* charMetrics = info.GetCharMetricsInfo();
  const KerningInfo* kerning = info.GetKerningInfo();
  if (charMetrics == nullptr && kerning == nullptr) return true;
  std::string path;
  MakeFontInfoDataFilePath(info, path);
  // Unsynced: the next table written syncs it, and a data file that does
  // not read back whole is made again.
  qro_base::AtomicFileOutputStream out(path,
                                       qro_base::AtomicFileOutputStream::Durability::kDeferred);
  bool ok = true;
  if (charMetrics != nullptr) ok = charMetrics->Write(out);
  const ExtraCharMetrics* extra =
      charMetrics != nullptr ? charMetrics->GetExtraCharMetrics() : nullptr;
  if (ok && kerning != nullptr) {
    ok = kerning->Write(out);
  } else if (ok && extra != nullptr) {
    ok = qro_base::WriteInt32(out, 0) == 4;  // a stand-in: readers of the parts before stop here
  }
  if (ok && extra != nullptr) {
    const bool left = kerning == nullptr && info.IsKerningLeftToFirstUse();
    ok = qro_base::WriteInt32(out, left ? static_cast<int>(kKerningLeftToFirstUse) : 0) == 4 &&
         extra->Write(out);
  }
  // A part that refused to write leaves the old file in place.
  return ok ? out.Commit() : refused(path);
}

bool FontInfoSerializer::AppendKerning(const FontInfo& info) {
  const KerningInfo* kerning = info.GetKerningInfo();
  if (kerning == nullptr) return false;
  std::string path;
  MakeFontInfoDataFilePath(info, path);
  std::vector<char> bytes;
  if (!readWholeFile(path, bytes)) return false;
  qro_base::MemoryInputStream in(bytes.data(), static_cast<unsigned>(bytes.size()));
  CharMetricsInfo metrics;
  if (metrics.ReadChecked(in) != CharMetricsInfo::ReadResult::kLoaded) return false;
  const unsigned metricsEnd = static_cast<unsigned>(bytes.size()) - in.Available();
  // The extra part after a stand-in kerning part stays, its flag cleared.
  unsigned extraBegin = metricsEnd;
  if (in.Available() > 0) {
    KerningInfo standIn;
    unsigned flags = 0;
    if (!standIn.Read(in) || standIn.GetCount() != 0 || !qro_base::readUInt32(in, flags) ||
        (flags & kKerningLeftToFirstUse) == 0) {
      return false;
    }
    extraBegin = static_cast<unsigned>(bytes.size()) - in.Available();
  }
  qro_base::AtomicFileOutputStream out(path,
                                       qro_base::AtomicFileOutputStream::Durability::kDeferred);
  bool ok = out.Write(bytes.data(), metricsEnd) && kerning->Write(out);
  if (ok && extraBegin < bytes.size()) {
    ok = qro_base::WriteInt32(out, 0) == 4 &&
         out.Write(bytes.data() + extraBegin, static_cast<unsigned>(bytes.size()) - extraBegin);
  }
  return ok ? out.Commit() : refused(path);
}

bool FontInfoSerializer::ReadDefaultFontInfo(DefaultFontInfo& out) {
  std::vector<char> bytes;
  if (!readWholeFile(GetDefaultFontInfoPath(), bytes)) return false;
  qro_base::MemoryInputStream in(bytes.data(), static_cast<unsigned>(bytes.size()));
  if (!out.Read(in)) return false;
  // The extra fonts count only when written with these very "fi" bytes.
  std::vector<char> extra;
  out.GetExtraFonts().Clear();
  if (readWholeFile(GetExtraDefaultFontsPath(), extra)) {
    std::string mark;
    appendFingerprint(mark, fingerprint(bytes.data(), bytes.size()));
    if (extra.size() >= mark.size() && std::memcmp(extra.data(), mark.data(), mark.size()) == 0) {
      out.GetExtraFonts().Read(extra.data() + mark.size(), extra.size() - mark.size());
    }
  }
  return true;
}

std::string FontInfoSerializer::GetExtraDefaultFontsPath() const {
  return basePath_ + getFontInfoStorageName() + getExtraDefaultFontsFileName();
}

bool FontInfoSerializer::WriteDefaultFontInfo(DefaultFontInfo& in) {
  std::string bytes;
  {
    qro_base::StringOutputStream text(bytes);
    if (!in.Write(text)) return refused(GetDefaultFontInfoPath());
  }
  qro_base::AtomicFileOutputStream out(GetDefaultFontInfoPath(),
                                       qro_base::AtomicFileOutputStream::Durability::kDeferred);
  if (!out.Write(bytes.data(), static_cast<unsigned>(bytes.size())) || !out.Commit()) return false;
  // The fonts of the code points no slot holds go to a file of their own,
  // marked with the checksum of the "fi" bytes they go with.
  const std::string extraPath = GetExtraDefaultFontsPath();
  if (in.GetExtraFonts().IsEmpty()) {
    std::remove(extraPath.c_str());
    return true;
  }
  qro_base::AtomicFileOutputStream extra(extraPath,
                                         qro_base::AtomicFileOutputStream::Durability::kDeferred);
  std::string mark;
  appendFingerprint(mark, fingerprint(bytes.data(), bytes.size()));
  const bool ok = extra.Write(mark.data(), static_cast<unsigned>(mark.size())) &&
                  in.GetExtraFonts().Write(extra);
  return ok ? extra.Commit() : refused(extraPath);
}

}  // namespace qro_common
