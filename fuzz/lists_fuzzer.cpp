// The list readers, the first byte picking one (its value modulo 3), the
// rest being the file: the font chain list ("fc", chains resolve to fonts of
// the table), the default fonts list ("df", at most five fonts, all
// available) and the script default fonts list ("sf", 128 entries, each none
// or a font).

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontChainReader.h"
#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int list = data[0] % 3;
  const std::string name = std::string("FInfo/") + (list == 0 ? "fc" : list == 1 ? "df" : "sf");
  if (!kelfont_fuzz::takeInput(name, data + 1, size - 1)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string directory = kelfont_fuzz::scratch(), path = directory + name;
  if (list == 0) {
    std::map<int, std::vector<int>*> chains;
    qro_common::FontChainReader(directory).Read(table, chains);
    for (auto& [key, chain] : chains) {
      if (key < 0 || key >= table.GetFontCount() || chain == nullptr || chain->empty()) {
        kelfont_fuzz::fail("a chain outside the table");
      }
      kelfont_fuzz::expectFonts(*chain, 0, table, "a chain entry outside the table");
      delete chain;
    }
  } else if (list == 1) {
    std::unique_ptr<std::vector<int>> fonts(qro_common::DefaultFontsReader(directory).Read(table));
    if (fonts == nullptr) kelfont_fuzz::fail("an existing list gave no result");
    if (fonts->size() > 5) kelfont_fuzz::fail("more than five default fonts");
    kelfont_fuzz::expectFonts(*fonts, 0, table, "a default font outside the table");
  } else {
    qro_common::ScriptDefaultFontsReader reader(path);
    const std::vector<int>* fonts = reader.Read(table);
    if (fonts == nullptr || fonts->size() != 128) kelfont_fuzz::fail("not 128 script entries");
    kelfont_fuzz::expectFonts(*fonts, -1, table, "a script font outside the table");
  }
  return 0;
}
