// Arguments, exit codes and messages of the kelfont tool, the checks of
// the list files, and the progress line.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/FontLists.h"
#include "tools/kelfont/ProgressBar.h"

namespace {

using kelfont_test::TempDir;
using kelfont_test::writeFile;

TEST(CommandLine, BadArgumentsAndMissingInputsGiveAClearMessageAndExitCode) {
  TempDir dir;
  const std::string fonts = kelfont_test::testFontDir();
  const std::string lists = kelfont_test::writeTestLists(dir);
  const std::string broken = dir.file("broken");
  mkdir(broken.c_str(), 0755);
  writeFile(broken + "/broken.ttf", "not a font");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string message;  // for no arguments: the start of the message
  };
  const std::vector<Case> cases = {
      {{}, 2, "Usage: kelfont COMMAND"},
      {{"frobnicate"}, 2, "kelfont: unknown command 'frobnicate' (see kelfont --help)\n"},
      {{"pack", "--bogus"}, 2, "kelfont pack: unknown option --bogus (see --help)\n"},
      {{"pack", "--lists", "a", "--lists", "b"}, 2, "kelfont pack: --lists given twice\n"},
      {{"pack", "--quiet=yes"}, 2, "kelfont pack: --quiet takes no value\n"},
      {{"pack", "--lists", lists}, 2, "kelfont pack: missing --fonts DIR... (see --help)\n"},
      {{"pack", "--fonts", fonts, "--lists", lists, "-o", dir.path()}, 2,
       "kelfont pack: " + dir.path() + " is a folder; give the package file name\n"},
      {{"pack", "--fonts", fonts, dir.file("none"), "--lists", lists}, 1,
       "kelfont pack: font folder not found: " + dir.file("none") + "\n"},
      {{"pack", "--fonts", broken, "--lists", lists}, 1,
       "kelfont pack: warning: skipped " + broken + "/broken.ttf: not a font FreeType can read, "
       "or no OS/2 table\nkelfont pack: no font face to pack\n"},
      {{"pack", "--fonts", fonts, "--lists", dir.file("none")}, 1,
       "kelfont pack: list folder not found: " + dir.file("none") + "\n"},
      {{"pack", "--fonts", fonts, "--lists", lists, "-o", dir.file("none/q.zip")}, 1,
       "kelfont pack: output folder not found: " + dir.file("none") + "\n"},
      {{"measure"}, 2, "kelfont measure: missing TEXT... (see --help)\n"},
      {{"measure", "--size", "0", "x"}, 2,
       "kelfont measure: --size needs a number of pixels above 0, not '0'\n"},
      {{"measure", "--storage", dir.file("s"), "--package", lists + "/fc", "x"}, 2,
       "kelfont measure: the package must be named qrfont.zip: " + lists + "/fc\n"},
      {{"measure", "--storage", dir.file("s"), "--package", dir.file("qrfont.zip"), "x"}, 1,
       "kelfont measure: package not found: " + dir.file("qrfont.zip") + "\n"},
      {{"measure", "--storage", dir.file("s"), "x"}, 1,
       "kelfont measure: no font: give --fonts DIR or --package FILE, or --font NAME\n"},
      {{"measure", "--storage", dir.file("s"), "--fonts", fonts, "--font", "No Such", "x"}, 1,
       "kelfont measure: unknown font 'No Such' ('kelfont fonts' lists the known ones)\n"},
      {{"measure", "--storage", lists + "/fc", "x"}, 1,
       "kelfont measure: cannot create the cache folder " + lists + "/fc/\n"},
      {{"render", "x"}, 2, "kelfont render: missing -o FILE (see --help)\n"},
      {{"render", "--storage", dir.file("s"), "--fonts", fonts, "--font", "KelTest Basic", "-o",
        lists, "x"}, 1, "kelfont render: cannot write " + lists + "\n"},
      {{"fallback", "U+110000"}, 2, "kelfont fallback: not a code point: U+110000\n"},
      {{"fonts", "extra"}, 2, "kelfont fonts: unexpected argument 'extra' (see --help)\n"},
  };
  for (const Case& c : cases) {
    std::string out, err;
    EXPECT_EQ(kelfont_test::runTool(c.args, &out, &err), c.status) << err;
    EXPECT_EQ(c.args.empty() ? err.substr(0, c.message.size()) : err, c.message);
    EXPECT_EQ(out, "");
  }
  struct stat st;
  EXPECT_NE(stat(dir.file("qrfont.zip").c_str(), &st), 0);
}

TEST(CommandLine, EveryCommandHasHelpAndTheProgramExitsWithTheCommandsStatus) {
  std::string out;
  ASSERT_EQ(kelfont_test::runTool({"--help"}, &out), 0);
  for (const char* command : {"pack", "measure", "render", "fonts", "fallback"}) {
    EXPECT_NE(out.find(std::string("\n  ") + command + " "), std::string::npos) << command;
    std::string help;
    EXPECT_EQ(kelfont_test::runTool({command, "--help"}, &help), 0);
    const std::string usage = std::string("Usage: kelfont ") + command + " [options]";
    EXPECT_EQ(help.compare(0, usage.size(), usage), 0) << help;
  }
  TempDir dir;
  const std::string program = KELFONT_TOOL_PROGRAM;
  const std::string err = dir.file("err");
  const int status = std::system((program + " pack --fonts 2>" + err).c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_EQ(kelfont_test::readFile(err), "kelfont pack: --fonts needs a DIR\n");
}

TEST(CommandLine, ListFilesAreCheckedForWhatTheReadersWouldMisread) {
  struct Case {
    const char* file;
    std::string bytes;
    std::string error;    // "" when the lists are accepted
    std::string warning;  // "" when none is expected
  };
  const std::vector<Case> cases = {
      {"fc", "A\r\nB\r\n\r\n", "fc: line 1 holds a CR byte; the font chain list needs bare LF "
                               "line ends", ""},
      {"fc", "A\nB\n", "", "fc: the last block has no empty line after it and is ignored"},
      {"df", "# head\n\nA\n", "", "df: group 1 has no font name; the groups after it move up"},
      {"df", "A\n\nB\n\nC\n\nD\n\nE\n\nF\n", "", "df: 6 groups; only the first five are read"},
      {"sf", "128\nA\n", "sf: line 1: range number 128 is not in 0..127", ""},
      {"sf", "0127\nA\n", "", ""},
      {"sf", "12 Arial\n", "sf: line 1: a range number and a name on one line; put the name "
                           "below", ""},
      {"sf", "3\nFont 2\n", "sf: line 2: font name 'Font 2' holds a digit, which the reader "
                            "takes for a range number", ""},
      {"sf", "5\n# Latin-1\nA\n", "sf: line 3: 'A' falls under range 0, set by the digits of "
                                  "the comment on line 2", ""},
      {"sf", "5\n# Latin-1\n1\nA\n", "", ""},
      {"sf", "0\nA", "", "sf: line 2 has no line feed and is ignored"},
      {"sf_ko-KR", "", "empty list file LISTS/sf_ko-KR", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + ": " + c.bytes);
    TempDir dir;
    for (const char* name : {"fc", "df", "sf"}) writeFile(dir.file(name), "A\n\n");
    writeFile(dir.file(c.file), c.bytes);
    kelfont_tool::FontLists lists;
    std::string error = c.error;
    const std::size_t at = error.find("LISTS");
    if (at != std::string::npos) error.replace(at, 5, dir.path());
    EXPECT_EQ(lists.Read(dir.path()), error.empty());
    EXPECT_EQ(lists.GetError(), error);
    EXPECT_EQ(lists.GetWarnings(),
              c.warning.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.warning});
  }
}

TEST(CommandLine, ProgressLineFitsOneTerminalLine) {
  using kelfont_tool::ProgressBar;
  EXPECT_EQ(ProgressBar::Render("analysing", 3, 12, "DejaVuSans.ttf"),
            "analysing [######------------------] 3/12 DejaVuSans.ttf");
  EXPECT_EQ(ProgressBar::Render("analysing", 9, 4, ""), "analysing [########################] 4/4 ");
  const std::string line = ProgressBar::Render("analysing", 1, 2, std::string(40, 'x') + "한글한글");
  EXPECT_EQ(line, "analysing [############------------] 1/2 " + std::string(38, 'x'));
  const std::string korean = ProgressBar::Render("analysing", 1, 2, std::string(36, 'x') + "한글한글");
  EXPECT_EQ(korean, "analysing [############------------] 1/2 " + std::string(36, 'x') + "한글");
}

}  // namespace
