// Arguments, exit codes and messages of the kelfont tool, the checks of
// the list files, and the progress line.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/FontLists.h"
#include "tools/kelfont/ProgressBar.h"

namespace {

using kelfont_test::TempDir;
using kelfont_test::writeFile;

TEST(CommandLine, ArgumentsGiveTheirMessageAndExitCode) {
  TempDir dir;
  const std::string fonts = kelfont_test::testFontDir();
  const std::string lists = kelfont_test::writeTestLists(dir);
  for (const char* folder : {"broken", "basic"}) mkdir(dir.file(folder).c_str(), 0755);
  writeFile(dir.file("broken/broken.ttf"), "not a font");
  writeFile(dir.file("basic/basic.ttf"),
            kelfont_test::readFile(kelfont_test::testFontPath("basic.ttf")));
  // Placeholders in tests/data/tool_arguments.tsv: the folders of this test, which holds
  // broken/ and basic/.
  auto fill = [&](std::string text) {
    for (const std::string name : {"$FONTS", "$LISTS", "$DIR"}) {
      const std::string& value = name == "$FONTS" ? fonts : name == "$LISTS" ? lists : dir.path();
      for (size_t at; (at = text.find(name)) != std::string::npos;)
        text.replace(at, name.size(), value);
    }
    return text;
  };
  for (const kelfont_test::Case& c : kelfont_test::cases("tool_arguments.tsv")) {
    std::vector<std::string> args;
    for (size_t i = 2; i < c.fields.size(); ++i) args.push_back(fill(c[i]));
    std::string out, err;
    EXPECT_EQ(kelfont_test::runTool(args, &out, &err), c.num(0)) << c.line << err;
    const std::string& said = c.num(0) == 0 ? out : err;
    const std::string message = fill(c[1]);
    if (message[0] == '~') {
      EXPECT_NE(said.find(message.substr(1)), std::string::npos) << c.line << said;
    } else {
      EXPECT_EQ(said, message) << c.line;
    }
    EXPECT_EQ(c.num(0) == 0 ? err : out, "") << c.line;
  }
  struct stat st;
  EXPECT_NE(stat(dir.file("qrfont.zip").c_str(), &st), 0);
}

// The program exits with the command's status.
TEST(CommandLine, TheProgramExitsWithTheCommandsStatus) {
  TempDir dir;
  const std::string err = dir.file("err");
  const int status =
      std::system((KELFONT_TOOL_PROGRAM + std::string(" pack --fonts 2>") + err).c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_EQ(kelfont_test::readFile(err), "kelfont pack: --fonts needs a DIR\n");
}

// tests/data/tool_lists.tsv: a list file, its bytes, what the check says.
TEST(CommandLine, ListFilesAreCheckedForWhatTheReadersWouldMisread) {
  kelfont_test::expectAnswers("tool_lists.tsv", [](const kelfont_test::Case& c) {
    TempDir dir;
    for (const char* name : {"fc", "df", "sf"}) writeFile(dir.file(name), "A\n\n");
    writeFile(dir.file(c[0]), c[1]);
    kelfont_tool::FontLists lists;
    std::string said = (lists.Read(dir.path()) ? "" : "refused: ") + lists.GetError();
    for (const std::string& warning : lists.GetWarnings()) said += "warning: " + warning;
    const size_t at = said.find(dir.path());
    return at == std::string::npos ? said : said.replace(at, dir.path().size(), "LISTS");
  });
}

// tests/data/progress_lines.tsv: label, done, total, name, the line.
TEST(CommandLine, ProgressLineFitsOneTerminalLine) {
  kelfont_test::expectAnswers("progress_lines.tsv", [](const kelfont_test::Case& c) {
    return kelfont_tool::ProgressBar::Render(c[0], static_cast<std::size_t>(c.num(1)),
                                             static_cast<std::size_t>(c.num(2)), c[3]);
  });
}

}  // namespace
