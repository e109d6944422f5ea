#include "common/font_info/ExtraCharMetrics.h"

#include <algorithm>
#include <string>

#include "base/ByteOrder.h"

namespace qro_common {

void ExtraCharMetrics::Add(unsigned code, unsigned short advance) {
  if (!codes_.empty() && code <= codes_.back()) return;
  codes_.push_back(code);
  metrics_.emplace_back(advance);
}

const CharMetrics* ExtraCharMetrics::Find(unsigned code) const {
  auto it = std::lower_bound(codes_.begin(), codes_.end(), code);
  if (it == codes_.end() || *it != code) return nullptr;
  return &metrics_[static_cast<std::size_t>(it - codes_.begin())];
}

CharMetrics* ExtraCharMetrics::Find(unsigned code) {
  return const_cast<CharMetrics*>(static_cast<const ExtraCharMetrics*>(this)->Find(code));
}

bool ExtraCharMetrics::Read(qro_base::InputStream& in) {
  codes_.clear();
  metrics_.clear();
  unsigned count = 0;
  if (!qro_base::readUInt32(in, count) || count > kMaxCount) return false;
  for (unsigned i = 0; i < count; ++i) {
    unsigned code = 0;
    unsigned short advance = 0;
    if (!qro_base::readUInt32(in, code) || !qro_base::readUInt16(in, advance) ||
        (!codes_.empty() && code <= codes_.back())) {
      codes_.clear();
      metrics_.clear();
      return false;
    }
    Add(code, advance);
  }
  return true;
}

bool ExtraCharMetrics::Write(qro_base::OutputStream& out) const {
  std::string bytes;
  bytes.reserve(4 + codes_.size() * 6);
  qro_base::appendInt32(bytes, static_cast<int>(codes_.size()));
  for (std::size_t i = 0; i < codes_.size(); ++i) {
    qro_base::appendInt32(bytes, static_cast<int>(codes_[i]));
    qro_base::appendUInt16(bytes, metrics_[i].GetAdvance());
  }
  return out.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

}  // namespace qro_common
