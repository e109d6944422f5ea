// A face's advance table driven by the steps of tests/data/advance_tables.tsv.
#include "common/font_info/CharMetricsInfo.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"

namespace {

using namespace qro_common;
using font_info_test::ByteSink;

unsigned hexNumber(const std::string& text) { return static_cast<unsigned>(std::stoul(text, nullptr, 16)); }

std::string hexBytes(const std::string& bytes) {
  std::string out;
  char digits[4];
  for (unsigned char b : bytes) {
    snprintf(digits, sizeof digits, "%02X", b);
    out += digits;
  }
  return out;
}

std::string step(std::unique_ptr<CharMetricsInfo>& info, const std::string& s) {
  std::vector<std::string> a;
  std::istringstream parts(s.substr(1));
  for (std::string part; std::getline(parts, part, ',');) a.push_back(part);
  auto slot = [&](size_t i) { return static_cast<unsigned char>(std::stoi(a[i])); };
  auto type = [](const CharMetricsRange* r) {
    return !r ? "-" : r->GetType() == CharMetricsRange::kSingle ? "S"
                    : r->GetType() == CharMetricsRange::kZipped ? "Z" : "M";
  };
  if (s.find('=') != std::string::npos && isxdigit(static_cast<unsigned char>(s[0]))) {
    const size_t dash = s.find('-'), eq = s.find('=');
    const unsigned first = hexNumber(s), last = dash < eq ? hexNumber(s.substr(dash + 1)) : first;
    bool added = true;
    for (unsigned code = first; code <= last; ++code) {
      const std::string value = s.substr(eq + 1);
      added &= font_info_test::addAdvance(*info, code,
                                          static_cast<unsigned short>(value == "*" ? code : std::stoi(value)));
    }
    return added ? "." : "refused";
  }
  switch (s[0]) {
    case '?': {
      const CharMetrics* m = info->GetCharMetrics(hexNumber(a[0]));
      return (m ? std::to_string(m->GetAdvance()) : "-") + (info->IsVisibleChar(hexNumber(a[0])) ? "v" : "");
    }
    case 't':
      try {
        const CharMetricsRange* r = info->GetCharMetricsRange(slot(0));
        if (a.size() > 1) r = static_cast<const MultiCharMetricsRange*>(r)->GetCharMetricsRange(std::stoi(a[1]));
        return type(r);
      } catch (const std::out_of_range&) {
        return "throw";
      }
    case 'z': info->ZipCharMetricsRanges(); return ".";
    case 'b': {  // the bytes of a slot's range (sub-range)
      ByteSink out;
      const CharMetricsRange* r = info->GetCharMetricsRange(slot(0));
      if (a.size() > 1) r = static_cast<const MultiCharMetricsRange*>(r)->GetCharMetricsRange(std::stoi(a[1]));
      return r->Write(out) ? hexBytes(out.bytes) : "refused";
    }
    case 'w': {  // written and read back into a new table; every cut of the bytes is damage
      ByteSink out;
      if (!info->Write(out)) return "refused";
      for (size_t cut = 0; cut < out.bytes.size(); ++cut) {
        std::string part = out.bytes.substr(0, cut);
        auto in = font_info_test::source(part);
        CharMetricsInfo copy;
        if (copy.ReadChecked(in) != CharMetricsInfo::ReadResult::kDamaged) return "cut " + std::to_string(cut);
        for (int usb = 0; usb < 128; ++usb) {
          if (copy.GetCharMetricsRange(static_cast<unsigned char>(usb))) return "left " + std::to_string(cut);
        }
      }
      auto in = font_info_test::source(out.bytes);
      info.reset(new CharMetricsInfo());
      return info->Read(in) && in.Available() == 0 ? "." : "unread";
    }
    case 'r': {  // reads these bytes over what the table holds
      std::string bytes = kelfont_test::unhex(a[0]);
      auto in = font_info_test::source(bytes);
      const bool read = info->Read(in);
      return std::to_string(read) + std::to_string(in.Available());
    }
    case 'l': {  // writes into a stream that takes this many bytes
      ByteSink out(std::stoul(a[0]));
      return std::to_string(info->Write(out));
    }
    case 's': {  // a single range FIRST-LAST with CODE=ADVANCE in a slot
      auto* range = new SingleCharMetricsRange(static_cast<int>(hexNumber(a[1])), static_cast<int>(hexNumber(a[2])));
      range->SetAdvance(hexNumber(a[3]), static_cast<unsigned short>(std::stoi(a[4])));
      info->SetCharMetricsRange(slot(0), range);
      return ".";
    }
    case 'm': info->SetCharMetricsRange(slot(0), new MultiCharMetricsRange(std::stoi(a[1]))); return ".";
    case 'Z':  // a zipped range FIRST-LAST sharing ADVANCE, no code visible
      info->SetCharMetricsRange(slot(0), new ZippedCharMetricsRange(
                                             static_cast<int>(hexNumber(a[1])), static_cast<int>(hexNumber(a[2])),
                                             new CharMetrics(static_cast<unsigned short>(std::stoi(a[3]))),
                                             new char[(hexNumber(a[2]) - hexNumber(a[1])) / 8 + 1]()));
      return ".";
  }
  return "unknown step " + s;
}

TEST(CharMetricsInfo, Steps) {
  for (const kelfont_test::Case& c : kelfont_test::cases("advance_tables.tsv")) {
    std::unique_ptr<CharMetricsInfo> info(new CharMetricsInfo());
    std::istringstream steps(c[0]);
    std::string said;
    for (std::string s; steps >> s;) said += (said.empty() ? "" : " ") + step(info, s);
    EXPECT_EQ(said, c[1]) << c.line;
  }
}

}  // namespace
