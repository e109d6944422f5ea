// The run measurement (FontManager::MeasureRun): any UTF-16 run in any
// font and style is measured, its advances sum to its total, every
// cluster begins with an advance and the cached answer equals the first.
// The manager scans the folders of KELFONT_FUZZ_FONTS (':'-separated;
// default the DejaVu and Noto folders of Debian) without a package.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "common/manager/WordCache.h"
#include "fuzz/FuzzSupport.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "native/DefaultFontManager.h"

namespace {

qro_common::FontManager& manager() {
  static qro_common::FontManager* instance = [] {
    const char* env = std::getenv("KELFONT_FUZZ_FONTS");
    std::vector<std::string> folders;
    std::istringstream list(
        env != nullptr && *env != '\0'
            ? env
            : "/usr/share/fonts/truetype/dejavu:/usr/share/fonts/truetype/noto");
    for (std::string folder; std::getline(list, folder, ':');) folders.push_back(folder);
    const std::string& base = kelfont_fuzz::scratch();
    auto* extracter = new qro_ni::DefaultFontInfoFileExtracter(base + "extract/", base);
    auto* m = new qro_ni::DefaultFontManager(extracter, base + "storage/", folders);
    m->Initialize();
    return m;
  }();
  return *instance;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  if (size < 1) return 0;
  const int font = (data[0] >> 2) - 4;  // also unknown indexes
  const bool bold = (data[0] & 1) != 0, italic = (data[0] & 2) != 0;
  std::u16string text;
  for (size_t i = 1; i + 1 < size; i += 2)
    text += static_cast<char16_t>(data[i] | data[i + 1] << 8);
  qro_common::RunMeasure first, second;
  if (!manager().MeasureRun(font, bold, italic, text.data(), text.size(), first)) {
    kelfont_fuzz::fail("an initialised manager refused a run");
  }
  double sum = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (!std::isfinite(first.advances[i])) kelfont_fuzz::fail("an advance is not finite");
    if (!first.clusterStarts[i] && first.advances[i] != 0)
      kelfont_fuzz::fail("an advance inside a cluster");
    sum += first.advances[i];
  }
  if (!text.empty() && !first.clusterStarts[0])
    kelfont_fuzz::fail("the run does not begin a cluster");
  if (std::fabs(sum - first.totalEm) > 1e-3 * (1 + std::fabs(sum)))
    kelfont_fuzz::fail("the total is not the sum");
  manager().MeasureRun(font, bold, italic, text.data(), text.size(), second);
  if (first.advances != second.advances || first.fonts != second.fonts ||
      first.clusterStarts != second.clusterStarts || first.totalEm != second.totalEm) {
    kelfont_fuzz::fail("a second measurement differs");
  }
  return 0;
}
