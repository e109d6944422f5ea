#pragma once

#include "base/BufferedInputStream.h"
#include "base/CharsetConverter.h"

namespace qro_base {

// Reads text as UTF-16 units: the bytes of the source, buffered in blocks of
// `size`, go through the converter of `encoding` that the environment's
// converter manager hands out. Without a manager or without a converter for
// the encoding the reader is not open and Read() gives -1. Characters split
// across blocks are joined when a whole character fits in the buffer (4
// bytes for UTF-8); with a smaller buffer, a character longer than it is
// converted in pieces, as an incomplete one. An incomplete character at the
// very end of the source is left to the converter as the last block.
class BufferedReader : public BufferedInputStream {
 public:
  BufferedReader(InputStream* source, unsigned encoding, unsigned size);
  ~BufferedReader() override;
  BufferedReader(const BufferedReader&) = delete;
  BufferedReader& operator=(const BufferedReader&) = delete;

  using BufferedInputStream::Read;
  // The next UTF-16 unit, -1 at the end or when not open.
  int Read() override;
  // An estimate of what is left: the source's bytes not yet buffered plus
  // the buffered bytes not yet converted plus the units converted but not
  // read (exact for text that is one unit per byte); 0 when not open.
  unsigned Available() override;
  bool Close() override;

 private:
  // Converts the pending bytes into the character buffer; `last` tells the
  // converter that no bytes follow. True when it consumed any.
  bool ConvertBuffer(bool last);

  ICharsetConverter* converter_ = nullptr;
  // Room for one unit per buffered byte, and at least for a surrogate pair.
  unsigned short* chars_ = nullptr;
  unsigned charsCapacity_ = 0;
  unsigned charsEnd_ = 0;
  unsigned charsPos_ = 0;
};

}  // namespace qro_base
