// The font chain list reader ("fc"): chains resolve to fonts of the table.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/registry/FontChainReader.h"
#include "common/registry/FontTable.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/fc", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string directory = kelfont_fuzz::scratch();
  std::map<int, std::vector<int>*> chains;
  qro_common::FontChainReader reader(directory);
  reader.Read(table, chains);
  for (auto& [key, chain] : chains) {
    if (key < 0 || key >= table.GetFontCount() || chain == nullptr || chain->empty()) {
      kelfont_fuzz::fail("a chain outside the table");
    }
    kelfont_fuzz::expectFonts(*chain, 0, table, "a chain entry outside the table");
    delete chain;
  }
  return 0;
}
