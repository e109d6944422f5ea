#include "common/font_info/CharMetricsInfo.h"

#include "common/font_info/ExtraCharMetrics.h"

#include <memory>
#include <stdexcept>

#include "base/ByteOrder.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CodeRange.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"

namespace qro_common {

namespace {

// The zipped replacement of `range` when it is a compressible single
// range, otherwise null.
CharMetricsRange* zipped(CharMetricsRange* range) {
  if (range == nullptr || range->GetType() != CharMetricsRange::kSingle) return nullptr;
  auto* single = static_cast<SingleCharMetricsRange*>(range);
  CharMetrics* shared = single->CheckZipCharMetrics();
  if (shared == nullptr) return nullptr;
  return new ZippedCharMetricsRange(single->GetFirst(), single->GetLast(), shared,
                                    single->MakeVisibleCharInfo());
}

}  // namespace

CharMetricsInfo::CharMetricsInfo() : ranges_(kUnicodeRangeSlotCount, nullptr) {}

CharMetricsInfo::~CharMetricsInfo() { RemoveAll(); }

CharMetricsRange* CharMetricsInfo::GetCharMetricsRange(unsigned char usb) const {
  return ranges_.at(usb);
}

void CharMetricsInfo::SetCharMetricsRange(unsigned char usb, CharMetricsRange* range) {
  if (usb >= ranges_.size()) {
    delete range;
    throw std::out_of_range("CharMetricsInfo::SetCharMetricsRange");
  }
  CharMetricsRange*& slot = ranges_[usb];
  if (slot != range) delete slot;
  slot = range;
}

CharMetricsRange* CharMetricsInfo::RangeOf(unsigned int code) const {
  int usb = FontUSBType::GetUSBType(code);
  return isTableUSBType(usb) ? ranges_[static_cast<size_t>(usb)] : nullptr;
}

CharMetrics* CharMetricsInfo::GetCharMetrics(unsigned int code) {
  CharMetricsRange* range = RangeOf(code);
  CharMetrics* metrics = range != nullptr ? range->Get(code) : nullptr;
  return metrics != nullptr || !extra_ ? metrics : extra_->Find(code);
}

const CharMetrics* CharMetricsInfo::GetCharMetrics(unsigned int code) const {
  CharMetricsRange* range = RangeOf(code);
  const CharMetrics* metrics = range != nullptr ? range->Get(code) : nullptr;
  return metrics != nullptr || !extra_ ? metrics : extra_->Find(code);
}

bool CharMetricsInfo::IsVisibleChar(unsigned int code) const {
  const CharMetricsRange* range = RangeOf(code);
  if (range != nullptr && range->IsVisibleChar(code)) return true;
  return extra_ && extra_->Find(code) != nullptr;
}

void CharMetricsInfo::SetExtraCharMetrics(ExtraCharMetrics* extra) { extra_.reset(extra); }

void CharMetricsInfo::ZipCharMetricsRanges() {
  for (size_t usb = 0; usb < ranges_.size(); ++usb) {
    CharMetricsRange* range = ranges_[usb];
    if (range == nullptr) continue;
    if (range->GetType() == CharMetricsRange::kSingle) {
      if (CharMetricsRange* replacement = zipped(range)) {
        SetCharMetricsRange(static_cast<unsigned char>(usb), replacement);
      }
    } else if (range->GetType() == CharMetricsRange::kMulti) {
      auto* multi = static_cast<MultiCharMetricsRange*>(range);
      for (int block = 0; block < multi->GetCount(); ++block) {
        if (CharMetricsRange* replacement = zipped(multi->GetCharMetricsRange(block))) {
          multi->SetCharMetricsRange(block, replacement);
        }
      }
    }
  }
}

void CharMetricsInfo::RemoveAll() { deleteRanges(ranges_); }

bool CharMetricsInfo::Read(qro_base::InputStream& in) {
  return ReadChecked(in) == ReadResult::kLoaded;
}

CharMetricsInfo::ReadResult CharMetricsInfo::ReadChecked(qro_base::InputStream& in) {
  // 0, or a kind this reader does not know, leaves the slot empty.
  return readRangeTable(in, ranges_, [](unsigned char type) -> CharMetricsRange* {
    switch (type) {
      case CharMetricsRange::kSingle:
        return new SingleCharMetricsRange(-1, -1);
      case CharMetricsRange::kMulti:
        return new MultiCharMetricsRange(-1);
      case CharMetricsRange::kZipped:
        return new ZippedCharMetricsRange();
      default:
        return nullptr;
    }
  });
}

bool CharMetricsInfo::Write(qro_base::OutputStream& out) const {
  return writeRangeTable(out, ranges_);
}

}  // namespace qro_common
