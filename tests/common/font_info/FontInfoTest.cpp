#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/Font.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/Storage.h"

namespace {

using qro_common::CharMetricsInfo;
using qro_common::Font;
using qro_common::FontInfo;
using qro_common::Sig;

// A CharMetricsInfo that reports its destruction.
class TrackedCharMetrics : public CharMetricsInfo {
 public:
  explicit TrackedCharMetrics(bool* destroyed) : destroyed_(destroyed) {}
  ~TrackedCharMetrics() override { *destroyed_ = true; }

 private:
  bool* destroyed_;
};

TEST(Sig, ExpandsTheUnicodeWordsIntoBitFlagsInTheirOrder) {
  Sig sig(0x10000001, 2, 1, 0x80000000u, 5, 6);
  std::unique_ptr<Sig> copy(sig.Clone());
  for (const Sig* s : {&sig, copy.get()}) {
    std::string set;
    for (int bit = -1; bit <= 128; ++bit) {
      if (s->IsUnicodeRangeBitSet(bit)) set += std::to_string(bit) + " ";
    }
    EXPECT_EQ(set, "0 28 33 64 127 ");
    EXPECT_EQ(s->GetUnicodeRange(2), 2u);
    EXPECT_EQ(s->GetCodePageRange(2), 6u);
    EXPECT_EQ(s->GetCodePageRange(3), 0u);
  }
}

TEST(FontStorage, InitReindexesKeepsEmptyPositionsAndAddAppends) {
  qro_common::Storage<Font> storage;
  EXPECT_THROW(storage.Get(0), std::out_of_range);
  storage.Init(new std::vector<Font*>{new Font("B"), nullptr, new Font("A")});
  EXPECT_EQ(storage.Find(Font("A")), 2);
  EXPECT_EQ(storage.Find(Font("B")), 0);
  EXPECT_EQ(storage.Find(Font("a")), -1);
  EXPECT_EQ(storage.Get(1), nullptr);
  EXPECT_EQ(storage.Add(Font("C")), 3);
  EXPECT_EQ(storage.Find(Font("C")), 3);
  EXPECT_EQ(storage.GetCount(), 4);
  EXPECT_THROW(storage.Get(4), std::out_of_range);
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

}  // namespace
