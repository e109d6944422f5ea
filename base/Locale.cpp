#include "base/Locale.h"

#include <cstring>
#include <vector>

#include "base/Tokenizer.h"
#include "common/analysis/LangCode.h"

namespace qro_base {
namespace {

std::string defaultCountry(const char* language) {
  const char* country = qro_common::LangCode::GetCountryName(language);
  return country != nullptr ? std::string(country) : std::string();
}

}  // namespace

const Locale Locale::ENGLISH("en", "US");
const Locale Locale::KOREAN("ko", "KR");
const Locale Locale::KOREA("ko", "KR");
const Locale Locale::JAPAN("ja", "JP");
const Locale Locale::DEFAULT(Locale::ENGLISH);

Locale::Locale(const char* language, const char* country)
    : language_(language != nullptr ? language : "") {
  country_ = country != nullptr ? std::string(country) : defaultCountry(language_.c_str());
}

Locale::Locale(std::string language, std::string country)
    : language_(std::move(language)), country_(std::move(country)) {
  if (country_.empty()) country_ = defaultCountry(language_.c_str());
}

Locale* Locale::Create(const char* name) {
  std::vector<std::string> tokens;
  tokenize(name != nullptr ? name : "", "_-", tokens);
  if (tokens.size() >= 2) return new Locale(tokens[0].c_str(), tokens[1].c_str());
  return new Locale(tokens[0].c_str(), nullptr);
}

bool Locale::operator==(const Locale& other) const {
  return language_ == other.language_ && country_ == other.country_;
}

bool Locale::operator==(const char* language) const {
  return language != nullptr && language_ == language;
}

bool Locale::IsLanguageForRTL() const {
  static const char* const kRtl[] = {"ar", "AR", "he", "HE", "ur", "UR", "fa", "FA"};
  for (const char* code : kRtl) {
    if (language_ == code) return true;
  }
  return false;
}

}  // namespace qro_base
