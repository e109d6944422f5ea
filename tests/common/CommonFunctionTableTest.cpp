// Functions of the common layer against tables of cases
// (tests/data/common_functions.tsv): function, arguments, answer.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
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

const std::map<std::string, std::function<std::string(const Case&)>> kFunctions = {
    {"lang", [](const Case& c) { return hex(LangCode::GetLangCode(orNull(c[1]))); }},
    {"lang2", [](const Case& c) { return hex(LangCode::GetLangCode(orNull(c[1]), orNull(c[2]))); }},
    {"tag",
     [](const Case& c) {
       return std::string(LangCode::GetLang(static_cast<unsigned short>(c.num(1))));
     }},
    {"country",
     [](const Case& c) {
       const char* country = LangCode::GetCountryName(orNull(c[1]));
       return std::string(country ? country : "NULL");
     }},
    {"ui-lang",
     [](const Case& c) {
       qro_base::Environment& environment = qro_base::ensureEnvironment();
       const qro_base::Locale saved = environment.GetUILocale();
       environment.SetUILocale(qro_base::Locale(c[1].c_str(), c[2].c_str()));
       unsigned code = qro_common::getUILangCode();
       environment.SetUILocale(saved);
       return hex(code);
     }},
    {"mac-lang",
     [](const Case& c) { return hex(qro_common::FontUtils::GetWinLangFromMac(c.num(1))); }},
    {"byte-size",
     [](const Case& c) {
       return std::to_string(qro_common::getByteSize(int(c.num(1)), int(c.num(2))));
     }},
    {"font-file", [](const Case& c) { return std::to_string(qro_common::isFontFile(c[1])); }},
    {"u2-utf8",
     [](const Case& c) {
       char out[64];
       EXPECT_EQ(
           qro_common::FontFileAnalyzer::ConvertU2ToUtf8(out, kelfont_test::units(c[1]).c_str()),
           out);
       return std::string(out);
     }},
    {"u2-utf8-bounded",  // stops before a unit that does not fit, never writes past the size
     [](const Case& c) {
       char out[16];
       std::memset(out, 'X', sizeof out);
       size_t size = static_cast<size_t>(c.num(2));
       size_t written = qro_common::FontFileAnalyzer::ConvertU2ToUtf8(
           out, size, kelfont_test::units(c[1]).c_str());
       EXPECT_EQ(out[size], 'X') << "wrote past " << size;
       return std::to_string(written) + ":" + (size ? std::string(out) : "");
     }},
    {"analyze", [](const Case& c) { return analyze(c[1], 0); }},
    {"analyze-preferring", [](const Case& c) { return analyze(c[1], static_cast<int>(c.num(2))); }},
};

TEST(CommonFunctions, Table) {
  kelfont_test::expectAnswers("common_functions.tsv", [](const Case& c) {
    auto function = kFunctions.find(c[0]);
    return function == kFunctions.end() ? "unknown function" : function->second(c);
  });
}

}  // namespace
