// A host program that knows libkelfont only through its umbrella header and
// a library: the build tree's shared one, and (tests/install) the installed
// shared and static ones. It starts the facade on an empty cache folder of
// its own and checks the answers of every entry point.

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "api/kelfont.h"

namespace {

int failures = 0;

void check(bool ok, const char* what) {
  if (ok) return;
  fprintf(stderr, "host program: %s\n", what);
  ++failures;
}

}  // namespace

int main() {
  const char* tmp = getenv("TMPDIR");
  std::string pattern =
      std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/kelfont-host-XXXXXX";
  if (mkdtemp(&pattern[0]) == nullptr) return 2;
  std::string base = pattern + "/";

  check(IsKelFontInitialized() == 0, "status before start-up");
  check(gKelFontWidth == nullptr, "no facade before start-up");
  check(InitKelFont((base + "qrfont.zip").c_str(), base.c_str(), "/system/fonts/") == 0,
        "start-up on an empty cache");
  check(gKelFontWidth != nullptr && gKelFontInitStatus == 0, "facade after start-up");

  const bool bold = false;
  const bool italic = false;
  int advance = 7, emSquare = 7, delta = 7;
  check(GetFontIndex("KelTest Basic") == -1, "unknown font name");
  check(GetFontCharInfo(0, 'A', bold, italic, advance) == -1 && advance == 7, "advance");
  check(GetFontEmSquareFUnit(0, bold, italic, emSquare) == -1, "em square");
  startTime = endTime = 0;
  check(GetKerningInfo(0, bold, italic, 'A', 'V', delta) == -1 && startTime <= endTime, "kerning");
  ClearKelFontCacheInfo();
  UnInitKelFont();
  check(gKelFontWidth == nullptr, "no facade after UnInitKelFont");

  rmdir((base + "FInfo/Fdata").c_str());
  rmdir((base + "FInfo").c_str());
  rmdir(pattern.c_str());
  printf("host program: %s\n", failures == 0 ? "ok" : "FAILED");
  return failures == 0 ? 0 : 1;
}
