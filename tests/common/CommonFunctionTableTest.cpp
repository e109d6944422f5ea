// Functions of the common layer against tables of cases
// (tests/data/common_functions.tsv): function, arguments, answer.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUtils.h"
#include "common/analysis/LangCode.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/UILangCode.h"
#include "tests/support/Cases.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::Case;
using kelfont_test::hex;
using kelfont_test::orNull;
using qro_common::LangCode;

// What the analyzer makes of a generated font: pitch, vertical metrics and
// the East Asian flag, the font name, and the localized names.
std::string analyze(const std::string& file, int preferred) {
  qro_common::FontFileAnalyzer analyzer;
  if (preferred) analyzer.SetPreferredLanguage(static_cast<unsigned short>(preferred));
  if (!analyzer.Open(kelfont_test::testFontPath(file).c_str(), 0)) return "not opened";
  std::unique_ptr<qro_common::FontInfo> info(analyzer.Analyze());
  std::string out = std::to_string(info->GetPitch()) + " " +
                    std::to_string(info->HasVerticalMetrics()) + " " +
                    std::to_string(info->IsCJK()) + " " +
                    (info->GetFontName() ? *info->GetFontName() : "<none>") + " |";
  for (const auto& [language, name] : info->GetLocalizedNames())
    out += " " + hex(language) + "=" + name;
  return out;
}

// The answer of the function c[0] to the arguments of the line.
std::string call(const Case& c) {
  const std::string& f = c[0];
  if (f == "lang") return hex(LangCode::GetLangCode(orNull(c[1])));
  if (f == "lang2") return hex(LangCode::GetLangCode(orNull(c[1]), orNull(c[2])));
  if (f == "tag") return LangCode::GetLang(static_cast<unsigned short>(c.num(1)));
  if (f == "country") {
    const char* country = LangCode::GetCountryName(orNull(c[1]));
    return country ? country : "NULL";
  }
  if (f == "ui-lang") {
    qro_base::Environment& environment = qro_base::ensureEnvironment();
    const qro_base::Locale saved = environment.GetUILocale();
    environment.SetUILocale(qro_base::Locale(c[1].c_str(), c[2].c_str()));
    const unsigned code = qro_common::getUILangCode();
    environment.SetUILocale(saved);
    return hex(code);
  }
  if (f == "mac-lang") return hex(qro_common::FontUtils::GetWinLangFromMac(c.num(1)));
  if (f == "byte-size")
    return std::to_string(qro_common::getByteSize(int(c.num(1)), int(c.num(2))));
  if (f == "font-file") return std::to_string(qro_common::isFontFile(c[1]));
  if (f == "u2-utf8") {
    char out[64];
    EXPECT_EQ(qro_common::FontFileAnalyzer::ConvertU2ToUtf8(out, kelfont_test::units(c[1]).c_str()),
              out);
    return out;
  }
  if (f ==
      "u2-utf8-bounded") {  // stops before a unit that does not fit, never writes past the size
    char out[16];
    std::memset(out, 'X', sizeof out);
    const size_t size = static_cast<size_t>(c.num(2));
    const size_t written =
        qro_common::FontFileAnalyzer::ConvertU2ToUtf8(out, size, kelfont_test::units(c[1]).c_str());
    EXPECT_EQ(out[size], 'X') << "wrote past " << size;
    return std::to_string(written) + ":" + (size ? std::string(out) : "");
  }
  if (f == "analyze") return analyze(c[1], 0);
  if (f == "analyze-preferring") return analyze(c[1], static_cast<int>(c.num(2)));
  ADD_FAILURE() << "unknown function " << f;
  return "";
}

TEST(CommonFunctions, Table) { kelfont_test::expectAnswers("common_functions.tsv", call); }

}  // namespace
