#pragma once

#include <string>

namespace qro_base {

// A language and country pair, such as ("ko", "KR").
class Locale {
 public:
  // A null country (or, for the string form, an empty one) is looked up as
  // the language's default country; empty when the language has none.
  Locale(const char* language, const char* country);
  Locale(std::string language, std::string country);
  Locale(const Locale&) = default;
  Locale& operator=(const Locale&) = default;

  // Splits at "_" or "-": "zh_TW" gives ("zh", "TW"); a single token gets
  // its default country. The caller owns the result.
  static Locale* Create(const char* name);

  const std::string& GetLanguage() const { return language_; }
  const std::string& GetCountry() const { return country_; }

  bool operator==(const Locale& other) const;
  bool operator!=(const Locale& other) const { return !(*this == other); }
  // Compares the language alone.
  bool operator==(const char* language) const;
  bool operator!=(const char* language) const { return !(*this == language); }

  // True for "ar", "he", "ur", "fa" in all lower or all upper case.
  bool IsLanguageForRTL() const;

  static const Locale ENGLISH;
  static const Locale KOREAN;
  static const Locale KOREA;
  static const Locale JAPAN;
  static const Locale DEFAULT;

 private:
  std::string language_;
  std::string country_;
};

}  // namespace qro_base
