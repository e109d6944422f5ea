#include "native/DefaultFontManager.h"

#include "base/Environment.h"

namespace qro_ni {

DefaultFontManager::DefaultFontManager(qro_common::FontInfoFileExtracter* extracter)
    : FontManager(extracter) {
  const std::string* storage = qro_base::ensureEnvironment().GetFileStoragePath();
  if (storage != nullptr) SetStoragePath(*storage);
  AddFontDirectoryPath(kSystemFontDirectory);
}

DefaultFontManager::DefaultFontManager(qro_common::FontInfoFileExtracter* extracter,
                                       const std::string& storagePath,
                                       const std::string& fontDirectory)
    : FontManager(extracter) {
  SetStoragePath(storagePath);
  AddFontDirectoryPath(kSystemFontDirectory);
  AddFontDirectoryPath(fontDirectory);
}

DefaultFontManager::DefaultFontManager(qro_common::FontInfoFileExtracter* extracter,
                                       const std::string& storagePath,
                                       const std::vector<std::string>& fontDirectories)
    : FontManager(extracter) {
  SetStoragePath(storagePath);
  AddFontDirectoryPath(kSystemFontDirectory);
  for (const std::string& directory : fontDirectories) AddFontDirectoryPath(directory);
}

DefaultFontManager::~DefaultFontManager() = default;

}  // namespace qro_ni
