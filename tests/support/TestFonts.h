#pragma once
// The fonts that tests/fonts/gen_test_fonts.py writes into the build
// directory, and the values that the generator read back from them with an
// independent reader (expected_<stem>.txt, described at the top of the
// generator).

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kelfont_test {

// The directory of the generated fonts, without a trailing slash.
std::string testFontDir();
// Absolute path of a generated file, for example testFontPath("basic.ttf").
std::string testFontPath(const std::string& name);
// Every generated font file name, in the generator's order.
std::vector<std::string> testFontFiles();

struct ExpectedChar {
  int glyph = 0;
  int advance = 0;
};

struct ExpectedPoint {
  int x = 0;
  int y = 0;
};

// One face of a generated font as the generator found it in the file.
struct ExpectedFace {
  bool hasHead = false;
  int unitsPerEm = 0;                            // 0 without a head table
  int ascender = 0, descender = 0, lineGap = 0;  // hhea
  bool hasOs2 = false;
  std::array<int, 10> panose{};
  std::array<std::uint32_t, 4> unicodeRange{};
  std::array<std::uint32_t, 2> codePageRange{};
  std::map<std::uint32_t, ExpectedChar> chars;                      // code point -> glyph, advance
  std::vector<int> glyphAdvances;                                   // by glyph index
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> kerning;   // code points -> value
  std::map<int, std::vector<std::vector<ExpectedPoint>>> outlines;  // glyph -> contours
};

// Reads the expected values of one face of a generated font file. Returns
// false, with a reason in *error when given, if the file or face is missing
// or a line cannot be read.
bool loadExpectedFace(const std::string& fontFile, int faceIndex, ExpectedFace* out,
                      std::string* error = nullptr);
// The same, failing the running test when the values cannot be read.
ExpectedFace expectedFace(const std::string& fontFile, int faceIndex = 0);

// Number of faces listed for a generated font file (0 when unknown).
int expectedFaceCount(const std::string& fontFile);

}  // namespace kelfont_test
