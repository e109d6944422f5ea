#include "common/registry/FontChainReader.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "common/registry/FontTable.h"
#include "tests/common/registry/FontListFixtures.h"

namespace {

using kelfont_test::addFont;
using kelfont_test::ListDirs;
using qro_common::FontChainReader;
using qro_common::FontTable;
using Chains = std::map<int, std::vector<int>*>;

class FontChainReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    a = addFont(table, "Arial");
    b = addFont(table, "Gulim");
    c = addFont(table, "Symbol");
    d = addFont(table, "Batang");
  }
  void TearDown() override {
    for (auto& entry : chains) delete entry.second;
  }
  // Writes fc and reads it into `chains`.
  bool read(const std::string& text) {
    EXPECT_TRUE(kelfont_test::writeFile(dirs.file("fc"), text));
    FontChainReader reader(dirs.data);
    return reader.Read(table, chains);
  }
  // The chains as plain values.
  std::map<int, std::vector<int>> values() const {
    std::map<int, std::vector<int>> out;
    for (const auto& entry : chains) out[entry.first] = *entry.second;
    return out;
  }

  ListDirs dirs;
  FontTable table;
  Chains chains;
  int a = -1, b = -1, c = -1, d = -1;
};

TEST_F(FontChainReaderTest, ABlockNeedsAClosingBlankLine) {
  ASSERT_TRUE(read("Arial\nGulim\nSymbol\n\nBatang\nArial\n"));
  EXPECT_EQ(values(), (std::map<int, std::vector<int>>{{a, {b, c}}}));

  // Blank lines hold only TAB and SPACE; comments neither add nor close.
  for (auto& entry : chains) delete entry.second;
  chains.clear();
  ASSERT_TRUE(read("Batang\n# not a font\nSymbol\n \t \nGulim\nArial\n\n\n"));
  EXPECT_EQ(values(), (std::map<int, std::vector<int>>{{d, {c}}, {b, {a}}}));
}

TEST_F(FontChainReaderTest, SingleNamesDuplicatesAndKeysAlreadyThere) {
  chains[d] = new std::vector<int>{a};
  ASSERT_TRUE(read("Symbol\n\nArial\nGulim\n\nArial\nSymbol\n\nBatang\nGulim\n\n"));
  EXPECT_EQ(values(), (std::map<int, std::vector<int>>{{a, {b}}, {d, {a}}}));
}

TEST_F(FontChainReaderTest, UnknownNamesBecomeFontsWithoutFile) {
  int fonts = table.GetFontCount();
  // " Gulim" keeps its leading space; the last block has no blank line.
  ASSERT_TRUE(read("Arial\nKelNoSuch\n Gulim\nKelNoSuch\n\nLast\nOne"));
  int unknown = table.GetFontIndex("KelNoSuch");
  int spaced = table.GetFontIndex(" Gulim");
  ASSERT_EQ(unknown, fonts);
  ASSERT_EQ(spaced, fonts + 1);
  EXPECT_EQ(values(), (std::map<int, std::vector<int>>{{a, {unknown, spaced, unknown}}}));
  // Names of the dropped last block are registered all the same.
  EXPECT_EQ(table.GetFontIndex("Last"), fonts + 2);
  EXPECT_EQ(table.GetFontIndex("One"), fonts + 3);
  ASSERT_EQ(table.GetFontCount(), fonts + 4);
  EXPECT_TRUE(table.GetFont(unknown)->IsWithoutFile());
  EXPECT_FALSE(table.GetFont(a)->IsWithoutFile());
  EXPECT_EQ(table.GetFontInfo(unknown, false, false, false), nullptr);
  ASSERT_NE(table.GetFontInfo(unknown, false, false, true), nullptr);
  EXPECT_EQ(*table.GetFontInfo(unknown, false, false, true)->GetFontName(), "KelNoSuch");
}

TEST_F(FontChainReaderTest, CarriageReturnsStayInTheNames) {
  int fonts = table.GetFontCount();
  ASSERT_TRUE(read("Arial\r\nGulim\r\n\r\nBatang\nSymbol\n\n"));
  // "\r" is a name, not a blank line: the first block runs on to the
  // real blank line.
  int arialCr = table.GetFontIndex("Arial\r");
  int gulimCr = table.GetFontIndex("Gulim\r");
  int cr = table.GetFontIndex("\r");
  EXPECT_EQ(arialCr, fonts);
  EXPECT_EQ(gulimCr, fonts + 1);
  EXPECT_EQ(cr, fonts + 2);
  EXPECT_EQ(values(), (std::map<int, std::vector<int>>{{arialCr, {gulimCr, cr, d, c}}}));
}

TEST_F(FontChainReaderTest, MissingAndEmptyFiles) {
  std::string data = dirs.temp.path() + "/made/";
  FontChainReader reader(data);
  EXPECT_FALSE(reader.Read(table, chains));
  EXPECT_TRUE(chains.empty());
  struct stat st;  // the data directory was made
  ASSERT_EQ(stat(data.c_str(), &st), 0);
  EXPECT_TRUE(S_ISDIR(st.st_mode));

  EXPECT_TRUE(read(""));
  EXPECT_TRUE(read("\n\n# only a comment\n"));
  EXPECT_TRUE(chains.empty());

  // Outside Read() a line changes nothing.
  std::string line = "Arial";
  reader.BuildFontChain(line);
  EXPECT_EQ(line, "Arial");
}

}  // namespace
