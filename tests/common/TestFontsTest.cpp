// The generated test fonts, opened with FreeType: each one must show the
// property it was made for, and FreeType must read the same advances, names,
// tables and kerning pairs that the generator found with its own reader.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::ExpectedName;
using kelfont_test::testFontPath;

struct NameRecord {
  int platform;
  int encoding;
  int language;
  int nameId;
  std::string bytes;
};

class TestFontsTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(FT_Init_FreeType(&library_), 0); }

  void TearDown() override {
    for (FT_Face face : faces_) FT_Done_Face(face);
    if (library_ != nullptr) FT_Done_FreeType(library_);
  }

  // Opens a face of a generated font; fails the test when FreeType cannot.
  FT_Face open(const std::string& file, int faceIndex = 0) {
    FT_Face face = nullptr;
    FT_Error error = FT_New_Face(library_, testFontPath(file).c_str(), faceIndex, &face);
    EXPECT_EQ(error, 0) << file << " face " << faceIndex;
    if (error != 0) return nullptr;
    faces_.push_back(face);
    return face;
  }

  static ExpectedFace expected(const std::string& file, int faceIndex = 0) {
    ExpectedFace face;
    std::string error;
    EXPECT_TRUE(kelfont_test::loadExpectedFace(file, faceIndex, &face, &error)) << error;
    return face;
  }

  static std::vector<NameRecord> names(FT_Face face) {
    std::vector<NameRecord> result;
    FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count; ++i) {
      FT_SfntName name;
      if (FT_Get_Sfnt_Name(face, i, &name) != 0) continue;
      result.push_back({name.platform_id, name.encoding_id, name.language_id, name.name_id,
                        std::string(reinterpret_cast<const char*>(name.string), name.string_len)});
    }
    return result;
  }

  static std::vector<NameRecord> familyNames(FT_Face face) {
    std::vector<NameRecord> result;
    for (const NameRecord& name : names(face)) {
      if (name.nameId == TT_NAME_ID_FONT_FAMILY) result.push_back(name);
    }
    return result;
  }

  static bool hasTable(FT_Face face, FT_ULong tag) {
    FT_ULong length = 0;
    return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
  }

  static long unscaledAdvance(FT_Face face, FT_UInt glyph) {
    FT_Fixed advance = 0;
    EXPECT_EQ(FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance), 0) << glyph;
    return advance;
  }

  static long unscaledKerning(FT_Face face, FT_ULong left, FT_ULong right) {
    FT_Vector delta{0, 0};
    EXPECT_EQ(FT_Get_Kerning(face, FT_Get_Char_Index(face, left), FT_Get_Char_Index(face, right),
                             FT_KERNING_UNSCALED, &delta),
              0);
    return delta.x;
  }

  // Every code point of the expected map resolves to the expected glyph and
  // advance, and FreeType's walk of the selected map finds exactly those.
  static void expectCharsAndAdvances(FT_Face face, const ExpectedFace& want) {
    ASSERT_FALSE(want.chars.empty()) << want.file;
    for (const auto& entry : want.chars) {
      FT_UInt glyph = FT_Get_Char_Index(face, entry.first);
      EXPECT_EQ(glyph, static_cast<FT_UInt>(entry.second.glyph))
          << want.file << " U+" << std::hex << entry.first;
      EXPECT_EQ(unscaledAdvance(face, glyph), entry.second.advance)
          << want.file << " U+" << std::hex << entry.first;
      ASSERT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE), 0);
      EXPECT_EQ(face->glyph->metrics.horiAdvance, entry.second.advance)
          << want.file << " U+" << std::hex << entry.first;
    }
    std::set<std::uint32_t> walked;
    FT_UInt glyph = 0;
    for (FT_ULong code = FT_Get_First_Char(face, &glyph); glyph != 0;
         code = FT_Get_Next_Char(face, code, &glyph)) {
      walked.insert(static_cast<std::uint32_t>(code));
    }
    std::set<std::uint32_t> listed;
    for (const auto& entry : want.chars) listed.insert(entry.first);
    EXPECT_EQ(walked, listed) << want.file;
  }

  static std::string utf16be(const std::u16string& text) {
    std::string bytes;
    for (char16_t unit : text) {
      bytes.push_back(static_cast<char>(unit >> 8));
      bytes.push_back(static_cast<char>(unit & 0xFF));
    }
    return bytes;
  }

  FT_Library library_ = nullptr;
  std::vector<FT_Face> faces_;
};

TEST_F(TestFontsTest, EveryGeneratedFontOpensWithItsFaceCount) {
  std::vector<std::string> files = kelfont_test::testFontFiles();
  ASSERT_GE(files.size(), 31u);
  for (const std::string& file : files) {
    FT_Face face = open(file);
    ASSERT_NE(face, nullptr) << file;
    EXPECT_EQ(face->num_faces, kelfont_test::expectedFaceCount(file)) << file;
    EXPECT_TRUE(FT_IS_SFNT(face)) << file;
  }
}

TEST_F(TestFontsTest, GlyphAdvancesAreDistinctInEveryFont) {
  for (const std::string& file : kelfont_test::testFontFiles()) {
    for (int index = 0; index < kelfont_test::expectedFaceCount(file); ++index) {
      ExpectedFace want = expected(file, index);
      ASSERT_FALSE(want.glyphs.empty()) << file;
      std::set<int> advances;
      for (const auto& glyph : want.glyphs) advances.insert(glyph.advance);
      EXPECT_EQ(advances.size(), want.glyphs.size()) << file;
      EXPECT_EQ(static_cast<int>(want.glyphs.size()), want.numGlyphs) << file;
    }
  }
}

TEST_F(TestFontsTest, BasicHasItsNamesTablesAndCharacters) {
  FT_Face face = open("basic.ttf");
  ASSERT_NE(face, nullptr);
  ExpectedFace want = expected("basic.ttf");
  EXPECT_STREQ(face->family_name, "KelTest Basic");
  EXPECT_STREQ(face->style_name, "Regular");
  EXPECT_EQ(face->units_per_EM, 2048);
  EXPECT_EQ(want.unitsPerEm, 2048);

  std::set<int> windowsEnglish;
  for (const NameRecord& name : names(face)) {
    if (name.platform == TT_PLATFORM_MICROSOFT && name.encoding == TT_MS_ID_UNICODE_CS &&
        name.language == 0x0409) {
      windowsEnglish.insert(name.nameId);
    }
  }
  EXPECT_EQ(windowsEnglish, (std::set<int>{1, 2, 4, 6}));
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 1u);
  EXPECT_EQ(family[0].bytes, utf16be(u"KelTest Basic"));

  auto* hhea = static_cast<TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
  ASSERT_NE(hhea, nullptr);
  EXPECT_EQ(hhea->Ascender, want.ascender);
  EXPECT_EQ(hhea->Descender, want.descender);
  EXPECT_EQ(hhea->Line_Gap, want.lineGap);
  EXPECT_NE(hhea->Line_Gap, 0);

  auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  ASSERT_NE(os2, nullptr);
  ASSERT_TRUE(want.hasOs2);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(os2->panose[i], want.panose[i]) << i;
  EXPECT_EQ(os2->panose[0], 2);
  const FT_ULong ranges[6] = {os2->ulUnicodeRange1, os2->ulUnicodeRange2, os2->ulUnicodeRange3,
                              os2->ulUnicodeRange4, os2->ulCodePageRange1, os2->ulCodePageRange2};
  const std::uint32_t wantRanges[6] = {want.unicodeRange[0], want.unicodeRange[1],
                                       want.unicodeRange[2], want.unicodeRange[3],
                                       want.codePageRange[0], want.codePageRange[1]};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(ranges[i], wantRanges[i]) << i;
    EXPECT_NE(ranges[i], 0u) << i;
  }
  EXPECT_EQ(os2->sTypoAscender, want.typoAscender);
  EXPECT_NE(os2->sTypoAscender, hhea->Ascender);

  auto* post = static_cast<TT_Postscript*>(FT_Get_Sfnt_Table(face, FT_SFNT_POST));
  ASSERT_NE(post, nullptr);
  EXPECT_EQ(post->isFixedPitch, 0u);
  EXPECT_EQ(FT_Get_Sfnt_Table(face, FT_SFNT_VHEA), nullptr);

  // A format 4 Unicode map holding printable ASCII, some Latin-1, Hangul
  // syllables and one private-use character.
  ASSERT_EQ(FT_Select_Charmap(face, FT_ENCODING_UNICODE), 0);
  EXPECT_EQ(FT_Get_CMap_Format(face->charmap), 4);
  for (FT_ULong c = 0x20; c <= 0x7E; ++c) EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << c;
  for (FT_ULong c : {0xC4ul, 0xE9ul, 0xAC00ul, 0xAC01ul, 0xD7A3ul, 0xE000ul}) {
    EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << std::hex << c;
  }
  EXPECT_EQ(FT_Get_Char_Index(face, 0xAC02), 0u);
  expectCharsAndAdvances(face, want);
}

TEST_F(TestFontsTest, BasicOutlinesMatchTheGlyfTable) {
  FT_Face face = open("basic.ttf");
  ASSERT_NE(face, nullptr);
  ExpectedFace want = expected("basic.ttf");
  ASSERT_FALSE(want.outlines.empty());
  for (const auto& entry : want.outlines) {
    ASSERT_EQ(FT_Load_Glyph(face, entry.first, FT_LOAD_NO_SCALE), 0);
    const FT_Outline& outline = face->glyph->outline;
    ASSERT_EQ(outline.n_contours, static_cast<int>(entry.second.size())) << entry.first;
    int point = 0;
    for (int c = 0; c < outline.n_contours; ++c) {
      const auto& contour = entry.second[c];
      EXPECT_EQ(outline.contours[c], point + static_cast<int>(contour.size()) - 1);
      for (const auto& p : contour) {
        EXPECT_EQ(outline.points[point].x, p.x) << entry.first << " point " << point;
        EXPECT_EQ(outline.points[point].y, p.y) << entry.first << " point " << point;
        EXPECT_EQ((outline.tags[point] & FT_CURVE_TAG_ON) != 0, p.onCurve) << entry.first;
        ++point;
      }
    }
    EXPECT_EQ(outline.n_points, point);
  }

  // The triangle of "A" and the curve of "o" with its off-curve points.
  const FT_UInt a = FT_Get_Char_Index(face, 'A');
  const long advanceA = unscaledAdvance(face, a);
  ASSERT_EQ(FT_Load_Glyph(face, a, FT_LOAD_NO_SCALE), 0);
  ASSERT_EQ(face->glyph->outline.n_points, 3);
  EXPECT_EQ(face->glyph->outline.points[0].x, 50);
  EXPECT_EQ(face->glyph->outline.points[1].x, advanceA / 2);
  EXPECT_EQ(face->glyph->outline.points[1].y, 1400);
  EXPECT_EQ(face->glyph->outline.points[2].x, advanceA - 50);
  ASSERT_EQ(FT_Load_Glyph(face, FT_Get_Char_Index(face, 'o'), FT_LOAD_NO_SCALE), 0);
  int offCurve = 0;
  for (int i = 0; i < face->glyph->outline.n_points; ++i) {
    if ((face->glyph->outline.tags[i] & FT_CURVE_TAG_ON) == 0) ++offCurve;
  }
  EXPECT_EQ(offCurve, 4);
  ASSERT_EQ(FT_Load_Glyph(face, FT_Get_Char_Index(face, 'O'), FT_LOAD_NO_SCALE), 0);
  EXPECT_EQ(face->glyph->outline.n_contours, 2);
  ASSERT_EQ(FT_Load_Glyph(face, FT_Get_Char_Index(face, ' '), FT_LOAD_NO_SCALE), 0);
  EXPECT_EQ(face->glyph->outline.n_contours, 0);
}

TEST_F(TestFontsTest, BasicKerningPairs) {
  FT_Face face = open("basic.ttf");
  ASSERT_NE(face, nullptr);
  ExpectedFace want = expected("basic.ttf");
  ASSERT_TRUE(FT_HAS_KERNING(face));
  EXPECT_EQ(unscaledKerning(face, 'A', 'V'), -150);
  EXPECT_EQ(unscaledKerning(face, 'V', 'A'), -140);
  EXPECT_EQ(unscaledKerning(face, 'T', 'o'), -80);
  EXPECT_EQ(unscaledKerning(face, 'A', 'T'), 0);
  bool withTilde = false;
  ASSERT_FALSE(want.kerning.empty());
  for (const auto& pair : want.kerning) {
    EXPECT_EQ(unscaledKerning(face, pair.first.first, pair.first.second), pair.second);
    if (pair.first.first == '~' || pair.first.second == '~') withTilde = true;
  }
  EXPECT_TRUE(withTilde);

  // With one pixel per font unit the 26.6 value is the font-unit value
  // times 64.
  ASSERT_EQ(FT_Set_Pixel_Sizes(face, 0, face->units_per_EM), 0);
  FT_Vector delta{0, 0};
  ASSERT_EQ(FT_Get_Kerning(face, FT_Get_Char_Index(face, 'A'), FT_Get_Char_Index(face, 'V'),
                           FT_KERNING_UNFITTED, &delta),
            0);
  EXPECT_EQ(delta.x >> 6, -150);
}

TEST_F(TestFontsTest, StylesShareTheFamilyWithOtherAdvances) {
  struct Style {
    const char* file;
    const char* style;
    long flags;
  };
  const Style styles[] = {
      {"basic.ttf", "Regular", 0},
      {"bold.ttf", "Bold", FT_STYLE_FLAG_BOLD},
      {"italic.ttf", "Italic", FT_STYLE_FLAG_ITALIC},
      {"bolditalic.ttf", "Bold Italic", FT_STYLE_FLAG_BOLD | FT_STYLE_FLAG_ITALIC},
  };
  FT_Face regular = open("basic.ttf");
  ASSERT_NE(regular, nullptr);
  for (const Style& style : styles) {
    FT_Face face = open(style.file);
    ASSERT_NE(face, nullptr);
    EXPECT_STREQ(face->family_name, "KelTest Basic") << style.file;
    EXPECT_STREQ(face->style_name, style.style) << style.file;
    EXPECT_EQ(face->style_flags & (FT_STYLE_FLAG_BOLD | FT_STYLE_FLAG_ITALIC), style.flags);
    expectCharsAndAdvances(face, expected(style.file));
    if (std::string(style.file) != "basic.ttf") {
      for (FT_ULong c = 0x20; c <= 0x7E; ++c) {
        EXPECT_NE(unscaledAdvance(face, FT_Get_Char_Index(face, c)),
                  unscaledAdvance(regular, FT_Get_Char_Index(regular, c)))
            << style.file << " " << c;
      }
    }
  }
}

TEST_F(TestFontsTest, MacRomanFamilyRecordOnly) {
  FT_Face face = open("macroman.ttf");
  ASSERT_NE(face, nullptr);
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 1u);
  EXPECT_EQ(family[0].platform, TT_PLATFORM_MACINTOSH);
  EXPECT_EQ(family[0].encoding, TT_MAC_ID_ROMAN);
  EXPECT_EQ(family[0].language, 0);
  EXPECT_EQ(family[0].bytes, "KelTest Caf\x8E \xDB");
  ExpectedFace want = expected("macroman.ttf");
  ASSERT_EQ(want.familyNames().size(), 1u);
  EXPECT_EQ(want.familyNames()[0].bytes, family[0].bytes);
}

TEST_F(TestFontsTest, MacJapaneseAndKoreanFamilyRecords) {
  FT_Face japanese = open("macenc1.ttf");
  ASSERT_NE(japanese, nullptr);
  std::vector<NameRecord> family = familyNames(japanese);
  ASSERT_EQ(family.size(), 1u);
  EXPECT_EQ(family[0].platform, TT_PLATFORM_MACINTOSH);
  EXPECT_EQ(family[0].encoding, TT_MAC_ID_JAPANESE);
  EXPECT_EQ(family[0].language, TT_MAC_LANGID_JAPANESE);
  EXPECT_EQ(family[0].bytes, "\x83\x65\x83\x58\x83\x67");

  FT_Face korean = open("macenc3.ttf");
  ASSERT_NE(korean, nullptr);
  family = familyNames(korean);
  ASSERT_EQ(family.size(), 2u);
  EXPECT_EQ(family[0].platform, TT_PLATFORM_MACINTOSH);
  EXPECT_EQ(family[0].encoding, TT_MAC_ID_KOREAN);
  EXPECT_EQ(family[0].language, TT_MAC_LANGID_KOREAN);
  EXPECT_EQ(family[1].platform, TT_PLATFORM_MICROSOFT);
  EXPECT_EQ(family[1].language, 0x0412);
  EXPECT_EQ(family[1].bytes, utf16be(u"케이테스트 윈도"));
}

TEST_F(TestFontsTest, WindowsFamilyNamesPerLanguage) {
  struct Case {
    const char* file;
    std::set<int> languages;
  };
  const Case cases[] = {
      {"winnames.ttf", {0x0409, 0x0412}},
      {"winnames_ko.ttf", {0x0411, 0x0412}},
      {"winnames_other.ttf", {0x0407, 0x040C}},
  };
  for (const Case& c : cases) {
    FT_Face face = open(c.file);
    ASSERT_NE(face, nullptr);
    std::set<int> languages;
    for (const NameRecord& name : familyNames(face)) {
      EXPECT_EQ(name.platform, TT_PLATFORM_MICROSOFT) << c.file;
      EXPECT_EQ(name.encoding, TT_MS_ID_UNICODE_CS) << c.file;
      languages.insert(name.language);
    }
    EXPECT_EQ(languages, c.languages) << c.file;
  }
  FT_Face face = open("winnames.ttf");
  ASSERT_NE(face, nullptr);
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 2u);
  EXPECT_EQ(family[0].language, 0x0409);
  EXPECT_EQ(family[0].bytes, utf16be(u"KelTest Win"));
  EXPECT_EQ(family[1].language, 0x0412);
  EXPECT_EQ(family[1].bytes, utf16be(u"케이테스트"));
}

TEST_F(TestFontsTest, UnicodePlatformRecordComesFirst) {
  FT_Face face = open("unicode03.ttf");
  ASSERT_NE(face, nullptr);
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 2u);
  EXPECT_EQ(family[0].platform, TT_PLATFORM_APPLE_UNICODE);
  EXPECT_EQ(family[0].encoding, 3);
  EXPECT_EQ(family[0].language, 0);
  EXPECT_EQ(family[0].bytes, utf16be(u"KelTest Uni"));
  EXPECT_EQ(family[1].platform, TT_PLATFORM_MICROSOFT);
  EXPECT_EQ(family[1].language, 0x0409);
  EXPECT_EQ(family[1].bytes, utf16be(u"KelTest Win English"));
}

TEST_F(TestFontsTest, SymbolFontHasOnlyASymbolMap) {
  FT_Face face = open("symbol.ttf");
  ASSERT_NE(face, nullptr);
  ASSERT_EQ(face->num_charmaps, 1);
  EXPECT_EQ(face->charmaps[0]->encoding, FT_ENCODING_MS_SYMBOL);
  EXPECT_EQ(face->charmaps[0]->platform_id, TT_PLATFORM_MICROSOFT);
  EXPECT_EQ(face->charmaps[0]->encoding_id, TT_MS_ID_SYMBOL_CS);
  EXPECT_NE(FT_Select_Charmap(face, FT_ENCODING_UNICODE), 0);
  ASSERT_EQ(FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL), 0);
  FT_UInt glyph = 0;
  EXPECT_EQ(FT_Get_First_Char(face, &glyph), 0xF020u);
  for (FT_ULong c : {0xF020ul, 0xF041ul, 0xF042ul, 0xF0B6ul}) {
    EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << std::hex << c;
  }
  ExpectedFace want = expected("symbol.ttf");
  EXPECT_EQ(want.charmapPlatform, 3);
  EXPECT_EQ(want.charmapEncoding, 0);
  expectCharsAndAdvances(face, want);
  auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  ASSERT_NE(os2, nullptr);
  EXPECT_EQ(os2->ulCodePageRange1, 0x80000000ul);
}

TEST_F(TestFontsTest, FontWithoutOs2Opens) {
  FT_Face face = open("noos2.ttf");
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(FT_Get_Sfnt_Table(face, FT_SFNT_OS2), nullptr);
  EXPECT_FALSE(hasTable(face, TTAG_OS2));
  EXPECT_FALSE(expected("noos2.ttf").hasOs2);
  EXPECT_NE(FT_Get_Char_Index(face, 'A'), 0u);
}

TEST_F(TestFontsTest, CollectionHasThreeFaces) {
  const char* families[] = {"KelTest Coll A", "KelTest Coll B", "KelTest Coll C"};
  for (int index = 0; index < 3; ++index) {
    FT_Face face = open("collection.ttc", index);
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(face->num_faces, 3);
    EXPECT_EQ(face->face_index, index);
    EXPECT_STREQ(face->family_name, families[index]);
    ExpectedFace want = expected("collection.ttc", index);
    EXPECT_EQ(want.faceIndex, index);
    expectCharsAndAdvances(face, want);
  }
  FT_Face fourth = nullptr;
  EXPECT_NE(FT_New_Face(library_, testFontPath("collection.ttc").c_str(), 3, &fourth), 0);
}

TEST_F(TestFontsTest, KerningWithoutTildeGlyph) {
  FT_Face face = open("kern_tilde_missing.ttf");
  ASSERT_NE(face, nullptr);
  EXPECT_TRUE(FT_HAS_KERNING(face));
  EXPECT_EQ(FT_Get_Char_Index(face, '~'), 0u);
  for (FT_ULong c = 0x20; c < 0x7E; ++c) EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << c;
  EXPECT_EQ(unscaledKerning(face, 'A', 'V'), -120);
  expectCharsAndAdvances(face, expected("kern_tilde_missing.ttf"));
}

TEST_F(TestFontsTest, KerningOnlyOutsidePrintableAscii) {
  FT_Face face = open("kern_outside_ascii.ttf");
  ASSERT_NE(face, nullptr);
  EXPECT_TRUE(FT_HAS_KERNING(face));
  for (FT_ULong left = 0x20; left <= 0x7E; ++left) {
    ASSERT_NE(FT_Get_Char_Index(face, left), 0u) << left;
    for (FT_ULong right = 0x20; right <= 0x7E; ++right) {
      ASSERT_EQ(unscaledKerning(face, left, right), 0) << left << " " << right;
    }
  }
  EXPECT_EQ(unscaledKerning(face, 0xC4, 0xD6), -120);
  EXPECT_EQ(unscaledKerning(face, 0xD6, 0xC4), -110);
  ExpectedFace want = expected("kern_outside_ascii.ttf");
  EXPECT_EQ(want.kerning.size(), 2u);
}

TEST_F(TestFontsTest, FamilyNameWithSurrogatePair) {
  FT_Face face = open("emoji_name.ttf");
  ASSERT_NE(face, nullptr);
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 1u);
  EXPECT_EQ(family[0].bytes, std::string("\x00K\x00" "e\x00l\xD8\x3D\xDE\x00", 10));
}

TEST_F(TestFontsTest, SupplementaryCodePointsThroughFormat12) {
  FT_Face face = open("supplementary.ttf");
  ASSERT_NE(face, nullptr);
  bool format12 = false;
  for (int i = 0; i < face->num_charmaps; ++i) {
    if (face->charmaps[i]->platform_id == TT_PLATFORM_MICROSOFT &&
        face->charmaps[i]->encoding_id == TT_MS_ID_UCS_4) {
      format12 = FT_Get_CMap_Format(face->charmaps[i]) == 12;
    }
  }
  EXPECT_TRUE(format12);
  ASSERT_EQ(FT_Select_Charmap(face, FT_ENCODING_UNICODE), 0);
  for (FT_ULong c : {0x41ul, 0x1F600ul, 0x20000ul, 0x1D400ul}) {
    EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << std::hex << c;
  }
  ExpectedFace want = expected("supplementary.ttf");
  EXPECT_EQ(want.charmapPlatform, 3);
  EXPECT_EQ(want.charmapEncoding, 10);
  expectCharsAndAdvances(face, want);
}

TEST_F(TestFontsTest, ZeroRanges) {
  FT_Face face = open("cprange2_zero.ttf");
  ASSERT_NE(face, nullptr);
  auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  ASSERT_NE(os2, nullptr);
  EXPECT_NE(os2->ulUnicodeRange1, 0u);
  EXPECT_EQ(os2->ulUnicodeRange2, 0u);
  EXPECT_EQ(os2->ulUnicodeRange3, 0u);
  EXPECT_EQ(os2->ulUnicodeRange4, 0u);
  EXPECT_NE(os2->ulCodePageRange1, 0u);
  EXPECT_EQ(os2->ulCodePageRange2, 0u);

  face = open("ranges_zero.ttf");
  ASSERT_NE(face, nullptr);
  os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  ASSERT_NE(os2, nullptr);
  EXPECT_GE(os2->version, 1);
  EXPECT_EQ(os2->ulUnicodeRange1 | os2->ulUnicodeRange2 | os2->ulUnicodeRange3 |
                os2->ulUnicodeRange4 | os2->ulCodePageRange1 | os2->ulCodePageRange2,
            0u);
}

TEST_F(TestFontsTest, PitchSources) {
  FT_Face fixed = open("fixedpitch.ttf");
  ASSERT_NE(fixed, nullptr);
  auto* post = static_cast<TT_Postscript*>(FT_Get_Sfnt_Table(fixed, FT_SFNT_POST));
  ASSERT_NE(post, nullptr);
  EXPECT_EQ(post->isFixedPitch, 1u);
  EXPECT_EQ(expected("fixedpitch.ttf").fixedPitch, 1);
  EXPECT_EQ(FT_Get_Sfnt_Table(fixed, FT_SFNT_PCLT), nullptr);

  // FreeType hands out a zero-filled post record even when the font has
  // none; only the table directory tells.
  FT_Face pclt = open("nopost_pclt.ttf");
  ASSERT_NE(pclt, nullptr);
  EXPECT_FALSE(hasTable(pclt, TTAG_post));
  auto* pcltTable = static_cast<TT_PCLT*>(FT_Get_Sfnt_Table(pclt, FT_SFNT_PCLT));
  ASSERT_NE(pcltTable, nullptr);
  ExpectedFace want = expected("nopost_pclt.ttf");
  EXPECT_FALSE(want.hasPost);
  EXPECT_EQ(pcltTable->Pitch, want.pcltPitch);
  EXPECT_EQ(pcltTable->Pitch, unscaledAdvance(pclt, FT_Get_Char_Index(pclt, ' ')));

  FT_Face none = open("nopost.ttf");
  ASSERT_NE(none, nullptr);
  EXPECT_FALSE(hasTable(none, TTAG_post));
  EXPECT_EQ(FT_Get_Sfnt_Table(none, FT_SFNT_PCLT), nullptr);
  EXPECT_EQ(expected("nopost.ttf").pcltPitch, -1);
}

TEST_F(TestFontsTest, LongFamilyName) {
  FT_Face face = open("longname.ttf");
  ASSERT_NE(face, nullptr);
  std::vector<NameRecord> family = familyNames(face);
  ASSERT_EQ(family.size(), 1u);
  ASSERT_EQ(family[0].bytes.size(), 3000u);
  // Hangul syllables only, so three UTF-8 bytes per unit: 4500 bytes.
  for (std::size_t i = 0; i < family[0].bytes.size(); i += 2) {
    unsigned unit = static_cast<unsigned char>(family[0].bytes[i]) << 8 |
                    static_cast<unsigned char>(family[0].bytes[i + 1]);
    ASSERT_GE(unit, 0xAC00u) << i;
    ASSERT_LE(unit, 0xD7A3u) << i;
  }
  EXPECT_EQ(expected("longname.ttf").familyNames()[0].bytes, family[0].bytes);
}

TEST_F(TestFontsTest, CffFontAdvances) {
  FT_Face face = open("cff.otf");
  ASSERT_NE(face, nullptr);
  EXPECT_TRUE(hasTable(face, TTAG_CFF));
  EXPECT_FALSE(hasTable(face, TTAG_glyf));
  EXPECT_NE(FT_Get_Sfnt_Table(face, FT_SFNT_OS2), nullptr);
  EXPECT_EQ(face->units_per_EM, 1000);
  ExpectedFace want = expected("cff.otf");
  EXPECT_EQ(want.sfnt, "CFF");
  expectCharsAndAdvances(face, want);
}

TEST_F(TestFontsTest, VerticalMetrics) {
  FT_Face face = open("vertical.ttf");
  ASSERT_NE(face, nullptr);
  EXPECT_TRUE(FT_HAS_VERTICAL(face));
  EXPECT_NE(FT_Get_Sfnt_Table(face, FT_SFNT_VHEA), nullptr);
  ExpectedFace want = expected("vertical.ttf");
  ASSERT_TRUE(want.vertical);
  ASSERT_EQ(static_cast<int>(want.verticalAdvances.size()), want.numGlyphs);
  for (int glyph = 0; glyph < want.numGlyphs; ++glyph) {
    ASSERT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_VERTICAL_LAYOUT), 0);
    EXPECT_EQ(face->glyph->metrics.vertAdvance, want.verticalAdvances[glyph]) << glyph;
  }
  expectCharsAndAdvances(face, want);
}

TEST_F(TestFontsTest, EastAsianSignatureBits) {
  struct Case {
    const char* file;
    bool jamo;      // Unicode-range bit 28
    bool hangul;    // Unicode-range bit 56 (word 2, bit 24)
    bool korean;    // code-page bit 19 (949)
  };
  const Case cases[] = {
      {"cjk_flag.ttf", false, true, true},
      {"cjk_range_only.ttf", false, true, false},
      {"cjk_codepage_only.ttf", false, false, true},
      {"cjk_jamo_only.ttf", true, false, false},
      {"basic.ttf", false, false, false},
  };
  for (const Case& c : cases) {
    FT_Face face = open(c.file);
    ASSERT_NE(face, nullptr);
    auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    ASSERT_NE(os2, nullptr);
    EXPECT_EQ((os2->ulUnicodeRange1 >> 28) & 1, c.jamo ? 1u : 0u) << c.file;
    EXPECT_EQ((os2->ulUnicodeRange2 >> 24) & 1, c.hangul ? 1u : 0u) << c.file;
    EXPECT_EQ((os2->ulCodePageRange1 >> 19) & 1, c.korean ? 1u : 0u) << c.file;
    // No other East Asian Unicode range or code page is claimed.
    EXPECT_EQ(os2->ulUnicodeRange2 & 0x29D60000ul & ~0x01000000ul, 0u) << c.file;
    EXPECT_EQ(os2->ulCodePageRange1 & 0x003E0000ul & ~0x00080000ul, 0u) << c.file;
  }
  FT_Face face = open("cjk_flag.ttf");
  ASSERT_NE(face, nullptr);
  for (FT_ULong c : {0xAC00ul, 0xAC01ul, 0xB098ul, 0xD7A3ul}) {
    EXPECT_NE(FT_Get_Char_Index(face, c), 0u) << std::hex << c;
  }
}

TEST_F(TestFontsTest, FaceWithoutHeadTable) {
  // FreeType opens an sfnt without `head` only when it is an old Apple
  // bitmap font carrying the header as `bhed`; it then reads neither hhea
  // nor OS/2 from the file but still hands out a zero-filled OS/2 record.
  FT_Face face = open("nohead.ttf");
  ASSERT_NE(face, nullptr);
  EXPECT_FALSE(hasTable(face, TTAG_head));
  EXPECT_TRUE(hasTable(face, TTAG_bhed));
  EXPECT_TRUE(hasTable(face, TTAG_OS2));
  auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  ASSERT_NE(os2, nullptr);
  EXPECT_EQ(os2->version, 0);
  EXPECT_EQ(os2->sTypoAscender, 0);
  auto* header = static_cast<TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
  ASSERT_NE(header, nullptr);
  EXPECT_EQ(header->Units_Per_EM, 2048);
  EXPECT_FALSE(FT_IS_SCALABLE(face));
  EXPECT_STREQ(face->family_name, "KelTest NoHead");
  EXPECT_NE(FT_Get_Char_Index(face, 'A'), 0u);
  ExpectedFace want = expected("nohead.ttf");
  EXPECT_FALSE(want.hasHead);
  EXPECT_TRUE(want.hasOs2);
}

}  // namespace
