// Hot advance: the advance of every character of a 1,000,000-character
// mixed Latin and Hangul text in NanumGothic, every key already asked once.
// libkelfont's two doors against HarfBuzz (nominal glyph + horizontal
// advance of an hb-ot font) and FreeType (char index + unscaled advance).
// Hot queries: the manager's other per-character questions over the same
// text, with the face loaded: visibility (read from the face's data),
// ConfirmVisibleChar (cached) and the kerning of each pair.

#include <benchmark/benchmark.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include <hb-ot.h>
#include <hb.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "api/kelfont.h"
#include "bench/BenchSupport.h"
#include "bench/Registration.h"
#include "bench/StartedManager.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_bench {
namespace {

const std::vector<char32_t>& text() {
  static const std::vector<char32_t> chars = mixedText(smokeRun() ? 10000 : 1000000);
  return chars;
}

void countChars(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(text().size()));
}

qro_common::FontManager& hotManager() {
  static StartedManager* manager = [] {
    auto* started = new StartedManager(warmStorage(), listsPackageFolder(), realFontFolders());
    started->Start();
    return started;
  }();
  return manager->Manager();
}

int hotFont(qro_common::FontManager& fonts) {
  const int font = fonts.GetFontIndex(cjkFontName());
  if (font < 0) throw std::runtime_error("no CJK font in the cache");
  return font;
}

void managerAdvance(benchmark::State& state) {
  qro_common::FontManager& fonts = hotManager();
  const int font = hotFont(fonts);
  for (char32_t c : text()) fonts.GetCharAdvanceRatio(font, c, false, false);
  for (auto _ : state) {
    float sum = 0;
    for (char32_t c : text()) sum += fonts.GetCharAdvanceRatio(font, c, false, false);
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
}

void managerVisible(benchmark::State& state) {
  qro_common::FontManager& fonts = hotManager();
  const int font = hotFont(fonts);
  for (auto _ : state) {
    int visible = 0;
    for (char32_t c : text()) visible += fonts.IsVisibleChar(font, c);
    benchmark::DoNotOptimize(visible);
  }
  countChars(state);
}

void managerConfirm(benchmark::State& state) {
  qro_common::FontManager& fonts = hotManager();
  const int font = hotFont(fonts);
  for (auto _ : state) {
    unsigned sum = 0;
    for (char32_t c : text()) {
      int shown = font;
      unsigned ch = c;
      fonts.ConfirmVisibleChar(shown, ch, false, false);
      sum += ch + static_cast<unsigned>(shown);
    }
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
}

void managerKerning(benchmark::State& state) {
  qro_common::FontManager& fonts = hotManager();
  const int font = hotFont(fonts);
  fonts.GetCharMetrics(font, 'A', false, false);  // loads the face's data and kerning
  for (auto _ : state) {
    long sum = 0;
    char32_t previous = ' ';
    for (char32_t c : text()) {
      sum += fonts.GetKerningWidth(font, false, false, previous, c);
      previous = c;
    }
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
}

void facadeAdvance(benchmark::State& state) {
  static const int started = InitKelFont("", warmStorage().c_str(), "");
  if (started != 0) throw std::runtime_error("InitKelFont failed");
  const int font = GetFontIndex(cjkFontName());
  const bool bold = false;
  const bool italic = false;
  int advance = 0;
  for (char32_t c : text()) GetFontCharInfo(font, static_cast<int>(c), bold, italic, advance);
  for (auto _ : state) {
    long sum = 0;
    for (char32_t c : text()) {
      GetFontCharInfo(font, static_cast<int>(c), bold, italic, advance);
      sum += advance;
    }
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
}

void harfbuzzAdvance(benchmark::State& state) {
  hb_blob_t* blob = hb_blob_create_from_file(cjkFontPath().c_str());
  hb_face_t* face = hb_face_create(blob, 0);
  hb_font_t* font = hb_font_create(face);
  hb_ot_font_set_funcs(font);
  const int upem = static_cast<int>(hb_face_get_upem(face));
  hb_font_set_scale(font, upem, upem);
  for (auto _ : state) {
    long sum = 0;
    for (char32_t c : text()) {
      hb_codepoint_t glyph = 0;
      if (hb_font_get_nominal_glyph(font, c, &glyph))
        sum += hb_font_get_glyph_h_advance(font, glyph);
    }
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
  hb_font_destroy(font);
  hb_face_destroy(face);
  hb_blob_destroy(blob);
}

void freetypeAdvance(benchmark::State& state) {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  if (FT_Init_FreeType(&library) != 0 ||
      FT_New_Face(library, cjkFontPath().c_str(), 0, &face) != 0) {
    throw std::runtime_error("FreeType cannot open the CJK font");
  }
  for (auto _ : state) {
    long sum = 0;
    for (char32_t c : text()) {
      FT_Fixed advance = 0;
      FT_Get_Advance(face, FT_Get_Char_Index(face, c), FT_LOAD_NO_SCALE, &advance);
      sum += advance;
    }
    benchmark::DoNotOptimize(sum);
  }
  countChars(state);
  FT_Done_Face(face);
  FT_Done_FreeType(library);
}

}  // namespace

void registerHotAdvanceBenchmarks() {
  benchmark::RegisterBenchmark("HotAdvance/kelfont_manager", managerAdvance)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotAdvance/kelfont_facade", facadeAdvance)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotAdvance/harfbuzz", harfbuzzAdvance)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotAdvance/freetype", freetypeAdvance)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotQueries/kelfont_visible", managerVisible)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotQueries/kelfont_confirm", managerConfirm)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("HotQueries/kelfont_kerning", managerKerning)
      ->Unit(benchmark::kMillisecond);
}

}  // namespace kelfont_bench
