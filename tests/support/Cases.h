#pragma once
// Cases kept as data: tests/data/NAME, one case a line, fields separated by
// tabs; blank lines and lines starting with '#' are left out. Fields may use
// C escapes (\t \n \r \0 \\ \xHH).
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "base/TextConversion.h"

namespace kelfont_test {

struct Case {
  std::string line;                 // as written, for failure messages
  std::vector<std::string> fields;  // unescaped
  const std::string& operator[](size_t i) const;
  long long num(size_t i) const;    // decimal, or hex with 0x
  std::string raw(size_t i) const;  // as written, escapes kept
};

std::vector<Case> cases(const std::string& name);
std::string unescape(const std::string& text);
// Bytes from hex digits; other characters are ignored ("01 7F00": 01 7F 00).
std::string unhex(const std::string& text);
// UTF-16 units of a text: its bytes one by one, "\\u" and four hex digits one unit.
qro_base::u16string units(const std::string& text);
// The bytes as C-escaped text: printable ASCII as it is, others as \xHH.
std::string escape(const std::string& bytes);
// "{N*TEXT}" as N copies of TEXT, and back: runs of more than 11 equal characters as "{N*c}".
std::string expand(const std::string& text);
std::string runs(const std::string& text);
// "0x" and the value in upper-case hex digits.
std::string hex(unsigned long long value);
// The value as "%g" writes it.
std::string number(double value);
// Null for the text "NULL".
const char* orNull(const std::string& text);
// Each case of tests/data/NAME against `answer`: its last field is what it answers.
void expectAnswers(const std::string& name, const std::function<std::string(const Case&)>& answer);
// A script of calls: each blank-separated call of field `calls` (expanded) goes to `call`, which
// writes its answer; the answers as answers() joins them, with runs() taken, are the case's last
// field as written.
using Call = std::function<void(const std::string& call, std::ostream& said)>;
void expectCalls(const Case& c, size_t calls, const Call& call);

// The fields of a script call "OP,FIELD,...", split at commas ("_" in them
// stands for a space), at least `count` of them.
std::vector<std::string> callFields(const std::string& token, size_t count = 6);
// A character field: one character as it is, "U+" and hex digits, or a number.
unsigned codeOf(const std::string& field);
// What `call` answers to each call of a script (calls separated by white
// space), separated by spaces.
std::string answers(const std::string& calls,
                    const std::function<std::string(const std::string&)>& call);

}  // namespace kelfont_test

namespace kelfont_test {

// Each call once for every font index from `first` to `last` ("#" in it) and every style ("*"
// after "#": none, i, b, bi), with "/" for ","; calls without "#" are left out.
std::vector<std::string> everyFont(const std::vector<std::string>& calls, int first, int last);

}  // namespace kelfont_test
