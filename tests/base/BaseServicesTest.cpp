// Small services of the base layer: logging, the environment's ownership
// rule, file helpers. Math helpers and locales: tests/data/base_functions.tsv.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "base/Environment.h"
#include "base/FileUtils.h"
#include "base/Log.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::TempDir;
using qro_base::confirmFilePathExists;
using qro_base::Environment;
using qro_base::isFileExists;

// Profile lines carry priority 6 and the tag, long lines are not cut, and
// without a hook lines go to standard error.
TEST(Log, LinesReachTheHookWholeOrStandardError) {
  {
    kelfont_test::LogCapture capture;
    qro_base::logProfile("Elapsed Time of ZipFile == %.3f sec", 0.0125);
    const std::string longText(3000, 'x');
    qro_base::androidLogPrint(6, "T", "%s|", longText.c_str());
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].priority, 6);
    EXPECT_EQ(lines[0].tag, "QRO-NATIVE-PROFILE");
    EXPECT_EQ(lines[0].message, "Elapsed Time of ZipFile == 0.013 sec");
    EXPECT_EQ(lines[1].message, longText + "|");
  }
  testing::internal::CaptureStderr();
  qro_base::logProfile("hello %d", 42);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "E/QRO-NATIVE-PROFILE: hello 42\n");
}

class CountedLoader : public qro_base::IResourceLoader {
 public:
  explicit CountedLoader(int& destroyed) : destroyed_(destroyed) {}
  ~CountedLoader() override { ++destroyed_; }

 private:
  int& destroyed_;
};

// Every service and path setter goes through one ownership rule: the
// replaced object is destroyed, the last one goes with the environment.
TEST(Environment, SettersDestroyTheObjectTheyReplace) {
  int destroyed = 0;
  {
    Environment env;
    env.SetResourceLoader(new CountedLoader(destroyed));
    auto* second = new CountedLoader(destroyed);
    env.SetResourceLoader(second);
    EXPECT_EQ(env.GetResourceLoader(), second);
    EXPECT_EQ(destroyed, 1);
    // The leak checker of the sanitizer build would report a lost string.
    env.SetClipboardPath(new std::string("/data/old/"));
    env.SetClipboardPath(new std::string("/data/new/"));
    EXPECT_EQ(*env.GetClipboardPath(), "/data/new/");
  }
  EXPECT_EQ(destroyed, 2);
  Environment env;
  env.SetResourceLoader(new CountedLoader(destroyed));
  env.SetResourceLoader(nullptr);
  EXPECT_EQ(destroyed, 3);
}

bool isDirectory(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Every component is created (mode 0775 under a zero umask), the last one
// too, trailing separator or not, and backslashes separate as well; what
// exists is accepted, even a plain file, but nothing below a file.
TEST(FileUtils, ConfirmFilePathExistsCreatesEveryComponent) {
  TempDir dir;
  mode_t saved = umask(0);
  bool created = confirmFilePathExists((dir.path() + "/a/b/c/").c_str());
  umask(saved);
  ASSERT_TRUE(created);
  for (const char* part : {"a", "a/b", "a/b/c"}) {
    struct stat info;
    ASSERT_EQ(stat(dir.file(part).c_str(), &info), 0) << part;
    EXPECT_TRUE(S_ISDIR(info.st_mode)) << part;
    EXPECT_EQ(info.st_mode & 07777, 0775u) << part;
  }
  EXPECT_TRUE(confirmFilePathExists(dir.file("a/b/d").c_str()));
  EXPECT_TRUE(isDirectory(dir.file("a/b/d")));
  EXPECT_TRUE(confirmFilePathExists(dir.file("p\\q").c_str()));
  EXPECT_TRUE(isDirectory(dir.file("p\\q")));
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("f"), "x"));
  EXPECT_TRUE(confirmFilePathExists("/"));
  EXPECT_TRUE(confirmFilePathExists(dir.file("f").c_str()));
  EXPECT_FALSE(confirmFilePathExists(dir.file("f/sub/deeper").c_str()));
  EXPECT_FALSE(confirmFilePathExists(""));
  EXPECT_FALSE(confirmFilePathExists(nullptr));
  // isFileExists sees files and folders.
  EXPECT_TRUE(isFileExists(dir.file("f").c_str()));
  EXPECT_TRUE(isFileExists(dir.path().c_str()));
  EXPECT_FALSE(isFileExists(dir.file("missing").c_str()));
  EXPECT_FALSE(isFileExists(nullptr));
}

}  // namespace
