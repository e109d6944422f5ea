#include "common/registry/DefaultFontsReader.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/common/registry/FontListFixtures.h"

namespace {

using kelfont_test::addFont;
using qro_common::DefaultFontsReader;
using List = std::vector<int>;

class DefaultFontsReaderTest : public kelfont_test::ListTest {
 protected:
  void SetUp() override {
    for (const char* name : {"A", "B", "C", "D", "E", "F"}) fonts.push_back(addFont(table, name));
    addFont(table, "NoFile", "");
    korean = addFont(table, "Gulim", "/fonts/gulim.ttc", {{0x412, "굴림"}});
  }
  List read(const std::string& text) {
    EXPECT_TRUE(kelfont_test::writeFile(dirs.file("df"), text));
    DefaultFontsReader reader(dirs.data);
    std::unique_ptr<List> result(reader.Read(table));
    EXPECT_NE(result, nullptr);
    return result ? *result : List{-99};
  }
  int font(char name) const { return fonts[name - 'A']; }

  std::vector<int> fonts;
  int korean = -1;
};

TEST_F(DefaultFontsReaderTest, AtMostFiveGroupsOneFontEach) {
  const List firstFive = {font('A'), font('B'), font('C'), font('D'), font('E')};
  EXPECT_EQ(read("A\n\nB\n\nC\n\nD\n\nE\n\nF\n"), firstFive);
  EXPECT_EQ(read("A\nB\n\n\n\nB\nC\n\n \t\nC\n#D\n\nD\n\nE\n\nF\n\n"), firstFive);
  // The first available candidate of a group wins; unknown names, fonts
  // without file and comments add nothing.
  EXPECT_EQ(read("NoFile\nUnknown\nC\nA\n\nB"), (List{font('C'), font('B')}));
  EXPECT_EQ(read("Unknown\nNoFile\n#A\n\nE\n\n a\n\nB \n\nF\n\nC\n"), (List{font('E'), font('F')}));
  // A leading blank line ends an empty first group, so four groups remain.
  EXPECT_EQ(read("\nA\n\nB\n\nC\n\nD\n\nE\n\nF\n"), (List{font('A'), font('B'), font('C'), font('D')}));
  EXPECT_EQ(read(""), List{});
}

TEST_F(DefaultFontsReaderTest, CarriageReturnsAreDropped) {
  EXPECT_EQ(read("Unknown\r\nB\r\n\r\nA\r\n\r\nC\r"), (List{font('B'), font('A'), font('C')}));
  EXPECT_EQ(read("굴림\r\n"), (List{korean}));
  EXPECT_EQ(read("A\rB\n\nF\n"), (List{font('F')}));  // "AB" is not a font
}

TEST_F(DefaultFontsReaderTest, AMissingFileReadsAsNothingButMakesTheDirectory) {
  std::string made = dirs.temp.path() + "/made/";
  DefaultFontsReader missing(made);
  EXPECT_TRUE(isDirectory(made));
  EXPECT_FALSE(missing.IsFileExists());
  EXPECT_EQ(missing.Read(table), nullptr);
}

}  // namespace
