#pragma once
// Each file of benchmarks registers its own, after the command line is
// read (a smoke run asks for fewer iterations and smaller inputs).

namespace kelfont_bench {

void registerHotAdvanceBenchmarks();
void registerFaceLoadBenchmarks();
void registerStartupBenchmarks();
void registerMemoryBenchmarks();
void registerShapedRunBenchmarks();

}  // namespace kelfont_bench

namespace kelfont_bench {

// The child of the peak-memory measurement:
//   --rss-child STORAGE PACKAGE_FOLDER FONT_FOLDER FACES
// starts a manager and loads the per-character data of synthetic faces 0
// to FACES-1, then prints its peak resident set in KiB.
int runRssChild(int argc, char** argv);

}  // namespace kelfont_bench
