// The font manager on real fonts and a default package, as a host runs it.

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H

#include <filesystem>
#include <regex>
#include <set>

#include "base/Environment.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Python.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

const std::string kNanum = "/usr/share/fonts/truetype/nanum/NanumGothic.ttf";
const std::string kDejaVu = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

// Advance of `code` (less `correction`) / units per em, read with FreeType.
float freetypeRatio(const std::string& path, unsigned code, int correction = 0) {
  FT_Library library;
  FT_Face face;
  FT_Init_FreeType(&library);
  EXPECT_EQ(FT_New_Face(library, path.c_str(), 0, &face), 0);
  EXPECT_EQ(FT_Load_Char(face, code, FT_LOAD_NO_SCALE), 0);
  float ratio = float(face->glyph->metrics.horiAdvance - correction) / float(face->units_per_EM);
  FT_Done_FreeType(library);
  return ratio;
}

class FontManagerScenarioTest : public ::testing::Test {
 protected:
  const Scenario& scenario = Scenario::get();
  std::vector<std::string> dirs() const { return {scenario.dirA, scenario.dirB}; }
};

TEST_F(FontManagerScenarioTest, FirstStartScansSecondTrustsTheCacheTouchRescans) {
  TempDir storage;
  std::string base = storage.path() + "/";
  std::string cache = base + "FInfo/";
  LogCapture log;
  namespace fs = std::filesystem;

  unsigned long opens = qro_common::FontFileAnalyzer::GetOpenCount();
  ManagerRig first = start(base, dirs());
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, unsigned(kScenarioFaceCount));
  ASSERT_FALSE(log.messages().empty());
  EXPECT_TRUE(std::regex_match(
      log.messages().back(),
      std::regex(R"(Elapsed Time of fontManager initialize\(\) == \d+\.\d{3} sec)")));
  // The package's records, the scanned faces, and "굴림" of the chains.
  const qro_common::FontTable& table = *first->GetFontTable();
  EXPECT_EQ(table.GetFontInfoCount(), kPackageFontCount + kScenarioFaceCount + 1);
  int nanum = first->GetFontIndex("NanumGothic");
  const qro_common::FontInfo* nanumFace = first->GetFontInfo(nanum, false, false);
  ASSERT_NE(nanumFace, nullptr);
  EXPECT_EQ(*nanumFace->GetFilePath(), scenario.dirB + "/NanumGothic.ttf");
  EXPECT_EQ(first->GetFontIndex("나눔고딕"), nanum);  // localized names too
  std::string nanumData = cache + "Fdata/" + std::to_string(nanumFace->GetInfoIndex());
  EXPECT_TRUE(fs::is_regular_file(nanumData));
  EXPECT_FALSE(fs::exists(cache + "df"));               // read, then removed
  EXPECT_EQ(nanumFace->GetCharMetricsInfo(), nullptr);  // written, not kept
  float hangul = first->GetCharAdvanceRatio(nanum, 0xAC00, false, false);

  // A data file cut short (a power loss before the table's sync) is made
  // again from the font when first used.
  const std::string whole = readFile(nanumData);
  ASSERT_TRUE(writeFile(nanumData, whole.substr(0, whole.size() / 2)));
  opens = qro_common::FontFileAnalyzer::GetOpenCount();
  ManagerRig second = start(base, dirs());
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount(), opens);
  EXPECT_EQ(second->GetFontIndex("NanumGothic"), nanum);
  EXPECT_EQ(second->GetDefaultFontIndex(2), nanum);
  EXPECT_FLOAT_EQ(second->GetCharAdvanceRatio(nanum, 0xAC00, false, false), hangul);
  EXPECT_EQ(readFile(nanumData), whole);

  // A touched directory is scanned again; an unchanged file keeps its data.
  auto dataTime = fs::last_write_time(nanumData) - std::chrono::hours(1);
  fs::last_write_time(nanumData, dataTime);
  fs::last_write_time(scenario.dirB, fs::last_write_time(scenario.dirB) - std::chrono::hours(1));
  opens = qro_common::FontFileAnalyzer::GetOpenCount();
  ManagerRig third = start(base, dirs());
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, unsigned(kScenarioFaceCount));
  EXPECT_EQ(fs::last_write_time(nanumData), dataTime);
  EXPECT_EQ(third->GetFontTable()->GetFontInfoCount(), table.GetFontInfoCount());

  // A cache of another version is thrown away and rebuilt from the package.
  const std::string header = "001613Table Version 2.054\n";
  std::string text = readFile(cache + "Ftable");
  ASSERT_EQ(text.compare(0, 26, header), 0);
  ASSERT_TRUE(writeFile(cache + "Ftable", text.replace(20, 5, "1.000")));
  ASSERT_TRUE(writeFile(cache + "Fdata/999", "stale"));
  opens = qro_common::FontFileAnalyzer::GetOpenCount();
  ManagerRig fourth = start(base, dirs());
  EXPECT_EQ(qro_common::FontFileAnalyzer::GetOpenCount() - opens, unsigned(kScenarioFaceCount));
  EXPECT_FALSE(fs::exists(cache + "Fdata/999"));
  EXPECT_EQ(readFile(cache + "Ftable").compare(0, 26, header), 0);
  EXPECT_EQ(fourth->GetFontTable()->GetFontInfoCount(), table.GetFontInfoCount());
}

TEST_F(FontManagerScenarioTest, AdvancesFallBackThroughChainsAndDefaults) {
  TempDir storage;
  ManagerRig rig = start(storage.path() + "/", dirs());
  const kelfont_test::ExpectedFace wingdings = kelfont_test::expectedFace("wingdings.ttf");
  float wingdingsA = wingdings.chars.at(0xF041).advance / 2048.0f;
  struct Row {
    const char* font;
    unsigned ch;
    bool bold;
    float expected;
  } rows[] = {
      {"DejaVu Sans", 'A', false, freetypeRatio(kDejaVu, 'A')},
      {"Liberation Serif", 0xAC00, false, freetypeRatio(kNanum, 0xAC00)},  // chain
      {"DejaVu Sans", 0xAC00, false, freetypeRatio(kNanum, 0xAC00)},       // script default
      {"Wingdings", 'A', false, wingdingsA},                               // U+F041
      {"", 'A', false, freetypeRatio(kDejaVu, 'A')},                       // first default
      {"", 0x0E01, false, freetypeRatio(kDejaVu, ' ')},  // Thai: the last default's space
      // 굴림 has no file; NanumGothic draws it, with 굴림's bold bands:
      // 940 is in (900, 950] and loses 17.
      {"굴림", 0xAC00, true, freetypeRatio(kNanum, 0xAC00, 17)},
      {"NanumGothic", 0xAC00, true, freetypeRatio(kNanum, 0xAC00)},
  };
  ASSERT_FLOAT_EQ(freetypeRatio(kNanum, 0xAC00), 0.940f);
  for (const Row& row : rows) {
    int font = rig->GetFontIndex(row.font);
    EXPECT_FLOAT_EQ(rig->GetCharAdvanceRatio(font, row.ch, row.bold, false), row.expected)
        << row.font << " " << row.ch;
  }
}

// basic.ttf renamed (family, style), with the Korean code page when `cjk`.
void writeRenamedFont(const std::string& path, const std::string& family,
                      const std::string& style, bool cjk) {
  const char* program = R"(
import sys
from fontTools.ttLib import TTFont
src, dst, family, style, cjk = sys.argv[1:]
font = TTFont(src)
for record in font['name'].names:
    if record.nameID in (1, 16): record.string = family
    if record.nameID in (2, 17): record.string = style
    if record.nameID in (4, 6): record.string = family + ' ' + style
if cjk == '1': font['OS/2'].ulCodePageRange1 |= 1 << 19
font.save(dst)
)";
  ASSERT_TRUE(runPython(program, {testFontPath("basic.ttf"), path, family, style, cjk ? "1" : "0"}));
}

// Rescans of an unchanged folder change neither the records nor the data
// files, ExtraBold faces included; a face found by Update() is checked
// against the CJK-except fonts of the start before it.
TEST_F(FontManagerScenarioTest, RescansKeepTheCacheStable) {
  namespace fs = std::filesystem;
  TempDir storage, fonts;
  writeRenamedFont(fonts.file("heavy.ttf"), "KelTest Heavy", "ExtraBold", false);
  writeRenamedFont(fonts.file("heavy-italic.ttf"), "KelTest Heavy", "ExtraBold Italic", false);
  writeRenamedFont(fonts.file("times.ttf"), "Times New Roman", "Regular", true);
  const std::string base = storage.path() + "/";
  auto dataFiles = [&] {
    return std::distance(fs::directory_iterator(base + "FInfo/Fdata"), fs::directory_iterator());
  };
  auto touch = [&] {
    fs::last_write_time(fonts.path(), fs::last_write_time(fonts.path()) - std::chrono::hours(1));
  };
  ManagerRig rig = start(base, {fonts.path()});
  const int records = rig->GetFontTable()->GetFontInfoCount();
  const auto files = dataFiles();
  for (int rescan = 0; rescan < 3; ++rescan) {
    touch();
    ASSERT_TRUE(rig->Update());
    EXPECT_EQ(rig->GetFontTable()->GetFontInfoCount(), records) << rescan;
    EXPECT_EQ(dataFiles(), files) << rescan;
  }
  // Each ExtraBold face keeps one record, with its own file.
  std::set<std::string> heavyFiles;
  const qro_common::FontTable& table = *rig->GetFontTable();
  for (int i = 0; i < table.GetFontInfoCount(); ++i) {
    const qro_common::FontInfo* info = table.GetFontInfo(i);
    if (info->GetFontName() != nullptr && *info->GetFontName() == "KelTest Heavy ExtraBold") {
      EXPECT_TRUE(heavyFiles.insert(*info->GetFilePath()).second);
    }
  }
  EXPECT_EQ(heavyFiles, (std::set<std::string>{fonts.file("heavy.ttf"), fonts.file("heavy-italic.ttf")}));

  writeRenamedFont(fonts.file("times-bold.ttf"), "Times New Roman", "Bold", true);
  touch();
  ASSERT_TRUE(rig->Update());
  int times = rig->GetFontIndex("Times New Roman");
  ASSERT_NE(rig->GetFontInfo(times, true, false), rig->GetFontInfo(times, false, false));
  EXPECT_FALSE(rig->GetFontInfo(times, true, false)->IsCJK());
}

TEST_F(FontManagerScenarioTest, VisibilityKerningAndStandInFaces) {
  TempDir storage;
  ManagerRig rig = start(storage.path() + "/", dirs());
  int dejavu = rig->GetFontIndex("DejaVu Sans");
  int liberation = rig->GetFontIndex("Liberation Serif");
  int nanum = rig->GetFontIndex("NanumGothic");
  int wingdings = rig->GetFontIndex("Wingdings");
  struct Row {
    int font;
    unsigned ch;
    int wantFont;
    unsigned wantCh;
    bool substituted;
  } rows[] = {
      {dejavu, 'A', dejavu, 'A', false},
      {liberation, 0xAC00, nanum, 0xAC00, true},
      {liberation, 0xE000, nanum, 0x20, true},  // private use: a space
      {wingdings, 0xB6, wingdings, 0xF0B6, false},
      {dejavu, 0x0E01, dejavu, 0x20, true},  // nobody has Thai
  };
  for (const Row& row : rows) {
    for (int pass = 0; pass < 2; ++pass) {  // computed, then cached
      int font = row.font;
      unsigned ch = row.ch;
      EXPECT_EQ(rig->ConfirmVisibleChar(font, ch, false, false), row.substituted) << row.ch;
      EXPECT_EQ(font, row.wantFont) << row.ch;
      EXPECT_EQ(ch, row.wantCh) << row.ch;
    }
  }
  // Right after the scan that wrote and dropped its data, a kerning query
  // loads the face.
  int basic = rig->GetFontIndex("KelTest Basic");
  EXPECT_EQ(rig->GetKerningWidth(basic, false, false, 'A', 'V'), -150);
  EXPECT_FALSE(rig->IsFontBold(basic));

  // 굴림 has no file: NanumGothic stands in for it, also for Hangul.
  int gulim = rig->GetFontIndex("굴림");
  const qro_common::FontInfo* nanumFace = rig->GetFontInfo(nanum, false, false);
  EXPECT_EQ(rig->ResolveSystemFontInfo(gulim, false, false), nanumFace);
  EXPECT_EQ(rig->ResolveSystemFontInfo(gulim, 56, false, false), nanumFace);
  EXPECT_EQ(rig->ResolveSystemFontInfo(dejavu, 56, false, false), nanumFace);  // script default
  EXPECT_EQ(rig->ResolveFontMetrics(gulim)->GetUnitsPerEm(), 1000);
  const kelfont_test::ExpectedFace expected = kelfont_test::expectedFace("basic.ttf");
  EXPECT_FLOAT_EQ(rig->GetGlyphAdvanceRatio(basic, -1, expected.chars.at('A').glyph, false, false),
                  expected.chars.at('A').advance / 2048.0f);
}

TEST_F(FontManagerScenarioTest, The32ndLoadedFontEvictsTheFirst) {
  TempDir storage;
  ManagerRig rig = start(storage.path() + "/", {});  // package fonts only
  const kelfont_test::ExpectedFace basic = kelfont_test::expectedFace("basic.ttf");
  float ratioA = basic.chars.at('A').advance / 2048.0f;
  std::vector<int> fonts;
  for (int n = 0; n < 32; ++n) fonts.push_back(rig->GetFontIndex(packageFontName(n)));

  EXPECT_FLOAT_EQ(rig->GetCharAdvanceRatio(fonts[0], 'A', false, false), ratioA);
  for (int n = 1; n < 32; ++n) {
    ASSERT_NE(rig->GetCharMetrics(fonts[n], 'A', false, false), nullptr) << n;
  }
  const qro_common::FontInfo* first = rig->GetFontInfo(fonts[0], false, false);
  EXPECT_EQ(first->GetCharMetricsInfo(), nullptr);
  std::vector<const qro_common::FontInfo*> loaded = rig->GetLoadedFontInfos();
  ASSERT_EQ(loaded.size(), 31u);
  EXPECT_EQ(loaded.front(), rig->GetFontInfo(fonts[1], false, false));
  // The cached ratio stays and does not reload the font.
  EXPECT_FLOAT_EQ(rig->GetCharAdvanceRatio(fonts[0], 'A', false, false), ratioA);
  EXPECT_EQ(first->GetCharMetricsInfo(), nullptr);
}

TEST_F(FontManagerScenarioTest, ScriptDefaultsFollowTheInterfaceLanguage) {
  TempDir storage;
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  qro_base::Locale saved = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  ManagerRig korean = start(storage.path() + "/", {scenario.dirA, scenario.dirB});
  environment.SetUILocale(saved);
  ManagerRig english = start(storage.path() + "/", {scenario.dirA, scenario.dirB});
  EXPECT_EQ(korean->GetScriptDefaultFontList().at(56), korean->GetFontIndex("Liberation Serif"));
  EXPECT_EQ(english->GetScriptDefaultFontList().at(56), english->GetFontIndex("NanumGothic"));
  EXPECT_EQ(korean->GetLocaleFontName(korean->GetFontIndex("NanumGothic")), "나눔고딕");
  EXPECT_EQ(english->GetLocaleFontName(english->GetFontIndex("나눔고딕")), "NanumGothic");
}

}  // namespace
}  // namespace kelfont_test
