#include <gtest/gtest.h>

#include "base/Environment.h"
#include "native/DefaultFontManager.h"

namespace {

std::vector<std::string> directories(qro_common::FontManager& manager) {
  std::vector<std::string> out;
  for (const std::string* path : manager.GetFontDirectoryPathList()) out.push_back(*path);
  return out;
}

TEST(DefaultFontManagerTest, SystemFontsComeFirst) {
  using List = std::vector<std::string>;
  qro_ni::DefaultFontManager one(nullptr, "/data/store/", "/sdcard/fonts");
  EXPECT_EQ(one.GetStoragePath(), "/data/store/");
  EXPECT_EQ(directories(one), (List{"/system/fonts/", "/sdcard/fonts"}));

  qro_ni::DefaultFontManager none(nullptr, "/s/", List{});
  EXPECT_EQ(directories(none), List{"/system/fonts/"});
  qro_ni::DefaultFontManager two(nullptr, "/s/", List{"/a", "/b/", "/a"});
  EXPECT_EQ(directories(two), (List{"/system/fonts/", "/a", "/b/", "/a"}));

  // The user directory replaces the third of three entries, or is appended.
  two.SetUserFontDirectoryPath(new std::string("/user/"));
  EXPECT_EQ(directories(two), (List{"/system/fonts/", "/a", "/b/", "/a", "/user/"}));
  qro_ni::DefaultFontManager three(nullptr, "/s/", List{"/shared/", "/old/"});
  three.SetUserFontDirectoryPath(new std::string("/user/"));
  EXPECT_EQ(directories(three), (List{"/system/fonts/", "/shared/", "/user/"}));
}

TEST(DefaultFontManagerTest, StoragePathFromTheEnvironment) {
  delete qro_base::Global::pInstance;
  qro_base::Global::pInstance = nullptr;
  {
    qro_ni::DefaultFontManager unset(nullptr);
    ASSERT_NE(qro_base::Global::pInstance, nullptr);  // created on first use
    EXPECT_EQ(unset.GetStoragePath(), "");
    EXPECT_EQ(directories(unset), std::vector<std::string>{"/system/fonts/"});
  }
  qro_base::Global::pInstance->SetFileStoragePath(new std::string("/data/app/files/"));
  qro_ni::DefaultFontManager set(nullptr);
  EXPECT_EQ(set.GetStoragePath(), "/data/app/files/");
}

}  // namespace
