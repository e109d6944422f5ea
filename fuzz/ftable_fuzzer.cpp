// The cache table reader: header check, change detection, every record,
// and the font table built from them.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/registry/FontTable.h"
#include "fuzz/FuzzSupport.h"

using qro_common::FontInfo;
using qro_common::FontInfoSerializer;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("FInfo/Ftable", data, size)) return 0;
  const std::string& base = kelfont_fuzz::scratch();

  std::string directory = base;
  std::vector<const std::string*> directories{&directory, &directory};
  {
    FontInfoSerializer serializer(base);
    serializer.ReadHeader();
    serializer.IsModified(directories);
  }
  std::vector<FontInfo*> list;
  {
    FontInfoSerializer serializer(base);
    serializer.Read(list);
    // Each record written again: the writer takes whatever the reader gave.
    std::string body;
    for (size_t i = 0; i < list.size(); ++i) {
      body.clear();
      serializer.Write(*list[i], body, static_cast<int>(i));
      FontInfo again;
      serializer.Read(again, body);
    }
  }
  for (FontInfo* info : list) delete info;

  FontInfoSerializer serializer(base);
  qro_common::FontTable table;
  if (table.LoadFontInfo(serializer)) {
    for (int i = 0; i < table.GetFontCount(); ++i) {
      for (int style = 0; style < 4; ++style) {
        table.GetFontInfo(i, (style & 1) != 0, (style & 2) != 0, true);
      }
    }
    table.GetFontIndex("KelTest Basic");
  }
  return 0;
}
