#pragma once
// Real words in complex scripts: the day and month names of the glibc
// locale sources (package locales), as UTF-16. The shaped-run benchmark
// and its test measure the same words.

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kelfont_bench {

inline std::u16string utf16(const std::u32string& codes) {
  std::u16string out;
  for (char32_t c : codes) {
    if (c >= 0x10000) {
      out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      out += static_cast<char16_t>(c);
    }
  }
  return out;
}

// The words of the day, abbreviated day, month and abbreviated month lists
// of /usr/share/i18n/locales/NAME ("<U0645>" and plain characters between
// quotes; a list goes on over lines that end in '/').
inline std::vector<std::u16string> localeWords(const std::string& name) {
  std::ifstream in("/usr/share/i18n/locales/" + name);
  std::vector<std::u16string> words;
  bool inList = false;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string key;
    fields >> key;
    if (!inList && key != "day" && key != "abday" && key != "mon" && key != "abmon") continue;
    inList = !line.empty() && line.back() == '/';
    std::u32string word;
    bool quoted = false;
    for (std::size_t i = line.find('"'); i < line.size(); ++i) {
      if (line[i] == '"' || (quoted && line[i] == ' ')) {
        if (!word.empty()) words.push_back(utf16(word));
        word.clear();
        if (line[i] == '"') quoted = !quoted;
      } else if (quoted && line.compare(i, 2, "<U") == 0) {
        word += static_cast<char32_t>(std::strtoul(line.c_str() + i + 2, nullptr, 16));
        i = line.find('>', i);
      } else if (quoted) {
        word += static_cast<unsigned char>(line[i]);
      }
    }
  }
  return words;
}

}  // namespace kelfont_bench
