#include "common/font_info/ExtraDefaultFonts.h"

#include <algorithm>
#include <string>

#include "base/ByteOrder.h"
#include "common/font_info/ExtraCharMetrics.h"

namespace qro_common {

void ExtraDefaultFonts::Apply(int fontIndex, const ExtraCharMetrics& chars) {
  if (fontIndex < 0 || chars.GetCount() == 0) return;
  const short font = static_cast<short>(fontIndex);
  // The face's codes as runs of their own, then merged into the present
  // runs, the new ones cutting the old ones where they meet.
  std::vector<Run> added;
  for (std::size_t i = 0; i < chars.GetCount(); ++i) {
    const unsigned code = chars.GetCode(i);
    if (!added.empty() && added.back().last + 1 == code) {
      added.back().last = code;
    } else {
      added.push_back(Run{code, code, font});
    }
  }
  std::vector<Run> old;
  old.swap(runs_);
  runs_.reserve(old.size() + 2 * added.size());
  std::size_t i = 0;
  for (const Run& run : added) {
    while (i < old.size() && old[i].last < run.first) Push(old[i++]);
    // The head of an old run that the new one cuts.
    if (i < old.size() && old[i].first < run.first) {
      Push(Run{old[i].first, run.first - 1, old[i].font});
      old[i].first = run.first;
    }
    Push(run);
    while (i < old.size() && old[i].last <= run.last) ++i;
    if (i < old.size() && old[i].first <= run.last) old[i].first = run.last + 1;
  }
  while (i < old.size()) Push(old[i++]);
}

void ExtraDefaultFonts::Push(const Run& run) {
  if (!runs_.empty() && runs_.back().font == run.font && runs_.back().last + 1 == run.first) {
    runs_.back().last = run.last;
  } else {
    runs_.push_back(run);
  }
}

int ExtraDefaultFonts::GetFontIndex(unsigned code) const {
  auto it = std::upper_bound(runs_.begin(), runs_.end(), code,
                             [](unsigned c, const Run& run) { return c < run.first; });
  if (it == runs_.begin()) return -1;
  --it;
  return code <= it->last ? it->font : -1;
}

namespace {

unsigned le32(const char* p) {
  const auto* b = reinterpret_cast<const unsigned char*>(p);
  return b[0] | (b[1] << 8) | (b[2] << 16) | (static_cast<unsigned>(b[3]) << 24);
}

}  // namespace

bool ExtraDefaultFonts::Read(const char* bytes, std::size_t size) {
  runs_.clear();
  constexpr std::size_t kRunSize = 10;
  const unsigned count = size >= 4 ? le32(bytes) : 0;
  if (size < 4 || count > kMaxRuns || (size - 4) / kRunSize != count || (size - 4) % kRunSize != 0) {
    return false;
  }
  runs_.reserve(count);
  for (const char* p = bytes + 4; p < bytes + size; p += kRunSize) {
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    Run run{le32(p), le32(p + 4), static_cast<short>(b[8] | (b[9] << 8))};
    if (run.first > run.last || (!runs_.empty() && run.first <= runs_.back().last)) {
      runs_.clear();
      return false;
    }
    runs_.push_back(run);
  }
  return true;
}

bool ExtraDefaultFonts::Write(qro_base::OutputStream& out) const {
  std::string bytes;
  bytes.reserve(4 + runs_.size() * 10);
  qro_base::appendInt32(bytes, static_cast<int>(runs_.size()));
  for (const Run& run : runs_) {
    qro_base::appendInt32(bytes, static_cast<int>(run.first));
    qro_base::appendInt32(bytes, static_cast<int>(run.last));
    qro_base::appendUInt16(bytes, static_cast<unsigned short>(run.font));
  }
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
