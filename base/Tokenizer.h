#pragma once

#include <string>
#include <vector>

namespace qro_base {

// Splits `text` at any of `separators`. Empty tokens between separators are
// dropped, but the rest after the last separator is always appended, even
// when empty: "ko--KR" gives {"ko", "KR"}, "ko-" gives {"ko", ""}.
void tokenize(const std::string& text, const std::string& separators,
              std::vector<std::string>& out);

}  // namespace qro_base
