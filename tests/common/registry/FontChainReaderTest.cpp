#include "common/registry/FontChainReader.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/common/registry/FontListFixtures.h"

namespace {

using kelfont_test::addFont;
using qro_common::FontChainReader;
using Values = std::map<int, std::vector<int>>;

class FontChainReaderTest : public kelfont_test::ListTest {
 protected:
  void SetUp() override {
    a = addFont(table, "Arial");
    b = addFont(table, "Gulim");
    c = addFont(table, "Symbol");
    d = addFont(table, "Batang");
  }
  void TearDown() override { clear(); }
  void clear() {
    for (auto& entry : chains) delete entry.second;
    chains.clear();
  }
  // Writes fc, reads it into `chains` and gives them as plain values.
  Values read(const std::string& text, bool ok = true) {
    EXPECT_TRUE(kelfont_test::writeFile(dirs.file("fc"), text));
    EXPECT_EQ(FontChainReader(dirs.data).Read(table, chains), ok);
    Values out;
    for (const auto& entry : chains) out[entry.first] = *entry.second;
    return out;
  }

  std::map<int, std::vector<int>*> chains;
  int a = -1, b = -1, c = -1, d = -1;
};

TEST_F(FontChainReaderTest, ABlockNeedsAClosingBlankLine) {
  EXPECT_EQ(read("Arial\nGulim\nSymbol\n\nBatang\nArial\n"), (Values{{a, {b, c}}}));
  clear();
  // Blank lines hold only TAB and SPACE; comments neither add nor close.
  EXPECT_EQ(read("Batang\n# not a font\nSymbol\n \t \nGulim\nArial\n\n\n"),
            (Values{{d, {c}}, {b, {a}}}));
  clear();
  // Single names and duplicates add nothing; keys already there are kept.
  chains[d] = new std::vector<int>{a};
  EXPECT_EQ(read("Symbol\n\nArial\nGulim\n\nArial\nSymbol\n\nBatang\nGulim\n\n"),
            (Values{{a, {b}}, {d, {a}}}));
  clear();
  EXPECT_EQ(read("\n\n# only a comment\n"), Values{});
}

TEST_F(FontChainReaderTest, UnknownNamesBecomeFontsWithoutFile) {
  int fonts = table.GetFontCount();
  // " Gulim" keeps its leading space; the last block has no blank line, but
  // its names are registered all the same.
  Values values = read("Arial\nKelNoSuch\n Gulim\nKelNoSuch\n\nLast\nOne");
  EXPECT_EQ(values, (Values{{a, {fonts, fonts + 1, fonts}}}));
  EXPECT_EQ(table.GetFontIndex("KelNoSuch"), fonts);
  EXPECT_EQ(table.GetFontIndex(" Gulim"), fonts + 1);
  EXPECT_EQ(table.GetFontIndex("One"), fonts + 3);
  EXPECT_TRUE(table.GetFont(fonts)->IsWithoutFile());
  EXPECT_EQ(table.GetFontInfo(fonts, false, false, false), nullptr);
  ASSERT_NE(table.GetFontInfo(fonts, false, false, true), nullptr);
  EXPECT_EQ(*table.GetFontInfo(fonts, false, false, true)->GetFontName(), "KelNoSuch");
}

TEST_F(FontChainReaderTest, CarriageReturnsStayInTheNames) {
  int fonts = table.GetFontCount();
  // "\r" is a name, not a blank line: the block runs on to the real one.
  EXPECT_EQ(read("Arial\r\nGulim\r\n\r\nBatang\nSymbol\n\n"),
            (Values{{fonts, {fonts + 1, fonts + 2, d, c}}}));
  EXPECT_EQ(table.GetFontIndex("Arial\r"), fonts);
  EXPECT_EQ(table.GetFontIndex("\r"), fonts + 2);
}

TEST_F(FontChainReaderTest, AMissingFileFailsButMakesTheDirectory) {
  std::string data = dirs.temp.path() + "/made/";
  FontChainReader reader(data);
  EXPECT_FALSE(reader.Read(table, chains));
  EXPECT_TRUE(chains.empty());
  EXPECT_TRUE(isDirectory(data));
  // Outside Read() a line changes nothing.
  std::string line = "Arial";
  reader.BuildFontChain(line);
  EXPECT_EQ(line, "Arial");
}

}  // namespace
