#pragma once

#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace qro_common {

// One character's metrics: the horizontal advance in font design units.
// Binary form: the advance as two bytes, low byte first.
class CharMetrics {
 public:
  CharMetrics() = default;
  explicit CharMetrics(unsigned short advance) : advance_(advance) {}
  CharMetrics(const CharMetrics&) = default;
  CharMetrics& operator=(const CharMetrics&) = default;

  unsigned short GetAdvance() const { return advance_; }
  void SetAdvance(unsigned short advance) { advance_ = advance; }

  // False when the input ended before two bytes.
  bool Read(qro_base::InputStream& in);
  // False when the stream refused the bytes.
  bool Write(qro_base::OutputStream& out) const;

  bool operator==(const CharMetrics& other) const { return advance_ == other.advance_; }
  bool operator!=(const CharMetrics& other) const { return advance_ != other.advance_; }

 private:
  unsigned short advance_ = 0;
};

}  // namespace qro_common
