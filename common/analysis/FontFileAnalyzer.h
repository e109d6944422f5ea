#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/NonCopyable.h"
#include "common/analysis/FontUSBType.h"

namespace qro_common {

class CharMetricsInfo;
class DefaultFontInfo;
class FontInfo;
class FontMetrics;
class KerningInfo;
class Panose;
class Sig;

// Turns one face of a font file (TrueType, OpenType, or one face of a
// collection) into font information, reading the file through FreeType
// only. Use: Open(path, face), Analyze() for the names, flags and global
// metrics, ApplyDefaultFontInfo() and AnalyzeData() as needed, Close().
// One analyzer owns one FreeType library and serves one thread at a time.
// Nothing is logged but a damaged GPOS table; a file that FreeType cannot
// read, or a face without an OS/2 table, makes Open() fail.
class FontFileAnalyzer : public qro_base::NonCopyable {
 public:
  // Size of each of the two working buffers of name conversion, in bytes;
  // longer family names are cut at a code-unit boundary.
  static constexpr std::size_t kNameBufferSize = 2048;

  // Where AnalyzeCharMetricsInfo() takes the unscaled advances from.
  enum class AdvanceSource {
    // The face's horizontal metrics, all glyphs in one FT_Get_Advances
    // call (tens of nanoseconds a glyph instead of microseconds), brought
    // to what loading gives by LoadedAdvances: a TrueType composite that
    // takes its component's metrics advances by that component, a glyph
    // whose data would not load has no advance, and a glyph whose data it
    // cannot vouch for is loaded after all. A face with variations has its
    // metrics read by FT_Get_Advances, not from the table: FreeType varies
    // them as loading does (by the HVAR table, or by loading each glyph
    // when there is none).
    kMetrics,
    // Every glyph loaded with FT_Load_Glyph(FT_LOAD_NO_SCALE); a glyph that
    // does not load drops its characters. This is the rule the metrics
    // above follow; a test compares the two on every face of the installed
    // fonts, the generated ones and the Android set. This path stays for
    // that comparison.
    kGlyphs,
  };

  // Creates the FreeType library. The preferred language for the font name
  // is the user-interface language (getUILangCode()).
  FontFileAnalyzer();
  // Releases an open face, then the library.
  virtual ~FontFileAnalyzer();

  // Opens face `faceIndex` of the file at `path` (FreeType's face index: a
  // named instance of a variable face in the upper 16 bits). False when
  // the library is not ready, FreeType cannot open the face, the face has
  // no OS/2 table or the index is negative. An open face is closed first.
  bool Open(const char* path, int faceIndex);
  // Releases the open face; nothing when none is open.
  void Close();

  // A new FontInfo (the caller owns it) with file size, style and family
  // name, vertical and pitch flags, PANOSE, signature and East Asian flag,
  // localized family names, font name and global metrics; null when no
  // face is open. Advances and kerning are left to AnalyzeData().
  FontInfo* Analyze();
  // AnalyzeCharMetricsInfo() then AnalyzeKerningInfo(); nothing when no
  // face is open.
  void AnalyzeData(FontInfo& info);
  // Installs a new advance table in `info`: the unscaled advance of every
  // character of the Unicode map (or, when that is empty, of the symbol
  // map) whose glyph has one (see AdvanceSource) and whose Unicode-range
  // bit is stored (127, or below 123 and not 57). Nothing changes when
  // neither map has a character. The map is walked once per open face for
  // this and ApplyDefaultFontInfo().
  void AnalyzeCharMetricsInfo(FontInfo& info);
  // Installs a new kerning table in `info` holding every non-zero kerning
  // value, in font units, between two printable ASCII characters (32 to
  // 126): the `kern` table's, or, when that gives none, GPOS's (see
  // GposKerning.h). Nothing changes when the face has no kerning, when one
  // of these characters has no glyph, or when no pair has a value. With
  // GposKerningTime::kOnFirstUse the GPOS step is skipped.
  void AnalyzeKerningInfo(FontInfo& info);
  // The kerning of a face whose stored data holds none, read from the
  // info's font file as AnalyzeKerningInfo() reads it with the GPOS step
  // included: a new table (the caller owns it), or null when the info has
  // no file, the face does not open or no pair has a value.
  static KerningInfo* ReadKerningOnFirstUse(const FontInfo& info);
  // Records `fontIndex` for every code point the face maps (same maps and
  // filter as AnalyzeCharMetricsInfo); nothing for a negative index.
  void ApplyDefaultFontInfo(int fontIndex, DefaultFontInfo& defaultFontInfo);
  // Horizontal advance of `glyph` in font units; 0 when no face is open or
  // the glyph does not load.
  float GetGlyphAdvance(unsigned short glyph);

  // New records made from an OS/2 table (the caller owns them). Metrics:
  // units per em from `head` and ascender, descender and line gap from
  // `hhea` (0 without `hhea`); without `head`, 1024 and the OS/2
  // typographic values. PANOSE and signature are null for a null table; in
  // the signature each of the six range words that is 0 becomes 1.
  FontMetrics* MakeFontMetrics(const TT_OS2* os2);
  Panose* MakePanose(const TT_OS2* os2);
  Sig* MakeSig(const TT_OS2* os2);
  // Always null.
  CharMetricsInfo* MakeCharMetricsInfo();

  // UTF-16 (zero-terminated) to UTF-8 in `out`, zero-terminated; returns
  // `out`. Units below 0x800 take one or two bytes, a surrogate pair its
  // four-byte code point, every other unit three bytes (a lone surrogate
  // too). The input advances one unit at a time, so the low surrogate of a
  // pair is written again as its own three bytes after the pair: this
  // output is relied on as it is. `out` must have room for the result.
  static char* ConvertU2ToUtf8(char* out, const unsigned short* in);
  // The same writing at most outSize bytes, the terminator included; the
  // output ends before the first unit whose bytes would not fit. Returns
  // the number of bytes written before the terminator. Nothing is written
  // when outSize is 0.
  static std::size_t ConvertU2ToUtf8(char* out, std::size_t outSize, const unsigned short* in);

  // Number of Open() calls in this process so far, by any analyzer (how
  // many font faces were looked at; a start-up that trusts its cache makes
  // none).
  static unsigned long GetOpenCount();

  bool IsOpen() const { return isOpen_; }
  // Number of faces in the opened file, as FreeType reports it, in 8 bits.
  unsigned char GetFaceCount() const { return faceCount_; }
  // Number of named instances of the face last opened without one (0 for
  // a face that is not variable, and after opening a named instance).
  int GetNamedInstanceCount() const { return namedInstanceCount_; }
  // The named instances of face `face` of the file at `path` that become
  // faces of their own, in the order they are registered: all of them
  // but one at the default coordinates (the face itself is that one),
  // those styled exactly "Regular", "Bold", "Italic" or "Bold Italic"
  // first, so that the first-come slots of a font go to them, then the
  // others in the font's order; of the first 256 named instances. Empty
  // for a face that is not variable.
  std::vector<int> ListNamedInstances(const char* path, int face);
  // Size of the file given to the last Open() (0 when unreadable).
  int GetFileSize() const { return fileSize_; }
  // Second choice for the font name after 1033 (English, United States).
  unsigned short GetPreferredLanguage() const { return preferredLanguage_; }
  void SetPreferredLanguage(unsigned short language) { preferredLanguage_ = language; }
  AdvanceSource GetAdvanceSource() const { return advanceSource_; }
  void SetAdvanceSource(AdvanceSource source) { advanceSource_ = source; }

  // When AnalyzeKerningInfo() shapes a face whose `kern` table gives no
  // pairs (the GPOS step, one to three milliseconds a face): now, or at
  // the face's first kerning query (ReadKerningOnFirstUse()). A scan
  // leaves it to first use, since most faces are never kerned; a package
  // is made with it, so that its data files carry the pairs.
  enum class GposKerningTime { kNow, kOnFirstUse };
  void SetGposKerningTime(GposKerningTime time) { gposKerningTime_ = time; }

 private:
  // Selects the Unicode map, or the symbol map when the Unicode map has no
  // character; returns the first code point and sets *glyph (0 when
  // neither map has one).
  FT_ULong FirstChar(FT_UInt* glyph);
  // Walks the selected character map once per open face (Unicode, or the
  // symbol map when the Unicode map is empty) into mapped_ and blocks_:
  // every stored code point with its glyph, in map order.
  void WalkCharacterMap();
  // Classifies `code` into scratch_; false when it is not stored.
  bool Classify(FT_ULong code);
  void ResetScratch();
  // Reads every glyph's advance into metricsAdvances_ when the advance
  // source allows it for this face; false (and empty) otherwise.
  bool PrepareMetricsAdvances();
  // Unscaled horizontal advance of `glyph`, from the prepared metrics or by
  // loading the glyph; false when there is none.
  bool LoadAdvance(FT_UInt glyph, unsigned short* advance);
  bool HasTable(FT_ULong tag) const;
  // The kerning table AnalyzeKerningInfo() installs; null for none.
  std::unique_ptr<KerningInfo> ReadKerning();
  void ReadPitch(FontInfo& info) const;
  void ReadLocalizedNames(std::map<int, std::string>& names) const;

  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
  const TT_OS2* os2_ = nullptr;
  unsigned short preferredLanguage_ = 1033;
  unsigned char faceCount_ = 0;
  int namedInstanceCount_ = 0;
  int fileSize_ = 0;
  bool libraryReady_ = false;
  bool isOpen_ = false;
  AdvanceSource advanceSource_ = AdvanceSource::kMetrics;
  GposKerningTime gposKerningTime_ = GposKerningTime::kNow;
  // Whether the last ReadKerning() left the GPOS step to first use.
  bool gposLeft_ = false;
  FontUSBType::CodePointUSBInfo scratch_{};
  // The walk of the open face's character map: stored code points in map
  // order, split into runs of one block (a block's run begins at `begin`
  // and ends where the next one begins).
  struct MappedChar {
    unsigned code;
    FT_UInt glyph;
  };
  struct MappedBlock {
    FontUSBType::CodePointUSBInfo block;
    std::size_t begin;
  };
  bool mapWalked_ = false;
  bool mapHasChar_ = false;  // whether the map has any character at all
  std::vector<MappedChar> mapped_;
  // The mapped code points no slot holds, in map order.
  std::vector<MappedChar> extraMapped_;
  std::vector<MappedBlock> blocks_;
  // Unscaled advance of every glyph while AnalyzeCharMetricsInfo() runs.
  std::vector<FT_Fixed> metricsAdvances_;
};

}  // namespace qro_common
