#pragma once

#include <string>
#include <vector>

#include "tools/kelfont/Console.h"

namespace kelfont_tool {

// The subcommands of the kelfont tool. Each takes the arguments after its
// name, writes to the console and returns an ExitCode.
int RunPack(const std::vector<std::string>& args, Console& console);

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
