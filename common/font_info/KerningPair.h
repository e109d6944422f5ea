#pragma once

#include "base/Clonable.h"

namespace qro_common {

// The advance adjustment between two character codes, in font design units
// (negative to tighten). Pairs order by left, then right, as signed 32-bit
// numbers; the delta takes no part in the order.
class KerningPair : public qro_base::Clonable {
 public:
  KerningPair(int left = 0, int right = 0, short delta = 0)
      : left_(left), right_(right), delta_(delta) {}
  KerningPair(const KerningPair&) = default;
  KerningPair& operator=(const KerningPair&) = default;

  KerningPair* Clone() const override { return new KerningPair(*this); }

  bool operator<(const KerningPair& other) const {
    if (left_ != other.left_) return left_ < other.left_;
    return right_ < other.right_;
  }

  int GetLeft() const { return left_; }
  int GetRight() const { return right_; }
  short GetDelta() const { return delta_; }

 private:
  int left_;
  int right_;
  short delta_;
};

}  // namespace qro_common
