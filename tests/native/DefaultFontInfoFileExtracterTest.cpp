// Extraction from the default package, driven by tests/data/package_extraction.tsv.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <map>
#include <sstream>
#include <string>

#include "base/Environment.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/Cases.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPackage.h"

namespace {

using kelfont_test::escape;
using kelfont_test::readFile;
using kelfont_test::writeFile;
using qro_ni::DefaultFontInfoFileExtracter;

// "@binary": every byte value three times; "@big": more than one inflater block.
std::string value(const std::string& text) {
  std::string out;
  if (text == "@binary") {
    for (int i = 0; i < 768; ++i) out += static_cast<char>(i % 256);
  } else if (text == "@big") {
    for (int i = 0; i < 20000; ++i) out += "Ftable line " + std::to_string(i * 7919 % 10007) + "\n";
  }
  return out.empty() ? text : out;
}

// Writes DIR/qrfont.zip: NAME=VALUE entries ("|" or ";" between them), or
// "hex:" and the bytes of an archive written by hand ("{N*XX}": N copies), or nothing.
std::map<std::string, std::string> writePackage(const std::string& dir, const std::string& what) {
  std::map<std::string, std::string> entries;
  if (what.rfind("hex:", 0) == 0) {
    EXPECT_TRUE(
        writeFile(dir + "/qrfont.zip", kelfont_test::unhex(kelfont_test::expand(what.substr(4)))));
  }
  if (what.find('=') == std::string::npos) return entries;
  kelfont_test::TestPackage package;
  std::istringstream in(what);
  for (std::string entry;
       std::getline(in, entry, what.find('|') != std::string::npos ? '|' : ';');) {
    const size_t eq = entry.find('=');
    entries[entry.substr(0, eq)] = value(entry.substr(eq + 1));
    package.add(entry.substr(0, eq), entries[entry.substr(0, eq)]);
  }
  EXPECT_TRUE(package.write(dir));
  return entries;
}

TEST(DefaultFontInfoFileExtracter, Lines) {
  for (const kelfont_test::Case& c : kelfont_test::cases("package_extraction.tsv")) {
    kelfont_test::TempDir temp;
    const std::string data = temp.path() + "/data/", package = temp.path() + "/package";
    for (const std::string& dir : {data, data + "FInfo", data + "FInfo/Fdata", package}) {
      mkdir(dir.c_str(), 0775);
    }
    std::map<std::string, std::string> entries = writePackage(package, c[0]);
    DefaultFontInfoFileExtracter extracter(data, package + "/");
    kelfont_test::LogCapture log;
    auto run = [&](const std::string& call) -> std::string {
      const size_t comma = call.find(',');
      const std::string arg = call.substr(comma == std::string::npos ? 1 : comma + 1),
                        file = data + "FInfo/" + arg;
      const char op = call[0];
      struct stat st;
      if (op == 't') return std::to_string(extracter.ExtractFontTable());
      if (op == 'c') return std::to_string(extracter.ExtractFontChain());
      if (op == 'd') return std::to_string(extracter.ExtractDefaultFontsList());
      if (call == "s") return std::to_string(extracter.ExtractScriptDefaultFontsList());
      if (call == "s!") return std::to_string(extracter.ExtractScriptDefaultFontsList(nullptr));
      if (op == 's') return std::to_string(extracter.ExtractScriptDefaultFontsList(arg.c_str()));
      if (op == 'x') return std::to_string(extracter.Extract(arg.c_str()));
      if (op == '?') return std::to_string(stat((data + arg).c_str(), &st) == 0);
      if (op == 'D') return std::to_string(rmdir((data + "FInfo/Fdata").c_str()));
      if (op == 'E') {  // an extracter whose data folder is the environment's storage path
        qro_base::Environment& environment = qro_base::ensureEnvironment();
        const std::string* saved = environment.GetFileStoragePath();
        std::string* previous = saved != nullptr ? new std::string(*saved) : nullptr;
        environment.SetFileStoragePath(new std::string(data));
        const bool extracted =
            DefaultFontInfoFileExtracter(package + "/").ExtractScriptDefaultFontsList();
        environment.SetFileStoragePath(previous);
        return std::to_string(extracted);
      }
      if (op == '=' && stat(file.c_str(), &st) != 0) return "none";
      if (op == '=') return readFile(file) == entries[arg] ? "entry" : escape(readFile(file));
      const std::string name = arg.substr(0, arg.find(',')), text = arg.substr(arg.find(',') + 1);
      if (op == 'w') return writeFile(data + "FInfo/" + name, value(text)) ? "." : "!";
      if (op == 'f') extracter.ExtractFontInfoData(std::stoi(arg));
      if (op == 'f') return ".";
      if (op == 'L') extracter.Reload();
      if (op == 'L') return std::to_string(log.lines().size());
      if (op != 'R') return "unknown call " + call;
      // A new package put in place of the old one.
      mkdir((temp.path() + "/staged").c_str(), 0775);
      entries = writePackage(temp.path() + "/staged", arg);
      return std::to_string(std::rename((temp.path() + "/staged/qrfont.zip").c_str(),
                                        (package + "/qrfont.zip").c_str()));
    };
    EXPECT_EQ(kelfont_test::answers(c[1], run), c[2]) << c.line;
  }
}

}  // namespace
