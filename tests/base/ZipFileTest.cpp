#include "base/ZipFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "base/ZipEntryInputStream.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::TempDir;
using Listing = std::vector<std::pair<std::string, int64_t>>;

// Every case runs once with zziplib (true) and once with minizip (false).
class ZipFileBackEnd : public ::testing::TestWithParam<bool> {
 protected:
  bool zzip() const { return GetParam(); }
  TempDir dir_;
};

std::string backEndName(const ::testing::TestParamInfo<bool>& info) {
  return info.param ? "ZZip" : "MiniZip";
}

TEST_P(ZipFileBackEnd, ListsAndReadsAnIndependentlyWrittenArchive) {
  std::string path = kelfont_test::writePythonArchive(dir_);
  ASSERT_FALSE(path.empty());
  kelfont_test::LogCapture capture;
  {
    qro_base::ZipFile zip(path.c_str(), zzip());
    Listing expected = {{"Fdata/", 0}, {"Fdata/0", 256}, {"Ftable", 8890}, {"fc", 0}};
    EXPECT_EQ(kelfont_test::listing(zip), expected);
    bool ok = false;
    EXPECT_EQ(kelfont_test::readEntry(zip, "Fdata/0", &ok), kelfont_test::storedBytes());
    EXPECT_TRUE(ok);
    EXPECT_EQ(kelfont_test::readEntry(zip, "Ftable", &ok), kelfont_test::deflatedText());
    EXPECT_TRUE(ok);
    // Reading an entry a second time starts again from its first byte.
    EXPECT_EQ(kelfont_test::readEntry(zip, "Fdata/0", &ok), kelfont_test::storedBytes());
    // Names are compared exactly.
    for (const char* name : {"ftable", "Fdata", "Ftable ", ""}) {
      EXPECT_EQ(zip.GetEntry(name), nullptr) << name;
    }
    EXPECT_EQ(zip.GetEntry(nullptr), nullptr);
    qro_base::ZipEntryInputStream in(zip, "FC");
    EXPECT_FALSE(in.IsOpen());
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

TEST_P(ZipFileBackEnd, InputsThatAreNotZipArchivesGiveNoEntries) {
  std::string path = kelfont_test::writePythonArchive(dir_);
  ASSERT_FALSE(path.empty());
  std::string whole = kelfont_test::readFile(path);
  ASSERT_GT(whole.size(), 100u);
  ASSERT_TRUE(kelfont_test::writeFile(dir_.file("half.zip"), whole.substr(0, whole.size() / 2)));
  // Everything but the last byte of the end record.
  ASSERT_TRUE(kelfont_test::writeFile(dir_.file("short.zip"), whole.substr(0, whole.size() - 1)));
  ASSERT_TRUE(kelfont_test::writeFile(dir_.file("text.zip"), "this is not a zip archive\n"));
  ASSERT_TRUE(kelfont_test::writeFile(dir_.file("empty.zip"), ""));
  ASSERT_EQ(mkdir(dir_.file("folder.zip").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo(dir_.file("fifo.zip").c_str(), 0600), 0);  // would block a plain open

  kelfont_test::LogCapture capture;
  for (const char* name :
       {"half.zip", "text.zip", "empty.zip", "folder.zip", "fifo.zip", "missing/none.zip", ""}) {
    SCOPED_TRACE(name);
    qro_base::ZipFile zip(dir_.file(name).c_str(), zzip());
    EXPECT_TRUE(zip.GetEntries().empty());
    std::vector<qro_base::ZipEntry*> entries;
    EXPECT_FALSE(zip.GetImpl()->GetEntries(entries));
    qro_base::ZipEntryInputStream in(zip, "Ftable");
    EXPECT_FALSE(in.IsOpen());
    EXPECT_FALSE(zip.GetImpl()->OpenEntry("Ftable"));
    char buffer[8];
    EXPECT_EQ(zip.GetImpl()->ReadEntry(buffer, sizeof buffer), 0);
    EXPECT_FALSE(zip.GetImpl()->CloseEntry());
  }
  // Each archive, opened or not, logs its elapsed time.
  EXPECT_EQ(capture.messages().size(), 7u);
  qro_base::ZipFile noPath(nullptr, zzip());
  EXPECT_TRUE(noPath.GetEntries().empty());
  // A damaged end record: whatever the back end makes of it, nothing breaks.
  qro_base::ZipFile zip(dir_.file("short.zip").c_str(), zzip());
  for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
    bool ok = false;
    kelfont_test::readEntry(zip, entry->GetName().c_str(), &ok);
  }
}

// Entries of other compression methods are listed but give no bytes (least
// of all compressed data); corrupt deflate data fails the read without
// consuming the entry.
TEST_P(ZipFileBackEnd, UnreadableEntriesGiveNoBytes) {
  static const char kProgram[] = R"(
import sys, zipfile
text = ''.join('line %d\n' % i for i in range(1000)).encode()
with zipfile.ZipFile(sys.argv[1], 'w') as z:
    z.writestr('bzip2', text, compress_type=zipfile.ZIP_BZIP2)
    z.writestr('lzma', text, compress_type=zipfile.ZIP_LZMA)
    z.writestr('corrupt', text, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('deflate', b'abc', compress_type=zipfile.ZIP_DEFLATED)
with zipfile.ZipFile(sys.argv[1]) as z:
    info = z.getinfo('corrupt')
data = bytearray(open(sys.argv[1], 'rb').read())
start = info.header_offset + 30 + len(info.filename) + len(info.extra)
# 0xFF starts a final block of the reserved type 3: invalid at once.
for i in range(start, start + info.compress_size):
    data[i] = 0xFF
open(sys.argv[1], 'wb').write(data)
)";
  std::string path = dir_.file("unreadable.zip");
  ASSERT_TRUE(kelfont_test::runPython(dir_, kProgram, {path}));
  qro_base::ZipFile zip(path.c_str(), zzip());
  EXPECT_EQ(kelfont_test::listing(zip),
            (Listing{{"bzip2", 8890}, {"lzma", 8890}, {"corrupt", 8890}, {"deflate", 3}}));
  for (const char* name : {"bzip2", "lzma", "corrupt"}) {
    SCOPED_TRACE(name);
    qro_base::ZipEntryInputStream in(zip, name);
    ASSERT_TRUE(in.IsOpen());
    std::vector<char> buffer(in.Available());
    EXPECT_LE(in.Read(buffer.data(), 10000), 0);
    EXPECT_EQ(in.Available(), 8890u);
    EXPECT_EQ(in.Read(), -1);
    in.Close();
  }
  bool ok = false;
  EXPECT_EQ(kelfont_test::readEntry(zip, "deflate", &ok), "abc");
  EXPECT_TRUE(ok);
}

TEST_P(ZipFileBackEnd, EntryNamesOf256BytesOrMoreAreHandledSafely) {
  static const char kProgram[] = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1], 'w') as z:
    z.writestr('Fdata/' + 'n' * 294, b'long name', compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('d' * 255, b'255', compress_type=zipfile.ZIP_STORED)
    z.writestr('after', b'still here', compress_type=zipfile.ZIP_DEFLATED)
)";
  std::string path = dir_.file("long.zip");
  ASSERT_TRUE(kelfont_test::runPython(dir_, kProgram, {path}));
  std::string longName = "Fdata/" + std::string(294, 'n');
  std::string name255(255, 'd');
  qro_base::ZipFile zip(path.c_str(), zzip());
  bool ok = false;
  if (zzip()) {
    EXPECT_EQ(kelfont_test::listing(zip), (Listing{{longName, 9}, {name255, 3}, {"after", 10}}));
    EXPECT_EQ(kelfont_test::readEntry(zip, longName.c_str(), &ok), "long name");
    EXPECT_TRUE(ok);
  } else {
    // minizip's 256-byte name buffer: the listed name is cut to 256 bytes
    // and that entry cannot be opened.
    std::string cut = longName.substr(0, 256);
    EXPECT_EQ(kelfont_test::listing(zip), (Listing{{cut, 9}, {name255, 3}, {"after", 10}}));
    EXPECT_EQ(zip.GetEntry(longName.c_str()), nullptr);
    qro_base::ZipEntryInputStream in(zip, cut.c_str());
    ASSERT_TRUE(in.IsOpen());
    char buffer[9];
    EXPECT_LT(in.Read(buffer, 1000), 0);
    EXPECT_EQ(in.Available(), 9u);
    EXPECT_EQ(in.Read(), -1);
    EXPECT_FALSE(in.Close());
  }
  EXPECT_EQ(kelfont_test::readEntry(zip, name255.c_str(), &ok), "255");
  EXPECT_TRUE(ok);
  EXPECT_EQ(kelfont_test::readEntry(zip, "after", &ok), "still here");
  EXPECT_TRUE(ok);
}

TEST_P(ZipFileBackEnd, DamagedDirectoriesNeverOverrunTheReader) {
  std::string path = kelfont_test::writePythonArchive(dir_);
  ASSERT_FALSE(path.empty());
  const std::string original = kelfont_test::readFile(path);
  size_t directory = original.find(std::string("PK\x01\x02", 4));
  ASSERT_NE(directory, std::string::npos);
  std::string damagedPath = dir_.file("damaged.zip");
  // Every byte of the central directory and end record, in turn, inverted.
  for (size_t at = directory; at < original.size(); ++at) {
    SCOPED_TRACE(at);
    std::string damaged = original;
    damaged[at] = static_cast<char>(~damaged[at]);
    ASSERT_TRUE(kelfont_test::writeFile(damagedPath, damaged));
    qro_base::ZipFile zip(damagedPath.c_str(), zzip());
    ASSERT_LE(zip.GetEntries().size(), 4u);
    for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
      qro_base::ZipEntryInputStream in(zip, entry->GetName().c_str());
      if (!in.IsOpen() || in.Available() > (1u << 20)) continue;
      unsigned available = in.Available();
      std::vector<char> buffer(available);
      int read = in.Read(buffer.data(), available + 4096);
      EXPECT_LE(read, static_cast<int>(available));
      in.Close();
    }
  }
}

TEST_P(ZipFileBackEnd, NamesTooLongForZziplibKeepItsArchivesClosed) {
  // The overlong name's directory header is placed around the 64 KiB mark
  // of the file, where a chunked scan would cut it.
  static const char kProgram[] = R"(
import sys, zipfile
def write(path, pad):
    with zipfile.ZipFile(path, 'w') as z:
        z.writestr('p', b'.' * pad, compress_type=zipfile.ZIP_STORED)
        z.writestr('Fdata/' + 'n' * 64995, b'x', compress_type=zipfile.ZIP_STORED)
    data = open(path, 'rb').read()
    return data.find(b'PK\x01\x02', data.find(b'PK\x01\x02') + 1)
for target in range(65530, 65575, 3):
    path = '%s/long%d.zip' % (sys.argv[1], target)
    pad = target - write(path, 0)
    assert write(path, pad) == target
# A name of exactly 65000 bytes is still accepted.
with zipfile.ZipFile(sys.argv[1] + '/fits.zip', 'w') as z:
    z.writestr('f' * 65000, b'ok', compress_type=zipfile.ZIP_STORED)
)";
  ASSERT_TRUE(kelfont_test::runPython(dir_, kProgram, {dir_.path()}));
  for (int target = 65530; target < 65575; target += 3) {
    SCOPED_TRACE(target);
    qro_base::ZipFile zip(dir_.file("long" + std::to_string(target) + ".zip").c_str(), zzip());
    if (zzip()) {
      EXPECT_TRUE(zip.GetEntries().empty());
    } else {
      ASSERT_EQ(zip.GetEntries().size(), 2u);
      EXPECT_EQ(zip.GetEntries()[1]->GetName(), "Fdata/" + std::string(250, 'n'));
    }
  }
  qro_base::ZipFile zip(dir_.file("fits.zip").c_str(), zzip());
  ASSERT_EQ(zip.GetEntries().size(), 1u);
  if (zzip()) {
    bool ok = false;
    EXPECT_EQ(kelfont_test::readEntry(zip, std::string(65000, 'f').c_str(), &ok), "ok");
    EXPECT_TRUE(ok);
  }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, ZipFileBackEnd, ::testing::Bool(), backEndName);

}  // namespace
