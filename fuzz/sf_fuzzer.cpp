// The script default fonts list reader ("sf"): 128 entries, each none or a font.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Log.h"
#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  const std::string& base = kelfont_fuzz::scratch();
  if (!kelfont_fuzz::writeWhole(base + "FInfo/sf", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string path = base + "FInfo/sf";
  qro_common::ScriptDefaultFontsReader reader(path);
  const std::vector<int>* fonts = reader.Read(table);
  if (fonts == nullptr || fonts->size() != 128) kelfont_fuzz::fail("not 128 script entries");
  for (int index : *fonts) {
    if (index < -1 || index >= table.GetFontCount()) kelfont_fuzz::fail("a script font outside the table");
  }
  return 0;
}
