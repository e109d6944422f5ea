#include "base/Tokenizer.h"

namespace qro_base {

void tokenize(const std::string& text, const std::string& separators,
              std::vector<std::string>& out) {
  std::string::size_type start = 0;
  for (;;) {
    std::string::size_type pos = text.find_first_of(separators, start);
    if (pos == std::string::npos) {
      out.push_back(text.substr(start));
      return;
    }
    if (pos > start) out.push_back(text.substr(start, pos - start));
    start = pos + 1;
  }
}

}  // namespace qro_base
