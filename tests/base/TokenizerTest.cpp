#include "base/Tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Tokens = std::vector<std::string>;

TEST(Tokenizer, DropsEmptyTokensBetweenSeparatorsButAlwaysAppendsTheRest) {
  const struct {
    const char* text;
    const char* separators;
    Tokens tokens;
  } cases[] = {
      {"zh_Hant-TW", "_-", {"zh", "Hant", "TW"}},
      {"ko--KR", "_-", {"ko", "KR"}},
      {"-ko", "_-", {"ko"}},
      {"ko-", "_-", {"ko", ""}},
      {"--", "_-", {""}},
      {"", "_-", {""}},
      {"ko-KR", "", {"ko-KR"}},
  };
  for (const auto& c : cases) {
    Tokens out;
    qro_base::tokenize(c.text, c.separators, out);
    EXPECT_EQ(out, c.tokens) << c.text;
  }
}

}  // namespace
