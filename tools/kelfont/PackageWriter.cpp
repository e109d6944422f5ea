#include "tools/kelfont/PackageWriter.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/ZipEntry.h"
#include "base/ZipEntryOutputStream.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/LangCode.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/DataFileNames.h"
#include "tools/kelfont/FontLists.h"

namespace kelfont_tool {

namespace {

bool readWhole(const std::string& path, std::string& bytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

// The entries of a directory in listing order, as the font manager's scan
// meets them (no sorting).
bool listDirectory(const std::string& directory, std::vector<std::string>& names) {
  dirent** entries = nullptr;
  const int count = scandir(directory.c_str(), &entries, nullptr, nullptr);
  if (count < 0) return false;
  for (int i = 0; i < count; ++i) {
    if (std::strcmp(entries[i]->d_name, ".") != 0 && std::strcmp(entries[i]->d_name, "..") != 0) {
      names.push_back(entries[i]->d_name);
    }
    std::free(entries[i]);
  }
  std::free(entries);
  return true;
}

// The scan's test of a directory entry: lstat's regular-file bit, which a
// symbolic link's mode carries as well (links to fonts are read through).
bool isScannedFile(const std::string& path) {
  struct stat st;
  return lstat(path.c_str(), &st) == 0 && (st.st_mode & 0x8000) != 0;
}

std::string joinPath(const std::string& directory, const std::string& name) {
  if (!directory.empty() && directory.back() == '/') return directory + name;
  return directory + "/" + name;
}

// Cuts the names of `info` that the font table could not hold (a longer
// text would be misread, spoiling the record), as the font manager's scan
// does; true when one was cut.
bool fitNames(qro_common::FontInfoSerializer& serializer, qro_common::FontInfo& info) {
  std::string before;
  serializer.Write(info, before, 0);
  serializer.FitToTable(info);
  std::string after;
  serializer.Write(info, after, 0);
  return after != before;
}

}  // namespace

PackageWriter::PackageWriter() = default;

PackageWriter::~PackageWriter() {
  serializer_.reset();
  if (!staging_.empty()) {
    std::error_code ignored;
    std::filesystem::remove_all(staging_, ignored);
  }
}

bool PackageWriter::Fail(const std::string& message) {
  error_ = message;
  return false;
}

bool PackageWriter::EnsureStaging() {
  if (serializer_) return true;
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
                        "/kelfont-pack-XXXXXX";
  if (mkdtemp(&pattern[0]) == nullptr) {
    return Fail("cannot create a staging folder under " + pattern + ": " + std::strerror(errno));
  }
  staging_ = pattern + "/";
  serializer_ = std::make_unique<qro_common::FontInfoSerializer>(staging_);
  return true;
}

bool PackageWriter::AnalyzeDirectories(const std::vector<std::string>& directories) {
  if (!EnsureStaging()) return false;
  // List everything first: the progress needs a total, and a missing
  // directory should stop the run before the long part.
  std::vector<std::string> files;
  for (const std::string& directory : directories) {
    struct stat st;
    if (stat(directory.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
      return Fail("font folder not found: " + directory);
    }
    std::vector<std::string> names;
    if (!listDirectory(directory, names)) {
      return Fail("cannot list " + directory + ": " + std::strerror(errno));
    }
    for (const std::string& name : names) {
      const std::string path = joinPath(directory, name);
      if (isScannedFile(path) && qro_common::isFontFile(name)) {
        files.push_back(path);
      }
    }
  }
  qro_common::FontFileAnalyzer analyzer;
  std::size_t expected = facesDone_ + files.size();
  for (const std::string& path : files) {
    if (!AnalyzeFile(analyzer, path, expected)) return false;
  }
  return true;
}

bool PackageWriter::AnalyzeFile(qro_common::FontFileAnalyzer& analyzer, const std::string& path,
                                std::size_t& expected) {
  const std::string name = path.substr(path.find_last_of('/') + 1);
  if (!AnalyzeFace(analyzer, path, 0)) {
    if (dataFailed_) return false;
    FILE* file = std::fopen(path.c_str(), "rb");
    warnings_.push_back("skipped " + path + ": " +
                        (file == nullptr ? std::string(std::strerror(errno))
                                         : "not a font FreeType can read, or no OS/2 table"));
    if (file != nullptr) std::fclose(file);
    if (progress_) progress_(++facesDone_, expected, name);
    return true;
  }
  ++fileCount_;
  const int faces = analyzer.GetFaceCount();
  expected += faces > 1 ? faces - 1 : 0;
  if (progress_) progress_(++facesDone_, expected, name);
  // The named instances of a variable face, after the face, as the font
  // manager's scan takes them.
  auto namedInstances = [&](int face) {
    if (analyzer.GetNamedInstanceCount() == 0) return true;
    for (int instance : analyzer.ListNamedInstances(path.c_str(), face)) {
      if (!AnalyzeFace(analyzer, path, instance << 16 | face)) {
        if (dataFailed_) return false;
        warnings_.push_back("skipped named instance " + std::to_string(instance) + " of face " +
                            std::to_string(face) + " of " + path);
      }
    }
    return true;
  };
  if (!namedInstances(0)) return false;
  for (int face = 1; face < faces; ++face) {
    const bool opened = AnalyzeFace(analyzer, path, face);
    if (!opened) {
      if (dataFailed_) return false;
      warnings_.push_back("skipped face " + std::to_string(face) + " of " + path);
    }
    if (progress_) progress_(++facesDone_, expected, name);
    if (opened && !namedInstances(face)) return false;
  }
  return true;
}

bool PackageWriter::AnalyzeFace(qro_common::FontFileAnalyzer& analyzer, const std::string& path,
                                int face) {
  if (!analyzer.Open(path.c_str(), face)) return false;
  qro_common::FontInfo* info = analyzer.Analyze();
  if (info == nullptr) {
    analyzer.Close();
    return true;
  }
  // FreeType's face index: a named instance above the face.
  const auto faceIndex = static_cast<unsigned char>(face & 0xFFFF);
  const auto instance = static_cast<unsigned short>(face >> 16);
  info->SetFilePath(new std::string(path));
  info->SetFaceIndex(faceIndex);
  info->SetNamedInstance(instance);
  qro_common::FontInfo* existing = table_.FindFontInfo(*info);
  bool ok = true;
  if (existing != nullptr) {
    // A face of the same name and style was met before: it takes this
    // file's global records, and new advances only when the size differs.
    existing->SetScanState(2);
    existing->SetFilePath(new std::string(path));
    existing->SetFaceIndex(faceIndex);
    existing->SetNamedInstance(instance);
    if (info->GetFontMetrics() != nullptr) {
      existing->SetFontMetrics(new qro_common::FontMetrics(*info->GetFontMetrics()));
    }
    if (info->GetPanose() != nullptr) existing->SetPanose(info->GetPanose()->Clone());
    if (info->GetSig() != nullptr) existing->SetSig(info->GetSig()->Clone());
    if (analyzer.GetFileSize() != existing->GetFileSize()) {
      existing->SetFileSize(analyzer.GetFileSize());
      analyzer.AnalyzeData(*existing);
      ok = StoreData(*existing);
    }
    qro_common::Font* font = table_.GetFont(table_.GetFontIndex(*existing->GetFontName()));
    if (font != nullptr) font->SetWithoutFile(false);
    delete info;
  } else {
    info->SetScanState(2);
    if (table_.RegisterFontInfo(info, true) < 0) {
      // No font name: the table did not take it.
      delete info;
    } else {
      analyzer.AnalyzeData(*info);
      ok = StoreData(*info);
    }
  }
  analyzer.Close();
  if (!ok) {
    dataFailed_ = true;
    Fail("cannot write the data of " + path + " to the staging folder " + staging_);
  }
  return ok;
}

bool PackageWriter::StoreData(qro_common::FontInfo& info) {
  const bool written = serializer_->WriteData(info);
  // The advances are in the staging folder now; keep the memory small.
  info.SetCharMetricsInfo(nullptr);
  info.SetKerningInfo(nullptr);
  return written;
}

bool PackageWriter::ReadLists(const std::string& directory) {
  FontLists lists;
  if (!lists.Read(directory)) return Fail(lists.GetError());
  lists_ = lists.GetEntries();
  warnings_.insert(warnings_.end(), lists.GetWarnings().begin(), lists.GetWarnings().end());
  listNames_ = lists.GetNames();
  return true;
}

std::vector<std::string> PackageWriter::GetUnknownListNames() const {
  std::vector<std::string> unknown;
  for (const auto& [list, name] : listNames_) {
    if (table_.GetFontIndex(name) < 0) unknown.push_back(list + ": " + name);
  }
  std::sort(unknown.begin(), unknown.end());
  unknown.erase(std::unique(unknown.begin(), unknown.end()), unknown.end());
  return unknown;
}

std::vector<std::string> PackageWriter::GetEntryNames() const {
  std::vector<std::string> names{qro_common::getFontInfoTableName()};
  if (serializer_) {
    struct stat st;
    if (stat(serializer_->GetInstanceTablePath().c_str(), &st) == 0) {
      names.push_back(qro_common::getFontInstanceTableName());
    }
    for (int i = 0; i < table_.GetFontInfoCount(); ++i) {
      std::string path;
      serializer_->MakeFontInfoDataFilePath(*table_.GetFontInfo(i), path);
      struct stat st;
      if (stat(path.c_str(), &st) == 0 && st.st_size > 0) {
        names.push_back(std::string(qro_common::getFontInfoDataDirectoryName()) +
                        std::to_string(i));
      }
    }
  }
  for (const auto& list : lists_) names.push_back(list.first);
  return names;
}

bool PackageWriter::Write(const std::string& path) {
  if (!EnsureStaging()) return false;
  if (table_.GetFontInfoCount() == 0) return Fail("no font face to pack");
  // Known by metrics only: the package carries no file path and no font
  // directory, so every device scans its own folders at its first start.
  for (int i = 0; i < table_.GetFontInfoCount(); ++i) {
    qro_common::FontInfo& info = *table_.GetFontInfo(i);
    const std::string* path = info.GetFilePath();
    if (fitNames(*serializer_, info)) {
      warnings_.push_back("cut the names of " + (path != nullptr ? *path : *info.GetFontName()) +
                          " to the 255 bytes the font table holds");
    }
    info.SetFilePath(nullptr);
  }
  std::vector<qro_common::FontInfo*> infos;
  for (int i = 0; i < table_.GetFontInfoCount(); ++i) infos.push_back(table_.GetFontInfo(i));
  std::vector<const std::string*> noDirectories;
  if (!serializer_->Write(infos, noDirectories)) {
    return Fail("cannot write the font table to the staging folder " + staging_);
  }

  const std::string partial = path + ".partial";
  bool ok = true;
  {
    qro_base::ZipEntryOutputStream zip(partial.c_str());
    if (!zip.IsOpen()) return Fail("cannot create " + partial + ": " + std::strerror(errno));
    const std::string storage = staging_ + qro_common::getFontInfoStorageName();
    for (const std::string& name : GetEntryNames()) {
      std::string bytes;
      bool found = false;
      for (const auto& list : lists_) {
        if (list.first == name) {
          bytes = list.second;
          found = true;
        }
      }
      if (!found && !readWhole(storage + name, bytes)) {
        ok = Fail("cannot read " + storage + name);
        break;
      }
      qro_base::ZipEntry entry(name, static_cast<int64_t>(bytes.size()));
      if (!zip.PutNextEntry(entry) ||
          !zip.Write(bytes.data(), static_cast<unsigned>(bytes.size())) || !zip.CloseEntry()) {
        ok = Fail("cannot write entry " + name + " to " + partial);
        break;
      }
    }
    if (!zip.Close() && ok) ok = Fail("cannot finish " + partial);
  }
  if (ok && std::rename(partial.c_str(), path.c_str()) != 0) {
    ok = Fail("cannot rename " + partial + " to " + path + ": " + std::strerror(errno));
  }
  if (!ok) std::remove(partial.c_str());
  return ok;
}

}  // namespace kelfont_tool
