#include "tests/support/Python.h"

#include <cstdio>

namespace kelfont_test {
namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

}  // namespace

bool runPython(const std::string& program, const std::vector<std::string>& args,
               std::string* output) {
  std::string command = quoted(KELFONT_PYTHON) + " -B -c " + quoted(program);
  for (const std::string& arg : args) command += " " + quoted(arg);
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char chunk[4096];
  size_t got;
  while ((got = fread(chunk, 1, sizeof chunk, pipe)) > 0) {
    if (output != nullptr) output->append(chunk, got);
  }
  return pclose(pipe) == 0;
}

}  // namespace kelfont_test
