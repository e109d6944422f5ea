#include <sstream>

#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"

namespace kelfont_tool {

namespace {

std::string overallHelp() {
  std::ostringstream out;
  out << "Usage: kelfont COMMAND [options] [arguments]\n\n"
         "Font metrics from the command line with libkelfont.\n\nCommands:\n";
  for (const CommandInfo& command : Commands()) {
    std::string name = command.name;
    out << "  " << name << std::string(name.size() < 10 ? 10 - name.size() : 1, ' ')
        << command.summary << '\n';
  }
  out << "\n'kelfont COMMAND --help' describes a command.\n"
         "Exit status: 0 success, 1 failure (missing folder, unreadable file, ...),\n"
         "2 bad arguments.\n";
  return out.str();
}

}  // namespace

const std::vector<CommandInfo>& Commands() {
  static const std::vector<CommandInfo> commands{
      {"pack", "analyse font folders and write the default package qrfont.zip", RunPack},
      {"measure", "measure a text: fonts shown, advances, kerning, total width", RunMeasure},
      {"render", "draw a text with the fonts' outlines into an SVG file", RunRender},
      {"fonts", "list the font table: index, name, styles, file, flags", RunFonts},
      {"fallback", "show the road a character takes to the font that shows it", RunFallback},
  };
  return commands;
}

int RunTool(const std::vector<std::string>& args, Console& console) {
  if (args.empty()) {
    console.err << overallHelp();
    return kExitUsage;
  }
  const std::string& name = args[0];
  if (name == "-h" || name == "--help" || name == "help") {
    if (args.size() > 1) return RunTool({args[1], "--help"}, console);
    console.out << overallHelp();
    return kExitOk;
  }
  if (name == "--version") {
    console.out << "kelfont " << KELFONT_VERSION << '\n';
    return kExitOk;
  }
  for (const CommandInfo& command : Commands()) {
    if (name == command.name) {
      return command.run(std::vector<std::string>(args.begin() + 1, args.end()), console);
    }
  }
  console.err << "kelfont: unknown command '" << name << "' (see kelfont --help)\n";
  return kExitUsage;
}

int parseArguments(ArgParser& parser, const std::vector<std::string>& args, Console& console) {
  if (!parser.Parse(args)) {
    console.err << "kelfont " << parser.Error() << '\n';
    return kExitUsage;
  }
  if (parser.HelpRequested()) {
    console.out << parser.Help();
    return kExitOk;
  }
  return -1;
}

void addStyleOptions(ArgParser& parser) {
  parser.AddValue("font", "NAME", "font name or localized name (default: the first default font)");
  parser.AddFlag("bold", "bold style");
  parser.AddFlag("italic", "italic style");
}

}  // namespace kelfont_tool
