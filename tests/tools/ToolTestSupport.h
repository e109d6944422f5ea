#pragma once
// Shared helpers of the kelfont tool tests.

#include <string>
#include <vector>

#include "tests/support/TempDir.h"

namespace kelfont_test {

// Copies the lists of tests/data/lists (fc, df, sf and sf_ko-KR naming the
// generated test fonts) into dir/lists and returns that folder.
std::string writeTestLists(const TempDir& dir);

// Packs the generated test fonts and the test lists into dir/qrfont.zip;
// returns the package path, or "" (with a test failure) when packing failed.
std::string packTestFonts(const TempDir& dir);

// Runs the tool in this process; its standard output and error are
// collected into *out and *err.
int runTool(const std::vector<std::string>& args, std::string* out = nullptr,
            std::string* err = nullptr);

}  // namespace kelfont_test
