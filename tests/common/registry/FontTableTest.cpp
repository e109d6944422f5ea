#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/FontTable.h"
#include "common/registry/StyledFontInfoList.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::FontInfo;
using qro_common::FontInfoSerializer;
using qro_common::FontTable;
using qro_common::StyledFontInfoList;

FontInfo* face(const char* name, const char* style, const char* path = nullptr) {
  auto* info = new FontInfo();
  if (name != nullptr) info->SetFontName(new std::string(name));
  if (style != nullptr) info->SetStyleName(new std::string(style));
  if (path != nullptr) info->SetFilePath(new std::string(path));
  return info;
}

FontInfo* validFace(const char* name, const char* style) {
  FontInfo* info = face(name, style, "/f.ttf");
  info->SetPanose(new qro_common::Panose());
  info->SetSig(new qro_common::Sig(1, 0, 0, 0, 1, 0));
  info->SetFamilyName(new std::string(std::string(name) + " Family"));
  return info;
}

TEST(FontTable, RegistersFacesUnderTheirFontNames) {
  FontTable table;
  EXPECT_EQ(table.RegisterFontInfo(nullptr, false), -1);
  FontInfo nameless;
  EXPECT_EQ(table.RegisterFontInfo(&nameless, false), -1);
  EXPECT_EQ(table.GetDefaultFontIndex(-1), 0);
  EXPECT_THROW(table.GetDefaultFontIndex(0), std::out_of_range);

  EXPECT_EQ(table.RegisterFontInfo(face("Foo", "Regular", "/foo.ttf"), false), 0);
  EXPECT_EQ(table.RegisterFontInfo(face("Bar", "Regular"), false), 1);
  EXPECT_EQ(table.RegisterFontInfo(face("Foo", "Bold", "/foob.ttf"), false), 0);
  ASSERT_EQ(table.GetFontInfoCount(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(table.GetFontInfo(i)->GetInfoIndex(), i);
  EXPECT_EQ(table.GetFontCount(), 2);
  EXPECT_EQ(table.GetFontIndex("Bar"), 1);
  EXPECT_EQ(table.GetDefaultFontIndex(2), 0);
  EXPECT_THROW(table.GetDefaultFontIndex(3), std::out_of_range);
  EXPECT_TRUE(table.GetFont(1)->IsWithoutFile());
  EXPECT_EQ(table.GetStyledFontInfoList(0)->GetBold(), table.GetFontInfo(2));
  EXPECT_EQ(table.GetStyledFontInfoList(0)->GetDefault(), table.GetFontInfo(0));
  std::unique_ptr<FontInfo> probe(face("Foo", "Bold")), unknown(face("Baz", "Bold"));
  EXPECT_EQ(table.FindFontInfo(*probe), table.GetFontInfo(2));
  EXPECT_EQ(table.FindFontInfo(*unknown), nullptr);
}

TEST(FontTable, ExtraBoldFacesBecomeTheRegularFaceOfTheirOwnFont) {
  FontTable table;
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "Regular"), false), 0);
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "ExtraBold Italic"), false), 1);
  EXPECT_TRUE(table.GetFont(1)->IsExtraBold());
  FontInfo* info = table.GetFontInfo(1);
  EXPECT_EQ(*info->GetFontName(), "Foo ExtraBold");
  EXPECT_EQ(*info->GetStyleName(), "Regular");
  EXPECT_EQ(table.GetStyledFontInfoList(1)->GetRegular(), info);
  EXPECT_EQ(table.GetFontIndex("Foo ExtraBold"), 1);
  EXPECT_EQ(table.GetStyledFontInfoList(0)->GetBoldItalic(), nullptr);
}

TEST(FontTable, ARefusedFaceIsDroppedFromAScanButKeptFromTheCache) {
  FontTable scanned;
  ASSERT_EQ(scanned.RegisterFontInfo(face("Foo", "Regular"), false), 0);
  EXPECT_EQ(scanned.RegisterFontInfo(face("Foo", "Book", "/foo2.ttf"), false), 0);
  EXPECT_EQ(scanned.GetFontInfoCount(), 1);
  EXPECT_FALSE(scanned.GetFont(0)->IsWithoutFile());  // the refused face had a file

  FontTable cached;
  ASSERT_EQ(cached.RegisterFontInfo(face("Foo", "Regular"), true), 0);
  EXPECT_EQ(cached.RegisterFontInfo(face("Foo", "Book"), true), 0);
  ASSERT_EQ(cached.GetFontInfoCount(), 2);
  EXPECT_EQ(cached.GetStyledFontInfoList(0)->GetRegular(), cached.GetFontInfo(0));
  // (A Light-only Roboto: StyledFontInfoListTest and the facade's -4.)
}

TEST(FontTable, ResolvesTheBoldFaceEvenForBoldItalic) {
  FontTable table;
  table.RegisterFontInfo(face("Foo", "Regular", "/r.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Bold", "/b.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Bold Italic", "/bi.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Italic"), false);  // no file
  FontInfo* regular = table.GetFontInfo(0);
  FontInfo* bold = table.GetFontInfo(1);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, false), bold);
  EXPECT_EQ(table.ResolveFontInfo(0, false, true, true), table.GetFontInfo(3));
  EXPECT_EQ(table.ResolveFontInfo(0, false, true, false), regular);
  EXPECT_EQ(table.ResolveFontInfo(-1, false, false, true), nullptr);

  bold->SetFilePath(nullptr);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, false), regular);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, true), bold);
  regular->SetFilePath(nullptr);
  EXPECT_EQ(table.ResolveFontInfo(0, true, false, false), nullptr);
  EXPECT_EQ(table.GetFontInfo(0, true, false, true), bold);
}

TEST(FontTable, NameQuirksSymbolNamesAndLocalizedNames) {
  FontTable table;
  const std::pair<const char*, bool> symbols[] = {
      {"Wingdings 2", true}, {"wingdings 2", false}, {"Ilex Wing3", true}, {"Symbol ", false}};
  for (const auto& [name, symbol] : symbols) {
    EXPECT_EQ(table.GetFont(table.RegisterFontInfo(face(name, nullptr), false))->IsSymbol(), symbol)
        << name;
  }
  FontInfo* gulim = face("Gulim", "Regular");
  gulim->AddLocalizedName(0x0412, "굴림");
  gulim->AddLocalizedName(0x0409, "Gulim Latin");
  const int first = table.RegisterFontInfo(gulim, false);
  FontInfo* other = face("Other", "Regular");
  other->AddLocalizedName(0x0412, "굴림");
  ASSERT_EQ(table.RegisterFontInfo(other, false), first + 1);
  EXPECT_EQ(table.GetFontIndex("굴림"), first);  // the first index wins
  EXPECT_EQ(table.GetFontIndex("Gulim Latin"), first);
  // With localized names the font's own name is not added.
  EXPECT_EQ(table.GetFontIndex("Gulim"), -1);
  EXPECT_EQ(table.GetFontIndex("Other"), -1);
}

TEST(FontTable, LaterFacesCompleteInvalidFacesAndSetTheNonTimesFlag) {
  FontTable table;
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "Regular", "/r.ttf"), false), 0);
  FontInfo* regular = table.GetFontInfo(0);
  ASSERT_FALSE(regular->IsValid());
  ASSERT_EQ(table.RegisterFontInfo(validFace("Foo", "Bold"), false), 0);
  EXPECT_TRUE(regular->IsValid());
  EXPECT_EQ(*regular->GetFamilyName(), "Foo Family");
  FontInfo* later = validFace("Foo", "Italic");  // a valid face is not changed
  later->SetFamilyName(new std::string("Changed"));
  table.RegisterFontInfo(later, false);
  EXPECT_EQ(*regular->GetFamilyName(), "Foo Family");

  // An East Asian face whose family is not Times New Roman sets the flag
  // for good.
  struct Row {
    const char *style, *family;
    bool cjk, nonTimes;
  } rows[] = {{"Regular", "Times New Roman", true, false},
              {"Bold", "Batang", true, true},
              {"Italic", "Times New Roman", false, true}};
  for (const Row& row : rows) {
    FontInfo* info = face("Batang", row.style);
    info->SetCJK(row.cjk);
    info->SetFamilyName(new std::string(row.family));
    table.RegisterFontInfo(info, false);
    EXPECT_EQ(table.GetFont(table.GetFontIndex("Batang"))->IsNonTimes(), row.nonTimes) << row.style;
  }
}

TEST(FontTable, ScanStateCacheClearingAndBuildFont) {
  FontTable table;
  for (unsigned char state : {0, 1, 2}) {
    FontInfo* info = face(("F" + std::to_string(state)).c_str(), nullptr, "/x.ttf");
    info->SetScanState(state);
    table.RegisterFontInfo(info, false);
  }
  table.UpdateModifiedFontInfoState();  // 0: gone, 1: stays, 2: becomes 0
  EXPECT_EQ(table.GetFontInfo(0)->GetFilePath(), nullptr);
  EXPECT_EQ(table.GetFontInfo(1)->GetScanState(), 1);
  EXPECT_NE(table.GetFontInfo(2)->GetFilePath(), nullptr);
  EXPECT_EQ(table.GetFontInfo(2)->GetScanState(), 0);

  FontInfo* info = table.GetFontInfo(1);
  info->SetCharMetricsInfo(new qro_common::CharMetricsInfo());
  info->SetKerningInfo(new qro_common::KerningInfo());
  info->SetFontMetrics(new qro_common::FontMetrics(1, 2, 3, 4));
  table.ClearCacheInfo();
  EXPECT_EQ(info->GetCharMetricsInfo(), nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);
  EXPECT_EQ(table.GetFontMetrics(1, true, true)->GetUnitsPerEm(), 4);

  FontTable styled;
  styled.RegisterFontInfo(face("Foo", "Regular"), true);
  styled.RegisterFontInfo(face("Foo", "Book"), true);  // kept, no slot
  styled.RegisterFontInfo(face("Foo", "Bold"), true);
  styled.SetStyledFontInfoList(0, new StyledFontInfoList(0));
  styled.BuildFont();  // refills the lists without confirming the defaults
  StyledFontInfoList* list = styled.GetStyledFontInfoList(0);
  EXPECT_EQ(list->GetRegular(), styled.GetFontInfo(0));
  EXPECT_EQ(list->GetBold(), styled.GetFontInfo(2));
  EXPECT_EQ(list->GetDefault(), nullptr);
  styled.ConfirmStyledFontInfoListDefaultFontInfo();
  EXPECT_EQ(list->GetDefault(), styled.GetFontInfo(0));
}

// Writes a cache table holding one face per name and loads it into `table`.
bool load(FontTable& table, const std::string& base, const std::vector<const char*>& names) {
  FontInfoSerializer serializer(base);
  std::vector<FontInfo*> list;
  for (const char* name : names) list.push_back(face(name, "Regular", "/x.ttf"));
  std::vector<const std::string*> directories;
  bool written = serializer.Write(list, directories);
  for (FontInfo* info : list) delete info;
  if (names.empty()) written = kelfont_test::writeFile(base + "FInfo/Ftable", "");
  FontInfoSerializer reader(base);
  return written && table.LoadFontInfo(reader);
}

TEST(FontTable, ReloadingKeepsEveryFontIndex) {
  kelfont_test::TempDir dir;
  std::string base = dir.path() + "/";
  FontTable table;
  ASSERT_TRUE(load(table, base, {"Bravo", "Alpha", "", "Bravo"}));  // nameless, second Bravo
  EXPECT_EQ(table.GetFontCount(), 2);
  EXPECT_EQ(table.GetFontInfoCount(), 3);
  EXPECT_EQ(table.GetFontIndex("Alpha"), 1);

  ASSERT_TRUE(load(table, base, {"Charlie", "Alpha", "Bravo"}));
  EXPECT_EQ(table.GetFontCount(), 3);
  EXPECT_EQ(table.GetFontIndex("Bravo"), 0);
  EXPECT_EQ(table.GetFontIndex("Alpha"), 1);
  EXPECT_EQ(table.GetFontIndex("Charlie"), 2);
  EXPECT_EQ(table.ResolveFontInfo(0, false, false, false), table.GetFontInfo(2));

  // A cache that cannot be read empties the faces and keeps the fonts.
  EXPECT_FALSE(load(table, base, {}));
  EXPECT_EQ(table.GetFontCount(), 3);
  EXPECT_EQ(table.GetFontInfoCount(), 0);
  EXPECT_EQ(table.GetFontIndex("Alpha"), -1);
  EXPECT_EQ(table.GetFont(1)->GetName(), "Alpha");
}

}  // namespace
