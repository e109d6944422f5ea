#include "common/font_info/FontInfo.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/Font.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/Storage.h"

namespace {

using qro_common::CharMetricsInfo;
using qro_common::Font;
using qro_common::FontInfo;
using qro_common::KerningInfo;
using qro_common::Panose;
using qro_common::Sig;

// A CharMetricsInfo that reports its destruction.
class TrackedCharMetrics : public CharMetricsInfo {
 public:
  explicit TrackedCharMetrics(bool* destroyed) : destroyed_(destroyed) {}
  ~TrackedCharMetrics() override { *destroyed_ = true; }

 private:
  bool* destroyed_;
};

TEST(Sig, ExpandsTheUnicodeWordsIntoBitFlags) {
  Sig sig(0x10000001, 1, 1, 1, 1, 1);
  for (int bit = 0; bit < 32; ++bit) {
    EXPECT_EQ(sig.IsUnicodeRangeBitSet(bit), bit == 0 || bit == 28) << bit;
  }
  // Range 2..4 hold 1: bits 32, 64, 96.
  EXPECT_TRUE(sig.IsUnicodeRangeBitSet(32));
  EXPECT_FALSE(sig.IsUnicodeRangeBitSet(33));
  EXPECT_TRUE(sig.IsUnicodeRangeBitSet(64));
  EXPECT_TRUE(sig.IsUnicodeRangeBitSet(96));
  EXPECT_FALSE(sig.IsUnicodeRangeBitSet(127));
  EXPECT_FALSE(sig.IsUnicodeRangeBitSet(128));
  EXPECT_FALSE(sig.IsUnicodeRangeBitSet(-1));
}

TEST(Sig, KeepsTheWordsInTheirOrder) {
  Sig sig(1, 2, 3, 0x80000000u, 5, 6);
  EXPECT_EQ(sig.GetUnicodeRange(1), 1u);
  EXPECT_EQ(sig.GetUnicodeRange(3), 3u);
  EXPECT_EQ(sig.GetUnicodeRange(4), 0x80000000u);
  EXPECT_TRUE(sig.IsUnicodeRangeBitSet(127));
  EXPECT_EQ(sig.GetCodePageRange(1), 5u);
  EXPECT_EQ(sig.GetCodePageRange(2), 6u);
  EXPECT_EQ(sig.GetCodePageRange(3), 0u);
  std::unique_ptr<Sig> copy(sig.Clone());
  EXPECT_EQ(copy->GetUnicodeRange(4), 0x80000000u);
  EXPECT_TRUE(copy->IsUnicodeRangeBitSet(127));
  EXPECT_EQ(copy->GetCodePageRange(2), 6u);
}

TEST(Font, OrdersNamesAsByteStrings) {
  EXPECT_TRUE(Font("Arial") < Font("Arial Black"));
  EXPECT_FALSE(Font("Arial Black") < Font("Arial"));
  EXPECT_TRUE(Font("Gulim") < Font("gulim"));
  EXPECT_FALSE(Font("Gulim") < Font("Gulim"));
  // Bytes above 0x7F order after ASCII.
  EXPECT_TRUE(Font("Zeta") < Font("\xEB\x8F\x8B"));
}

TEST(Font, CopiesCarryBothNamesAndTheFlags) {
  Font font("Batang");
  EXPECT_TRUE(font.IsWithoutFile());
  EXPECT_FALSE(font.IsSymbol());
  font.SetSecondName("second");
  font.SetSymbol(true);
  font.SetWithoutFile(false);
  font.SetExtraBold(true);
  std::unique_ptr<Font> clone(font.Clone());
  EXPECT_EQ(clone->GetName(), "Batang");
  EXPECT_EQ(clone->GetSecondName(), "second");
  EXPECT_TRUE(clone->IsSymbol());
  EXPECT_FALSE(clone->IsWithoutFile());
  EXPECT_FALSE(clone->IsNonTimes());
  EXPECT_TRUE(clone->IsExtraBold());
}

TEST(FontStorage, AddKeepsPositionsAndFindsByName) {
  qro_common::Storage<Font> storage;
  storage.Init(new std::vector<Font*>());
  EXPECT_EQ(storage.Add(Font("Times")), 0);
  EXPECT_EQ(storage.Add(Font("Arial")), 1);
  EXPECT_EQ(storage.Add(Font("Courier")), 2);
  EXPECT_EQ(storage.Find(Font("Arial")), 1);
  EXPECT_EQ(storage.Find(Font("Courier")), 2);
  EXPECT_EQ(storage.Find(Font("arial")), -1);
  EXPECT_EQ(storage.Get(0)->GetName(), "Times");
  EXPECT_EQ(storage.GetCount(), 3);
  EXPECT_THROW(storage.Get(3), std::out_of_range);
}

TEST(FontStorage, InitReindexesAndKeepsEmptyPositions) {
  qro_common::Storage<Font> storage;
  EXPECT_THROW(storage.Get(0), std::out_of_range);
  auto* items = new std::vector<Font*>{new Font("B"), nullptr, new Font("A")};
  storage.Init(items);
  EXPECT_EQ(storage.GetCount(), 3);
  EXPECT_EQ(storage.Find(Font("A")), 2);
  EXPECT_EQ(storage.Find(Font("B")), 0);
  EXPECT_EQ(storage.Get(1), nullptr);
  EXPECT_EQ(storage.Add(Font("C")), 3);
}

TEST(FontInfo, IsValidWithPanoseAndSignature) {
  FontInfo info;
  info.SetPanose(new Panose());
  EXPECT_FALSE(info.IsValid());
  info.SetSig(new Sig());
  EXPECT_TRUE(info.IsValid());
  info.SetPanose(nullptr);
  EXPECT_FALSE(info.IsValid());
}

TEST(FontInfo, SettersDeleteWhatTheyReplaceButNotTheSameObject) {
  bool firstGone = false;
  bool secondGone = false;
  {
    FontInfo info;
    auto* first = new TrackedCharMetrics(&firstGone);
    info.SetCharMetricsInfo(first);
    info.SetCharMetricsInfo(first);
    EXPECT_FALSE(firstGone);
    EXPECT_EQ(info.GetCharMetricsInfo()->GetCharMetricsRange(0), nullptr);
    info.SetCharMetricsInfo(new TrackedCharMetrics(&secondGone));
    EXPECT_TRUE(firstGone);
    EXPECT_FALSE(secondGone);
  }
  EXPECT_TRUE(secondGone);
}

TEST(FontInfo, UpdateCopiesTheDescriptionOnly) {
  FontInfo target;
  target.SetFontName(new std::string("Target"));
  target.SetFamilyName(new std::string("Old family"));
  target.SetFontMetrics(new qro_common::FontMetrics(800, -200, 0, 1000));
  target.SetInfoIndex(4);
  target.AddLocalizedName(0x0412, "name");

  FontInfo source;
  source.SetFontName(new std::string("Source"));
  source.SetFamilyName(new std::string("New family"));
  source.SetAlternateName(new std::string("Alt"));
  auto* panose = new Panose();
  panose->Set(Panose::kWeight, 7);
  source.SetPanose(panose);
  source.SetSig(new Sig(1, 2, 3, 4, 5, 6));
  source.SetPersisted(true);
  source.SetPitch(2);
  source.SetInfoIndex(9);

  target.Update(source);
  ASSERT_TRUE(target.IsValid());
  EXPECT_NE(target.GetPanose(), source.GetPanose());
  EXPECT_EQ(target.GetPanose()->Get(Panose::kWeight), 7);
  EXPECT_NE(target.GetSig(), source.GetSig());
  EXPECT_EQ(target.GetSig()->GetCodePageRange(2), 6u);
  EXPECT_EQ(*target.GetFamilyName(), "New family");
  EXPECT_EQ(*target.GetAlternateName(), "Alt");
  EXPECT_TRUE(target.IsPersisted());
  EXPECT_EQ(target.GetPitch(), 2);
  // Untouched.
  EXPECT_EQ(*target.GetFontName(), "Target");
  EXPECT_EQ(target.GetFontMetrics()->GetAscender(), 800);
  EXPECT_EQ(target.GetInfoIndex(), 4);
  EXPECT_EQ(target.GetLocalizedNames().size(), 1u);
}

TEST(FontInfo, UpdateKeepsPartsTheSourceLacks) {
  FontInfo target;
  target.SetPanose(new Panose());
  target.SetFamilyName(new std::string("Family"));
  target.SetPersisted(true);
  FontInfo source;
  target.Update(source);
  EXPECT_NE(target.GetPanose(), nullptr);
  EXPECT_EQ(*target.GetFamilyName(), "Family");
  EXPECT_FALSE(target.IsPersisted());
}

}  // namespace
