#include "common/analysis/GposKerning.h"

#include "common/font_info/KerningInfo.h"

#if KELFONT_HARFBUZZ

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <hb-ot.h>
#include <hb.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "base/Log.h"

namespace qro_common {
namespace {

// Ligatures and contextual alternates would merge or swap the glyphs of a
// pair; kerning is measured without them.
const hb_feature_t kFeaturesOff[] = {
    {HB_TAG('l', 'i', 'g', 'a'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('c', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('c', 'a', 'l', 't'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('d', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('r', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
};
constexpr unsigned kFeatureCount = sizeof(kFeaturesOff) / sizeof(kFeaturesOff[0]);

struct HbDestroy {
  void operator()(hb_face_t* p) const { hb_face_destroy(p); }
  void operator()(hb_font_t* p) const { hb_font_destroy(p); }
  void operator()(hb_buffer_t* p) const { hb_buffer_destroy(p); }
  void operator()(hb_set_t* p) const { hb_set_destroy(p); }
};
template <typename T>
using HbPtr = std::unique_ptr<T, HbDestroy>;

// HarfBuzz reads the tables through FreeType, however the face was opened.
hb_blob_t* loadTable(hb_face_t*, hb_tag_t tag, void* userData) {
  auto face = static_cast<FT_Face>(userData);
  FT_ULong length = 0;
  if (tag == 0 || FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) != 0 || length == 0 ||
      length > 0x7FFFFFFF) {
    return nullptr;
  }
  auto* bytes = static_cast<FT_Byte*>(std::malloc(length));
  if (bytes == nullptr) return nullptr;
  if (FT_Load_Sfnt_Table(face, tag, 0, bytes, &length) != 0) {
    std::free(bytes);
    return nullptr;
  }
  return hb_blob_create(reinterpret_cast<const char*>(bytes), static_cast<unsigned>(length),
                        HB_MEMORY_MODE_WRITABLE, bytes, std::free);
}

bool hasTable(FT_Face face, FT_ULong tag) {
  FT_ULong length = 0;
  return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
}

bool isNeutral(hb_script_t script) {
  return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
}

// The properties HarfBuzz guesses for a text whose first scripted
// character has `script` (HB_SCRIPT_INVALID when none has one); the
// language is left unset, so the font's default language system applies.
hb_segment_properties_t propertiesFor(hb_script_t script) {
  hb_segment_properties_t props = HB_SEGMENT_PROPERTIES_DEFAULT;
  props.script = script;
  props.direction = hb_script_get_horizontal_direction(script);
  if (props.direction == HB_DIRECTION_INVALID) props.direction = HB_DIRECTION_LTR;
  return props;
}

// The lookups that shaping with `props` runs from `table`.
HbPtr<hb_set_t> planLookups(hb_face_t* face, const hb_segment_properties_t& props, hb_tag_t table) {
  HbPtr<hb_set_t> lookups(hb_set_create());
  hb_shape_plan_t* plan =
      hb_shape_plan_create_cached(face, &props, kFeaturesOff, kFeatureCount, nullptr);
  hb_ot_shape_plan_collect_lookups(plan, table, lookups.get());
  hb_shape_plan_destroy(plan);
  return lookups;
}

// Every ordered pair of `nodes` (a node with itself included) exactly once
// as neighbours: an Eulerian circuit of the complete directed graph with
// loops, n * n + 1 entries long.
std::vector<int> pairCircuit(const std::vector<int>& nodes) {
  const std::size_t n = nodes.size();
  if (n == 0) return {};
  std::vector<std::size_t> next(n, 0), stack{0};
  std::vector<int> circuit;
  circuit.reserve(n * n + 1);
  while (!stack.empty()) {
    const std::size_t v = stack.back();
    if (next[v] < n) {
      stack.push_back(next[v]++);
    } else {
      circuit.push_back(nodes[v]);
      stack.pop_back();
    }
  }
  return std::vector<int>(circuit.rbegin(), circuit.rend());
}

class PairShaper {
 public:
  PairShaper(hb_font_t* font, unsigned first)
      : font_(font), buffer_(hb_buffer_create()), first_(first) {}

  bool Ready() const { return hb_buffer_allocation_successful(buffer_.get()); }

  // Shapes the characters of `text` (indexes into the list). True when
  // every character kept one glyph of its own, in place.
  bool Shape(const std::vector<int>& text, const hb_segment_properties_t& props) {
    hb_buffer_clear_contents(buffer_.get());
    hb_buffer_set_segment_properties(buffer_.get(), &props);
    codes_.resize(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
      codes_[i] = first_ + static_cast<unsigned>(text[i]);
    hb_buffer_add_codepoints(buffer_.get(), codes_.data(), static_cast<int>(codes_.size()), 0,
                             static_cast<int>(codes_.size()));
    hb_shape(font_, buffer_.get(), kFeaturesOff, kFeatureCount);
    infos_ = hb_buffer_get_glyph_infos(buffer_.get(), &length_);
    positions_ = hb_buffer_get_glyph_positions(buffer_.get(), nullptr);
    if (positions_ == nullptr) length_ = 0;
    if (length_ != text.size()) return false;
    for (unsigned i = 0; i < length_; ++i) {
      if (infos_[i].cluster != i) return false;
    }
    return true;
  }

  // Glyph and advance of the i-th glyph of the last shaping; 0 past its end.
  unsigned Glyph(std::size_t i) const { return i < length_ ? infos_[i].codepoint : 0; }
  int Advance(std::size_t i) const { return i < length_ ? positions_[i].x_advance : 0; }

  hb_script_t ScriptOf(int index) const {
    return hb_unicode_script(hb_buffer_get_unicode_funcs(buffer_.get()),
                             first_ + static_cast<unsigned>(index));
  }

 private:
  hb_font_t* font_;
  HbPtr<hb_buffer_t> buffer_;
  unsigned first_;
  std::vector<hb_codepoint_t> codes_;
  unsigned length_ = 0;
  hb_glyph_info_t* infos_ = nullptr;
  hb_glyph_position_t* positions_ = nullptr;
};

class KerningTable {
 public:
  KerningTable(hb_face_t* face, hb_font_t* font, unsigned first, int count, bool groupUnnamed)
      : face_(face),
        groupUnnamed_(groupUnnamed),
        shaper_(font, first),
        count_(count),
        values_(static_cast<std::size_t>(count) * static_cast<std::size_t>(count), 0) {}

  // Fills the values; false when the shaping buffer cannot be allocated.
  bool Compute() {
    if (!shaper_.Ready()) return false;
    scripts_.resize(count_);
    hb_script_t main = HB_SCRIPT_INVALID;
    bool oneScript = true;
    for (int c = 0; c < count_; ++c) {
      scripts_[c] = shaper_.ScriptOf(c);
      if (isNeutral(scripts_[c])) {
        neutral_.push_back(c);
        continue;
      }
      if (main == HB_SCRIPT_INVALID) main = scripts_[c];
      oneScript = oneScript && scripts_[c] == main;
    }
    // Each character shaped alone, with what HarfBuzz guesses for it.
    alone_.resize(count_);
    aloneGlyph_.resize(count_);
    bool oneGlyphEach = true;
    for (int c = 0; c < count_; ++c) {
      const hb_script_t script = isNeutral(scripts_[c]) ? HB_SCRIPT_INVALID : scripts_[c];
      oneGlyphEach = shaper_.Shape({c}, propertiesFor(script)) && oneGlyphEach;
      alone_[c] = shaper_.Advance(0);
      aloneGlyph_[c] = shaper_.Glyph(0);
    }
    if (oneGlyphEach && oneScript && ComputeInCircuits(main)) return true;
    return ComputeByPair();
  }

  int Value(int left, int right) const {
    return values_[static_cast<std::size_t>(left) * static_cast<std::size_t>(count_) +
                   static_cast<std::size_t>(right)];
  }

 private:
  int& At(int left, int right) {
    return values_[static_cast<std::size_t>(left) * static_cast<std::size_t>(count_) +
                   static_cast<std::size_t>(right)];
  }

  // All pairs in one shaping call: in a text where every ordered pair
  // stands once as neighbours, a pair adjustment lands on the first glyph
  // of its pair, so each glyph's advance gives the kerning with the next
  // one. Pairs of two script-neutral characters (digits, punctuation) are
  // shaped apart when their lookups differ from the script's. False when a
  // glyph was substituted, merged or moved in context, or when shaping
  // failed: the pairs are then shaped one by one.
  bool ComputeInCircuits(hb_script_t main) {
    std::vector<int> all(count_);
    for (int c = 0; c < count_; ++c) all[c] = c;
    if (!ReadCircuit(all, main)) return false;
    if (main == HB_SCRIPT_INVALID || neutral_.empty()) return true;
    const hb_segment_properties_t scripted = propertiesFor(main);
    const hb_segment_properties_t plain = propertiesFor(HB_SCRIPT_INVALID);
    for (hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
      if (!hb_set_is_equal(planLookups(face_, scripted, table).get(),
                           planLookups(face_, plain, table).get())) {
        return ReadCircuit(neutral_, HB_SCRIPT_INVALID);
      }
    }
    return true;
  }

  bool ReadCircuit(const std::vector<int>& chars, hb_script_t script) {
    const hb_segment_properties_t props = propertiesFor(script);
    // Each character's glyph shaped alone with these same properties (a
    // neutral character alone has none of the script's): a glyph that
    // differs in the text was substituted in context.
    std::vector<unsigned> glyphs(aloneGlyph_);
    for (int c : chars) {
      if ((isNeutral(scripts_[c]) ? HB_SCRIPT_INVALID : scripts_[c]) == script) continue;
      if (!shaper_.Shape({c}, props)) return false;
      glyphs[c] = shaper_.Glyph(0);
    }
    std::vector<int> standIn(count_);
    const std::vector<int> nodes = Representatives(chars, glyphs, props, standIn);
    const std::vector<int> circuit = pairCircuit(nodes);
    if (!shaper_.Shape(circuit, props)) return false;
    for (std::size_t i = 0; i < circuit.size(); ++i) {
      if (shaper_.Glyph(i) != glyphs[circuit[i]]) return false;
    }
    for (std::size_t i = 0; i + 1 < circuit.size(); ++i) {
      At(circuit[i], circuit[i + 1]) = shaper_.Advance(i) - alone_[circuit[i]];
    }
    for (int left : chars) {
      for (int right : chars) At(left, right) = At(standIn[left], standIn[right]);
    }
    return true;
  }

  // The characters to shape in place of `chars`. A glyph that no lookup of
  // the plan names, neither as input nor as context, kerns nothing as the
  // first of a pair, and is treated as the second of a pair like every
  // other such glyph of its GDEF class (which decides what a lookup
  // skips): one character stands in for those of its class. Marks, and
  // faces whose kerning may come from elsewhere (`kern`, `kerx`, `morx`),
  // keep every character. standIn[c] is the character whose values c
  // takes (c itself when shaped).
  std::vector<int> Representatives(const std::vector<int>& chars,
                                   const std::vector<unsigned>& glyphs,
                                   const hb_segment_properties_t& props,
                                   std::vector<int>& standIn) {
    for (int c : chars) standIn[c] = c;
    if (!groupUnnamed_) return chars;
    HbPtr<hb_set_t> named(hb_set_create());
    for (hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
      HbPtr<hb_set_t> lookups = planLookups(face_, props, table);
      for (hb_codepoint_t lookup = HB_SET_VALUE_INVALID; hb_set_next(lookups.get(), &lookup);) {
        hb_ot_layout_lookup_collect_glyphs(face_, table, lookup, named.get(), named.get(),
                                           named.get(), named.get());
      }
    }
    if (!hb_set_allocation_successful(named.get())) return chars;
    std::vector<int> nodes;
    int classFirst[5] = {-1, -1, -1, -1, -1};
    for (int c : chars) {
      const unsigned glyphClass = hb_ot_layout_get_glyph_class(face_, glyphs[c]);
      if (hb_set_has(named.get(), glyphs[c]) || glyphClass == HB_OT_LAYOUT_GLYPH_CLASS_MARK ||
          glyphClass > 4) {
        nodes.push_back(c);
      } else if (classFirst[glyphClass] < 0) {
        classFirst[glyphClass] = c;
        nodes.push_back(c);
      } else {
        standIn[c] = classFirst[glyphClass];
      }
    }
    return nodes;
  }

  // The reference itself: each pair shaped on its own.
  bool ComputeByPair() {
    for (int left = 0; left < count_; ++left) {
      for (int right = 0; right < count_; ++right) {
        hb_script_t script = isNeutral(scripts_[left]) ? scripts_[right] : scripts_[left];
        if (isNeutral(script)) script = HB_SCRIPT_INVALID;
        shaper_.Shape({left, right}, propertiesFor(script));
        At(left, right) = shaper_.Advance(0) - alone_[left];
      }
    }
    return true;
  }

  hb_face_t* face_;
  bool groupUnnamed_;
  PairShaper shaper_;
  int count_;
  std::vector<int> values_;
  std::vector<hb_script_t> scripts_;
  std::vector<int> neutral_;
  std::vector<int> alone_;
  std::vector<unsigned> aloneGlyph_;
};

}  // namespace

bool hasGposKerning() { return true; }

int registerGposKerning(FT_Face face, unsigned first, int count, KerningInfo& kerning) {
  if (face == nullptr || count <= 0 || !FT_IS_SFNT(face)) return 0;
  const bool hasGpos = hasTable(face, TTAG_GPOS);
  // Without GPOS, shaping kerns only from a `kern` or `kerx` table.
  if (!hasGpos && !hasTable(face, TTAG_kern) && !hasTable(face, HB_TAG('k', 'e', 'r', 'x')))
    return 0;

  HbPtr<hb_face_t> hbFace(hb_face_create_for_tables(loadTable, face, nullptr));
  if (hasGpos && !hb_ot_layout_has_positioning(hbFace.get())) {
    qro_base::logProfile("Kerning: the GPOS table of %s %s is damaged, no kerning is read from it",
                         face->family_name != nullptr ? face->family_name : "(unnamed)",
                         face->style_name != nullptr ? face->style_name : "");
    return 0;
  }
  HbPtr<hb_font_t> font(hb_font_create(hbFace.get()));
  // A named instance of a variable face is kerned at its own coordinates.
  if (const auto instance = static_cast<unsigned>(face->face_index >> 16)) {
    hb_font_set_var_named_instance(font.get(), instance - 1);
  }
  const int upem = static_cast<int>(hb_face_get_upem(hbFace.get()));
  hb_font_set_scale(font.get(), upem, upem);

  const bool otherKerning = hasTable(face, TTAG_kern) ||
                            hasTable(face, HB_TAG('k', 'e', 'r', 'x')) ||
                            hasTable(face, HB_TAG('m', 'o', 'r', 'x'));
  KerningTable table(hbFace.get(), font.get(), first, count, hasGpos && !otherKerning);
  if (!table.Compute()) return 0;
  int registered = 0;
  for (int left = 0; left < count; ++left) {
    for (int right = 0; right < count; ++right) {
      const int value = table.Value(left, right);
      if (value == 0) continue;
      kerning.Register(static_cast<int>(first) + left, static_cast<int>(first) + right,
                       static_cast<short>(value));
      ++registered;
    }
  }
  return registered;
}

}  // namespace qro_common

#else  // no HarfBuzz: the `kern` table is the only source of kerning

namespace qro_common {

bool hasGposKerning() { return false; }

int registerGposKerning(FT_Face, unsigned, int, KerningInfo&) { return 0; }

}  // namespace qro_common

#endif
