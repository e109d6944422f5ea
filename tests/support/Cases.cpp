#include "tests/support/Cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kelfont_test {
namespace {

// The fields between the separators, empty ones too.
std::vector<std::string> split(const std::string& line, char separator) {
  std::vector<std::string> fields;
  for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1)
    fields.push_back(line.substr(start, (end = line.find(separator, start)) - start));
  return fields;
}

}  // namespace

const std::string& Case::operator[](size_t i) const {
  static const std::string kNone;
  return i < fields.size() ? fields[i] : kNone;
}

long long Case::num(size_t i) const { return std::strtoll((*this)[i].c_str(), nullptr, 0); }

std::string Case::raw(size_t i) const {
  const std::vector<std::string> fields = split(line, '\t');
  return i < fields.size() ? fields[i] : "";
}

std::vector<Case> cases(const std::string& name) {
  std::ifstream in(std::string(KELFONT_TEST_SOURCE_DIR) + "/data/" + name);
  EXPECT_TRUE(in.good()) << "no case file " << name;
  std::vector<Case> out;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    out.push_back(Case{line, split(line, '\t')});
    for (std::string& field : out.back().fields) field = unescape(field);
  }
  return out;
}

std::string unescape(const std::string& text) {
  static const std::string kEscapes = "nrt0\\x";
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    // Others are kept for the test to read (\u0041), and a '\\' at the end.
    const size_t code = text[i] == '\\' ? kEscapes.find(text.c_str()[i + 1]) : std::string::npos;
    if (code == std::string::npos) {
      out += text[i];
    } else if (kEscapes[code] == 'x') {
      out += static_cast<char>(std::strtol(text.substr(i + 2, 2).c_str(), nullptr, 16));
      i += 3;
    } else {
      out += "\n\r\t\0\\"[code];
      ++i;
    }
  }
  return out;
}

std::string unhex(const std::string& text) {
  std::string digits, out;
  for (char c : text) digits += isxdigit(static_cast<unsigned char>(c)) ? std::string(1, c) : "";
  for (size_t i = 0; i + 1 < digits.size(); i += 2)
    out += static_cast<char>(std::strtol(digits.substr(i, 2).c_str(), nullptr, 16));
  return out;
}

qro_base::u16string units(const std::string& text) {
  qro_base::u16string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool unit = text.compare(i, 2, "\\u") == 0 && i + 6 <= text.size();
    out.push_back(
        static_cast<unsigned short>(unit ? std::strtoul(text.substr(i + 2, 4).c_str(), nullptr, 16)
                                         : unsigned(text[i] & 0xFF)));
    i += unit ? 5 : 0;
  }
  return out;
}

std::string escape(const std::string& bytes) {
  std::string out;
  for (unsigned char c : bytes) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\x%02X", c);
    out += c >= 0x20 && c < 0x7F && c != '\\' ? std::string(1, static_cast<char>(c)) : hex;
  }
  return out;
}

std::string expand(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t star = text.find_first_not_of("0123456789", i + 1);
    const size_t end = text.find('}', star);
    if (text[i] != '{' || star == i + 1 || end == std::string::npos || text[star] != '*') {
      out += text[i];
      continue;
    }
    for (long n = std::strtol(text.c_str() + i + 1, nullptr, 10); n > 0; --n)
      out += text.substr(star + 1, end - star - 1);
    i = end;
  }
  return out;
}

std::string runs(const std::string& text) {
  std::string out;
  for (size_t i = 0, n; i < text.size(); i += n) {
    n = text.find_first_not_of(text[i], i) - i;
    n = std::min(n, text.size() - i);
    out += n > 11 ? "{" + std::to_string(n) + "*" + text[i] + "}" : text.substr(i, n);
  }
  return out;
}

std::string hex(unsigned long long value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", value);
  return text;
}

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

const char* orNull(const std::string& text) { return text == "NULL" ? nullptr : text.c_str(); }

void expectAnswers(const std::string& name, const std::function<std::string(const Case&)>& answer) {
  for (const Case& c : cases(name)) EXPECT_EQ(answer(c), c.fields.back()) << c.line;
}

void expectCalls(const Case& c, size_t calls, const Call& call) {
  const std::string said = answers(c[calls], [&](const std::string& op) {
    std::ostringstream out;
    call(expand(op), out);
    return out.str();
  });
  EXPECT_EQ(runs(said), c.raw(c.fields.size() - 1)) << c.line;
}

std::vector<std::string> callFields(const std::string& token, size_t count) {
  std::vector<std::string> fields = split(token, ',');
  if (fields.size() < count) fields.resize(count);
  for (std::string& field : fields) std::replace(field.begin(), field.end(), '_', ' ');
  return fields;
}

unsigned codeOf(const std::string& field) {
  if (field.size() == 1) return static_cast<unsigned char>(field[0]);
  const bool hex = field.rfind("U+", 0) == 0;
  return static_cast<unsigned>(std::stoul(field.substr(hex ? 2 : 0), nullptr, hex ? 16 : 0));
}

std::string answers(const std::string& calls,
                    const std::function<std::string(const std::string&)>& call) {
  std::istringstream tokens(calls);
  std::string out;
  for (std::string token; tokens >> token; out += ' ') out += call(token);
  if (!out.empty()) out.pop_back();
  return out;
}

}  // namespace kelfont_test

namespace kelfont_test {

std::vector<std::string> everyFont(const std::vector<std::string>& calls, int first, int last) {
  std::vector<std::string> out;
  for (int font = first; font <= last; ++font) {
    for (const char* style : {"", "i", "b", "bi"}) {
      for (std::string call : calls) {
        const size_t at = call.find('#'), star = call.find('*');
        if (at == std::string::npos || (star == std::string::npos && *style)) continue;
        if (star != std::string::npos) call.replace(star, 1, style);
        std::replace(call.begin(), call.end(), '/', ',');
        out.push_back(call.replace(at, 1, std::to_string(font)));
      }
    }
  }
  return out;
}

}  // namespace kelfont_test
