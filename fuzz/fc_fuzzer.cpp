// The font chain list reader ("fc"): chains resolve to fonts of the table.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/Log.h"
#include "common/registry/FontChainReader.h"
#include "common/registry/FontTable.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  const std::string& base = kelfont_fuzz::scratch();
  if (!kelfont_fuzz::writeWhole(base + "FInfo/fc", data, size)) return 0;
  qro_common::FontTable table;
  kelfont_fuzz::addListFonts(table);
  std::string directory = base;
  std::map<int, std::vector<int>*> chains;
  qro_common::FontChainReader reader(directory);
  reader.Read(table, chains);
  for (auto& [key, chain] : chains) {
    if (key < 0 || key >= table.GetFontCount() || chain == nullptr || chain->empty()) {
      kelfont_fuzz::fail("a chain outside the table");
    }
    for (int index : *chain) {
      if (index < 0 || index >= table.GetFontCount()) kelfont_fuzz::fail("a chain entry outside the table");
    }
    delete chain;
  }
  return 0;
}
