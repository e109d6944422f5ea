#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "base/NonCopyable.h"
#include "common/manager/CharKey.h"
#include "common/manager/CharKeyCache.h"
#include "common/manager/FontKey.h"
#include "common/manager/ScriptFontKey.h"
#include "common/manager/VisibleCharInfoKey.h"

struct FT_FaceRec_;

namespace qro_graphics {
class Path;
}

namespace qro_common {

class CharMetrics;
class CharMetricsInfo;
class DefaultFontInfo;
class Font;
class FontFacePool;
class FontFileAnalyzer;
class FontInfo;
class FontInfoFileExtracter;
class FontInfoSerializer;
class KerningInfo;
class FontMetrics;
class FontTable;
class RunMeasurer;
struct RunMeasure;

// The font service of the second front door.
//
// Initialize() brings the font information cache under the storage path up
// to date with the font files of the font directories (scanning them only
// when the cache is missing, of another version, or a directory's
// modification time changed), builds the font table from it and loads the
// default-font configuration: the five default fonts, the font chains and
// the script default fonts. The queries then answer advances (as ratios of
// the em square), visibility, fallback fonts, kerning and glyph outlines,
// falling back through a font's chain and the default fonts when it lacks a
// character. Per-character data of a face is loaded on first use and at
// most 31 faces keep it (the oldest is dropped first).
//
// Threads: Initialize, Update, Reset, Register and the scan must run alone.
// Once initialised, every query (advances, glyph advances, visibility,
// ConfirmVisibleChar, kerning, outlines, ResolveSystemFontInfo,
// ClearCacheInfo) may run on any number of threads at once, also while
// faces are dropped and loaded again. The answer caches are read without a
// lock; loading a face's data, dropping one and clearing take the manager's
// mutex; FreeType faces are used under a mutex of their own. Dropped data is
// deleted only when no query can still be reading it (see
// FontTable::GetDeferredDeleter()). The metrics GetCharMetrics() returns
// stay valid until the face's data is dropped or cleared, or while the
// caller is in a read section of that deleter.
//
// The concrete manager is qro_ni::DefaultFontManager, which fixes the
// storage path and the font directories.
class FontManager : public qro_base::NonCopyable {
 public:
  // The process-wide manager of the second front door; null until a host
  // installs one.
  static FontManager* instance;

  static constexpr int kDefaultFontCount = 5;
  // Loading a face's data drops the oldest loaded face when more than this
  // many are loaded.
  static constexpr std::size_t kMaxLoadedBeforeEviction = 30;
  // The space, asked of the last default font when nothing else helps.
  static constexpr unsigned kSpace = 0x20;

  explicit FontManager(FontInfoFileExtracter* extracter);
  virtual ~FontManager();

  // --- Lifecycle ---

  // Builds everything from the cache and the font directories, scanning
  // when needed; logs "Elapsed Time of fontManager initialize() == %.3f sec".
  // Always true.
  virtual bool Initialize();
  // Initialize() again.
  virtual bool Update();
  // Releases what Initialize() built, so that it can run again; the three
  // spacing sets stay until Initialize() rebuilds them.
  void Reset();
  // Whether the cache under the storage path is missing, unreadable, of
  // another version, or records other font directories than the current
  // ones. Changes nothing.
  bool IsModified();
  // Deletes the cache table, the default font information and every data
  // file under the storage path; the folders stay.
  void RemoveAllFiles();
  // Sets the user font directory (taking ownership): it replaces the third
  // directory when there are exactly three, otherwise it is appended.
  void SetUserFontDirectoryPath(const std::string* path);
  // Registers a face (taking ownership) under the table's stored form of
  // its font name; returns its font index or -1.
  int Register(FontInfo* info);
  // The font index of `name`, registering a face without file under that
  // name when it is unknown.
  int Register(const std::string& name);

  // Reads the default fonts list (extracting it from the package for the
  // read when it is not on disk) into the five default font indexes and the
  // serializer's default indexes.
  void LoadDefaultFont(FontInfoSerializer& serializer);
  // Extracts and reads the font chains.
  bool LoadFontChain();
  // Extracts and reads the script default fonts of the interface language,
  // or the language-neutral ones when the package has none for it.
  void LoadScriptDefaultFont();
  // Fixes the default face of every font.
  void InitDefaultFontInfo();
  // Copies the first five entries of `list` into the default font indexes.
  void InitDefaultFontIndexes(const std::vector<int>& list);

  // The full scan: every directory in order, then the table is rewritten
  // and the default fonts are read. Nothing at all without directories.
  void UpdateFontInfo(FontInfoSerializer& serializer);
  // Scans the font files directly inside `directory` (links are not
  // followed, subdirectories not entered); `count` grows by the number of
  // faces taken.
  void UpdateFontInfo(FontFileAnalyzer& analyzer, FontInfoSerializer& serializer,
                      const char* directory, int directoryIndex, int& count);
  // Takes one face of one file into the table (`faceIndex` as FreeType
  // takes it: a named instance in the upper 16 bits); false when the
  // analyzer cannot open it.
  bool UpdateFontInfo(FontFileAnalyzer& analyzer, FontInfoSerializer& serializer,
                      const char* fileName, int faceIndex);

  // --- Queries ---

  // The advance of `ch` in the font as a ratio of the em square, from the
  // first font of the fallback road that has it; bold advances of the
  // advance-ratio adjust fonts are corrected with the requested font's
  // bands. 0 only when not even the last default font has a space.
  float GetCharAdvanceRatio(int fontIndex, unsigned ch, bool bold, bool italic);
  // Caches and returns metrics' advance (bold-corrected for key's font)
  // divided by the units per em.
  float CacheCharAdvancedRatio(CharKey& key, const CharMetrics& metrics,
                               const FontMetrics& fontMetrics);
  // The metrics of `ch` in the face of the font and style (loading its data
  // on first use); null when there are none. While other threads may drop
  // faces' data, use them inside a read section of the font table's
  // deferred deleter.
  CharMetrics* GetCharMetrics(int fontIndex, unsigned ch, bool bold, bool italic);
  CharMetrics* GetCharMetrics(const std::string& fontName, unsigned ch, bool bold, bool italic);
  // Whether the regular face of the font maps `ch`.
  bool IsVisibleChar(int fontIndex, unsigned ch);
  // Whether `info` has a file and, for a range of 0 or more, characters of
  // that Unicode range.
  bool IsSystemFont(int fontIndex, FontInfo* info, int range);
  // Loads the per-character data and kerning of `info`: from its data
  // file, analysing the font file or extracting the package's data file
  // first when the data file is missing. Drops the oldest loaded face when
  // more than 30 are loaded. Callers hold the lock (and, when they use the
  // data afterwards, a read section of the table's deferred deleter).
  void ReadFontInfoData(FontInfo& info, int fontIndex);
  // Whether the font is an extra-bold font without a file of its own.
  bool IsFontBold(int fontIndex);
  // The regular face's name in the interface language, else its font name;
  // empty for an unknown font.
  std::string GetLocaleFontName(int fontIndex);
  // Metrics of the regular face, else of the first chained font that has
  // them, else of the last default font.
  FontMetrics* ResolveFontMetrics(int fontIndex);
  // Reads the interface language again (and forgets the measured runs,
  // shaped in the language before).
  void UpdateUILangCode();
  int GetDefaultFontIndexByCharType(int charType) const;
  int GetDefaultFontIndexByScriptType(int script) const;
  // Rewrites fontIndex and ch to the font and character that show `ch`;
  // true when that is not the requested font.
  bool ConfirmVisibleChar(int& fontIndex, unsigned& ch, bool bold, bool italic);
  // Caches key -> (fontIndex, ch, substituted) when the font shows ch (a
  // cached entry is kept); whether it does.
  bool CacheVisibleCharInfo(VisibleCharInfoKey& key, int fontIndex, unsigned ch, bool bold,
                            bool italic, bool substituted);
  // The advance of a glyph as a ratio of the em square, in the face that
  // serves the font for the script; 0 when it cannot be loaded.
  float GetGlyphAdvanceRatio(int fontIndex, int script, unsigned glyphIndex, bool bold,
                             bool italic);
  // A face with a file that stands for the font: its own, a chained font's
  // or the last default font's.
  FontInfo* ResolveSystemFontInfo(int fontIndex, bool bold, bool italic) const;
  // A face with a file that has characters of the script for the font.
  FontInfo* ResolveSystemFontInfo(int fontIndex, int script, bool bold, bool italic);
  // The kerning between two characters in font units; 0 when the pair has
  // none. The face's data is loaded on demand, as for advances.
  int GetKerningWidth(int fontIndex, bool bold, bool italic, unsigned first, unsigned second);
  int GetKerningWidth(FontInfo* info, unsigned first, unsigned second);
  // Drops every face's per-character data (it is loaded again on demand).
  void ClearCacheInfo();

  // --- Shaped runs ---

  // Measures a run of UTF-16 text as it is shaped (see RunMeasurer): the
  // total advance as a ratio of the em square and, into the non-null
  // outputs of `length` entries each, per unit the advance (a cluster's on
  // its first unit), the font that shows it and whether a cluster begins
  // there. False before initialisation or for a null text.
  bool MeasureRun(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
                  float& totalEm, float* advances, int* fonts, std::uint8_t* clusterStarts);
  bool MeasureRun(int fontIndex, bool bold, bool italic, const char16_t* text, std::size_t length,
                  RunMeasure& result);
  RunMeasurer& GetRunMeasurer() { return *runMeasurer_; }

  // --- Spacing-adjustment sets ---

  void InitializeAdvanceRatioAdjustFontSet();
  void InitializeAdjustSpacingFontSet();
  void InitializeCJKExceptFontSet();
  bool IsAdjustSpacingFont(int fontIndex) const;
  bool IsCJKExceptFont(int fontIndex) const;
  // `advance` (font units) less the band correction of the advance-ratio
  // adjust fonts; unchanged for other fonts.
  float AdjustAdvanceRatio(int fontIndex, float advance) const;

  // --- Outlines ---

  // Draws the glyph of `ch` (or of glyph index `glyphIndex`) at pen (x, y)
  // into `path` at 2048 units per em, y growing downward, and moves x on by
  // the advance. 0, or -1 when the face or glyph cannot be loaded or the
  // outline is broken (the path is then reset).
  int OutlineToPath(const FontInfo* info, unsigned ch, float& x, float& y,
                    qro_graphics::Path* path);
  int GlyphOutlineToPath(const FontInfo* info, unsigned glyphIndex, float& x, float& y,
                         qro_graphics::Path* path);

  // --- Access ---

  const std::string& GetStoragePath() const { return storagePath_; }
  std::vector<const std::string*>& GetFontDirectoryPathList() { return fontDirectoryPathList_; }
  FontTable* GetFontTable() const { return fontTable_; }
  DefaultFontInfo* GetDefaultFontInfo() const { return defaultFontInfo_; }
  FontInfoFileExtracter* GetExtracter() const { return extracter_; }
  unsigned short GetUILangCode() const { return uiLangCode_; }
  // The n-th (0 to 4) default font index; -1 when unset.
  int GetDefaultFontIndex(int n) const;
  // One font index per Unicode-range number; empty before initialisation.
  const std::vector<int>& GetScriptDefaultFontList() const { return scriptDefaultFontList_; }
  // The fallback fonts of a font; null when it has no chain.
  const std::vector<int>* GetFontChain(int fontIndex) const;
  int GetFontIndex(const std::string& name) const;
  // The font's name; empty for an unknown index.
  const std::string& GetFontName(int fontIndex) const;
  // The face of a font and style, missing files allowed; null when none.
  FontInfo* GetFontInfo(int fontIndex, bool bold, bool italic) const;
  // Faces whose per-character data is loaded, oldest first.
  std::vector<const FontInfo*> GetLoadedFontInfos() const;

 protected:
  // For the concrete managers' constructors.
  void SetStoragePath(const std::string& path) { storagePath_ = path; }
  void AddFontDirectoryPath(const std::string& path) {
    fontDirectoryPathList_.push_back(new std::string(path));
  }

 private:
  // The face's per-character data, loaded on first use (test, lock, test
  // again); null when it cannot be loaded.
  CharMetricsInfo* LoadedCharMetricsInfo(FontInfo& info, int fontIndex);
  // The kerning of a face whose data holds none, read from its font file
  // on the first kerning query (a scan leaves the GPOS step to it) and
  // added to its data file; an empty table when the face has no pairs.
  const KerningInfo* KerningOnFirstUse(FontInfo& info);
  // The parts of GetCharAdvanceRatio() and ConfirmVisibleChar() after a
  // cache miss, kept apart so that a cache hit costs a small function.
  float UncachedCharAdvanceRatio(CharKey& key);
  bool UncachedConfirmVisibleChar(VisibleCharInfoKey& key, int& fontIndex, unsigned& ch,
                                  bool bold, bool italic);
  // Looks `c` up in one font; on success caches and stores the ratio.
  bool TryAdvance(CharKey& key, int fontIndex, unsigned c, bool bold, bool italic, float& ratio);
  // Reads the default fonts list into the default font indexes and the
  // serializer; the part of LoadDefaultFont() that writes nothing.
  void LoadDefaultFontList(FontInfoSerializer& serializer);
  // OutlineToPath() (a character) and GlyphOutlineToPath() (a glyph index).
  int DrawOutline(const FontInfo* info, unsigned code, bool isGlyphIndex, float& x, float& y,
                  qro_graphics::Path* path);
  // The open FreeType face of `info` from the face pool; null when none.
  FT_FaceRec_* FontFace(const FontInfo& info);
  bool IsUsableChainFont(int fontIndex) const;
  int ScriptDefaultFont(int range) const;
  void DeleteFontChains();
  void EvictOldestLoaded();

  FontInfoFileExtracter* extracter_;
  int defaultFontIndexes_[kDefaultFontCount] = {-1, -1, -1, -1, -1};
  unsigned short uiLangCode_;
  FontTable* fontTable_ = nullptr;
  DefaultFontInfo* defaultFontInfo_ = nullptr;
  std::map<int, std::vector<int>*> fontChains_;

  // Query caches: the first answer for a key stays. Keyed by CharKey
  // (see the keys' AsCharKey()); visible-character records are packed.
  CharKeyCache<float> advanceRatioCache_;
  CharKeyCache<float> glyphAdvanceCache_;
  CharKeyCache<std::uint64_t> visibleCharCache_;
  mutable CharKeyCache<FontInfo*, 0> systemFontCache_;
  CharKeyCache<FontInfo*, 8> scriptFontCache_;
  // Guarded by mutex_.
  std::list<FontInfo*> loaded_;
  FontInfo* evicting_ = nullptr;
  // Guards facePool_ and every use of its FreeType faces.
  std::mutex faceMutex_;

  std::set<int> advanceRatioAdjustFontSet_;
  std::set<int> adjustSpacingFontSet_;
  std::set<int> cjkExceptFontSet_;
  std::vector<int> scriptDefaultFontList_;
  std::unique_ptr<FontFacePool> facePool_;
  std::unique_ptr<RunMeasurer> runMeasurer_;
  mutable std::mutex mutex_;
  std::string storagePath_;
  std::vector<const std::string*> fontDirectoryPathList_;
};

}  // namespace qro_common
