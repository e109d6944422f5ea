#pragma once
// The system Python (fontTools, zipfile, codecs) as an independent reader
// for the tests.

#include <string>
#include <vector>

namespace kelfont_test {

// Runs `program` with /usr/bin/python3 -B -c, with `args` as sys.argv[1:];
// its standard output goes to *output when given. True when it exited 0.
bool runPython(const std::string& program, const std::vector<std::string>& args = {},
               std::string* output = nullptr);

}  // namespace kelfont_test
