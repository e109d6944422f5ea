#include "base/Log.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/LogCapture.h"

namespace {

TEST(Log, ProfileLinesCarryPrioritySixAndTheTag) {
  kelfont_test::LogCapture capture;
  qro_base::logProfile("Elapsed Time of ZipFile == %.3f sec", 0.0125);
  auto lines = capture.lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].priority, 6);
  EXPECT_EQ(lines[0].tag, "QRO-NATIVE-PROFILE");
  EXPECT_EQ(lines[0].message, "Elapsed Time of ZipFile == 0.013 sec");
}

TEST(Log, LongLinesAreNotCut) {
  kelfont_test::LogCapture capture;
  std::string longText(3000, 'x');
  qro_base::androidLogPrint(6, "T", "%s|", longText.c_str());
  ASSERT_EQ(capture.messages().size(), 1u);
  EXPECT_EQ(capture.messages()[0], longText + "|");
}

TEST(Log, WithoutHookLinesGoToStandardError) {
  testing::internal::CaptureStderr();
  qro_base::logProfile("hello %d", 42);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "E/QRO-NATIVE-PROFILE: hello 42\n");
}

}  // namespace
