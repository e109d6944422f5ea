#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/SingleDefaultFontRange.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"

namespace {

using font_info_test::addAdvance;
using kelfont_test::Case;
using kelfont_test::cases;
using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using namespace qro_common;
using Infos = std::vector<FontInfo*>;
using Directories = std::vector<const std::string*>;

// The leading sections of a table with no directories and no default fonts:
// version, directory times, default font indexes, each behind its length.
const std::string kHeader = "001613Table Version 2.054\n000300\n0010010010010010010\n";

// The stored fields of a face as tests/data/font_records.tsv gives them.
std::string describe(const FontInfo& info) {
  std::ostringstream out;
  auto text = [&](const char* key, const std::string* value) {
    if (value != nullptr) out << key << '=' << *value << ';';
  };
  out << "index=" << info.GetInfoIndex() << ";face=" << int(info.GetFaceIndex())
      << ";size=" << info.GetFileSize() << ';';
  text("name", info.GetFontName());
  text("family", info.GetFamilyName());
  text("style", info.GetStyleName());
  text("alt", info.GetAlternateName());
  out << "flags=" << info.IsPersisted() << info.HasVerticalMetrics() << info.IsCJK() << ';';
  if (const auto* panose = info.GetPanose()) {
    out << "panose=";
    for (int i = 0; i < 10; ++i) out << int(panose->Get(i)) << (i < 9 ? ',' : ';');
  }
  if (const auto* sig = info.GetSig()) {
    out << "sig=";  // the Unicode-range bits set, the code-page words
    for (int bit = -1; bit <= 128; ++bit)
      out << (sig->IsUnicodeRangeBitSet(bit) ? std::to_string(bit) + "," : "");
    out << sig->GetCodePageRange(1) << ',' << sig->GetCodePageRange(2) << ';';
  }
  if (const auto* m = info.GetFontMetrics()) {
    out << "metrics=" << m->GetAscender() << ',' << m->GetDescender() << ',' << m->GetLineGap()
        << ',' << m->GetUnitsPerEm() << ';';
  }
  for (const auto& [code, name] : info.GetLocalizedNames()) {
    char key[8];
    snprintf(key, sizeof key, "%04X", code);
    out << key << '=' << name << ';';
  }
  text("path", info.GetFilePath());
  std::string all = out.str();
  return all.substr(0, all.size() - 1);
}

void deleteAll(Infos& list) {
  for (FontInfo* info : list) delete info;
  list.clear();
}

// A cache folder: the face table, the data files and the default fonts.
struct Cache {
  TempDir dir;
  std::string base = dir.path() + "/", table = dir.file("FInfo/Ftable");
  std::string data(int index) const { return dir.file("FInfo/Fdata/" + std::to_string(index)); }
};

// The lines of tests/data/font_records.tsv; the record lines, in order,
// form one table, which reads back and writes again byte for byte.
TEST(FontInfoSerializer, RecordLines) {
  Cache cache;
  FontInfoSerializer serializer(cache.base);
  std::vector<std::unique_ptr<FontInfo>> owned;
  Infos table;
  std::vector<std::string> fields;
  std::vector<size_t> ends;  // where each record ends in the table
  std::string golden = kHeader;
  for (const Case& c : cases("font_records.tsv")) {
    SCOPED_TRACE(c.line);
    std::string text = c[1], out;
    if (c[0] == "version") {
      EXPECT_EQ(serializer.CheckTableVersion(text), c.num(2) == 1);
    }
    if (c[0] == "u32") serializer.WriteUInt32(out, static_cast<unsigned>(c.num(1)));
    if (c[0] == "size2") serializer.WriteSize2(out, static_cast<unsigned>(c.num(1)));
    if (c[0] == "u32" || c[0] == "size2") {
      EXPECT_EQ(out, c[2]);
    }
    if (c[0] == "int") {
      const char* cursor = text.c_str();
      EXPECT_EQ(serializer.ReadInt(&cursor, static_cast<int>(c.num(2))), c.num(3));
      EXPECT_EQ(cursor, text.c_str() + c.num(2));
    }
    if (c[0] != "record" && c[0] != "read") continue;
    owned.emplace_back(new FontInfo());
    FontInfo& info = *owned.back();
    EXPECT_EQ(serializer.Read(info, text) ? describe(info) : "rejected", c[2]);
    if (c[0] == "record") {
      info.SetAlternateName(new std::string("not stored"));
      info.SetPitch(2);
      serializer.Write(info, out, info.GetInfoIndex());
      EXPECT_EQ(out, c[1]);
      table.push_back(&info);
      fields.push_back(c[2]);
      char length[8];
      snprintf(length, sizeof length, "%04zx", c[1].size());
      golden += length + c[1];
      ends.push_back(golden.size());
    }
  }
  // Ten or more names: the count is written in hex and read as its
  // decimal digits ("0a": none). The first entry is the lowest code's.
  FontInfo ten, read;
  std::string many;
  for (int code : {0x0409, 0x0412, 0x0411, 0x0804, 0x0404, 0x0407, 0x040C, 0x0410, 0x0419, 0x0C0A})
    ten.AddLocalizedName(code, "n");
  serializer.Write(ten, many, 0);
  EXPECT_NE(many.find("007a0a0a05zh-TW01n0a"), std::string::npos) << many;
  ASSERT_TRUE(serializer.Read(read, many));
  EXPECT_TRUE(read.GetLocalizedNames().empty());

  Directories none;
  ASSERT_TRUE(serializer.Write(table, none));
  EXPECT_EQ(readFile(cache.table), golden);
  FontInfoSerializer reader(cache.base);
  Infos list;
  ASSERT_TRUE(reader.Read(list));
  ASSERT_EQ(list.size(), table.size());
  for (size_t i = 0; i < list.size(); ++i) EXPECT_EQ(describe(*list[i]), fields[i]);
  EXPECT_EQ(*reader.GetDefaultFontIndexes(), std::vector<int>(5, 0));
  FontInfoSerializer again(cache.base + "again/");
  ASSERT_TRUE(again.Write(list, none));
  EXPECT_EQ(readFile(cache.dir.file("again/FInfo/Ftable")), golden);
  deleteAll(list);

  // Five default font indexes are kept; another version yields no records.
  serializer.SetDefaultFontIndexes({3, -1, 70000, 2, 1, 99});
  ASSERT_TRUE(serializer.Write(table, none));
  FontInfoSerializer indexes(cache.base);
  ASSERT_TRUE(indexes.Read(list));
  EXPECT_EQ(*indexes.GetDefaultFontIndexes(), (std::vector<int>{3, -1, 70000, 2, 1}));
  deleteAll(list);
  std::string other = golden;
  other[24] = '3';  // "Table Version 2.034"
  ASSERT_TRUE(writeFile(cache.table, other));
  FontInfoSerializer stale(cache.base);
  EXPECT_FALSE(stale.ReadHeader());
  EXPECT_FALSE(stale.Read(list));
  EXPECT_TRUE(list.empty());
  EXPECT_FALSE(stale.IsVersionMatched());

  // A cut table keeps the records that end before the cut; garbage gives none. What the
  // caller's list held stays and does not count as read.
  std::vector<std::string> texts = {std::string(64, 'f'), "0016ffTable Version 2.054\n",
                                    kHeader + "ffff" + golden.substr(kHeader.size() + 4)};
  for (size_t cut = 0; cut <= golden.size(); ++cut) texts.push_back(golden.substr(0, cut));
  FontInfo held;
  for (const std::string& text : texts) {
    ASSERT_TRUE(writeFile(cache.table, text));
    FontInfoSerializer cut(cache.base);
    EXPECT_TRUE(cut.IsTableExists());
    list = {&held};
    const bool read = cut.Read(list);
    size_t expected = 0;
    for (size_t end : ends)
      expected += golden.compare(0, text.size(), text) == 0 && end <= text.size();
    EXPECT_EQ(list.size(), expected + 1) << text.size();
    EXPECT_EQ(read, expected > 0) << text.size();
    list.erase(list.begin());
    deleteAll(list);
  }
}

// The lines of tests/data/font_data_files.tsv: what data files read as.
TEST(FontInfoSerializer, DataFileLines) {
  Cache cache;
  FontInfoSerializer serializer(cache.base);
  for (const Case& c : cases("font_data_files.tsv")) {
    SCOPED_TRACE(c.line);
    std::remove(cache.data(9).c_str());
    ASSERT_TRUE(c[0] == "none" || writeFile(cache.data(9), kelfont_test::unhex(c[0])));
    FontInfo info;
    info.SetInfoIndex(9);
    auto* metrics = new CharMetricsInfo();
    addAdvance(*metrics, 0x41, 7);
    info.SetCharMetricsInfo(metrics);
    info.SetKerningInfo(new KerningInfo());
    info.GetKerningInfo()->Register(1, 2, 3);
    std::string answer = serializer.ReadData(info) ? "" : "failed ";
    std::istringstream words(c[1]);
    for (std::string w; words >> w;) {
      const CharMetricsInfo* now = info.GetCharMetricsInfo();
      const size_t comma = w.find(',');
      const auto* entry = now ? now->GetCharMetrics(std::stoul(w, nullptr, 16)) : nullptr;
      std::string value = !now ? "x" : entry ? std::to_string(entry->GetAdvance()) : "-";
      if (comma != std::string::npos) {
        value = std::to_string(
            info.GetKerningInfo()->GetDelta(std::stoi(w), std::stoi(w.substr(comma + 1))));
      }
      answer += w + "=" + value + " ";
    }
    EXPECT_EQ(answer, c[2] + " ");
    if (c[3] == "same") {
      std::remove(cache.data(9).c_str());
      ASSERT_TRUE(serializer.WriteData(info));
      EXPECT_EQ(kelfont_test::escape(readFile(cache.data(9))),
                kelfont_test::escape(kelfont_test::unhex(c[0])));
    }
  }
  // No tables: no file; an advance table without entries: 128 empty slots.
  FontInfo info;
  info.SetInfoIndex(3);
  EXPECT_TRUE(serializer.WriteData(info));
  EXPECT_FALSE(serializer.IsDataFile(info));
  info.SetCharMetricsInfo(new CharMetricsInfo());
  EXPECT_TRUE(serializer.WriteData(info));
  EXPECT_TRUE(serializer.IsDataFile(info));
  EXPECT_EQ(readFile(cache.data(3)), std::string(128, '\0'));
  std::string path = "prefix:";
  serializer.MakeFontInfoDataFilePath(info, path);
  EXPECT_EQ(path, "prefix:" + cache.base + "FInfo/Fdata/3");
}

// "%x %X" in the C locale, which the tests run in.
std::string directoryTime(time_t when) {
  struct tm local;
  localtime_r(&when, &local);
  char text[64];
  strftime(text, sizeof text, "%m/%d/%y %H:%M:%S", &local);
  return text;
}

TEST(FontInfoSerializer, DirectoryTimesAMissingDirectoryAndTwelveDirectories) {
  Cache cache;
  std::vector<std::string> paths = {cache.dir.file("fonts1"), cache.dir.file("missing"),
                                    cache.dir.file("fonts3")};
  for (int i = 0; i < 12; ++i) paths.push_back(cache.dir.file("d" + std::to_string(i)));
  for (const std::string& path : paths) {
    ASSERT_TRUE(path == paths[1] || mkdir(path.c_str(), 0755) == 0);
  }
  auto setModified = [](const std::string& path, time_t when) {
    struct utimbuf times = {when, when};
    ASSERT_EQ(utime(path.c_str(), &times), 0);
  };
  setModified(paths[0], 1700000000);
  setModified(paths[2], 1600000000);
  Directories three = {&paths[0], &paths[1], &paths[2]}, existing = {&paths[0], &paths[2]};
  Directories twelve;
  for (size_t i = 3; i < paths.size(); ++i) twelve.push_back(&paths[i]);
  Infos list;
  ASSERT_TRUE(FontInfoSerializer(cache.base).Write(list, three));
  const std::string t1 = directoryTime(1700000000), t3 = directoryTime(1600000000);
  ASSERT_EQ(t1.size(), 17u);
  EXPECT_EQ(readFile(cache.table),
            kHeader.substr(0, 26) + "00290311" + t1 + "11" + t3 + "\n" + kHeader.substr(33));
  FontInfoSerializer serializer(cache.base);
  ASSERT_TRUE(serializer.ReadHeader());
  EXPECT_EQ(serializer.GetFontDirectoryTimes(), (std::vector<std::string>{t1, t3}));
  EXPECT_TRUE(serializer.IsModified(three));
  EXPECT_FALSE(serializer.IsModified(existing));
  setModified(paths[2], 1600000060);
  EXPECT_TRUE(serializer.IsModified(existing));

  // Twelve directories are counted in hex ("0c") and read as none.
  ASSERT_TRUE(FontInfoSerializer(cache.base).Write(list, twelve));
  EXPECT_EQ(readFile(cache.table).substr(26, 6),
            "00e70c");  // 2 + 12 * 19 + 1 bytes
  FontInfoSerializer many(cache.base);
  ASSERT_TRUE(many.ReadHeader());
  EXPECT_TRUE(many.GetFontDirectoryTimes().empty());
  EXPECT_TRUE(many.IsModified(twelve));
}

// No table or "fi" yet: nothing reads, the folders are made. "fi"
// round-trips and reads as nothing once cut. A part that refuses to write
// (a reversed range) fails the write and leaves the previous file as it was;
// so does a folder in the file's place: no mode (and no user) can write it.
TEST(FontInfoSerializer, MissingRefusedAndBlockedFiles) {
  Cache cache;
  FontInfoSerializer serializer(cache.base + "cache/");
  struct stat status;
  EXPECT_EQ(stat(cache.dir.file("cache/FInfo/Fdata").c_str(), &status), 0);
  EXPECT_FALSE(serializer.IsTableExists());
  EXPECT_FALSE(serializer.ReadHeader());
  Infos list;
  Directories none;
  EXPECT_FALSE(serializer.Read(list));
  DefaultFontInfo defaults, read, damaged;
  EXPECT_FALSE(serializer.ReadDefaultFontInfo(defaults));
  font_info_test::addDefaultFont(defaults, 0x41, 3);
  font_info_test::addDefaultFont(defaults, 0xAC00, 1);
  FontInfo info;
  info.SetInfoIndex(1);
  auto* metrics = new CharMetricsInfo();
  addAdvance(*metrics, 0x41, 1366);
  info.SetCharMetricsInfo(metrics);
  ASSERT_TRUE(serializer.WriteData(info));
  ASSERT_TRUE(serializer.WriteDefaultFontInfo(defaults));
  ASSERT_TRUE(serializer.ReadDefaultFontInfo(read));
  EXPECT_EQ(read.GetFontIndex(0x41), 3);
  EXPECT_EQ(read.GetFontIndex(0xAC00), 1);
  EXPECT_EQ(read.GetFontIndex(0xAC01), -1);
  const std::string dataPath = cache.dir.file("cache/FInfo/Fdata/1"),
                    fi = cache.dir.file("cache/FInfo/fi");
  const std::string data = readFile(dataPath), fiBytes = readFile(fi);
  metrics->SetCharMetricsRange(5, new SingleCharMetricsRange(10, 5));
  defaults.SetDefaultFontRange(5, new SingleDefaultFontRange(10, 5));
  EXPECT_FALSE(serializer.WriteData(info));
  EXPECT_FALSE(serializer.WriteDefaultFontInfo(defaults));
  EXPECT_EQ(readFile(dataPath), data);
  EXPECT_EQ(readFile(fi), fiBytes);
  ASSERT_TRUE(writeFile(fi, fiBytes.substr(0, 20)));
  EXPECT_FALSE(serializer.ReadDefaultFontInfo(damaged));
  EXPECT_EQ(damaged.GetFontIndex(0x41), -1);

  FontInfoSerializer blocked(cache.base + "blocked/");
  info.SetInfoIndex(2);
  for (const char* name : {"blocked/FInfo/Fdata/2", "blocked/FInfo/Ftable", "blocked/FInfo/fi"}) {
    ASSERT_EQ(mkdir(cache.dir.file(name).c_str(), 0755), 0);
  }
  DefaultFontInfo empty;
  EXPECT_FALSE(blocked.WriteData(info));
  EXPECT_FALSE(blocked.Write(list, none));
  EXPECT_FALSE(blocked.WriteDefaultFontInfo(empty));
  EXPECT_FALSE(blocked.ReadData(info));
  EXPECT_FALSE(blocked.ReadHeader());
  EXPECT_FALSE(blocked.ReadDefaultFontInfo(empty));
}

}  // namespace
