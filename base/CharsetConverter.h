#pragma once
// Character-set conversion services that a host can install in the
// Environment; BufferedReader uses them to turn bytes into UTF-16 units.

namespace qro_base {

class ICharsetConverter {
 public:
  virtual ~ICharsetConverter() = default;
  // Converts the bytes [source, source + sourceLength) into UTF-16 units at
  // [target, target + targetLength). `last` tells that no bytes follow, so an
  // incomplete sequence at the end must be converted (or dropped) rather
  // than kept for the next call. Stores the units written in `produced` and
  // returns the number of bytes consumed.
  virtual unsigned Convert(const char* source, unsigned sourceLength, unsigned short* target,
                           unsigned targetLength, bool last, unsigned& produced) = 0;
};

// Hands out the converter of an encoding; the manager keeps ownership.
class CharsetConverterManager {
 public:
  virtual ~CharsetConverterManager() = default;
  // nullptr when the encoding is not supported.
  virtual ICharsetConverter* GetConverter(unsigned encoding) = 0;
};

}  // namespace qro_base
