#pragma once
// Character traits for strings of UTF-16 code units held as unsigned short.
// The standard library defines char_traits only for its own character
// types; its generic template is not part of the standard, and recent
// libc++ releases (the Android NDK's) no longer provide it. The units
// compare as unsigned 16-bit numbers, so 0xFFFF orders after 0x7FFF.

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <ios>

namespace qro_base {

struct U16CharTraits {
  using char_type = unsigned short;
  using int_type = int;  // every unit and eof() below
  using off_type = std::streamoff;
  using pos_type = std::streampos;
  using state_type = std::mbstate_t;

  static constexpr void assign(char_type& to, const char_type& from) noexcept { to = from; }
  static constexpr bool eq(char_type a, char_type b) noexcept { return a == b; }
  static constexpr bool lt(char_type a, char_type b) noexcept { return a < b; }

  static constexpr int compare(const char_type* a, const char_type* b, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
      if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
  }

  static constexpr std::size_t length(const char_type* text) noexcept {
    std::size_t n = 0;
    while (text[n] != 0) ++n;
    return n;
  }

  static constexpr const char_type* find(const char_type* text, std::size_t n,
                                         const char_type& unit) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
      if (text[i] == unit) return text + i;
    }
    return nullptr;
  }

  // The ranges may overlap.
  static char_type* move(char_type* to, const char_type* from, std::size_t n) noexcept {
    if (n != 0) std::memmove(to, from, n * sizeof(char_type));
    return to;
  }

  // The ranges do not overlap.
  static char_type* copy(char_type* to, const char_type* from, std::size_t n) noexcept {
    if (n != 0) std::memcpy(to, from, n * sizeof(char_type));
    return to;
  }

  static char_type* assign(char_type* to, std::size_t n, char_type unit) noexcept {
    for (std::size_t i = 0; i < n; ++i) to[i] = unit;
    return to;
  }

  static constexpr int_type eof() noexcept { return -1; }
  static constexpr int_type not_eof(int_type value) noexcept { return value == eof() ? 0 : value; }
  static constexpr char_type to_char_type(int_type value) noexcept {
    return static_cast<char_type>(value);
  }
  static constexpr int_type to_int_type(char_type unit) noexcept { return unit; }
  static constexpr bool eq_int_type(int_type a, int_type b) noexcept { return a == b; }
};

}  // namespace qro_base
