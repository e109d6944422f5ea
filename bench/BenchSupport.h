#pragma once
// What the benchmarks share: the real fonts, the default package they start
// from, caches built once per run, the text, CPU clocks and child
// processes.

#include <cstddef>
#include <string>
#include <vector>

namespace kelfont_bench {

// --smoke: every benchmark once, on smaller inputs, only to show that it
// still runs.
bool smokeRun();
void setSmokeRun(bool smoke);

// The real font folders that exist here: DejaVu, Liberation, Nanum, and
// Noto CJK where installed (no trailing slash).
const std::vector<std::string>& realFontFolders();
// The Android set: the folder named by KELFONT_ANDROID_FONTS (made by
// scripts/android-fonts.sh) as the only font folder; empty when unset.
const std::vector<std::string>& androidFontFolders();
// The CJK-sized face the per-face measurements use (NanumGothic).
const std::string& cjkFontPath();
// Its font name in the font table.
const char* cjkFontName();

// A folder holding a "qrfont.zip" with the lists of data/ and an empty
// font table (so that a first start analyses every face itself); built
// once per run.
const std::string& listsPackageFolder();
// A cache over realFontFolders() built by one first start; built once per
// run. The folder ends in "/".
const std::string& warmStorage();
// The same over androidFontFolders().
const std::string& androidWarmStorage();
// A folder for scratch files of this run, removed at exit.
std::string scratchFolder(const std::string& name);

// `count` code points of mixed Latin and Hangul text: words of 2 to 8
// letters, about half of them Hangul syllables (2,500 distinct), separated
// by spaces and punctuation. Always the same for the same count.
std::vector<char32_t> mixedText(std::size_t count);

// CPU time (user + system) of this process, and of its waited-for
// children, in seconds.
double processCpuSeconds();
double childrenCpuSeconds();

// Runs `argv` with `environment` ("NAME=value" entries) added, output
// discarded, and waits; the exit status, or -1.
int runProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment);
// Runs `argv` and returns what it printed on standard output; *peakKib,
// when given, receives the child's peak resident set.
std::string captureProcess(const std::vector<std::string>& argv, long* peakKib = nullptr);

// A fontconfig configuration in `folder` that knows only `fontFolders`
// and keeps its cache in `cacheFolder`; returns its path.
std::string writeFontconfigFile(const std::string& folder,
                                const std::vector<std::string>& fontFolders,
                                const std::string& cacheFolder);

// A cache under `storage` holding `faceCount` faces known by metrics only
// (copies of the CJK face under distinct names), the first `withData` of
// them with the CJK face's data file, and the times of `fontFolder`, so
// that a start with that one font folder trusts it.
void writeSyntheticCache(const std::string& storage, const std::string& fontFolder, int faceCount,
                         int withData);
// The name of synthetic face `n`.
std::string syntheticFontName(int n);

// The path of this program (for children of its own).
const std::string& selfPath();
void setSelfPath(const char* argv0);

}  // namespace kelfont_bench
