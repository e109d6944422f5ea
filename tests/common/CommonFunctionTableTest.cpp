// Functions of the common layer, the per-character answer cache and the language table against
// tables of cases (tests/data/common_functions.tsv): function, arguments, answer.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUtils.h"
#include "common/analysis/LangCode.h"
#include "common/analysis/LangCodeTable.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/CharKeyCache.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/UILangCode.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::Case;
using kelfont_test::expectedFace;
using kelfont_test::hex;
using kelfont_test::orNull;
using kelfont_test::testFontPath;
using qro_common::LangCode;

// The per-character answer cache. Keys "CODE/FONT[/STYLE]": the code in hex, the font index, b, i
// or bi. Values as written: numbers, "empty" (the bit pattern of an empty slot), pointers a, b or
// 0.
qro_common::CharKey keyOf(const std::string& text) {
  const std::size_t slash = text.find('/'), style = text.find('/', slash + 1);
  const std::string styleText = style == std::string::npos ? "" : text.substr(style + 1);
  return {static_cast<std::uint32_t>(std::stoul(text.substr(0, slash), nullptr, 16)),
          std::stoi(text.substr(slash + 1, style - slash - 1)),
          styleText.find('b') != std::string::npos, styleText.find('i') != std::string::npos};
}
int a = 0, b = 0;
template <typename V>
V valueOf(const std::string& text);
template <>
float valueOf(const std::string& text) {
  constexpr std::uint32_t kEmptyBits = 0x7FBADBADu;
  float value = 0;
  std::memcpy(&value, &kEmptyBits, sizeof value);
  return text == "empty" ? value : std::stof(text);
}
template <>
int* valueOf(const std::string& text) {
  return text == "a" ? &a : text == "b" ? &b : nullptr;
}
std::string said(float value) { return std::isnan(value) ? "empty" : kelfont_test::number(value); }
std::string said(int* value) { return value == &a ? "a" : value == &b ? "b" : "0"; }

template <typename V, unsigned kCodeBits>
std::string cache(const std::string& calls) {
  qro_common::CharKeyCache<V, kCodeBits> cache;
  return kelfont_test::answers(calls, [&](const std::string& t) {
    V value{};
    const std::size_t eq = t.find('=');
    if (t[0] == '+') {
      return std::to_string(cache.Insert(keyOf(t.substr(1, eq - 1)), valueOf<V>(t.substr(eq + 1))));
    }
    if (t[0] == '?') return cache.Find(keyOf(t.substr(1)), value) ? said(value) : "-";
    if (t == "#") return std::to_string(cache.Size());
    cache.Clear();
    return std::string(".");
  });
}

// Every identifier's tag against the rows of lang_tags.tsv, and each tag back: the first that
// differs, else the count of rows and of default countries.
std::string langTable() {
  std::map<unsigned, std::string> rows;
  for (const Case& row : kelfont_test::cases("lang_tags.tsv")) rows[row.num(0)] = row[1];
  for (const auto& row : qro_common::kLangTagRows) {
    if (rows.count(row.id) == 0 || rows[row.id] != row.tag) return row.tag;
  }
  for (int id = 0; id <= 0xFFFF; ++id) {
    const std::string tag = rows.count(unsigned(id)) ? rows[unsigned(id)] : "";
    const char* got = LangCode::GetLang(static_cast<unsigned short>(id));
    if (got == nullptr || got != tag || (!tag.empty() && LangCode::GetLangCode(got) != id))
      return hex(id);
  }
  if (LangCode::GetLangCode(std::string(10000, 'k').c_str()) != 0) return "long";
  return std::to_string(rows.size()) + " " +
         std::to_string(std::size(qro_common::kLangCountryRows));
}

// What the analyzer makes of a generated font: pitch, vertical metrics and
// the East Asian flag, the font name, and the localized names. `rewritten`:
// a copy of the font replaced by other bytes once opened (as a copy over it
// does), and whether the advances of A, ~ and U+AC00 read then are the font's.
std::string analyze(const std::string& file, int preferred, bool rewritten = false) {
  const kelfont_test::TempDir dir;
  const std::string path = rewritten ? dir.file(file) : kelfont_test::testFontPath(file);
  if (rewritten && !kelfont_test::writeFile(path, kelfont_test::readFile(testFontPath(file))))
    return "not copied";
  qro_common::FontFileAnalyzer analyzer;
  if (preferred) analyzer.SetPreferredLanguage(static_cast<unsigned short>(preferred));
  if (!analyzer.Open(path.c_str(), 0)) return "not opened";
  if (rewritten) kelfont_test::writeFile(path, std::string(300, 'x'));
  std::unique_ptr<qro_common::FontInfo> info(analyzer.Analyze());
  std::string out = std::to_string(info->GetPitch()) + " " +
                    std::to_string(info->HasVerticalMetrics()) + " " +
                    std::to_string(info->IsCJK()) + " " +
                    (info->GetFontName() ? *info->GetFontName() : "<none>") + " |";
  for (const auto& [language, name] : info->GetLocalizedNames())
    out += " " + hex(language) + "=" + name;
  if (!rewritten) return out;
  analyzer.AnalyzeData(*info);
  const qro_common::CharMetricsInfo* table = info->GetCharMetricsInfo();
  for (unsigned code : {0x41u, 0x7Eu, 0xAC00u}) {
    const qro_common::CharMetrics* metrics = table ? table->GetCharMetrics(code) : nullptr;
    const bool same = metrics && metrics->GetAdvance() == expectedFace(file).chars.at(code).advance;
    out += same ? " same" : " other";
  }
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
  if (f == "lang-table") return langTable();
  if (f == "cache-float") return cache<float, 16>(c[1]);
  if (f == "cache-ptr0") return cache<int*, 0>(c[1]);
  if (f == "cache-ptr8") return cache<int*, 8>(c[1]);
  if (f == "analyze") return analyze(c[1], 0);
  if (f == "analyze-rewritten") return analyze(c[1], 0, true);
  if (f == "analyze-preferring") return analyze(c[1], static_cast<int>(c.num(2)));
  ADD_FAILURE() << "unknown function " << f;
  return "";
}

TEST(CommonFunctions, Table) { kelfont_test::expectAnswers("common_functions.tsv", call); }

}  // namespace
