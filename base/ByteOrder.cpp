#include "base/ByteOrder.h"

#include <cstdint>

namespace qro_base {

namespace {

// Reads `count` bytes (at most 4) into a little-endian value; false at the end.
bool readBytes(InputStream& in, int count, std::uint32_t& value) {
  value = 0;
  for (int i = 0; i < count; ++i) {
    int byte = in.Read();
    if (byte < 0) return false;
    value |= static_cast<std::uint32_t>(byte & 0xFF) << (8 * i);
  }
  return true;
}

// Plain form: the end of input reads as 0xFF bytes.
std::uint32_t readBytesPlain(InputStream& in, int count) {
  std::uint32_t value = 0;
  for (int i = 0; i < count; ++i) {
    value |= static_cast<std::uint32_t>(in.Read() & 0xFF) << (8 * i);
  }
  return value;
}

bool writeBytes(OutputStream& out, int count, std::uint32_t value) {
  char bytes[4];
  for (int i = 0; i < count; ++i) bytes[i] = static_cast<char>((value >> (8 * i)) & 0xFF);
  return out.Write(bytes, static_cast<unsigned>(count));
}

}  // namespace

unsigned short readUInt16(InputStream& in) {
  return static_cast<unsigned short>(readBytesPlain(in, 2));
}

int readInt32(InputStream& in) { return static_cast<int>(readBytesPlain(in, 4)); }

unsigned int readUInt32(InputStream& in) { return readBytesPlain(in, 4); }

int WriteInt32(OutputStream& out, int value) {
  return writeBytes(out, 4, static_cast<std::uint32_t>(value)) ? 4 : 0;
}

bool readUInt8(InputStream& in, unsigned char& value) {
  std::uint32_t v;
  if (!readBytes(in, 1, v)) return false;
  value = static_cast<unsigned char>(v);
  return true;
}

bool readUInt16(InputStream& in, unsigned short& value) {
  std::uint32_t v;
  if (!readBytes(in, 2, v)) return false;
  value = static_cast<unsigned short>(v);
  return true;
}

bool readInt16(InputStream& in, short& value) {
  std::uint32_t v;
  if (!readBytes(in, 2, v)) return false;
  value = static_cast<short>(static_cast<std::uint16_t>(v));
  return true;
}

bool readInt32(InputStream& in, int& value) {
  std::uint32_t v;
  if (!readBytes(in, 4, v)) return false;
  value = static_cast<int>(v);
  return true;
}

bool readUInt32(InputStream& in, unsigned int& value) {
  std::uint32_t v;
  if (!readBytes(in, 4, v)) return false;
  value = v;
  return true;
}

bool writeUInt8(OutputStream& out, unsigned char value) { return writeBytes(out, 1, value); }

bool writeUInt16(OutputStream& out, unsigned short value) { return writeBytes(out, 2, value); }

bool writeInt16(OutputStream& out, short value) {
  return writeBytes(out, 2, static_cast<std::uint16_t>(value));
}

void appendUInt8(std::string& bytes, unsigned char value) {
  bytes.push_back(static_cast<char>(value));
}

void appendUInt16(std::string& bytes, unsigned short value) {
  bytes.push_back(static_cast<char>(value & 0xFF));
  bytes.push_back(static_cast<char>(value >> 8));
}

void appendInt32(std::string& bytes, int value) {
  std::uint32_t v = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

}  // namespace qro_base
