#include "base/Tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Tokens = std::vector<std::string>;

Tokens split(const std::string& text, const std::string& separators = "_-") {
  Tokens out;
  qro_base::tokenize(text, separators, out);
  return out;
}

TEST(Tokenizer, DropsEmptyTokensBetweenSeparators) {
  EXPECT_EQ(split("ko-KR"), (Tokens{"ko", "KR"}));
  EXPECT_EQ(split("ko--KR"), (Tokens{"ko", "KR"}));
  EXPECT_EQ(split("zh_Hant-TW"), (Tokens{"zh", "Hant", "TW"}));
  EXPECT_EQ(split("-ko"), (Tokens{"ko"}));
}

TEST(Tokenizer, AlwaysAppendsTheRest) {
  EXPECT_EQ(split("ko"), (Tokens{"ko"}));
  EXPECT_EQ(split("ko-"), (Tokens{"ko", ""}));
  EXPECT_EQ(split(""), (Tokens{""}));
  EXPECT_EQ(split("--"), (Tokens{""}));
}

TEST(Tokenizer, NoSeparators) {
  EXPECT_EQ(split("ko-KR", ""), (Tokens{"ko-KR"}));
}

}  // namespace
