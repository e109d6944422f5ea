// A face's advance table driven by the steps of tests/data/advance_tables.tsv.
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/analysis/FontUSBType.h"
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

using Model = std::map<unsigned, unsigned short>;  // every advance added and not cleared

// The single range holding a code, its first and last code.
SingleCharMetricsRange* singleOf(CharMetricsInfo& info, unsigned code, int* first, int* last) {
  FontUSBType::CodePointUSBInfo usb{};
  const int bit = FontUSBType::GetCodePointUSBInfo(code, usb);
  CharMetricsRange* range = info.GetCharMetricsRange(static_cast<unsigned char>(bit));
  if (range != nullptr && usb.subRangeIndex >= 0) {
    range = static_cast<MultiCharMetricsRange*>(range)->GetCharMetricsRange(usb.subRangeIndex);
  }
  *first = usb.rangeFirst;
  *last = usb.rangeLast;
  return static_cast<SingleCharMetricsRange*>(range);
}

// Every code of the code's block answers as the model does, and the range's
// bytes list exactly the model's entries, in order; they read back the same.
std::string sameAsModel(CharMetricsInfo& info, unsigned code, const Model& model) {
  int first = 0, last = 0;
  SingleCharMetricsRange* range = singleOf(info, code, &first, &last);
  std::string body(1, '\x01');
  auto put = [&body](unsigned value, int size) {
    for (int i = 0; i < size; ++i) body.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  };
  put(static_cast<unsigned>(first), 4);
  put(static_cast<unsigned>(last), 4);
  auto begin = model.lower_bound(static_cast<unsigned>(first));
  auto end = model.upper_bound(static_cast<unsigned>(last));
  put(static_cast<unsigned>(std::distance(begin, end)), 2);
  for (auto it = begin; it != end; ++it) put(it->first - first, 2), put(it->second, 2);
  for (unsigned c = static_cast<unsigned>(first); c <= static_cast<unsigned>(last); ++c) {
    const CharMetrics* m = range->Get(c);
    const bool modelled = model.count(c) != 0;
    if ((m != nullptr) != modelled || range->IsVisibleChar(c) != modelled ||
        (m != nullptr && m->GetAdvance() != model.at(c))) {
      return "differs at " + std::to_string(c);
    }
  }
  ByteSink out, again;
  if (range->GetPresentCount() != std::distance(begin, end) || !range->Write(out)) return "count";
  if (out.bytes != body) return hexBytes(out.bytes);
  std::string read = out.bytes.substr(1);
  auto in = font_info_test::source(read);
  SingleCharMetricsRange copy(-1, -1);
  return copy.Read(in) && copy.Write(again) && again.bytes == body ? "." : "reread";
}

std::string step(std::unique_ptr<CharMetricsInfo>& info, const std::string& s, Model& model) {
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
      const auto advance = static_cast<unsigned short>(value == "*" ? code : std::stoi(value));
      if (font_info_test::addAdvance(*info, code, advance)) {
        model[code] = advance;
      } else {
        added = false;
      }
    }
    return added ? "." : "refused";
  }
  const char op = s[0];
  int first = 0, last = 0;
  if (op == '!') return sameAsModel(*info, hexNumber(a[0]), model);
  if (op == '-') singleOf(*info, hexNumber(a[0]), &first, &last)->Set(hexNumber(a[0]), nullptr);
  if (op == '-') return model.erase(hexNumber(a[0])) ? "." : "none";
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
  if (op == 's' || op == 'Z') {
    first = static_cast<int>(hexNumber(a[1]));
    last = static_cast<int>(hexNumber(a[2]));
  }
  if (op == 's') {  // a single range FIRST-LAST with CODE=ADVANCE in a slot (SLOT/SUB: a block)
    auto* single = new SingleCharMetricsRange(first, last);
    single->SetAdvance(hexNumber(a[3]), static_cast<unsigned short>(std::stoi(a[4])));
    const size_t sub = a[0].find('/');
    if (sub == std::string::npos) info->SetCharMetricsRange(slot(0), single);
    if (sub != std::string::npos) {
      static_cast<MultiCharMetricsRange*>(info->GetCharMetricsRange(slot(0)))
          ->SetCharMetricsRange(std::stoi(a[0].substr(sub + 1)), single);
    }
  }
  if (op == 'k') {  // the range of block SUB of a multi range set again into its place
    auto* multi = static_cast<MultiCharMetricsRange*>(info->GetCharMetricsRange(slot(0)));
    multi->SetCharMetricsRange(std::stoi(a[1]), multi->GetCharMetricsRange(std::stoi(a[1])));
  }
  if (op == 'c') {  // in the range of FROM, TO gets FROM's entry, or a new one of ADVANCE
    SingleCharMetricsRange* range = singleOf(*info, hexNumber(a[0]), &first, &last);
    const auto advance = static_cast<unsigned short>(a.size() > 2 ? std::stoi(a[2]) : 0);
    range->Set(hexNumber(a[1]),
               a.size() > 2 ? new CharMetrics(advance) : range->Get(hexNumber(a[0])));
  }
  if (op == 'Z') {  // a zipped range FIRST-LAST sharing ADVANCE, no code visible
    auto* shared = new CharMetrics(static_cast<unsigned short>(std::stoi(a[3])));
    info->SetCharMetricsRange(
        slot(0),
        new ZippedCharMetricsRange(first, last, shared, new char[(last - first) / 8 + 1]()));
  }
  if (op == 'm') info->SetCharMetricsRange(slot(0), new MultiCharMetricsRange(std::stoi(a[1])));
  if (op == 'z') info->ZipCharMetricsRanges();
  return std::string("sZmzck").find(op) != std::string::npos ? "." : "unknown step " + s;
}

TEST(CharMetricsInfo, Steps) {
  for (const kelfont_test::Case& c : kelfont_test::cases("advance_tables.tsv")) {
    std::unique_ptr<CharMetricsInfo> info(new CharMetricsInfo());
    Model model;
    std::istringstream steps(c[0]);
    std::string said;
    for (std::string s; steps >> s;) said += (said.empty() ? "" : " ") + step(info, s, model);
    EXPECT_EQ(said, c[1]) << c.line;
  }
}

}  // namespace
