#include "common/analysis/LangCode.h"

// Placeholder until the language tables land.
namespace qro_common {

int LangCode::GetLangCode(const char*) { return 0; }
int LangCode::GetLangCode(const char*, const char*) { return 0; }
const char* LangCode::GetLang(unsigned short) { return ""; }
const char* LangCode::GetCountryName(const char*) { return nullptr; }

}  // namespace qro_common
