// The per-face tables against tests/data/byte_formats.tsv: bytes written for
// given entries (and, marked "cuts", every shorter part of them reading as
// damaged), what given bytes read as, and what given entries answer.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"

namespace {

using namespace qro_common;
using font_info_test::ByteSink;

unsigned code(const std::string& hex) {
  return static_cast<unsigned>(std::stoul(hex, nullptr, 16));
}

// One table of a kind ("single", "zipped", "multi": one range of advances;
// "metrics", "defaults", "kerning": a face's table), or "empty"/"damaged".
struct Table {
  std::unique_ptr<CharMetricsRange> range;
  std::unique_ptr<CharMetricsInfo> metrics;
  std::unique_ptr<DefaultFontInfo> defaults;
  std::unique_ptr<KerningInfo> kerning;
  std::string state;

  explicit Table(const std::string& kind) {
    if (kind == "metrics") metrics.reset(new CharMetricsInfo());
    if (kind == "defaults") defaults.reset(new DefaultFontInfo());
    if (kind == "kerning") kerning.reset(new KerningInfo());
    if (kind == "single") range.reset(new SingleCharMetricsRange(-1, -1));
    if (kind == "zipped") range.reset(new ZippedCharMetricsRange());
    if (kind == "multi") range.reset(new MultiCharMetricsRange(-1));
  }

  // "CODE=VALUE ..." (hex codes); "L,R=D" for kerning; for defaults a negative
  // value -N puts an empty range of the code's block in slot N.
  void add(const std::string& entries) {
    std::istringstream words(entries);
    for (std::string w; words >> w;) {
      const std::string c = w.substr(0, w.find('='));
      const int v = std::stoi(w.substr(w.find('=') + 1));
      if (metrics) font_info_test::addAdvance(*metrics, code(c), static_cast<unsigned short>(v));
      if (defaults && v < 0) {
        defaults->SetDefaultFontRange(static_cast<unsigned char>(-v),
                                      new SingleDefaultFontRange(code(c), code(c) + 0x7F));
      } else if (defaults) {
        font_info_test::addDefaultFont(*defaults, code(c), static_cast<short>(v));
      }
      if (kerning) {
        kerning->Register(std::stoi(c), std::stoi(c.substr(c.find(',') + 1)),
                          static_cast<short>(v));
      }
    }
  }

  std::string write(size_t limit = std::string::npos) const {
    ByteSink out(limit);
    const bool written = metrics    ? metrics->Write(out)
                         : defaults ? defaults->Write(out)
                                    : kerning->Write(out);
    return written ? out.bytes : "refused";
  }

  void read(const std::string& bytes) {
    auto in = font_info_test::source(bytes);
    bool ok = false;
    if (range) {
      ok = range->Read(in);
      EXPECT_TRUE(ok || range->Get(0) == nullptr) << "a range that failed to read answers";
    } else if (metrics) {
      auto result = metrics->ReadChecked(in);
      state = result == CharMetricsInfo::ReadResult::kEmpty ? "empty" : "";
      ok = result == CharMetricsInfo::ReadResult::kLoaded;
    } else if (defaults) {
      auto result = defaults->ReadChecked(in);
      state = result == DefaultFontInfo::ReadResult::kEmpty ? "empty" : "";
      ok = result == DefaultFontInfo::ReadResult::kLoaded;
    } else {
      ok = kerning->Read(in);
    }
    if (!ok && state.empty()) state = "damaged";
    EXPECT_TRUE(ok || !defaults || defaults->GetFontIndex(0x41) == -1) << "damaged defaults";
  }

  // The answers for the codes asked, as "CODE=VALUE ..." ("-" for none);
  // kerning: the count, then "L,R=D"; "SLOT/SUB:CODE" asks a sub-range of
  // default fonts directly.
  std::string answer(const std::string& asked) const {
    if (!state.empty()) return state;
    std::string out = kerning ? "count " + std::to_string(kerning->GetCount()) : "";
    std::istringstream words(asked);
    for (std::string w; words >> w;) {
      const size_t slash = w.find('/'), colon = w.find(':');
      const unsigned c = code(w.substr(colon == std::string::npos ? 0 : colon + 1));
      const CharMetrics* m = range ? range->Get(c) : metrics ? metrics->GetCharMetrics(c) : nullptr;
      int value = m ? m->GetAdvance() : -1;
      if (defaults && colon == std::string::npos) value = defaults->GetFontIndex(c);
      if (defaults && colon != std::string::npos) {
        auto* multi = static_cast<MultiDefaultFontRange*>(
            defaults->GetDefaultFontRange(static_cast<unsigned char>(std::stoi(w))));
        const DefaultFontRange* sub = multi->GetDefaultFontRange(std::stoi(w.substr(slash + 1)));
        value = sub ? sub->Get(c) : -1;
      }
      if (kerning) value = kerning->GetDelta(std::stoi(w), std::stoi(w.substr(w.find(',') + 1)));
      out += (out.empty() ? "" : " ") + w + "=" +
             (value < 0 && !kerning ? "-" : std::to_string(value));
    }
    return out;
  }
};

TEST(ByteFormats, Table) {
  for (const kelfont_test::Case& c : kelfont_test::cases("byte_formats.tsv")) {
    const std::string verb = c[0].substr(0, c[0].find('-')), kind = c[0].substr(verb.size() + 1);
    Table table(kind);
    if (verb == "write") {
      const std::string bytes = kelfont_test::unhex(c[2]);
      table.add(c[1]);
      EXPECT_EQ(kelfont_test::escape(table.write()), kelfont_test::escape(bytes)) << c.line;
      // A stream that refuses a byte fails the write.
      EXPECT_EQ(table.write(bytes.size() - 1), "refused") << c.line;
      for (size_t cut = 0; c.fields.size() > 3 && cut < bytes.size(); ++cut) {
        Table part(kind);
        part.read(bytes.substr(0, cut));
        EXPECT_EQ(part.state, "damaged") << cut << c.line;
      }
    } else if (verb == "ask") {
      table.add(c[1]);
      EXPECT_EQ(table.answer(c[2]), c[3]) << c.line;
    } else {
      table.read(kelfont_test::unhex(c[1]));
      EXPECT_EQ(table.answer(c[2]), c[3]) << c.line;
    }
  }
  EXPECT_THROW(DefaultFontInfo().GetDefaultFontRange(128), std::out_of_range);
}

}  // namespace
