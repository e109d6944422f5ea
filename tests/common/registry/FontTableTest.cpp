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

using qro_common::Font;
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

TEST(FontTable, StartsEmpty) {
  FontTable table;
  EXPECT_EQ(table.GetFontInfoCount(), 0);
  EXPECT_EQ(table.GetFontCount(), 0);
  EXPECT_EQ(table.GetFont(0), nullptr);
  EXPECT_EQ(table.GetFontInfo(0), nullptr);
  EXPECT_EQ(table.GetFontIndex("Foo"), -1);
  EXPECT_EQ(table.ResolveFontInfo(0, false, false, true), nullptr);
  EXPECT_EQ(table.GetDefaultFontIndex(-1), 0);
  EXPECT_THROW(table.GetDefaultFontIndex(0), std::out_of_range);
  EXPECT_EQ(table.RegisterFontInfo(nullptr, false), -1);
  FontInfo nameless;
  EXPECT_EQ(table.RegisterFontInfo(&nameless, false), -1);
  EXPECT_EQ(table.GetFontCount(), 0);
}

TEST(FontTable, RegistersFacesUnderTheirFontNames) {
  FontTable table;
  EXPECT_EQ(table.RegisterFontInfo(face("Foo", "Regular", "/foo.ttf"), false), 0);
  EXPECT_EQ(table.RegisterFontInfo(face("Bar", "Regular"), false), 1);
  EXPECT_EQ(table.RegisterFontInfo(face("Foo", "Bold", "/foob.ttf"), false), 0);
  ASSERT_EQ(table.GetFontInfoCount(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(table.GetFontInfo(i)->GetInfoIndex(), i);
  EXPECT_EQ(table.GetFontCount(), 2);
  EXPECT_EQ(table.GetFont(1)->GetName(), "Bar");
  EXPECT_EQ(table.GetFontIndex("Bar"), 1);
  EXPECT_EQ(table.GetDefaultFontIndex(2), 0);
  EXPECT_THROW(table.GetDefaultFontIndex(3), std::out_of_range);
  EXPECT_FALSE(table.GetFont(0)->IsWithoutFile());
  EXPECT_TRUE(table.GetFont(1)->IsWithoutFile());
  StyledFontInfoList* list = table.GetStyledFontInfoList(0);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->GetBold(), table.GetFontInfo(2));
  EXPECT_EQ(list->GetDefault(), table.GetFontInfo(0));
  std::unique_ptr<FontInfo> probe(face("Foo", "Bold")), unknown(face("Baz", "Bold"));
  EXPECT_EQ(table.FindFontInfo(*probe), table.GetFontInfo(2));
  EXPECT_EQ(table.FindFontInfo(*unknown), nullptr);
}

TEST(FontTable, ExtraBoldFacesBecomeTheRegularFaceOfTheirOwnFont) {
  FontTable table;
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "Regular"), false), 0);
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "ExtraBold Italic"), false), 1);
  const Font* extraBold = table.GetFont(1);
  EXPECT_EQ(extraBold->GetName(), "Foo ExtraBold");
  EXPECT_TRUE(extraBold->IsExtraBold());
  EXPECT_FALSE(table.GetFont(0)->IsExtraBold());
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
  EXPECT_EQ(cached.GetFontInfo(1)->GetInfoIndex(), 1);
  EXPECT_EQ(cached.GetStyledFontInfoList(0)->GetRegular(), cached.GetFontInfo(0));
}

TEST(FontTable, AFontWithoutAcceptedFaceResolvesToNothing) {
  FontTable table;
  ASSERT_EQ(table.RegisterFontInfo(face("Roboto", "Light", "/l.ttf"), true), 0);
  EXPECT_EQ(table.GetFontInfoCount(), 1);
  EXPECT_EQ(table.GetStyledFontInfoList(0)->GetDefault(), nullptr);
  for (bool bold : {false, true}) {
    EXPECT_EQ(table.ResolveFontInfo(0, bold, false, true), nullptr);
    EXPECT_EQ(table.ResolveFontInfo(0, bold, true, false), nullptr);
  }
  EXPECT_EQ(table.GetFontMetrics(0, false, false), nullptr);
  EXPECT_EQ(table.GetFontFilePath("Roboto", false, false), nullptr);
  EXPECT_EQ(table.RegisterFontInfo(face("Roboto", "Regular", "/r.ttf"), true), 0);
  EXPECT_EQ(*table.GetFontFilePath("Roboto", true, false), "/r.ttf");
}

TEST(FontTable, ResolvesTheBoldFaceEvenForBoldItalic) {
  FontTable table;
  table.RegisterFontInfo(face("Foo", "Regular", "/r.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Bold", "/b.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Bold Italic", "/bi.ttf"), false);
  table.RegisterFontInfo(face("Foo", "Italic"), false);  // no file
  FontInfo* regular = table.GetFontInfo(0);
  FontInfo* bold = table.GetFontInfo(1);
  FontInfo* italic = table.GetFontInfo(3);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, false), bold);
  EXPECT_EQ(table.ResolveFontInfo(0, false, true, true), italic);
  EXPECT_EQ(table.ResolveFontInfo(0, false, true, false), regular);
  EXPECT_EQ(table.ResolveFontInfo(-1, false, false, true), nullptr);
  EXPECT_EQ(table.ResolveFontInfo(1, false, false, true), nullptr);

  bold->SetFilePath(nullptr);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, false), regular);
  EXPECT_EQ(table.ResolveFontInfo(0, true, true, true), bold);
  regular->SetFilePath(nullptr);
  EXPECT_EQ(table.ResolveFontInfo(0, true, false, false), nullptr);
  EXPECT_EQ(table.GetFontFilePath(0, true, false), nullptr);
  EXPECT_EQ(table.GetFontInfo(0, true, false, true), bold);
}

TEST(FontTable, SymbolFontsAreKnownByTheirExactNames) {
  FontTable table;
  const char* names[] = {"Wingdings 2", "wingdings 2", "Ilex Wing3", "MT Extra", "Symbol "};
  for (const char* name : names) table.RegisterFontInfo(face(name, nullptr), false);
  EXPECT_TRUE(table.GetFont(0)->IsSymbol());
  EXPECT_FALSE(table.GetFont(1)->IsSymbol());
  EXPECT_TRUE(table.GetFont(2)->IsSymbol());
  EXPECT_TRUE(table.GetFont(3)->IsSymbol());
  EXPECT_FALSE(table.GetFont(4)->IsSymbol());
}

TEST(FontTable, LocalizedNamesFindTheFontAndTheFirstIndexWins) {
  FontTable table;
  FontInfo* gulim = face("Gulim", "Regular");
  gulim->AddLocalizedName(0x0412, "굴림");
  gulim->AddLocalizedName(0x0409, "Gulim Latin");
  ASSERT_EQ(table.RegisterFontInfo(gulim, false), 0);
  FontInfo* other = face("Other", "Regular");
  other->AddLocalizedName(0x0412, "굴림");
  ASSERT_EQ(table.RegisterFontInfo(other, false), 1);
  EXPECT_EQ(table.GetFontIndex("굴림"), 0);
  EXPECT_EQ(table.GetFontIndex("Gulim Latin"), 0);
  // With localized names the font's own name is not added.
  EXPECT_EQ(table.GetFontIndex("Gulim"), -1);
  EXPECT_EQ(table.GetFontIndex("Other"), -1);
  EXPECT_EQ(table.GetFontMetrics("Gulim", false, false), nullptr);
}

TEST(FontTable, ALaterFaceCompletesAnInvalidRegisteredFace) {
  FontTable table;
  ASSERT_EQ(table.RegisterFontInfo(face("Foo", "Regular", "/r.ttf"), false), 0);
  FontInfo* regular = table.GetFontInfo(0);
  ASSERT_FALSE(regular->IsValid());
  ASSERT_EQ(table.RegisterFontInfo(validFace("Foo", "Bold"), false), 0);
  EXPECT_TRUE(regular->IsValid());
  EXPECT_EQ(*regular->GetFamilyName(), "Foo Family");
  EXPECT_EQ(regular->GetSig()->GetUnicodeRange(1), 1u);

  FontTable valid;
  valid.RegisterFontInfo(validFace("Bar", "Regular"), false);
  FontInfo* later = validFace("Bar", "Italic");
  later->SetFamilyName(new std::string("Changed"));
  valid.RegisterFontInfo(later, false);
  EXPECT_EQ(*valid.GetFontInfo(0)->GetFamilyName(), "Bar Family");
}

TEST(FontTable, EastAsianFacesSetTheNonTimesFlag) {
  FontTable table;
  FontInfo* times = face("Batang", "Regular");
  times->SetCJK(true);
  times->SetFamilyName(new std::string("Times New Roman"));
  table.RegisterFontInfo(times, false);
  EXPECT_FALSE(table.GetFont(0)->IsNonTimes());
  FontInfo* other = face("Batang", "Bold");
  other->SetCJK(true);
  other->SetFamilyName(new std::string("Batang"));
  table.RegisterFontInfo(other, false);
  EXPECT_TRUE(table.GetFont(0)->IsNonTimes());
  FontInfo* latin = face("Batang", "Italic");
  latin->SetFamilyName(new std::string("Times New Roman"));
  table.RegisterFontInfo(latin, false);
  EXPECT_TRUE(table.GetFont(0)->IsNonTimes());
}

TEST(FontTable, ScanStateEndsAScan) {
  FontTable table;
  const unsigned char states[] = {0, 1, 2};
  for (unsigned char state : states) {
    FontInfo* info = face(("F" + std::to_string(state)).c_str(), nullptr, "/x.ttf");
    info->SetScanState(state);
    table.RegisterFontInfo(info, false);
  }
  table.UpdateModifiedFontInfoState();
  EXPECT_EQ(table.GetFontInfo(0)->GetFilePath(), nullptr);
  EXPECT_EQ(table.GetFontInfo(0)->GetScanState(), 0);
  EXPECT_NE(table.GetFontInfo(1)->GetFilePath(), nullptr);
  EXPECT_EQ(table.GetFontInfo(1)->GetScanState(), 1);
  EXPECT_NE(table.GetFontInfo(2)->GetFilePath(), nullptr);
  EXPECT_EQ(table.GetFontInfo(2)->GetScanState(), 0);
  EXPECT_EQ(table.GetFontFilePath(0, false, false), nullptr);
}

TEST(FontTable, ClearCacheInfoDropsLoadedData) {
  FontTable table;
  FontInfo* info = face("Foo", nullptr);
  info->SetCharMetricsInfo(new qro_common::CharMetricsInfo());
  info->SetKerningInfo(new qro_common::KerningInfo());
  info->SetFontMetrics(new qro_common::FontMetrics(1, 2, 3, 4));
  table.RegisterFontInfo(info, false);
  table.ClearCacheInfo();
  EXPECT_EQ(info->GetCharMetricsInfo(), nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);
  EXPECT_EQ(table.GetFontMetrics(0, true, true)->GetUnitsPerEm(), 4);
}

TEST(FontTable, BuildFontRefillsStyledListsWithoutConfirmingDefaults) {
  FontTable table;
  table.RegisterFontInfo(face("Foo", "Regular"), true);
  table.RegisterFontInfo(face("Foo", "Book"), true);  // kept, no slot
  table.RegisterFontInfo(face("Foo", "Bold"), true);
  table.SetStyledFontInfoList(0, new StyledFontInfoList(0));
  table.BuildFont();
  StyledFontInfoList* list = table.GetStyledFontInfoList(0);
  EXPECT_EQ(list->GetRegular(), table.GetFontInfo(0));
  EXPECT_EQ(list->GetBold(), table.GetFontInfo(2));
  EXPECT_EQ(list->GetDefault(), nullptr);
  EXPECT_EQ(table.GetFontInfoCount(), 3);
  table.ConfirmStyledFontInfoListDefaultFontInfo();
  EXPECT_EQ(list->GetDefault(), table.GetFontInfo(0));
}

// Writes a cache table holding one face per name.
void writeTable(const std::string& base, const std::vector<const char*>& names) {
  FontInfoSerializer serializer(base);
  std::vector<FontInfo*> list;
  for (const char* name : names) list.push_back(face(name, "Regular", "/x.ttf"));
  std::vector<const std::string*> directories;
  ASSERT_TRUE(serializer.Write(list, directories));
  for (FontInfo* info : list) delete info;
}

TEST(FontTable, ReloadingKeepsEveryFontIndex) {
  kelfont_test::TempDir dir;
  std::string base = dir.path() + "/";
  writeTable(base, {"Bravo", "Alpha", "", "Bravo"});  // a nameless record, a second Bravo
  FontTable table;
  {
    FontInfoSerializer serializer(base);
    ASSERT_TRUE(table.LoadFontInfo(serializer));
  }
  EXPECT_EQ(table.GetFontCount(), 2);
  EXPECT_EQ(table.GetFontInfoCount(), 3);
  EXPECT_EQ(table.GetFontIndex("Alpha"), 1);

  writeTable(base, {"Charlie", "Alpha", "Bravo"});
  {
    FontInfoSerializer serializer(base);
    ASSERT_TRUE(table.LoadFontInfo(serializer));
  }
  EXPECT_EQ(table.GetFontCount(), 3);
  EXPECT_EQ(table.GetFontInfoCount(), 3);
  EXPECT_EQ(table.GetFontIndex("Bravo"), 0);
  EXPECT_EQ(table.GetFontIndex("Alpha"), 1);
  EXPECT_EQ(table.GetFontIndex("Charlie"), 2);
  EXPECT_EQ(table.ResolveFontInfo(0, false, false, false), table.GetFontInfo(2));

  // A cache that cannot be read leaves the table as it was.
  ASSERT_TRUE(kelfont_test::writeFile(base + "FInfo/Ftable", ""));
  FontInfoSerializer serializer(base);
  EXPECT_FALSE(table.LoadFontInfo(serializer));
  EXPECT_EQ(table.GetFontCount(), 3);
  EXPECT_EQ(table.GetFontInfoCount(), 0);  // emptied before reading
  EXPECT_EQ(table.GetFontIndex("Alpha"), -1);
  EXPECT_EQ(table.GetFont(1)->GetName(), "Alpha");
}

}  // namespace
