#pragma once
// Case tables behind CharacterType, defined in the generated
// CharacterTypeGenerated.cpp (scripts/gen_character_types.py). Internal to
// the case mapping and its tests.

namespace qro_base {
namespace character_type_data {

struct CasePair {
  unsigned short from;
  unsigned short to;
};

// Sorted by `from`, no duplicates. Rows with from == to are letters kept as
// themselves.
extern const CasePair kUpperCasePairs[];
extern const unsigned kUpperCasePairCount;
extern const CasePair kLowerCasePairs[];
extern const unsigned kLowerCasePairCount;

}  // namespace character_type_data
}  // namespace qro_base
