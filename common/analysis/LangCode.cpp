#include "common/analysis/LangCode.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <string>

#include "base/AKHashMap.h"
#include "common/analysis/LangCodeTable.h"

namespace qro_common {
namespace {

using qro_base::AKHashMap;
using qro_base::AKHashMapHashMethodDefault;

// Both hash tables use these dimensions: 211 buckets for 304 tags.
constexpr unsigned int kTableSize = 200;
constexpr unsigned int kHashKeyLength = 10;

AKHashMap<char, unsigned short>& tagTable() {
  static AKHashMap<char, unsigned short> table(kTableSize, kHashKeyLength,
                                               AKHashMapHashMethodDefault);
  if (table.GetCount() == 0) {
    for (const LangTagRow& row : kLangTagRows) {
      table.Insert(row.tag, static_cast<unsigned int>(std::strlen(row.tag)), row.id);
    }
  }
  return table;
}

int lookUpTag(const char* tag, std::size_t length) {
  if (tag == nullptr || length > UINT32_MAX) return 0;
  auto* node = tagTable().FindNode(tag, static_cast<unsigned int>(length));
  return node != nullptr ? node->GetValue() : 0;
}

}  // namespace

int LangCode::GetLangCode(const char* tag) {
  return tag != nullptr ? lookUpTag(tag, std::strlen(tag)) : 0;
}

int LangCode::GetLangCode(const char* language, const char* country) {
  if (language == nullptr) return 0;
  if (country == nullptr) country = GetCountryName(language);
  if (country == nullptr) return GetLangCode(language);
  std::string tag = std::string(language) + "-" + country;
  return lookUpTag(tag.c_str(), tag.size());
}

const char* LangCode::GetLang(unsigned short id) {
  static std::map<unsigned short, const char*> tags;
  if (tags.empty()) {
    for (const LangTagRow& row : kLangTagRows) tags.emplace(row.id, row.tag);
  }
  auto it = tags.find(id);
  return it != tags.end() ? it->second : "";
}

const char* LangCode::GetCountryName(const char* language) {
  // Built on first use and kept for the life of the process.
  static AKHashMap<char, const char*>* countries = nullptr;
  if (language == nullptr) return nullptr;
  if (countries == nullptr) {
    countries = new AKHashMap<char, const char*>(kTableSize, kHashKeyLength,
                                                 AKHashMapHashMethodDefault);
    for (const LangCountryRow& row : kLangCountryRows) {
      countries->Insert(row.language, static_cast<unsigned int>(std::strlen(row.language)),
                        row.country);
    }
  }
  std::size_t length = std::strlen(language);
  if (length > UINT32_MAX) return nullptr;
  auto* node = countries->FindNode(language, static_cast<unsigned int>(length));
  return node != nullptr ? node->GetValue() : nullptr;
}

}  // namespace qro_common
