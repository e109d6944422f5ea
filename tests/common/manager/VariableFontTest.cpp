// Named instances of a variable font as faces of their own: their advances
// are those of the static fonts that fontTools' instancer makes, the
// table's usual rules give them their style slots, and restarts and
// rescans keep the cache as it is.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/Python.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

// Advances by style and code point of the static instances of `font`, as
// a TrueType composite takes them: from its last component flagged
// USE_MY_METRICS, when one is.
const char* kInstancer = R"(
import sys
from fontTools.ttLib import TTFont
from fontTools.varLib import instancer
path = sys.argv[1]
base = TTFont(path)
for inst in base['fvar'].instances:
    style = base['name'].getDebugName(inst.subfamilyNameID)
    if style not in sys.argv[2:]:
        continue
    font = TTFont(path)
    for tag in ('GSUB', 'GPOS', 'GDEF'):  # no part of the advances; slow to instance
        if tag in font:
            del font[tag]
    font = instancer.instantiateVariableFont(font, inst.coordinates)
    glyf = font['glyf']
    for code, glyph in font.getBestCmap().items():
        while glyf[glyph].isComposite():
            mine = [c.glyphName for c in glyf[glyph].components if c.flags & 0x200]
            if not mine:
                break
            glyph = mine[-1]
        print(style.replace(' ', '_'), code, font['hmtx'][glyph][0])
)";

std::map<std::string, std::map<unsigned, int>> instancerAdvances(
    const std::string& font, const std::vector<std::string>& styles) {
  std::vector<std::string> args{font};
  args.insert(args.end(), styles.begin(), styles.end());
  std::string output;
  EXPECT_TRUE(runPython(kInstancer, args, &output));
  std::map<std::string, std::map<unsigned, int>> advances;
  std::istringstream lines(output);
  std::string style;
  unsigned code;
  int advance;
  while (lines >> style >> code >> advance) {
    for (char& c : style) c = c == '_' ? ' ' : c;
    advances[style][code] = advance;
  }
  return advances;
}

// Every cache file by name; the table without its font folder times.
std::map<std::string, std::string> cacheFiles(const std::string& storage) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(storage + "FInfo")) {
    if (entry.is_regular_file()) files[entry.path().string()] = readFile(entry.path().string());
  }
  std::string& table = files[storage + "FInfo/Ftable"];
  const std::size_t times = 30 + std::stoul(table.substr(26, 4), nullptr, 16);
  table.erase(26, times - 26);
  return files;
}

// Scans a folder holding `font` only; checks the faces of `family` (one a
// style of `styles`), the advances of the `compared` styles against the
// instancer's, what regular and bold queries take, and that a second
// start and three rescans leave the cache as the first start wrote it.
void checkVariableFont(const std::string& font, const std::string& family,
                       const std::set<std::string>& styles,
                       const std::vector<std::string>& compared) {
  TempDir fonts, storageDir;
  const std::string storage = storageDir.path() + "/";
  ASSERT_EQ(symlink(font.c_str(), fonts.file("variable.ttf").c_str()), 0);
  auto advances = instancerAdvances(font, compared);
  ASSERT_EQ(advances.size(), compared.size());

  std::map<std::string, std::string> first;
  {
    ManagerRig rig = start(storage, {fonts.path()}, false);
    qro_common::FontTable& table = *rig->GetFontTable();
    qro_common::FontInfoSerializer serializer(storage);
    std::multiset<std::string> found;
    for (int i = 0; i < table.GetFontInfoCount(); ++i) {
      qro_common::FontInfo& info = *table.GetFontInfo(i);
      if (info.GetFontName() == nullptr || *info.GetFontName() != family) continue;
      ASSERT_NE(info.GetStyleName(), nullptr);
      found.insert(*info.GetStyleName());
      auto reference = advances.find(*info.GetStyleName());
      if (reference == advances.end()) continue;
      ASSERT_TRUE(serializer.ReadData(info));
      std::size_t checked = 0;
      for (const auto& [code, advance] : reference->second) {
        const qro_common::CharMetrics* metrics = info.GetCharMetricsInfo()->GetCharMetrics(code);
        if (metrics == nullptr) continue;
        EXPECT_EQ(metrics->GetAdvance(), advance) << *info.GetStyleName() << " U+" << code;
        ++checked;
      }
      EXPECT_GT(checked, reference->second.size() / 2) << *info.GetStyleName();
    }
    EXPECT_EQ(found, std::multiset<std::string>(styles.begin(), styles.end()));
    for (bool bold : {false, true}) {
      const qro_common::CharMetrics* metrics = rig->GetCharMetrics(family, 'A', bold, false);
      ASSERT_NE(metrics, nullptr);
      EXPECT_EQ(metrics->GetAdvance(), advances[bold ? "Bold" : "Regular"]['A']);
    }
    first = cacheFiles(storage);
  }
  EXPECT_EQ(first.count(storage + "FInfo/vi"), 1u);
  for (int round = 0; round < 4; ++round) {
    if (round > 0) {  // a new folder time: a rescan
      utimbuf times{1000000000 + round * 1000, 1000000000 + round * 1000};
      ASSERT_EQ(utime(fonts.path().c_str(), &times), 0);
    }
    start(storage, {fonts.path()}, false);
    EXPECT_EQ(cacheFiles(storage), first) << "round " << round;
  }
}

TEST(VariableFontTest, GeneratedFontsNamedInstancesAreFaces) {
  checkVariableFont(testFontPath("variable/keltest-var.ttf"), "KelTest Var",
                    {"Regular", "Semi Bold", "Bold"}, {"Regular", "Semi Bold", "Bold"});
}

TEST(VariableFontTest, AndroidInterNamedInstancesAreFaces) {
  const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
  if (folder == nullptr || *folder == '\0') {
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh DIR makes the set)";
  }
  checkVariableFont(std::string(folder) + "/Inter-roman.var.ttf", "Inter",
                    {"Thin", "Extra Light", "Light", "Regular", "Medium", "Semi Bold", "Bold",
                     "Extra Bold", "Black"},
                    {"Regular", "Bold", "Light"});
}

}  // namespace
}  // namespace kelfont_test
