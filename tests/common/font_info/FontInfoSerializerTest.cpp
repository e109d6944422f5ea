#include "common/font_info/FontInfoSerializer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/SingleDefaultFontRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/TempDir.h"

namespace {

using font_info_test::addAdvance;
using font_info_test::addDefaultFont;
using font_info_test::hex;
using font_info_test::zeros;
using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_common::CharMetricsInfo;
using qro_common::DefaultFontInfo;
using qro_common::FontInfo;
using qro_common::SingleCharMetricsRange;
using qro_common::SingleDefaultFontRange;
using qro_common::FontInfoSerializer;
using qro_common::KerningInfo;
using qro_common::Panose;
using qro_common::Sig;

// The three leading sections of a table written with no directories and
// no default font indexes.
const std::string kHeader =
    "0016" "13" "Table Version 2.054\n"
    "0003" "00\n"
    "0010" "010" "010" "010" "010" "010" "\n";

// The record of fullInfo() as record 0.
const std::string kFullRecord =
    "0090"
    "01" "0"                  // record number
    "01" "1"                  // face index
    "04" "1234"               // file size
    "03" "Foo"
    "0a" "Foo Family"
    "00"                      // no style name
    "1" "0" "1"               // persisted, vertical metrics, CJK
    "15" "12" "211" "16" "14" "12" "12" "12" "12" "12" "14"
    "1f" "b-2147483648" "11" "13" "10" "10" "a1073741824"
    "11" "41000" "3800" "4-200" "290"
    "0010" "01" "0c" "05" "en-US" "03" "Bar"
    "000a" "/f/foo.ttf"
    "\n";

// An info with nothing but defaults, as record 1.
const std::string kEmptyRecord =
    "0021" "011" "010" "010" "00" "00" "00" "000" "00" "00" "00" "0000" "0000" "\n";

std::unique_ptr<FontInfo> fullInfo() {
  std::unique_ptr<FontInfo> info(new FontInfo());
  info->SetFontName(new std::string("Foo"));
  info->SetFamilyName(new std::string("Foo Family"));
  info->SetAlternateName(new std::string("not stored"));
  info->SetFaceIndex(1);
  info->SetFileSize(1234);
  info->SetPersisted(true);
  info->SetCJK(true);
  info->SetPitch(2);  // not stored
  auto* panose = new Panose();
  const unsigned char bytes[] = {2, 11, 6, 4, 2, 2, 2, 2, 2, 4};
  for (int i = 0; i < Panose::kSize; ++i) panose->Set(i, bytes[i]);
  info->SetPanose(panose);
  info->SetSig(new Sig(3, 0, 0, 0x40000000, 0x80000000, 1));
  info->SetFontMetrics(new qro_common::FontMetrics(800, -200, 90, 1000));
  info->AddLocalizedName(0x0409, "Bar");
  info->SetFilePath(new std::string("/f/foo.ttf"));
  return info;
}

// "%x %X" in the C locale, which the tests run in.
std::string directoryTime(time_t when) {
  struct tm local;
  localtime_r(&when, &local);
  char text[64];
  strftime(text, sizeof text, "%m/%d/%y %H:%M:%S", &local);
  return text;
}

void setModified(const std::string& path, time_t when) {
  struct utimbuf times = {when, when};
  ASSERT_EQ(utime(path.c_str(), &times), 0);
}

void deleteAll(std::vector<FontInfo*>& list) {
  for (FontInfo* info : list) delete info;
  list.clear();
}

class FontInfoSerializerTest : public testing::Test {
 protected:
  std::string Base() const { return dir_.path() + "/"; }
  std::string Table() const { return dir_.file("FInfo/Ftable"); }
  std::string Data(int index) const { return dir_.file("FInfo/Fdata/" + std::to_string(index)); }

  TempDir dir_;
};

// The table bytes of fullInfo() and an empty info. Read back and written
// again, they give the same bytes: every stored field survives.
TEST_F(FontInfoSerializerTest, TableGoldenBytesAndReadBack) {
  FontInfoSerializer writer(Base());
  auto full = fullInfo();
  FontInfo blank;
  std::vector<FontInfo*> written = {full.get(), &blank};
  std::vector<const std::string*> directories;
  ASSERT_TRUE(writer.Write(written, directories));
  const std::string golden = kHeader + kFullRecord + kEmptyRecord;
  EXPECT_EQ(readFile(Table()), golden);

  FontInfoSerializer serializer(Base());
  std::vector<FontInfo*> list;
  ASSERT_TRUE(serializer.Read(list));
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1]->GetInfoIndex(), 1);
  EXPECT_EQ(list[0]->GetAlternateName(), nullptr);
  EXPECT_EQ(list[0]->GetFontMetrics()->GetDescender(), -200);
  EXPECT_EQ(*serializer.GetDefaultFontIndexes(), std::vector<int>(5, 0));
  FontInfoSerializer again(Base() + "again/");
  ASSERT_TRUE(again.Write(list, directories));
  EXPECT_EQ(readFile(dir_.file("again/FInfo/Ftable")), golden);
  deleteAll(list);
}

// Fields the golden record leaves empty read back too; five default font
// indexes are kept.
TEST_F(FontInfoSerializerTest, OtherFieldsAndTheDefaultIndexesReadBack) {
  auto full = fullInfo();
  full->SetStyleName(new std::string("Bold Italic"));
  full->SetVerticalMetrics(true);
  full->AddLocalizedName(0x0412, "\xEB\x8F\x8B\xEC\x9B\x80");
  full->SetFileSize(-5);
  std::vector<FontInfo*> list = {full.get()}, read;
  std::vector<const std::string*> directories;
  FontInfoSerializer writer(Base());
  writer.SetDefaultFontIndexes({3, -1, 70000, 2, 1, 99});
  ASSERT_TRUE(writer.Write(list, directories));
  FontInfoSerializer reader(Base());
  ASSERT_TRUE(reader.Read(read));
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(*read[0]->GetStyleName(), "Bold Italic");
  EXPECT_TRUE(read[0]->HasVerticalMetrics());
  EXPECT_EQ(read[0]->GetFileSize(), -5);
  EXPECT_EQ(read[0]->GetLocalizedNames(), full->GetLocalizedNames());
  EXPECT_EQ(*reader.GetDefaultFontIndexes(), (std::vector<int>{3, -1, 70000, 2, 1}));
  deleteAll(read);
}

TEST_F(FontInfoSerializerTest, LocalizedNameQuirks) {
  FontInfoSerializer serializer(Base());
  // Ten or more entries: the count reads as its leading digits ("0a": 0).
  FontInfo info;
  info.SetFontName(new std::string("Many"));
  for (int code : {0x0409, 0x0412, 0x0411, 0x0804, 0x0404, 0x0407, 0x040C, 0x0410, 0x0419, 0x0C0A}) {
    info.AddLocalizedName(code, "n");
  }
  std::string record;
  serializer.Write(info, record, 0);
  // Ten entries of 10 bytes, the first one (lowest code, 0x0404) zh-TW.
  EXPECT_NE(record.find("007a" "0a" "0a" "05zh-TW" "01n" "0a"), std::string::npos) << record;
  FontInfo read;
  ASSERT_TRUE(serializer.Read(read, record));
  EXPECT_TRUE(read.GetLocalizedNames().empty());
  EXPECT_EQ(*read.GetFontName(), "Many");
  // A language seen twice keeps its first name.
  std::string twice = "010" "010" "010" "000000" "000" "000000"
                      "001c" "02" "0b" "05en-US" "02AA" "0b" "05en-US" "02BB"
                      "0000\n";
  FontInfo first;
  ASSERT_TRUE(serializer.Read(first, twice));
  EXPECT_EQ(first.GetLocalizedNames(), (std::map<int, std::string>{{0x0409, "AA"}}));
}

TEST_F(FontInfoSerializerTest, VersionIsComparedOverTheStoredLengthOnly) {
  FontInfoSerializer serializer(Base());
  const std::pair<std::string, bool> cases[] = {
      {"12Table Version 2.05\n", true}, {"00\n", true},
      {"13Table Version 2.053\n", false}, {"14Table Version 2.054\n", false},
      {"13Table", false}, {"1", false},
  };
  for (const auto& c : cases) {
    std::string section = c.first;
    EXPECT_EQ(serializer.CheckTableVersion(section), c.second) << c.first;
  }
  // Another version yields no records.
  std::string table = kHeader + kFullRecord;
  table[24] = '3';  // "Table Version 2.034"
  ASSERT_TRUE(writeFile(Table(), table));
  FontInfoSerializer reader(Base());
  EXPECT_FALSE(reader.ReadHeader());
  std::vector<FontInfo*> list;
  EXPECT_FALSE(reader.Read(list));
  EXPECT_TRUE(list.empty());
  EXPECT_FALSE(reader.IsVersionMatched());
}

TEST_F(FontInfoSerializerTest, DirectoryTimesAndAMissingDirectory) {
  std::string one = dir_.file("fonts1");
  std::string missing = dir_.file("missing");
  std::string three = dir_.file("fonts3");
  ASSERT_EQ(mkdir(one.c_str(), 0755), 0);
  ASSERT_EQ(mkdir(three.c_str(), 0755), 0);
  setModified(one, 1700000000);
  setModified(three, 1600000000);
  std::vector<const std::string*> directories = {&one, &missing, &three};
  std::vector<FontInfo*> list;
  {
    FontInfoSerializer serializer(Base());
    ASSERT_TRUE(serializer.Write(list, directories));
  }
  std::string t1 = directoryTime(1700000000);
  std::string t3 = directoryTime(1600000000);
  ASSERT_EQ(t1.size(), 17u);
  EXPECT_EQ(readFile(Table()),
            kHeader.substr(0, 26) + "0029" "03" "11" + t1 + "11" + t3 + "\n" + kHeader.substr(33));

  FontInfoSerializer serializer(Base());
  ASSERT_TRUE(serializer.ReadHeader());
  EXPECT_EQ(serializer.GetFontDirectoryTimes(), (std::vector<std::string>{t1, t3}));
  EXPECT_TRUE(serializer.IsModified(directories));
  std::vector<const std::string*> existing = {&one, &three};
  EXPECT_FALSE(serializer.IsModified(existing));
  setModified(three, 1600000060);
  EXPECT_TRUE(serializer.IsModified(existing));
}

TEST_F(FontInfoSerializerTest, TwelveDirectoriesAreCountedInHexAndReadAsZero) {
  std::vector<std::string> paths;
  for (int i = 0; i < 12; ++i) {
    paths.push_back(dir_.file("d" + std::to_string(i)));
    ASSERT_EQ(mkdir(paths.back().c_str(), 0755), 0);
  }
  std::vector<const std::string*> directories;
  for (const std::string& path : paths) directories.push_back(&path);
  std::vector<FontInfo*> list;
  {
    FontInfoSerializer serializer(Base());
    ASSERT_TRUE(serializer.Write(list, directories));
  }
  std::string table = readFile(Table());
  EXPECT_EQ(table.substr(26, 6), "00e7" "0c");  // 2 + 12 * 19 + 1 bytes
  FontInfoSerializer serializer(Base());
  ASSERT_TRUE(serializer.ReadHeader());
  EXPECT_TRUE(serializer.GetFontDirectoryTimes().empty());
  EXPECT_TRUE(serializer.IsModified(directories));
}

TEST_F(FontInfoSerializerTest, NumberFieldQuirks) {
  FontInfoSerializer serializer(Base());
  std::string text;
  serializer.WriteUInt32(text, 0xFFFFFFFFu);  // the 32 bits printed signed
  serializer.WriteSize2(text, 300);           // too long for two digits: written wider
  EXPECT_EQ(text, "-1" "12c");
  const char* cursor = text.c_str();
  EXPECT_EQ(serializer.ReadInt(&cursor, 2), -1);
  EXPECT_EQ(serializer.ReadInt(&cursor, 3), 12);  // leading digits only
  // A length above the number buffer is clamped, and the cursor still moves.
  std::string digits(400, '7');
  cursor = digits.c_str();
  serializer.ReadInt(&cursor, 400);
  EXPECT_EQ(cursor, digits.c_str() + 400);
}

TEST_F(FontInfoSerializerTest, FieldsRunningPastTheirRecordOrBlockAreRejected) {
  FontInfoSerializer serializer(Base());
  FontInfo info;
  for (std::string record : {std::string("010"), std::string("010011010ffFoo"),
                             std::string("010011010000000000" "02" "9123456789" "00000000000000\n")}) {
    EXPECT_FALSE(serializer.Read(info, record)) << record;
  }
  EXPECT_EQ(info.GetFontName(), nullptr);
  EXPECT_EQ(info.GetPanose(), nullptr);
}

TEST_F(FontInfoSerializerTest, TruncatedTablesKeepTheRecordsThatParseAndGarbageGivesNone) {
  FontInfoSerializer first(Base());
  std::string table = kHeader + kFullRecord + kEmptyRecord;
  size_t secondStart = kHeader.size() + kFullRecord.size();
  for (size_t cut = 1; cut <= table.size(); ++cut) {
    ASSERT_TRUE(writeFile(Table(), table.substr(0, cut)));
    FontInfoSerializer serializer(Base());
    std::vector<FontInfo*> list;
    bool read = serializer.Read(list);
    size_t expected = cut < secondStart ? 0 : cut < table.size() ? 1 : 2;
    EXPECT_EQ(list.size(), expected) << cut;
    EXPECT_EQ(read, expected > 0) << cut;
    deleteAll(list);
  }
  for (const std::string& garbage : {std::string(64, 'f'), kHeader + "ffff" + kFullRecord.substr(4),
                                     std::string("0016" "ff" "Table Version 2.054\n")}) {
    ASSERT_TRUE(writeFile(Table(), garbage));
    FontInfoSerializer serializer(Base());
    // What the caller's list already held does not count as read.
    FontInfo held;
    std::vector<FontInfo*> list{&held};
    EXPECT_FALSE(serializer.Read(list));
    EXPECT_EQ(list.size(), 1u);
  }
}

TEST_F(FontInfoSerializerTest, WritesTheDataFileByteForByte) {
  FontInfoSerializer serializer(Base());
  FontInfo info;
  info.SetInfoIndex(3);
  auto* metrics = new CharMetricsInfo();
  addAdvance(*metrics, 0x41, 1366);
  addAdvance(*metrics, 0x20, 500);
  info.SetCharMetricsInfo(metrics);
  auto* kerning = new KerningInfo();
  kerning->Register(65, 86, -120);
  info.SetKerningInfo(kerning);
  std::string path = "prefix:";
  serializer.MakeFontInfoDataFilePath(info, path);
  EXPECT_EQ(path, "prefix:" + Base() + "FInfo/Fdata/3");
  EXPECT_FALSE(serializer.IsDataFile(info));
  ASSERT_TRUE(serializer.WriteData(info));
  EXPECT_TRUE(serializer.IsDataFile(info));
  EXPECT_EQ(readFile(Data(3)), hex("01 00000000 7F000000 0200 2000 F401 4100 5605") + zeros(127) +
                                   hex("01000000 41000000 56000000 88FF"));
  // A file without a kerning part leaves the kerning alone.
  ASSERT_TRUE(writeFile(Data(3), hex("01 00000000 7F000000 0100 4100 0100") + zeros(127)));
  ASSERT_TRUE(serializer.ReadData(info));
  EXPECT_EQ(info.GetKerningInfo(), kerning);
  EXPECT_EQ(info.GetCharMetricsInfo()->GetCharMetrics(0x41)->GetAdvance(), 1);
  EXPECT_EQ(info.GetCharMetricsInfo()->GetCharMetrics(0x20), nullptr);
}

// Missing or empty files read as nothing; an info without tables writes no
// data file, and all-empty slots read as no metrics.
TEST_F(FontInfoSerializerTest, EmptyAndMissingFiles) {
  FontInfoSerializer serializer(Base() + "cache/");
  struct stat status;
  EXPECT_EQ(stat(dir_.file("cache/FInfo/Fdata").c_str(), &status), 0);  // folders created
  EXPECT_FALSE(serializer.IsTableExists());
  std::vector<FontInfo*> list;
  EXPECT_FALSE(serializer.Read(list));
  DefaultFontInfo defaults;
  EXPECT_FALSE(serializer.ReadDefaultFontInfo(defaults));
  ASSERT_TRUE(writeFile(dir_.file("cache/FInfo/Ftable"), ""));
  FontInfoSerializer empty(Base() + "cache/");
  EXPECT_TRUE(empty.IsTableExists());
  EXPECT_FALSE(empty.ReadHeader());
  EXPECT_FALSE(empty.Read(list));
  EXPECT_TRUE(list.empty());

  FontInfo info;
  info.SetInfoIndex(5);
  EXPECT_TRUE(empty.WriteData(info));
  EXPECT_FALSE(empty.IsDataFile(info));
  EXPECT_FALSE(empty.ReadData(info));
  info.SetCharMetricsInfo(new CharMetricsInfo());
  ASSERT_TRUE(empty.WriteData(info));
  EXPECT_EQ(readFile(dir_.file("cache/FInfo/Fdata/5")), zeros(128));
  EXPECT_FALSE(empty.ReadData(info));
  EXPECT_EQ(info.GetCharMetricsInfo(), nullptr);
}

// A data file cut in its metrics or in its kerning reads as nothing and
// leaves the record as it was (every cut: the component and fuzz tests).
TEST_F(FontInfoSerializerTest, TruncatedDataFilesLeaveTheRecordAlone) {
  FontInfoSerializer serializer(Base());
  const std::string metrics = hex("01 00000000 7F000000 0100 4100 0100") + zeros(127);
  const std::string kerning = hex("02000000 41000000 56000000 88FF 54000000 6F000000 C4FF");
  for (size_t cut : {size_t{1}, size_t{12}, metrics.size() + 3, metrics.size() + kerning.size() - 1}) {
    ASSERT_TRUE(writeFile(Data(9), (metrics + kerning).substr(0, cut)));
    FontInfo info;
    info.SetInfoIndex(9);
    auto* previous = new CharMetricsInfo();
    info.SetCharMetricsInfo(previous);
    EXPECT_FALSE(serializer.ReadData(info)) << cut;
    EXPECT_EQ(info.GetCharMetricsInfo(), previous) << cut;
    EXPECT_EQ(info.GetKerningInfo(), nullptr) << cut;
  }
  ASSERT_TRUE(writeFile(Data(9), metrics + kerning));
  FontInfo info;
  info.SetInfoIndex(9);
  ASSERT_TRUE(serializer.ReadData(info));
  EXPECT_EQ(info.GetCharMetricsInfo()->GetCharMetrics(0x41)->GetAdvance(), 1);
  EXPECT_EQ(info.GetKerningInfo()->GetDelta(84, 111), -60);
}

TEST_F(FontInfoSerializerTest, DefaultFontInfoFileRoundTripAndDamage) {
  FontInfoSerializer serializer(Base());
  DefaultFontInfo defaults;
  addDefaultFont(defaults, 0x41, 3);
  addDefaultFont(defaults, 0xAC00, 1);
  ASSERT_TRUE(serializer.WriteDefaultFontInfo(defaults));
  DefaultFontInfo read;
  ASSERT_TRUE(serializer.ReadDefaultFontInfo(read));
  EXPECT_EQ(read.GetFontIndex(0x41), 3);
  EXPECT_EQ(read.GetFontIndex(0xAC00), 1);
  EXPECT_EQ(read.GetFontIndex(0xAC01), -1);
  ASSERT_TRUE(writeFile(dir_.file("FInfo/fi"), readFile(dir_.file("FInfo/fi")).substr(0, 20)));
  DefaultFontInfo damaged;
  EXPECT_FALSE(serializer.ReadDefaultFontInfo(damaged));
  EXPECT_EQ(damaged.GetFontIndex(0x41), -1);
}

// A part that refuses to write (a reversed range) fails the write and
// leaves the previous file as it was.
TEST_F(FontInfoSerializerTest, RefusedPartsKeepTheOldFile) {
  FontInfoSerializer serializer(Base());
  FontInfo info;
  info.SetInfoIndex(1);
  auto* metrics = new CharMetricsInfo();
  addAdvance(*metrics, 0x41, 1366);
  info.SetCharMetricsInfo(metrics);
  ASSERT_TRUE(serializer.WriteData(info));
  DefaultFontInfo defaults;
  ASSERT_TRUE(serializer.WriteDefaultFontInfo(defaults));
  const std::string data = readFile(Data(1));
  const std::string fi = readFile(dir_.file("FInfo/fi"));

  metrics->SetCharMetricsRange(5, new SingleCharMetricsRange(10, 5));
  defaults.SetDefaultFontRange(5, new SingleDefaultFontRange(10, 5));
  EXPECT_FALSE(serializer.WriteData(info));
  EXPECT_FALSE(serializer.WriteDefaultFontInfo(defaults));
  EXPECT_EQ(readFile(Data(1)), data);
  EXPECT_EQ(readFile(dir_.file("FInfo/fi")), fi);
}

TEST_F(FontInfoSerializerTest, UnwritableFilesFail) {
  FontInfoSerializer serializer(Base());
  // Folders where the files should go: no mode (and no user) can write them.
  ASSERT_EQ(mkdir(Data(1).c_str(), 0755), 0);
  ASSERT_EQ(mkdir(Table().c_str(), 0755), 0);
  ASSERT_EQ(mkdir(dir_.file("FInfo/fi").c_str(), 0755), 0);
  FontInfo info;
  info.SetInfoIndex(1);
  info.SetKerningInfo(new KerningInfo());
  EXPECT_FALSE(serializer.WriteData(info));
  std::vector<FontInfo*> list;
  std::vector<const std::string*> directories;
  EXPECT_FALSE(serializer.Write(list, directories));
  DefaultFontInfo defaults;
  EXPECT_FALSE(serializer.WriteDefaultFontInfo(defaults));
  // Reading them fails quietly too.
  EXPECT_FALSE(serializer.ReadData(info));
  EXPECT_FALSE(serializer.ReadHeader());
  EXPECT_FALSE(serializer.ReadDefaultFontInfo(defaults));
}

}  // namespace
