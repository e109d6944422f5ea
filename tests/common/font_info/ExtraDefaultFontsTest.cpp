// The fonts of code points without a range slot: applied face after face,
// they answer as a plain map where the font applied last wins (random faces
// over a small span, so that runs meet, cut and join), and their bytes read
// back to the same answers.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "base/StringOutputStream.h"
#include "common/font_info/ExtraCharMetrics.h"
#include "common/font_info/ExtraDefaultFonts.h"

namespace {

using qro_common::ExtraCharMetrics;
using qro_common::ExtraDefaultFonts;

TEST(ExtraDefaultFonts, AnswersAsTheLastAppliedFontOfAPlainMap) {
  std::mt19937 random(20261124);
  for (int round = 0; round < 200; ++round) {
    ExtraDefaultFonts fonts;
    std::map<unsigned, int> model;
    for (int face = 0; face < 6; ++face) {
      const int font = static_cast<int>(random() % 4);
      ExtraCharMetrics codes;
      for (unsigned code = 0x1E900; code < 0x1E940; ++code) {
        if (random() % 3 == 0) {
          codes.Add(code, 0);
          model[code] = font;
        }
      }
      fonts.Apply(font, codes);
    }
    std::string bytes;
    qro_base::StringOutputStream out(bytes);
    ASSERT_TRUE(fonts.Write(out));
    ExtraDefaultFonts read;
    ASSERT_TRUE(read.Read(bytes.data(), bytes.size()));
    for (unsigned code = 0x1E8FF; code <= 0x1E940; ++code) {
      const auto it = model.find(code);
      const int want = it == model.end() ? -1 : it->second;
      ASSERT_EQ(fonts.GetFontIndex(code), want) << round << " U+" << std::hex << code;
      ASSERT_EQ(read.GetFontIndex(code), want) << round << " U+" << std::hex << code;
    }
    EXPECT_FALSE(read.Read(bytes.data(), bytes.size() - 1));  // cut short
  }
}

}  // namespace
