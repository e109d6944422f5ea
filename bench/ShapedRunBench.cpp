// Shaped runs: the day and month names of glibc locales in eight complex
// scripts plus Latin, Hangul and emoji words, in Roboto with the Android
// fonts and lists (KELFONT_ANDROID_FONTS; nothing runs without it).
// Cached words (MeasureRun, every word asked before) against the
// per-character path (ConfirmVisibleChar and GetCharAdvanceRatio per
// unit); uncached runs against hb_shape of the same sub-runs in the same
// fonts plus the fallback road of each unit. Items are UTF-16 units.

#include <benchmark/benchmark.h>
#include <hb.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/BenchSupport.h"
#include "bench/LocaleWords.h"
#include "bench/Registration.h"
#include "bench/ScratchDir.h"
#include "bench/StartedManager.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/FontManager.h"
#include "common/manager/RunMeasurer.h"
#include "common/registry/FontTable.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/Console.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_bench {
namespace {

struct Setup {
  ScratchDir dir;
  StartedManager* started = nullptr;
  int font = -1;
  std::vector<std::u16string> words;
  std::size_t units = 0;
};

Setup* setup() {
  static Setup* s = [] {
    const char* corpus = std::getenv("KELFONT_ANDROID_FONTS");
    if (corpus == nullptr || *corpus == '\0') return static_cast<Setup*>(nullptr);
    auto* made = new Setup();
    std::ostringstream out, err;
    kelfont_tool::Console console{out, err};
    if (kelfont_tool::RunPack(
            {"--quiet", "--lists", std::string(KELFONT_SOURCE_DIR) + "/data/android", "-o",
             made->dir.path() + "qrfont.zip", "--fonts", corpus},
            console) != 0) {
      throw std::runtime_error("packing the Android fonts failed: " + err.str());
    }
    made->started = new StartedManager(made->dir.subfolder("storage"), made->dir.path(), {corpus});
    made->started->Start();
    made->font = made->started->Manager().GetFontIndex("Roboto");
    for (const char* locale : {"ar_SA", "he_IL", "hi_IN", "bn_BD", "ta_IN", "th_TH", "km_KH",
                               "my_MM", "en_US", "ko_KR"}) {
      for (const std::u16string& word : localeWords(locale)) made->words.push_back(word);
    }
    for (const char16_t* emoji :
         {u"\U0001F468\u200D\U0001F469\u200D\U0001F467", u"\U0001F1F0\U0001F1F7",
          u"\U0001F44D\U0001F3FD", u"1\uFE0F\u20E3"}) {
      made->words.push_back(emoji);
    }
    for (const std::u16string& word : made->words) made->units += word.size();
    return made;
  }();
  return s;
}

void countUnits(benchmark::State& state, const Setup& s) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(s.units));
}

void measureAll(qro_common::FontManager& manager, const Setup& s) {
  for (const std::u16string& word : s.words) {
    float total = 0;
    float advances[256];
    int fonts[256];
    std::uint8_t starts[256];
    manager.MeasureRun(s.font, false, false, word.data(), word.size(), total, advances, fonts,
                       starts);
    benchmark::DoNotOptimize(total);
  }
}

void cachedWords(benchmark::State& state) {
  Setup* s = setup();
  if (s == nullptr) return state.SkipWithError("KELFONT_ANDROID_FONTS is not set");
  qro_common::FontManager& manager = s->started->Manager();
  measureAll(manager, *s);
  for (auto _ : state) measureAll(manager, *s);
  countUnits(state, *s);
}

void perCharacter(benchmark::State& state) {
  Setup* s = setup();
  if (s == nullptr) return state.SkipWithError("KELFONT_ANDROID_FONTS is not set");
  qro_common::FontManager& manager = s->started->Manager();
  for (auto _ : state) {
    float sum = 0;
    for (const std::u16string& word : s->words) {
      for (char16_t unit : word) {
        int shown = s->font;
        unsigned code = unit;
        manager.ConfirmVisibleChar(shown, code, false, false);
        sum += manager.GetCharAdvanceRatio(s->font, unit, false, false) + static_cast<float>(shown);
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  countUnits(state, *s);
}

void uncachedRuns(benchmark::State& state) {
  Setup* s = setup();
  if (s == nullptr) return state.SkipWithError("KELFONT_ANDROID_FONTS is not set");
  qro_common::FontManager& manager = s->started->Manager();
  measureAll(manager, *s);
  for (auto _ : state) {
    manager.GetRunMeasurer().ClearWords();
    measureAll(manager, *s);
  }
  countUnits(state, *s);
}

// hb_shape of the sub-runs MeasureRun found, fonts open beforehand, plus
// the fallback road (ConfirmVisibleChar) of every unit.
void harfbuzzSubRuns(benchmark::State& state) {
  Setup* s = setup();
  if (s == nullptr) return state.SkipWithError("KELFONT_ANDROID_FONTS is not set");
  qro_common::FontManager& manager = s->started->Manager();
  struct SubRun {
    const std::u16string* word;
    unsigned offset;
    int length;
    hb_font_t* font;
  };
  std::vector<SubRun> runs;
  for (const std::u16string& word : s->words) {
    qro_common::RunMeasure m;
    manager.MeasureRun(s->font, false, false, word.data(), word.size(), m);
    for (std::size_t begin = 0; begin < word.size();) {
      std::size_t end = begin + 1;
      while (end < word.size() && m.fonts[end] == m.fonts[begin]) ++end;
      const qro_common::FontInfo* info =
          manager.GetFontTable()->ResolveFontInfo(m.fonts[begin], false, false, true);
      hb_blob_t* blob = hb_blob_create_from_file(info->GetFilePath()->c_str());
      hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(info->GetFreeTypeFaceIndex()));
      hb_font_t* font = hb_font_create(face);  // holds the face, which holds the blob
      const int upem = static_cast<int>(hb_face_get_upem(face));
      hb_font_set_scale(font, upem, upem);
      hb_face_destroy(face);
      hb_blob_destroy(blob);
      runs.push_back({&word, static_cast<unsigned>(begin), static_cast<int>(end - begin), font});
      begin = end;
    }
  }
  hb_buffer_t* buffer = hb_buffer_create();
  for (auto _ : state) {
    long sum = 0;
    for (const std::u16string& word : s->words) {
      for (char16_t unit : word) {
        int shown = s->font;
        unsigned code = unit;
        manager.ConfirmVisibleChar(shown, code, false, false);
        sum += shown;
      }
    }
    for (const SubRun& run : runs) {
      hb_buffer_reset(buffer);
      hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(run.word->data()),
                          static_cast<int>(run.word->size()), run.offset, run.length);
      hb_buffer_guess_segment_properties(buffer);
      hb_shape(run.font, buffer, nullptr, 0);
      unsigned count = 0;
      const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
      for (unsigned g = 0; g < count; ++g) sum += positions[g].x_advance;
    }
    benchmark::DoNotOptimize(sum);
  }
  countUnits(state, *s);
  hb_buffer_destroy(buffer);
  for (const SubRun& run : runs) hb_font_destroy(run.font);
}

}  // namespace

void registerShapedRunBenchmarks() {
  benchmark::RegisterBenchmark("ShapedRun/kelfont_cached_words", cachedWords)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("ShapedRun/kelfont_per_character", perCharacter)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("ShapedRun/kelfont_uncached", uncachedRuns)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("ShapedRun/harfbuzz_subruns_and_road", harfbuzzSubRuns)
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace kelfont_bench
