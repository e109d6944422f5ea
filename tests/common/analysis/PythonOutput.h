#pragma once
// Standard output of the system Python run on a one-line program, for the
// tests that compare the library with Python's own data.

#include <cstdio>
#include <string>

namespace analysis_test {

// Runs `/usr/bin/python3 -B -c "<program>" <argument>`; the program must not
// contain double quotes. Empty when Python could not be run.
inline std::string pythonOutput(const std::string& program, const std::string& argument = "") {
  const std::string command =
      std::string(KELFONT_PYTHON) + " -B -c \"" + program + "\" '" + argument + "'";
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  char chunk[4096];
  size_t count;
  while ((count = fread(chunk, 1, sizeof chunk, pipe)) > 0) output.append(chunk, count);
  pclose(pipe);
  return output;
}

}  // namespace analysis_test
