// The per-character answer cache: the cases of tests/data/char_key_cache.tsv.
// Readers beside writers while the table grows: the manager's concurrency
// test, whose answers all come through these caches.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "common/manager/CharKeyCache.h"
#include "tests/support/Cases.h"

namespace {

using qro_common::CharKey;
using qro_common::CharKeyCache;

// "CODE/FONT[/STYLE]": the code in hex, the font index, b, i or bi.
CharKey keyOf(const std::string& text) {
  const std::size_t slash = text.find('/'), style = text.find('/', slash + 1);
  const std::string styleText = style == std::string::npos ? "" : text.substr(style + 1);
  return {static_cast<std::uint32_t>(std::stoul(text.substr(0, slash), nullptr, 16)),
          std::stoi(text.substr(slash + 1, style - slash - 1)),
          styleText.find('b') != std::string::npos, styleText.find('i') != std::string::npos};
}

// Values as written: numbers, "empty" (the bit pattern of an empty slot),
// pointers a, b or 0.
int a = 0, b = 0;
constexpr std::uint32_t kEmptyBits = 0x7FBADBADu;
template <typename V>
V valueOf(const std::string& text);
template <>
float valueOf(const std::string& text) {
  float value = 0;
  std::memcpy(&value, &kEmptyBits, sizeof value);
  return text == "empty" ? value : std::stof(text);
}
template <>
int* valueOf(const std::string& text) {
  return text == "a" ? &a : text == "b" ? &b : nullptr;
}
std::string said(float value) {
  std::ostringstream out;
  out << value;
  return std::isnan(value) ? "empty" : out.str();
}
std::string said(int* value) { return value == &a ? "a" : value == &b ? "b" : "0"; }

template <typename V, unsigned kCodeBits>
std::string run(const std::string& calls) {
  CharKeyCache<V, kCodeBits> cache;
  return kelfont_test::answers(calls, [&](const std::string& t) {
    V value{};
    const std::size_t eq = t.find('=');
    if (t[0] == '+') {
      return std::to_string(cache.Insert(keyOf(t.substr(1, eq - 1)), valueOf<V>(t.substr(eq + 1))));
    }
    if (t[0] == '?') return cache.Find(keyOf(t.substr(1)), value) ? said(value) : "-";
    if (t == "#") return std::to_string(cache.Size());
    cache.Clear();
    return std::string(".");
  });
}

TEST(CharKeyCache, Lines) {
  for (const kelfont_test::Case& c : kelfont_test::cases("char_key_cache.tsv")) {
    const std::string got = c[0] == "float"  ? run<float, 16>(c[1])
                            : c[0] == "ptr0" ? run<int*, 0>(c[1])
                                             : run<int*, 8>(c[1]);
    EXPECT_EQ(got, c[2]) << c.line;
  }
}

}  // namespace
