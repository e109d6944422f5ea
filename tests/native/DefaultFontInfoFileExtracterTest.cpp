#include "native/DefaultFontInfoFileExtracter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zlib.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "base/Environment.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPackage.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_ni::DefaultFontInfoFileExtracter;
using Entries = std::vector<std::pair<std::string, std::string>>;

bool exists(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0;
}

// Writes <dir>/qrfont.zip with the library's own zip writer.
void writePackage(const std::string& dir, const Entries& entries) {
  kelfont_test::TestPackage package;
  for (const auto& [name, bytes] : entries) package.add(name, bytes);
  ASSERT_TRUE(package.write(dir));
}

std::string le16(unsigned v) { return {static_cast<char>(v & 0xFF), static_cast<char>(v >> 8)}; }
std::string le32(unsigned long v) { return le16(v & 0xFFFF) + le16((v >> 16) & 0xFFFF); }

// A one-entry archive, stored, whose headers claim `claimed` bytes for
// `data` (written by hand: the library's writer cannot lie).
std::string lyingArchive(const std::string& name, const std::string& data, unsigned long claimed) {
  unsigned long crc =
      crc32(0, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size()));
  std::string sizes = le32(crc) + le32(claimed) + le32(claimed);
  std::string local = "PK\x03\x04" + le16(10) + le16(0) + le16(0) + le32(0) + sizes +
                      le16(static_cast<unsigned>(name.size())) + le16(0) + name + data;
  std::string central = "PK\x01\x02" + le16(10) + le16(10) + le16(0) + le16(0) + le32(0) + sizes +
                        le16(static_cast<unsigned>(name.size())) + le16(0) + le16(0) + le16(0) +
                        le16(0) + le32(0) + le32(0) + name;
  return local + central + "PK\x05\x06" + le16(0) + le16(0) + le16(1) + le16(1) +
         le32(central.size()) + le32(local.size()) + le16(0);
}

// A data directory with FInfo/ and FInfo/Fdata/ and a package directory.
struct Dirs {
  TempDir temp;
  std::string data = temp.path() + "/data/";
  std::string package = temp.path() + "/package/";
  Dirs() {
    for (const std::string& dir : {data, data + "FInfo", data + "FInfo/Fdata", package}) {
      mkdir(dir.c_str(), 0775);
    }
  }
  std::string out(const std::string& name) const { return data + "FInfo/" + name; }
};

TEST(DefaultFontInfoFileExtracter, ExtractsEveryEntryByteForByte) {
  Dirs dirs;
  std::string binary, big;  // every byte value; more than one inflater block
  for (int i = 0; i < 768; ++i) binary += static_cast<char>(i % 256);
  for (int i = 0; i < 20000; ++i) big += "Ftable line " + std::to_string(i * 7919 % 10007) + "\n";
  const Entries entries = {{"Ftable", big},          {"Fdata/12", binary}, {"fc", "Arial\r\nGulim\n\n"},
                           {"df", "Gulim\n\nArial\n"}, {"sf", "56\nGulim\n"}, {"sf_ko", "56\nBatang\n"}};
  Entries package = entries;
  package.insert(package.end(), {{"Fdata/", ""}, {"Fdata/3", "three"}, {"sf_ja", ""}});
  writePackage(dirs.package, package);
  // Extraction truncates what was there; a failed one leaves it alone.
  ASSERT_TRUE(writeFile(dirs.out("fc"), std::string(5000, 'x')));
  ASSERT_TRUE(writeFile(dirs.out("sf_ja"), "old"));

  DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
  EXPECT_TRUE(extracter.ExtractFontTable());
  EXPECT_TRUE(extracter.ExtractFontChain());
  EXPECT_TRUE(extracter.ExtractDefaultFontsList());
  EXPECT_TRUE(extracter.ExtractScriptDefaultFontsList());
  EXPECT_TRUE(extracter.ExtractScriptDefaultFontsList("ko"));
  extracter.ExtractFontInfoData(12);
  for (const auto& [name, bytes] : entries) EXPECT_EQ(readFile(dirs.out(name)), bytes) << name;
  EXPECT_FALSE(exists(dirs.out("Fdata/3")));  // only what was asked for

  // Empty and missing entries give false and write nothing.
  EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList("ja"));
  EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList("zh"));
  extracter.ExtractFontInfoData(4);
  EXPECT_FALSE(extracter.Extract("Fdata/"));  // the folder entry is empty
  EXPECT_FALSE(extracter.Extract("FTABLE"));  // names are case-sensitive
  EXPECT_EQ(readFile(dirs.out("sf_ja")), "old");
  for (const char* name : {"sf_zh", "Fdata/4", "FTABLE"}) EXPECT_FALSE(exists(dirs.out(name)));
}

TEST(DefaultFontInfoFileExtracter, NoUsablePackageGivesFalseEverywhere) {
  Dirs dirs;
  std::vector<std::pair<const char*, std::string>> packages = {
      {"missing", ""},
      {"not a zip", "Ftable\nfc\n" + std::string(3000, 'P')},
      {"cut short", lyingArchive("Ftable", "table", 5).substr(0, 40)}};
  for (const auto& [label, bytes] : packages) {
    SCOPED_TRACE(label);
    if (!bytes.empty()) {
      ASSERT_TRUE(writeFile(dirs.package + "qrfont.zip", bytes));
    }
    DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
    EXPECT_FALSE(extracter.ExtractFontTable());
    EXPECT_FALSE(extracter.ExtractFontChain());
    EXPECT_FALSE(extracter.ExtractDefaultFontsList());
    EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList());
    EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList("ko"));
    extracter.ExtractFontInfoData(0);
    EXPECT_FALSE(exists(dirs.out("Ftable")));
    EXPECT_FALSE(exists(dirs.out("Fdata/0")));
  }
}

TEST(DefaultFontInfoFileExtracter, SizesTheEntryCannotBackAreRefused) {
  Dirs dirs;
  ASSERT_TRUE(writeFile(dirs.out("Ftable"), "kept"));
  struct Case {
    const char* label;
    unsigned long claimed;
  } cases[] = {{"above the limit", 300ul * 1024 * 1024},
               {"negative when sign-extended", 0x80000010ul},
               {"longer than the archive", 100000ul}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    ASSERT_TRUE(writeFile(dirs.package + "qrfont.zip", lyingArchive("Ftable", "table", c.claimed)));
    DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
    EXPECT_FALSE(extracter.ExtractFontTable());
    EXPECT_EQ(readFile(dirs.out("Ftable")), "kept");
  }
  // The same archive with honest sizes is extracted.
  ASSERT_TRUE(writeFile(dirs.package + "qrfont.zip", lyingArchive("Ftable", "table", 5)));
  DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
  EXPECT_TRUE(extracter.ExtractFontTable());
  EXPECT_EQ(readFile(dirs.out("Ftable")), "table");
}

TEST(DefaultFontInfoFileExtracter, NamesCannotLeaveTheFolderAndFoldersAreNotMade) {
  Dirs dirs;
  writePackage(dirs.package, {{"../escaped", "x"}, {"Fdata/../../escaped", "x"},
                              {"sf_../../escaped", "x"}, {"sf_..\\escaped", "x"},
                              {"/tmp/escaped", "x"}, {"sf_..", "dots"}, {"Fdata/7", "seven"}});
  DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
  for (const char* name : {"../escaped", "Fdata/../../escaped", "/tmp/escaped"}) {
    EXPECT_FALSE(extracter.Extract(name)) << name;
  }
  EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList("../../escaped"));
  EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList("..\\escaped"));
  EXPECT_FALSE(extracter.ExtractScriptDefaultFontsList(nullptr));
  EXPECT_FALSE(exists(dirs.data + "escaped"));
  EXPECT_FALSE(exists(dirs.data + "FInfo/escaped"));
  EXPECT_FALSE(exists(dirs.data + "FInfo/sf_..\\escaped"));
  // Dots inside a name are just part of it.
  EXPECT_TRUE(extracter.ExtractScriptDefaultFontsList(".."));
  EXPECT_EQ(readFile(dirs.out("sf_..")), "dots");
  // A missing Fdata folder is not created.
  rmdir((dirs.data + "FInfo/Fdata").c_str());
  extracter.ExtractFontInfoData(7);
  EXPECT_FALSE(exists(dirs.out("Fdata")));
}

TEST(DefaultFontInfoFileExtracter, ReloadReadsTheReplacedPackage) {
  Dirs dirs;
  writePackage(dirs.package, {{"fc", "first\n"}});
  DefaultFontInfoFileExtracter extracter(dirs.data, dirs.package);
  ASSERT_TRUE(extracter.ExtractFontChain());
  std::string staged = dirs.temp.path() + "/staged";
  mkdir(staged.c_str(), 0775);
  writePackage(staged, {{"fc", "second\n"}, {"df", "Arial\n"}});
  ASSERT_EQ(std::rename((staged + "/qrfont.zip").c_str(), (dirs.package + "qrfont.zip").c_str()),
            0);
  EXPECT_FALSE(extracter.ExtractDefaultFontsList());  // the old list has no "df"
  kelfont_test::LogCapture log;
  extracter.Reload();
  EXPECT_EQ(log.lines().size(), 1u);  // the old package was closed
  EXPECT_TRUE(extracter.ExtractFontChain());
  EXPECT_EQ(readFile(dirs.out("fc")), "second\n");
  EXPECT_TRUE(extracter.ExtractDefaultFontsList());
  EXPECT_EQ(readFile(dirs.out("df")), "Arial\n");
}

TEST(DefaultFontInfoFileExtracter, DataDirectoryComesFromTheEnvironment) {
  Dirs dirs;
  writePackage(dirs.package, {{"sf", "0\nArial\n"}});
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const std::string* saved = environment.GetFileStoragePath();
  std::string* previous = saved != nullptr ? new std::string(*saved) : nullptr;
  environment.SetFileStoragePath(new std::string(dirs.data));
  EXPECT_TRUE(DefaultFontInfoFileExtracter(dirs.package).ExtractScriptDefaultFontsList());
  environment.SetFileStoragePath(previous);
  EXPECT_EQ(readFile(dirs.out("sf")), "0\nArial\n");
}

}  // namespace
