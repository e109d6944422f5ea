#include "base/BufferedReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/DefaultCharsetConverterManager.h"
#include "base/Environment.h"
#include "base/FileInputStream.h"
#include "tests/base/MemoryStreams.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::MemoryInputStream;
using qro_base::BufferedReader;
using qro_base::kEncodingUtf8;
using Units = std::vector<int>;

class BufferedReaderTest : public testing::Test {
 protected:
  void SetUp() override {
    qro_base::ensureEnvironment().SetCharsetConverterManager(
        new qro_base::DefaultCharsetConverterManager());
  }
  void TearDown() override { qro_base::ensureEnvironment().SetCharsetConverterManager(nullptr); }
};

Units readAll(BufferedReader& reader) {
  Units units;
  for (int unit; (unit = reader.Read()) != -1;) units.push_back(unit);
  return units;
}

Units readUtf8(const std::string& bytes, unsigned size) {
  BufferedReader reader(new MemoryInputStream(bytes), kEncodingUtf8, size);
  EXPECT_TRUE(reader.IsOpen());
  Units units = readAll(reader);
  EXPECT_EQ(reader.Read(), -1);
  return units;
}

TEST_F(BufferedReaderTest, TurnsUtf8IntoUtf16Units) {
  // "A", e acute, euro sign, U+1F600 (a surrogate pair), "z".
  std::string text = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
  Units expected{0x41, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0x7A};
  EXPECT_EQ(readUtf8(text, 32768), expected);
  // Characters cut by every possible block boundary come out whole.
  for (unsigned size = 4; size <= 12; ++size) EXPECT_EQ(readUtf8(text, size), expected) << size;
  // Ends at an exact multiple of the buffer size.
  EXPECT_EQ(readUtf8("abcdefgh", 4), (Units{'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'}));
  EXPECT_EQ(readUtf8("", 4), Units{});
}

TEST_F(BufferedReaderTest, MalformedBytesBecomeReplacementCharacters) {
  const int R = 0xFFFD;
  EXPECT_EQ(readUtf8("\xC0\xAF", 16), (Units{R, R}));              // overlong lead, stray byte
  EXPECT_EQ(readUtf8("\xED\xA0\x80", 16), (Units{R, R, R}));       // encoded surrogate
  EXPECT_EQ(readUtf8("\xF4\x90\x80\x80", 16), (Units{R, R, R, R}));  // above U+10FFFF
  EXPECT_EQ(readUtf8("\xE2\x28\xA1", 16), (Units{R, '(', R}));
  EXPECT_EQ(readUtf8("\xFF" "a", 16), (Units{R, 'a'}));
  // A character cut off by the end of the source, also right at a block end.
  EXPECT_EQ(readUtf8("A\xE2\x82", 16), (Units{'A', R}));
  EXPECT_EQ(readUtf8("ABC\xF0", 4), (Units{'A', 'B', 'C', R}));
  EXPECT_EQ(readUtf8("ABC\xF0\x9F", 4), (Units{'A', 'B', 'C', R}));
}

TEST_F(BufferedReaderTest, ReadsAFileAndCountsWhatIsLeft) {
  kelfont_test::TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("t"), "abcdef\n\xEC\x95\x88"));
  BufferedReader reader(new qro_base::FileInputStream(dir.file("t")), kEncodingUtf8, 4);
  EXPECT_EQ(reader.Available(), 10u);
  EXPECT_EQ(reader.Read(), 'a');
  EXPECT_EQ(reader.Available(), 9u);
  EXPECT_EQ(readAll(reader), (Units{'b', 'c', 'd', 'e', 'f', '\n', 0xC548}));
  EXPECT_EQ(reader.Available(), 0u);
  EXPECT_TRUE(reader.Close());
}

TEST_F(BufferedReaderTest, IsNotOpenWithoutAConverter) {
  BufferedReader unknown(new MemoryInputStream("abc"), 949, 16);
  EXPECT_FALSE(unknown.IsOpen());
  EXPECT_EQ(unknown.Read(), -1);
  EXPECT_EQ(unknown.Available(), 0u);

  qro_base::ensureEnvironment().SetCharsetConverterManager(nullptr);
  BufferedReader noManager(new MemoryInputStream("abc"), kEncodingUtf8, 16);
  EXPECT_FALSE(noManager.IsOpen());
  EXPECT_EQ(noManager.Read(), -1);

  BufferedReader sizeless(new MemoryInputStream("abc"), kEncodingUtf8, 0);
  EXPECT_FALSE(sizeless.IsOpen());
  EXPECT_EQ(sizeless.Read(), -1);
}

}  // namespace
