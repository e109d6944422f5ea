#pragma once
// A fresh directory under the system's temporary directory, removed with
// everything in it when the object goes away.

#include <map>
#include <string>

namespace kelfont_test {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // The directory, without a trailing slash.
  const std::string& path() const { return path_; }
  // path() + "/" + name.
  std::string file(const std::string& name) const;

 private:
  std::string path_;
};

// Whole-file helpers for tests.
bool writeFile(const std::string& path, const std::string& bytes);
std::string readFile(const std::string& path);
// Every file under `dir`, by its path below `dir`.
std::map<std::string, std::string> readFiles(const std::string& dir);

}  // namespace kelfont_test
