// The font list readers (chains "fc", default fonts "df", script default
// fonts "sf") against tests/data/font_lists.tsv: list text, and the fonts it
// names by their names; "*" marks a font registered without a file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <string>

#include "common/font_info/FontInfo.h"
#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontChainReader.h"
#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::writeFile;

struct Lists {
  kelfont_test::TempDir temp;
  std::string data = temp.path() + "/data/";
  qro_common::FontTable table;
  Lists() {
    mkdir(data.c_str(), 0775);
    mkdir((data + "FInfo").c_str(), 0775);
    for (const char* name : {"Arial", "Gulim", "Symbol", "Batang", "A", "B", "C", "D", "E", "F",
                             "FontX", "FontY", "FontZ", "KelTest 2", "NoFile"}) {
      auto* info = new qro_common::FontInfo();
      info->SetFontName(new std::string(name));
      if (std::string(name) != "NoFile") info->SetFilePath(new std::string("/fonts/any.ttf"));
      if (std::string(name) == "Gulim") info->AddLocalizedName(0x412, "굴림");
      table.RegisterFontInfo(info, false);
    }
  }
  std::string name(int font) {
    if (font < 0 || font >= table.GetFontCount()) return "?";
    const qro_common::FontInfo* info = table.GetFontInfo(font, false, false, true);
    return (info ? *info->GetFontName() : "?") + (table.GetFont(font)->IsWithoutFile() ? "*" : "");
  }
  bool isDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  }
};

// Chains as "key:member,member;key:...", default fonts as "font,font",
// script entries as "number=font ...".
std::string read(Lists& lists, const std::string& kind, const std::string& text,
                 const std::string& pre) {
  std::string out;
  if (kind == "fc") {
    writeFile(lists.data + "FInfo/fc", text);
    std::map<int, std::vector<int>*> chains;
    if (!pre.empty()) {  // a chain already there: "key:member"
      chains[lists.table.GetFontIndex(pre.substr(0, pre.find(':')))] =
          new std::vector<int>{lists.table.GetFontIndex(pre.substr(pre.find(':') + 1))};
    }
    bool ok = qro_common::FontChainReader(lists.data).Read(lists.table, chains);
    for (auto& [key, members] : chains) {
      out += (out.empty() ? "" : ";") + lists.name(key) + ":";
      for (size_t i = 0; i < members->size(); ++i)
        out += (i ? "," : "") + lists.name((*members)[i]);
      delete members;
    }
    return ok ? out : "failed " + out;
  }
  if (kind == "df") {
    writeFile(lists.data + "FInfo/df", text);
    std::unique_ptr<std::vector<int>> fonts(
        qro_common::DefaultFontsReader(lists.data).Read(lists.table));
    for (size_t i = 0; fonts && i < fonts->size(); ++i)
      out += (i ? "," : "") + lists.name((*fonts)[i]);
    return fonts ? out : "null";
  }
  writeFile(lists.data + "FInfo/sf", text);
  std::string path = lists.data + "FInfo/sf";
  qro_common::ScriptDefaultFontsReader reader(path);
  std::vector<int>* entries = reader.Read(lists.table);
  EXPECT_EQ(entries->size(), 128u);
  for (size_t i = 0; i < entries->size(); ++i) {
    if ((*entries)[i] != -1)
      out += (out.empty() ? "" : " ") + std::to_string(i) + "=" + lists.name((*entries)[i]);
  }
  return out;
}

TEST(FontLists, Table) {
  for (const kelfont_test::Case& c : kelfont_test::cases("font_lists.tsv")) {
    Lists lists;  // fonts registered by one case are not seen by the next
    EXPECT_EQ(read(lists, c[0], c[1], c[3]), c[2]) << c.line;
  }
}

TEST(FontLists, MissingFilesAndLongNumbers) {
  Lists lists;
  std::map<int, std::vector<int>*> chains;
  std::string made = lists.data + "made/", scriptList = lists.data + "FInfo/sf_xx";
  qro_common::FontChainReader chainReader(made);
  EXPECT_FALSE(chainReader.Read(lists.table, chains));
  EXPECT_TRUE(chains.empty());
  std::string line = "Arial";
  chainReader.BuildFontChain(line);  // outside Read() a line changes nothing
  EXPECT_EQ(line, "Arial");
  std::string other = lists.data + "other/";
  qro_common::DefaultFontsReader defaults(other);
  EXPECT_TRUE(lists.isDirectory(lists.data + "made/") && lists.isDirectory(other));
  EXPECT_FALSE(defaults.IsFileExists());
  EXPECT_EQ(defaults.Read(lists.table), nullptr);
  // A missing script list becomes a folder and reads as nothing.
  qro_common::ScriptDefaultFontsReader scripts(scriptList);
  EXPECT_TRUE(lists.isDirectory(lists.data + "FInfo/sf_xx"));
  EXPECT_TRUE(scripts.IsFileExists());
  EXPECT_EQ(*scripts.Read(lists.table), std::vector<int>(128, -1));
  // A very long digit run saturates (entry 255: ignored) and stays fast.
  EXPECT_EQ(read(lists, "sf", std::string(200000, '9') + "\nFontX\n5\nFontY\n", ""), "5=FontY");
}

}  // namespace
