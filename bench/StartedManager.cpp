#include "bench/StartedManager.h"

#include "native/DefaultFontInfoFileExtracter.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_bench {

StartedManager::StartedManager(const std::string& storage, const std::string& packageFolder,
                               const std::vector<std::string>& fontFolders)
    : extracter_(std::make_unique<qro_ni::DefaultFontInfoFileExtracter>(storage, packageFolder)),
      manager_(std::make_unique<kelfont_tool::ToolFontManager>(extracter_.get(), storage,
                                                               fontFolders)) {}

StartedManager::~StartedManager() = default;

void StartedManager::Start() { manager_->Initialize(); }

}  // namespace kelfont_bench
