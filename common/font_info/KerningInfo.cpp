#include "common/font_info/KerningInfo.h"

#include "base/ByteOrder.h"

namespace qro_common {

KerningInfo::KerningInfo() { EnsureItems(kInitialCapacity); }

int KerningInfo::Register(int left, int right, short delta) {
  return Register(KerningPair(left, right, delta));
}

int KerningInfo::GetDelta(int left, int right) const {
  int position = Find(KerningPair(left, right));
  if (position < 0) return 0;
  const KerningPair* pair = (*items_)[static_cast<size_t>(position)];
  return pair == nullptr ? 0 : pair->GetDelta();
}

bool KerningInfo::Read(qro_base::InputStream& in) {
  unsigned count = 0;
  if (!qro_base::readUInt32(in, count) || count > kMaxPairs) return false;
  for (unsigned i = 0; i < count; ++i) {
    int left = 0;
    int right = 0;
    short delta = 0;
    if (!qro_base::readInt32(in, left) || !qro_base::readInt32(in, right) ||
        !qro_base::readInt16(in, delta)) {
      return false;
    }
    Register(left, right, delta);
  }
  return true;
}

bool KerningInfo::Write(qro_base::OutputStream& out) const {
  // Empty positions (possible after Init) are not written.
  int present = 0;
  for (int i = 0; i < GetCount(); ++i) present += (*items_)[static_cast<size_t>(i)] != nullptr;
  bool ok = qro_base::WriteInt32(out, present) == 4;
  for (int i = 0; i < GetCount() && ok; ++i) {
    const KerningPair* pair = (*items_)[static_cast<size_t>(i)];
    if (pair == nullptr) continue;
    ok = qro_base::WriteInt32(out, pair->GetLeft()) == 4 &&
         qro_base::WriteInt32(out, pair->GetRight()) == 4 &&
         qro_base::writeInt16(out, pair->GetDelta());
  }
  return ok;
}

}  // namespace qro_common
