#include "common/analysis/FontFileAnalyzer.h"

#include FT_ADVANCES_H
#include FT_MULTIPLE_MASTERS_H
#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H
#include FT_TRUETYPE_TAGS_H

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>

#include "common/analysis/FontFileStream.h"
#include "common/analysis/FontUtils.h"
#include "common/analysis/GposKerning.h"
#include "common/analysis/LoadedAdvances.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/ExtraCharMetrics.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/SingleDefaultFontRange.h"
#include "common/registry/UILangCode.h"

namespace qro_common {
namespace {

constexpr int kEnglishUnitedStates = 1033;
constexpr unsigned short kUnitsPerEmWithoutHead = 1024;
// Named instances taken per face: more than fonts have (a few dozen), few
// enough that a font claiming thousands does not hold up a scan.
constexpr FT_UInt kMaxNamedInstances = 256;
constexpr FT_ULong kFirstKerningChar = 32;  // printable ASCII, 32..126
constexpr int kKerningCharCount = 95;

// Unicode-range bit 28 (Hangul Jamo) of word 1.
constexpr unsigned kEastAsianUnicodeRange1 = 1u << 28;
// Bits 49, 50, 52, 54, 55, 56, 59, 61: kana, Hangul compatibility jamo and
// syllables, enclosed CJK, CJK compatibility and ideographs.
constexpr unsigned kEastAsianUnicodeRange2 = 0x29D60000u;
// Code pages 932, 936, 949, 950 and 1361.
constexpr unsigned kEastAsianCodePages1 = 0x003E0000u;

bool isEastAsian(const Sig& sig) {
  return (sig.GetUnicodeRange(1) & kEastAsianUnicodeRange1) != 0 ||
         (sig.GetUnicodeRange(2) & kEastAsianUnicodeRange2) != 0 ||
         (sig.GetCodePageRange(1) & kEastAsianCodePages1) != 0;
}

unsigned nonZero(FT_ULong word) {
  const unsigned value = static_cast<unsigned>(word);
  return value != 0 ? value : 1u;
}

// The single range that holds the block of the classified code point,
// created (with its multi range) when missing; null when the slots do not
// fit the classification.
SingleCharMetricsRange* blockRange(CharMetricsInfo& table, const FontUSBType::CodePointUSBInfo& c) {
  CharMetricsRange* range = table.GetCharMetricsRange(c.usbType);
  if (range == nullptr) {
    if (c.subRangeIndex >= 0) {
      range = new MultiCharMetricsRange(c.subRangeCount);
    } else {
      range = new SingleCharMetricsRange(c.rangeFirst, c.rangeLast);
    }
    table.SetCharMetricsRange(c.usbType, range);
  }
  if (c.subRangeIndex >= 0) {
    if (range->GetType() != CharMetricsRange::kMulti) return nullptr;
    auto* multi = static_cast<MultiCharMetricsRange*>(range);
    if (c.subRangeIndex >= multi->GetCount()) return nullptr;
    range = multi->GetCharMetricsRange(c.subRangeIndex);
    if (range == nullptr) {
      range = new SingleCharMetricsRange(c.rangeFirst, c.rangeLast);
      multi->SetCharMetricsRange(c.subRangeIndex, range);
    }
  }
  if (range->GetType() != CharMetricsRange::kSingle) return nullptr;
  return static_cast<SingleCharMetricsRange*>(range);
}

// The same for the default-font map.
SingleDefaultFontRange* blockRange(DefaultFontInfo& table, const FontUSBType::CodePointUSBInfo& c) {
  DefaultFontRange* range = table.GetDefaultFontRange(c.usbType);
  if (range == nullptr) {
    if (c.subRangeIndex >= 0) {
      range = new MultiDefaultFontRange(c.subRangeCount);
    } else {
      range = new SingleDefaultFontRange(c.rangeFirst, c.rangeLast);
    }
    table.SetDefaultFontRange(c.usbType, range);
  }
  if (c.subRangeIndex >= 0) {
    if (range->GetType() != DefaultFontRange::kMulti) return nullptr;
    auto* multi = static_cast<MultiDefaultFontRange*>(range);
    if (c.subRangeIndex >= multi->GetCount()) return nullptr;
    range = multi->GetDefaultFontRange(c.subRangeIndex);
    if (range == nullptr) {
      range = new SingleDefaultFontRange(c.rangeFirst, c.rangeLast);
      multi->SetDefaultFontRange(c.subRangeIndex, range);
    }
  }
  if (range->GetType() != DefaultFontRange::kSingle) return nullptr;
  return static_cast<SingleDefaultFontRange*>(range);
}

}  // namespace

FontFileAnalyzer::FontFileAnalyzer() {
  libraryReady_ = FT_Init_FreeType(&library_) == 0;
  if (!libraryReady_) library_ = nullptr;
  preferredLanguage_ = getUILangCode();
}

FontFileAnalyzer::~FontFileAnalyzer() {
  Close();
  if (library_ != nullptr) FT_Done_FreeType(library_);
}

namespace {
std::atomic<unsigned long> gOpenCount{0};
}  // namespace

unsigned long FontFileAnalyzer::GetOpenCount() { return gOpenCount.load(); }

bool FontFileAnalyzer::Open(const char* path, int faceIndex) {
  gOpenCount.fetch_add(1);
  Close();
  if (!libraryReady_ || path == nullptr || faceIndex < 0) return false;
  struct stat status;
  fileSize_ = stat(path, &status) == 0 && S_ISREG(status.st_mode)
                  ? static_cast<int>(std::min<off_t>(status.st_size, INT_MAX))
                  : 0;
  FT_Face face = nullptr;
  if (FontFileStream::OpenFace(library_, path, faceIndex, &face) != 0) {
    return false;
  }
  faceCount_ = static_cast<unsigned char>(face->num_faces);
  namedInstanceCount_ = (faceIndex >> 16) == 0 ? static_cast<int>(face->style_flags >> 16) : 0;
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 == nullptr) {
    FT_Done_Face(face);
    return false;
  }
  face_ = face;
  os2_ = os2;
  isOpen_ = true;
  return true;
}

std::vector<int> FontFileAnalyzer::ListNamedInstances(const char* path, int face) {
  std::vector<int> plain;
  if (!libraryReady_ || path == nullptr || face < 0 || face > 0xFFFF) return plain;
  FT_Face base = nullptr;
  if (FontFileStream::OpenFace(library_, path, face, &base) != 0) return plain;
  FT_MM_Var* axes = nullptr;
  if ((base->style_flags >> 16) > 0 && FT_HAS_MULTIPLE_MASTERS(base) &&
      FT_Get_MM_Var(base, &axes) == 0) {
    std::vector<int> others;
    const FT_UInt count =
        std::min<FT_UInt>(axes->num_namedstyles, static_cast<FT_UInt>(base->style_flags >> 16));
    for (FT_UInt i = 0; i < count && i < kMaxNamedInstances; ++i) {
      const FT_Fixed* coords = axes->namedstyle[i].coords;
      bool atDefault = true;
      for (FT_UInt a = 0; a < axes->num_axis; ++a) {
        atDefault = atDefault && coords[a] == axes->axis[a].def;
      }
      if (atDefault) continue;
      const int instance = static_cast<int>(i) + 1;
      FT_Face named = nullptr;
      if (FontFileStream::OpenFace(library_, path, instance << 16 | face, &named) != 0) continue;
      const std::string style = named->style_name != nullptr ? named->style_name : "";
      FT_Done_Face(named);
      const bool isPlain =
          style == "Regular" || style == "Bold" || style == "Italic" || style == "Bold Italic";
      (isPlain ? plain : others).push_back(instance);
    }
    plain.insert(plain.end(), others.begin(), others.end());
    FT_Done_MM_Var(library_, axes);
  }
  FT_Done_Face(base);
  return plain;
}

void FontFileAnalyzer::Close() {
  if (!isOpen_) return;
  FT_Done_Face(face_);
  face_ = nullptr;
  os2_ = nullptr;
  isOpen_ = false;
  mapWalked_ = false;
}

FontInfo* FontFileAnalyzer::Analyze() {
  if (!isOpen_) return nullptr;
  auto info = std::make_unique<FontInfo>();
  info->SetFileSize(fileSize_);
  if (face_->style_name != nullptr) info->SetStyleName(new std::string(face_->style_name));
  if (face_->family_name != nullptr) info->SetFamilyName(new std::string(face_->family_name));
  if (FT_Get_Sfnt_Table(face_, FT_SFNT_VHEA) != nullptr) info->SetVerticalMetrics(true);
  ReadPitch(*info);
  if (Panose* panose = MakePanose(os2_)) info->SetPanose(panose);
  if (Sig* sig = MakeSig(os2_)) {
    info->SetSig(sig);
    info->SetCJK(isEastAsian(*sig));
  }

  std::map<int, std::string>& names = info->GetLocalizedNames();
  ReadLocalizedNames(names);
  auto chosen = names.find(kEnglishUnitedStates);
  if (chosen == names.end()) chosen = names.find(preferredLanguage_);
  if (chosen == names.end()) chosen = names.begin();
  if (chosen != names.end()) {
    info->SetFontName(new std::string(chosen->second));
  } else {
    info->SetFontName(new std::string(face_->family_name != nullptr ? face_->family_name : ""));
  }

  info->SetFontMetrics(MakeFontMetrics(os2_));
  return info.release();
}

void FontFileAnalyzer::ReadPitch(FontInfo& info) const {
  // FreeType hands out a zero-filled post record for fonts without one, so
  // the table directory decides whether there is one.
  if (HasTable(TTAG_post)) {
    const auto* post = static_cast<const TT_Postscript*>(FT_Get_Sfnt_Table(face_, FT_SFNT_POST));
    info.SetPitch(post != nullptr && post->isFixedPitch != 0 ? 1 : 2);
    return;
  }
  // The PCLT pitch is the width of the space, so practically every such
  // font comes out as fixed pitch; that is the rule.
  const auto* pclt = static_cast<const TT_PCLT*>(FT_Get_Sfnt_Table(face_, FT_SFNT_PCLT));
  if (pclt != nullptr) info.SetPitch(pclt->Pitch != 0 ? 1 : 2);
}

void FontFileAnalyzer::ReadLocalizedNames(std::map<int, std::string>& names) const {
  unsigned short units[kNameBufferSize / 2];
  char text[kNameBufferSize];
  std::memset(units, 0, sizeof units);
  std::memset(text, 0, sizeof text);

  const FT_UInt count = FT_Get_Sfnt_Name_Count(face_);
  for (FT_UInt index = 0; index < count; ++index) {
    FT_SfntName record;
    if (FT_Get_Sfnt_Name(face_, index, &record) != 0) continue;
    if (record.name_id != TT_NAME_ID_FONT_FAMILY) continue;
    int language = record.language_id;
    if (names.find(language) != names.end()) continue;
    std::memset(units, 0, sizeof units);
    std::memset(text, 0, sizeof text);
    const FT_Byte* bytes = record.string;
    const FT_UInt length = bytes != nullptr ? record.string_len : 0;

    switch (record.platform_id) {
      case TT_PLATFORM_APPLE_UNICODE:
      case TT_PLATFORM_MICROSOFT: {
        // Big-endian UTF-16; the last unit of the buffer stays 0.
        FT_UInt unitCount = length / 2;
        if (unitCount > kNameBufferSize / 2 - 1) unitCount = kNameBufferSize / 2 - 1;
        for (FT_UInt i = 0; i < unitCount; ++i) {
          units[i] = static_cast<unsigned short>(bytes[2 * i] << 8 | bytes[2 * i + 1]);
        }
        ConvertU2ToUtf8(text, sizeof text, units);
        if (record.platform_id == TT_PLATFORM_APPLE_UNICODE &&
            record.encoding_id == TT_APPLE_ID_UNICODE_2_0) {
          language = FontUtils::GetWinLangFromMac(static_cast<unsigned>(language));
        }
        names.emplace(language, std::string(text));
        break;
      }
      case TT_PLATFORM_MACINTOSH:
      case TT_PLATFORM_ISO: {
        if (record.platform_id == TT_PLATFORM_MACINTOSH) {
          language = FontUtils::GetWinLangFromMac(static_cast<unsigned>(language));
        }
        if (record.encoding_id == TT_MAC_ID_KOREAN) break;
        if (record.encoding_id == TT_MAC_ID_ROMAN) {
          FT_UInt unitCount = 0;
          while (unitCount < length && unitCount < kNameBufferSize / 2 - 1) {
            const unsigned short unit = FontUtils::MacRomanEnc[bytes[unitCount]];
            if (unit == 0) break;
            units[unitCount++] = unit;
          }
          // Mac Roman yields no surrogates, so this is the plain UTF-16 to
          // UTF-8 conversion, bounded by the buffer.
          ConvertU2ToUtf8(text, sizeof text, units);
        } else {
          // Any other encoding: the bytes as they are, up to a 0 byte.
          FT_UInt byteCount = 0;
          while (byteCount < length && byteCount < kNameBufferSize - 1 && bytes[byteCount] != 0) {
            text[byteCount] = static_cast<char>(bytes[byteCount]);
            ++byteCount;
          }
        }
        names.emplace(language, std::string(text));
        break;
      }
      default:
        break;
    }
  }
}

void FontFileAnalyzer::AnalyzeData(FontInfo& info) {
  if (!isOpen_) return;
  AnalyzeCharMetricsInfo(info);
  AnalyzeKerningInfo(info);
}

void FontFileAnalyzer::ResetScratch() {
  scratch_.usbType = FontUSBType::kNoBit;
  scratch_.subRangeIndex = -1;
  scratch_.rangeFirst = -1;
  scratch_.rangeLast = 0;
  scratch_.subRangeCount = -1;
}

FT_ULong FontFileAnalyzer::FirstChar(FT_UInt* glyph) {
  *glyph = 0;
  FT_Select_Charmap(face_, FT_ENCODING_UNICODE);
  FT_ULong code = FT_Get_First_Char(face_, glyph);
  if (*glyph == 0) {
    FT_Select_Charmap(face_, FT_ENCODING_MS_SYMBOL);
    code = FT_Get_First_Char(face_, glyph);
  }
  return code;
}

bool FontFileAnalyzer::Classify(FT_ULong code) {
  if (code > UINT32_MAX) return false;
  const int bit = FontUSBType::GetCodePointUSBInfo(static_cast<unsigned>(code), scratch_);
  if (bit != 127 && (bit >= 123 || bit == 57)) return false;
  // A code point that lies in no block of its bit has no entry to take it.
  return scratch_.rangeFirst >= 0 && scratch_.rangeFirst <= scratch_.rangeLast;
}

bool FontFileAnalyzer::PrepareMetricsAdvances() {
  metricsAdvances_.clear();
  if (advanceSource_ != AdvanceSource::kMetrics || face_->num_glyphs <= 0) return false;
  metricsAdvances_.resize(static_cast<std::size_t>(face_->num_glyphs));
  // The table's advances are those of the default instance: a face with
  // variations has FreeType vary them. FreeType reads the HVAR table at the
  // first glyph's metrics and, until it has, loads every glyph for them.
  const bool variable = FT_HAS_MULTIPLE_MASTERS(face_);
  if (variable) FT_Load_Glyph(face_, 0, FT_LOAD_NO_SCALE);
  if ((variable || !LoadedAdvances::ReadMetrics(face_, metricsAdvances_)) &&
      FT_Get_Advances(face_, 0, static_cast<FT_UInt>(face_->num_glyphs), FT_LOAD_NO_SCALE,
                      metricsAdvances_.data()) != 0) {
    metricsAdvances_.clear();
    return false;
  }
  std::vector<std::uint8_t> wanted(metricsAdvances_.size(), 0);
  for (const MappedChar& mapped : mapped_) {
    if (mapped.glyph < wanted.size()) wanted[mapped.glyph] = 1;
  }
  LoadedAdvances::Apply(face_, wanted, metricsAdvances_);
  return true;
}

bool FontFileAnalyzer::LoadAdvance(FT_UInt glyph, unsigned short* advance) {
  if (!metricsAdvances_.empty()) {
    // A glyph index beyond the face's glyphs would not load either.
    if (glyph >= metricsAdvances_.size()) return false;
    if (metricsAdvances_[glyph] != LoadedAdvances::kLoad) {
      *advance = static_cast<unsigned short>(metricsAdvances_[glyph] & 0xFFFF);
      return true;
    }
  }
  if (FT_Load_Glyph(face_, glyph, FT_LOAD_NO_SCALE) != 0) return false;
  *advance = static_cast<unsigned short>(face_->glyph->metrics.horiAdvance & 0xFFFF);
  return true;
}

namespace {
constexpr FT_ULong kLastCodePoint = 0x10FFFF;
}  // namespace

void FontFileAnalyzer::WalkCharacterMap() {
  if (mapWalked_) return;
  mapWalked_ = true;
  mapped_.clear();
  blocks_.clear();
  extraMapped_.clear();
  ResetScratch();
  FT_UInt glyph = 0;
  FT_ULong code = FirstChar(&glyph);
  mapHasChar_ = glyph != 0;
  // Code points come in ascending order, so most follow one of the same
  // block. Such a code point is classified like the one before it (the
  // blocks of a bit do not overlap), which spares the block search.
  int bit = -1;
  FT_ULong first = 1;
  FT_ULong last = 0;
  for (; glyph != 0; code = FT_Get_Next_Char(face_, code, &glyph)) {
    // Nothing past the last code point is kept, and a hostile map may go on
    // to 0xFFFFFFFF one code at a time.
    if (code > kLastCodePoint) break;
    const bool sameBlock = code >= first && code <= last &&
                           FontUSBType::GetUSBType(static_cast<unsigned>(code)) == bit;
    if (!sameBlock) {
      if (!Classify(code)) {
        extraMapped_.push_back(MappedChar{static_cast<unsigned>(code), glyph});
        continue;
      }
      blocks_.push_back(MappedBlock{scratch_, mapped_.size()});
      bit = scratch_.usbType;
      first = static_cast<FT_ULong>(scratch_.rangeFirst);
      last = static_cast<FT_ULong>(scratch_.rangeLast);
    }
    mapped_.push_back(MappedChar{static_cast<unsigned>(code), glyph});
  }
}

void FontFileAnalyzer::AnalyzeCharMetricsInfo(FontInfo& info) {
  if (!isOpen_) return;
  WalkCharacterMap();
  if (!mapHasChar_) return;
  auto table = std::make_unique<CharMetricsInfo>();
  PrepareMetricsAdvances();
  for (std::size_t b = 0; b < blocks_.size(); ++b) {
    const std::size_t end = b + 1 < blocks_.size() ? blocks_[b + 1].begin : mapped_.size();
    // The block's range is made when its first advance is known.
    SingleCharMetricsRange* range = nullptr;
    bool looked = false;
    for (std::size_t i = blocks_[b].begin; i < end; ++i) {
      unsigned short advance = 0;
      if (!LoadAdvance(mapped_[i].glyph, &advance)) continue;
      if (!looked) {
        range = blockRange(*table, blocks_[b].block);
        looked = true;
      }
      if (range != nullptr) range->SetAdvance(mapped_[i].code, advance);
    }
  }
  // The characters no slot holds, kept apart.
  std::unique_ptr<ExtraCharMetrics> extra;
  for (const MappedChar& mapped : extraMapped_) {
    unsigned short advance = 0;
    if (!LoadAdvance(mapped.glyph, &advance)) continue;
    if (!extra) extra = std::make_unique<ExtraCharMetrics>();
    extra->Add(mapped.code, advance);
  }
  if (extra) table->SetExtraCharMetrics(extra.release());
  metricsAdvances_.clear();
  info.SetCharMetricsInfo(table.release());
}

std::unique_ptr<KerningInfo> FontFileAnalyzer::ReadKerning() {
  gposLeft_ = false;
  if (!isOpen_) return nullptr;
  FT_UInt glyphs[kKerningCharCount];
  for (int i = 0; i < kKerningCharCount; ++i) {
    glyphs[i] = FT_Get_Char_Index(face_, kFirstKerningChar + i);
    if (glyphs[i] == 0) return nullptr;
  }
  // The values are read unscaled. Sized at one pixel per font unit,
  // FreeType's 26.6 values are exactly 64 times the unscaled ones, so
  // shifting them back gives these same numbers; reading them unscaled
  // spares sizing the face (for TrueType that runs the font's prep
  // program) and scaling each of the 9,025 pairs.
  auto kerning = std::make_unique<KerningInfo>();
  int registered = 0;
  for (int left = 0; FT_HAS_KERNING(face_) && left < kKerningCharCount; ++left) {
    for (int right = 0; right < kKerningCharCount; ++right) {
      FT_Vector delta;
      if (FT_Get_Kerning(face_, glyphs[left], glyphs[right], FT_KERNING_UNSCALED, &delta) != 0) {
        continue;
      }
      if (delta.x == 0) continue;
      kerning->Register(static_cast<int>(kFirstKerningChar) + left,
                        static_cast<int>(kFirstKerningChar) + right, static_cast<short>(delta.x));
      ++registered;
    }
  }
  // A face whose `kern` table gives none of these pairs is kerned by its
  // GPOS table, when the build reads it.
  gposLeft_ = registered == 0 && gposKerningTime_ == GposKerningTime::kOnFirstUse &&
              hasGposKerning();
  if (registered == 0 && !gposLeft_) {
    registered = registerGposKerning(face_, kFirstKerningChar, kKerningCharCount, *kerning);
  }
  if (registered == 0) kerning.reset();
  return kerning;
}

void FontFileAnalyzer::AnalyzeKerningInfo(FontInfo& info) {
  std::unique_ptr<KerningInfo> kerning = ReadKerning();
  info.SetKerningLeftToFirstUse(gposLeft_);
  if (kerning) info.SetKerningInfo(kerning.release());
}

KerningInfo* FontFileAnalyzer::ReadKerningOnFirstUse(const FontInfo& info) {
  const std::string* path = info.GetFilePath();
  FontFileAnalyzer analyzer;
  if (path == nullptr ||
      !analyzer.Open(path->c_str(), static_cast<int>(info.GetFreeTypeFaceIndex()))) {
    return nullptr;
  }
  return analyzer.ReadKerning().release();
}

void FontFileAnalyzer::ApplyDefaultFontInfo(int fontIndex, DefaultFontInfo& defaultFontInfo) {
  if (fontIndex < 0 || !isOpen_) return;
  WalkCharacterMap();
  for (std::size_t b = 0; b < blocks_.size(); ++b) {
    const std::size_t end = b + 1 < blocks_.size() ? blocks_[b + 1].begin : mapped_.size();
    SingleDefaultFontRange* range = blockRange(defaultFontInfo, blocks_[b].block);
    if (range == nullptr) continue;
    for (std::size_t i = blocks_[b].begin; i < end; ++i) {
      range->Set(mapped_[i].code, static_cast<short>(fontIndex));
    }
  }
  if (!extraMapped_.empty()) {
    ExtraCharMetrics codes;
    for (const MappedChar& mapped : extraMapped_) codes.Add(mapped.code, 0);
    defaultFontInfo.GetExtraFonts().Apply(fontIndex, codes);
  }
}

float FontFileAnalyzer::GetGlyphAdvance(unsigned short glyph) {
  if (!isOpen_ || FT_Load_Glyph(face_, glyph, FT_LOAD_NO_SCALE) != 0) return 0.0f;
  return static_cast<float>(face_->glyph->metrics.horiAdvance);
}

bool FontFileAnalyzer::HasTable(FT_ULong tag) const {
  FT_ULong length = 0;
  return face_ != nullptr && FT_Load_Sfnt_Table(face_, tag, 0, nullptr, &length) == 0;
}

FontMetrics* FontFileAnalyzer::MakeFontMetrics(const TT_OS2* os2) {
  auto* metrics = new FontMetrics();
  // FreeType always hands out a header record for an sfnt face; whether the
  // font has a `head` table is a question for the table directory.
  const auto* head = HasTable(TTAG_head)
                         ? static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face_, FT_SFNT_HEAD))
                         : nullptr;
  if (head != nullptr) {
    metrics->SetUnitsPerEm(head->Units_Per_EM);
    const auto* hhea =
        HasTable(TTAG_hhea)
            ? static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face_, FT_SFNT_HHEA))
            : nullptr;
    if (hhea != nullptr) {
      metrics->SetAscender(hhea->Ascender);
      metrics->SetDescender(hhea->Descender);
      metrics->SetLineGap(hhea->Line_Gap);
    }
  } else {
    metrics->SetUnitsPerEm(kUnitsPerEmWithoutHead);
    if (os2 != nullptr) {
      metrics->SetAscender(os2->sTypoAscender);
      metrics->SetDescender(os2->sTypoDescender);
      metrics->SetLineGap(os2->sTypoLineGap);
    }
  }
  return metrics;
}

Panose* FontFileAnalyzer::MakePanose(const TT_OS2* os2) {
  if (os2 == nullptr) return nullptr;
  auto* panose = new Panose();
  for (int i = 0; i < Panose::kSize; ++i) panose->Set(i, os2->panose[i]);
  return panose;
}

Sig* FontFileAnalyzer::MakeSig(const TT_OS2* os2) {
  if (os2 == nullptr) return nullptr;
  // A font that declares no range still claims bit 0 (Basic Latin, 1252).
  return new Sig(nonZero(os2->ulUnicodeRange1), nonZero(os2->ulUnicodeRange2),
                 nonZero(os2->ulUnicodeRange3), nonZero(os2->ulUnicodeRange4),
                 nonZero(os2->ulCodePageRange1), nonZero(os2->ulCodePageRange2));
}

CharMetricsInfo* FontFileAnalyzer::MakeCharMetricsInfo() { return nullptr; }

char* FontFileAnalyzer::ConvertU2ToUtf8(char* out, const unsigned short* in) {
  ConvertU2ToUtf8(out, SIZE_MAX, in);
  return out;
}

std::size_t FontFileAnalyzer::ConvertU2ToUtf8(char* out, std::size_t outSize,
                                              const unsigned short* in) {
  if (out == nullptr || outSize == 0) return 0;
  const std::size_t room = outSize - 1;
  std::size_t written = 0;
  for (; in != nullptr && *in != 0; ++in) {
    const unsigned unit = *in;
    unsigned char bytes[4];
    std::size_t count;
    if (unit < 0x80) {
      bytes[0] = static_cast<unsigned char>(unit);
      count = 1;
    } else if (unit < 0x800) {
      bytes[0] = static_cast<unsigned char>(0xC0 | unit >> 6);
      bytes[1] = static_cast<unsigned char>(0x80 | (unit & 0x3F));
      count = 2;
    } else if (unit >= 0xD800 && unit <= 0xDBFF && in[1] >= 0xDC00 && in[1] <= 0xDFFF) {
      // The pair's code point; the low surrogate follows on its own below.
      const unsigned code = 0x10000 + ((unit - 0xD800) << 10) + (in[1] - 0xDC00u);
      bytes[0] = static_cast<unsigned char>(0xF0 | code >> 18);
      bytes[1] = static_cast<unsigned char>(0x80 | (code >> 12 & 0x3F));
      bytes[2] = static_cast<unsigned char>(0x80 | (code >> 6 & 0x3F));
      bytes[3] = static_cast<unsigned char>(0x80 | (code & 0x3F));
      count = 4;
    } else {
      bytes[0] = static_cast<unsigned char>(0xE0 | unit >> 12);
      bytes[1] = static_cast<unsigned char>(0x80 | (unit >> 6 & 0x3F));
      bytes[2] = static_cast<unsigned char>(0x80 | (unit & 0x3F));
      count = 3;
    }
    if (count > room - written) break;
    std::memcpy(out + written, bytes, count);
    written += count;
  }
  out[written] = '\0';
  return written;
}

}  // namespace qro_common
