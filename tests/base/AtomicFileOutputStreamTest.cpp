#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "base/AtomicFileOutputStream.h"
#include "base/FileUtils.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::LogCapture;
using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_base::AtomicFileOutputStream;

const std::string kOld = "the old content, longer than the new one";

std::ptrdiff_t entryCount(const std::string& directory) {
  return std::distance(std::filesystem::directory_iterator(directory), {});
}

TEST(AtomicFileOutputStream, FailuresKeepTheOldFileAndAreLogged) {
  TempDir dir;
  struct Case {
    const char* what;
    std::string path;
    std::string reason;
  };
  ASSERT_EQ(mkdir(dir.file("folder").c_str(), 0755), 0);
  std::vector<Case> cases = {
      {"full disk", dir.file("big"), "File too large"},
      {"no folder", dir.file("missing/file"), "No such file or directory"},
      {"rename onto a folder", dir.file("folder"), "Is a directory"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    bool hadOld = c.reason == "File too large";
    if (hadOld) {
      ASSERT_TRUE(writeFile(c.path, kOld));
    }
    const std::ptrdiff_t entriesBefore = entryCount(dir.path());
    LogCapture log;
    bool committed;
    {
      // Past 4096 bytes every write fails; the C library notices when it
      // hands its buffer over, at the latest when the stream is synced.
      kelfont_test::FileSizeLimit limit(hadOld ? 4096 : RLIM_INFINITY);
      ASSERT_TRUE(limit.ok());
      AtomicFileOutputStream out(c.path);
      std::string block(1000, 'x');
      for (int i = 0; i < 10; ++i) out.Write(block.data(), static_cast<unsigned>(block.size()));
      committed = out.Commit();
    }
    EXPECT_FALSE(committed);
    EXPECT_EQ(log.messages(), std::vector<std::string>{"Cannot write " + c.path + ": " + c.reason});
    if (hadOld) {
      EXPECT_EQ(readFile(c.path), kOld);
    }
    EXPECT_EQ(entryCount(dir.path()), entriesBefore) << "a temporary file was left";
  }
  // Without the limit, the same file is replaced whole.
  AtomicFileOutputStream out(dir.file("big"));
  EXPECT_TRUE(out.Write("new", 3) && out.Commit());
  EXPECT_EQ(readFile(dir.file("big")), "new");
}

}  // namespace
