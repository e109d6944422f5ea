#pragma once

#include <string>
#include <vector>

#include "common/manager/FontManager.h"

namespace qro_ni {

// The platform's font manager: the system font directory "/system/fonts/"
// is always scanned first, then the given directories, in order (taken as
// they are: no separator is added, nothing is tested or deduplicated).
// Everything else is FontManager's.
class DefaultFontManager : public qro_common::FontManager {
 public:
  static constexpr const char* kSystemFontDirectory = "/system/fonts/";

  // Storage path: the environment's file storage path (the environment is
  // created when missing; empty when the host has not set the path).
  explicit DefaultFontManager(qro_common::FontInfoFileExtracter* extracter);
  DefaultFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storagePath,
                     const std::string& fontDirectory);
  DefaultFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storagePath,
                     const std::vector<std::string>& fontDirectories);
  ~DefaultFontManager() override;
};

}  // namespace qro_ni
