// The facade through the public entry points only, on caches written with
// the serializer: the scripts of tests/data/facade_scripts.tsv, and eight
// threads asking at once.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "common/registry/FontTable.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/Cases.h"
#include "tests/support/Concurrently.h"
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
Answer kerning(int font, int first, int second, bool bold = false, bool italic = false) {
  int delta = -12345;
  int status = GetKerningInfo(font, bold, italic, first, second, delta);
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
  const std::string& style = a[0] == "c"                                 ? a[3]
                             : a[0] == "e" || a[0] == "x" || a[0] == "K" ? a[2]
                                                                         : a[4];
  const bool bold = style.find('b') != std::string::npos,
             italic = style.find('i') != std::string::npos;
  const char op = token[0];
  if (op == 'x' || op == 'K') {  // every advance or kerning pair of a generated face
    const kelfont_test::ExpectedFace face = expectedFace(a[1]);
    int checked = 0;
    for (const auto& [ch, glyph] : face.chars) {
      if (op == 'x' && charInfo(kBasic, int(ch), bold, italic) != Answer(0, glyph.advance))
        return "U+" + std::to_string(ch);
      checked += op == 'x';
    }
    for (const auto& [pair, delta] : face.kerning) {
      if (op == 'K' && kerning(kBasic, int(pair.first), int(pair.second), bold) != Answer(0, delta))
        return "U+" + std::to_string(pair.first);
      checked += op == 'K';
    }
    return std::to_string(checked);
  }
  if (op == 'B') {  // Gulim's bands in every style
    for (size_t i = 0; i < boldBands().size(); ++i) {
      const int ch = static_cast<int>(0x21 + i), bolder = boldBands()[i].bold,
                plain = boldBands()[i].advance;
      if (charInfo(kGulim, ch, true) != Answer(0, bolder) ||
          charInfo(kGulim, ch, true, true) != Answer(0, bolder) ||
          charInfo(kGulim, ch, false, true) != Answer(0, plain)) {
        return "band" + std::to_string(i);
      }
    }
    return std::to_string(boldBands().size());
  }
  if (op == 't') {  // the kerning clock since the last look: s started, e ended
    const std::clock_t none = static_cast<std::clock_t>(-1), start = std::exchange(startTime, none),
                       end = std::exchange(endTime, none);
    return std::string(start != none ? "s" : "") + (end != none ? "e" : "") +
           (start <= end || end == none ? "" : "!");
  }
  if (op == 'a') {
    char text[32];
    std::snprintf(text, sizeof text, "%g",
                  gKelFontWidth->AdjustAdvanceRatio(number(1), std::stof(a[2])));
    return text;
  }
  if (op == 'c') return said(charInfo(number(1), code(2), bold, italic));
  if (op == 'e') return said(emSquare(number(1), bold, italic));
  if (op == 'k') return said(kerning(number(1), code(2), code(3), bold, italic));
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
  std::vector<Face> faces = standardFaces();
  for (int i = 0; kind == "crowd" && i < 40; ++i) {  // more faces than stay loaded
    faces.push_back(evictFace(i));
    faces.back().fontName = "KelTest Crowd " + std::to_string(i);
    faces.back().kerning = {{'A', 'V', static_cast<short>(-1 - i)}};
  }
  EXPECT_TRUE(writeCache(base, faces));
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

// Eight threads ask everything at once, over more faces than stay loaded,
// while another keeps clearing the loaded data (run under ThreadSanitizer and
// AddressSanitizer in CI): every answer is the one a single thread got.
TEST(KelFontFacadeConcurrency, EightThreadsAnswerAsOneWhileFacesAreDroppedAndReloaded) {
  kelfont_test::TempDir dir;
  const std::string base = prepare(dir, "crowd");
  init(base);
  const int fontCount = gKelFontWidth->_GetFontTable()->GetFontCount();
  ASSERT_GT(fontCount, int(CKelFontWidth::kMaxLoadedBeforeEviction) + 20);
  std::vector<std::string> queries;
  for (int font = -1; font <= fontCount; ++font) {
    for (const char* style : {"", "i", "b", "bi"}) {
      const std::string f = std::to_string(font) + ",";
      for (const char* ch : {"A", "B", "C", "Z", "33", "37", "48", "U+AC00", "U+1F600"}) {
        queries.push_back("c," + f + ch + "," + style);
      }
      queries.push_back("k," + f + "A,V," + style);
      queries.push_back("e," + f + style);
    }
  }
  std::vector<std::string> expected;
  for (const std::string& q : queries) expected.push_back(call(q, base));
  // The answers depend on the data files: the last crowd font's kerning and advance.
  EXPECT_EQ(call("k," + std::to_string(fontCount - 1) + ",A,V", base), "0/-40");
  EXPECT_EQ(call("c," + std::to_string(fontCount - 1) + ",B", base), "0/239");
  auto same = [&](std::size_t i) { return call(queries[i], base) == expected[i]; };
  EXPECT_EQ(kelfont_test::askedAtOnce(queries.size(), 3, same, [] { ClearKelFontCacheInfo(); }), 0);
  qro_base::DeferredDeleter& retired = gKelFontWidth->_GetFontTable()->GetDeferredDeleter();
  retired.Collect();
  retired.Collect();
  EXPECT_EQ(retired.PendingCount(), 0u);
  UnInitKelFont();
}

}  // namespace
