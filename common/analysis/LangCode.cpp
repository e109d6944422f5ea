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

// The tables are filled inside their static initialisers, so the first
// calls from several threads at once are safe.
AKHashMap<char, unsigned short>& tagTable() {
  static AKHashMap<char, unsigned short>& table = *[] {
    auto* map = new AKHashMap<char, unsigned short>(kTableSize, kHashKeyLength,
                                                    AKHashMapHashMethodDefault);
    for (const LangTagRow& row : kLangTagRows) {
      map->Insert(row.tag, static_cast<unsigned int>(std::strlen(row.tag)), row.id);
    }
    return map;
  }();
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
  static const std::map<unsigned short, const char*> tags = [] {
    std::map<unsigned short, const char*> map;
    for (const LangTagRow& row : kLangTagRows) map.emplace(row.id, row.tag);
    return map;
  }();
  auto it = tags.find(id);
  return it != tags.end() ? it->second : "";
}

const char* LangCode::GetCountryName(const char* language) {
  // Built on first use and kept for the life of the process.
  static AKHashMap<char, const char*>* const countries = [] {
    auto* map = new AKHashMap<char, const char*>(kTableSize, kHashKeyLength,
                                                 AKHashMapHashMethodDefault);
    for (const LangCountryRow& row : kLangCountryRows) {
      map->Insert(row.language, static_cast<unsigned int>(std::strlen(row.language)), row.country);
    }
    return map;
  }();
  if (language == nullptr) return nullptr;
  std::size_t length = std::strlen(language);
  if (length > UINT32_MAX) return nullptr;
  auto* node = countries->FindNode(language, static_cast<unsigned int>(length));
  return node != nullptr ? node->GetValue() : nullptr;
}

}  // namespace qro_common
