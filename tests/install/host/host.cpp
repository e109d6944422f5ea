// A host program built against an installed libkelfont: it sees only the
// installed headers and libraries. It starts the facade on an empty cache
// folder and checks a few answers.

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "api/kelfont.h"

int main() {
  const char* tmp = getenv("TMPDIR");
  std::string folder = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
                       "/kelfont-installed-host-XXXXXX";
  if (mkdtemp(&folder[0]) == nullptr) return 2;
  const std::string base = folder + "/";

  int failures = 0;
  if (InitKelFont((base + "qrfont.zip").c_str(), base.c_str(), "/system/fonts/") != 0) {
    fprintf(stderr, "installed host: InitKelFont failed\n");
    ++failures;
  }
  if (GetFontIndex("No Such Font") != -1) {
    fprintf(stderr, "installed host: an unknown font has an index\n");
    ++failures;
  }
  const bool regular = false;
  int advance = 7;
  if (GetFontCharInfo(0, 'A', regular, regular, advance) != -1 || advance != 7) {
    fprintf(stderr, "installed host: an empty cache answered an advance\n");
    ++failures;
  }
  UnInitKelFont();
  rmdir((base + "FInfo/Fdata").c_str());
  rmdir((base + "FInfo").c_str());
  rmdir(folder.c_str());
  if (failures == 0) printf("installed host: ok\n");
  return failures == 0 ? 0 : 1;
}
