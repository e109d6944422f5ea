// Runs of text measured as they are shaped.

#include "common/manager/FontManager.h"
#include "common/manager/RunMeasurer.h"

namespace qro_common {

bool FontManager::MeasureRun(int fontIndex, bool bold, bool italic, const char16_t* text,
                             std::size_t length, float& totalEm, float* advances, int* fonts,
                             std::uint8_t* clusterStarts) {
  return runMeasurer_->Measure(fontIndex, bold, italic, text, length, totalEm, advances, fonts,
                               clusterStarts);
}

bool FontManager::MeasureRun(int fontIndex, bool bold, bool italic, const char16_t* text,
                             std::size_t length, RunMeasure& result) {
  return runMeasurer_->Measure(fontIndex, bold, italic, text, length, result);
}

}  // namespace qro_common
