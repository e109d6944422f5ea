#pragma once
// A font manager set up as a host would: real fonts linked into two font
// directories, a default package built for them, and a storage directory.

#include <memory>
#include <string>
#include <vector>

#include "common/manager/FontManager.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/TempDir.h"

namespace kelfont_test {

// A manager on a storage directory and font directories of the test's
// choosing (no system directory).
class TestFontManager : public qro_common::FontManager {
 public:
  TestFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storage,
                  const std::vector<std::string>& directories)
      : FontManager(extracter) {
    SetStoragePath(storage);
    for (const std::string& directory : directories) AddFontDirectoryPath(directory);
  }
};

// Package-only fonts "Pkg00".."Pkg31": basic.ttf's record and data under
// other names, with no font file.
constexpr int kPackageFontCount = 32;
std::string packageFontName(int n);

// Font directory A: DejaVu Sans, Liberation Serif, basic.ttf, wingdings.ttf
// and collection.ttc (3 faces); B: NanumGothic. 8 faces in all.
// Package: the package fonts, the chains "Liberation Serif" -> NanumGothic
// and "굴림" -> NanumGothic, the default fonts DejaVu Sans (1, 2, 4, 5) and
// NanumGothic (3), script defaults 56 -> NanumGothic ("sf") and
// 56 -> Liberation Serif ("sf_ko-KR").
struct Scenario {
  TempDir root;
  std::string dirA, dirB, packageDir;
  static const Scenario& get();  // built once per process
};

constexpr int kScenarioFaceCount = 8;

// An extracter and a manager; Initialize() has run when made by start().
struct ManagerRig {
  std::unique_ptr<qro_ni::DefaultFontInfoFileExtracter> extracter;
  std::unique_ptr<TestFontManager> manager;
  qro_common::FontManager* operator->() const { return manager.get(); }
};

// storage ends in "/"; directories as the manager takes them.
ManagerRig start(const std::string& storage, const std::vector<std::string>& directories,
                 const std::string& packageDir = Scenario::get().packageDir);

}  // namespace kelfont_test
