#pragma once

#include "base/Clonable.h"

namespace qro_common {

// The ten PANOSE classification bytes of a face's OS/2 table, in table order.
class Panose : public qro_base::Clonable {
 public:
  enum Field {
    kFamilyType,
    kSerifStyle,
    kWeight,
    kProportion,
    kContrast,
    kStrokeVariation,
    kArmStyle,
    kLetterform,
    kMidline,
    kXHeight,
  };
  static constexpr int kSize = 10;

  Panose() = default;
  Panose(const Panose&) = default;
  Panose& operator=(const Panose&) = default;

  Panose* Clone() const override { return new Panose(*this); }

  // Byte `index` (0..9, see Field); 0 for any other index.
  unsigned char Get(int index) const { return IsIndex(index) ? bytes_[index] : 0; }
  // Ignored for an index outside 0..9.
  void Set(int index, unsigned char value) {
    if (IsIndex(index)) bytes_[index] = value;
  }

 private:
  static bool IsIndex(int index) { return index >= 0 && index < kSize; }

  unsigned char bytes_[kSize] = {};
};

}  // namespace qro_common
