// Font folders and caches as a hostile or unlucky device leaves them: bad
// entries are skipped, nothing overflows, hangs or crashes, the good fonts
// stay usable and a good cache is never replaced by a worse one.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "base/FileUtils.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::RecordingPath;
using kelfont_test::TempDir;
using kelfont_test::testFontPath;
using kelfont_test::TestFontManager;
using kelfont_test::writeFile;
using qro_common::FontInfo;

// A manager on `storage` and `directories`, with no default package.
struct Start {
  Start(const std::string& storage, const std::vector<std::string>& directories)
      : extracter(storage, storage + "no-package/"), manager(&extracter, storage, directories) {
    manager.Initialize();
  }
  qro_ni::DefaultFontInfoFileExtracter extracter;
  TestFontManager manager;
};

std::string copyOf(const std::string& font) { return readFile(testFontPath(font)); }

// The advance the manager answers for `code` in `fontName` (-1 without
// metrics), and the file path of its face.
int advanceOf(TestFontManager& manager, const std::string& fontName, unsigned code,
              bool bold = false) {
  const qro_common::CharMetrics* metrics =
      manager.GetCharMetrics(manager.GetFontIndex(fontName), code, bold, false);
  return metrics != nullptr ? metrics->GetAdvance() : -1;
}

std::string pathOf(TestFontManager& manager, const std::string& fontName, bool bold = false) {
  const FontInfo* info = manager.GetFontInfo(manager.GetFontIndex(fontName), bold, false);
  return info != nullptr && info->GetFilePath() != nullptr ? *info->GetFilePath() : "";
}

int expectedAdvance(const std::string& font, unsigned code) {
  kelfont_test::ExpectedFace face;
  if (!kelfont_test::loadExpectedFace(font, 0, &face)) return -2;
  auto found = face.chars.find(code);
  return found != face.chars.end() ? found->second.advance : -1;
}

TEST(HostileFiles, BadEntriesOfAFontFolderAreSkippedAndTheRestIsKept) {
  TempDir root;
  const std::string fonts = root.file("fonts");
  ASSERT_TRUE(qro_base::confirmFilePathExists(fonts.c_str()));
  std::string collection = copyOf("collection.ttc");
  collection[8] = collection[9] = collection[10] = '\0';
  collection[11] = '\xFF';  // claims 255 faces, has 3: FreeType refuses it
  const std::string nonUtf8 = fonts + "/bold \xFF\xFE\xC0.ttf";
  struct Entry {
    std::string name, bytes;
  } entries[] = {
      {"basic.ttf", copyOf("basic.ttf")},
      {"truncated.ttf", copyOf("italic.ttf").substr(0, 100)},
      {"empty.ttf", ""},
      {"many.ttc", collection},
      {"faces255.ttc", copyOf("collection255.ttc")},
      {"longname.ttf", copyOf("longname.ttf")},
      {"glyphs65535.ttf", copyOf("glyphs65535.ttf")},
  };
  for (const Entry& entry : entries) ASSERT_TRUE(writeFile(fonts + "/" + entry.name, entry.bytes));
  ASSERT_TRUE(writeFile(nonUtf8, copyOf("bold.ttf")));
  ASSERT_EQ(mkdir((fonts + "/folder.ttf").c_str(), 0755), 0);
  ASSERT_EQ(symlink((fonts + "/missing.ttf").c_str(), (fonts + "/dangling.ttf").c_str()), 0);
  ASSERT_EQ(symlink((fonts + "/loop.ttf").c_str(), (fonts + "/loop.ttf").c_str()), 0);

  // The family name of longname.ttf in UTF-8 (three bytes per syllable),
  // cut to what a localized-name entry of the table holds: 255 bytes less
  // two lengths and the tag "en-US", 82 syllables.
  std::string longName;
  {
    std::unique_ptr<FontInfo> analyzed;
    qro_common::FontFileAnalyzer analyzer;
    ASSERT_TRUE(analyzer.Open(testFontPath("longname.ttf").c_str(), 0));
    analyzed.reset(analyzer.Analyze());
    ASSERT_GT(analyzed->GetFontName()->size(), 2000u);
    longName = analyzed->GetFontName()->substr(0, 246);
  }

  kelfont_test::ExpectedFace many;
  ASSERT_TRUE(kelfont_test::loadExpectedFace("glyphs65535.ttf", 0, &many));
  ASSERT_EQ(many.numGlyphs, 65535);
  const std::string storage = root.file("storage") + "/";
  for (int run = 0; run < 2; ++run) {  // the scan, then a start on its cache
    SCOPED_TRACE(run == 0 ? "scan" : "cache");
    Start start(storage, {fonts});
    TestFontManager& manager = start.manager;
    EXPECT_EQ(manager.IsModified(), false);
    // basic, bold, the long name, the 65,535 glyphs and the 255 faces.
    EXPECT_EQ(manager.GetFontTable()->GetFontInfoCount(), 4 + 255);
    for (int face : {0, 128, 254}) {
      const std::string name = "KelTest Coll 255 " + std::to_string(face);
      const FontInfo* info = manager.GetFontInfo(manager.GetFontIndex(name), false, false);
      ASSERT_NE(info, nullptr) << name;
      EXPECT_EQ(info->GetFaceIndex(), face);
      EXPECT_EQ(advanceOf(manager, name, 'A'), 964);
    }
    EXPECT_EQ(pathOf(manager, "KelTest Basic"), fonts + "/basic.ttf");
    EXPECT_EQ(pathOf(manager, "KelTest Basic", true), nonUtf8);
    EXPECT_EQ(advanceOf(manager, "KelTest Basic", 'A', true), expectedAdvance("bold.ttf", 'A'));
    EXPECT_EQ(manager.GetFontIndex("KelTest Coll A"), -1);
    
    EXPECT_EQ(pathOf(manager, longName), fonts + "/longname.ttf");
    EXPECT_EQ(advanceOf(manager, longName, 'A'), expectedAdvance("longname.ttf", 'A'));
    int checked = 0;
    for (const auto& [code, ch] : many.chars) {
      int usb = qro_common::FontUSBType::GetUSBType(code);
      if (usb == 57 || (usb > 122 && usb != 127) || code % 61 != 0) continue;
      ASSERT_EQ(advanceOf(manager, "KelTest Many Glyphs", code), ch.advance) << code;
      ++checked;
    }
    EXPECT_GT(checked, 900);
  }
}

// Paths past the 2,048 bytes that path buffers of this kind usually hold.
TEST(HostileFiles, FontPathsLongerThanAPathBuffer) {
  TempDir root;
  std::string fonts = root.path();
  while (fonts.size() < 2300) fonts += "/" + std::string(200, 'd');
  ASSERT_TRUE(qro_base::confirmFilePathExists(fonts.c_str()));
  ASSERT_TRUE(writeFile(fonts + "/basic.ttf", copyOf("basic.ttf")));
  const std::string storage = root.file("storage") + "/";
  for (int run = 0; run < 2; ++run) {
    Start start(storage, {fonts});
    EXPECT_EQ(pathOf(start.manager, "KelTest Basic"), fonts + "/basic.ttf");
    EXPECT_EQ(advanceOf(start.manager, "KelTest Basic", 'V'), expectedAdvance("basic.ttf", 'V'));
    RecordingPath path;
    float x = 0, y = 0;
    const FontInfo* info = start.manager.GetFontInfo(start.manager.GetFontIndex("KelTest Basic"),
                                                     false, false);
    ASSERT_EQ(start.manager.OutlineToPath(info, 'A', x, y, &path), 0);
    EXPECT_EQ(path.out.size(), 12u);  // the triangle: a move and three lines
    // The outline is hinted at 32 pixels per em: the advance comes out in
    // whole pixels of 64 units.
    EXPECT_EQ(x, static_cast<float>((expectedAdvance("basic.ttf", 'A') + 32) / 64 * 64));
  }
}


// A font rewritten in place (as a copy over it does) while it is open: the
// analysis goes on with the file as it was opened; a face kept open for
// outlines fails its next glyph instead of faulting.
TEST(HostileFiles, AFontRewrittenInPlaceWhileOpen) {
  TempDir dir;
  const std::string path = dir.file("replaced.ttf");
  ASSERT_TRUE(writeFile(path, copyOf("basic.ttf")));
  qro_common::FontFileAnalyzer analyzer;
  ASSERT_TRUE(analyzer.Open(path.c_str(), 0));
  ASSERT_EQ(truncate(path.c_str(), 0), 0);
  ASSERT_TRUE(writeFile(path, std::string(300, 'x')));
  std::unique_ptr<FontInfo> info(analyzer.Analyze());
  ASSERT_NE(info, nullptr);
  analyzer.AnalyzeData(*info);
  analyzer.Close();
  ASSERT_NE(info->GetCharMetricsInfo(), nullptr);
  for (unsigned code : {0x41u, 0x7Eu, 0xAC00u}) {
    const qro_common::CharMetrics* metrics = info->GetCharMetricsInfo()->GetCharMetrics(code);
    ASSERT_NE(metrics, nullptr) << code;
    EXPECT_EQ(metrics->GetAdvance(), expectedAdvance("basic.ttf", code)) << code;
  }

  // A large font, so that the glyph asked for after the change was never
  // read before it.
  const std::string large = dir.file("large.ttf");
  ASSERT_TRUE(writeFile(large, readFile("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf")));
  FontInfo face;
  face.SetInfoIndex(1);
  face.SetFilePath(new std::string(large));
  TestFontManager manager(nullptr, dir.path() + "/", {});
  RecordingPath drawn;
  float x = 0, y = 0;
  ASSERT_EQ(manager.OutlineToPath(&face, 'A', x, y, &drawn), 0);
  ASSERT_EQ(truncate(large.c_str(), 0), 0);
  EXPECT_EQ(manager.OutlineToPath(&face, 0x416, x, y, &drawn), -1);  // Cyrillic Zhe
}

// A scan whose cache cannot be written (a full disk) keeps the previous
// cache whole and says so; the next start that can write catches up.
TEST(HostileFiles, AScanThatCannotWriteKeepsTheOldCache) {
  TempDir root;
  const std::string fonts = root.file("fonts");
  ASSERT_TRUE(qro_base::confirmFilePathExists(fonts.c_str()));
  ASSERT_TRUE(writeFile(fonts + "/basic.ttf", copyOf("basic.ttf")));
  struct utimbuf past = {std::time(nullptr) - 100, std::time(nullptr) - 100};
  ASSERT_EQ(utime(fonts.c_str(), &past), 0);
  const std::string storage = root.file("storage") + "/";
  { Start first(storage, {fonts}); }
  const std::string table = readFile(storage + "FInfo/Ftable");
  ASSERT_FALSE(table.empty());

  ASSERT_TRUE(writeFile(fonts + "/bold.ttf", copyOf("bold.ttf")));
  ASSERT_EQ(utime(fonts.c_str(), nullptr), 0);
  {
    kelfont_test::LogCapture log;
    kelfont_test::FileSizeLimit limit(64);
    ASSERT_TRUE(limit.ok());
    Start full(storage, {fonts});
    // This start answers from what it measured.
    EXPECT_EQ(advanceOf(full.manager, "KelTest Basic", 'A', true),
              expectedAdvance("bold.ttf", 'A'));
    EXPECT_EQ(readFile(storage + "FInfo/Ftable"), table);
    int tableLines = 0;
    for (const std::string& line : log.messages()) {
      if (line == "Cannot write " + storage + "FInfo/Ftable: File too large") ++tableLines;
    }
    EXPECT_EQ(tableLines, 1);
  }
  Start after(storage, {fonts});
  EXPECT_EQ(after.manager.GetFontTable()->GetFontInfoCount(), 2);
  EXPECT_EQ(advanceOf(after.manager, "KelTest Basic", 'A', true), expectedAdvance("bold.ttf", 'A'));
  Start again(storage, {fonts});
  EXPECT_FALSE(again.manager.IsModified());
  EXPECT_EQ(advanceOf(again.manager, "KelTest Basic", 'A', true), expectedAdvance("bold.ttf", 'A'));
}

}  // namespace
