#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "base/ZipEntryInputStream.h"
#include "base/ZipFile.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::TempDir;

// Every case runs once with zziplib (true) and once with minizip (false).
class ZipFileBackEnd : public ::testing::TestWithParam<bool> {
 protected:
  bool zzip() const { return GetParam(); }
  // Runs the Python program that writes dir_/name; returns the path.
  std::string python(const char* program, const std::string& name) {
    std::string path = dir_.file(name);
    EXPECT_TRUE(kelfont_test::runPython(program, {path}));
    return path;
  }
  TempDir dir_;
};

std::string backEndName(const ::testing::TestParamInfo<bool>& info) {
  return info.param ? "ZZip" : "MiniZip";
}

// Every entry lists and reads as Python's zipfile module extracted it, but
// those of methods the readers do not take and the damaged one; reading an
// entry again starts again from its first byte.
TEST_P(ZipFileBackEnd, ListsAndReadsEveryEntryAsPythonDoes) {
  std::string manifest;
  std::string path = kelfont_test::writePythonArchive(dir_, &manifest);
  ASSERT_FALSE(path.empty());
  kelfont_test::LogCapture capture;
  {
    qro_base::ZipFile zip(path.c_str(), zzip());
    EXPECT_EQ(kelfont_test::listing(zip), manifest);
    for (int pass = 0; pass < 2; ++pass) {
      for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
        const std::string& name = entry->GetName();
        bool ok = false;
        const std::string bytes = kelfont_test::readEntry(zip, name.c_str(), &ok);
        EXPECT_EQ(ok, name != "bzip2" && name != "lzma" && name != "corrupt") << name;
        if (ok && name.back() != '/') {
          EXPECT_EQ(bytes, kelfont_test::readFile(path + ".d/" + name)) << name;
        }
      }
    }
    // The back end stops at the end of the entry.
    ASSERT_TRUE(zip.GetImpl()->OpenEntry("Fdata/0"));
    std::vector<char> buffer(256);
    EXPECT_EQ(zip.GetImpl()->ReadEntry(buffer.data(), 100000), 256);
    EXPECT_EQ(zip.GetImpl()->ReadEntry(buffer.data(), 100000), 0);
    EXPECT_TRUE(zip.GetImpl()->CloseEntry());
    EXPECT_FALSE(zip.GetImpl()->CloseEntry());
    EXPECT_TRUE(capture.lines().empty());
  }
  auto lines = capture.lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].priority, 6);
  EXPECT_EQ(lines[0].tag, "QRO-NATIVE-PROFILE");
  EXPECT_TRUE(std::regex_match(lines[0].message,
                               std::regex(R"(Elapsed Time of ZipFile == \d+\.\d{3} sec)")))
      << lines[0].message;
}

// Inputs that are no archive give no entries (and still log their time).
// Damaged directories: the package fuzz target.
TEST_P(ZipFileBackEnd, NonArchivesGiveNoEntries) {
  std::string path = kelfont_test::writePythonArchive(dir_);
  ASSERT_FALSE(path.empty());
  const std::string original = kelfont_test::readFile(path);
  ASSERT_TRUE(
      kelfont_test::writeFile(dir_.file("half.zip"), original.substr(0, original.size() / 2)));
  ASSERT_TRUE(kelfont_test::writeFile(dir_.file("empty.zip"), ""));
  ASSERT_EQ(mkdir(dir_.file("folder.zip").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo(dir_.file("fifo.zip").c_str(), 0600), 0);  // would block a plain open
  kelfont_test::LogCapture capture;
  for (const char* name : {"half.zip", "empty.zip", "folder.zip", "fifo.zip", "missing/none.zip"}) {
    qro_base::ZipFile zip(dir_.file(name).c_str(), zzip());
    EXPECT_TRUE(zip.GetEntries().empty()) << name;
    EXPECT_FALSE(zip.GetImpl()->OpenEntry("Ftable")) << name;
    char buffer[8];
    EXPECT_EQ(zip.GetImpl()->ReadEntry(buffer, sizeof buffer), 0);
  }
  EXPECT_EQ(capture.messages().size(), 5u);
  EXPECT_TRUE(qro_base::ZipFile(nullptr, zzip()).GetEntries().empty());
}

// minizip lists names of 256 bytes and more cut to 256 bytes, and cannot
// open those entries. zziplib keeps an archive closed when a directory
// header holds a name over 65000 bytes (placed around the 64 KiB mark of
// the file, where a chunked scan would cut it); minizip lists it cut.
TEST_P(ZipFileBackEnd, LongEntryNames) {
  static const char kProgram[] = R"(
import os, sys, zipfile
folder = os.path.dirname(sys.argv[1])
with zipfile.ZipFile(sys.argv[1], 'w') as z:
    z.writestr('Fdata/' + 'n' * 294, b'long name', compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('d' * 255, b'255', compress_type=zipfile.ZIP_STORED)
    z.writestr('f' * 65000, b'ok', compress_type=zipfile.ZIP_STORED)
def write(path, pad):
    with zipfile.ZipFile(path, 'w') as z:
        z.writestr('p', b'.' * pad, compress_type=zipfile.ZIP_STORED)
        z.writestr('Fdata/' + 'n' * 64995, b'x', compress_type=zipfile.ZIP_STORED)
    data = open(path, 'rb').read()
    return data.find(b'PK\x01\x02', data.find(b'PK\x01\x02') + 1)
for target in range(65530, 65575, 3):
    path = '%s/long%d.zip' % (folder, target)
    pad = target - write(path, 0)
    assert write(path, pad) == target
)";
  const std::string longName = "Fdata/" + std::string(294, 'n');
  const std::string name255(255, 'd');
  const std::string name65000(65000, 'f');
  qro_base::ZipFile zip(python(kProgram, "long.zip").c_str(), zzip());
  bool ok = false;
  EXPECT_EQ(kelfont_test::readEntry(zip, name255.c_str(), &ok), "255");
  EXPECT_TRUE(ok);
  if (zzip()) {
    EXPECT_EQ(kelfont_test::listing(zip),
              longName + " 9\n" + name255 + " 3\n" + name65000 + " 2\n");
    EXPECT_EQ(kelfont_test::readEntry(zip, longName.c_str(), &ok), "long name");
    EXPECT_EQ(kelfont_test::readEntry(zip, name65000.c_str(), &ok), "ok");
    EXPECT_TRUE(ok);
  } else {
    std::string cut = longName.substr(0, 256);
    EXPECT_EQ(kelfont_test::listing(zip),
              cut + " 9\n" + name255 + " 3\n" + name65000.substr(0, 256) + " 2\n");
    EXPECT_EQ(zip.GetEntry(longName.c_str()), nullptr);
    qro_base::ZipEntryInputStream in(zip, cut.c_str());
    ASSERT_TRUE(in.IsOpen());
    char buffer[9];
    EXPECT_LT(in.Read(buffer, 1000), 0);
    EXPECT_EQ(in.Available(), 9u);
    EXPECT_FALSE(in.Close());
  }
  for (int target = 65530; target < 65575; target += 3) {
    qro_base::ZipFile overlong(dir_.file("long" + std::to_string(target) + ".zip").c_str(), zzip());
    if (zzip()) {
      EXPECT_TRUE(overlong.GetEntries().empty()) << target;
    } else {
      ASSERT_EQ(overlong.GetEntries().size(), 2u) << target;
      EXPECT_EQ(overlong.GetEntries()[1]->GetName(), "Fdata/" + std::string(250, 'n'));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, ZipFileBackEnd, ::testing::Bool(), backEndName);

}  // namespace
