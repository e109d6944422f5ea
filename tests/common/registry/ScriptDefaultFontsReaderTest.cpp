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
using qro_common::ScriptDefaultFontsReader;

class ScriptDefaultFontsReaderTest : public kelfont_test::ListTest {
 protected:
  void SetUp() override {
    for (const char* name : {"FontX", "FontY", "FontZ", "KelTest 2"}) fonts.push_back(addFont(table, name));
    addFont(table, "NoFile", "");
  }
  // The entries that are set, after reading `text` as the "sf" file.
  std::map<int, int> read(const std::string& text) {
    std::string path = dirs.file("sf");
    EXPECT_TRUE(kelfont_test::writeFile(path, text));
    ScriptDefaultFontsReader reader(path);
    std::vector<int>* list = reader.Read(table);
    EXPECT_EQ(list->size(), 128u);
    std::map<int, int> set;
    for (size_t i = 0; i < list->size(); ++i) {
      if ((*list)[i] != -1) set[static_cast<int>(i)] = (*list)[i];
    }
    return set;
  }
  std::vector<int> fonts;
};

TEST_F(ScriptDefaultFontsReaderTest, NumberLinesSelectTheEntryOfTheNamesBelow) {
  const int x = fonts[0], y = fonts[1], z = fonts[2];
  EXPECT_EQ(read("3\nFontX\nFontY\n"), (std::map<int, int>{{3, x}}));
  // A last line without LF is ignored; the number carries over lines.
  EXPECT_EQ(read("3\nNoFile\nUnknown\n#FontX\nFontY\n7\n\nFontX\nFontZ"),
            (std::map<int, int>{{3, y}, {7, x}}));
  // Names before any number fill entry 0; a repeated number keeps its font.
  EXPECT_EQ(read("FontZ\n3\nFontX\n3\nFontY\n127\n FontY\nFontY\n"),
            (std::map<int, int>{{0, z}, {3, x}, {127, y}}));
  // Digits anywhere change the number: "12 FontX" is looked up whole but
  // sets 12; "KelTest 2" sets 0 before it is looked up.
  EXPECT_EQ(read("5\n12 FontX\nFontY\n"), (std::map<int, int>{{12, y}}));
  EXPECT_EQ(read("56\nKelTest 2\nFontX\n"), (std::map<int, int>{{0, fonts[3]}}));
  EXPECT_EQ(read("56\r\nFontX\r\n9\r\nFontY\r\n"), (std::map<int, int>{{56, x}, {9, y}}));
  EXPECT_EQ(read(""), (std::map<int, int>{}));
}

TEST_F(ScriptDefaultFontsReaderTest, NumbersAreReadAsAtoiAndKeptAsAByte) {
  for (const char* number : {" \t+12", "0099", "300", "4294967352", "-1", "200", "-200",
                             "99999999999999999999999", "+-5", "7up", "-9223372036854775808"}) {
    int byte = static_cast<unsigned char>(std::atoi(number));
    std::map<int, int> expected;
    if (byte < 128) expected[byte] = fonts[0];
    EXPECT_EQ(read(std::string(number) + "\nFontX\n"), expected) << number;
  }
  EXPECT_EQ(read("300\nFontX\n"), (std::map<int, int>{{44, fonts[0]}}));  // the reference itself
  // A very long digit run saturates (entry 255: ignored) and stays fast.
  EXPECT_EQ(read(std::string(200000, '9') + "\nFontX\n5\nFontY\n"),
            (std::map<int, int>{{5, fonts[1]}}));
}

TEST_F(ScriptDefaultFontsReaderTest, AMissingFileBecomesADirectory) {
  std::string path = dirs.file("sf_xx");
  ScriptDefaultFontsReader reader(path);
  struct stat st;
  ASSERT_EQ(stat(path.c_str(), &st), 0);
  EXPECT_TRUE(S_ISDIR(st.st_mode));
  EXPECT_TRUE(reader.IsFileExists());
  EXPECT_EQ(*reader.Read(table), std::vector<int>(128, -1));
}

}  // namespace
