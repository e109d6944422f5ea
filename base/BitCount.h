#pragma once
// Population count of a 64-bit word, inline on every target: the
// instruction where the compiler may use it, otherwise the parallel bit
// sum (a libgcc call per word would cost more than the sum itself).

#include <cstdint>

namespace qro_base {

inline unsigned popCount64(std::uint64_t x) {
#if defined(__POPCNT__) || defined(__aarch64__) || defined(__ARM_NEON)
  return static_cast<unsigned>(__builtin_popcountll(x));
#else
  x = x - ((x >> 1) & 0x5555555555555555ULL);
  x = (x & 0x3333333333333333ULL) + ((x >> 2) & 0x3333333333333333ULL);
  x = (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
  return static_cast<unsigned>((x * 0x0101010101010101ULL) >> 56);
#endif
}

}  // namespace qro_base
