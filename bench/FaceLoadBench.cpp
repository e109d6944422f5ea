// First use of a face: libkelfont reading NanumGothic's data file (every
// mapped character's advance and the kerning pairs) against FreeType
// opening the font file and reading its advances with FT_Get_Advances.
// Both release what they built within the measured step.

#include <benchmark/benchmark.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H

#include <stdexcept>
#include <vector>

#include "bench/BenchSupport.h"
#include "bench/Registration.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/registry/FontTable.h"

namespace kelfont_bench {
namespace {

// The info index of the CJK face in the warm cache.
int cjkInfoIndex() {
  static const int index = [] {
    qro_common::FontInfoSerializer serializer(warmStorage());
    qro_common::FontTable table;
    table.LoadFontInfo(serializer);
    const qro_common::FontInfo* info =
        table.GetFontInfo(table.GetFontIndex(cjkFontName()), false, false, true);
    if (info == nullptr) throw std::runtime_error("no CJK face in the cache");
    return info->GetInfoIndex();
  }();
  return index;
}

void kelfontReadData(benchmark::State& state) {
  qro_common::FontInfoSerializer serializer(warmStorage());
  qro_common::FontInfo info;
  info.SetInfoIndex(cjkInfoIndex());
  for (auto _ : state) {
    if (!serializer.ReadData(info)) throw std::runtime_error("ReadData failed");
    info.SetCharMetricsInfo(nullptr);
    info.SetKerningInfo(nullptr);
  }
}

// Opens the face, reads the advance of every glyph, and (with `mapped`)
// walks the Unicode map to give each mapped character its advance.
void freetypeOpen(benchmark::State& state, bool mapped) {
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) throw std::runtime_error("FreeType");
  std::vector<FT_Fixed> advances;
  std::vector<FT_Fixed> perChar;
  for (auto _ : state) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, cjkFontPath().c_str(), 0, &face) != 0) {
      throw std::runtime_error("FreeType cannot open the CJK font");
    }
    advances.resize(static_cast<std::size_t>(face->num_glyphs));
    FT_Get_Advances(face, 0, static_cast<FT_UInt>(face->num_glyphs), FT_LOAD_NO_SCALE,
                    advances.data());
    if (mapped) {
      perChar.clear();
      FT_UInt glyph = 0;
      for (FT_ULong c = FT_Get_First_Char(face, &glyph); glyph != 0;
           c = FT_Get_Next_Char(face, c, &glyph)) {
        perChar.push_back(advances[glyph]);
      }
      benchmark::DoNotOptimize(perChar.data());
    }
    benchmark::DoNotOptimize(advances.data());
    FT_Done_Face(face);
  }
  FT_Done_FreeType(library);
}

void freetypeOpenMapped(benchmark::State& state) { freetypeOpen(state, true); }
void freetypeOpenGlyphs(benchmark::State& state) { freetypeOpen(state, false); }

}  // namespace

void registerFaceLoadBenchmarks() {
  benchmark::RegisterBenchmark("FaceLoad/kelfont_read_data", kelfontReadData)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("FaceLoad/freetype_open_mapped_advances", freetypeOpenMapped)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("FaceLoad/freetype_open_glyph_advances", freetypeOpenGlyphs)
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace kelfont_bench
