#pragma once

#include <ostream>

namespace kelfont_tool {

// Where a subcommand writes: results to `out`, messages and the progress
// bar to `err`. The progress bar is drawn only when `errIsTerminal`.
struct Console {
  std::ostream& out;
  std::ostream& err;
  bool errIsTerminal = false;
};

// Exit codes of every subcommand.
enum ExitCode {
  kExitOk = 0,
  kExitFailure = 1,  // missing directory, unreadable or unwritable file, ...
  kExitUsage = 2,    // bad arguments
};

}  // namespace kelfont_tool
