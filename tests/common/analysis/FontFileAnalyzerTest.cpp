// The analyzer against independent readers over every face of the test
// fonts (the values fontTools read from them when they were made), of the
// installed real fonts and of the Android set (KELFONT_ANDROID_FONTS): the
// two advance sources (the horizontal metrics in one FT_Get_Advances call,
// every glyph loaded unscaled) write byte-identical data files, and the
// printable-ASCII kerning equals the `kern` pairs where the face has some,
// else HarfBuzz's shaping of every pair. Damaged fonts that still open: the
// analyzer fuzz target.

#include <dirent.h>
#include <ft2build.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUSBType.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/DataFileNames.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Python.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/support/TestPackage.h"

#if KELFONT_HARFBUZZ
#include <hb.h>
#endif

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::testFontPath;
using namespace qro_common;
using Source = FontFileAnalyzer::AdvanceSource;
using Pairs = std::map<std::pair<int, int>, int>;

std::vector<std::string> fontFilesIn(const std::string& folder) {
  std::vector<std::string> files;
  if (DIR* dir = opendir(folder.c_str())) {
    while (dirent* entry = readdir(dir)) {
      if (isFontFile(entry->d_name)) files.push_back(folder + "/" + entry->d_name);
    }
    closedir(dir);
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Whether the advance tables keep a code point of this Unicode-range bit.
bool isStoredBit(int bit) { return bit == 127 || (bit < 123 && bit != 57); }

// The face analysed with `source` (by `open`, left open, when given), its
// data too, over a kerning table that stays when the face gives none; null
// when it does not open.
std::unique_ptr<FontInfo> analyze(const std::string& path, int face, Source source,
                                  FontFileAnalyzer* open = nullptr) {
  FontFileAnalyzer own;
  FontFileAnalyzer& analyzer = open != nullptr ? *open : own;
  analyzer.SetAdvanceSource(source);
  if (!analyzer.Open(path.c_str(), face)) return nullptr;
  std::unique_ptr<FontInfo> info(analyzer.Analyze());
  EXPECT_NE(info, nullptr);
  if (info == nullptr) return info;
  EXPECT_EQ(info->GetCharMetricsInfo(), nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);
  info->SetInfoIndex(0);
  info->SetKerningInfo(new KerningInfo());
  analyzer.AnalyzeData(*info);
  return info;
}

// FreeType's `kern` values between printable-ASCII glyphs.
Pairs kernTablePairs(FT_Face face, const FT_UInt* glyphs) {
  Pairs pairs;
  for (int l = 0; FT_HAS_KERNING(face) && l < 95; ++l) {
    for (int r = 0; r < 95; ++r) {
      FT_Vector delta{};
      if (FT_Get_Kerning(face, glyphs[l], glyphs[r], FT_KERNING_UNSCALED, &delta) == 0 &&
          delta.x != 0) {
        pairs[{32 + l, 32 + r}] = static_cast<short>(delta.x);
      }
    }
  }
  return pairs;
}

// HarfBuzz shapes each pair on its own (the file read by HarfBuzz itself),
// ligatures and contextual alternates off. Without HarfBuzz: no pairs.
Pairs shapedPairs(const std::string& path, int faceIndex) {
  Pairs pairs;
#if KELFONT_HARFBUZZ
  hb_blob_t* blob = hb_blob_create_from_file(path.c_str());
  hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(faceIndex));
  hb_font_t* font = hb_font_create(face);
  const int upem = static_cast<int>(hb_face_get_upem(face));
  hb_font_set_scale(font, upem, upem);
  hb_buffer_t* buffer = hb_buffer_create();
  hb_feature_t off[5];
  const char* names[] = {"liga=0", "clig=0", "calt=0", "dlig=0", "rlig=0"};
  for (int i = 0; i < 5; ++i) hb_feature_from_string(names[i], -1, &off[i]);
  auto firstAdvance = [&](std::vector<hb_codepoint_t> text) {
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_codepoints(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(font, buffer, off, 5);
    return hb_buffer_get_glyph_positions(buffer, nullptr)[0].x_advance;
  };
  for (hb_codepoint_t l = 32; l < 127; ++l) {
    const int alone = firstAdvance({l});
    for (hb_codepoint_t r = 32; r < 127; ++r) {
      const int value = static_cast<short>(firstAdvance({l, r}) - alone);
      if (value != 0) pairs[{static_cast<int>(l), static_cast<int>(r)}] = value;
    }
  }
  hb_buffer_destroy(buffer);
  hb_font_destroy(font);
  hb_face_destroy(face);
  hb_blob_destroy(blob);
#else
  (void)path, (void)faceIndex;
#endif
  return pairs;
}

// A generated face against its records: PANOSE, the six range words (a word
// that is 0 becomes 1), the em square, hhea's line metrics, every mapped
// character's advance (apart, without a stored bit) and no other BMP code
// point, and every glyph's advance. A face without `head` (an Apple bitmap
// font) gets 1024 units, zero metrics, PANOSE and ranges and advances:
// FreeType reads neither its hhea, hmtx nor OS/2.
void expectRecords(FontInfo& info, const ExpectedFace& face, FontFileAnalyzer& analyzer) {
  const ExpectedFace want = face.hasHead ? face : ExpectedFace();
  for (int i = 0; i < 10; ++i) EXPECT_EQ(info.GetPanose()->Get(i), want.panose[i]) << i;
  for (int r = 0; r < 4; ++r) {
    EXPECT_EQ(info.GetSig()->GetUnicodeRange(r + 1), std::max(want.unicodeRange[r], 1u));
  }
  EXPECT_EQ(info.GetSig()->GetCodePageRange(1), std::max(want.codePageRange[0], 1u));
  EXPECT_EQ(info.GetSig()->GetCodePageRange(2), std::max(want.codePageRange[1], 1u));
  const FontMetrics* m = info.GetFontMetrics();
  EXPECT_EQ(m->GetUnitsPerEm(), face.hasHead ? want.unitsPerEm : 1024);
  EXPECT_EQ(m->GetAscender(), want.ascender);
  EXPECT_EQ(m->GetDescender(), want.descender);
  EXPECT_EQ(m->GetLineGap(), want.lineGap);
  CharMetricsInfo* table = info.GetCharMetricsInfo();
  int bmp = 0, visible = 0;
  for (const auto& [code, expected] : face.chars) {
    const CharMetrics* metrics = table->GetCharMetrics(code);
    const bool extra = table->GetExtraCharMetrics() != nullptr &&
                       table->GetExtraCharMetrics()->Find(code) != nullptr;
    EXPECT_EQ(extra, !isStoredBit(FontUSBType::GetUSBType(code))) << code;
    bmp += code <= 0xFFFF;
    EXPECT_EQ(metrics == nullptr ? -1 : metrics->GetAdvance(), face.hasHead ? expected.advance : 0)
        << code;
  }
  for (unsigned code = 0; code <= 0xFFFF; ++code) visible += table->IsVisibleChar(code);
  EXPECT_EQ(visible, bmp);
  for (size_t glyph = 0; face.hasHead && glyph <= face.glyphAdvances.size(); ++glyph) {
    EXPECT_EQ(analyzer.GetGlyphAdvance(static_cast<unsigned short>(glyph)),
              glyph < face.glyphAdvances.size() ? face.glyphAdvances[glyph] : 0)
        << glyph;
  }
}

// Checks every face of `files`, kerning too when `kerning`, the generated
// ones (names relative to the test font folder) against their records and
// into `defaults` as font N for the Nth face; returns the number of faces.
int checkFaces(const std::vector<std::string>& files, bool kerning, bool generated = false,
               DefaultFontInfo* defaults = nullptr, std::map<unsigned, int>* fontOf = nullptr) {
  FT_Library library = nullptr;
  EXPECT_EQ(FT_Init_FreeType(&library), 0);
  int faces = 0;
  for (const std::string& file : files) {
    const std::string path = generated ? testFontPath(file) : file;
    FT_Face face = nullptr;
    for (int index = 0; FT_New_Face(library, path.c_str(), index, &face) == 0; ++index) {
      const int font = faces++;
      SCOPED_TRACE(path + " face " + std::to_string(index));
      const int count = static_cast<int>(face->num_faces);
      FT_UInt glyphs[95];
      bool complete = true;
      for (int c = 0; c < 95; ++c)
        complete = (glyphs[c] = FT_Get_Char_Index(face, 32u + c)) != 0 && complete;
      Pairs want = complete ? kernTablePairs(face, glyphs) : Pairs();
      FT_Done_Face(face);
      const ExpectedFace records =
          generated ? kelfont_test::expectedFace(file, index) : ExpectedFace();
      FontFileAnalyzer analyzer;
      std::unique_ptr<FontInfo> fast = analyze(path, index, Source::kMetrics, &analyzer),
                                slow = analyze(path, index, Source::kGlyphs);
      // A face without OS/2 is refused.
      EXPECT_EQ(fast != nullptr, !generated || records.hasOs2);
      if (fast == nullptr || slow == nullptr) continue;
      const std::string bytes = kelfont_test::dataFileBytes(*fast);
      // 128 range type bytes at least, and real ranges behind them.
      EXPECT_GT(bytes.size(), 128u);
      EXPECT_TRUE(bytes == kelfont_test::dataFileBytes(*slow)) << bytes.size() << " bytes";
      if (generated) {
        EXPECT_EQ(fast->GetFileSize(), static_cast<int>(kelfont_test::readFile(path).size()));
        expectRecords(*fast, records, analyzer);
        want.clear();
        for (const auto& [pair, value] : records.kerning) {
          if (complete && pair.first >= 32 && pair.first < 127 && pair.second >= 32 &&
              pair.second < 127)
            want[{static_cast<int>(pair.first), static_cast<int>(pair.second)}] = value;
        }
        analyzer.ApplyDefaultFontInfo(font, *defaults);
        for (const auto& entry : records.chars) (*fontOf)[entry.first] = font;
      } else if (want.empty() && complete) {
        want = shapedPairs(path, index);
      }
      Pairs got;
      const KerningInfo* table = fast->GetKerningInfo();
      for (int l = 32; l < 127; ++l) {
        for (int r = 32; r < 127; ++r) {
          if (table->GetDelta(l, r) != 0) got[{l, r}] = table->GetDelta(l, r);
        }
      }
      // The kerning table given to the data step stays when the face has no pairs.
      EXPECT_EQ(table->GetCount(), static_cast<int>(got.size()));
      if (kerning) {
        EXPECT_EQ(got, want);
      }
      if (index + 1 >= count) break;
    }
  }
  FT_Done_FreeType(library);
  return faces;
}

// Every generated face; the faces each applied to a default-font record as
// one font (the face applied last to a code point wins, nothing for -1).
TEST(FontFileAnalyzer, EveryGeneratedFace) {
  DefaultFontInfo defaults;
  std::map<unsigned, int> fontOf;
  EXPECT_GE(checkFaces(kelfont_test::testFontFiles(), true, true, &defaults, &fontOf), 290);
  FontFileAnalyzer basic;
  ASSERT_TRUE(basic.Open(testFontPath("basic.ttf").c_str(), 0));
  basic.ApplyDefaultFontInfo(-1, defaults);
  for (const auto& [code, font] : fontOf) EXPECT_EQ(defaults.GetFontIndex(code), font) << code;
  EXPECT_EQ(defaults.GetFontIndex(0x1F601), -1);
  EXPECT_GT(fontOf.count(0xF041) + fontOf.count(0x1F600) + fontOf.count(0x20000), 2u);
  EXPECT_EQ(kelfont_test::expectedFace("basic.ttf").kerning.size(), 5u);
  EXPECT_EQ(kelfont_test::expectedFace("kern_tilde_missing.ttf").kerning.size(), 2u);
  EXPECT_EQ(kelfont_test::expectedFace("nohead.ttf").chars.at('A').advance, 724);
}

// DejaVu, Liberation, Nanum and Noto CJK are installed by
// scripts/install-deps.sh; the generated fonts hold the composites, broken
// glyphs and GPOS pairs real fonts rarely have. Noto CJK's kerning is
// checked with the Android set.
TEST(FontFileAnalyzer, DesktopFonts) {
  std::vector<std::string> files = fontFilesIn(KELFONT_TEST_FONT_DIR "/metrics");
  files.push_back(KELFONT_TEST_FONT_DIR "/gpos_kern.ttf");
  for (const char* dir : {"dejavu", "liberation", "nanum"}) {
    for (const std::string& file : fontFilesIn(std::string("/usr/share/fonts/truetype/") + dir))
      files.push_back(file);
  }
  EXPECT_GE(
      checkFaces(files, true) + checkFaces(fontFilesIn("/usr/share/fonts/opentype/noto"), false),
      40);
}

TEST(FontFileAnalyzer, AndroidFonts) {
  const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
  if (folder == nullptr || *folder == '\0') {
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh DIR makes the set)";
  }
  EXPECT_GE(checkFaces(fontFilesIn(folder), true), 300);
}

// The generated composites against their hand-computed loaded advances (0:
// the glyph does not load), so that the comparison above is not vacuous.
TEST(FontFileAnalyzer, CompositesAdvanceByTheirMetricsComponent) {
  std::unique_ptr<FontInfo> info =
      analyze(testFontPath("metrics/composites.ttf"), 0, Source::kGlyphs);
  ASSERT_NE(info, nullptr);
  const int expected[] = {700, 500, 700, 700, 500, 700, 333, 0, 0, 250};  // A..J
  for (unsigned c = 'A'; c <= 'J'; ++c) {
    const CharMetrics* metrics = info->GetCharMetricsInfo()->GetCharMetrics(c);
    EXPECT_EQ(metrics == nullptr ? 0 : metrics->GetAdvance(), expected[c - 'A']) << char(c);
  }
}

TEST(FontFileAnalyzer, DamagedGposTableGivesNoPairsAndALogLine) {
  kelfont_test::LogCapture log;
  std::unique_ptr<FontInfo> info = analyze(testFontPath("gpos_damaged.ttf"), 0, Source::kMetrics);
  EXPECT_EQ(info->GetKerningInfo()->GetCount(), 0);
  std::vector<std::string> want;
  if (hasGposKerning()) {
    want.push_back(
        "Kerning: the GPOS table of KelTest Gpos Regular is damaged, no kerning is read from it");
  }
  EXPECT_EQ(log.messages(), want);
}

// Runs every operation on the face when it opens; whether it opened.
bool exercise(const std::string& path, int face = 0) {
  FontFileAnalyzer analyzer;
  if (!analyzer.Open(path.c_str(), face)) {
    EXPECT_FALSE(analyzer.IsOpen());
    EXPECT_EQ(analyzer.Analyze(), nullptr);
    return false;
  }
  std::unique_ptr<FontInfo> info(analyzer.Analyze());
  EXPECT_NE(info, nullptr);
  if (info != nullptr) analyzer.AnalyzeData(*info);
  DefaultFontInfo defaults;
  analyzer.ApplyDefaultFontInfo(0, defaults);
  analyzer.GetGlyphAdvance(1);
  return true;
}

// A closed analyzer analyses and measures nothing; a second Open replaces
// the face. Refused: missing files, a folder, sfnt heads without tables
// behind them, a cut font, faces past the count, also of collections
// claiming more faces than they have.
TEST(FontFileAnalyzer, OpenCloseAndUnusableFiles) {
  FontFileAnalyzer analyzer;
  FontInfo record;
  auto* oldMetrics = new CharMetricsInfo();
  record.SetCharMetricsInfo(oldMetrics);
  analyzer.AnalyzeData(record);
  EXPECT_EQ(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(analyzer.GetGlyphAdvance(1), 0.0f);
  EXPECT_EQ(analyzer.Analyze(), nullptr);
  ASSERT_TRUE(analyzer.Open(testFontPath("collection.ttc").c_str(), 2));
  EXPECT_EQ(analyzer.GetFaceCount(), 3);
  EXPECT_EQ(*std::unique_ptr<FontInfo>(analyzer.Analyze())->GetFontName(), "KelTest Coll C");
  ASSERT_TRUE(analyzer.Open(testFontPath("basic.ttf").c_str(), 0));
  analyzer.AnalyzeData(record);
  EXPECT_EQ(record.GetCharMetricsInfo()->GetCharMetrics('A')->GetAdvance(),
            kelfont_test::expectedFace("basic.ttf").chars.at('A').advance);
  analyzer.Close();
  EXPECT_FALSE(analyzer.IsOpen());
  EXPECT_EQ(analyzer.Analyze(), nullptr);
  EXPECT_EQ(analyzer.MakePanose(nullptr), nullptr);
  for (int face : {3, -1}) EXPECT_FALSE(exercise(testFontPath("collection.ttc"), face));

  kelfont_test::TempDir dir;
  auto write = [&dir](const std::string& bytes) {
    EXPECT_TRUE(kelfont_test::writeFile(dir.file("font"), bytes));
    return dir.file("font");
  };
  EXPECT_FALSE(analyzer.Open(dir.file("missing.ttf").c_str(), 0));
  EXPECT_EQ(analyzer.GetFileSize(), 0);
  EXPECT_FALSE(analyzer.Open(nullptr, 0));
  EXPECT_FALSE(exercise(dir.file("missing.ttf")));
  ASSERT_EQ(mkdir(dir.file("x.ttf").c_str(), 0700), 0);
  EXPECT_FALSE(exercise(dir.file("x.ttf")));
  const std::string basic = kelfont_test::readFile(testFontPath("basic.ttf"));
  const std::string heads[] = {"", std::string("\0\1\0\0", 4) + std::string(96, '\x55'), "OTTO",
                               std::string("ttcf\0\1\0\0\0\0\0\1", 12), basic.substr(0, 11)};
  for (const std::string& head : heads) EXPECT_FALSE(exercise(write(head))) << head;

  std::string bytes = kelfont_test::readFile(testFontPath("collection.ttc"));
  ASSERT_EQ(bytes.substr(0, 12), std::string("ttcf\0\1\0\0\0\0\0\3", 12));
  bytes[11] = 5;
  const std::string five = write(bytes);
  ASSERT_TRUE(analyzer.Open(five.c_str(), 0));
  EXPECT_EQ(analyzer.GetFaceCount(), 5);
  analyzer.Close();
  EXPECT_TRUE(exercise(five, 2));
  for (int face : {3, 4, 5}) EXPECT_FALSE(exercise(five, face)) << face;
  bytes[8] = '\x7F';
  bytes[11] = '\xFF';
  const std::string many = write(bytes);
  for (int face : {0, 3, 1000}) EXPECT_FALSE(exercise(many, face)) << face;
}

// Names, pitch and flags of each font: tests/data/common_functions.tsv.
TEST(FontFileAnalyzer, PreferredLanguageIsByDefaultTheInterfaceLanguage) {
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale saved = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  FontFileAnalyzer korean;
  environment.SetUILocale(saved);
  EXPECT_EQ(korean.GetPreferredLanguage(), 0x0412);
}

// 1500 Hangul syllables: 1023 UTF-16 units fit the name buffer; of their
// UTF-8 form 682 syllables (2046 bytes) fit the 2048-byte buffer with its
// terminator.
TEST(FontFileAnalyzer, LongFamilyNameIsCutAtAUnitBoundary) {
  std::string utf8;
  ASSERT_TRUE(kelfont_test::runPython(
      "import sys; from fontTools.ttLib import TTFont; "
      "sys.stdout.buffer.write(TTFont(sys.argv[1])['name'].getDebugName(1).encode())",
      {testFontPath("longname.ttf")}, &utf8));
  ASSERT_EQ(utf8.size(), 4500u);
  std::unique_ptr<FontInfo> info = analyze(testFontPath("longname.ttf"), 0, Source::kMetrics);
  EXPECT_EQ(info->GetLocalizedNames().at(0x0409), utf8.substr(0, 2046));
  EXPECT_EQ(*info->GetFontName(), utf8.substr(0, 2046));
}

}  // namespace
