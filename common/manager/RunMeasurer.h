#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "common/manager/WordCache.h"

namespace qro_common {

class FontManager;
class ShapedFonts;

// Measures runs of UTF-16 text as they are shaped.
//
// The run is split into extended grapheme clusters (GraphemeBreaker). Each
// cluster's font is found on the fallback road: ConfirmVisibleChar() of its
// first character decides, and the cluster keeps that font when the font
// also shows the cluster's other characters (joiners and variation
// selectors need not be shown); otherwise the next font on the road that
// shows them all: the first character's road (the requested font, its
// chain, the script default font, the character-type default font, the
// default font information's font, the last default font), then the fonts
// the other characters' roads choose. When none shows them all, the first
// character's font stays. Only the first 64 characters of a cluster are
// looked at.
//
// Consecutive clusters of one font and script form a sub-run, which
// HarfBuzz shapes from the font file of the face that serves the font and
// style (direction and script from the text, language from the interface
// language, default features, kerning included); each glyph's advance goes
// to the cluster of its HarfBuzz cluster, and clusters that shaping merged
// (a conjunct across clusters, a ligature) become one. Bold advances of the
// advance-ratio adjust fonts are corrected per glyph, with the requested
// font's bands, as GetCharAdvanceRatio() corrects them per character. A
// cluster that cannot be shaped (a font without file, a character the road
// rewrites, a library built without HarfBuzz) takes the per-character
// advances of GetCharAdvanceRatio() and the requested font's kerning
// (GetKerningWidth()) of the pairs of its sub-run. Unpaired surrogates
// count as U+FFFD.
//
// Runs of at most kMaxCachedLength units are kept in a word cache of
// kCacheBytes; every query may run on any number of threads at once.
class RunMeasurer {
 public:
  static constexpr std::size_t kMaxCachedLength = 256;
  static constexpr std::size_t kCacheBytes = 4u << 20;

  explicit RunMeasurer(FontManager& manager);
  ~RunMeasurer();
  RunMeasurer(const RunMeasurer&) = delete;
  RunMeasurer& operator=(const RunMeasurer&) = delete;

  // Fills the non-null outputs (each `length` long); false when the
  // manager has no font table.
  bool Measure(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
               float& totalEm, float* advances, int* fonts, std::uint8_t* clusterStarts);
  bool Measure(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
               RunMeasure& result);
  // Forgets the measured runs and closes the shaping fonts.
  void Clear();
  // Forgets the measured runs only.
  void ClearWords() { cache_.Clear(); }

  // The BCP 47 language shaping uses for a Windows language identifier;
  // null when it has none (HarfBuzz's default language then applies).
  static const char* LanguageOf(unsigned short langCode);
  // Whether runs are shaped (the library was built with HarfBuzz).
  static bool IsShaping();

  const WordCache& GetWordCache() const { return cache_; }

 private:
  struct Cluster {
    std::size_t firstUnit;
    std::size_t endUnit;
    std::size_t firstCode;
    std::size_t endCode;
    int font;
    bool shapeable;
    int script;
  };

  void Compute(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
               RunMeasure& result);
  // The font of the cluster codes[first, end); shapeable is false when the
  // road rewrote its first character.
  int ClusterFont(int fontIndex, bool bold, bool italic, const std::vector<char32_t>& codes,
                  std::size_t first, std::size_t end, bool& shapeable);
  // Adds the per-character advances of the clusters to result.
  void MeasurePerCharacter(int fontIndex, bool bold, bool italic,
                           const std::vector<char32_t>& codes, const Cluster* begin,
                           const Cluster* end, RunMeasure& result);
  // Shapes the clusters [begin, end) of one font; false when it cannot.
  bool Shape(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
             const Cluster* begin, const Cluster* end, RunMeasure& result);

  FontManager& manager_;
  WordCache cache_;
  std::unique_ptr<ShapedFonts> fonts_;
};

}  // namespace qro_common
