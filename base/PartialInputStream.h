#pragma once

#include "base/InputStream.h"

namespace qro_base {

// A view of the next `length` bytes of another stream, which is not owned
// and stays open when this one is closed. Its open flag is always false:
// test Available() instead.
class PartialInputStream : public InputStream {
 public:
  PartialInputStream(InputStream& source, unsigned length);

  // The source's next byte; -1 once length bytes were read.
  int Read() override;
  // Reads at most the remaining bytes.
  int Read(char* buffer, unsigned count) override;
  // Ends the view; the source stays open.
  bool Close() override;
  unsigned Available() override { return remaining_; }
  // The length given at construction.
  unsigned Length() const { return length_; }
  // Skips at most the remaining bytes in the source; the source's result.
  bool Skip(unsigned count) override;

 private:
  InputStream& source_;
  unsigned length_;
  unsigned remaining_;
};

}  // namespace qro_base
