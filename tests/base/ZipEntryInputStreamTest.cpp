#include "base/ZipEntryInputStream.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/ZipFile.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/TempDir.h"

namespace {

// Every case runs once with zziplib (true) and once with minizip (false),
// on the archive written by Python's zipfile module.
class ZipEntryInputStreamTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    path_ = kelfont_test::writePythonArchive(dir_);
    ASSERT_FALSE(path_.empty());
    zip_ = std::make_unique<qro_base::ZipFile>(path_.c_str(), GetParam());
  }
  kelfont_test::TempDir dir_;
  std::string path_;
  std::unique_ptr<qro_base::ZipFile> zip_;
};

std::string backEndName(const ::testing::TestParamInfo<bool>& info) {
  return info.param ? "ZZip" : "MiniZip";
}

TEST_P(ZipEntryInputStreamTest, SingleByteReadsGiveUnsignedBytesThenMinusOne) {
  qro_base::ZipEntryInputStream in(*zip_, "Fdata/0");
  ASSERT_TRUE(in.IsOpen());
  EXPECT_FALSE(in.Skip(10));  // not supported
  for (int expected = 0; expected < 256; ++expected) {
    ASSERT_EQ(in.Read(), expected);  // 0xFF must come back as 255, not -1
    ASSERT_EQ(in.Available(), static_cast<unsigned>(255 - expected));
  }
  EXPECT_EQ(in.Read(), -1);
  char buffer[4];
  EXPECT_EQ(in.Read(buffer, sizeof buffer), -1);
  EXPECT_TRUE(in.Close());
  EXPECT_FALSE(in.IsOpen());
  EXPECT_FALSE(in.Close());
}

TEST_P(ZipEntryInputStreamTest, CountsBeyondTheRemainingBytesNeverOverrunTheBuffer) {
  for (const char* name : {"Ftable", "Fdata/0"}) {
    SCOPED_TRACE(name);
    qro_base::ZipEntryInputStream in(*zip_, name);
    ASSERT_TRUE(in.IsOpen());
    unsigned size = in.Available();
    // Part of the entry first, then "everything" into a buffer that holds
    // exactly the rest (heap-allocated, so the sanitizer build sees overruns).
    std::vector<char> head(10);
    ASSERT_EQ(in.Read(head.data(), 10), 10);
    std::vector<char> rest(in.Available());
    EXPECT_EQ(in.Read(rest.data(), 1u << 20), static_cast<int>(size - 10));
    EXPECT_EQ(in.Available(), 0u);
    EXPECT_EQ(in.Read(rest.data(), 1u << 20), -1);
    std::string all = std::string(head.begin(), head.end()) + std::string(rest.begin(), rest.end());
    EXPECT_EQ(all, std::string(name) == "Ftable" ? kelfont_test::deflatedText()
                                                : kelfont_test::storedBytes());
    EXPECT_TRUE(in.Close());
  }
  // The back end itself stops at the end of the entry.
  qro_base::ZipFileImpl* impl = zip_->GetImpl();
  ASSERT_TRUE(impl->OpenEntry("Fdata/0"));
  std::vector<char> buffer(256);
  EXPECT_EQ(impl->ReadEntry(buffer.data(), 100000), 256);
  EXPECT_EQ(impl->ReadEntry(buffer.data(), 100000), 0);
  EXPECT_TRUE(impl->CloseEntry());
  EXPECT_FALSE(impl->CloseEntry());
}

// An empty entry opens but gives nothing, and its Close() leaves the entry
// open in the back end; the entries after it still read.
TEST_P(ZipEntryInputStreamTest, EmptyEntriesAndEntriesOneAfterAnother) {
  for (const char* name : {"fc", "Fdata/"}) {
    qro_base::ZipEntryInputStream in(*zip_, name);
    EXPECT_TRUE(in.IsOpen()) << name;
    EXPECT_EQ(in.Read(), -1) << name;
    EXPECT_TRUE(in.Close());
    EXPECT_TRUE(zip_->GetImpl()->CloseEntry()) << name;
  }
  EXPECT_FALSE(qro_base::ZipEntryInputStream(*zip_, "Fdata/1").IsOpen());
  bool ok = false;
  EXPECT_EQ(kelfont_test::readEntry(*zip_, "Ftable", &ok), kelfont_test::deflatedText());
  EXPECT_TRUE(ok);
}

INSTANTIATE_TEST_SUITE_P(BackEnds, ZipEntryInputStreamTest, ::testing::Bool(), backEndName);

}  // namespace
