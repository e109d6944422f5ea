#pragma once

#include <list>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "common/manager/CharKey.h"
#include "common/manager/CharKeyCache.h"
#include "common/manager/FontKey.h"

namespace qro_common {
class CharMetricsInfo;
class FontInfo;
class FontInfoFileExtracter;
class FontInfoSerializer;
class FontTable;
}  // namespace qro_common

// The font-width facade: advances, kerning and em squares of the fonts of
// an existing font information cache, by font index, without a font
// manager and without opening any font file.
//
// It creates a serializer on the extract path and a font table loaded from
// the cache there, and keeps three caches of its own: the face found for a
// font index and style, the faces whose per-character data it loaded
// (oldest first; loading the 22nd drops the oldest, so at most 21 stay
// loaded), and every advance it answered. The advance cache is never
// emptied: it keeps answering for fonts whose data was dropped.
//
// Status codes: 0 success; -1 no table or font index not below the font
// count; -2 serializer could not be created; -3 font table could not be
// created; -4 no face for (font index, bold, italic); -5 the face's data
// file could not be read; -6 the character is not in the face's advance
// table; -7 the face has no metrics.
//
// Threads: the set-up (paths, InitFontInfoSerializer, InitFontTable,
// InitializeAdvanceRatioAdjustFontSet) must run alone; after it, the
// queries and ClearKelFontCacheInfo() may run on any number of threads at
// once. Cached answers are read without a lock; loading and dropping a
// face's data take the facade's mutex, and dropped data is deleted only
// when no query can still be reading it.
//
// The table and serializer it creates are never destroyed (the facade's
// caches may still point into a table that a later start-up replaced);
// the destructor releases the facade's own caches only.
class CKelFontWidth {
 public:
  // Loading a face's data drops the oldest loaded face when more than this
  // many are loaded.
  static constexpr size_t kMaxLoadedBeforeEviction = 20;

  CKelFontWidth();
  virtual ~CKelFontWidth();
  CKelFontWidth(const CKelFontWidth&) = delete;
  CKelFontWidth& operator=(const CKelFontWidth&) = delete;

  // Paths; a null path is taken as empty. SetFontPath appends.
  void SetQrfontZipPath(const char* path);
  void SetExtractPath(const char* path);
  void SetFontPath(const char* path);

  // Creates the serializer on the extract path: 0, or -2 only when memory
  // runs out. An empty path, or one whose cache folders cannot be made,
  // still gives a serializer (which then finds no cache).
  int InitFontInfoSerializer();
  // Creates a font table and loads the serializer's cache into it (a
  // missing or unreadable cache leaves it empty): 0, or -3 when there is no
  // serializer to load from or the table could not be allocated.
  int InitFontTable();
  // Adds the font indexes of the fonts whose bold advances are corrected
  // (-1 for a name the table does not know).
  void InitializeAdvanceRatioAdjustFontSet();

  // The font index of a font name or localized name (UTF-8); -1 when
  // unknown.
  int GetFontIndex(const char* fontName);
  // The advance of `ch` in design units, bold-corrected for the fonts of
  // the adjust set. A character missing from the face gives -6 with
  // `advance` 0 and is looked up again next time.
  int GetFontCharInfo(int fontIndex, int ch, const bool& bold, const bool& italic, int& advance);
  // The kerning delta of (first, second); 0 for a pair without kerning.
  int GetKerningInfo(int fontIndex, const bool& bold, const bool& italic, int first, int second,
                     int& delta);
  // The face's units per em.
  int GetFontEmSquareFUnit(int fontIndex, const bool& bold, const bool& italic, int& emSquare);
  // `advance` less a correction that grows with the advance (4 for 280 and
  // below, up to 20 above 1050) for the fonts of the adjust set; unchanged
  // for other fonts.
  float AdjustAdvanceRatio(int fontIndex, float advance);
  // Drops the per-character and kerning data of every face of the table.
  // The facade's own caches are kept.
  void ClearKelFontCacheInfo();

  // The font manager door, which the facade's own start-up never uses.
  // Creates the package extracter on (extract path, program path); 0.
  int InitExtracter();
  // Creates an extracter and a DefaultFontManager on the program path with
  // the font path list, initialises it and installs it as
  // FontManager::instance (an earlier instance is left alive). Returns the
  // result of the initialisation.
  bool InitFontManager();
  // Destroys FontManager::instance when there is one.
  void UnInitFontManager();

  // The face for a font index and style (missing font files allowed),
  // remembered once found; null when there is none.
  qro_common::FontInfo* _GetFontInfo(int fontIndex, const bool& bold, const bool& italic);
  const std::string& _GetProgramPath() const { return programPath_; }
  const std::string& _GetExtractPath() const { return extractPath_; }
  const std::vector<std::string>& _GetFontPathList() const { return fontPathList_; }
  qro_common::FontTable* _GetFontTable() const { return fontTable_; }
  qro_common::FontInfoSerializer* _GetFontInfoSerializer() const { return serializer_; }

 private:
  // The part of GetFontCharInfo() after a cache miss, kept apart so that a
  // cache hit costs a small function.
  int UncachedFontCharInfo(const qro_common::CharKey& key, int& advance);
  // The face's per-character data, reading its data file (after dropping
  // the oldest loaded face when too many are loaded) unless another thread
  // did; null when it could not be read. Callers are in a read section of
  // the table's deferred deleter.
  qro_common::CharMetricsInfo* LoadCharMetrics(qro_common::FontInfo& info);

  std::string programPath_;
  std::string extractPath_;
  std::vector<std::string> fontPathList_;
  // Created by the font manager door only; never destroyed by the facade.
  qro_common::FontInfoFileExtracter* extracter_ = nullptr;
  qro_common::FontTable* fontTable_ = nullptr;
  qro_common::FontInfoSerializer* serializer_ = nullptr;
  qro_common::CharKeyCache<qro_common::FontInfo*, 0> fontInfoCache_;
  // Guards loaded_ and the loading and dropping of per-character data.
  std::mutex loadMutex_;
  std::list<qro_common::FontInfo*> loaded_;
  // First answer wins; never shrinks.
  qro_common::CharKeyCache<int> resultCache_;
  std::set<int> adjustFontSet_;
};
