// kelfont: the command-line face of libkelfont.

#include <unistd.h>

#include <iostream>

#include "tools/kelfont/Commands.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  kelfont_tool::Console console{std::cout, std::cerr, isatty(2) == 1};
  const int status =
      kelfont_tool::RunTool(std::vector<std::string>(argv + 1, argv + argc), console);
  std::cout.flush();
  return status;
}
