#include "tests/support/TestFonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace kelfont_test {

namespace {

// Parses one record into `face`; false when the line is malformed. Records
// no test reads are skipped, so that the generator can grow.
bool parseRecord(const std::string& key, std::istringstream& in, ExpectedFace* face) {
  std::string text;
  std::uint32_t a = 0, b = 0;
  int value = 0;
  if (key == "head") in >> face->hasHead;
  if (key == "unitsPerEm") in >> face->unitsPerEm;
  if (key == "hhea") in >> face->ascender >> face->descender >> face->lineGap;
  if (key == "os2") face->hasOs2 = (in >> text) && text != "none";
  if (key == "panose") std::copy_n(std::istream_iterator<int>(in), 10, face->panose.begin());
  if (key == "unicodeRange") {
    std::copy_n(std::istream_iterator<std::uint32_t>(in), 4, face->unicodeRange.begin());
  }
  if (key == "codePageRange") {
    std::copy_n(std::istream_iterator<std::uint32_t>(in), 2, face->codePageRange.begin());
  }
  if (key == "char" && in >> a >> b >> value) face->chars[a] = {static_cast<int>(b), value};
  if (key == "glyph" && in >> a >> value) face->glyphAdvances.push_back(value);
  if (key == "kern" && in >> a >> b >> value) face->kerning[{a, b}] = value;
  if (key == "contour" && in >> a >> b) {
    std::vector<ExpectedPoint> contour(b);
    for (ExpectedPoint& p : contour) in >> p.x >> p.y >> value;
    face->outlines[static_cast<int>(a)].push_back(contour);
  }
  return !in.fail();
}

// Every face of a generated font, in file order; none, with a reason in
// *error, when the file cannot be opened or a line cannot be read.
std::vector<ExpectedFace> loadFaces(const std::string& fontFile, std::string* error) {
  const std::string path =
      testFontPath("expected_" + fontFile.substr(0, fontFile.rfind('.')) + ".txt");
  std::ifstream in(path);
  if (!in) *error = "cannot open " + path;
  std::vector<ExpectedFace> faces;
  std::string line;
  for (int lineNumber = 1; std::getline(in, line); ++lineNumber) {
    std::istringstream fields(line);
    std::string key;
    if (!(fields >> key)) continue;
    if (key == "face") {
      faces.emplace_back();
    } else if (faces.empty() || !parseRecord(key, fields, &faces.back())) {
      *error = path + ":" + std::to_string(lineNumber) + ": cannot read '" + line + "'";
      return {};
    }
  }
  return faces;
}

}  // namespace

std::string testFontDir() { return KELFONT_TEST_FONT_DIR; }

std::string testFontPath(const std::string& name) { return testFontDir() + "/" + name; }

std::vector<std::string> testFontFiles() {
  std::vector<std::string> files;
  std::ifstream in(testFontPath("fonts.txt"));
  for (std::string line; std::getline(in, line);) files.push_back(line);
  return files;
}

bool loadExpectedFace(const std::string& fontFile, int faceIndex, ExpectedFace* out,
                      std::string* error) {
  std::string reason;
  const std::vector<ExpectedFace> faces = loadFaces(fontFile, &reason);
  if (reason.empty() && (faceIndex < 0 || faceIndex >= static_cast<int>(faces.size())))
    reason = "no face " + std::to_string(faceIndex) + " of " + fontFile;
  if (reason.empty()) *out = faces[faceIndex];
  if (error) *error = reason;
  return reason.empty();
}

ExpectedFace expectedFace(const std::string& fontFile, int faceIndex) {
  ExpectedFace face;
  std::string error;
  EXPECT_TRUE(loadExpectedFace(fontFile, faceIndex, &face, &error)) << error;
  return face;
}

int expectedFaceCount(const std::string& fontFile) {
  std::string error;
  return static_cast<int>(loadFaces(fontFile, &error).size());
}

}  // namespace kelfont_test
