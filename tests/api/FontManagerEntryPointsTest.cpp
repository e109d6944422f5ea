#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::FontManager;

std::vector<std::string> directories(FontManager& manager) {
  std::vector<std::string> out;
  for (const std::string* path : manager.GetFontDirectoryPathList()) out.push_back(*path);
  return out;
}

class FontManagerDoor : public testing::Test {
 protected:
  void TearDown() override {
    UnInitFontManager();
    SetSharedFontPath("");
    SetUserFontPath("");
  }
  kelfont_test::TempDir dir_;
};

TEST_F(FontManagerDoor, NullPathsAreRefusedWithTheirLogLines) {
  kelfont_test::LogCapture log;
  EXPECT_FALSE(InitFontManager(nullptr, "x/"));
  EXPECT_FALSE(InitFontManager("x/", nullptr));
  EXPECT_EQ(FontManager::instance, nullptr);
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"InitFontManager", "qrfontZipPath is NULL ! ",
                                                      "InitFontManager", "extractPath is NULL ! "}));
  for (const auto& line : log.lines()) {
    EXPECT_EQ(line.priority, 6);
    EXPECT_EQ(line.tag, "QRO-NATIVE-PROFILE");
  }
}

TEST_F(FontManagerDoor, StartsOnTheSetFoldersAndShutsDownOnce) {
  const std::string storage = dir_.path() + "/";
  SetSharedFontPath((dir_.path() + "/shared/").c_str());
  SetUserFontPath((dir_.path() + "/user/").c_str());
  kelfont_test::LogCapture log;
  ASSERT_TRUE(InitFontManager(storage.c_str(), storage.c_str()));
  ASSERT_NE(FontManager::instance, nullptr);
  EXPECT_EQ(FontManager::instance->GetStoragePath(), storage);
  EXPECT_EQ(directories(*FontManager::instance),
            (std::vector<std::string>{"/system/fonts/", dir_.path() + "/shared/", dir_.path() + "/user/"}));

  // Later changes are not seen by the running manager.
  SetUserFontPath("/elsewhere/");
  EXPECT_EQ(directories(*FontManager::instance).back(), dir_.path() + "/user/");

  UnInitFontManager();
  UnInitFontManager();  // silent: nothing left to destroy
  EXPECT_EQ(FontManager::instance, nullptr);
  auto messages = log.messages();
  ASSERT_GE(messages.size(), 3u);
  EXPECT_EQ(messages.front(), "InitFontManager");
  EXPECT_TRUE(std::regex_match(messages[messages.size() - 2],
                               std::regex(R"(Elapsed Time of fontManager initialize\(\) == \d+\.\d{3} sec)")))
      << messages[messages.size() - 2];
  EXPECT_EQ(messages.back(), "UnInitFontManager");
}

TEST_F(FontManagerDoor, WithoutSettersOnlyTheSystemFolderIsScanned) {
  const std::string storage = dir_.path() + "/";
  ASSERT_TRUE(InitFontManager(storage.c_str(), storage.c_str()));
  EXPECT_EQ(directories(*FontManager::instance), std::vector<std::string>{"/system/fonts/"});
}

TEST_F(FontManagerDoor, FacadeMembersDriveTheSameDoor) {
  const std::string storage = dir_.path() + "/";
  CKelFontWidth facade;
  facade.SetQrfontZipPath(storage.c_str());
  facade.SetExtractPath(storage.c_str());
  facade.SetFontPath((dir_.path() + "/a/").c_str());
  facade.SetFontPath((dir_.path() + "/b/").c_str());
  EXPECT_EQ(facade.InitExtracter(), 0);
  ASSERT_TRUE(facade.InitFontManager());
  ASSERT_NE(FontManager::instance, nullptr);
  EXPECT_EQ(directories(*FontManager::instance),
            (std::vector<std::string>{"/system/fonts/", dir_.path() + "/a/", dir_.path() + "/b/"}));
  facade.UnInitFontManager();
  EXPECT_EQ(FontManager::instance, nullptr);
}

}  // namespace
