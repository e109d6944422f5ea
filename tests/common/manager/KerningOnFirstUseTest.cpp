// GPOS kerning is left by a scan to the face's first kerning query: shaped
// then, added to the face's data file, read from there by later starts,
// and read from the font file by the facade over a cache that lacks it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "api/KelFontWidth.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/FontInfo.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

using Pairs = std::map<std::pair<int, int>, int>;

// fontTools' reading of the generated font; none without HarfBuzz.
Pairs expectedPairs() {
  Pairs want;
  std::ifstream in(testFontPath("expected_gpos_kern.txt"));
  for (int l, r, v; in >> l >> r >> v;) want[{l, r}] = v;
  if (!qro_common::hasGposKerning()) want.clear();
  return want;
}

// The kerning part of a data file, little-endian: count, then left,
// right (4 bytes each) and delta (2 bytes) per pair, left then right
// ascending.
std::string kerningPart(const Pairs& pairs) {
  std::string bytes;
  auto put = [&bytes](unsigned value, int size) {
    for (int i = 0; i < size; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
  };
  put(static_cast<unsigned>(pairs.size()), 4);
  for (const auto& pair : pairs) {
    put(static_cast<unsigned>(pair.first.first), 4);
    put(static_cast<unsigned>(pair.first.second), 4);
    put(static_cast<unsigned>(pair.second), 2);
  }
  return bytes;
}

// Every printable-ASCII pair of `kerning` against `want`: the first that
// differs, or nothing.
std::string firstDifference(const Pairs& want, const std::function<int(int, int)>& kerning) {
  for (int l = 32; l < 127; ++l) {
    for (int r = 32; r < 127; ++r) {
      auto it = want.find({l, r});
      if (kerning(l, r) != (it == want.end() ? 0 : it->second))
        return std::to_string(l) + " " + std::to_string(r);
    }
  }
  return "";
}

struct GposManager {
  GposManager(const std::string& storage, const std::string& fonts)
      : manager(nullptr, storage, {fonts}) {
    manager.Initialize();
    font = manager.GetFontIndex("KelTest Gpos");
    const qro_common::FontInfo* info = manager.GetFontInfo(font, false, false);
    dataFile = storage + "FInfo/Fdata/" + std::to_string(info ? info->GetInfoIndex() : -1);
  }
  std::string Differs(const Pairs& want) {
    return firstDifference(
        want, [this](int l, int r) { return manager.GetKerningWidth(font, false, false, l, r); });
  }
  TestFontManager manager;
  int font = -1;
  std::string dataFile;
};

TEST(KerningOnFirstUse, ShapedOnceKeptInTheDataFileAndReadFromThereLater) {
  TempDir fonts, storage, untouched;
  ASSERT_EQ(symlink(testFontPath("gpos_kern.ttf").c_str(), fonts.file("gpos.ttf").c_str()), 0);
  const Pairs want = expectedPairs();
  const std::string base = storage.path() + "/";

  // The scan writes the per-character part alone and opens the face once.
  unsigned long opens = qro_common::FontFileAnalyzer::GetOpenCount();
  GposManager first(base, fonts.path());
  ASSERT_GE(first.font, 0);
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, 1u);
  // The data file ends with a stand-in kerning part, then the extra part:
  // flags (1: pairs left to first use), U+A9B1 and U+1E900 with A's
  // advance (hmtx: 300 + 7 x glyph index 34 = 538).
  const std::string extra = std::string("\x02\0\0\0\xB1\xA9\0\0\x1A\x02\0\xE9\x01\0\x1A\x02", 16);
  const std::string scanned = readFile(first.dataFile);
  const std::string left = std::string(want.empty() ? "\0" : "\x01", 1) + std::string(3, '\0');
  const std::string tail = std::string(4, '\0') + left + extra;
  ASSERT_GT(scanned.size(), tail.size());
  const std::string metrics = scanned.substr(0, scanned.size() - tail.size());
  EXPECT_EQ(scanned, metrics + tail);

  // The first kerning query reads the font file once (with HarfBuzz) and
  // puts the pairs in place of the stand-in; the other bytes stay.
  opens = qro_common::FontFileAnalyzer::GetOpenCount();
  EXPECT_EQ(first.Differs(want), "");
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, want.empty() ? 0u : 1u);
  EXPECT_EQ(readFile(first.dataFile),
            want.empty() ? scanned : metrics + kerningPart(want) + std::string(4, '\0') + extra);

  // A later start trusts the cache and opens no font, kerning included.
  opens = qro_common::FontFileAnalyzer::GetOpenCount();
  GposManager second(base, fonts.path());
  EXPECT_EQ(second.Differs(want), "");
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, 0u);

  // The facade over a cache whose face was never kerned reads the pairs
  // from the font file and writes nothing.
  const std::string otherBase = untouched.path() + "/";
  const std::string otherData = GposManager(otherBase, fonts.path()).dataFile;
  const std::string before = readFile(otherData);
  CKelFontWidth facade;
  facade.SetExtractPath(otherBase.c_str());
  ASSERT_EQ(facade.InitFontInfoSerializer(), 0);
  ASSERT_EQ(facade.InitFontTable(), 0);
  const int font = facade.GetFontIndex("KelTest Gpos");
  EXPECT_EQ(firstDifference(want,
                            [&](int l, int r) {
                              int delta = 1;
                              return facade.GetKerningInfo(font, false, false, l, r, delta) == 0
                                         ? delta
                                         : -9999;
                            }),
            "");
  EXPECT_EQ(readFile(otherData), before);
}

}  // namespace
}  // namespace kelfont_test
