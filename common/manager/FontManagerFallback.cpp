// The queries that fall back through chains and default fonts: advances,
// visibility, glyph advances and the faces that stand for a font.

#include <ft2build.h>
#include FT_FREETYPE_H

#include "base/CharacterType.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/FontManager.h"
#include "common/registry/FontTable.h"

namespace qro_common {

namespace {

constexpr unsigned kSymbolBase = 0xF000;
constexpr unsigned kPilcrow = 0xB6;
constexpr int kPrivateUseRange = 60;

// A code whose Unicode-range number is 128 or more (255: none) has no
// script default font.
bool hasScriptRange(int range) { return (range & 0x80) == 0; }

int charTypeOf(unsigned c) {
  return qro_base::CharacterType::charTypes[c & 0xFFFF] & qro_base::CharacterType::kScriptMask;
}

}  // namespace

int FontManager::ScriptDefaultFont(int range) const {
  if (range < 0 || static_cast<std::size_t>(range) >= scriptDefaultFontList_.size()) return -1;
  return scriptDefaultFontList_[static_cast<std::size_t>(range)];
}

bool FontManager::IsUsableChainFont(int fontIndex) const {
  const Font* font = fontTable_->GetFont(fontIndex);
  return font != nullptr && !font->IsWithoutFile();
}

bool FontManager::TryAdvance(CharKey& key, int fontIndex, unsigned c, bool bold, bool italic,
                             float& ratio) {
  if (fontIndex < 0) return false;
  FontInfo* info = fontTable_->ResolveFontInfo(fontIndex, bold, italic, true);
  if (info == nullptr) return false;
  qro_base::DeferredDeleter::ReadSection section(fontTable_->GetDeferredDeleter());
  CharMetricsInfo* table = LoadedCharMetricsInfo(*info, fontIndex);
  const CharMetrics* metrics = table == nullptr ? nullptr : table->GetCharMetrics(c);
  const FontMetrics* fontMetrics = info->GetFontMetrics();
  if (metrics == nullptr || fontMetrics == nullptr || fontMetrics->GetUnitsPerEm() == 0) {
    return false;
  }
  ratio = CacheCharAdvancedRatio(key, *metrics, *fontMetrics);
  return true;
}

float FontManager::GetCharAdvanceRatio(int fontIndex, unsigned ch, bool bold, bool italic) {
  CharKey key{ch, fontIndex, bold, italic};
  float cached;
  if (advanceRatioCache_.Find(key, cached)) return cached;
  return UncachedCharAdvanceRatio(key);
}

__attribute__((noinline)) float FontManager::UncachedCharAdvanceRatio(CharKey& key) {
  if (fontTable_ == nullptr) return 0.0f;
  const int fontIndex = key.fontIndex;
  const unsigned ch = key.code;
  const bool bold = key.bold, italic = key.italic;

  float ratio = 0.0f;
  unsigned c = ch;
  if (fontIndex >= 0) {
    const Font* font = fontTable_->GetFont(fontIndex);
    if (font != nullptr && font->IsSymbol() && c < 256) c |= kSymbolBase;
    if (TryAdvance(key, fontIndex, c, bold, italic, ratio)) return ratio;
    if (const std::vector<int>* chain = GetFontChain(fontIndex)) {
      for (int index : *chain) {
        if (!IsUsableChainFont(index)) continue;
        if (fontTable_->GetFont(index)->IsSymbol() && c < 256) c |= kSymbolBase;
        if (TryAdvance(key, index, c, bold, italic, ratio)) return ratio;
      }
    }
  }
  int range = FontUSBType::GetUSBType(c);
  if (hasScriptRange(range) && TryAdvance(key, ScriptDefaultFont(range), c, bold, italic, ratio)) {
    return ratio;
  }
  if (TryAdvance(key, GetDefaultFontIndexByCharType(charTypeOf(c)), c, bold, italic, ratio)) {
    return ratio;
  }
  int last = defaultFontIndexes_[kDefaultFontCount - 1];
  if (TryAdvance(key, last, c, bold, italic, ratio)) return ratio;
  if (defaultFontInfo_ != nullptr &&
      TryAdvance(key, defaultFontInfo_->GetFontIndex(c), c, bold, italic, ratio)) {
    return ratio;
  }
  if (TryAdvance(key, last, kSpace, bold, italic, ratio)) return ratio;
  return 0.0f;
}

float FontManager::CacheCharAdvancedRatio(CharKey& key, const CharMetrics& metrics,
                                          const FontMetrics& fontMetrics) {
  float advance = static_cast<float>(metrics.GetAdvance());
  // The requested font's correction, also for a fallback font's glyph.
  if (key.bold) advance = AdjustAdvanceRatio(key.fontIndex, advance);
  float ratio = advance / static_cast<float>(fontMetrics.GetUnitsPerEm());
  advanceRatioCache_.Insert(key, ratio);
  return ratio;
}

bool FontManager::CacheVisibleCharInfo(VisibleCharInfoKey& key, int fontIndex, unsigned ch,
                                       bool /*bold*/, bool /*italic*/, bool substituted) {
  if (!IsVisibleChar(fontIndex, ch)) return false;
  visibleCharCache_.Insert(key.AsCharKey(), VisibleCharInfo{fontIndex, ch, substituted}.Pack());
  return true;
}

bool FontManager::ConfirmVisibleChar(int& fontIndex, unsigned& ch, bool bold, bool italic) {
  VisibleCharInfoKey key{ch, fontIndex};
  std::uint64_t packed;
  if (visibleCharCache_.Find(key.AsCharKey(), packed)) {
    const VisibleCharInfo hit = VisibleCharInfo::Unpack(packed);
    fontIndex = hit.fontIndex;
    ch = hit.code;
    return hit.substituted;
  }
  return UncachedConfirmVisibleChar(key, fontIndex, ch, bold, italic);
}

__attribute__((noinline)) bool FontManager::UncachedConfirmVisibleChar(VisibleCharInfoKey& key,
                                                                       int& fontIndex, unsigned& ch,
                                                                       bool bold, bool italic) {
  if (fontTable_ == nullptr) return false;

  const int range = FontUSBType::GetUSBType(ch);
  const Font* requested = nullptr;
  if (fontIndex >= 0) {
    requested = fontTable_->GetFont(fontIndex);
    if (requested != nullptr && !requested->IsWithoutFile()) {
      if (requested->IsSymbol() && ch < 256) ch = (ch & 0xFFFF) | kSymbolBase;
      if (CacheVisibleCharInfo(key, fontIndex, ch, bold, italic, false)) return false;
      if (range == kPrivateUseRange) ch = kSpace;
    }
    if (const std::vector<int>* chain = GetFontChain(fontIndex)) {
      for (int index : *chain) {
        if (!IsUsableChainFont(index)) continue;
        // The pilcrow stays itself in a chained symbol font.
        if (fontTable_->GetFont(index)->IsSymbol() && ch < 256 && ch != kPilcrow) {
          ch = (ch & 0xFFFF) | kSymbolBase;
        }
        if (CacheVisibleCharInfo(key, index, ch, bold, italic, true)) {
          fontIndex = index;
          return true;
        }
        if (range == kPrivateUseRange) ch = kSpace;
      }
    }
  }

  if (hasScriptRange(range)) {
    fontIndex = ScriptDefaultFont(range);
    if (fontIndex >= 0 && CacheVisibleCharInfo(key, fontIndex, ch, bold, italic, true)) return true;
  }
  fontIndex = GetDefaultFontIndexByCharType(charTypeOf(ch));
  if (fontIndex >= 0 && CacheVisibleCharInfo(key, fontIndex, ch, bold, italic, true)) return true;
  fontIndex = defaultFontInfo_ == nullptr ? -1 : defaultFontInfo_->GetFontIndex(ch);
  if (fontIndex >= 0) {
    if (requested != nullptr && !requested->IsSymbol() && range == kPrivateUseRange) ch = kSpace;
    if (CacheVisibleCharInfo(key, fontIndex, ch, bold, italic, true)) return true;
  }
  fontIndex = defaultFontIndexes_[kDefaultFontCount - 1];
  if (CacheVisibleCharInfo(key, fontIndex, ch, bold, italic, true)) return true;
  ch = kSpace;
  return CacheVisibleCharInfo(key, fontIndex, kSpace, bold, italic, true);
}

float FontManager::GetGlyphAdvanceRatio(int fontIndex, int script, unsigned glyphIndex, bool bold,
                                        bool italic) {
  CharKey key{glyphIndex, fontIndex, bold, italic};
  float cached;
  if (glyphAdvanceCache_.Find(key, cached)) return cached;

  const FontInfo* info = ResolveSystemFontInfo(fontIndex, script, bold, italic);
  if (info == nullptr) return 0.0f;
  const FontMetrics* fontMetrics = info->GetFontMetrics();
  if (fontMetrics == nullptr || fontMetrics->GetUnitsPerEm() == 0) return 0.0f;
  FT_Pos width;
  {
    std::lock_guard<std::mutex> lock(faceMutex_);
    FT_Face face = FontFace(*info);
    if (face == nullptr || FT_Load_Glyph(face, glyphIndex, FT_LOAD_NO_SCALE) != 0) return 0.0f;
    const FT_Glyph_Metrics& metrics = face->glyph->metrics;
    width = metrics.horiAdvance > 0 ? metrics.horiAdvance : metrics.width;
  }
  float ratio = static_cast<float>(width) / static_cast<float>(fontMetrics->GetUnitsPerEm());
  glyphAdvanceCache_.Insert(key, ratio);
  return ratio;
}

FontInfo* FontManager::ResolveSystemFontInfo(int fontIndex, bool bold, bool italic) const {
  const CharKey key = FontKey{fontIndex, bold, italic}.AsCharKey();
  FontInfo* cached;
  if (systemFontCache_.Find(key, cached)) return cached;
  if (fontTable_ == nullptr) return nullptr;

  FontInfo* info = fontTable_->GetFontInfo(fontIndex, bold, italic, true);
  if (info == nullptr || info->GetFilePath() == nullptr) {
    info = nullptr;
    if (const std::vector<int>* chain = GetFontChain(fontIndex)) {
      for (int index : *chain) {
        FontInfo* chained = fontTable_->GetFontInfo(index, bold, italic, true);
        if (chained != nullptr && chained->GetFilePath() != nullptr) {
          info = chained;
          break;
        }
      }
    }
    if (info == nullptr) {
      info =
          fontTable_->GetFontInfo(defaultFontIndexes_[kDefaultFontCount - 1], bold, italic, true);
    }
  }
  systemFontCache_.Insert(key, info);
  return info;
}

FontInfo* FontManager::ResolveSystemFontInfo(int fontIndex, int script, bool bold, bool italic) {
  const CharKey key =
      ScriptFontKey{fontIndex, static_cast<std::uint8_t>(script), bold, italic}.AsCharKey();
  FontInfo* cached;
  if (scriptFontCache_.Find(key, cached)) return cached;
  if (fontTable_ == nullptr) return nullptr;

  FontInfo* info = fontTable_->GetFontInfo(fontIndex, bold, italic, false);
  if (!IsSystemFont(fontIndex, info, script)) {
    info = nullptr;
    if (const std::vector<int>* chain = GetFontChain(fontIndex)) {
      for (int index : *chain) {
        FontInfo* chained = fontTable_->GetFontInfo(index, bold, italic, false);
        if (IsSystemFont(index, chained, script)) {
          info = chained;
          break;
        }
      }
    }
    if (info == nullptr && script >= 0 && script < 128) {
      info = fontTable_->GetFontInfo(ScriptDefaultFont(script), bold, italic, false);
    }
    if (info == nullptr) {
      info = fontTable_->GetFontInfo(GetDefaultFontIndexByScriptType(script), bold, italic, false);
    }
    if (info == nullptr) {
      info =
          fontTable_->GetFontInfo(defaultFontIndexes_[kDefaultFontCount - 1], bold, italic, false);
    }
  }
  scriptFontCache_.Insert(key, info);
  return info;
}

}  // namespace qro_common
