// The default font information reader ("fi"), and the reader of the fonts
// of code points without a slot ("fx", the same bytes taken as runs):
// look-ups over what they accept, and writes that read back to themselves.

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/MemoryInputStream.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/ExtraDefaultFonts.h"
#include "common/font_info/FontInfoSerializer.h"
#include "fuzz/FuzzSupport.h"

using qro_common::DefaultFontInfo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/fi", data, size)) return 0;

  qro_common::ExtraDefaultFonts extra;
  if (extra.Read(reinterpret_cast<const char*>(data), size)) {
    int found = 0;
    for (unsigned code : kelfont_fuzz::probeCodes()) found += extra.GetFontIndex(code);
    const std::string written = kelfont_fuzz::bytesOf(extra);
    qro_common::ExtraDefaultFonts again;
    if (!again.Read(written.data(), written.size()) || kelfont_fuzz::bytesOf(again) != written) {
      kelfont_fuzz::fail("extra default fonts do not read back to themselves");
    }
    (void)found;
  }

  qro_common::FontInfoSerializer serializer(kelfont_fuzz::scratch());
  DefaultFontInfo defaults;
  if (!serializer.ReadDefaultFontInfo(defaults)) return 0;
  int sum = 0;
  for (unsigned code : kelfont_fuzz::probeCodes()) {
    sum += defaults.GetFontIndex(code);
  }

  const std::string once = kelfont_fuzz::bytesOf(defaults);
  qro_base::MemoryInputStream in(once.data(), static_cast<unsigned>(once.size()));
  DefaultFontInfo again;
  // A file whose only non-zero type bytes are unknown kinds reads as loaded
  // and writes back as 128 empty slots: empty, but not damaged.
  if (again.ReadChecked(in) == DefaultFontInfo::ReadResult::kDamaged) {
    kelfont_fuzz::fail("written default font information does not read back");
  }
  if (in.Available() != 0) kelfont_fuzz::fail("written default font information has bytes left");
  if (kelfont_fuzz::bytesOf(again) != once)
    kelfont_fuzz::fail("default font information written again differs");
  return sum & 0;
}
