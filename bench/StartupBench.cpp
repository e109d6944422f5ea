// Start-up, in CPU time (user + system): fc-cache sleeps, so wall time says
// nothing. Cold: libkelfont's first start on an empty storage folder over
// the real font folders against `fc-cache -f` on the same folders (its own
// configuration and cache folder, so the host's caches are not touched).
// Warm: a start that trusts a valid cache against fontconfig loading the
// same fonts from its valid cache; and a start over a table of 1,000
// faces. The cold and warm starts run again on the Android set when
// KELFONT_ANDROID_FONTS names it.

#include <benchmark/benchmark.h>
#include <fontconfig/fontconfig.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/BenchSupport.h"
#include "bench/Registration.h"
#include "bench/StartedManager.h"

namespace kelfont_bench {
namespace {

// What a host's start-up does: extracter, manager, Initialize().
double timedStart(const std::string& storage, const std::vector<std::string>& fontFolders) {
  const double start = processCpuSeconds();
  StartedManager manager(storage, listsPackageFolder(), fontFolders);
  manager.Start();
  return processCpuSeconds() - start;
}

// A new folder for every run: refilling an emptied one would measure the
// file system's handling of just-deleted files.
std::string freshFolder(const char* prefix) {
  static int count = 0;
  return scratchFolder(prefix + std::to_string(++count));
}

using Folders = const std::vector<std::string>& (*)();

void kelfontColdStart(benchmark::State& state, Folders folders) {
  for (auto _ : state) {
    const std::string storage = freshFolder("cold-storage-");
    state.SetIterationTime(timedStart(storage, folders()));
  }
}

// The fontconfig configuration over the real font folders, and its cache
// folder.
struct FontconfigSetup {
  std::string file;
  std::string cache;
};

FontconfigSetup fontconfigSetup(const std::vector<std::string>& fontFolders) {
  FontconfigSetup made;
  const std::string folder = freshFolder("fontconfig-");
  made.cache = folder + "cache";
  made.file = writeFontconfigFile(folder, fontFolders, made.cache);
  return made;
}

void fcCacheColdStart(benchmark::State& state, Folders folders) {
  for (auto _ : state) {
    const std::string folder = freshFolder("fc-cache-");
    const std::string file = writeFontconfigFile(folder, folders(), folder + "cache");
    const double start = childrenCpuSeconds();
    if (runProcess({"fc-cache", "-f"}, {"FONTCONFIG_FILE=" + file}) != 0) {
      state.SkipWithError("fc-cache failed");
      break;
    }
    state.SetIterationTime(childrenCpuSeconds() - start);
  }
}

void kelfontWarmStart(benchmark::State& state, Folders folders, const std::string& (*storage)()) {
  for (auto _ : state) state.SetIterationTime(timedStart(storage(), folders()));
}

void fontconfigWarmStart(benchmark::State& state, Folders folders) {
  const FontconfigSetup setup = fontconfigSetup(folders());
  if (runProcess({"fc-cache"}, {"FONTCONFIG_FILE=" + setup.file}) != 0) {
    state.SkipWithError("fc-cache failed");
    return;
  }
  setenv("FONTCONFIG_FILE", setup.file.c_str(), 1);
  for (auto _ : state) {
    const double start = processCpuSeconds();
    FcConfig* config = FcInitLoadConfigAndFonts();
    const double used = processCpuSeconds() - start;
    FcFontSet* fonts = config == nullptr ? nullptr : FcConfigGetFonts(config, FcSetSystem);
    if (fonts == nullptr || fonts->nfont == 0) {
      state.SkipWithError("fontconfig found no fonts");
      break;
    }
    state.counters["faces"] = fonts->nfont;
    FcConfigDestroy(config);
    state.SetIterationTime(used);
  }
}

void kelfontWarmStartSynthetic(benchmark::State& state) {
  static const int kFaces = 1000;
  static const std::string fontFolder = scratchFolder("synthetic-fonts");
  static const std::string storage = [] {
    std::string folder = scratchFolder("synthetic-storage");
    writeSyntheticCache(folder, fontFolder, kFaces, 0);
    return folder;
  }();
  for (auto _ : state) state.SetIterationTime(timedStart(storage, {fontFolder}));
  state.counters["faces"] = kFaces;
}

}  // namespace

void registerStartupBenchmarks() {
  const bool smoke = smokeRun();
  struct Set {
    const char* prefix;
    Folders folders;
    const std::string& (*storage)();
  };
  for (const Set& set : {Set{"", realFontFolders, warmStorage},
                         Set{"Android/", androidFontFolders, androidWarmStorage}}) {
    if (set.folders().empty()) continue;
    const std::string prefix = set.prefix;
    benchmark::RegisterBenchmark((prefix + "ColdStart/kelfont").c_str(), kelfontColdStart,
                                 set.folders)
        ->UseManualTime()
        ->Iterations(smoke ? 1 : 5)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((prefix + "ColdStart/fc_cache").c_str(), fcCacheColdStart,
                                 set.folders)
        ->UseManualTime()
        ->Iterations(smoke ? 1 : 3)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((prefix + "WarmStart/kelfont").c_str(), kelfontWarmStart,
                                 set.folders, set.storage)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((prefix + "WarmStart/fontconfig").c_str(), fontconfigWarmStart,
                                 set.folders)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::RegisterBenchmark("WarmStart/kelfont_1000_faces", kelfontWarmStartSynthetic)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace kelfont_bench
