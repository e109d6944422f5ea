#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_tool {

ToolFontManager::ToolFontManager(qro_common::FontInfoFileExtracter* extracter,
                                 const std::string& storagePath,
                                 const std::vector<std::string>& fontDirectories)
    : FontManager(extracter) {
  SetStoragePath(storagePath);
  for (const std::string& directory : fontDirectories) AddFontDirectoryPath(directory);
}

}  // namespace kelfont_tool
