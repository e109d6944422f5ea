// The default fonts list reader ("df"): at most five fonts, all available.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontTable.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/df", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string directory = kelfont_fuzz::scratch();
  qro_common::DefaultFontsReader reader(directory);
  std::unique_ptr<std::vector<int>> fonts(reader.Read(table));
  if (fonts == nullptr) kelfont_fuzz::fail("an existing list gave no result");
  if (fonts->size() > 5) kelfont_fuzz::fail("more than five default fonts");
  kelfont_fuzz::expectFonts(*fonts, 0, table, "a default font outside the table");
  return 0;
}
