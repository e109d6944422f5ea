// Memory: heap bytes per mapped character of a loaded face, and the peak
// resident set of a manager holding the data of 31 CJK-sized faces (a child
// process of its own, so that nothing of the benchmark program counts),
// beside that of the same manager with no face loaded; the difference of
// their heaps, per face, is what a loaded face keeps. On the Android set
// (KELFONT_ANDROID_FONTS): the peak resident set and the bytes read of a
// first start, each in a child of its own, beside fc-cache's peak.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/BenchSupport.h"
#include "bench/Registration.h"
#include "bench/StartedManager.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_bench {
namespace {

constexpr int kLoadedFaces = 31;

long heapInUse() { return static_cast<long>(mallinfo2().uordblks); }

void heapPerChar(benchmark::State& state) {
  // Synthetic face 0 carries the CJK face's data file.
  static const std::string storage = [] {
    std::string folder = scratchFolder("heap-storage");
    writeSyntheticCache(folder, scratchFolder("heap-fonts"), 1, 1);
    return folder;
  }();
  qro_common::FontInfoSerializer serializer(storage);
  for (auto _ : state) {
    qro_common::FontInfo info;
    info.SetInfoIndex(0);
    const long before = heapInUse();
    if (!serializer.ReadData(info)) throw std::runtime_error("ReadData failed");
    const long bytes = heapInUse() - before;
    long mapped = 0;
    const qro_common::CharMetricsInfo* table = info.GetCharMetricsInfo();
    for (unsigned c = 0; c < 0x110000; ++c) mapped += table->IsVisibleChar(c) ? 1 : 0;
    state.counters["heap_bytes"] = static_cast<double>(bytes);
    state.counters["mapped_chars"] = static_cast<double>(mapped);
    state.counters["bytes_per_char"] = static_cast<double>(bytes) / static_cast<double>(mapped);
  }
}

// What the child reports: its peak resident set and the heap in use at the
// end, in KiB.
struct ChildMemory {
  long peakKiB = 0;
  long heapKiB = 0;
  long readKiB = 0;  // what the child read through read calls (rchar)
};

ChildMemory childMemory(const std::string& storage, const std::string& fontFolder, int faces) {
  const std::string out = captureProcess({selfPath(), "--rss-child", storage, listsPackageFolder(),
                                          fontFolder, std::to_string(faces)});
  ChildMemory memory;
  char* end = nullptr;
  memory.peakKiB = std::strtol(out.c_str(), &end, 10);
  memory.heapKiB = std::strtol(end, &end, 10);
  memory.readKiB = std::strtol(end, nullptr, 10);
  return memory;
}

// Bytes read through read calls by this process so far (rchar), or -1.
long readBytes() {
  std::FILE* io = std::fopen("/proc/self/io", "r");
  if (io == nullptr) return -1;
  long bytes = -1;
  if (std::fscanf(io, "rchar: %ld", &bytes) != 1) bytes = -1;
  std::fclose(io);
  return bytes;
}

long folderBytes(const std::string& folder) {
  long total = 0;
  if (DIR* dir = opendir(folder.c_str())) {
    while (dirent* entry = readdir(dir)) {
      struct stat status;
      if (stat((folder + "/" + entry->d_name).c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        total += static_cast<long>(status.st_size);
      }
    }
    closedir(dir);
  }
  return total;
}

void androidFirstStartResources(benchmark::State& state) {
  const std::string& fonts = androidFontFolders()[0];
  static int run = 0;
  for (auto _ : state) {
    const std::string storage = scratchFolder("android-resources-" + std::to_string(++run));
    const ChildMemory first = childMemory(storage, fonts, 0);
    const std::string cache = scratchFolder("android-fc-" + std::to_string(run));
    const std::string file = writeFontconfigFile(cache, {fonts}, cache + "cache");
    long fcPeak = 0;
    captureProcess({"env", "FONTCONFIG_FILE=" + file, "fc-cache", "-f"}, &fcPeak);
    if (first.peakKiB <= 0 || first.readKiB <= 0 || fcPeak <= 0) {
      state.SkipWithError("the measuring child failed");
      break;
    }
    state.counters["peak_rss_kib"] = static_cast<double>(first.peakKiB);
    state.counters["fc_cache_peak_rss_kib"] = static_cast<double>(fcPeak);
    state.counters["read_kib"] = static_cast<double>(first.readKiB);
    state.counters["font_kib"] = static_cast<double>(folderBytes(fonts) / 1024);
  }
}

void peakResident(benchmark::State& state) {
  static const std::string fontFolder = scratchFolder("rss-fonts");
  static const std::string storage = [] {
    std::string folder = scratchFolder("rss-storage");
    writeSyntheticCache(folder, fontFolder, kLoadedFaces, kLoadedFaces);
    return folder;
  }();
  for (auto _ : state) {
    const ChildMemory idle = childMemory(storage, fontFolder, 0);
    const ChildMemory loaded = childMemory(storage, fontFolder, kLoadedFaces);
    if (idle.peakKiB <= 0 || loaded.peakKiB <= 0) {
      state.SkipWithError("the measuring child failed");
      break;
    }
    state.counters["peak_rss_kib"] = static_cast<double>(loaded.peakKiB);
    state.counters["idle_peak_rss_kib"] = static_cast<double>(idle.peakKiB);
    state.counters["heap_per_face_kib"] =
        static_cast<double>(loaded.heapKiB - idle.heapKiB) / kLoadedFaces;
  }
}

}  // namespace

int runRssChild(int argc, char** argv) {
  if (argc != 6) return 2;
  StartedManager manager(argv[2], argv[3], {argv[4]});
  manager.Start();
  qro_common::FontManager& fonts = manager.Manager();
  const int faces = std::atoi(argv[5]);
  float sum = 0;
  for (int n = 0; n < faces; ++n) {
    sum +=
        fonts.GetCharAdvanceRatio(fonts.GetFontIndex(syntheticFontName(n)), 0xAC00, false, false);
  }
  if (faces > 0 && sum <= 0) return 1;
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%ld %ld %ld\n", usage.ru_maxrss, heapInUse() / 1024, readBytes() / 1024);
  return 0;
}

void registerMemoryBenchmarks() {
  benchmark::RegisterBenchmark("Memory/kelfont_heap_per_char", heapPerChar)->Iterations(1);
  benchmark::RegisterBenchmark("Memory/kelfont_31_faces_peak_rss", peakResident)->Iterations(1);
  if (!androidFontFolders().empty()) {
    benchmark::RegisterBenchmark("Android/Memory/first_start_resources", androidFirstStartResources)
        ->Iterations(1);
  }
}

}  // namespace kelfont_bench
