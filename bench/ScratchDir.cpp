#include "bench/ScratchDir.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace kelfont_bench {

namespace {

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
  std::remove(path);
  return 0;
}

}  // namespace

ScratchDir::ScratchDir() {
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern =
      std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/kelfont-bench-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = std::string(buffer.data()) + "/";
}

ScratchDir::~ScratchDir() { nftw(path_.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS); }

std::string ScratchDir::subfolder(const std::string& name) const {
  std::string folder = path_ + name + "/";
  mkdir(folder.c_str(), 0755);
  empty(folder);
  return folder;
}

void ScratchDir::empty(const std::string& folder) {
  nftw(folder.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
  mkdir(folder.c_str(), 0755);
}

}  // namespace kelfont_bench
