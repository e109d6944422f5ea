// The directory scan: font files -> font table records and data files.

#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/FileUtils.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/manager/FontManager.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/FontTable.h"

namespace qro_common {

namespace {

// Written to the data file, the per-character data leaves memory: it is
// loaded again on first use, and a first start does not keep every font.
// When it cannot be written (full disk, read-only storage), this start
// keeps what it measured, and a data file left from an earlier version of
// the font goes, so that no later load reads stale advances.
void writeAndDropData(FontInfoSerializer& serializer, FontInfo& info) {
  if (!serializer.WriteData(info)) {
    std::string path;
    serializer.MakeFontInfoDataFilePath(info, path);
    std::remove(path.c_str());
    return;
  }
  info.SetCharMetricsInfo(nullptr);
  info.SetKerningInfo(nullptr);
}

// lstat's mode bit of regular files. A symbolic link's mode carries it too,
// so links to font files are taken (and read through).
constexpr unsigned kRegularFileBit = 0x8000;

}  // namespace

void FontManager::UpdateFontInfo(FontInfoSerializer& serializer) {
  if (fontDirectoryPathList_.empty() || fontTable_ == nullptr) return;
  FontFileAnalyzer analyzer;
  analyzer.SetGposKerningTime(FontFileAnalyzer::GposKerningTime::kOnFirstUse);
  for (std::size_t i = 0; i < fontDirectoryPathList_.size(); ++i) {
    const char* directory = fontDirectoryPathList_[i]->c_str();
    qro_base::confirmFilePathExists(directory);
    int count = 0;
    UpdateFontInfo(analyzer, serializer, directory, static_cast<int>(i), count);
  }
  fontTable_->UpdateModifiedFontInfoState();

  std::vector<FontInfo*> infos;
  infos.reserve(static_cast<std::size_t>(fontTable_->GetFontInfoCount()));
  for (int i = 0; i < fontTable_->GetFontInfoCount(); ++i)
    infos.push_back(fontTable_->GetFontInfo(i));
  // The default-font map goes before the table, whose one sync commits both
  // (and the data files).
  if (defaultFontInfo_ != nullptr) serializer.WriteDefaultFontInfo(*defaultFontInfo_);
  serializer.Write(infos, fontDirectoryPathList_);
  LoadDefaultFontList(serializer);
}

void FontManager::UpdateFontInfo(FontFileAnalyzer& analyzer, FontInfoSerializer& serializer,
                                 const char* directory, int /*directoryIndex*/, int& count) {
  // Paths are built on the directory's physical path (links in it
  // resolved), without changing the process's working directory.
  char* resolved = realpath(directory, nullptr);
  if (resolved == nullptr) return;
  std::string base = resolved;
  std::free(resolved);
  if (base.empty() || base.back() != '/') base += '/';

  dirent** entries = nullptr;
  int entryCount = scandir(base.c_str(), &entries, nullptr, nullptr);
  if (entryCount < 0) return;
  for (int i = 0; i < entryCount; ++i) {
    std::string name = entries[i]->d_name;
    std::free(entries[i]);
    if (name == "." || name == "..") continue;
    std::string path = base + name;
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || (status.st_mode & kRegularFileBit) == 0) continue;
    if (!isFontFile(name)) continue;
    // Each named instance of a variable face is a face of its own, taken
    // right after the face itself.
    auto updateNamedInstances = [&](int face) {
      if (analyzer.GetNamedInstanceCount() == 0) return;
      for (int instance : analyzer.ListNamedInstances(path.c_str(), face)) {
        if (UpdateFontInfo(analyzer, serializer, path.c_str(), instance << 16 | face)) ++count;
      }
    };
    if (!UpdateFontInfo(analyzer, serializer, path.c_str(), 0)) continue;
    ++count;
    int faces = analyzer.GetFaceCount();
    updateNamedInstances(0);
    for (int face = 1; face < faces; ++face) {
      if (!UpdateFontInfo(analyzer, serializer, path.c_str(), face)) continue;
      ++count;
      updateNamedInstances(face);
    }
  }
  std::free(entries);
}

bool FontManager::UpdateFontInfo(FontFileAnalyzer& analyzer, FontInfoSerializer& serializer,
                                 const char* fileName, int faceIndex) {
  if (!analyzer.Open(fileName, faceIndex)) return false;
  std::unique_ptr<FontInfo> record(analyzer.Analyze());
  // Names too long for the cache table (a family name of thousands of
  // bytes) are cut to what it holds, so that the next start reads the
  // record as this one registers it; a record that cannot fit is not taken.
  if (record) record->SetFilePath(new std::string(fileName));
  if (!record || !serializer.FitToTable(*record)) {
    analyzer.Close();
    return true;
  }
  // FreeType's face index: the named instance above the face.
  auto face = static_cast<unsigned char>(faceIndex & 0xFFFF);
  auto instance = static_cast<unsigned short>(faceIndex >> 16);
  // The look-ups of ExtraBold faces and named instances compare them.
  record->SetFaceIndex(face);
  record->SetNamedInstance(instance);

  if (FontInfo* existing = fontTable_->FindFontInfo(*record)) {
    existing->SetScanState(2);
    existing->SetFilePath(new std::string(fileName));
    existing->SetFaceIndex(face);
    existing->SetNamedInstance(instance);
    if (record->GetFontMetrics() != nullptr) {
      existing->SetFontMetrics(new FontMetrics(*record->GetFontMetrics()));
    }
    if (record->GetPanose() != nullptr) existing->SetPanose(record->GetPanose()->Clone());
    if (record->GetSig() != nullptr) existing->SetSig(record->GetSig()->Clone());
    int index = GetFontIndex(*existing->GetFontName());
    if (IsCJKExceptFont(index)) record->SetCJK(false);  // the record is dropped below
    analyzer.ApplyDefaultFontInfo(index, *defaultFontInfo_);
    if (analyzer.GetFileSize() != existing->GetFileSize()) {
      // The file changed: its per-character data is rebuilt, and
      // (deliberately) the new size is kept so that the next scan does not
      // rebuild it again.
      existing->SetFileSize(analyzer.GetFileSize());
      analyzer.AnalyzeData(*existing);
      writeAndDropData(serializer, *existing);
    }
    if (Font* font = fontTable_->GetFont(index)) font->SetWithoutFile(false);
  } else {
    FontInfo* info = record.release();
    info->SetScanState(2);
    info->SetFaceIndex(face);
    info->SetFilePath(new std::string(fileName));
    int index = fontTable_->RegisterFontInfo(info, true);
    if (index < 0) {
      delete info;  // no font name: not taken
    } else {
      if (IsCJKExceptFont(index)) info->SetCJK(false);
      analyzer.ApplyDefaultFontInfo(index, *defaultFontInfo_);
      analyzer.AnalyzeData(*info);
      writeAndDropData(serializer, *info);
    }
  }
  analyzer.Close();
  return true;
}

}  // namespace qro_common
