#pragma once
// A font table and data directory for the font list readers' tests.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <string>

#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"
#include "tests/support/TempDir.h"

namespace kelfont_test {

// Registers a regular face named `name`; with a file path unless `path` is
// empty. Returns the font index.
inline int addFont(qro_common::FontTable& table, const std::string& name,
                   const std::string& path = "/fonts/any.ttf",
                   const std::map<int, std::string>& localized = {}) {
  auto* info = new qro_common::FontInfo();
  info->SetFontName(new std::string(name));
  if (!path.empty()) info->SetFilePath(new std::string(path));
  for (const auto& [lang, localName] : localized) info->AddLocalizedName(lang, localName);
  return table.RegisterFontInfo(info, false);
}

// A data directory (with a trailing "/") holding an "FInfo/" folder.
struct ListDirs {
  TempDir temp;
  std::string data = temp.path() + "/data/";
  ListDirs() {
    mkdir(data.c_str(), 0775);
    mkdir((data + "FInfo").c_str(), 0775);
  }
  std::string file(const std::string& name) const { return data + "FInfo/" + name; }
};

class ListTest : public ::testing::Test {
 protected:
  // True when `path` names a directory.
  bool isDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  }
  ListDirs dirs;
  qro_common::FontTable table;
};

}  // namespace kelfont_test
