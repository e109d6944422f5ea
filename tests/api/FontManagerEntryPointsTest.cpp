#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::FontManager;
using List = std::vector<std::string>;

List directories() {
  List out;
  for (const std::string* path : FontManager::instance->GetFontDirectoryPathList()) {
    out.push_back(*path);
  }
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
  const std::string storage_ = dir_.path() + "/";
};

TEST_F(FontManagerDoor, NullPathsAreRefusedWithTheirLogLines) {
  kelfont_test::LogCapture log;
  EXPECT_FALSE(InitFontManager(nullptr, "x/"));
  EXPECT_FALSE(InitFontManager("x/", nullptr));
  EXPECT_EQ(FontManager::instance, nullptr);
  EXPECT_EQ(log.messages(), (List{"InitFontManager", "qrfontZipPath is NULL ! ", "InitFontManager",
                                  "extractPath is NULL ! "}));
  for (const auto& line : log.lines()) {
    EXPECT_EQ(line.priority, 6);
    EXPECT_EQ(line.tag, "QRO-NATIVE-PROFILE");
  }
  // Without the setters only the system folder is scanned.
  ASSERT_TRUE(InitFontManager(storage_.c_str(), storage_.c_str()));
  EXPECT_EQ(directories(), List{"/system/fonts/"});
}

TEST_F(FontManagerDoor, StartsOnTheSetFoldersAndShutsDownOnce) {
  SetSharedFontPath((dir_.path() + "/shared/").c_str());
  SetUserFontPath((dir_.path() + "/user/").c_str());
  kelfont_test::LogCapture log;
  ASSERT_TRUE(InitFontManager(storage_.c_str(), storage_.c_str()));
  EXPECT_EQ(FontManager::instance->GetStoragePath(), storage_);
  EXPECT_EQ(directories(),
            (List{"/system/fonts/", dir_.path() + "/shared/", dir_.path() + "/user/"}));
  SetUserFontPath("/elsewhere/");  // not seen by the running manager
  EXPECT_EQ(directories().back(), dir_.path() + "/user/");

  UnInitFontManager();
  UnInitFontManager();  // silent: nothing left to destroy
  EXPECT_EQ(FontManager::instance, nullptr);
  auto messages = log.messages();
  ASSERT_GE(messages.size(), 3u);
  EXPECT_EQ(messages.front(), "InitFontManager");
  EXPECT_EQ(messages.back(), "UnInitFontManager");  // the start's time line before it
}

TEST_F(FontManagerDoor, FacadeMembersDriveTheSameDoor) {
  CKelFontWidth facade;
  facade.SetQrfontZipPath(storage_.c_str());
  facade.SetExtractPath(storage_.c_str());
  facade.SetFontPath((dir_.path() + "/a/").c_str());
  facade.SetFontPath((dir_.path() + "/b/").c_str());
  EXPECT_EQ(facade.InitExtracter(), 0);
  ASSERT_TRUE(facade.InitFontManager());
  EXPECT_EQ(directories(), (List{"/system/fonts/", dir_.path() + "/a/", dir_.path() + "/b/"}));
  facade.UnInitFontManager();
  EXPECT_EQ(FontManager::instance, nullptr);
}

}  // namespace
