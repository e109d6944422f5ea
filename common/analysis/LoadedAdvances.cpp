#include "common/analysis/LoadedAdvances.h"

#include FT_FONT_FORMATS_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <algorithm>
#include <array>
#include <cstring>

namespace qro_common {
namespace {

// Component flags of a TrueType composite glyph.
constexpr unsigned kArgsAreWords = 0x0001;
constexpr unsigned kArgsAreXYValues = 0x0002;
constexpr unsigned kHaveScale = 0x0008;
constexpr unsigned kMoreComponents = 0x0020;
constexpr unsigned kHaveXYScale = 0x0040;
constexpr unsigned kHave2x2 = 0x0080;
constexpr unsigned kUseMyMetrics = 0x0200;

// Beyond these the glyph is loaded rather than followed: points of one
// outline (FreeType's limit is 32,767), components of one glyph, nesting
// of composites, bytes of one glyph.
constexpr unsigned kMaxPoints = 30000;
constexpr unsigned kMaxComponents = 512;
constexpr int kMaxDepth = 4;
constexpr unsigned long kMaxGlyphSize = 1u << 20;
// Rounds of reading the components found in the previous round.
constexpr int kMaxRounds = 4;

// Point flags of a simple glyph: the flag repeats, and the bits that tell
// the size of the point's coordinates (short x, short y, x same or
// positive, y same or positive).
constexpr unsigned kRepeat = 0x08;
constexpr unsigned kCoordinateBits = 0x36;
// Bytes of a point's two coordinates, by its flag's coordinate bits.
constexpr std::array<std::uint8_t, 64> kCoordinateBytes = [] {
  std::array<std::uint8_t, 64> bytes{};
  for (unsigned flag = 0; flag < 64; ++flag) {
    const unsigned x = (flag & 2) != 0 ? 1 : (flag & 16) != 0 ? 0 : 2;
    const unsigned y = (flag & 4) != 0 ? 1 : (flag & 32) != 0 ? 0 : 2;
    bytes[flag] = static_cast<std::uint8_t>(x + y);
  }
  return bytes;
}();

constexpr std::int32_t kAsk = -1;
constexpr std::int32_t kUnresolved = -2;

unsigned u16(const FT_Byte* p) { return static_cast<unsigned>(p[0] << 8 | p[1]); }

bool tableLength(FT_Face face, FT_ULong tag, FT_ULong* length) {
  *length = 0;
  return FT_Load_Sfnt_Table(face, tag, 0, nullptr, length) == 0;
}

// Whether the last byte of the table can be read (the file may end early).
bool tableReadable(FT_Face face, FT_ULong tag) {
  FT_ULong length = 0;
  if (!tableLength(face, tag, &length) || length == 0) return false;
  FT_Byte last = 0;
  FT_ULong one = 1;
  return FT_Load_Sfnt_Table(face, tag, static_cast<FT_Long>(length - 1), &last, &one) == 0;
}

class Checker {
 public:
  Checker(FT_Face face, const std::vector<FT_Fixed>& metrics)
      : face_(face), metrics_(metrics), glyphCount_(static_cast<FT_UInt>(metrics.size())) {}

  // Reads `loca`; false when the glyph data cannot be followed at all.
  bool Start() {
    const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face_, FT_SFNT_HEAD));
    FT_ULong locaLength = 0;
    if (head == nullptr || !tableLength(face_, TTAG_glyf, &glyfLength_) ||
        !tableLength(face_, TTAG_loca, &locaLength)) {
      return false;
    }
    longOffsets_ = head->Index_To_Loc_Format != 0;
    FT_ULong needed = (static_cast<FT_ULong>(glyphCount_) + 1) * (longOffsets_ ? 4 : 2);
    if (locaLength < needed) return false;
    loca_.resize(needed);
    if (FT_Load_Sfnt_Table(face_, TTAG_loca, 0, loca_.data(), &needed) != 0) return false;
    state_.assign(glyphCount_, kUnseen);
    points_.assign(glyphCount_, 0);
    compositeOf_.assign(glyphCount_, -1);
    return true;
  }

  // Reads the glyphs in `pending` (ascending), then the components they
  // name (ascending again), round after round.
  void Examine(std::vector<FT_UInt>& pending) {
    for (int round = 0; round < kMaxRounds && !pending.empty(); ++round) {
      bool queued = false;
      for (FT_UInt glyph : pending) {
        if (state_[glyph] != kUnseen) continue;
        ExamineGlyph(glyph);
        if (state_[glyph] != kComposite) continue;
        const Composite& composite = composites_[static_cast<std::size_t>(compositeOf_[glyph])];
        for (unsigned i = 0; i < composite.count; ++i) {
          std::uint8_t& state = state_[components_[composite.first + i]];
          if (state == kUnseen) {
            state = kQueued;
            queued = true;
          }
        }
      }
      pending.clear();
      for (FT_UInt glyph = 0; queued && glyph < glyphCount_; ++glyph) {
        if (state_[glyph] != kQueued) continue;
        state_[glyph] = kUnseen;
        pending.push_back(glyph);
      }
    }
  }

  // The loaded advance of `glyph` (kAsk when loading must tell); *points
  // receives its number of outline points.
  std::int32_t Resolve(FT_UInt glyph, int depth, unsigned* points) {
    *points = 0;
    if (glyph >= glyphCount_) return kAsk;
    if (state_[glyph] == kSimple) {
      *points = points_[glyph];
      return static_cast<std::int32_t>(metrics_[glyph]);
    }
    if (state_[glyph] != kComposite) return kAsk;
    Composite& composite = composites_[static_cast<std::size_t>(compositeOf_[glyph])];
    if (composite.advance != kUnresolved) {
      *points = composite.points;
      return composite.advance;
    }
    if (depth >= kMaxDepth) return kAsk;
    std::int32_t advance = static_cast<std::int32_t>(metrics_[glyph]);
    unsigned total = 0;
    for (unsigned i = 0; i < composite.count && advance != kAsk; ++i) {
      const FT_UInt component = components_[composite.first + i];
      unsigned componentPoints = 0;
      const std::int32_t componentAdvance = Resolve(component, depth + 1, &componentPoints);
      total += componentPoints;
      if (componentAdvance == kAsk || total > kMaxPoints) {
        advance = kAsk;
      } else if (composite.metricsFrom == static_cast<int>(i)) {
        advance = componentAdvance;
      }
    }
    composite.advance = advance;
    composite.points = total;
    *points = total;
    return advance;
  }

 private:
  // kQueued: a component waiting for the next round.
  enum State : std::uint8_t { kUnseen, kQueued, kSimple, kComposite, kUnknown };
  struct Composite {
    std::size_t first;
    unsigned count;
    int metricsFrom;  // index of the last component flagged USE_MY_METRICS
    std::int32_t advance;
    unsigned points;
  };

  FT_ULong LocaEntry(FT_UInt index) const {
    const FT_Byte* p = loca_.data() + index * (longOffsets_ ? 4u : 2u);
    if (longOffsets_) return static_cast<FT_ULong>(u16(p)) << 16 | u16(p + 2);
    return static_cast<FT_ULong>(u16(p)) * 2;
  }

  // The glyph's bytes (null for an empty glyph); false when they cannot be
  // had.
  bool GlyphBytes(FT_UInt glyph, const FT_Byte** bytes, FT_ULong* size) {
    const FT_ULong start = LocaEntry(glyph);
    const FT_ULong end = LocaEntry(glyph + 1);
    if (start > end || end > glyfLength_ || end - start > kMaxGlyphSize) return false;
    *size = end - start;
    *bytes = nullptr;
    if (*size == 0) return true;
    if (start < chunkStart_ || end > chunkStart_ + chunkLength_) {
      FT_ULong length = std::max<FT_ULong>(*size, LoadedAdvances::kChunkSize);
      length = std::min(length, glyfLength_ - start);
      chunk_.resize(length);
      chunkLength_ = 0;
      if (FT_Load_Sfnt_Table(face_, TTAG_glyf, static_cast<FT_Long>(start), chunk_.data(),
                             &length) != 0) {
        return false;
      }
      chunkStart_ = start;
      chunkLength_ = length;
    }
    *bytes = chunk_.data() + (start - chunkStart_);
    return true;
  }

  void ExamineGlyph(FT_UInt glyph) {
    state_[glyph] = kUnknown;
    const FT_Byte* p = nullptr;
    FT_ULong size = 0;
    if (!GlyphBytes(glyph, &p, &size)) return;
    if (size == 0) {
      state_[glyph] = kSimple;
      return;
    }
    if (size < 10) return;
    const int contours = static_cast<std::int16_t>(u16(p));
    if (contours > 0) {
      ExamineSimple(glyph, p, size, static_cast<unsigned>(contours));
    } else if (contours == -1) {
      ExamineComposite(glyph, p, size);
    }
  }

  // A simple glyph loads when its end points rise and its instructions,
  // flags and coordinates lie within its bytes.
  void ExamineSimple(FT_UInt glyph, const FT_Byte* p, FT_ULong size, unsigned contours) {
    FT_ULong at = 10;
    if (at + 2ul * contours + 2 > size) return;
    long previous = -1;
    for (unsigned i = 0; i < contours; ++i, at += 2) {
      const long end = u16(p + at);
      if (end <= previous) return;
      previous = end;
    }
    const unsigned points = static_cast<unsigned>(previous) + 1;
    if (points > kMaxPoints) return;
    const FT_ULong instructions = u16(p + at);
    at += 2;
    if (instructions > size - at) return;
    at += instructions;
    FT_ULong coordinateBytes = 0;
    for (unsigned point = 0; point < points;) {
      if (at >= size) return;
      const unsigned flag = p[at++];
      if ((flag & kRepeat) == 0) {
        coordinateBytes += kCoordinateBytes[flag & kCoordinateBits];
        ++point;
        continue;
      }
      if (at >= size) return;
      const unsigned count = 1u + p[at++];
      if (point + count > points) return;
      coordinateBytes += static_cast<FT_ULong>(kCoordinateBytes[flag & kCoordinateBits]) * count;
      point += count;
    }
    if (coordinateBytes > size - at) return;
    points_[glyph] = static_cast<std::uint16_t>(points);
    state_[glyph] = kSimple;
  }

  // A composite is followed when every component lies within its bytes,
  // names a glyph of the face and is placed by offsets (not by matching
  // points).
  void ExamineComposite(FT_UInt glyph, const FT_Byte* p, FT_ULong size) {
    Composite composite{components_.size(), 0, -1, kUnresolved, 0};
    FT_ULong at = 10;
    unsigned flags = 0;
    do {
      if (at + 4 > size || composite.count == kMaxComponents) break;
      flags = u16(p + at);
      const FT_UInt component = u16(p + at + 2);
      at += 4;
      FT_ULong arguments = (flags & kArgsAreWords) != 0 ? 4 : 2;
      if ((flags & kHaveScale) != 0) {
        arguments += 2;
      } else if ((flags & kHaveXYScale) != 0) {
        arguments += 4;
      } else if ((flags & kHave2x2) != 0) {
        arguments += 8;
      }
      if (component >= glyphCount_ || at + arguments > size || (flags & kArgsAreXYValues) == 0) {
        break;
      }
      at += arguments;
      if ((flags & kUseMyMetrics) != 0) composite.metricsFrom = static_cast<int>(composite.count);
      components_.push_back(component);
      ++composite.count;
      if ((flags & kMoreComponents) == 0) {
        compositeOf_[glyph] = static_cast<std::int32_t>(composites_.size());
        composites_.push_back(composite);
        state_[glyph] = kComposite;
        return;
      }
    } while (true);
    components_.resize(composite.first);
  }

  FT_Face face_;
  const std::vector<FT_Fixed>& metrics_;
  FT_UInt glyphCount_;
  FT_ULong glyfLength_ = 0;
  bool longOffsets_ = false;
  std::vector<FT_Byte> loca_;
  std::vector<FT_Byte> chunk_;
  FT_ULong chunkStart_ = 0;
  FT_ULong chunkLength_ = 0;
  std::vector<std::uint8_t> state_;
  std::vector<std::uint16_t> points_;
  std::vector<std::int32_t> compositeOf_;
  std::vector<Composite> composites_;
  std::vector<FT_UInt> components_;
};

void askAll(const std::vector<std::uint8_t>& wanted, std::vector<FT_Fixed>& advances) {
  for (std::size_t g = 0; g < advances.size(); ++g) {
    if (wanted[g] != 0) advances[g] = LoadedAdvances::kLoad;
  }
}

}  // namespace

bool LoadedAdvances::ReadMetrics(FT_Face face, std::vector<FT_Fixed>& advances) {
  FT_ULong length = 0;
  const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
  if (!FT_IS_SFNT(face) || hhea == nullptr || !tableLength(face, TTAG_hmtx, &length)) return false;
  const FT_ULong longCount = hhea->number_Of_HMetrics;
  // Without long entries a CFF face takes its glyphs' own widths.
  if (longCount == 0) return false;
  // Only the long entries hold advances.
  length = std::min(length, longCount * 4);
  std::vector<FT_Byte> table(length);
  if (length > 0 && FT_Load_Sfnt_Table(face, TTAG_hmtx, 0, table.data(), &length) != 0) {
    return false;
  }
  // The advance of entry i, 0 when the table does not hold it.
  auto entry = [&table](FT_ULong i) -> FT_Fixed {
    return i * 4 + 4 <= table.size() ? static_cast<FT_Fixed>(u16(table.data() + i * 4)) : 0;
  };
  const FT_Fixed last = (longCount - 1) * 4 + 2 <= table.size()
                            ? static_cast<FT_Fixed>(u16(table.data() + (longCount - 1) * 4))
                            : 0;
  for (std::size_t g = 0; g < advances.size(); ++g) {
    advances[g] = g < longCount ? entry(g) : last;
  }
  return true;
}

void LoadedAdvances::Apply(FT_Face face, const std::vector<std::uint8_t>& wanted,
                           std::vector<FT_Fixed>& advances) {
  if (face == nullptr || wanted.size() != advances.size()) return;
  FT_ULong length = 0;
  if (FT_IS_SFNT(face) && !FT_IS_SCALABLE(face) &&
      std::strcmp(FT_Get_Font_Format(face), "TrueType") == 0) {
    // A face of bitmaps only (color emoji): unscaled, every glyph loads as
    // an empty one with its metrics' advance, provided there are metrics.
    if (!tableLength(face, TTAG_hmtx, &length) || length == 0) askAll(wanted, advances);
    return;
  }
  if (FT_IS_SFNT(face) && !tableLength(face, TTAG_glyf, &length)) {
    // CFF outlines have no composites and take their advances from the
    // metrics; what remains is a table the file does not hold to its end.
    const FT_ULong tag = tableLength(face, TTAG_CFF, &length)    ? TTAG_CFF
                         : tableLength(face, TTAG_CFF2, &length) ? TTAG_CFF2
                                                                 : 0;
    if (tag == 0 || !tableReadable(face, tag)) askAll(wanted, advances);
    return;
  }
  Checker checker(face, advances);
  if (!FT_IS_SFNT(face) || !checker.Start()) {
    askAll(wanted, advances);
    return;
  }
  std::vector<FT_UInt> pending;
  for (std::size_t g = 0; g < wanted.size(); ++g) {
    if (wanted[g] != 0) pending.push_back(static_cast<FT_UInt>(g));
  }
  std::vector<FT_UInt> glyphs = pending;
  checker.Examine(pending);
  // Resolving reads `advances` as the metrics, so the answers wait.
  std::vector<std::int32_t> loaded(glyphs.size());
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    unsigned points = 0;
    loaded[i] = checker.Resolve(glyphs[i], 0, &points);
  }
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    advances[glyphs[i]] = loaded[i] == kAsk ? kLoad : loaded[i];
  }
}

}  // namespace qro_common
