// A face's advance table driven by the steps of tests/data/advance_tables.tsv.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"

namespace {

using namespace qro_common;
using font_info_test::ByteSink;

unsigned hexNumber(const std::string& text) {
  return static_cast<unsigned>(std::stoul(text, nullptr, 16));
}

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
    return !r                                          ? "-"
           : r->GetType() == CharMetricsRange::kSingle ? "S"
           : r->GetType() == CharMetricsRange::kZipped ? "Z"
                                                       : "M";
  };
  if (s.find('=') != std::string::npos && isxdigit(static_cast<unsigned char>(s[0]))) {
    const size_t dash = s.find('-'), eq = s.find('=');
    const unsigned first = hexNumber(s), last = dash < eq ? hexNumber(s.substr(dash + 1)) : first;
    bool added = true;
    for (unsigned code = first; code <= last; ++code) {
      const std::string value = s.substr(eq + 1);
      added &= font_info_test::addAdvance(
          *info, code, static_cast<unsigned short>(value == "*" ? code : std::stoi(value)));
    }
    return added ? "." : "refused";
  }
  const char op = s[0];
  const unsigned code = op == '?' ? hexNumber(a[0]) : 0;
  if (op == '?') {
    const CharMetrics* m = info->GetCharMetrics(code);
    return (m ? std::to_string(m->GetAdvance()) : "-") + (info->IsVisibleChar(code) ? "v" : "");
  }
  const CharMetricsRange* range = nullptr;
  if (op == 't' || op == 'b') {  // the slot's range (sub-range)
    try {
      range = info->GetCharMetricsRange(slot(0));
    } catch (const std::out_of_range&) {
      return "throw";
    }
    if (a.size() > 1) {
      range =
          static_cast<const MultiCharMetricsRange*>(range)->GetCharMetricsRange(std::stoi(a[1]));
    }
  }
  if (op == 't') return type(range);
  ByteSink out(op == 'l' ? std::stoul(a[0]) : std::string::npos);
  if (op == 'b') return range->Write(out) ? hexBytes(out.bytes) : "refused";
  if (op == 'l') return std::to_string(info->Write(out));  // into a stream refusing past N bytes
  if (op == 'w') {  // written and read back into a new table; every cut of the bytes is damage
    if (!info->Write(out)) return "refused";
    for (size_t cut = 0; cut < out.bytes.size(); ++cut) {
      std::string part = out.bytes.substr(0, cut);
      auto in = font_info_test::source(part);
      CharMetricsInfo copy;
      if (copy.ReadChecked(in) != CharMetricsInfo::ReadResult::kDamaged)
        return "read " + std::to_string(cut);
      for (int usb = 0; usb < 128; ++usb) {
        if (copy.GetCharMetricsRange(static_cast<unsigned char>(usb)))
          return "left " + std::to_string(cut);
      }
    }
    auto in = font_info_test::source(out.bytes);
    info.reset(new CharMetricsInfo());
    return info->Read(in) && in.Available() == 0 ? "." : "unread";
  }
  if (op == 'r') {  // reads these bytes over what the table holds
    std::string bytes = kelfont_test::unhex(a[0]);
    auto in = font_info_test::source(bytes);
    const bool read = info->Read(in);
    return std::to_string(read) + std::to_string(in.Available());
  }
  const int first = op == 's' || op == 'Z' ? static_cast<int>(hexNumber(a[1])) : 0;
  const int last = op == 's' || op == 'Z' ? static_cast<int>(hexNumber(a[2])) : 0;
  if (op == 's') {  // a single range FIRST-LAST with CODE=ADVANCE in a slot
    auto* single = new SingleCharMetricsRange(first, last);
    single->SetAdvance(hexNumber(a[3]), static_cast<unsigned short>(std::stoi(a[4])));
    info->SetCharMetricsRange(slot(0), single);
  }
  if (op == 'Z') {  // a zipped range FIRST-LAST sharing ADVANCE, no code visible
    auto* shared = new CharMetrics(static_cast<unsigned short>(std::stoi(a[3])));
    info->SetCharMetricsRange(
        slot(0),
        new ZippedCharMetricsRange(first, last, shared, new char[(last - first) / 8 + 1]()));
  }
  if (op == 'm') info->SetCharMetricsRange(slot(0), new MultiCharMetricsRange(std::stoi(a[1])));
  if (op == 'z') info->ZipCharMetricsRanges();
  return std::string("sZmz").find(op) != std::string::npos ? "." : "unknown step " + s;
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
