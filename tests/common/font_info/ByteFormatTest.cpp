// The binary forms of the per-face tables against tests/data/byte_formats.tsv:
// bytes written for given entries (and, marked "cuts", every shorter part of
// them reading as damaged), and what given bytes read as.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"

namespace {

using namespace qro_common;
using font_info_test::ByteSink;

// "CODE=VALUE ..." pairs (hex codes, decimal values); "L,R=D" for kerning.
std::vector<std::pair<std::string, int>> entries(const std::string& text) {
  std::vector<std::pair<std::string, int>> out;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    out.emplace_back(word.substr(0, word.find('=')), std::stoi(word.substr(word.find('=') + 1)));
  }
  return out;
}

unsigned code(const std::string& hex) {
  return static_cast<unsigned>(std::stoul(hex, nullptr, 16));
}

std::string written(const std::string& kind, const std::string& what) {
  ByteSink out;
  if (kind == "metrics") {
    CharMetricsInfo info;
    for (auto& [c, v] : entries(what))
      font_info_test::addAdvance(info, code(c), static_cast<unsigned short>(v));
    EXPECT_TRUE(info.Write(out));
  } else if (kind == "defaults") {
    DefaultFontInfo info;
    for (auto& [c, v] : entries(what)) {
      if (v < 0) {  // a range of the code's block without entries
        info.SetDefaultFontRange(static_cast<unsigned char>(-v),
                                 new SingleDefaultFontRange(code(c), code(c) + 0x7F));
      } else {
        font_info_test::addDefaultFont(info, code(c), static_cast<short>(v));
      }
    }
    EXPECT_TRUE(info.Write(out));
  } else {
    KerningInfo kerning;
    for (auto& [pair, v] : entries(what)) {
      kerning.Register(std::stoi(pair), std::stoi(pair.substr(pair.find(',') + 1)),
                       static_cast<short>(v));
    }
    EXPECT_TRUE(kerning.Write(out));
  }
  return out.bytes;
}

// What the bytes read as: "damaged", or the answers for the codes asked
// ("-" for none), as "CODE=VALUE ...".
std::string read(const std::string& kind, const std::string& bytes, const std::string& asked) {
  auto in = font_info_test::source(bytes);
  std::unique_ptr<CharMetricsRange> range;
  std::unique_ptr<CharMetricsInfo> metrics;
  std::unique_ptr<DefaultFontInfo> defaults;
  bool ok = false;
  if (kind == "single" || kind == "zipped" || kind == "multi") {
    range.reset(kind == "single"
                    ? static_cast<CharMetricsRange*>(new SingleCharMetricsRange(-1, -1))
                : kind == "zipped" ? static_cast<CharMetricsRange*>(new ZippedCharMetricsRange())
                                   : new MultiCharMetricsRange(-1));
    ok = range->Read(in);
    if (!ok) {
      EXPECT_EQ(range->Get(0), nullptr) << "a range that failed to read answers";
    }
  } else if (kind == "metrics") {
    metrics.reset(new CharMetricsInfo());
    auto result = metrics->ReadChecked(in);
    if (result == CharMetricsInfo::ReadResult::kEmpty) return "empty";
    ok = result == CharMetricsInfo::ReadResult::kLoaded;
  } else if (kind == "defaults") {
    defaults.reset(new DefaultFontInfo());
    auto result = defaults->ReadChecked(in);
    if (result == DefaultFontInfo::ReadResult::kEmpty) return "empty";
    ok = result == DefaultFontInfo::ReadResult::kLoaded;
  } else {
    KerningInfo kerning;
    if (!kerning.Read(in)) return "damaged";
    std::string out = "count " + std::to_string(kerning.GetCount());
    std::istringstream words(asked);
    for (std::string w; words >> w;) {
      out += " " + w + "=" +
             std::to_string(kerning.GetDelta(std::stoi(w), std::stoi(w.substr(w.find(',') + 1))));
    }
    return out;
  }
  if (!ok) {
    EXPECT_TRUE(!defaults || defaults->GetFontIndex(0x41) == -1) << "damaged defaults answer";
    return "damaged";
  }
  std::string out;
  std::istringstream words(asked);
  for (std::string word; words >> word;) {
    std::string c = word.substr(0, word.find('='));
    int value = -1;
    if (range && range->Get(code(c))) value = range->Get(code(c))->GetAdvance();
    if (metrics && metrics->GetCharMetrics(code(c)))
      value = metrics->GetCharMetrics(code(c))->GetAdvance();
    if (defaults) value = defaults->GetFontIndex(code(c));
    out += (out.empty() ? "" : " ") + c + "=" + (value < 0 ? "-" : std::to_string(value));
  }
  return out;
}

TEST(ByteFormats, Table) {
  for (const kelfont_test::Case& c : kelfont_test::cases("byte_formats.tsv")) {
    if (c[0].rfind("write-", 0) == 0) {
      const std::string bytes = kelfont_test::unhex(c[2]);
      EXPECT_EQ(kelfont_test::escape(written(c[0].substr(6), c[1])), kelfont_test::escape(bytes))
          << c.line;
      for (size_t cut = 0; c.fields.size() > 3 && cut < bytes.size(); ++cut) {
        EXPECT_EQ(read(c[0].substr(6), bytes.substr(0, cut), ""), "damaged") << cut << c.line;
      }
    } else {
      EXPECT_EQ(read(c[0].substr(5), kelfont_test::unhex(c[1]), c[2]), c[3]) << c.line;
    }
  }
}

}  // namespace
