#pragma once
// Little-endian integers on byte streams, one byte at a time through the
// stream's single-byte Read().
//
// The plain readers do not notice the end of input: a -1 from Read() is
// taken as the byte 0xFF. Readers of untrusted data use the checked forms,
// which fail (and leave `value` unspecified) as soon as Read() gives -1.

#include <string>

#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace qro_base {

unsigned short readUInt16(InputStream& in);
int readInt32(InputStream& in);
unsigned int readUInt32(InputStream& in);
// 4 when all four bytes were written, 0 otherwise.
int WriteInt32(OutputStream& out, int value);

bool readUInt8(InputStream& in, unsigned char& value);
bool readUInt16(InputStream& in, unsigned short& value);
bool readInt16(InputStream& in, short& value);
bool readInt32(InputStream& in, int& value);
bool readUInt32(InputStream& in, unsigned int& value);

bool writeUInt8(OutputStream& out, unsigned char value);
bool writeUInt16(OutputStream& out, unsigned short value);
bool writeInt16(OutputStream& out, short value);

// Append the little-endian bytes of a value to `bytes`, for writers that
// build a block in memory and write it at once.
void appendUInt8(std::string& bytes, unsigned char value);
void appendUInt16(std::string& bytes, unsigned short value);
void appendInt32(std::string& bytes, int value);

}  // namespace qro_base
