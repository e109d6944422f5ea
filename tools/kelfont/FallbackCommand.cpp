#include <cstdlib>

#include "base/CharacterType.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/Font.h"
#include "common/registry/FontTable.h"
#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/ManagerSession.h"
#include "tools/kelfont/TextFormat.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_tool {

namespace {

// "U+AC00", "u+ac00" or "0xAC00" as one code point; any other argument
// stands for its characters.
bool parseCodeArgument(const std::string& arg, std::u32string& codes) {
  if (arg.size() > 2 && (arg[0] == 'U' || arg[0] == 'u' || arg[0] == '0') &&
      (arg[1] == '+' || arg[1] == 'x' || arg[1] == 'X')) {
    char* end = nullptr;
    const unsigned long code = std::strtoul(arg.c_str() + 2, &end, 16);
    if (end == nullptr || *end != '\0' || code > 0x10FFFF) return false;
    codes += static_cast<char32_t>(code);
    return true;
  }
  codes += decodeUtf8(arg);
  return true;
}

// One stop of the road: the font tried, whether it shows the character.
class Road {
 public:
  Road(ToolFontManager& manager, std::ostream& out) : manager_(manager), out_(out) {}

  // False once a font showed the character (the road ends there).
  bool Try(const std::string& step, int font, unsigned code) {
    if (found_) return false;
    std::string result;
    const qro_common::Font* entry = manager_.GetFontTable()->GetFont(font);
    if (font < 0 || entry == nullptr) {
      result = "none";
    } else if (entry->IsWithoutFile() && step != "requested") {
      result = "no file, passed over";
    } else if (manager_.IsVisibleChar(font, code)) {
      result = "shows it";
      found_ = true;
    } else {
      result = "lacks it";
    }
    out_ << "  " << padded(step, 16)
         << padded(font < 0 ? std::string("-") : manager_.GetFontName(font) + " (" +
                                                      std::to_string(font) + ")",
                   34)
         << (entry != nullptr && code != code_ ? codeName(code) + " " : std::string()) << result
         << '\n';
    return !found_;
  }
  void SetCode(unsigned code) {
    code_ = code;
    found_ = false;
  }

 private:
  ToolFontManager& manager_;
  std::ostream& out_;
  unsigned code_ = 0;
  bool found_ = false;
};

void showRoad(ToolFontManager& manager, int font, char32_t code, bool bold, bool italic,
              std::ostream& out) {
  const qro_common::FontTable& table = *manager.GetFontTable();
  const int range = qro_common::FontUSBType::GetUSBType(static_cast<unsigned>(code));
  const int type = qro_base::CharacterType::charTypes[code & 0xFFFF] &
                   qro_base::CharacterType::kScriptMask;
  out << codeName(code) << " '" << encodeUtf8(code) << "' in " << manager.GetFontName(font)
      << " (" << font << "): range " << range << ", character type " << type << '\n';
  Road road(manager, out);
  unsigned c = static_cast<unsigned>(code);
  road.SetCode(c);
  const qro_common::Font* requested = table.GetFont(font);
  if (requested != nullptr && requested->IsSymbol() && c < 256) c |= 0xF000;
  road.Try("requested", font, c);
  if (const std::vector<int>* chain = manager.GetFontChain(font)) {
    for (int index : *chain) {
      const qro_common::Font* entry = table.GetFont(index);
      unsigned chained = static_cast<unsigned>(code);
      if (entry != nullptr && entry->IsSymbol() && chained < 256 && chained != 0xB6) {
        chained |= 0xF000;
      }
      road.Try("chain", index, chained);
    }
  }
  if ((range & 0x80) == 0) {
    const std::vector<int>& scripts = manager.GetScriptDefaultFontList();
    road.Try("script default",
             static_cast<std::size_t>(range) < scripts.size() ? scripts[range] : -1,
             static_cast<unsigned>(code));
  }
  road.Try("type default", manager.GetDefaultFontIndexByCharType(type),
           static_cast<unsigned>(code));
  road.Try("code default", manager.GetDefaultFontInfo()->GetFontIndex(code),
           static_cast<unsigned>(code));
  road.Try("last default", manager.GetDefaultFontIndex(4), static_cast<unsigned>(code));

  int shownFont = font;
  unsigned shownCode = static_cast<unsigned>(code);
  const bool substituted = manager.ConfirmVisibleChar(shownFont, shownCode, bold, italic);
  if (!substituted && !manager.IsVisibleChar(font, c)) {
    // The road ended without a font (not even the last default's space).
    out << "  => shown by no font";
  } else {
    out << "  => shown by " << manager.GetFontName(shownFont) << " (" << shownFont << ")";
    if (shownCode != static_cast<unsigned>(code)) out << " as " << codeName(shownCode);
    out << (substituted ? ", a fallback" : ", the requested font");
  }
  out << "; advance "
      << fixed(manager.GetCharAdvanceRatio(font, static_cast<unsigned>(code), bold, italic), 6)
      << " em\n";
}

}  // namespace

int RunFallback(const std::vector<std::string>& args, Console& console) {
  ArgParser parser("fallback",
                   "Shows the road each CHAR takes from the requested font to the font that\n"
                   "shows it: the font itself, its chain, the script default font of its\n"
                   "Unicode range, the default font of its character type, the default font\n"
                   "of its code point and the last default font, as far as the first font\n"
                   "that has it; then the library's answer and the advance.");
  ManagerSession::AddOptions(parser);
  addStyleOptions(parser);
  parser.SetPositional("CHAR...", "characters, or code points as U+AC00 or 0xAC00", 1, 0);
  parser.SetEpilog(
      "Exit status: 0 shown, 1 a folder or package could not be read or the font is\n"
      "unknown, 2 bad arguments.");
  if (int stop = parseArguments(parser, args, console); stop >= 0) return stop;
  std::u32string codes;
  for (const std::string& arg : parser.Positional()) {
    if (!parseCodeArgument(arg, codes)) {
      console.err << "kelfont fallback: not a code point: " << arg << '\n';
      return kExitUsage;
    }
  }
  ManagerSession session;
  if (int status = session.Open(parser, "fallback", console)) return status;
  const int font = session.ResolveFont(parser, "fallback", console);
  if (font < 0) return kExitFailure;
  for (char32_t code : codes) {
    showRoad(session.Manager(), font, code, parser.Has("bold"), parser.Has("italic"), console.out);
  }
  return kExitOk;
}

}  // namespace kelfont_tool
