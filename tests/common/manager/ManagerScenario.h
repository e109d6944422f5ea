#pragma once
// Font managers set up as a host would: real fonts linked into two font
// directories, a default package built for them, a storage directory.

#include <memory>
#include <string>
#include <vector>

#include "common/manager/FontManager.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/TempDir.h"

namespace kelfont_test {

// A manager on the storage and font directories given (no system fonts).
class TestFontManager : public qro_common::FontManager {
 public:
  TestFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storage,
                  const std::vector<std::string>& directories)
      : FontManager(extracter) {
    SetStoragePath(storage);
    for (const std::string& directory : directories) AddFontDirectoryPath(directory);
  }
};

// Directory A: DejaVu Sans, Liberation Serif, basic.ttf, wingdings.ttf,
// collection.ttc (3 faces); B: NanumGothic. The package: 40 package-only
// fonts "Pkg00".."Pkg39" (basic.ttf's record, no file; font n has basic.ttf's
// characters n units wider and its kerning deltas n units smaller); chains
// "Liberation Serif" and "굴림" -> NanumGothic; default fonts DejaVu Sans,
// DejaVu Sans, NanumGothic, DejaVu Sans, DejaVu Sans; script defaults
// 56 -> NanumGothic ("sf") and 56 -> Liberation Serif ("sf_ko-KR").
struct Scenario {
  TempDir root;
  std::string dirA, dirB, packageDir;
  static const Scenario& get();  // built once per process
};
constexpr int kScenarioFaceCount = 8;
constexpr int kPackageFontCount = 40;
std::string packageFontName(int n);

struct ManagerRig {
  std::unique_ptr<qro_ni::DefaultFontInfoFileExtracter> extracter;
  std::unique_ptr<TestFontManager> manager;
  TestFontManager* operator->() const { return manager.get(); }
};

// An initialised manager on `storage` (ending in "/"), with the package
// or with none.
ManagerRig start(const std::string& storage, const std::vector<std::string>& directories,
                 bool package = true);

// A text with its spaces as "_".
std::string spaced(std::string text);

// One query of tests/data/manager_scripts.tsv (its header lists them) and
// the answer; safe to call from several threads at once.
std::string ask(qro_common::FontManager& manager, const std::string& token);

}  // namespace kelfont_test
