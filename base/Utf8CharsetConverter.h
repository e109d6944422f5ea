#pragma once

#include "base/CharsetConverter.h"

namespace qro_base {

// UTF-8 to UTF-16. Code points above U+FFFF become surrogate pairs. Each
// ill-formed part of the input (stray continuation bytes, overlong forms,
// encoded surrogates, values above U+10FFFF, sequences cut short) becomes
// one U+FFFD. A sequence cut off by the end of the input is left unconsumed
// for the next call unless `last` is set. Conversion stops early, without
// splitting a character, when the target is full.
class Utf8CharsetConverter : public ICharsetConverter {
 public:
  unsigned Convert(const char* source, unsigned sourceLength, unsigned short* target,
                   unsigned targetLength, bool last, unsigned& produced) override;
};

}  // namespace qro_base
