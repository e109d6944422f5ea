#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "base/ZipEntryOutputStream.h"
#include "base/ZipFile.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::TempDir;

// The MS-DOS time and date fields of a zip header for the local time now.
std::string dosStampNow() {
  const std::time_t now = std::time(nullptr);
  std::tm t;
  localtime_r(&now, &t);
  const unsigned time = (t.tm_hour << 11) | (t.tm_min << 5) | (t.tm_sec / 2);
  const unsigned date = ((t.tm_year - 80) << 9) | ((t.tm_mon + 1) << 5) | t.tm_mday;
  return {static_cast<char>(time & 0xFF), static_cast<char>(time >> 8),
          static_cast<char>(date & 0xFF), static_cast<char>(date >> 8)};
}

bool put(qro_base::ZipEntryOutputStream& out, const std::string& name, const std::string& bytes) {
  qro_base::ZipEntry entry(name, static_cast<int64_t>(bytes.size()));
  if (!out.PutNextEntry(entry)) return false;
  if (!bytes.empty() && !out.Write(bytes.data(), static_cast<unsigned>(bytes.size()))) {
    return false;
  }
  return out.CloseEntry();
}

TEST(ZipEntryOutputStream, WritesTheExpectedBytesOnDisk) {
  TempDir dir;
  std::string path = dir.file("hello.zip");
  const std::string before = dosStampNow();
  {
    qro_base::ZipEntryOutputStream out(path.c_str());
    ASSERT_TRUE(out.IsOpen());
    ASSERT_TRUE(put(out, "hello.txt", "hello"));
    EXPECT_TRUE(out.Close());
  }
  const std::string after = dosStampNow();
  std::string bytes = kelfont_test::readFile(path);
  ASSERT_EQ(bytes.size(), 123u);

  // Local header, raw deflate of "hello", central header (internal
  // attributes: text), end record; the time stamps are set below.
  std::string expected = kelfont_test::unhex(
      "504B0304 1400 0000 0800 00000000 86A61036 07000000 05000000 0900 0000 68656C6C6F2E747874"
      "CB48CDC9C90700"
      "504B0102 0000 1400 0000 0800 00000000 86A61036 07000000 05000000 0900 0000 0000 0000 0100"
      "00000000 00000000 68656C6C6F2E747874"
      "504B0506 0000 0000 0100 0100 37000000 2E000000 0000");
  std::string stamp = bytes.substr(10, 4);
  EXPECT_TRUE(stamp == before || stamp == after);
  for (size_t at : {size_t{10}, size_t{46 + 12}}) expected.replace(at, 4, stamp);
  EXPECT_EQ(kelfont_test::escape(bytes), kelfont_test::escape(expected));
}

// Written over an existing file and finished by the destructor, the archive
// reads back with Python's zipfile module (the library's readers take the
// packages it writes in the tool and manager tests). The longest name the
// header holds fits; a longer one is refused (and still listed among the
// entries started). zziplib cannot read such an archive, so Python checks it.
TEST(ZipEntryOutputStream, RoundTripsThroughPython) {
  TempDir dir;
  std::string path = dir.file("round.zip");
  ASSERT_TRUE(kelfont_test::writeFile(path, std::string(100000, 'z')));
  std::string binary, text;
  for (int i = 0; i < 1024; ++i) binary += static_cast<char>(i);
  for (int i = 0; i < 1000; ++i) text += "line " + std::to_string(i) + "\n";
  const std::string tooLong(65536, 'x');
  {
    qro_base::ZipEntryOutputStream out(path.c_str());
    ASSERT_TRUE(out.IsOpen());
    ASSERT_TRUE(put(out, "Fdata/", ""));
    ASSERT_TRUE(put(out, "hello.txt", "hello"));
    ASSERT_TRUE(put(out, "Fdata/0", binary));
    // An entry written in pieces, and left open: the next one ends it.
    qro_base::ZipEntry table("Ftable", 0);
    ASSERT_TRUE(out.PutNextEntry(table));
    ASSERT_TRUE(out.Write(text.data(), 1000));
    ASSERT_TRUE(out.Write(text.data() + 1000, 1));
    ASSERT_TRUE(out.Write(text.data() + 1001, static_cast<unsigned>(text.size() - 1001)));
    ASSERT_TRUE(put(out, "Fdata/12", ""));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(put(out, tooLong, "no"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "error in opening " + tooLong + " in zipfile\n");
    ASSERT_TRUE(put(out, std::string(65535, 'y'), "fits"));
    EXPECT_EQ(out.GetEntries().size(), 7u);
  }
  static const char kCheck[] = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as z:
    assert z.testzip() is None
    for i in z.infolist():
        data = z.read(i)
        print(i.filename if len(i.filename) < 20 else len(i.filename), i.file_size, i.compress_type,
              '%08x' % i.CRC, data.hex() if len(data) < 16 else len(data))
)";
  std::string report;
  ASSERT_TRUE(kelfont_test::runPython(kCheck, {path}, &report));
  EXPECT_EQ(report,
            "Fdata/ 0 8 00000000 \n"
            "hello.txt 5 8 3610a686 68656c6c6f\n"
            "Fdata/0 1024 8 b70b4c26 1024\n"
            "Ftable 8890 8 66ddbfc9 8890\n"
            "Fdata/12 0 8 00000000 \n"
            "65535 4 8 fa501b18 66697473\n");
}

}  // namespace
