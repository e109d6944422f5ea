// The script default fonts list reader ("sf"): 128 entries, each none or a font.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/sf", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string path = kelfont_fuzz::scratch() + "FInfo/sf";
  qro_common::ScriptDefaultFontsReader reader(path);
  const std::vector<int>* fonts = reader.Read(table);
  if (fonts == nullptr || fonts->size() != 128) kelfont_fuzz::fail("not 128 script entries");
  kelfont_fuzz::expectFonts(*fonts, -1, table, "a script font outside the table");
  return 0;
}
