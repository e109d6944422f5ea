#pragma once

#include <string>
#include <vector>

#include "tools/kelfont/Console.h"

namespace kelfont_tool {

class ArgParser;

// The subcommands of the kelfont tool. Each takes the arguments after its
// name, writes to the console and returns an ExitCode.
int RunPack(const std::vector<std::string>& args, Console& console);
int RunMeasure(const std::vector<std::string>& args, Console& console);
int RunRender(const std::vector<std::string>& args, Console& console);
int RunFonts(const std::vector<std::string>& args, Console& console);
int RunFallback(const std::vector<std::string>& args, Console& console);

// Parses `args`; prints the error or the help when there is one. Returns
// the exit code to stop with (kExitUsage, or kExitOk after --help), or -1
// to go on.
int parseArguments(ArgParser& parser, const std::vector<std::string>& args, Console& console);
// The --font, --bold and --italic options of the query commands.
void addStyleOptions(ArgParser& parser);

// A size in pixels: a number above 0 and up to 10000.
bool parseSize(const std::string& text, double& size);
// Whether the folder that is to hold `file` exists (checked before a long
// run rather than after it).
bool outputFolderExists(const std::string& file, std::string& folder);

// One line per subcommand, for the tool's overall help.
struct CommandInfo {
  const char* name;
  const char* summary;
  int (*run)(const std::vector<std::string>& args, Console& console);
};
const std::vector<CommandInfo>& Commands();

// Runs the tool: `args` are the arguments after the program name.
int RunTool(const std::vector<std::string>& args, Console& console);

}  // namespace kelfont_tool
