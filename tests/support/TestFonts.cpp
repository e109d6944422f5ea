#include "tests/support/TestFonts.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace kelfont_test {

namespace {

std::string expectedFileFor(const std::string& fontFile) {
  std::string stem = fontFile;
  std::string::size_type dot = stem.rfind('.');
  if (dot != std::string::npos) stem.erase(dot);
  return testFontPath("expected_" + stem + ".txt");
}

bool hexToBytes(const std::string& hex, std::string* out) {
  if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdef") != std::string::npos) {
    return false;
  }
  out->clear();
  for (std::string::size_type i = 0; i < hex.size(); i += 2) {
    out->push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return true;
}

// Parses one record into `face`; false when the line is malformed.
// Records no test reads are skipped, so that the generator can grow.
bool parseRecord(const std::string& key, std::istringstream& in, ExpectedFace* face) {
  int flag = 0;
  if (key == "numGlyphs") {
    in >> face->numGlyphs;
  } else if (key == "head") {
    in >> flag;
    face->hasHead = flag != 0;
  } else if (key == "unitsPerEm") {
    in >> face->unitsPerEm;
  } else if (key == "hhea") {
    in >> face->ascender >> face->descender >> face->lineGap;
  } else if (key == "os2") {
    std::string version;
    in >> version;
    face->hasOs2 = version != "none";
  } else if (key == "panose") {
    for (int& b : face->panose) in >> b;
  } else if (key == "unicodeRange") {
    for (std::uint32_t& r : face->unicodeRange) in >> r;
  } else if (key == "codePageRange") {
    for (std::uint32_t& r : face->codePageRange) in >> r;
  } else if (key == "name") {
    ExpectedName name;
    std::string hex;
    in >> name.platform >> name.encoding >> name.language >> name.nameId >> hex;
    if (!hexToBytes(hex, &name.bytes)) return false;
    face->names.push_back(name);
  } else if (key == "char") {
    std::uint32_t codePoint = 0;
    ExpectedChar c;
    in >> codePoint >> c.glyph >> c.advance;
    face->chars[codePoint] = c;
  } else if (key == "glyph") {
    std::size_t index = 0;
    int advance = 0;
    in >> index >> advance;
    if (index != face->glyphAdvances.size()) return false;
    face->glyphAdvances.push_back(advance);
  } else if (key == "kern") {
    std::uint32_t left = 0, right = 0;
    int value = 0;
    in >> left >> right >> value;
    face->kerning[{left, right}] = value;
  } else if (key == "contour") {
    int glyph = 0, count = 0;
    in >> glyph >> count;
    std::vector<ExpectedPoint> contour(count > 0 ? count : 0);
    for (ExpectedPoint& p : contour) in >> p.x >> p.y >> flag;
    face->outlines[glyph].push_back(contour);
  }
  return !in.fail();
}

}  // namespace

std::string testFontDir() { return KELFONT_TEST_FONT_DIR; }

std::string testFontPath(const std::string& name) { return testFontDir() + "/" + name; }

std::vector<std::string> testFontFiles() {
  std::vector<std::string> files;
  std::ifstream in(testFontPath("fonts.txt"));
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty()) files.push_back(line);
  }
  return files;
}

std::vector<ExpectedName> ExpectedFace::familyNames() const {
  std::vector<ExpectedName> result;
  for (const ExpectedName& name : names) {
    if (name.nameId == 1) result.push_back(name);
  }
  return result;
}

bool loadExpectedFace(const std::string& fontFile, int faceIndex, ExpectedFace* out,
                      std::string* error) {
  std::string path = expectedFileFor(fontFile);
  std::ifstream in(path);
  if (!in) {
    if (error) *error = "cannot open " + path;
    return false;
  }
  ExpectedFace face;
  bool inFace = false;
  bool found = false;
  std::string line;
  int lineNumber = 0;
  while (std::getline(in, line)) {
    ++lineNumber;
    std::istringstream fields(line);
    std::string key;
    if (!(fields >> key)) continue;
    if (key == "face") {
      int index = -1;
      fields >> index;
      inFace = index == faceIndex;
      found = found || inFace;
      continue;
    }
    if (!inFace) continue;
    if (!parseRecord(key, fields, &face)) {
      if (error) *error = path + ":" + std::to_string(lineNumber) + ": cannot read '" + line + "'";
      return false;
    }
  }
  if (!found) {
    if (error) *error = "no face " + std::to_string(faceIndex) + " in " + path;
    return false;
  }
  *out = face;
  return true;
}

ExpectedFace expectedFace(const std::string& fontFile, int faceIndex) {
  ExpectedFace face;
  std::string error;
  EXPECT_TRUE(loadExpectedFace(fontFile, faceIndex, &face, &error)) << error;
  return face;
}

int expectedFaceCount(const std::string& fontFile) {
  std::ifstream in(expectedFileFor(fontFile));
  int count = 0;
  std::string line;
  while (std::getline(in, line)) {
    if (line.compare(0, 5, "face ") == 0) ++count;
  }
  return count;
}

}  // namespace kelfont_test
