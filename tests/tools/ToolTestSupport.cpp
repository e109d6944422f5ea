#include "tests/tools/ToolTestSupport.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

#include "tests/support/TestFonts.h"
#include "tools/kelfont/Commands.h"

namespace kelfont_test {

std::string writeTestLists(const TempDir& dir) {
  const std::string lists = dir.file("lists");
  mkdir(lists.c_str(), 0755);
  writeFile(lists + "/fc", "KelTest Basic\nKelTest CJK\nKelTest Symbol\n\nArial\nKelTest Basic\n\n");
  writeFile(lists + "/df",
            "KelTest Basic\n\nKelTest Basic\n\nKelTest CJK\nKelTest Basic\n\nKelTest Basic\n\n"
            "KelTest Basic\n");
  writeFile(lists + "/sf", "0\nKelTest Basic\n56\nKelTest CJK\n");
  writeFile(lists + "/sf_ko-KR", "56\nKelTest CJK\n");
  return lists;
}

std::string packTestFonts(const TempDir& dir) {
  const std::string zip = dir.file("qrfont.zip");
  std::string err;
  const int status = runTool({"pack", "--quiet", "--fonts", testFontDir(), "--lists",
                              writeTestLists(dir), "-o", zip},
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
