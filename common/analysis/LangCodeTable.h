#pragma once
// The rows behind LangCode: language tags with their Windows language
// identifiers, and bare language codes with their default countries. Some
// keys are kept exactly as the font data and hosts use them (upper-case
// codes such as "CHR", hexadecimal keys such as "0466", "es-ES_tradnl").

#include <cstddef>

namespace qro_common {

struct LangTagRow {
  const char* tag;
  unsigned short id;
};

struct LangCountryRow {
  const char* language;
  const char* country;
};

constexpr std::size_t kLangTagRowCount = 304;
constexpr std::size_t kLangCountryRowCount = 53;

extern const LangTagRow kLangTagRows[kLangTagRowCount];
extern const LangCountryRow kLangCountryRows[kLangCountryRowCount];

}  // namespace qro_common
