#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/InflateInputStream.h"
#include "tests/base/MemoryStreams.h"

namespace {

using kelfont_test::MemoryInputStream;
using qro_base::InflateInputStream;

std::string compressed(const std::string& data) {
  uLongf size = compressBound(data.size());
  std::string out(size, '\0');
  compress(reinterpret_cast<Bytef*>(&out[0]), &size, reinterpret_cast<const Bytef*>(data.data()),
           data.size());
  return out.substr(0, size);
}

// Bytes that do not compress (a linear congruential sequence).
std::string noise(size_t size) {
  std::string bytes(size, '\0');
  unsigned state = 12345;
  for (char& c : bytes) c = static_cast<char>((state = state * 1103515245u + 12345u) >> 24);
  return bytes;
}

// Inflates `packed`, announced as `length` bytes, from a source giving `chunk` bytes a read,
// both ways: what Read(buffer, 1) answers and what Read() into a destination of `room` bytes
// answers, as "PLAIN RESULT". The first way's bytes go to *out. Nothing may land past `length`
// or `room`, and the status is Z_OK exactly when the first way succeeds (or nothing was
// announced). (Z_DATA_ERROR is -3, Z_BUF_ERROR -5.)
std::string inflate(const std::string& packed, unsigned length, unsigned room,
                    std::string* out = nullptr, unsigned chunk = ~0u) {
  std::vector<char> buffer(length + 64, '#');
  MemoryInputStream source(packed, chunk);
  InflateInputStream in(source, length);
  EXPECT_EQ(in.Available(), packed.size());
  const int plain = in.Read(buffer.data(), 1);  // the count does not limit the output
  EXPECT_EQ(plain > 0 || length == 0, in.Status() == Z_OK);
  EXPECT_EQ(std::string(buffer.data() + length, 64), std::string(64, '#'));
  if (out != nullptr) out->assign(buffer.data(), plain > 0 ? plain : std::min(length, 20000u));
  std::fill(buffer.begin(), buffer.end(), '#');
  MemoryInputStream again(packed);
  InflateInputStream into(again, length, buffer.data(), room);
  const int result = into.Read();
  EXPECT_EQ(std::string(buffer.data() + room, 64), std::string(64, '#'));
  return std::to_string(plain) + " " + std::to_string(result);
}

TEST(InflateInputStream, RestoresWhatZlibCompressedAndNothingElse) {
  std::string text, out;
  for (int i = 0; i < 6000; ++i) text += "line " + std::to_string(i * 7919 % 10007) + "\n";
  // Text for several input and output blocks, bytes that do not compress, a byte, nothing;
  // from a source giving it all at once and 7 bytes a read.
  for (const std::string& data : {text, noise(50000), std::string("x"), std::string()}) {
    const auto n = static_cast<unsigned>(data.size());
    for (unsigned chunk : {~0u, 7u}) {
      EXPECT_EQ(inflate(compressed(data), n, n, &out, chunk),
                std::to_string(n) + " " + std::to_string(n));
      EXPECT_EQ(out, data);
    }
  }
  // Shorter data than announced gives its length.
  EXPECT_EQ(inflate(compressed("hello"), 100, 100), "5 5");
  const auto length = static_cast<unsigned>(text.size());
  const std::string packed = compressed(text);
  // More data than announced, or than the destination holds: the first 20000 bytes are
  // written, none past them.
  EXPECT_EQ(inflate(packed, 20000, 20000, &out), "0 -5");
  EXPECT_EQ(out, text.substr(0, 20000));
  EXPECT_EQ(inflate(packed, length, 20000), std::to_string(length) + " -5");
  std::string badHeader = packed, badChecksum = packed;
  badHeader[0] = '\x00';
  badChecksum.back() ^= 1;
  for (const std::string& bad : {badHeader, badChecksum, noise(40000)}) {
    EXPECT_EQ(inflate(bad, length, length), "0 -3");
  }
  for (size_t keep : {size_t{0}, size_t{2}, packed.size() / 2, packed.size() - 1}) {
    EXPECT_EQ(inflate(packed.substr(0, keep), length, length), "0 -5") << keep;
  }
  // Damage inside the compressed body: whatever zlib makes of it, no success.
  for (size_t at = 2; at + 16 < packed.size(); at += 97) {
    std::string bad = packed;
    for (size_t i = at; i < at + 16; ++i) bad[i] = static_cast<char>(~bad[i]);
    EXPECT_EQ(inflate(bad, length, length).substr(0, 2), "0 ") << at;
  }
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
