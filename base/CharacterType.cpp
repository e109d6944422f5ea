#include "base/CharacterType.h"

#include "base/CharacterTypeData.h"

namespace qro_base {

namespace {

using character_type_data::CasePair;

// Binary search of a sorted constant table: no allocation, safe from any
// thread.
unsigned short lookUp(const CasePair* pairs, unsigned count, unsigned short unit) {
  unsigned lo = 0;
  unsigned hi = count;
  while (lo < hi) {
    unsigned mid = lo + (hi - lo) / 2;
    if (pairs[mid].from < unit) {
      lo = mid + 1;
    } else if (pairs[mid].from > unit) {
      hi = mid;
    } else {
      return pairs[mid].to;
    }
  }
  return unit;
}

}  // namespace

unsigned short CharacterType::ToUpperCase(unsigned short unit) {
  return lookUp(character_type_data::kUpperCasePairs,
                character_type_data::kUpperCasePairCount, unit);
}

unsigned short CharacterType::ToLowerCase(unsigned short unit) {
  return lookUp(character_type_data::kLowerCasePairs,
                character_type_data::kLowerCasePairCount, unit);
}

}  // namespace qro_base
