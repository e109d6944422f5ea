// A face's tables (advances, default fonts, kerning) driven by the steps of
// tests/data/face_tables.tsv.
#include <gtest/gtest.h>
#include <malloc.h>

#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/MemoryInputStream.h"
#include "base/OutputStream.h"
#include "base/StringOutputStream.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/ExtraCharMetrics.h"
#include "common/font_info/ExtraDefaultFonts.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"

namespace {

using namespace qro_common;

// A sanitizer's heap is not measured.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHeapIsInstrumented = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kHeapIsInstrumented = true;
#else
constexpr bool kHeapIsInstrumented = false;
#endif
#else
constexpr bool kHeapIsInstrumented = false;
#endif
static_assert(sizeof(CharMetrics) == 2, "an advance takes two bytes");

// Collects written bytes; refuses writes once `limit` bytes were taken.
struct ByteSink : qro_base::StringOutputStream {
  explicit ByteSink(size_t limit = std::string::npos) : StringOutputStream(bytes), limit(limit) {}
  bool Write(char c) override { return Write(&c, 1); }
  bool Write(const char* buffer, unsigned count) override {
    return bytes.size() + count <= limit && StringOutputStream::Write(buffer, count);
  }
  std::string bytes;
  size_t limit;
};

// An input stream over its own copy of some bytes.
struct Source {
  explicit Source(const std::string& text) : bytes(text) {}
  std::string bytes;
  qro_base::MemoryInputStream in{bytes.data(), static_cast<unsigned>(bytes.size())};
};

std::string named(RangeTableRead read) {
  return read == RangeTableRead::kLoaded  ? "."
         : read == RangeTableRead::kEmpty ? "empty"
                                          : "damaged";
}

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

using Model = std::map<unsigned, unsigned short>;

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
  Source read(out.bytes.substr(1));
  SingleCharMetricsRange copy(-1, -1);
  return copy.Read(read.in) && copy.Write(again) && again.bytes == body ? "." : "reread";
}

// The bytes `write` puts out, in hex; a stream refusing the last of them fails the write, and
// every shorter part of them reads as damaged.
std::string written(const std::function<bool(qro_base::OutputStream&)>& write,
                    const std::function<bool(const std::string&)>& damaged,
                    std::string* bytes = nullptr) {
  ByteSink out;
  if (!write(out)) return "refused";
  ByteSink shorter(out.bytes.size() - 1);
  if (write(shorter)) return "unrefused";
  for (size_t cut = 0; cut < out.bytes.size(); ++cut) {
    if (!damaged(out.bytes.substr(0, cut))) return "read " + std::to_string(cut);
  }
  if (bytes) *bytes = out.bytes;
  return hexBytes(out.bytes);
}

// The fonts of codes without slot: FONT:FIRST[-LAST],... (a face's codes applied), W, rHEX.
std::string extraStep(ExtraDefaultFonts& extra, const std::string& s) {
  auto damaged = [](const std::string& bytes) {
    ExtraDefaultFonts read;
    return !read.Read(bytes.data(), bytes.size()) && read.IsEmpty();
  };
  if (s == "W")
    return written([&](qro_base::OutputStream& out) { return extra.Write(out); }, damaged);
  if (s[0] == 'r') {
    const std::string bytes = kelfont_test::unhex(s.substr(1));
    return extra.Read(bytes.data(), bytes.size()) ? "." : extra.IsEmpty() ? "damaged" : "kept";
  }
  ExtraCharMetrics codes;
  std::istringstream runs(s.substr(s.find(':') + 1));
  for (std::string run; std::getline(runs, run, ',');) {
    const unsigned last = hexNumber(run.substr(run.find('-') + 1));
    for (unsigned code = hexNumber(run); code <= last; ++code) codes.Add(code, 0);
  }
  extra.Apply(std::stoi(s), codes);
  return ".";
}

// Default fonts: CODE=FONT (a negative FONT -N puts an empty range of the code's block in slot
// N), ?CODE or ?SLOT/SUB:CODE (a block's range asked directly), W, rHEX.
std::string defaultsStep(DefaultFontInfo& fonts, const std::string& s) {
  auto damaged = [](const std::string& bytes) {
    Source from(bytes);
    DefaultFontInfo read;
    return read.ReadChecked(from.in) == RangeTableRead::kDamaged && read.GetFontIndex(0x41) == -1;
  };
  if (s == "W")
    return written([&](qro_base::OutputStream& out) { return fonts.Write(out); }, damaged);
  if (s[0] == 'X') return extraStep(fonts.GetExtraFonts(), s.substr(1));
  if (s[0] == 'r') {
    Source from(kelfont_test::unhex(s.substr(1)));
    const RangeTableRead read = fonts.ReadChecked(from.in);
    return read != RangeTableRead::kLoaded && fonts.GetFontIndex(0x41) != -1 ? "answers"
                                                                             : named(read);
  }
  const size_t colon = s.find(':');
  int font = 0;
  if (s[0] == '?' && colon == std::string::npos) font = fonts.GetFontIndex(hexNumber(s.substr(1)));
  if (s[0] == '?' && colon != std::string::npos) {
    auto* multi = static_cast<MultiDefaultFontRange*>(
        fonts.GetDefaultFontRange(static_cast<unsigned char>(std::stoi(s.substr(1)))));
    const DefaultFontRange* sub = multi->GetDefaultFontRange(std::stoi(s.substr(s.find('/') + 1)));
    font = sub ? sub->Get(hexNumber(s.substr(colon + 1))) : -1;
  }
  if (s[0] == '?') return font < 0 ? "-" : std::to_string(font);
  const unsigned code = hexNumber(s);
  font = std::stoi(s.substr(s.find('=') + 1));
  if (font < 0) {
    fonts.SetDefaultFontRange(static_cast<unsigned char>(-font),
                              new SingleDefaultFontRange(code, code + 0x7F));
  }
  return font < 0 || font_info_test::addDefaultFont(fonts, code, static_cast<short>(font))
             ? "."
             : "refused";
}

// Kerning: LEFT,RIGHT=DELTA (the pairs then), ?LEFT,RIGHT (the delta), W, rHEX.
std::string kerningStep(KerningInfo& kerning, const std::string& s) {
  auto damaged = [](const std::string& bytes) {
    Source from(bytes);
    return !KerningInfo().Read(from.in);
  };
  if (s == "W")
    return written([&](qro_base::OutputStream& out) { return kerning.Write(out); }, damaged);
  if (s[0] == 'r') {
    Source from(kelfont_test::unhex(s.substr(1)));
    return kerning.Read(from.in) ? std::to_string(kerning.GetCount()) : "damaged";
  }
  const int left = std::stoi(s.substr(s[0] == '?')), right = std::stoi(s.substr(s.find(',') + 1));
  if (s[0] == '?') return std::to_string(kerning.GetDelta(left, right));
  kerning.Register(left, right, static_cast<short>(std::stoi(s.substr(s.find('=') + 1))));
  return std::to_string(kerning.GetCount());
}

struct State {
  std::unique_ptr<CharMetricsInfo> info{new CharMetricsInfo()};
  Model model;  // every advance added and not cleared
  DefaultFontInfo fonts;
  KerningInfo kerning;
};

std::string step(State& state, const std::string& s) {
  std::unique_ptr<CharMetricsInfo>& info = state.info;
  Model& model = state.model;
  if (s[0] == 'n') return defaultsStep(state.fonts, s.substr(1));
  if (s[0] == 'K') return kerningStep(state.kerning, s.substr(1));
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
    const size_t dash = s.find('-'), eq = s.find('='), slash = s.find('/');
    const unsigned first = hexNumber(s), last = dash < eq ? hexNumber(s.substr(dash + 1)) : first;
    const unsigned stride = slash < eq ? std::stoul(s.substr(slash + 1)) : 1;
    bool added = true;
    for (unsigned code = first; code <= last; code += stride) {
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
  if (op == 'M') {  // MN: read back, the table takes at most N heap bytes per advance
    ByteSink out;
    Source from(info->Write(out) ? out.bytes : "");
    CharMetricsInfo loaded;
    const size_t before = mallinfo2().uordblks;
    const bool read = loaded.Read(from.in);
    const double perAdvance = static_cast<double>(mallinfo2().uordblks - before) / model.size();
    return kHeapIsInstrumented || (read && perAdvance <= std::stod(a[0]))
               ? "."
               : std::to_string(perAdvance);
  }
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
  auto damaged = [](const std::string& bytes) {            // and leaves no range
    Source from(bytes);
    CharMetricsInfo copy;
    const bool result = copy.ReadChecked(from.in) == RangeTableRead::kDamaged;
    for (int usb = 0; usb < 128; ++usb) {
      if (copy.GetCharMetricsRange(static_cast<unsigned char>(usb))) return false;
    }
    return result;
  };
  const auto write = [&info](qro_base::OutputStream& sink) { return info->Write(sink); };
  if (op == 'W') return written(write, damaged);
  if (op == 'w') {  // written and read back into a new table
    std::string bytes;
    const std::string said = written(write, damaged, &bytes);
    Source from(bytes);
    info.reset(new CharMetricsInfo());
    return bytes.empty() ? said : info->Read(from.in) && !from.in.Available() ? "." : "unread";
  }
  if (op == 'r') {  // reads these bytes over what the table holds (" left": not all of them)
    Source from(kelfont_test::unhex(a[0]));
    const std::string read = named(info->ReadChecked(from.in));
    return read + (from.in.Available() ? " left" : "");
  }
  if (op == 'R') {  // RKIND,HEX: a lone range read (Single, Zipped, Multi), put in slot 0
    std::unique_ptr<CharMetricsRange> range;
    if (a[0] == "S") range.reset(new SingleCharMetricsRange(-1, -1));
    if (a[0] == "Z") range.reset(new ZippedCharMetricsRange());
    if (a[0] == "M") range.reset(new MultiCharMetricsRange(-1));
    Source from(kelfont_test::unhex(a[1]));
    if (!range->Read(from.in)) return range->Get(0) ? "answers" : "damaged";
    info->SetCharMetricsRange(0, range.release());
    return ".";
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
  if (op == 'X') {  // XCODE=ADV,...: the face's characters without slot
    auto* extra = new ExtraCharMetrics();
    for (const std::string& e : a)
      extra->Add(hexNumber(e), static_cast<unsigned short>(std::stoi(e.substr(e.find('=') + 1))));
    info->SetExtraCharMetrics(extra);
  }
  if (op == 'm') info->SetCharMetricsRange(slot(0), new MultiCharMetricsRange(std::stoi(a[1])));
  if (op == 'z') info->ZipCharMetricsRanges();
  return std::string("sZmzckX").find(op) != std::string::npos ? "." : "unknown step " + s;
}

TEST(FaceTables, Steps) {
  for (const kelfont_test::Case& c : kelfont_test::cases("face_tables.tsv")) {
    State state;
    kelfont_test::expectCalls(
        c, 0, [&state](const std::string& s, std::ostream& said) { said << step(state, s); });
  }
  EXPECT_THROW(DefaultFontInfo().GetDefaultFontRange(128), std::out_of_range);
}

}  // namespace
