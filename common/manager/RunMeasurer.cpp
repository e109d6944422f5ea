#include "common/manager/RunMeasurer.h"

#include <algorithm>
#include <climits>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "base/CharacterType.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontMetrics.h"
#include "common/manager/FontManager.h"
#include "common/manager/GraphemeBreaker.h"
#include "common/registry/FontTable.h"

#if KELFONT_HARFBUZZ
#include <hb-ot.h>
#include <hb.h>
#endif

namespace qro_common {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kMaxCheckedCodes = 64;

// Characters a font need not show to take a cluster: the joiners and the
// variation selectors, which shaping hides when the font lacks them.
bool isIgnorable(char32_t c) {
  return c == 0x200C || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F) ||
         (c >= 0xE0100 && c <= 0xE01EF);
}

// The code points of the run (unpaired surrogates as U+FFFD) and the index
// of each one's first unit.
void decode(const char16_t* text, std::size_t length, std::vector<char32_t>& codes,
            std::vector<std::size_t>& units) {
  codes.clear();
  units.clear();
  codes.reserve(length);
  units.reserve(length);
  for (std::size_t i = 0; i < length;) {
    const char16_t u = text[i];
    units.push_back(i);
    if (u >= 0xD800 && u < 0xDC00 && i + 1 < length && text[i + 1] >= 0xDC00 &&
        text[i + 1] < 0xE000) {
      codes.push_back(0x10000 + ((static_cast<char32_t>(u) - 0xD800) << 10) +
                      (static_cast<char32_t>(text[i + 1]) - 0xDC00));
      i += 2;
    } else {
      codes.push_back(u >= 0xD800 && u < 0xE000 ? kReplacement : static_cast<char32_t>(u));
      ++i;
    }
  }
}

}  // namespace

#if KELFONT_HARFBUZZ

// HarfBuzz fonts of the font files, shared by the threads that shape: a
// font is immutable once made, and a caller holds a reference while it
// shapes. At most kMaxFonts stay open; when full, all are closed.
class ShapedFonts {
 public:
  static constexpr std::size_t kMaxFonts = 64;

  ~ShapedFonts() { Clear(); }

  // A reference to the font of the file's face (the caller destroys it);
  // null when HarfBuzz cannot read the file.
  hb_font_t* Get(const std::string& path, unsigned faceIndex) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto key = std::make_pair(path, faceIndex);
    auto it = fonts_.find(key);
    if (it == fonts_.end()) {
      if (fonts_.size() >= kMaxFonts) ClearLocked();
      it = fonts_.emplace(std::move(key), Open(path, faceIndex)).first;
    }
    return it->second == nullptr ? nullptr : hb_font_reference(it->second);
  }

  void Clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    ClearLocked();
  }

 private:
  static hb_font_t* Open(const std::string& path, unsigned faceIndex) {
    hb_blob_t* blob = hb_blob_create_from_file_or_fail(path.c_str());
    if (blob == nullptr) return nullptr;
    hb_face_t* face = hb_face_create(blob, faceIndex);
    hb_blob_destroy(blob);
    const unsigned upem = hb_face_get_upem(face);
    if (hb_face_get_glyph_count(face) == 0 || upem == 0) {
      hb_face_destroy(face);
      return nullptr;
    }
    hb_font_t* font = hb_font_create(face);
    hb_face_destroy(face);
    hb_font_set_scale(font, static_cast<int>(upem), static_cast<int>(upem));
    hb_font_make_immutable(font);
    return font;
  }

  void ClearLocked() {
    for (auto& entry : fonts_) hb_font_destroy(entry.second);
    fonts_.clear();
  }

  std::mutex mutex_;
  std::map<std::pair<std::string, unsigned>, hb_font_t*> fonts_;
};

namespace {

// A HarfBuzz buffer per thread, kept between runs.
hb_buffer_t* threadBuffer() {
  struct Holder {
    hb_buffer_t* buffer = hb_buffer_create();
    ~Holder() { hb_buffer_destroy(buffer); }
  };
  thread_local Holder holder;
  return holder.buffer;
}

bool isNeutral(hb_script_t script) {
  return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
}

// The script of the first character of codes[first, end) that has one; 0
// when none has.
int scriptOf(const std::vector<char32_t>& codes, std::size_t first, std::size_t end) {
  hb_unicode_funcs_t* funcs = hb_unicode_funcs_get_default();
  for (std::size_t i = first; i < end; ++i) {
    const hb_script_t script = hb_unicode_script(funcs, codes[i]);
    if (!isNeutral(script)) return static_cast<int>(script);
  }
  return 0;
}

}  // namespace

#else

class ShapedFonts {
 public:
  void Clear() {}
};

namespace {
int scriptOf(const std::vector<char32_t>&, std::size_t, std::size_t) { return 0; }
}  // namespace

#endif

RunMeasurer::RunMeasurer(FontManager& manager)
    : manager_(manager), cache_(kCacheBytes), fonts_(new ShapedFonts()) {}

RunMeasurer::~RunMeasurer() = default;

void RunMeasurer::Clear() {
  cache_.Clear();
  fonts_->Clear();
}

bool RunMeasurer::IsShaping() { return KELFONT_HARFBUZZ != 0; }

const char* RunMeasurer::LanguageOf(unsigned short langCode) {
  static const std::pair<unsigned short, const char*> kLanguages[] = {
      {0x01, "ar"}, {0x04, "zh"}, {0x07, "de"}, {0x09, "en"}, {0x0A, "es"},
      {0x0C, "fr"}, {0x0D, "he"}, {0x11, "ja"}, {0x12, "ko"}, {0x19, "ru"},
      {0x1E, "th"}, {0x20, "ur"}, {0x29, "fa"}, {0x2A, "vi"}, {0x39, "hi"},
      {0x45, "bn"}, {0x49, "ta"}, {0x53, "km"}, {0x55, "my"}};
  const unsigned short primary = langCode & 0x3FF;
  if (langCode == 0x0404 || langCode == 0x0C04 || langCode == 0x1404) return "zh-Hant";
  for (const auto& language : kLanguages) {
    if (language.first == primary) return language.second;
  }
  return nullptr;
}

bool RunMeasurer::Measure(int fontIndex, bool bold, bool italic, const char16_t* text,
                          std::size_t length, RunMeasure& result) {
  result.advances.resize(length);
  result.fonts.resize(length);
  result.clusterStarts.resize(length);
  return Measure(fontIndex, bold, italic, text, length, result.totalEm, result.advances.data(),
                 result.fonts.data(), result.clusterStarts.data());
}

bool RunMeasurer::Measure(int fontIndex, bool bold, bool italic, const char16_t* text,
                          std::size_t length, float& totalEm, float* advances, int* fonts,
                          std::uint8_t* clusterStarts) {
  if (manager_.GetFontTable() == nullptr || (text == nullptr && length > 0)) return false;
  if (length == 0) {
    totalEm = 0;
    return true;
  }
  const bool cached = length <= kMaxCachedLength;
  if (cached &&
      cache_.Find(fontIndex, bold, italic, text, length, totalEm, advances, fonts, clusterStarts)) {
    return true;
  }
  RunMeasure measure;
  Compute(fontIndex, bold, italic, text, length, measure);
  totalEm = measure.totalEm;
  if (advances != nullptr) std::copy(measure.advances.begin(), measure.advances.end(), advances);
  if (fonts != nullptr) std::copy(measure.fonts.begin(), measure.fonts.end(), fonts);
  if (clusterStarts != nullptr) {
    std::copy(measure.clusterStarts.begin(), measure.clusterStarts.end(), clusterStarts);
  }
  if (cached) cache_.Insert(fontIndex, bold, italic, text, length, measure);
  return true;
}

void RunMeasurer::Compute(int fontIndex, bool bold, bool italic, const char16_t* text,
                          std::size_t length, RunMeasure& result) {
  result.advances.assign(length, 0.0f);
  result.fonts.assign(length, -1);
  result.clusterStarts.assign(length, 0);
  std::vector<char32_t> codes;
  std::vector<std::size_t> units;
  decode(text, length, codes, units);

  std::vector<Cluster> clusters;
  GraphemeBreaker breaker;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    if (!breaker.BreaksBefore(codes[i])) continue;
    if (!clusters.empty()) clusters.back().endCode = i;
    clusters.push_back(Cluster{units[i], 0, i, codes.size(), -1, false, 0});
  }
  for (Cluster& cluster : clusters) {
    cluster.endUnit = cluster.endCode < units.size() ? units[cluster.endCode] : length;
    cluster.font = ClusterFont(fontIndex, bold, italic, codes, cluster.firstCode, cluster.endCode,
                               cluster.shapeable);
    cluster.script = scriptOf(codes, cluster.firstCode, cluster.endCode);
    result.clusterStarts[cluster.firstUnit] = 1;
    std::fill(result.fonts.begin() + static_cast<std::ptrdiff_t>(cluster.firstUnit),
              result.fonts.begin() + static_cast<std::ptrdiff_t>(cluster.endUnit), cluster.font);
  }

  // Sub-runs: one font, shapeable or not, one script.
  for (std::size_t begin = 0; begin < clusters.size();) {
    int script = clusters[begin].script;
    std::size_t end = begin + 1;
    while (end < clusters.size() && clusters[end].font == clusters[begin].font &&
           clusters[end].shapeable == clusters[begin].shapeable &&
           (clusters[end].script == 0 || script == 0 || clusters[end].script == script)) {
      if (script == 0) script = clusters[end].script;
      ++end;
    }
    const Cluster* first = clusters.data() + begin;
    const Cluster* last = clusters.data() + end;
    if (!first->shapeable || !Shape(fontIndex, bold, italic, text, length, first, last, result)) {
      MeasurePerCharacter(fontIndex, bold, italic, codes, first, last, result);
    }
    begin = end;
  }
  double total = 0;
  for (float advance : result.advances) total += advance;
  result.totalEm = static_cast<float>(total);
}

int RunMeasurer::ClusterFont(int fontIndex, bool bold, bool italic,
                             const std::vector<char32_t>& codes, std::size_t first, std::size_t end,
                             bool& shapeable) {
  int font = fontIndex;
  unsigned shown = codes[first];
  manager_.ConfirmVisibleChar(font, shown, bold, italic);
  shapeable = shown == codes[first];
  if (!shapeable || end - first == 1) return font;
  // A long cluster (a base with thousands of marks) is judged by its
  // first characters.
  end = std::min(end, first + kMaxCheckedCodes);

  auto shows = [&](int candidate, char32_t code) {
    int f = candidate;
    unsigned c = code;
    return !manager_.ConfirmVisibleChar(f, c, bold, italic) && f == candidate && c == code;
  };
  auto showsAll = [&](int candidate) {
    if (candidate < 0 || !shows(candidate, codes[first])) return false;
    for (std::size_t i = first + 1; i < end; ++i) {
      if (!isIgnorable(codes[i]) && !shows(candidate, codes[i])) return false;
    }
    return true;
  };
  if (showsAll(font)) return font;

  // The first character's road, then the other characters' choices.
  const unsigned code = codes[first];
  std::vector<int> road{fontIndex};
  if (const std::vector<int>* chain = manager_.GetFontChain(fontIndex)) {
    road.insert(road.end(), chain->begin(), chain->end());
  }
  const int range = FontUSBType::GetUSBType(code);
  const std::vector<int>& scriptFonts = manager_.GetScriptDefaultFontList();
  if ((range & 0x80) == 0 && static_cast<std::size_t>(range) < scriptFonts.size()) {
    road.push_back(scriptFonts[static_cast<std::size_t>(range)]);
  }
  road.push_back(manager_.GetDefaultFontIndexByCharType(
      qro_base::CharacterType::charTypes[code & 0xFFFF] & qro_base::CharacterType::kScriptMask));
  if (const DefaultFontInfo* info = manager_.GetDefaultFontInfo()) {
    road.push_back(info->GetFontIndex(code));
  }
  road.push_back(manager_.GetDefaultFontIndex(FontManager::kDefaultFontCount - 1));
  for (std::size_t i = first + 1; i < end; ++i) {
    if (isIgnorable(codes[i])) continue;
    int other = fontIndex;
    unsigned c = codes[i];
    manager_.ConfirmVisibleChar(other, c, bold, italic);
    if (std::find(road.begin(), road.end(), other) == road.end()) road.push_back(other);
  }
  for (int candidate : road) {
    if (candidate != font && showsAll(candidate)) return candidate;
  }
  return font;
}

void RunMeasurer::MeasurePerCharacter(int fontIndex, bool bold, bool italic,
                                      const std::vector<char32_t>& codes, const Cluster* begin,
                                      const Cluster* end, RunMeasure& result) {
  // The kerning of each pair, in the requested font's units, as a layout
  // engine adds it to the advances.
  const FontMetrics* metrics = manager_.GetFontTable()->GetFontMetrics(fontIndex, bold, italic);
  if (metrics == nullptr) metrics = manager_.ResolveFontMetrics(fontIndex);
  const float unitsPerEm = metrics == nullptr ? 0.0f : static_cast<float>(metrics->GetUnitsPerEm());
  for (const Cluster* cluster = begin; cluster != end; ++cluster) {
    float advance = 0;
    for (std::size_t i = cluster->firstCode; i < cluster->endCode; ++i) {
      advance += manager_.GetCharAdvanceRatio(fontIndex, codes[i], bold, italic);
      if (i > begin->firstCode && unitsPerEm > 0) {
        advance += static_cast<float>(
                       manager_.GetKerningWidth(fontIndex, bold, italic, codes[i - 1], codes[i])) /
                   unitsPerEm;
      }
    }
    result.advances[cluster->firstUnit] = advance;
  }
}

bool RunMeasurer::Shape(int fontIndex, bool bold, bool italic, const char16_t* text,
                        std::size_t length, const Cluster* begin, const Cluster* end,
                        RunMeasure& result) {
#if KELFONT_HARFBUZZ
  if (length > INT_MAX) return false;
  const FontInfo* info = manager_.GetFontTable()->ResolveFontInfo(begin->font, bold, italic, true);
  if (info == nullptr || info->GetFilePath() == nullptr) return false;
  hb_font_t* font =
      fonts_->Get(*info->GetFilePath(), static_cast<unsigned>(info->GetFreeTypeFaceIndex()));
  if (font == nullptr) return false;
  int upem = 0;
  hb_font_get_scale(font, &upem, nullptr);

  const std::size_t first = begin->firstUnit;
  const std::size_t count = (end - 1)->endUnit - first;
  hb_buffer_t* buffer = threadBuffer();
  hb_buffer_reset(buffer);
  hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t*>(text),
                      static_cast<int>(length), static_cast<unsigned>(first),
                      static_cast<int>(count));
  for (const Cluster* cluster = begin; cluster != end; ++cluster) {
    if (cluster->script != 0) {
      const auto script = static_cast<hb_script_t>(cluster->script);
      hb_buffer_set_script(buffer, script);
      hb_buffer_set_direction(buffer, hb_script_get_horizontal_direction(script));
      break;
    }
  }
  if (const char* language = LanguageOf(manager_.GetUILangCode())) {
    hb_buffer_set_language(buffer, hb_language_from_string(language, -1));
  }
  hb_buffer_guess_segment_properties(buffer);
  hb_shape(font, buffer, nullptr, 0);
  hb_font_destroy(font);

  unsigned glyphCount = 0;
  const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &glyphCount);
  const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);
  // Clusters that shaping merged become one; each unit's owner is the
  // first unit of its cluster.
  std::vector<std::uint8_t> shaped(count, 0);
  for (unsigned g = 0; g < glyphCount; ++g) {
    if (glyphs[g].cluster >= first && glyphs[g].cluster - first < count) {
      shaped[glyphs[g].cluster - first] = 1;
    }
  }
  for (const Cluster* cluster = begin + 1; cluster < end; ++cluster) {
    if (!shaped[cluster->firstUnit - first]) result.clusterStarts[cluster->firstUnit] = 0;
  }
  std::vector<std::size_t> owner(count);
  std::size_t current = first;
  for (std::size_t u = 0; u < count; ++u) {
    if (result.clusterStarts[first + u]) current = first + u;
    owner[u] = current;
  }
  for (unsigned g = 0; g < glyphCount; ++g) {
    const std::size_t unit = glyphs[g].cluster - first;
    if (unit >= count) continue;
    float advance = static_cast<float>(positions[g].x_advance);
    if (bold) advance = manager_.AdjustAdvanceRatio(fontIndex, advance);
    result.advances[owner[unit]] += advance / static_cast<float>(upem);
  }
  return true;
#else
  (void)fontIndex, (void)bold, (void)italic, (void)text, (void)length, (void)begin, (void)end,
      (void)result;
  return false;
#endif
}

}  // namespace qro_common
