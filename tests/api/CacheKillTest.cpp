// A process that is killed while it writes the cache leaves a cache that
// the next start reads whole: each file is the old or the new one.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "base/FileUtils.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/manager/FontManager.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::TempDir;
using qro_common::FontInfo;
using qro_common::FontInfoSerializer;

struct Face {
  const char* file;
  int faceIndex;
  const char* fontName;
  bool bold, italic;
};
const Face kFaces[] = {
    {"basic.ttf", 0, "KelTest Basic", false, false},
    {"bold.ttf", 0, "KelTest Basic", true, false},
    {"italic.ttf", 0, "KelTest Basic", false, true},
};

class KillManager : public qro_common::FontManager {
 public:
  KillManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storage,
              const std::string& fonts)
      : FontManager(extracter) {
    SetStoragePath(storage);
    AddFontDirectoryPath(fonts);
  }
};

// Every cache file under base + "FInfo/" by its name there.
using Files = std::map<std::string, std::string>;
Files cacheFiles(const std::string& base, const std::vector<FontInfo*>& infos) {
  Files files{{"Ftable", readFile(base + "FInfo/Ftable")}, {"fi", readFile(base + "FInfo/fi")}};
  for (FontInfo* info : infos) {
    std::string name = "Fdata/" + std::to_string(info->GetInfoIndex());
    files[name] = readFile(base + "FInfo/" + name);
  }
  return files;
}

// One whole cache of `infos`; the two variants differ in the table's
// default-font-index section.
void writeCache(FontInfoSerializer& serializer, std::vector<FontInfo*>& infos,
                std::vector<const std::string*>& directories,
                qro_common::DefaultFontInfo& defaults, int variant) {
  serializer.SetDefaultFontIndexes(variant == 0 ? std::vector<int>{0, 0, 0, 0, 0}
                                                : std::vector<int>{1, 2, 3, 4, 5});
  for (FontInfo* info : infos) serializer.WriteData(*info);
  serializer.Write(infos, directories);
  serializer.WriteDefaultFontInfo(defaults);
}

struct LoadedCache {
  std::vector<FontInfo*> infos;
  qro_common::DefaultFontInfo defaults;
  ~LoadedCache() {
    for (FontInfo* info : infos) delete info;
  }
};
bool loadCache(const std::string& base, LoadedCache& cache) {
  FontInfoSerializer serializer(base);
  if (!serializer.Read(cache.infos) || !serializer.ReadDefaultFontInfo(cache.defaults)) {
    return false;
  }
  for (FontInfo* info : cache.infos) serializer.ReadData(*info);
  return true;
}

TEST(CacheKill, AKilledWriterLeavesTheOldOrTheNewCacheWhole) {
  TempDir root;
  std::string fonts = root.file("fonts") + "/";
  ASSERT_TRUE(qro_base::confirmFilePathExists(fonts.c_str()));
  for (const char* file : {"basic.ttf", "bold.ttf", "italic.ttf"}) {
    ASSERT_EQ(symlink(kelfont_test::testFontPath(file).c_str(), (fonts + file).c_str()), 0);
  }
  std::string packageDir = root.file("package") + "/";
  std::string scanned = root.file("scanned") + "/";
  std::string storage = root.file("storage") + "/";
  std::string directory = fonts;
  std::vector<const std::string*> directories{&directory};

  // A first start scans the fonts; the two variants of its cache are
  // written as the writer below writes them.
  {
    qro_ni::DefaultFontInfoFileExtracter extracter(scanned, packageDir);
    KillManager manager(&extracter, scanned, fonts);
    manager.Initialize();
  }
  LoadedCache cache;
  ASSERT_TRUE(loadCache(scanned, cache));
  ASSERT_EQ(cache.infos.size(), std::size(kFaces));
  std::mt19937 random(20261122);
  Files variants[2];
  auto started = std::chrono::steady_clock::now();
  for (int v = 0; v < 2; ++v) {
    std::string base = root.file("variant" + std::to_string(v)) + "/";
    FontInfoSerializer serializer(base);
    writeCache(serializer, cache.infos, directories, cache.defaults, v);
    variants[v] = cacheFiles(base, cache.infos);
  }
  // Kills fall anywhere in the first two rounds of the writer, whatever the
  // speed of the disk.
  auto round = std::chrono::duration_cast<std::chrono::microseconds>(
                   std::chrono::steady_clock::now() - started) / 2;
  std::uniform_int_distribution<long> killDelay(0, 2 * round.count());
  ASSERT_NE(variants[0]["Ftable"], variants[1]["Ftable"]);

  // The advances every start must answer, as the font generator read them.
  struct Expected {
    const Face* face;
    std::map<unsigned, int> advances;
  };
  std::vector<Expected> expected;
  for (const Face& face : kFaces) {
    kelfont_test::ExpectedFace read;
    ASSERT_TRUE(kelfont_test::loadExpectedFace(face.file, face.faceIndex, &read));
    Expected e{&face, {}};
    for (const auto& [code, ch] : read.chars) {
      int usb = qro_common::FontUSBType::GetUSBType(code);
      if (usb == 57 || (usb >= 123 && usb != 127)) continue;
      e.advances[code] = ch.advance;
    }
    ASSERT_FALSE(e.advances.empty());
    expected.push_back(e);
  }

  const int kTrials = 150;
  int killedMidWrite = 0, newTables = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    SCOPED_TRACE("trial " + std::to_string(trial));
    // The old cache: variant 0, with no leftovers of the previous trial.
    ASSERT_TRUE(qro_base::confirmFilePathExists((storage + "FInfo/Fdata").c_str()));
    for (const auto& [name, bytes] : variants[0]) {
      ASSERT_TRUE(kelfont_test::writeFile(storage + "FInfo/" + name, bytes));
    }
    std::fflush(nullptr);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FontInfoSerializer serializer(storage);
      for (int round = 1;; ++round) {
        writeCache(serializer, cache.infos, directories, cache.defaults, round % 2);
      }
    }
    usleep(static_cast<useconds_t>(killDelay(random)));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    Files now = cacheFiles(storage, cache.infos);
    for (const auto& [name, bytes] : now) {
      SCOPED_TRACE(name);
      EXPECT_TRUE(bytes == variants[0][name] || bytes == variants[1][name]);
      if (qro_base::isFileExists((storage + "FInfo/" + name + ".tmp").c_str())) ++killedMidWrite;
    }
    if (now["Ftable"] == variants[1]["Ftable"]) ++newTables;

    // The font manager trusts the cache (nothing changed) and the facade
    // reads it: both answer the fonts' own advances.
    qro_ni::DefaultFontInfoFileExtracter extracter(storage, packageDir);
    KillManager manager(&extracter, storage, fonts);
    ASSERT_FALSE(manager.IsModified());
    manager.Initialize();
    CKelFontWidth facade;
    facade.SetExtractPath(storage.c_str());
    ASSERT_EQ(facade.InitFontInfoSerializer(), 0);
    ASSERT_EQ(facade.InitFontTable(), 0);
    for (const Expected& e : expected) {
      int managerIndex = manager.GetFontIndex(e.face->fontName);
      int facadeIndex = facade.GetFontIndex(e.face->fontName);
      for (const auto& [code, advance] : e.advances) {
        const qro_common::CharMetrics* metrics =
            manager.GetCharMetrics(managerIndex, code, e.face->bold, e.face->italic);
        ASSERT_NE(metrics, nullptr) << e.face->file << " U+" << std::hex << code;
        ASSERT_EQ(metrics->GetAdvance(), advance) << e.face->file << " U+" << std::hex << code;
        int answer = -1;
        ASSERT_EQ(facade.GetFontCharInfo(facadeIndex, static_cast<int>(code), e.face->bold,
                                         e.face->italic, answer),
                  0);
        ASSERT_EQ(answer, advance) << e.face->file << " U+" << std::hex << code;
      }
    }
  }
  // Most kills land in the middle of writing some file, and the writer gets
  // past its first table in most trials: both the old and the new cache
  // were found.
  std::printf("%d kills over writer rounds of %ld us: %d left a file half written, %d found "
              "the new table\n", kTrials, static_cast<long>(round.count()), killedMidWrite, newTables);
  EXPECT_GT(killedMidWrite, kTrials / 10);
  EXPECT_GT(newTables, 0);
  EXPECT_LT(newTables, kTrials);
}

}  // namespace
