#include "base/DefaultCharsetConverterManager.h"

namespace qro_base {

ICharsetConverter* DefaultCharsetConverterManager::GetConverter(unsigned encoding) {
  return encoding == kEncodingUtf8 ? &utf8_ : nullptr;
}

}  // namespace qro_base
