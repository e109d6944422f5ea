#pragma once
// Forced in front of every source of the clang/libc++ build (-include): the
// standard library's traits for unsigned short become an incomplete type,
// as in libc++ 19 and later, which have no generic char_traits. A string of
// unsigned short that does not name its own traits then fails to compile
// here as it would with the Android NDK.

#include <iosfwd>

namespace std {
template <>
struct char_traits<unsigned short>;
}  // namespace std
