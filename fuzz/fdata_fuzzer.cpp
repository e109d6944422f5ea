// The per-face data file reader: character metrics, kerning and the extra
// characters without a range slot. What it
// accepts must answer look-ups and must write back to bytes that read back
// to themselves.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/MemoryInputStream.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "fuzz/FuzzSupport.h"

using qro_common::CharMetricsInfo;
using qro_common::KerningInfo;

namespace {

// The bytes of a data file holding `metrics` and `kerning`.
std::string dataBytes(const CharMetricsInfo* metrics, const KerningInfo* kerning) {
  return (metrics ? kelfont_fuzz::bytesOf(*metrics) : "") +
         (kerning ? kelfont_fuzz::bytesOf(*kerning) : "");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/Fdata/7", data, size)) return 0;

  qro_common::FontInfoSerializer serializer(kelfont_fuzz::scratch());
  qro_common::FontInfo info;
  info.SetInfoIndex(7);
  if (!serializer.ReadData(info)) return 0;

  const CharMetricsInfo* metrics = info.GetCharMetricsInfo();
  const KerningInfo* kerning = info.GetKerningInfo();
  unsigned sum = 0;
  for (unsigned code : kelfont_fuzz::probeCodes()) {
    if (metrics == nullptr) break;
    if (const qro_common::CharMetrics* m = metrics->GetCharMetrics(code)) sum += m->GetAdvance();
    sum += metrics->IsVisibleChar(code) ? 1 : 0;
  }
  if (kerning != nullptr) {
    for (int left = 32; left < 127; left += 3)
      sum += static_cast<unsigned>(kerning->GetDelta(left, 'A'));
  }

  std::string once = dataBytes(metrics, kerning);
  qro_base::MemoryInputStream in(once.data(), static_cast<unsigned>(once.size()));
  std::unique_ptr<CharMetricsInfo> metricsAgain;
  std::unique_ptr<KerningInfo> kerningAgain;
  if (metrics != nullptr) {
    metricsAgain.reset(new CharMetricsInfo());
    if (metricsAgain->ReadChecked(in) == CharMetricsInfo::ReadResult::kDamaged) {
      kelfont_fuzz::fail("written character metrics do not read back");
    }
  }
  if (kerning != nullptr) {
    kerningAgain.reset(new KerningInfo());
    if (!kerningAgain->Read(in)) kelfont_fuzz::fail("written kerning does not read back");
  }
  if (in.Available() != 0) kelfont_fuzz::fail("written data has bytes left over");
  if (dataBytes(metricsAgain.get(), kerningAgain.get()) != once) {
    kelfont_fuzz::fail("data written again differs");
  }
  if (const qro_common::ExtraCharMetrics* extra =
          metrics != nullptr ? metrics->GetExtraCharMetrics() : nullptr) {
    const std::string written = kelfont_fuzz::bytesOf(*extra);
    qro_base::MemoryInputStream back(written.data(), static_cast<unsigned>(written.size()));
    qro_common::ExtraCharMetrics again;
    if (!again.Read(back) || kelfont_fuzz::bytesOf(again) != written) {
      kelfont_fuzz::fail("extra characters do not read back to themselves");
    }
  }
  return static_cast<int>(sum & 0);
}
