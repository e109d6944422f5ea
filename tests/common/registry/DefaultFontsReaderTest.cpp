#include "common/registry/DefaultFontsReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "common/registry/FontTable.h"
#include "tests/common/registry/FontListFixtures.h"

namespace {

using kelfont_test::addFont;
using kelfont_test::ListDirs;
using qro_common::DefaultFontsReader;
using qro_common::FontTable;

class DefaultFontsReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"A", "B", "C", "D", "E", "F"}) fonts.push_back(addFont(table, name));
    noFile = addFont(table, "NoFile", "");
    korean = addFont(table, "Gulim", "/fonts/gulim.ttc", {{0x412, "\xEA\xB5\xB4\xEB\xA6\xBC"}});
  }
  std::vector<int> read(const std::string& text) {
    EXPECT_TRUE(kelfont_test::writeFile(dirs.file("df"), text));
    DefaultFontsReader reader(dirs.data);
    std::unique_ptr<std::vector<int>> result(reader.Read(table));
    EXPECT_NE(result, nullptr);
    return result ? *result : std::vector<int>{-99};
  }
  int font(char name) const { return fonts[name - 'A']; }

  ListDirs dirs;
  FontTable table;
  std::vector<int> fonts;
  int noFile = -1, korean = -1;
};

TEST_F(DefaultFontsReaderTest, AtMostFiveGroupsOneFontEach) {
  std::vector<int> firstFive = {font('A'), font('B'), font('C'), font('D'), font('E')};
  EXPECT_EQ(read("A\n\nB\n\nC\n\nD\n\nE\n\nF\n"), firstFive);
  EXPECT_EQ(read("A\nB\n\n\n\nB\nC\n\n \t\nC\n#D\n\nD\n\nE\n\nF\n\n"), firstFive);
  // The first available candidate of a group wins.
  EXPECT_EQ(read("NoFile\nUnknown\nC\nA\n\nB"), (std::vector<int>{font('C'), font('B')}));
}

TEST_F(DefaultFontsReaderTest, EmptyGroupsLetLaterGroupsMoveUp) {
  // A leading blank line ends an empty first group, so four groups remain.
  EXPECT_EQ(read("\nA\n\nB\n\nC\n\nD\n\nE\n\nF\n"),
            (std::vector<int>{font('A'), font('B'), font('C'), font('D')}));
  // Unknown names, fonts without file and comments add nothing.
  EXPECT_EQ(read("Unknown\nNoFile\n#A\n\nE\n\n a\n\nB \n\nF\n\nC\n"),
            (std::vector<int>{font('E'), font('F')}));
}

TEST_F(DefaultFontsReaderTest, CarriageReturnsAreDropped) {
  EXPECT_EQ(read("Unknown\r\nB\r\n\r\nA\r\n\r\nC\r"),
            (std::vector<int>{font('B'), font('A'), font('C')}));
  EXPECT_EQ(read("\xEA\xB5\xB4\xEB\xA6\xBC\r\n"), (std::vector<int>{korean}));
  EXPECT_EQ(read("A\rB\n"), (std::vector<int>{}));  // "AB" is not a font
  EXPECT_EQ(read("A\rB\n\nF\n"), (std::vector<int>{font('F')}));
}

TEST_F(DefaultFontsReaderTest, MissingAndEmptyFiles) {
  std::string made = dirs.temp.path() + "/made/";
  DefaultFontsReader missing(made);
  struct stat st;
  EXPECT_EQ(stat(made.c_str(), &st), 0);  // the data directory is made
  EXPECT_FALSE(missing.IsFileExists());
  EXPECT_EQ(missing.Read(table), nullptr);

  EXPECT_EQ(read(""), std::vector<int>{});
  DefaultFontsReader present(dirs.data);
  EXPECT_TRUE(present.IsFileExists());
}

}  // namespace
