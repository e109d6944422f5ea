#include "tools/kelfont/FontLists.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>

#include "common/registry/DataFileNames.h"

namespace kelfont_tool {

namespace {

struct Line {
  std::string text;
  int number;        // 1-based
  bool terminated;   // ended by LF
};

// Lines split at LF; with `dropCR` every CR byte is removed first.
std::vector<Line> splitLines(const std::string& bytes, bool dropCR) {
  std::vector<Line> lines;
  std::string current;
  int number = 1;
  for (char c : bytes) {
    if (c == '\r' && dropCR) continue;
    if (c == '\n') {
      lines.push_back({current, number++, true});
      current.clear();
    } else {
      current += c;
    }
  }
  if (!current.empty()) lines.push_back({current, number, false});
  return lines;
}

bool isBlank(const std::string& line) {
  return line.find_first_not_of(" \t") == std::string::npos;
}

bool isComment(const std::string& line) { return !line.empty() && line[0] == '#'; }

bool isLanguageName(const std::string& text) {
  if (text.empty()) return false;
  return std::all_of(text.begin(), text.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
  });
}

}  // namespace

bool FontLists::Fail(const std::string& message) {
  error_ = message;
  return false;
}

bool FontLists::Read(const std::string& directory) {
  entries_.clear();
  names_.clear();
  warnings_.clear();
  error_.clear();
  struct stat st;
  if (stat(directory.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    return Fail("list folder not found: " + directory);
  }
  const std::string chain = qro_common::getFontChainName();
  const std::string defaults = qro_common::getDefaultFontsName();
  const std::string scripts = qro_common::getScriptDefaultFontsName();
  if (!Add(directory, chain, true) || !Add(directory, defaults, true) ||
      !Add(directory, scripts, true)) {
    return false;
  }
  std::vector<std::string> variants;
  if (DIR* dir = opendir(directory.c_str())) {
    while (dirent* entry = readdir(dir)) {
      const std::string name = entry->d_name;
      if (name.compare(0, scripts.size() + 1, scripts + "_") != 0) continue;
      if (isLanguageName(name.substr(scripts.size() + 1))) {
        variants.push_back(name);
      } else {
        warnings_.push_back("ignoring " + directory + "/" + name + ": not a language name");
      }
    }
    closedir(dir);
  }
  std::sort(variants.begin(), variants.end());
  for (const std::string& name : variants) {
    if (!Add(directory, name, false)) return false;
  }
  return true;
}

bool FontLists::Add(const std::string& directory, const std::string& name, bool required) {
  const std::string path = directory + "/" + name;
  struct stat st;
  if (stat(path.c_str(), &st) != 0) {
    return required ? Fail("missing list file " + path) : true;
  }
  if (!S_ISREG(st.st_mode)) return Fail("not a file: " + path);
  std::ifstream in(path, std::ios::binary);
  if (!in) return Fail("cannot read " + path);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return Fail("cannot read " + path);
  if (bytes.empty()) return Fail("empty list file " + path);
  if (name == qro_common::getFontChainName()) {
    if (!CheckChain(name, bytes)) return false;
  } else if (name == qro_common::getDefaultFontsName()) {
    CheckDefaults(name, bytes);
  } else if (!CheckScripts(name, bytes)) {
    return false;
  }
  entries_.emplace_back(name, bytes);
  return true;
}

bool FontLists::CheckChain(const std::string& name, const std::string& bytes) {
  bool open = false;
  for (const Line& line : splitLines(bytes, false)) {
    if (line.text.find('\r') != std::string::npos) {
      return Fail(name + ": line " + std::to_string(line.number) +
                  " holds a CR byte; the font chain list needs bare LF line ends");
    }
    if (isBlank(line.text)) {
      open = false;
    } else if (!isComment(line.text)) {
      names_.emplace_back(name, line.text);
      open = true;
    }
  }
  if (open) {
    warnings_.push_back(name + ": the last block has no empty line after it and is ignored");
  }
  return true;
}

void FontLists::CheckDefaults(const std::string& name, const std::string& bytes) {
  // Groups as the reader sees them: a blank line after a non-blank one (or
  // at the very start) ends a group, even one that holds only comments.
  std::vector<int> namesPerGroup{0};
  bool previousBlank = false;
  for (const Line& line : splitLines(bytes, true)) {
    if (isBlank(line.text)) {
      if (!previousBlank) namesPerGroup.push_back(0);
      previousBlank = true;
      continue;
    }
    previousBlank = false;
    if (isComment(line.text)) continue;
    ++namesPerGroup.back();
    if (namesPerGroup.size() <= 5) names_.emplace_back(name, line.text);
  }
  if (namesPerGroup.back() == 0) namesPerGroup.pop_back();
  for (std::size_t i = 0; i < namesPerGroup.size() && i < 5; ++i) {
    if (namesPerGroup[i] == 0) {
      warnings_.push_back(name + ": group " + std::to_string(i + 1) +
                          " has no font name; the groups after it move up");
    }
  }
  if (namesPerGroup.size() > 5) {
    warnings_.push_back(name + ": " + std::to_string(namesPerGroup.size()) +
                        " groups; only the first five are read");
  }
}

bool FontLists::CheckScripts(const std::string& name, const std::string& bytes) {
  int commentLine = 0;  // a comment with digits that set the range number last
  for (const Line& line : splitLines(bytes, true)) {
    const std::string where = name + ": line " + std::to_string(line.number);
    if (!line.terminated) {
      warnings_.push_back(where + " has no line feed and is ignored");
      break;
    }
    const bool hasDigit = line.text.find_first_of("0123456789") != std::string::npos;
    if (isBlank(line.text)) continue;
    if (isComment(line.text)) {
      // The reader takes the digits of any line for a range number, and a
      // comment reads as 0.
      if (hasDigit) commentLine = line.number;
      continue;
    }
    if (std::isdigit(static_cast<unsigned char>(line.text[0]))) {
      const std::size_t end = line.text.find_first_not_of("0123456789");
      if (end != std::string::npos && !isBlank(line.text.substr(end))) {
        return Fail(where + ": a range number and a name on one line; put the name below");
      }
      const std::string digits = line.text.substr(0, end);
      const std::size_t first = digits.find_first_not_of('0');
      const std::string value = first == std::string::npos ? "0" : digits.substr(first);
      if (value.size() > 3 || std::stoi(value) > 127) {
        return Fail(where + ": range number " + digits + " is not in 0..127");
      }
      commentLine = 0;
      continue;
    }
    if (hasDigit) {
      return Fail(where + ": font name '" + line.text +
                  "' holds a digit, which the reader takes for a range number");
    }
    if (commentLine != 0) {
      return Fail(where + ": '" + line.text + "' falls under range 0, set by the digits of the " +
                  "comment on line " + std::to_string(commentLine));
    }
    names_.emplace_back(name, line.text);
  }
  return true;
}

}  // namespace kelfont_tool
