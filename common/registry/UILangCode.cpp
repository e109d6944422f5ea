#include "common/registry/UILangCode.h"

#include <string>

#include "base/Environment.h"
#include "common/analysis/LangCode.h"

namespace qro_common {

unsigned short getUILangCode() {
  const qro_base::Locale& locale = qro_base::ensureEnvironment().GetUILocale();
  const std::string tag = locale.GetLanguage() + "-" + locale.GetCountry();
  return static_cast<unsigned short>(LangCode::GetLangCode(tag.c_str()));
}

}  // namespace qro_common
