#include <gtest/gtest.h>

#include "base/Environment.h"
#include "native/DefaultFontManager.h"

namespace {

using List = std::vector<std::string>;

List directories(qro_common::FontManager& manager) {
  List out;
  for (const std::string* path : manager.GetFontDirectoryPathList()) out.push_back(*path);
  return out;
}

TEST(DefaultFontManagerTest, SystemFontsComeFirst) {
  qro_ni::DefaultFontManager one(nullptr, "/data/store/", "/sdcard/fonts");
  EXPECT_EQ(one.GetStoragePath(), "/data/store/");
  EXPECT_EQ(directories(one), (List{"/system/fonts/", "/sdcard/fonts"}));
  qro_ni::DefaultFontManager none(nullptr, "/s/", List{});
  EXPECT_EQ(directories(none), List{"/system/fonts/"});

  // The user directory replaces the third of three entries, or is appended.
  qro_ni::DefaultFontManager three(nullptr, "/s/", List{"/shared/", "/old/"});
  three.SetUserFontDirectoryPath(new std::string("/user/"));
  EXPECT_EQ(directories(three), (List{"/system/fonts/", "/shared/", "/user/"}));
  qro_ni::DefaultFontManager four(nullptr, "/s/", List{"/a", "/b/", "/a"});
  four.SetUserFontDirectoryPath(new std::string("/user/"));
  EXPECT_EQ(directories(four), (List{"/system/fonts/", "/a", "/b/", "/a", "/user/"}));

  // The environment is created on first use; its storage path is taken.
  delete qro_base::Global::pInstance;
  qro_base::Global::pInstance = nullptr;
  EXPECT_EQ(qro_ni::DefaultFontManager(nullptr).GetStoragePath(), "");
  ASSERT_NE(qro_base::Global::pInstance, nullptr);
  qro_base::Global::pInstance->SetFileStoragePath(new std::string("/data/app/files/"));
  qro_ni::DefaultFontManager fromEnvironment(nullptr);
  EXPECT_EQ(fromEnvironment.GetStoragePath(), "/data/app/files/");
  EXPECT_EQ(directories(fromEnvironment), List{"/system/fonts/"});
}

}  // namespace
