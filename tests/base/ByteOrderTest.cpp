#include "base/ByteOrder.h"

#include <gtest/gtest.h>

#include <string>

#include "base/MemoryInputStream.h"

namespace {

// Collects written bytes; can be told to refuse writes.
class StringOutput : public qro_base::OutputStream {
 public:
  StringOutput() { open_ = true; }
  bool Write(char c) override { return Write(&c, 1); }
  bool Write(const char* buffer, unsigned count) override {
    if (refuse) return false;
    bytes.append(buffer, count);
    return true;
  }
  bool Close() override { return true; }
  std::string bytes;
  bool refuse = false;
};

// A view: `s` must outlive the stream.
qro_base::MemoryInputStream over(const std::string& s) {
  return qro_base::MemoryInputStream(s.data(), static_cast<unsigned>(s.size()));
}

TEST(ByteOrder, PlainReadersAreLittleEndian) {
  std::string data("\x34\x12\x78\x56\x34\x12\xFE\xFF\xFF\xFF", 10);
  auto in = over(data);
  EXPECT_EQ(qro_base::readUInt16(in), 0x1234);
  EXPECT_EQ(qro_base::readInt32(in), 0x12345678);
  // The high bit set: -2 signed (read as 32 bits from FE FF FF FF).
  std::string tail = data.substr(6);
  auto in2 = over(tail);
  EXPECT_EQ(qro_base::readUInt32(in2), 0xFFFFFFFEu);
  auto in3 = over(tail);
  EXPECT_EQ(qro_base::readInt32(in3), -2);
}

TEST(ByteOrder, PlainReadersTakeTheEndAsFF) {
  std::string data("\x01", 1);
  auto in = over(data);
  EXPECT_EQ(qro_base::readUInt16(in), 0xFF01);
}

TEST(ByteOrder, WriteInt32WritesFourLowFirstBytes) {
  StringOutput out;
  EXPECT_EQ(qro_base::WriteInt32(out, -2147483647 - 1), 4);
  EXPECT_EQ(qro_base::WriteInt32(out, 0x0A0B0C0D), 4);
  EXPECT_EQ(out.bytes, std::string("\x00\x00\x00\x80\x0D\x0C\x0B\x0A", 8));
  out.refuse = true;
  EXPECT_EQ(qro_base::WriteInt32(out, 1), 0);
}

TEST(ByteOrder, SmallWritersAreLittleEndian) {
  StringOutput out;
  EXPECT_TRUE(qro_base::writeUInt8(out, 0xAB));
  EXPECT_TRUE(qro_base::writeUInt16(out, 0x1234));
  EXPECT_TRUE(qro_base::writeInt16(out, -120));
  EXPECT_EQ(out.bytes, std::string("\xAB\x34\x12\x88\xFF", 5));
  out.refuse = true;
  EXPECT_FALSE(qro_base::writeUInt16(out, 1));
}

TEST(ByteOrder, CheckedReadersGiveValues) {
  std::string data("\x7F\x88\xFF\x34\x12\x00\x00\x00\x80\xFF\xFF\xFF\xFF", 13);
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
  EXPECT_FALSE(qro_base::readUInt8(in, u8));
}

TEST(ByteOrder, CheckedReadersFailOnTruncation) {
  std::string data("\x01\x02\x03", 3);
  int s32 = 0;
  unsigned u32 = 0;
  unsigned short u16 = 0;
  auto in = over(data);
  EXPECT_FALSE(qro_base::readInt32(in, s32));
  auto in2 = over(data);
  EXPECT_FALSE(qro_base::readUInt32(in2, u32));
  std::string last = data.substr(2);
  auto in3 = over(last);
  EXPECT_FALSE(qro_base::readUInt16(in3, u16));
}

}  // namespace

namespace {

TEST(ByteOrder, AppendersMatchTheStreamWriters) {
  std::string bytes;
  qro_base::appendUInt8(bytes, 0x01);
  qro_base::appendUInt16(bytes, 0xBEEF);
  qro_base::appendInt32(bytes, -2);
  EXPECT_EQ(bytes, std::string("\x01\xEF\xBE\xFE\xFF\xFF\xFF", 7));
}

}  // namespace
