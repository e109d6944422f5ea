#include "base/InflateInputStream.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "tests/base/MemoryStreams.h"

namespace {

using kelfont_test::MemoryInputStream;
using qro_base::InflateInputStream;

std::string compressed(const std::string& data) {
  uLongf size = compressBound(data.size());
  std::string out(size, '\0');
  EXPECT_EQ(compress(reinterpret_cast<Bytef*>(&out[0]), &size,
                     reinterpret_cast<const Bytef*>(data.data()), data.size()),
            Z_OK);
  out.resize(size);
  return out;
}

// Text that compresses well, long enough for several input and output blocks.
std::string sampleText() {
  std::string text;
  for (int i = 0; i < 6000; ++i) text += "line " + std::to_string(i * 7919 % 10007) + "\n";
  return text;
}

// Bytes that do not compress (a linear congruential sequence).
std::string noise(size_t size) {
  std::string bytes(size, '\0');
  unsigned state = 12345;
  for (char& c : bytes) {
    state = state * 1103515245u + 12345u;
    c = static_cast<char>(state >> 24);
  }
  return bytes;
}

// Inflates `packed` announced as `length` bytes, both ways; the result of
// Read(buffer, count) and of Read() into a destination of `length` bytes.
std::pair<int, int> inflateBoth(const std::string& packed, unsigned length, std::string* out) {
  std::vector<char> buffer(length + 1, '#');
  MemoryInputStream source(packed);
  InflateInputStream in(source, length);
  int plain = in.Read(buffer.data(), 1);  // the count does not limit the output
  EXPECT_EQ(buffer.back(), '#');
  if (out != nullptr) *out = std::string(buffer.data(), plain > 0 ? plain : 0);
  MemoryInputStream again(packed);
  InflateInputStream into(again, length, buffer.data(), length);
  return {plain, into.Read()};
}

TEST(InflateInputStream, RestoresCompressedData) {
  for (const std::string& data : {sampleText(), noise(50000), std::string("x"), std::string()}) {
    SCOPED_TRACE(data.size());
    std::string packed = compressed(data);
    std::string out;
    auto size = static_cast<int>(data.size());
    EXPECT_EQ(inflateBoth(packed, static_cast<unsigned>(data.size()), &out),
              std::make_pair(size, size));
    EXPECT_EQ(out, data);
    // A source that delivers a few bytes at a time.
    MemoryInputStream slow(packed, 7);
    InflateInputStream in(slow, static_cast<unsigned>(data.size()));
    EXPECT_EQ(in.Available(), packed.size());
    std::vector<char> buffer(data.size() + 1);
    EXPECT_EQ(in.Read(buffer.data(), 1), size);
    EXPECT_EQ(in.Status(), Z_OK);
  }
  // Shorter data than announced gives its length.
  std::string out;
  EXPECT_EQ(inflateBoth(compressed("hello"), 100, &out).first, 5);
  EXPECT_EQ(out, "hello");
}

TEST(InflateInputStream, CorruptOrTruncatedDataGivesNothing) {
  std::string data = sampleText();
  auto length = static_cast<unsigned>(data.size());
  std::string packed = compressed(data);
  std::string badHeader = packed;
  badHeader[0] = '\x00';
  std::string badChecksum = packed;
  badChecksum.back() ^= 1;
  for (const std::string& bad : {badHeader, badChecksum, noise(40000)}) {
    EXPECT_EQ(inflateBoth(bad, length, nullptr), std::make_pair(0, Z_DATA_ERROR));
  }
  for (size_t keep : {size_t{0}, size_t{2}, packed.size() / 2, packed.size() - 1}) {
    EXPECT_EQ(inflateBoth(packed.substr(0, keep), length, nullptr), std::make_pair(0, Z_BUF_ERROR))
        << keep;
  }
  // Damage inside the compressed body: whatever zlib makes of it, no success.
  for (size_t at = 2; at + 16 < packed.size(); at += 97) {
    std::string bad = packed;
    for (size_t i = at; i < at + 16; ++i) bad[i] = static_cast<char>(~bad[i]);
    std::vector<char> buffer(data.size());
    MemoryInputStream source(bad);
    InflateInputStream in(source, length);
    EXPECT_EQ(in.Read(buffer.data(), length), 0) << at;
    EXPECT_LT(in.Status(), 0) << at;
  }
}

TEST(InflateInputStream, NeverWritesPastTheAnnouncedSize) {
  std::string data = sampleText();
  std::string packed = compressed(data);
  const unsigned small = 20000;  // more than one output block, less than the data
  std::vector<char> buffer(small + 64, '#');
  MemoryInputStream source(packed);
  InflateInputStream in(source, small);
  EXPECT_EQ(in.Read(buffer.data(), static_cast<unsigned>(buffer.size())), 0);
  EXPECT_EQ(std::string(buffer.data(), small), data.substr(0, small));
  EXPECT_EQ(std::string(buffer.data() + small, 64), std::string(64, '#'));

  MemoryInputStream again(packed);
  InflateInputStream into(again, static_cast<unsigned>(data.size()), buffer.data(), small);
  EXPECT_EQ(into.Read(), Z_BUF_ERROR);
  EXPECT_EQ(std::string(buffer.data() + small, 64), std::string(64, '#'));
}

TEST(InflateInputStream, ReadWithoutDestinationAndCloseDoNothing) {
  MemoryInputStream source(compressed("abc"));
  InflateInputStream plain(source, 3);
  EXPECT_EQ(plain.Read(), 0);
  EXPECT_EQ(source.reads, 0);
  EXPECT_TRUE(plain.Close());
  EXPECT_FALSE(plain.Skip(1));
  EXPECT_EQ(source.closes, 0);
  char buffer[3];
  EXPECT_EQ(plain.Read(buffer, 3), 3);
  EXPECT_EQ(std::string(buffer, 3), "abc");
}

}  // namespace
