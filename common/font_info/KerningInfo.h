#pragma once

#include "base/InputStream.h"
#include "base/OutputStream.h"
#include "common/font_info/KerningPair.h"
#include "common/font_info/Storage.h"

namespace qro_common {

// The kerning pairs of one face. The first registration of a (left, right)
// pair wins; a later one with another delta changes nothing.
//
// Binary form, little-endian: pair count (uint32), then per pair left
// (int32), right (int32), delta (int16).
class KerningInfo : public Storage<KerningPair> {
 public:
  // Room for this many pairs is reserved up front.
  static constexpr int kInitialCapacity = 50;
  // Counts above this are taken as damage: the analyzer keeps pairs of
  // printable ASCII only, far fewer.
  static constexpr unsigned kMaxPairs = 1u << 20;

  KerningInfo();

  int Register(int left, int right, short delta);
  int Register(const KerningPair& pair) { return Storage<KerningPair>::Register(pair); }

  // The delta of (left, right); 0 when the pair is not registered.
  int GetDelta(int left, int right) const;

  // Registers the pairs of a kerning part, in file order. False when the
  // input ends early or the count exceeds kMaxPairs; the pairs read before
  // stay registered.
  bool Read(qro_base::InputStream& in);
  // The count and every pair in position order; false when a write failed.
  bool Write(qro_base::OutputStream& out) const;
};

}  // namespace qro_common
