#pragma once
// Language tags ("ko-KR") and Windows language identifiers (0x0412), both
// ways, and the default country of a bare language code.

namespace qro_common {

class LangCode {
 public:
  LangCode() = default;
  virtual ~LangCode() = default;

  // 0 when the tag is not in the table (byte-exact, case-sensitive).
  static int GetLangCode(const char* tag);
  // 0 when language is null. A null country is taken from GetCountryName;
  // with a country, looks up language + "-" + country.
  static int GetLangCode(const char* language, const char* country);
  // The tag of an identifier; "" when unknown. Static storage.
  static const char* GetLang(unsigned short id);
  // Default country of a bare language code, or nullptr. Static storage.
  static const char* GetCountryName(const char* language);
};

}  // namespace qro_common
