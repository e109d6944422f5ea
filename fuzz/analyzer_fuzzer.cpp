// The font file analyzer over mutated fonts: open, analyse, measure (with
// the kerning of the `kern` table or, without it, of GPOS through
// HarfBuzz), apply to the default font information, and draw outlines
// through the font manager's face pool.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/FontManager.h"
#include "common/manager/Path.h"
#include "fuzz/FuzzSupport.h"

namespace {

// Counts what is drawn.
class CountingPath : public qro_graphics::Path {
 public:
  void reset() override { commands = 0; }
  void moveTo(float, float) override { ++commands; }
  void lineTo(float, float) override { ++commands; }
  void quadTo(float, float, float, float) override { ++commands; }
  void cubicTo(float, float, float, float, float, float) override { ++commands; }
  int commands = 0;
};

class OutlineManager : public qro_common::FontManager {
 public:
  OutlineManager() : FontManager(nullptr) {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static qro_common::FontFileAnalyzer analyzer;
  // A manager (and face pool) per input: what one input allocates, it
  // frees, so that libFuzzer's leak check has nothing to look into.
  OutlineManager manager;
  static int counter = 0;
  const int number = ++counter;
  const std::string name = "font" + std::to_string(number) + ".ttf";
  if (!kelfont_fuzz::takeInput(name, data, size)) return 0;
  const std::string path = kelfont_fuzz::scratch() + name;

  qro_common::DefaultFontInfo defaults;
  for (int face = 0; face < 2; ++face) {
    if (!analyzer.Open(path.c_str(), face)) continue;
    std::unique_ptr<qro_common::FontInfo> info(analyzer.Analyze());
    if (info) {
      analyzer.ApplyDefaultFontInfo(3, defaults);
      analyzer.AnalyzeData(*info);
      for (unsigned short glyph = 0; glyph < 4; ++glyph) analyzer.GetGlyphAdvance(glyph);
    }
    int faces = analyzer.GetFaceCount();
    analyzer.Close();
    if (!info) continue;

    info->SetInfoIndex(number * 2 + face);
    info->SetFaceIndex(static_cast<unsigned char>(face));
    info->SetFilePath(new std::string(path));
    CountingPath drawn;
    float x = 10.5f, y = 20.25f;
    for (unsigned ch : {0x41u, 0x20u, 0xAC00u, 0x1F600u})
      manager.OutlineToPath(info.get(), ch, x, y, &drawn);
    for (unsigned glyph = 0; glyph < 3; ++glyph) {
      manager.GlyphOutlineToPath(info.get(), glyph, x, y, &drawn);
    }
    if (faces < 2) break;
  }
  unlink(path.c_str());
  return 0;
}
