#include "tests/tools/ToolTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/TestFonts.h"
#include "tools/kelfont/Commands.h"

namespace kelfont_test {

std::string writeTestLists(const TempDir& dir) {
  std::filesystem::copy(std::string(KELFONT_TEST_SOURCE_DIR) + "/data/lists", dir.file("lists"));
  return dir.file("lists");
}

std::string packTestFonts(const TempDir& dir) {
  const std::string zip = dir.file("qrfont.zip");
  std::string err;
  const int status = runTool(
      {"pack", "--quiet", "--fonts", testFontDir(), "--lists", writeTestLists(dir), "-o", zip},
      nullptr, &err);
  EXPECT_EQ(status, 0) << err;
  return status == 0 ? zip : std::string();
}

int runTool(const std::vector<std::string>& args, std::string* out, std::string* err) {
  std::ostringstream outStream;
  std::ostringstream errStream;
  kelfont_tool::Console console{outStream, errStream, false};
  const int status = kelfont_tool::RunTool(args, console);
  if (out != nullptr) *out = outStream.str();
  if (err != nullptr) *err = errStream.str();
  return status;
}

}  // namespace kelfont_test
