#pragma once

#include <string>

namespace kelfont_bench {

// A fresh folder under the system's temporary folder, removed with
// everything in it when the object goes away.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  // The folder, with a trailing slash.
  const std::string& path() const { return path_; }
  // A new empty subfolder (with a trailing slash).
  std::string subfolder(const std::string& name) const;
  // Removes everything inside `folder` (which stays).
  static void empty(const std::string& folder);

 private:
  std::string path_;
};

}  // namespace kelfont_bench
