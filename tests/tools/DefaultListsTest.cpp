// The shipped lists: data/ with the free fonts of Debian, data/android/
// with Android's own fonts. Every default group and script range finds a
// font, and the roads of tests/data/default_lists.tsv end at the fonts
// named there.

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontMetrics.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/ToolFontManager.h"

namespace {

using kelfont_test::TempDir;

const std::vector<std::string> kDebianFonts = {"/usr/share/fonts/truetype/dejavu",
                                               "/usr/share/fonts/truetype/liberation",
                                               "/usr/share/fonts/truetype/nanum"};

// Per Unicode block (the Unicode data's Blocks.txt), the first code point
// that some face in `dir` maps, private use left out.
std::map<unsigned, std::string> firstMappedPerBlock(const std::string& dir) {
  std::set<unsigned> mapped;
  FT_Library library;
  if (FT_Init_FreeType(&library) != 0) return {};
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    for (long face = 0, faces = 1; face < faces; ++face) {
      FT_Face ft;
      if (FT_New_Face(library, entry.path().c_str(), face, &ft) != 0) break;
      faces = ft->num_faces;
      FT_UInt glyph = 0;
      for (FT_ULong c = FT_Get_First_Char(ft, &glyph); glyph != 0;
           c = FT_Get_Next_Char(ft, c, &glyph)) {
        mapped.insert(static_cast<unsigned>(c));
      }
      FT_Done_Face(ft);
    }
  }
  FT_Done_FreeType(library);
  std::map<unsigned, std::string> firsts;
  std::ifstream blocks("/usr/share/unicode/Blocks.txt");
  for (std::string line; std::getline(blocks, line);) {
    unsigned first = 0, last = 0;
    char name[128] = {};
    if (std::sscanf(line.c_str(), "%x..%x; %127[^\n]", &first, &last, name) != 3) continue;
    if (std::string(name).find("Private Use") != std::string::npos) continue;
    auto it = mapped.lower_bound(first);
    if (it != mapped.end() && *it <= last) firsts[*it] = name;
  }
  return firsts;
}

// The advance of `code` in the face of `info`, as FreeType loads it, over
// its units per em.
float loadedRatio(const qro_common::FontInfo& info, unsigned code) {
  FT_Library library;
  FT_Face face;
  float ratio = -1.0f;
  if (FT_Init_FreeType(&library) != 0) return ratio;
  if (info.GetFilePath() != nullptr &&
      FT_New_Face(library, info.GetFilePath()->c_str(), info.GetFaceIndex(), &face) == 0) {
    // A bitmap-only face (Noto Color Emoji) has no em square in FreeType:
    // the cache's, from its `head` table, stands in.
    const unsigned em = face->units_per_EM != 0            ? face->units_per_EM
                        : info.GetFontMetrics() != nullptr ? info.GetFontMetrics()->GetUnitsPerEm()
                                                           : 0;
    if (em != 0 && FT_Load_Char(face, code, FT_LOAD_NO_SCALE) == 0) {
      ratio = static_cast<float>(face->glyph->metrics.horiAdvance) / static_cast<float>(em);
    }
    FT_Done_Face(face);
  }
  FT_Done_FreeType(library);
  return ratio;
}

// Packs `lists` with the fonts of `folders` (standard error into *err) and
// follows the lines of `set` with a manager on the package under each
// locale the lines name; `more` checks the manager of the neutral locale.
void expectLines(const std::string& set, const std::vector<std::string>& folders,
                 const std::string& lists, const char* verbosity, std::string* err,
                 const std::function<void(kelfont_tool::ToolFontManager&)>& more = nullptr) {
  TempDir dir;
  std::vector<std::string> args{"pack",   verbosity, "--lists", lists, "-o", dir.file("qrfont.zip"),
                                "--fonts"};
  args.insert(args.end(), folders.begin(), folders.end());
  ASSERT_EQ(kelfont_test::runTool(args, nullptr, err), 0) << *err;
  std::set<std::string> locales{"neutral"};
  for (const kelfont_test::Case& c : kelfont_test::cases("default_lists.tsv")) {
    if (c[0] == set && c[1] != "*") locales.insert(c[1]);
  }
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale previous = environment.GetUILocale();
  for (const std::string& locale : locales) {
    environment.SetUILocale(
        locale == "neutral" ? previous : qro_base::Locale(locale.substr(0, 2), locale.substr(3)));
    const std::string storage = dir.file(locale + "/");
    qro_ni::DefaultFontInfoFileExtracter extracter(storage, dir.path() + "/");
    kelfont_tool::ToolFontManager manager(&extracter, storage, folders);
    manager.Initialize();
    const std::vector<int>& scripts = manager.GetScriptDefaultFontList();
    ASSERT_EQ(scripts.size(), 128u);
    for (int range = 0; range < 128; ++range) EXPECT_GE(scripts[range], 0) << range;
    for (const kelfont_test::Case& c : kelfont_test::cases("default_lists.tsv")) {
      if (c[0] != set || (c[1] != "*" && c[1] != locale)) continue;
      std::string shown;
      for (int n = 0; c[2] == "defaults" && n < 5; ++n) {
        shown += (n ? "|" : "") + manager.GetFontName(manager.GetDefaultFontIndex(n));
      }
      int font = manager.GetFontIndex(c[2]);
      unsigned code = static_cast<unsigned>(c.num(3));
      if (c[2] != "defaults") {
        ASSERT_GE(font, 0) << c.line;
        manager.ConfirmVisibleChar(font, code, false, false);
        EXPECT_EQ(code, c.num(3)) << c.line;
        shown = manager.GetFontName(font);
      }
      EXPECT_EQ(shown, c[4]) << locale << ": " << c.line;
    }
    if (more && locale == "neutral") more(manager);
  }
  environment.SetUILocale(previous);
}

TEST(DefaultLists, FreeDebianFontsFallBackSensibly) {
  for (const std::string& directory : kDebianFonts) {
    if (!std::filesystem::exists(directory))
      GTEST_SKIP() << "needs fonts-dejavu-core, fonts-liberation and fonts-nanum "
                      "(scripts/install-deps.sh)";
  }
  std::string err;
  expectLines("debian", kDebianFonts, KELFONT_DATA_DIR, "--quiet", &err);
  EXPECT_EQ(err, "");
}

// The lists of data/android/ with Android's own fonts: every name a list
// uses (all but the fonts documents ask for, the first of a chain) is a
// packed family, every default group and script range finds a font, and
// the fonts documents ask for reach the Android family of their kind.
TEST(DefaultLists, AndroidListsNameAndroidFonts) {
  const char* corpus = std::getenv("KELFONT_ANDROID_FONTS");
  if (corpus == nullptr || *corpus == '\0') {
    GTEST_SKIP() << "needs the Android font corpus: KELFONT_ANDROID_FONTS=DIR after "
                    "scripts/android-fonts.sh DIR";
  }
  const std::string lists = std::string(KELFONT_DATA_DIR) + "/android";
  std::string err;
  // Asked of Roboto, a character of every block the corpus covers (with or
  // without a range bit) is shown by a face that maps it, with its advance.
  expectLines(
      "android", {corpus}, lists, "--verbose", &err, [&](kelfont_tool::ToolFontManager& manager) {
        const std::map<unsigned, std::string> blocks = firstMappedPerBlock(corpus);
        EXPECT_GT(blocks.size(), 250u);
        const int roboto = manager.GetFontIndex("Roboto");
        for (const auto& block : blocks) {
          int font = roboto;
          unsigned code = block.first;
          manager.ConfirmVisibleChar(font, code, false, false);
          ASSERT_EQ(code, block.first) << block.second;
          const qro_common::FontInfo* info = manager.GetFontInfo(font, false, false);
          ASSERT_NE(info, nullptr) << block.second;
          EXPECT_FLOAT_EQ(manager.GetCharAdvanceRatio(roboto, code, false, false),
                          loadedRatio(*info, code))
              << block.second << " U+" << std::hex << code << " in " << manager.GetFontName(font);
        }
      });
  // Blocks start after an empty line (the head's comment ends with one).
  const std::string chains = "\n\n" + kelfont_test::readFile(lists + "/fc");
  const std::string note = "kelfont pack: note: not among the packed fonts: fc: ";
  std::istringstream lines(err);
  for (std::string line; std::getline(lines, line);) {
    ASSERT_EQ(line.compare(0, note.size(), note), 0) << line;  // no warning, only fc
    EXPECT_NE(chains.find("\n\n" + line.substr(note.size()) + "\n"), std::string::npos) << line;
  }
}

}  // namespace
