// First use of a face: libkelfont reading NanumGothic's data file (every
// mapped character's advance and the kerning pairs) against FreeType
// opening the font file and reading its advances with FT_Get_Advances.
// Both release what they built within the measured step. On the Android set
// (KELFONT_ANDROID_FONTS) the same for Noto Sans CJK JP and Droid Sans
// Fallback.

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

// The info index of the face named `name` in the cache under `storage`.
int infoIndex(const std::string& storage, const std::string& name) {
  qro_common::FontInfoSerializer serializer(storage);
  qro_common::FontTable table;
  table.LoadFontInfo(serializer);
  const qro_common::FontInfo* info =
      table.GetFontInfo(table.GetFontIndex(name), false, false, true);
  if (info == nullptr) throw std::runtime_error("no face " + name + " in the cache");
  return info->GetInfoIndex();
}

void kelfontReadData(benchmark::State& state, const std::string& (*storage)(), std::string name) {
  qro_common::FontInfoSerializer serializer(storage());
  qro_common::FontInfo info;
  info.SetInfoIndex(infoIndex(storage(), name));
  for (auto _ : state) {
    if (!serializer.ReadData(info)) throw std::runtime_error("ReadData failed");
    info.SetCharMetricsInfo(nullptr);
    info.SetKerningInfo(nullptr);
  }
}

// Opens the face, reads the advance of every glyph, and (with `mapped`)
// walks the Unicode map to give each mapped character its advance.
void freetypeOpen(benchmark::State& state, std::string path, long faceIndex, bool mapped) {
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) throw std::runtime_error("FreeType");
  std::vector<FT_Fixed> advances;
  std::vector<FT_Fixed> perChar;
  for (auto _ : state) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, path.c_str(), faceIndex, &face) != 0) {
      throw std::runtime_error("FreeType cannot open " + path);
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

}  // namespace

void registerFaceLoadBenchmarks() {
  benchmark::RegisterBenchmark("FaceLoad/kelfont_read_data", kelfontReadData, warmStorage,
                               cjkFontName())
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("FaceLoad/freetype_open_mapped_advances", freetypeOpen,
                               cjkFontPath(), 0, true)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("FaceLoad/freetype_open_glyph_advances", freetypeOpen, cjkFontPath(),
                               0, false)
      ->Unit(benchmark::kMicrosecond);
  if (androidFontFolders().empty()) return;
  const std::string folder = androidFontFolders()[0] + "/";
  struct Face {
    const char* label;
    const char* name;
    const char* file;
  };
  for (const Face& face :
       {Face{"noto_sans_cjk_jp", "Noto Sans CJK JP", "NotoSansCJK-Regular.ttc"},
        Face{"droid_sans_fallback", "Droid Sans Fallback", "DroidSansFallbackFull.ttf"}}) {
    const std::string label = face.label;
    benchmark::RegisterBenchmark(("Android/FaceLoad/kelfont_read_data/" + label).c_str(),
                                 kelfontReadData, androidWarmStorage, std::string(face.name))
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(
        ("Android/FaceLoad/freetype_open_mapped_advances/" + label).c_str(), freetypeOpen,
        folder + face.file, 0, true)
        ->Unit(benchmark::kMicrosecond);
  }
}

}  // namespace kelfont_bench
