#pragma once

#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace qro_common {

// The font index assigned to each character of one Unicode-range bit (or
// of one block of it), -1 where none is. A range answers for any code:
// codes outside what it covers give -1.
//
// Binary form: Write() puts the type byte first, then the body; Read()
// reads the body only. Read() checks what it reads and returns false on
// damaged or truncated input, leaving the range empty. Write() returns
// false, writing nothing, for a range whose bounds are not a valid code
// range, and when the stream refuses the bytes.
class DefaultFontRange {
 public:
  enum Type { kEmpty = 0, kSingle = 1, kMulti = 2 };

  virtual ~DefaultFontRange() = default;
  virtual int GetType() const = 0;
  virtual short Get(unsigned int code) const = 0;
  virtual bool Read(qro_base::InputStream& in) = 0;
  virtual bool Write(qro_base::OutputStream& out) const = 0;

 protected:
  DefaultFontRange() = default;
  DefaultFontRange(const DefaultFontRange&) = default;
  DefaultFontRange& operator=(const DefaultFontRange&) = default;
};

}  // namespace qro_common
