#include "common/registry/ScriptDefaultFontsReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "common/registry/FontTable.h"
#include "tests/common/registry/FontListFixtures.h"

namespace {

using kelfont_test::addFont;
using kelfont_test::ListDirs;
using qro_common::FontTable;
using qro_common::ScriptDefaultFontsReader;

class ScriptDefaultFontsReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    x = addFont(table, "FontX");
    y = addFont(table, "FontY");
    z = addFont(table, "FontZ");
    two = addFont(table, "KelTest 2");
    noFile = addFont(table, "NoFile", "");
  }
  // The entries that are set, after reading `text` as the "sf" file.
  std::map<int, int> read(const std::string& text) {
    EXPECT_TRUE(kelfont_test::writeFile(dirs.file("sf"), text));
    std::string path = dirs.file("sf");
    ScriptDefaultFontsReader reader(path);
    std::vector<int>* fonts = reader.Read(table);
    EXPECT_EQ(fonts->size(), 128u);
    std::map<int, int> set;
    for (size_t i = 0; i < fonts->size(); ++i) {
      if ((*fonts)[i] != -1) set[static_cast<int>(i)] = (*fonts)[i];
    }
    return set;
  }

  ListDirs dirs;
  FontTable table;
  int x = -1, y = -1, z = -1, two = -1, noFile = -1;
};

TEST_F(ScriptDefaultFontsReaderTest, NumberLinesSelectTheEntryOfTheNamesBelow) {
  EXPECT_EQ(read("3\nFontX\nFontY\n"), (std::map<int, int>{{3, x}}));
  // A last line without LF is ignored; the number carries over lines.
  EXPECT_EQ(read("3\nNoFile\nUnknown\n#FontX\nFontY\n7\n\nFontX\nFontZ"),
            (std::map<int, int>{{3, y}, {7, x}}));
  // Names before any number fill entry 0; a repeated number keeps its font.
  EXPECT_EQ(read("FontZ\n3\nFontX\n3\nFontY\n127\n FontY\nFontY\n"),
            (std::map<int, int>{{0, z}, {3, x}, {127, y}}));
}

TEST_F(ScriptDefaultFontsReaderTest, DigitsAnywhereChangeTheNumber) {
  // "12 FontX" is looked up whole, but it has set the number to 12.
  EXPECT_EQ(read("5\n12 FontX\nFontY\n"), (std::map<int, int>{{12, y}}));
  // "KelTest 2" sets the number to 0 before it is looked up.
  EXPECT_EQ(read("56\nKelTest 2\nFontX\n"), (std::map<int, int>{{0, two}}));
  EXPECT_EQ(read("56\r\nFontX\r\n9\r\nFontY\r\n"), (std::map<int, int>{{56, x}, {9, y}}));
}

TEST_F(ScriptDefaultFontsReaderTest, NumbersAreReadAsAtoiAndKeptAsAByte) {
  const char* numbers[] = {"0",
                           " \t+12",
                           "0099",
                           "300",
                           "4294967352",
                           "-1",
                           "200",
                           "-200",
                           "255",
                           "99999999999999999999999",
                           "+-5",
                           "7up",
                           "18446744073709551656",
                           "-9223372036854775808"};
  for (const char* number : numbers) {
    SCOPED_TRACE(number);
    int byte = static_cast<unsigned char>(std::atoi(number));
    std::map<int, int> expected;
    if (byte < 128) expected[byte] = x;
    EXPECT_EQ(read(std::string(number) + "\nFontX\n"), expected);
  }
  // Spot checks of the reference itself.
  EXPECT_EQ(read("300\nFontX\n"), (std::map<int, int>{{44, x}}));
  EXPECT_EQ(read("4294967352\nFontX\n"), (std::map<int, int>{{56, x}}));
  // A very long digit run saturates (entry 255: ignored) and stays fast.
  EXPECT_EQ(read(std::string(200000, '9') + "\nFontX\n5\nFontY\n"), (std::map<int, int>{{5, y}}));
}

TEST_F(ScriptDefaultFontsReaderTest, AMissingFileBecomesADirectory) {
  std::string path = dirs.file("sf_xx");
  ScriptDefaultFontsReader reader(path);
  struct stat st;
  ASSERT_EQ(stat(path.c_str(), &st), 0);
  EXPECT_TRUE(S_ISDIR(st.st_mode));
  EXPECT_TRUE(reader.IsFileExists());
  EXPECT_EQ(*reader.Read(table), std::vector<int>(128, -1));

  // An empty file reads as nothing.
  EXPECT_EQ(read(""), (std::map<int, int>{}));
}

}  // namespace
