// The shipped lists of data/ with the free fonts of Debian: the package
// builds without a list warning, every default font and every script
// range finds a font, and characters fall back to fonts that have them.

#include <ft2build.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include FT_FREETYPE_H

#include <dirent.h>

#include <cstdlib>
#include <fstream>
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
  DIR* files = opendir(dir.c_str());
  while (const dirent* entry = files != nullptr ? readdir(files) : nullptr) {
    const std::string path = dir + "/" + entry->d_name;
    for (long face = 0, faces = 1; face < faces; ++face) {
      FT_Face ft;
      if (entry->d_name[0] == '.' || FT_New_Face(library, path.c_str(), face, &ft) != 0) break;
      faces = ft->num_faces;
      FT_UInt glyph = 0;
      for (FT_ULong c = FT_Get_First_Char(ft, &glyph); glyph != 0; c = FT_Get_Next_Char(ft, c, &glyph)) {
        mapped.insert(static_cast<unsigned>(c));
      }
      FT_Done_Face(ft);
    }
  }
  if (files != nullptr) closedir(files);
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
    const unsigned em = face->units_per_EM != 0 ? face->units_per_EM
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

struct Fallback {
  const char* font;
  unsigned code;
  const char* shownBy;
};

void expectRoads(const std::string& storage, const std::string& packageDir,
                 const std::vector<Fallback>& roads, const char* shownByForCircledOne) {
  qro_ni::DefaultFontInfoFileExtracter extracter(storage, packageDir);
  kelfont_tool::ToolFontManager manager(&extracter, storage, kDebianFonts);
  manager.Initialize();
  const char* defaults[] = {"Liberation Sans", "DejaVu Sans", "NanumGothic", "DejaVu Sans",
                            "DejaVu Sans"};
  for (int n = 0; n < 5; ++n) EXPECT_EQ(manager.GetFontName(manager.GetDefaultFontIndex(n)), defaults[n]);
  const std::vector<int>& scripts = manager.GetScriptDefaultFontList();
  ASSERT_EQ(scripts.size(), 128u);
  for (int range = 0; range < 128; ++range) EXPECT_GE(scripts[range], 0) << range;
  std::vector<Fallback> all = roads;
  // A font without a chain goes to the script default font of the range.
  all.push_back({"DejaVu Sans Light", 0x2460, shownByForCircledOne});
  for (const Fallback& road : all) {
    int font = manager.GetFontIndex(road.font);
    unsigned code = road.code;
    ASSERT_GE(font, 0) << road.font;
    manager.ConfirmVisibleChar(font, code, false, false);
    EXPECT_EQ(manager.GetFontName(font), road.shownBy) << road.font << " " << road.code;
    EXPECT_EQ(code, road.code);
  }
}

TEST(DefaultLists, FreeDebianFontsFallBackSensibly) {
  for (const std::string& directory : kDebianFonts) {
    struct stat st;
    if (stat(directory.c_str(), &st) != 0) {
      GTEST_SKIP() << "needs fonts-dejavu-core, fonts-liberation and fonts-nanum "
                      "(scripts/install-deps.sh)";
    }
  }
  TempDir dir;
  std::string err;
  std::vector<std::string> args{"pack", "--quiet", "--lists", KELFONT_DATA_DIR, "-o",
                                dir.file("qrfont.zip"), "--fonts"};
  args.insert(args.end(), kDebianFonts.begin(), kDebianFonts.end());
  ASSERT_EQ(kelfont_test::runTool(args, nullptr, &err), 0) << err;
  EXPECT_EQ(err, "");

  const std::vector<Fallback> roads = {
      {"Liberation Sans", 'A', "Liberation Sans"},
      {"Liberation Sans", 0xC138, "NanumGothic"},  // Hangul
      {"Liberation Sans", 0x6F22, "NanumGothic"},  // Han
      {"Liberation Sans", 0x3042, "NanumGothic"},  // Hiragana
      {"Liberation Sans", 0x2713, "DejaVu Sans"},  // Dingbats
      {"NanumGothic", 0x0150, "Liberation Sans"},  // Latin Extended-A
      {"DejaVu Sans Mono", 0xAC00, "NanumGothicCoding"},
      {"Arial", 'A', "Liberation Sans"},  // fonts that documents ask for
      {"Times New Roman", 'a', "Liberation Serif"},
      {"\xEB\xA7\x91\xEC\x9D\x80 \xEA\xB3\xA0\xEB\x94\x95", 0xAC00, "NanumGothic"},  // 맑은 고딕
  };
  expectRoads(dir.file("neutral/"), dir.path() + "/", roads, "DejaVu Sans");
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale previous = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  expectRoads(dir.file("korean/"), dir.path() + "/", roads, "NanumGothic");
  environment.SetUILocale(previous);
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
  TempDir dir;
  std::string err;
  ASSERT_EQ(kelfont_test::runTool({"pack", "--verbose", "--lists", lists, "-o",
                                   dir.file("qrfont.zip"), "--fonts", corpus},
                                  nullptr, &err),
            0)
      << err;
  std::set<std::string> requested;  // the first name of every chain block
  std::istringstream chains(kelfont_test::readFile(lists + "/fc"));
  bool blockStart = true;
  for (std::string line; std::getline(chains, line);) {
    if (line.empty()) {
      blockStart = true;
    } else if (line[0] != '#') {
      if (blockStart) requested.insert(line);
      blockStart = false;
    }
  }
  const std::string note = "kelfont pack: note: not among the packed fonts: fc: ";
  std::istringstream lines(err);
  for (std::string line; std::getline(lines, line);) {
    ASSERT_EQ(line.compare(0, note.size(), note), 0) << line;  // no warning, only fc
    EXPECT_EQ(requested.count(line.substr(note.size())), 1u) << line;
  }

  const std::string storage = dir.file("storage/");
  qro_ni::DefaultFontInfoFileExtracter extracter(storage, dir.path() + "/");
  kelfont_tool::ToolFontManager manager(&extracter, storage, {corpus});
  manager.Initialize();
  const char* defaults[] = {"Roboto", "Noto Sans", "Noto Sans CJK KR", "Noto Sans Arabic",
                            "Noto Sans CJK KR"};
  for (int n = 0; n < 5; ++n) EXPECT_EQ(manager.GetFontName(manager.GetDefaultFontIndex(n)), defaults[n]);
  const std::vector<int>& scripts = manager.GetScriptDefaultFontList();
  ASSERT_EQ(scripts.size(), 128u);
  for (int range = 0; range < 128; ++range) EXPECT_GE(scripts[range], 0) << range;
  const Fallback roads[] = {
      {"Arial", 'A', "Roboto"},
      {"Times New Roman", 'a', "Noto Serif"},
      {"Courier New", 'A', "Noto Sans Mono CJK KR"},
      {"\xEB\xA7\x91\xEC\x9D\x80 \xEA\xB3\xA0\xEB\x94\x95", 0xAC00, "Noto Sans CJK KR"},  // 맑은 고딕
      {"Roboto", 0xAC00, "Noto Sans CJK KR"},
      {"MS Mincho", 0x3042, "Noto Serif CJK JP"},
      {"PMingLiU", 0x6F22, "Noto Serif CJK TC"},
      {"Roboto", 0x05D0, "Noto Sans Hebrew"},  // a script default font
  };
  for (const Fallback& road : roads) {
    int font = manager.GetFontIndex(road.font);
    unsigned code = road.code;
    ASSERT_GE(font, 0) << road.font;
    manager.ConfirmVisibleChar(font, code, false, false);
    EXPECT_EQ(manager.GetFontName(font), road.shownBy) << road.font << " " << road.code;
  }

  // Asked of Roboto, a character of every block the corpus covers (with or
  // without a range bit) is shown by a face that maps it, with its advance.
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
    EXPECT_FLOAT_EQ(manager.GetCharAdvanceRatio(roboto, code, false, false), loadedRatio(*info, code))
        << block.second << " U+" << std::hex << code << " in " << manager.GetFontName(font);
  }
}

}  // namespace
