// A process killed while it writes the cache leaves a cache that the next
// start reads whole: each file is the old or the new one.

#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "base/FileUtils.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfoSerializer.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::readFile;
using qro_common::FontInfo;
using qro_common::FontInfoSerializer;

// The styles of "KelTest Basic": regular, bold, italic.
const char* const kFiles[] = {"basic.ttf", "bold.ttf", "italic.ttf"};

struct Cache {
  std::vector<FontInfo*> infos;
  qro_common::DefaultFontInfo defaults;
  ~Cache() {
    for (FontInfo* info : infos) delete info;
  }
  // Writes the whole cache; the variants differ in the table's default
  // font indexes.
  void Write(FontInfoSerializer& serializer, std::vector<const std::string*>& directories,
             int variant) {
    serializer.SetDefaultFontIndexes(std::vector<int>(5, variant));
    for (FontInfo* info : infos) serializer.WriteData(*info);
    serializer.Write(infos, directories);
    serializer.WriteDefaultFontInfo(defaults);
  }
  // Every file under base + "FInfo/" by its name there.
  std::map<std::string, std::string> Files(const std::string& base) const {
    std::map<std::string, std::string> files;
    for (FontInfo* info : infos) files["Fdata/" + std::to_string(info->GetInfoIndex())] = "";
    files["Ftable"] = files["fi"] = "";
    for (auto& [name, bytes] : files) bytes = readFile(base + "FInfo/" + name);
    return files;
  }
};

// Whether a temporary file of `path` (path + ".tmp" + ...) is there.
bool temporaryLeft(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  std::string prefix = path.substr(slash + 1) + ".tmp";
  bool found = false;
  if (DIR* dir = opendir(path.substr(0, slash).c_str())) {
    while (dirent* entry = readdir(dir)) found |= std::string(entry->d_name).rfind(prefix, 0) == 0;
    closedir(dir);
  }
  return found;
}

TEST(CacheKill, AKilledWriterLeavesTheOldOrTheNewCacheWhole) {
  kelfont_test::TempDir root;
  const std::string fonts = root.file("fonts") + "/", none = root.file("none") + "/";
  const std::string scanned = root.file("scanned") + "/", storage = root.file("storage") + "/";
  ASSERT_TRUE(qro_base::confirmFilePathExists(fonts.c_str()));
  for (const char* file : kFiles) {
    ASSERT_EQ(symlink(kelfont_test::testFontPath(file).c_str(), (fonts + file).c_str()), 0);
  }
  std::vector<const std::string*> directories{&fonts};

  // A first start scans the fonts; its cache, read back, is what the writer
  // writes, in two variants.
  {
    qro_ni::DefaultFontInfoFileExtracter extracter(scanned, none);
    kelfont_test::TestFontManager(&extracter, scanned, {fonts}).Initialize();
  }
  Cache cache;
  {
    FontInfoSerializer serializer(scanned);
    ASSERT_TRUE(serializer.Read(cache.infos) && serializer.ReadDefaultFontInfo(cache.defaults));
    for (FontInfo* info : cache.infos) ASSERT_TRUE(serializer.ReadData(*info));
  }
  ASSERT_EQ(cache.infos.size(), 3u);
  std::map<std::string, std::string> variants[2];
  auto started = std::chrono::steady_clock::now();
  for (int v = 0; v < 2; ++v) {
    const std::string base = root.file("variant" + std::to_string(v)) + "/";
    FontInfoSerializer serializer(base);
    cache.Write(serializer, directories, v);
    variants[v] = cache.Files(base);
  }
  ASSERT_NE(variants[0]["Ftable"], variants[1]["Ftable"]);
  // Kills fall anywhere in the writer's first two rounds, whatever the disk.
  const auto elapsed = std::chrono::steady_clock::now() - started;
  const long round = std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count() / 2;

  // The advances every start must answer, as the font generator read them.
  std::vector<std::map<unsigned, int>> expected(3);
  for (int style = 0; style < 3; ++style) {
    kelfont_test::ExpectedFace face;
    ASSERT_TRUE(kelfont_test::loadExpectedFace(kFiles[style], 0, &face));
    for (const auto& [code, ch] : face.chars) {
      int usb = qro_common::FontUSBType::GetUSBType(code);
      if (usb != 57 && (usb < 123 || usb == 127)) expected[style][code] = ch.advance;
    }
  }

  std::mt19937 random(20261122);
  const int kTrials = 150;
  int killedMidWrite = 0, newTables = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    SCOPED_TRACE("trial " + std::to_string(trial));
    std::filesystem::remove_all(storage);
    ASSERT_TRUE(qro_base::confirmFilePathExists((storage + "FInfo/Fdata").c_str()));
    for (const auto& [name, bytes] : variants[0]) {
      ASSERT_TRUE(kelfont_test::writeFile(storage + "FInfo/" + name, bytes));
    }
    std::fflush(nullptr);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FontInfoSerializer serializer(storage);
      for (int n = 1;; ++n) cache.Write(serializer, directories, n % 2);
    }
    usleep(static_cast<useconds_t>(std::uniform_int_distribution<long>(0, 2 * round)(random)));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    bool halfWritten = false;
    for (const auto& [name, bytes] : cache.Files(storage)) {
      EXPECT_TRUE(bytes == variants[0][name] || bytes == variants[1][name]) << name;
      halfWritten |= temporaryLeft(storage + "FInfo/" + name);
      if (name == "Ftable" && bytes == variants[1][name]) ++newTables;
    }
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
    const int managerIndex = manager.GetFontIndex("KelTest Basic");
    const int facadeIndex = facade.GetFontIndex("KelTest Basic");
    for (int style = 0; style < 3; ++style) {
      const bool bold = style == 1, italic = style == 2;
      for (const auto& [code, advance] : expected[style]) {
        const qro_common::CharMetrics* metrics =
            manager.GetCharMetrics(managerIndex, code, bold, italic);
        int answer = -1;
        int status =
            facade.GetFontCharInfo(facadeIndex, static_cast<int>(code), bold, italic, answer);
        ASSERT_TRUE(status == 0 && answer == advance) << kFiles[style] << " " << code;
        ASSERT_TRUE(metrics != nullptr && metrics->GetAdvance() == advance)
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
