#include "common/font_info/Font.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"
#include "common/registry/StyledFontInfoList.h"
#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/ManagerSession.h"
#include "tools/kelfont/TextFormat.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_tool {

namespace {

// "R B I BI" for the style slots that hold a face; "-" for none.
std::string styles(const qro_common::StyledFontInfoList* list) {
  if (list == nullptr) return "-";
  std::string out;
  const std::pair<const qro_common::FontInfo*, const char*> slots[] = {
      {list->GetRegular(), "R"}, {list->GetBold(), "B"},
      {list->GetItalic(), "I"},  {list->GetBoldItalic(), "BI"}};
  for (const auto& [info, letter] : slots) {
    if (info != nullptr) out += (out.empty() ? "" : " ") + std::string(letter);
  }
  return out.empty() ? "-" : out;
}

std::string flags(const qro_common::Font& font) {
  std::string out;
  if (font.IsSymbol()) out += "symbol ";
  if (font.IsWithoutFile()) out += "no-file ";
  if (font.IsExtraBold()) out += "extra-bold ";
  if (!out.empty()) out.pop_back();
  return out.empty() ? "-" : out;
}

}  // namespace

int RunFonts(const std::vector<std::string>& args, Console& console) {
  ArgParser parser("fonts",
                   "Lists the font table after start-up: per font index the name (and the\n"
                   "name in the interface language), the style faces it has (R regular,\n"
                   "B bold, I italic, BI bold italic), its flags (symbol; no-file: known by\n"
                   "metrics only or just named by a list; extra-bold) and the file of its\n"
                   "default face.");
  ManagerSession::AddOptions(parser);
  parser.SetEpilog(
      "Exit status: 0 listed, 1 a folder or package could not be read, 2 bad arguments.");
  if (int stop = parseArguments(parser, args, console); stop >= 0) return stop;
  ManagerSession session;
  if (int status = session.Open(parser, "fonts", console)) return status;
  ToolFontManager& manager = session.Manager();
  const qro_common::FontTable& table = *manager.GetFontTable();
  console.out << padded("index", 7) << padded("name", 34) << padded("styles", 10)
              << padded("flags", 18) << "file\n";
  for (int index = 0; index < table.GetFontCount(); ++index) {
    const qro_common::Font* font = table.GetFont(index);
    if (font == nullptr) continue;
    std::string name = font->GetName();
    const std::string local = manager.GetLocaleFontName(index);
    if (!local.empty() && local != name) name += " (" + local + ")";
    const qro_common::StyledFontInfoList* list = table.GetStyledFontInfoList(index);
    const qro_common::FontInfo* face = list == nullptr ? nullptr : list->GetDefault();
    const std::string* file = face == nullptr ? nullptr : face->GetFilePath();
    const std::string number = std::to_string(index);
    console.out << std::string(number.size() < 5 ? 5 - number.size() : 0, ' ') << number << "  "
                << padded(name, 34) << padded(styles(list), 10) << padded(flags(*font), 18)
                << (file == nullptr ? "-" : *file) << '\n';
  }
  return kExitOk;
}

}  // namespace kelfont_tool
