#pragma once

#include <memory>
#include <string>

#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Console.h"

namespace qro_ni {
class DefaultFontInfoFileExtracter;
}

namespace kelfont_tool {

class ToolFontManager;

// A started font manager for the query commands, from the options they
// share:
//   --storage DIR   cache folder (default $XDG_CACHE_HOME/kelfont, else
//                   ~/.cache/kelfont); created when missing
//   --package FILE  the default package, a file named qrfont.zip
//   --fonts DIR     a font folder to scan (repeatable)
//   --lang TAG      interface language, e.g. ko-KR (localized names and
//                   the script default fonts of that language)
//   --fresh         empty the cache first
//   --verbose       show the library's log lines
// The library's log lines are dropped unless --verbose is given.
class ManagerSession {
 public:
  ManagerSession();
  ~ManagerSession();
  ManagerSession(const ManagerSession&) = delete;
  ManagerSession& operator=(const ManagerSession&) = delete;

  static void AddOptions(ArgParser& parser);
  // Checks the options and starts the manager; on failure prints a message
  // and returns the exit code (kExitOk when started).
  int Open(const ArgParser& parser, const std::string& command, Console& console);

  ToolFontManager& Manager() { return *manager_; }
  // The index of --font NAME, or the first default font; -1 (after a
  // message) when there is none.
  int ResolveFont(const ArgParser& parser, const std::string& command, Console& console);

 private:
  std::unique_ptr<qro_ni::DefaultFontInfoFileExtracter> extracter_;
  std::unique_ptr<ToolFontManager> manager_;
  bool hooked_ = false;
};

// Decodes UTF-8 into code points; a byte that does not start a valid
// sequence becomes U+FFFD.
std::u32string decodeUtf8(const std::string& text);
// One code point as UTF-8.
std::string encodeUtf8(char32_t code);
// "U+0041" style, at least four hex digits.
std::string codeName(char32_t code);

}  // namespace kelfont_tool
