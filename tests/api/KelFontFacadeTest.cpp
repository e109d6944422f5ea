// The facade through the public entry points only, on caches written with
// the serializer: the scripts of tests/data/facade_scripts.tsv.

#include <gtest/gtest.h>

#include <filesystem>
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

using facade_test::writeCache;
using facade_test::writeDataFile;
using kelfont_test::Case;
using kelfont_test::codeOf;

// "status/value", the value left out when the call did not set it.
constexpr int kUnset = -12345;
std::string said(int status, int value) {
  return std::to_string(status) + (value == kUnset ? "" : "/" + std::to_string(value));
}
std::string charInfo(int font, int ch, bool bold = false, bool italic = false) {
  int advance = kUnset;
  const int status = GetFontCharInfo(font, ch, bold, italic, advance);
  return said(status, advance);
}
// Starts the facade on `base`; it must say so on standard output.
void init(const std::string& base) {
  testing::internal::CaptureStdout();
  ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
}

// One call of tests/data/facade_scripts.tsv and its answer.
std::string call(const std::string& token, const std::string& base) {
  const std::vector<std::string> a = kelfont_test::callFields(token);
  const std::string& op = a[0];
  auto number = [&](size_t i) { return static_cast<int>(std::stol(a[i], nullptr, 0)); };
  const std::string& style = op == "c" ? a[3] : op == "e" || op == "x" || op == "K" ? a[2] : a[4];
  const bool bold = style.find('b') != std::string::npos,
             italic = style.find('i') != std::string::npos;
  int value = kUnset;
  if (op == "x" || op == "K") {  // every advance or kerning pair of a generated face
    const kelfont_test::ExpectedFace face = kelfont_test::expectedFace(a[1]);
    int checked = 0;
    for (const auto& [ch, glyph] : face.chars) {
      if (op == "x" && charInfo(0, int(ch), bold, italic) != "0/" + std::to_string(glyph.advance))
        return "U+" + std::to_string(ch);
      checked += op == "x";
    }
    for (const auto& [pair, delta] : face.kerning) {
      if (op == "K" && (GetKerningInfo(0, bold, false, int(pair.first), int(pair.second), value) ||
                        value != delta))
        return "U+" + std::to_string(pair.first);
      checked += op == "K";
    }
    return std::to_string(checked);
  }
  if (op == "B") {  // Gulim's bands in every style
    const std::vector<Case> bands = kelfont_test::cases("bold_bands.tsv");
    for (size_t i = 0; i < bands.size(); ++i) {
      const int ch = static_cast<int>(0x21 + i);
      const std::string bolder = "0/" + bands[i][1], plain = "0/" + bands[i][0];
      if (charInfo(1, ch, true) != bolder || charInfo(1, ch, true, true) != bolder ||
          charInfo(1, ch, false, true) != plain) {
        return "band" + std::to_string(i);
      }
    }
    return std::to_string(bands.size());
  }
  if (op == "T") {  // eight threads ask at once while the loaded data is cleared: the calls that
                    // answer otherwise than one thread did, and what is left to free once they are gone
    const int fonts = gKelFontWidth->_GetFontTable()->GetFontCount();
    const auto queries = kelfont_test::everyFont({a.begin() + 1, a.end()}, -1, fonts);
    std::vector<std::string> expected;
    for (const std::string& q : queries) expected.push_back(call(q, base));
    auto same = [&](std::size_t i) { return call(queries[i], base) == expected[i]; };
    const int wrong = kelfont_test::askedAtOnce(queries.size(), 3, same, ClearKelFontCacheInfo);
    qro_base::DeferredDeleter& retired = gKelFontWidth->_GetFontTable()->GetDeferredDeleter();
    retired.Collect();
    retired.Collect();
    return std::to_string(wrong) + "/" + std::to_string(retired.PendingCount());
  }
  if (op == "t") {  // the kerning clock since the last look: s started, e ended
    const std::clock_t none = static_cast<std::clock_t>(-1), start = std::exchange(startTime, none),
                       end = std::exchange(endTime, none);
    return std::string(start != none ? "s" : "") + (end != none ? "e" : "") +
           (start <= end || end == none ? "" : "!");
  }
  if (op == "a")
    return kelfont_test::number(gKelFontWidth->AdjustAdvanceRatio(number(1), std::stof(a[2])));
  if (op == "c") return charInfo(number(1), int(codeOf(a[2])), bold, italic);
  if (op == "e") {
    const int status = GetFontEmSquareFUnit(number(1), bold, italic, value);
    return said(status, value);
  }
  if (op == "k") {
    const int status =
        GetKerningInfo(number(1), bold, italic, int(codeOf(a[2])), int(codeOf(a[3])), value);
    return said(status, value);
  }
  if (op == "n") return std::to_string(GetFontIndex(a[1].c_str()));
  if (op == "?") return std::to_string(IsKelFontInitialized());
  if (op == "p") return kelfont_test::writeFile(base + "FInfo/Fdata/probe", "x") ? "." : "!";
  if (op == "w") return std::to_string(std::filesystem::exists("FInfo"));
  if (op == "d") return writeDataFile(base, number(1), a[2]) ? "." : "!";
  if (op == "L") {
    for (int i = 0; i <= 20; ++i) {
      if (charInfo(9 + i, 'A') != "0/" + std::to_string(100 + i)) return "!";
    }
  }
  if (op == "S") {  // a start-up on the running facade with a cache of eviction faces 0..4
    const std::vector<Case> faces = kelfont_test::cases("facade_faces.tsv");
    CKelFontWidth* running = gKelFontWidth;
    const std::string second = std::filesystem::current_path().string() + "/second/";
    if (!writeCache(second, {faces.begin() + 13, faces.begin() + 18})) return "!";
    init(second);
    return gKelFontWidth == running ? "same" : "new";
  }
  if (op == "C") ClearKelFontCacheInfo();
  if (op == "U") UnInitKelFont();
  if (op == "I") init(base);
  return std::string("LCUI").find(op) != std::string::npos ? "." : "unknown call";
}

// The cache of a script: the standard one, with more faces than stay loaded, none (in a folder, at
// no path, through a file), or its table damaged.
std::string prepare(const kelfont_test::TempDir& dir, const std::string& kind) {
  const std::string base = dir.path() + "/", table = base + "FInfo/Ftable";
  if (kind == "none") return base;
  if (kind == "nopath") return "";
  if (kind == "infile") {
    EXPECT_TRUE(kelfont_test::writeFile(base + "plain", "a file"));
    return base + "plain/cache/";
  }
  std::vector<Case> faces = kelfont_test::cases("facade_faces.tsv");
  if (kind == "crowd") {
    for (const Case& face : kelfont_test::cases("facade_crowd.tsv")) faces.push_back(face);
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

// The lines of tests/data/facade_scripts.tsv, each in a temporary working folder; those on the
// crowd cache or all others.
void runLines(bool crowd) {
  const std::filesystem::path working = std::filesystem::current_path();
  for (const kelfont_test::Case& c : kelfont_test::cases("facade_scripts.tsv")) {
    if ((c[0] == "crowd") != crowd) continue;
    kelfont_test::TempDir dir;
    std::filesystem::current_path(dir.path());
    const std::string base = prepare(dir, c[0]);
    init(base);
    EXPECT_EQ(kelfont_test::answers(c[1], [&](const std::string& t) { return call(t, base); }),
              c[2])
        << c.line;
    UnInitKelFont();
    std::filesystem::current_path(working);
  }
}

TEST(KelFontFacadeScripts, Lines) {
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(GetFontIndex(nullptr), -1);
  runLines(false);
  EXPECT_EQ(gKelFontWidth, nullptr);
}

// Run under ThreadSanitizer and AddressSanitizer in CI.
TEST(KelFontFacadeConcurrency, Lines) { runLines(true); }

}  // namespace
