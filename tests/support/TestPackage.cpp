#include "tests/support/TestPackage.h"

#include "base/ZipEntry.h"
#include "base/ZipEntryOutputStream.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "tests/support/TempDir.h"

namespace kelfont_test {

void TestPackage::add(const std::string& name, const std::string& bytes) { entries_[name] = bytes; }

bool TestPackage::addFontTable(const std::vector<qro_common::FontInfo*>& infos) {
  TempDir scratch;
  qro_common::FontInfoSerializer serializer(scratch.path() + "/");
  std::vector<qro_common::FontInfo*> list = infos;
  std::vector<const std::string*> noDirectories;
  if (!serializer.Write(list, noDirectories)) return false;
  add("Ftable", readFile(serializer.GetTablePath()));
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[i]->SetInfoIndex(static_cast<int>(i));
    if (list[i]->GetCharMetricsInfo() == nullptr) continue;
    add("Fdata/" + std::to_string(i), dataFileBytes(*list[i]));
  }
  return true;
}

bool TestPackage::write(const std::string& directory) const {
  qro_base::ZipEntryOutputStream zip((directory + "/qrfont.zip").c_str());
  bool ok = zip.IsOpen();
  for (const auto& entry : entries_) {
    qro_base::ZipEntry zipEntry(entry.first, static_cast<int64_t>(entry.second.size()));
    ok = ok && zip.PutNextEntry(zipEntry) &&
         (entry.second.empty() ||
          zip.Write(entry.second.data(), static_cast<unsigned>(entry.second.size()))) &&
         zip.CloseEntry();
  }
  return zip.Close() && ok;
}

std::unique_ptr<qro_common::FontInfo> analyzeFontFile(const std::string& path, int face) {
  qro_common::FontFileAnalyzer analyzer;
  if (!analyzer.Open(path.c_str(), face)) return nullptr;
  std::unique_ptr<qro_common::FontInfo> info(analyzer.Analyze());
  if (info) analyzer.AnalyzeData(*info);
  analyzer.Close();
  return info;
}

std::string dataFileBytes(qro_common::FontInfo& info) {
  TempDir scratch;
  qro_common::FontInfoSerializer serializer(scratch.path() + "/");
  if (!serializer.WriteData(info)) return std::string();
  std::string path;
  serializer.MakeFontInfoDataFilePath(info, path);
  return readFile(path);
}

}  // namespace kelfont_test
