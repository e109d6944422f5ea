#include "bench/BenchSupport.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "base/ZipEntry.h"
#include "base/ZipEntryOutputStream.h"
#include "bench/ScratchDir.h"
#include "bench/StartedManager.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"

namespace kelfont_bench {

namespace {

bool gSmoke = false;
std::string gSelf;

ScratchDir& scratchRoot() {
  static ScratchDir root;
  return root;
}

bool isFolder(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string readWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

double seconds(const timeval& tv) { return static_cast<double>(tv.tv_sec) + tv.tv_usec / 1e6; }

}  // namespace

bool smokeRun() { return gSmoke; }
void setSmokeRun(bool smoke) { gSmoke = smoke; }

const std::vector<std::string>& realFontFolders() {
  static const std::vector<std::string> folders = [] {
    std::vector<std::string> found;
    for (const char* folder :
         {"/usr/share/fonts/truetype/dejavu", "/usr/share/fonts/truetype/liberation",
          "/usr/share/fonts/truetype/nanum", "/usr/share/fonts/opentype/noto"}) {
      if (isFolder(folder)) found.emplace_back(folder);
    }
    return found;
  }();
  return folders;
}

const std::string& cjkFontPath() {
  static const std::string path = "/usr/share/fonts/truetype/nanum/NanumGothic.ttf";
  return path;
}

const char* cjkFontName() { return "NanumGothic"; }

std::string scratchFolder(const std::string& name) { return scratchRoot().subfolder(name); }

const std::string& listsPackageFolder() {
  static const std::string folder = [] {
    const std::string out = scratchFolder("package");
    // The table of a package that knows no face yet.
    const std::string scratch = scratchFolder("package-table");
    qro_common::FontInfoSerializer serializer(scratch);
    std::vector<qro_common::FontInfo*> noFaces;
    std::vector<const std::string*> noFolders;
    serializer.Write(noFaces, noFolders);
    std::vector<std::pair<std::string, std::string>> entries{
        {"Ftable", readWhole(serializer.GetTablePath())}};
    const std::string lists = std::string(KELFONT_SOURCE_DIR) + "/data/";
    for (const char* name : {"fc", "df", "sf", "sf_ko-KR"}) {
      entries.emplace_back(name, readWhole(lists + name));
    }
    qro_base::ZipEntryOutputStream zip((out + "qrfont.zip").c_str());
    bool ok = zip.IsOpen();
    for (const auto& entry : entries) {
      qro_base::ZipEntry zipEntry(entry.first, static_cast<int64_t>(entry.second.size()));
      ok = ok && !entry.second.empty() && zip.PutNextEntry(zipEntry) &&
           zip.Write(entry.second.data(), static_cast<unsigned>(entry.second.size())) &&
           zip.CloseEntry();
    }
    if (!zip.Close() || !ok) throw std::runtime_error("cannot write the lists package");
    return out;
  }();
  return folder;
}

const std::vector<std::string>& androidFontFolders() {
  static const std::vector<std::string> folders = [] {
    const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
    std::vector<std::string> found;
    if (folder != nullptr && isFolder(folder)) found.emplace_back(folder);
    return found;
  }();
  return folders;
}

const std::string& androidWarmStorage() {
  static const std::string storage = [] {
    std::string out = scratchFolder("android-warm-storage");
    StartedManager manager(out, listsPackageFolder(), androidFontFolders());
    manager.Start();
    return out;
  }();
  return storage;
}

const std::string& warmStorage() {
  static const std::string storage = [] {
    std::string out = scratchFolder("warm-storage");
    StartedManager manager(out, listsPackageFolder(), realFontFolders());
    manager.Start();
    return out;
  }();
  return storage;
}

std::vector<char32_t> mixedText(std::size_t count) {
  std::vector<char32_t> text;
  text.reserve(count);
  std::uint32_t state = 20240611u;
  auto next = [&state] {
    state = state * 1664525u + 1013904223u;
    return state >> 8;
  };
  static const char32_t kSeparators[] = {U' ', U' ', U' ', U' ', U',', U'.', U'!', U'?'};
  while (text.size() < count) {
    const bool hangul = next() % 2 == 0;
    const std::uint32_t length = 2 + next() % 7;
    for (std::uint32_t i = 0; i < length && text.size() < count; ++i) {
      if (hangul) {
        text.push_back(0xAC00 + (next() % 2500) * 4);
      } else {
        const std::uint32_t letter = next() % 52;
        text.push_back(letter < 26 ? U'a' + letter : U'A' + (letter - 26));
      }
    }
    if (text.size() < count) text.push_back(kSeparators[next() % 8]);
  }
  return text;
}

double processCpuSeconds() {
  timespec ts;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return static_cast<double>(ts.tv_sec) + ts.tv_nsec / 1e9;
}

double childrenCpuSeconds() {
  rusage usage;
  getrusage(RUSAGE_CHILDREN, &usage);
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

namespace {

pid_t spawn(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
            int outputFd) {
  std::vector<char*> args;
  for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
  args.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  for (const std::string& entry : environment) putenv(const_cast<char*>(entry.c_str()));
  const int null = open("/dev/null", O_WRONLY);
  dup2(outputFd >= 0 ? outputFd : null, 1);
  dup2(null, 2);
  execvp(args[0], args.data());
  _exit(127);
}

int waitFor(pid_t pid, long* peakKib = nullptr) {
  int status = 0;
  rusage usage{};
  if (pid < 0 || wait4(pid, &status, 0, &usage) != pid) return -1;
  if (peakKib != nullptr) *peakKib = usage.ru_maxrss;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

int runProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment) {
  return waitFor(spawn(argv, environment, -1));
}

std::string captureProcess(const std::vector<std::string>& argv, long* peakKib) {
  int fds[2];
  if (pipe(fds) != 0) return std::string();
  const pid_t pid = spawn(argv, {}, fds[1]);
  close(fds[1]);
  std::string out;
  char buffer[4096];
  ssize_t got;
  while ((got = read(fds[0], buffer, sizeof buffer)) > 0) out.append(buffer, got);
  close(fds[0]);
  waitFor(pid, peakKib);
  return out;
}

std::string writeFontconfigFile(const std::string& folder,
                                const std::vector<std::string>& fontFolders,
                                const std::string& cacheFolder) {
  const std::string path = folder + "fonts.conf";
  std::ofstream out(path);
  out << "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n"
      << "<fontconfig>\n";
  for (const std::string& font : fontFolders) out << "  <dir>" << font << "</dir>\n";
  out << "  <cachedir>" << cacheFolder << "</cachedir>\n</fontconfig>\n";
  return path;
}

std::string syntheticFontName(int n) {
  char name[32];
  std::snprintf(name, sizeof name, "Synthetic Face %04d", n);
  return name;
}

void writeSyntheticCache(const std::string& storage, const std::string& fontFolder, int faceCount,
                         int withData) {
  using qro_common::FontInfo;
  qro_common::FontFileAnalyzer analyzer;
  if (!analyzer.Open(cjkFontPath().c_str(), 0)) throw std::runtime_error("cannot open CJK font");
  qro_common::FontInfoSerializer serializer(storage);
  std::unique_ptr<FontInfo> data(analyzer.Analyze());
  analyzer.AnalyzeData(*data);

  std::vector<std::unique_ptr<FontInfo>> owned;
  std::vector<FontInfo*> infos;
  for (int n = 0; n < faceCount; ++n) {
    std::unique_ptr<FontInfo> info(analyzer.Analyze());
    const std::string name = syntheticFontName(n);
    info->SetFontName(new std::string(name));
    for (auto& entry : info->GetLocalizedNames()) entry.second = name;
    info->SetInfoIndex(n);
    if (n < withData) {
      data->SetInfoIndex(n);
      serializer.WriteData(*data);
    }
    infos.push_back(info.get());
    owned.push_back(std::move(info));
  }
  std::vector<const std::string*> folders{&fontFolder};
  serializer.Write(infos, folders);
}

const std::string& selfPath() { return gSelf; }
void setSelfPath(const char* argv0) {
  char buffer[4096];
  const ssize_t got = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  gSelf = got > 0 ? std::string(buffer, static_cast<std::size_t>(got)) : std::string(argv0);
}

}  // namespace kelfont_bench
