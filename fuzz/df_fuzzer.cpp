// The default fonts list reader ("df"): at most five fonts, all available.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/Log.h"
#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontTable.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  const std::string& base = kelfont_fuzz::scratch();
  if (!kelfont_fuzz::writeWhole(base + "FInfo/df", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string directory = base;
  qro_common::DefaultFontsReader reader(directory);
  std::unique_ptr<std::vector<int>> fonts(reader.Read(table));
  if (fonts == nullptr) kelfont_fuzz::fail("an existing list gave no result");
  if (fonts->size() > 5) kelfont_fuzz::fail("more than five default fonts");
  for (int index : *fonts) {
    if (index < 0 || index >= table.GetFontCount()) kelfont_fuzz::fail("a default font outside the table");
  }
  return 0;
}
