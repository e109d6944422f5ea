#pragma once

#include <string>
#include <vector>

#include "common/manager/FontManager.h"

namespace kelfont_tool {

// The font manager of the tool: the library's manager with exactly the
// font folders given. Unlike the platform manager it has no fixed system
// folder, so running the tool on a desktop neither scans nor creates
// "/system/fonts/".
class ToolFontManager : public qro_common::FontManager {
 public:
  ToolFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storagePath,
                  const std::vector<std::string>& fontDirectories);
};

}  // namespace kelfont_tool
