#pragma once

#include "base/InputStream.h"
#include "base/OutputStream.h"
#include "common/font_info/CharMetrics.h"

namespace qro_common {

// The advances of the characters of one Unicode-range bit (or of one block
// of it). A range answers for any code: codes outside what it covers have
// no metrics and are not visible.
//
// Binary form: Write() puts the type byte first, then the body; Read()
// reads the body only (the container reads the type byte to pick the
// kind). Read() checks what it reads and returns false on damaged or
// truncated input, leaving the range empty. Write() returns false, writing
// nothing, for a range whose bounds are not a valid code range (such a
// range covers nothing and could not be read back), and when the stream
// refuses the bytes.
class CharMetricsRange {
 public:
  enum Type { kEmpty = 0, kSingle = 1, kMulti = 2, kZipped = 3 };

  virtual ~CharMetricsRange() = default;
  virtual int GetType() const = 0;
  // The metrics of `code`, or null. The pointer stays valid until the range
  // is changed, read again or destroyed.
  virtual CharMetrics* Get(unsigned int code) = 0;
  virtual bool IsVisibleChar(unsigned int code) const = 0;
  virtual bool Read(qro_base::InputStream& in) = 0;
  virtual bool Write(qro_base::OutputStream& out) const = 0;

 protected:
  CharMetricsRange() = default;
  CharMetricsRange(const CharMetricsRange&) = default;
  CharMetricsRange& operator=(const CharMetricsRange&) = default;
};

}  // namespace qro_common
