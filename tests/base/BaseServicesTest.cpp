// Small services of the base layer: logging, the environment's ownership
// rule. Math helpers, locales, file helpers: tests/data/base_functions.tsv.
#include <gtest/gtest.h>

#include <string>

#include "base/Environment.h"
#include "base/Log.h"
#include "tests/support/LogCapture.h"

namespace {

using qro_base::Environment;

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

}  // namespace
