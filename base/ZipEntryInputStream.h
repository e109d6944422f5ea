#pragma once

#include <cstdint>

#include "base/InputStream.h"
#include "base/ZipFile.h"

namespace qro_base {

// Reads one entry of a ZipFile. The ZipFile must outlive the stream, and a
// ZipFile reads one entry at a time: opening a second stream on it ends the
// first one's entry. Close() ends the entry; the destructor does not.
//
// Read(buffer, count) hands count to the back end unchanged; the back end
// never delivers more than the entry still holds, so a buffer of Available()
// bytes is never overrun, even when count is larger.
class ZipEntryInputStream : public InputStream {
 public:
  // Open when the ZipFile lists an entry of exactly this name.
  ZipEntryInputStream(ZipFile& zip, const char* name);
  ~ZipEntryInputStream() override;

  // The next byte, 0 to 255; -1 when nothing remains or on an error.
  int Read() override;
  // -1 when nothing remains; otherwise the back end's result: the number of
  // bytes read, or a negative error (which leaves Available() unchanged).
  int Read(char* buffer, unsigned count) override;
  // Ends the entry (a size-0 entry has nothing to end and gives true);
  // false when the stream is not open or the back end reports an error.
  bool Close() override;
  // The bytes not read yet; 0 when not open.
  unsigned Available() override;
  // Not supported: skips nothing and gives false.
  bool Skip(unsigned count) override;

 private:
  ZipFileImpl* impl_ = nullptr;
  uint32_t size_ = 0;
  uint32_t remaining_ = 0;
  unsigned char byte_ = 0xFF;
};

}  // namespace qro_base
