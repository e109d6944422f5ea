// A process killed while it writes the cache leaves a cache that the next
// start reads whole: each file is the old or the new one.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfoSerializer.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

namespace fs = std::filesystem;
using qro_common::FontInfo;

// The styles of "KelTest Basic": regular, bold, italic.
const char* const kFiles[] = {"basic.ttf", "bold.ttf", "italic.ttf"};

TEST(CacheKill, AKilledWriterLeavesTheOldOrTheNewCacheWhole) {
  kelfont_test::TempDir root;
  const std::string fonts = root.file("fonts") + "/", none = root.file("none") + "/";
  const std::string scanned = root.file("scanned") + "/", storage = root.file("storage") + "/";
  fs::create_directories(fonts);
  for (const char* file : kFiles)
    fs::create_symlink(kelfont_test::testFontPath(file), fonts + file);

  // A first start scans the fonts; its cache, read back, is what the writer
  // writes, in two variants that differ in the table's default font indexes.
  {
    qro_ni::DefaultFontInfoFileExtracter extracter(scanned, none);
    kelfont_test::TestFontManager(&extracter, scanned, {fonts}).Initialize();
  }
  std::vector<FontInfo*> infos;
  qro_common::DefaultFontInfo defaults;
  qro_common::FontInfoSerializer reader(scanned);
  ASSERT_TRUE(reader.Read(infos) && reader.ReadDefaultFontInfo(defaults));
  const std::vector<std::unique_ptr<FontInfo>> owned(infos.begin(), infos.end());
  for (FontInfo* info : infos) ASSERT_TRUE(reader.ReadData(*info));
  ASSERT_EQ(infos.size(), 3u);
  std::vector<const std::string*> directories{&fonts};
  auto write = [&](const std::string& base, int variant) {
    qro_common::FontInfoSerializer serializer(base);
    serializer.SetDefaultFontIndexes(std::vector<int>(5, variant));
    for (FontInfo* info : infos) serializer.WriteData(*info);
    serializer.Write(infos, directories);
    serializer.WriteDefaultFontInfo(defaults);
  };
  std::map<std::string, std::string> variants[2];
  auto started = std::chrono::steady_clock::now();
  for (int v = 0; v < 2; ++v) {
    write(root.file("variant" + std::to_string(v)) + "/", v);
    variants[v] = kelfont_test::readFiles(root.file("variant" + std::to_string(v)) + "/FInfo");
  }
  ASSERT_NE(variants[0]["Ftable"], variants[1]["Ftable"]);
  // Kills fall anywhere in the writer's first two rounds, whatever the disk.
  const auto elapsed = std::chrono::steady_clock::now() - started;
  const long round = std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count() / 2;

  // The advances every start must answer, as the font generator read them.
  std::vector<std::map<unsigned, int>> expected(3);
  for (int style = 0; style < 3; ++style) {
    for (const auto& [code, ch] : kelfont_test::expectedFace(kFiles[style]).chars) {
      int usb = qro_common::FontUSBType::GetUSBType(code);
      if (usb != 57 && (usb < 123 || usb == 127)) expected[style][code] = ch.advance;
    }
  }

  std::mt19937 random(20261122);
  const int kTrials = 150;
  int killedMidWrite = 0, newTables = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    SCOPED_TRACE("trial " + std::to_string(trial));
    fs::remove_all(storage);
    fs::copy(root.file("variant0"), storage, fs::copy_options::recursive);
    std::fflush(nullptr);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int n = 1;; ++n) write(storage, n % 2);
    }
    usleep(static_cast<useconds_t>(std::uniform_int_distribution<long>(0, 2 * round)(random)));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    // Every file is there, old or new; a temporary file shows a write cut short.
    bool halfWritten = false;
    size_t whole = 0;
    for (const auto& [name, bytes] : kelfont_test::readFiles(storage + "FInfo")) {
      if (name.find(".tmp") != std::string::npos) {
        halfWritten = true;
        continue;
      }
      ++whole;
      EXPECT_TRUE(bytes == variants[0][name] || bytes == variants[1][name]) << name;
      newTables += name == "Ftable" && bytes == variants[1][name];
    }
    EXPECT_EQ(whole, variants[0].size());
    killedMidWrite += halfWritten ? 1 : 0;

    // The font manager trusts the cache (nothing changed), the facade reads
    // it: both answer the fonts' own advances.
    qro_ni::DefaultFontInfoFileExtracter extracter(storage, none);
    kelfont_test::TestFontManager manager(&extracter, storage, {fonts});
    ASSERT_FALSE(manager.IsModified());
    manager.Initialize();
    CKelFontWidth facade;
    facade.SetExtractPath(storage.c_str());
    ASSERT_EQ(facade.InitFontInfoSerializer(), 0);
    ASSERT_EQ(facade.InitFontTable(), 0);
    for (int style = 0; style < 3; ++style) {
      const bool bold = style == 1, italic = style == 2;
      for (const auto& [code, advance] : expected[style]) {
        const qro_common::CharMetrics* metrics =
            manager.GetCharMetrics(manager.GetFontIndex("KelTest Basic"), code, bold, italic);
        int answer = -1;
        facade.GetFontCharInfo(facade.GetFontIndex("KelTest Basic"), int(code), bold, italic,
                               answer);
        ASSERT_TRUE(answer == advance && metrics != nullptr && metrics->GetAdvance() == advance)
            << kFiles[style] << " " << code;
      }
    }
  }
  // Kills landed in the middle of writes, and both caches were found.
  std::printf("%d kills, writer rounds of %ld us: %d left a file half written, %d the new table\n",
              kTrials, round, killedMidWrite, newTables);
  EXPECT_GT(killedMidWrite, kTrials / 10);
  EXPECT_GT(newTables, 0);
  EXPECT_LT(newTables, kTrials);
}

}  // namespace
