// The benchmark program: Google Benchmark's flags, plus
//   --smoke   every benchmark once, on small inputs (the ctest run)
// and the internal --rss-child mode of the memory measurement.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/Log.h"
#include "bench/BenchSupport.h"
#include "bench/Registration.h"

namespace {
void dropLogLine(int, const char*, const char*, void*) {}
}  // namespace

int main(int argc, char** argv) {
  kelfont_bench::setSelfPath(argv[0]);
  qro_base::setLogHook(dropLogLine, nullptr);
  if (argc > 1 && std::strcmp(argv[1], "--rss-child") == 0) {
    return kelfont_bench::runRssChild(argc, argv);
  }

  std::vector<char*> args;
  static char minTime[] = "--benchmark_min_time=0.000001";
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--smoke") == 0) {
      kelfont_bench::setSmokeRun(true);
    } else {
      args.push_back(argv[i]);
    }
  }
  if (kelfont_bench::smokeRun()) args.push_back(minTime);
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);

  kelfont_bench::registerHotAdvanceBenchmarks();
  kelfont_bench::registerFaceLoadBenchmarks();
  kelfont_bench::registerStartupBenchmarks();
  kelfont_bench::registerMemoryBenchmarks();
  kelfont_bench::registerShapedRunBenchmarks();
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
