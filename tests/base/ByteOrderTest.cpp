#include "base/ByteOrder.h"

#include <gtest/gtest.h>

#include <string>

#include "base/MemoryInputStream.h"
#include "tests/base/MemoryStreams.h"

namespace {

// A view: `s` must outlive the stream.
qro_base::MemoryInputStream over(const std::string& s) {
  return qro_base::MemoryInputStream(s.data(), static_cast<unsigned>(s.size()));
}

TEST(ByteOrder, PlainReadersAreLittleEndianAndTakeTheEndAsFF) {
  std::string data("\x34\x12\xFE\xFF\xFF\xFF\x78\x56\x34\x12\x01", 11);
  auto in = over(data);
  EXPECT_EQ(qro_base::readUInt16(in), 0x1234);
  EXPECT_EQ(qro_base::readInt32(in), -2);
  EXPECT_EQ(qro_base::readUInt32(in), 0x12345678u);
  EXPECT_EQ(qro_base::readUInt16(in), 0xFF01);
}

TEST(ByteOrder, CheckedReadersGiveValuesAndFailOnTruncation) {
  std::string data("\x7F\x88\xFF\x34\x12\x00\x00\x00\x80\xFF\xFF\xFF\xFF\x01\x02\x03", 16);
  auto in = over(data);
  unsigned char u8 = 0;
  short s16 = 0;
  unsigned short u16 = 0;
  int s32 = 0;
  unsigned u32 = 0;
  ASSERT_TRUE(qro_base::readUInt8(in, u8));
  EXPECT_EQ(u8, 0x7F);
  ASSERT_TRUE(qro_base::readInt16(in, s16));
  EXPECT_EQ(s16, -120);
  ASSERT_TRUE(qro_base::readUInt16(in, u16));
  EXPECT_EQ(u16, 0x1234);
  ASSERT_TRUE(qro_base::readInt32(in, s32));
  EXPECT_EQ(s32, -2147483647 - 1);
  ASSERT_TRUE(qro_base::readUInt32(in, u32));
  EXPECT_EQ(u32, 0xFFFFFFFFu);
  EXPECT_FALSE(qro_base::readInt32(in, s32));  // three bytes left
  std::string one("\x01", 1);
  auto last = over(one);
  EXPECT_FALSE(qro_base::readUInt16(last, u16));
}

TEST(ByteOrder, WritersAndAppendersAreLittleEndian) {
  kelfont_test::MemoryOutputStream out;
  EXPECT_EQ(qro_base::WriteInt32(out, -2147483647 - 1), 4);
  EXPECT_TRUE(qro_base::writeUInt8(out, 0xAB));
  EXPECT_TRUE(qro_base::writeUInt16(out, 0x1234));
  EXPECT_TRUE(qro_base::writeInt16(out, -120));
  EXPECT_EQ(out.data, std::string("\x00\x00\x00\x80\xAB\x34\x12\x88\xFF", 9));
  out.fail = true;
  EXPECT_EQ(qro_base::WriteInt32(out, 1), 0);
  EXPECT_FALSE(qro_base::writeUInt16(out, 1));

  std::string bytes;
  qro_base::appendUInt8(bytes, 0x01);
  qro_base::appendUInt16(bytes, 0xBEEF);
  qro_base::appendInt32(bytes, 0x0A0B0C0D);
  EXPECT_EQ(bytes, std::string("\x01\xEF\xBE\x0D\x0C\x0B\x0A", 7));
}

}  // namespace
