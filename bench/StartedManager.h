#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qro_ni {
class DefaultFontInfoFileExtracter;
}
namespace kelfont_tool {
class ToolFontManager;
}

namespace kelfont_bench {

// What a host's start-up builds: the package extracter and a font manager
// over exactly the given font folders, with its cache under `storage`.
// Start() runs the manager's Initialize().
class StartedManager {
 public:
  StartedManager(const std::string& storage, const std::string& packageFolder,
                 const std::vector<std::string>& fontFolders);
  ~StartedManager();
  StartedManager(const StartedManager&) = delete;
  StartedManager& operator=(const StartedManager&) = delete;

  void Start();
  kelfont_tool::ToolFontManager& Manager() { return *manager_; }

 private:
  std::unique_ptr<qro_ni::DefaultFontInfoFileExtracter> extracter_;
  std::unique_ptr<kelfont_tool::ToolFontManager> manager_;
};

}  // namespace kelfont_bench
