#pragma once

#include "base/CharsetConverter.h"
#include "base/Utf8CharsetConverter.h"

namespace qro_base {

// The code-page number of UTF-8.
constexpr unsigned kEncodingUtf8 = 65001;

// A converter manager that knows UTF-8 only. A host installs it with
// ensureEnvironment().SetCharsetConverterManager(new DefaultCharsetConverterManager).
class DefaultCharsetConverterManager : public CharsetConverterManager {
 public:
  // The UTF-8 converter for kEncodingUtf8, nullptr for anything else.
  ICharsetConverter* GetConverter(unsigned encoding) override;

 private:
  Utf8CharsetConverter utf8_;
};

}  // namespace qro_base
