// The facade through the public entry points only, on caches written with
// the serializer.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "api/kelfont.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using namespace facade_test;
using kelfont_test::expectedFace;
using Answer = std::pair<int, int>;  // status, value

Answer charInfo(int font, int ch, bool bold = false, bool italic = false) {
  int advance = -12345;
  int status = GetFontCharInfo(font, ch, bold, italic, advance);
  return {status, advance};
}
Answer emSquare(int font, bool bold = false, bool italic = false) {
  int value = -12345;
  int status = GetFontEmSquareFUnit(font, bold, italic, value);
  return {status, value};
}
Answer kerning(int font, int first, int second, bool bold = false) {
  int delta = -12345;
  int status = GetKerningInfo(font, bold, false, first, second, delta);
  return {status, delta};
}
// Starts the facade on `base`; it must say so on standard output.
void init(const std::string& base) {
  testing::internal::CaptureStdout();
  ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
}
// Eviction face i with every advance raised by 1000: shows whether the
// facade still holds the old data or reads the file again.
Face rewritten(int i) {
  Face face = evictFace(i);
  for (auto& entry : face.advances) entry.second = static_cast<unsigned short>(entry.second + 1000);
  return face;
}

class KelFontFacade : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(writeCache(base_, standardFaces()));
    init(base_);
  }
  void TearDown() override { UnInitKelFont(); }

  kelfont_test::TempDir dir_;
  std::string base_ = dir_.path() + "/";
};

std::string said(const Answer& answer) {
  return std::to_string(answer.first) +
         (answer.second == -12345 ? "" : "/" + std::to_string(answer.second));
}

// One call of tests/data/facade_scripts.tsv and its answer.
std::string call(const std::string& token, const std::string& base) {
  std::vector<std::string> a;
  std::istringstream parts(token);
  for (std::string part; std::getline(parts, part, ',');) a.push_back(part);
  a.resize(5);
  auto number = [&](size_t i) { return static_cast<int>(std::stol(a[i], nullptr, 0)); };
  auto code = [&](size_t i) {
    return a[i].size() == 1           ? static_cast<unsigned char>(a[i][0])
           : a[i].rfind("U+", 0) == 0 ? std::stoi(a[i].substr(2), nullptr, 16)
                                      : number(i);
  };
  const std::string& style = a[0] == "c" ? a[3] : a[0] == "e" ? a[2] : a[4];
  const bool bold = style.find('b') != std::string::npos,
             italic = style.find('i') != std::string::npos;
  const char op = token[0];
  if (op == 'c') return said(charInfo(number(1), code(2), bold, italic));
  if (op == 'e') return said(emSquare(number(1), bold, italic));
  if (op == 'k') return said(kerning(number(1), code(2), code(3), bold));
  std::replace(a[1].begin(), a[1].end(), '_', ' ');
  if (op == 'n') return std::to_string(GetFontIndex(a[1].c_str()));
  if (op == '?') return std::to_string(IsKelFontInitialized());
  if (op == 'p') return kelfont_test::writeFile(base + "FInfo/Fdata/probe", "x") ? "." : "!";
  if (op == 'w')
    return writeDataFile(base, kFirstEvictInfo + number(1), rewritten(number(1))) ? "." : "!";
  if (op == 'L') {
    for (int i = 0; i <= 20; ++i) {
      if (charInfo(kFirstEvict + i, 'A') != Answer(0, 100 + i)) return "!";
    }
  }
  if (op == 'd') {
    Face face = standardFaces()[static_cast<size_t>(number(1))];
    face.advances[static_cast<unsigned>(std::stoi(a[2], nullptr, 16))] =
        static_cast<unsigned short>(std::stoi(a[2].substr(a[2].find('=') + 1)));
    if (!writeDataFile(base, number(1), face)) return "!";
  }
  if (op == 'S') {  // a start-up on the running facade with a cache of eviction faces 0..4
    std::vector<Face> faces;
    for (int i = 0; i < 5; ++i) faces.push_back(evictFace(i));
    CKelFontWidth* running = gKelFontWidth;
    if (!writeCache(base + "second/", faces)) return "!";
    init(base + "second/");
    return gKelFontWidth == running ? "same" : "new";
  }
  if (op == 'C') ClearKelFontCacheInfo();
  if (op == 'U') UnInitKelFont();
  if (op == 'I') init(base);
  return std::string("LdCUI").find(op) != std::string::npos ? "." : "unknown call";
}

// The cache of a script: the standard one, none, or its table damaged.
std::string prepare(const kelfont_test::TempDir& dir, const std::string& kind) {
  const std::string base = dir.path() + "/", table = base + "FInfo/Ftable";
  if (kind == "none") return base;
  EXPECT_TRUE(writeCache(base, standardFaces()));
  std::string bytes = kelfont_test::readFile(table);
  EXPECT_EQ(bytes.substr(0, 25), "001613Table Version 2.054");
  if (kind == "garbage") bytes = std::string("\xff\x00zz\n", 5) + "0016garbage";
  if (kind == "version") bytes[24] = '3';
  if (kind == "truncated") bytes = bytes.substr(0, bytes.find("KelTest NoMetrics"));
  EXPECT_TRUE(kelfont_test::writeFile(table, bytes));
  return base;
}

TEST(KelFontFacadeScripts, Lines) {
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(GetFontIndex(nullptr), -1);
  for (const kelfont_test::Case& c : kelfont_test::cases("facade_scripts.tsv")) {
    kelfont_test::TempDir dir;
    const std::string base = prepare(dir, c[0]);
    init(base);
    std::istringstream calls(c[1]);
    std::string answers;
    for (std::string token; calls >> token;)
      answers += (answers.empty() ? "" : " ") + call(token, base);
    EXPECT_EQ(answers, c[2]) << c.line;
    UnInitKelFont();
  }
  EXPECT_EQ(gKelFontWidth, nullptr);
}

TEST_F(KelFontFacade, AdvancesAndEmSquareAreThoseOfTheFontFilesPerStyle) {
  // Bold italic takes the bold face.
  const std::pair<const char*, std::pair<bool, bool>> styles[] = {{"basic.ttf", {false, false}},
                                                                  {"bold.ttf", {true, false}},
                                                                  {"italic.ttf", {false, true}},
                                                                  {"bold.ttf", {true, true}}};
  for (const auto& [file, style] : styles) {
    kelfont_test::ExpectedFace face = expectedFace(file);
    ASSERT_GT(face.chars.size(), 90u);
    for (const auto& [code, glyph] : face.chars) {
      EXPECT_EQ(charInfo(kBasic, int(code), style.first, style.second), Answer(0, glyph.advance))
          << file << " U+" << std::hex << code;
    }
    EXPECT_EQ(emSquare(kBasic, style.first, style.second), Answer(0, face.unitsPerEm));
  }
  EXPECT_NE(expectedFace("basic.ttf").chars.at('A').advance,
            expectedFace("bold.ttf").chars.at('A').advance);
}

TEST_F(KelFontFacade, BoldAdvancesOfTheListedFontsAreCorrected) {
  for (size_t i = 0; i < boldBands().size(); ++i) {
    int ch = static_cast<int>(0x21 + i);
    const BoldBand& band = boldBands()[i];
    EXPECT_EQ(charInfo(kGulim, ch, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch, true, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch, false, true), Answer(0, band.advance));
  }
}

TEST_F(KelFontFacade, KerningComesFromTheFaceOfTheStyleAndIsTimed) {
  for (bool bold : {false, true}) {
    kelfont_test::ExpectedFace face = expectedFace(bold ? "bold.ttf" : "basic.ttf");
    ASSERT_EQ(face.kerning.count({'A', 'V'}), 1u);
    for (const auto& [pair, delta] : face.kerning) {
      EXPECT_EQ(kerning(kBasic, int(pair.first), int(pair.second), bold), Answer(0, delta));
    }
  }
  EXPECT_EQ(kerning(kBasic, 'A', 'A'), Answer(0, 0));
  EXPECT_EQ(kerning(kGulim, 'A', 'V'), Answer(0, 0));  // a face without kerning

  startTime = endTime = static_cast<std::clock_t>(-1);
  kerning(kBasic, 'A', 'V');
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_LE(startTime, endTime);
  UnInitKelFont();
  startTime = endTime = static_cast<std::clock_t>(-1);
  EXPECT_EQ(kerning(kBasic, 'A', 'V').first, -1);  // started, never ended
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_EQ(endTime, static_cast<std::clock_t>(-1));
}

}  // namespace
