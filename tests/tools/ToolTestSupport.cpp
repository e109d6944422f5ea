#include "tests/tools/ToolTestSupport.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <sstream>

#include "tests/support/TestFonts.h"
#include "tools/kelfont/Commands.h"

namespace kelfont_test {

namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

bool python(const std::string& program, const std::vector<std::string>& args,
            std::string* output) {
  std::string command = quoted(KELFONT_PYTHON) + " -c " + quoted(program);
  for (const std::string& arg : args) command += " " + quoted(arg);
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char buffer[4096];
  std::size_t count;
  while ((count = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
    if (output != nullptr) output->append(buffer, count);
  }
  return pclose(pipe) == 0;
}

}  // namespace

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

std::vector<std::string> zipNames(const std::string& zip) {
  std::string output;
  python("import sys, zipfile\nfor n in zipfile.ZipFile(sys.argv[1]).namelist(): print(n)",
         {zip}, &output);
  std::vector<std::string> names;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) names.push_back(line);
  return names;
}

bool unzipTo(const std::string& zip, const std::string& into) {
  return python("import sys, zipfile\nzipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])",
                {zip, into}, nullptr);
}

}  // namespace kelfont_test
