#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/DeferredDeleter.h"
#include "base/NonCopyable.h"
#include "common/font_info/Font.h"
#include "common/font_info/Storage.h"

namespace qro_common {

class FontInfo;
class FontInfoSerializer;
class FontMetrics;
class StyledFontInfoList;

// The registry of every known face and font name.
//
// Faces (FontInfo) are kept in registration order; a face's position is its
// info index, which also names its data file. Fonts (one Font per distinct
// font name) are kept in a Storage<Font>; a font's position is its font
// index, the number every query takes. Fonts are never removed: a font
// index keeps its meaning for the life of the table, across RemoveAll()
// and reloads. Each font index has a StyledFontInfoList of its faces, and
// a name map finds font indexes by font name or by localized name (the
// first index registered for a name wins).
//
// The table owns the faces, the fonts and the styled lists.
class FontTable : public qro_base::NonCopyable {
 public:
  // Room for this many fonts is reserved up front.
  static constexpr int kInitialFontCapacity = 50;

  FontTable();
  virtual ~FontTable();

  // --- Faces ---

  int GetFontInfoCount() const { return static_cast<int>(infos_.size()); }
  // The face with this info index; null when out of range.
  FontInfo* GetFontInfo(int infoIndex) const;

  // --- Fonts ---

  int GetFontCount() const { return fonts_.GetCount(); }
  // Null when the index is negative or not below the font count.
  Font* GetFont(int fontIndex);
  const Font* GetFont(int fontIndex) const;
  // The font index of a font name or localized name; -1 when unknown.
  int GetFontIndex(const std::string& name) const;
  // 0 for a negative info index; otherwise GetFontIndex() of the font name
  // of that face (-1 when it has none). std::out_of_range for an info index
  // beyond the last face.
  int GetDefaultFontIndex(int infoIndex) const;

  // --- Styled lists ---

  StyledFontInfoList* GetStyledFontInfoList(int fontIndex) const;
  // Stores `list` (owning) under `fontIndex`, deleting a different list
  // stored there before.
  void SetStyledFontInfoList(int fontIndex, StyledFontInfoList* list);
  void ConfirmStyledFontInfoListDefaultFontInfo();

  // The face for a font index and style: the bold face when bold is asked
  // (whatever italic says), else the italic face when italic is asked, else
  // the regular face. When that face is missing, or has no file path and
  // `allowMissing` is false, the list's default face is taken instead,
  // subject to the same file test. Null for an unknown font index, a font
  // without faces, or when no face passes.
  FontInfo* ResolveFontInfo(int fontIndex, bool bold, bool italic, bool allowMissing) const;
  FontInfo* GetFontInfo(int fontIndex, bool bold, bool italic, bool allowMissing) const {
    return ResolveFontInfo(fontIndex, bold, italic, allowMissing);
  }
  // Metrics of ResolveFontInfo(..., true); null when there are none.
  FontMetrics* GetFontMetrics(int fontIndex, bool bold, bool italic) const;
  FontMetrics* GetFontMetrics(const std::string& name, bool bold, bool italic) const;
  // File path of ResolveFontInfo(..., false); null when there is none.
  const std::string* GetFontFilePath(int fontIndex, bool bold, bool italic) const;
  const std::string* GetFontFilePath(const std::string& name, bool bold, bool italic) const;
  // The face registered for `info`'s font name in the slot of `info`'s
  // style; null when the font or its list is unknown. An ExtraBold face is
  // looked for where RegisterFontInfo puts it. A named instance of a
  // variable face is only ever its own record (see FindNamedInstance), and
  // a slot held by one is not taken for a face of another file.
  FontInfo* FindFontInfo(FontInfo& info) const;

  // --- Registration ---

  // Registers a face (taking ownership) and returns its font index, or -1
  // (not taken) for a null face or one without font name. A face whose
  // style name contains "ExtraBold" is renamed first: it becomes the
  // "Regular" face of the font "<name> ExtraBold". A face its styled list
  // refuses (its style slot is taken) is deleted when it comes from a scan,
  // and kept (without a slot) when it comes from the cache, so that info
  // indexes keep matching the cache's data files.
  int RegisterFontInfo(FontInfo* info, bool fromCache);
  // Adds the face's localized names to the name map, or its font name when
  // it has none; names already present keep their index. When the font name
  // was present, the face that a plain look-up of `fontIndex` gives (its
  // regular face, else its default face), if not valid, is completed from
  // `info` (FontInfo::Update).
  void RegisterLocaleFontName(FontInfo* info, int fontIndex);
  // Sets the symbol flag of a font whose name is a known symbol font name
  // (exact comparison).
  void UpdateFontKinds(int fontIndex);
  // Rebuilds fonts, styled lists and names from the registered faces, in
  // order. Faces are neither renamed, refused nor moved.
  void BuildFont();

  // --- Lifecycle ---

  // Replaces the faces by those of the serializer's table (RemoveAll()
  // first when the table holds faces). False when the cache table could not
  // be read; the fonts are kept either way.
  bool LoadFontInfo(FontInfoSerializer& serializer);
  // Ends a directory scan: faces the scan marked (state 2) go back to state
  // 0; faces it did not see (state 0) lose their file path.
  void UpdateModifiedFontInfoState();
  // Drops every face's character metrics and kerning (they are reloaded on
  // demand).
  void ClearCacheInfo();
  // The deleter that the per-character data and kerning of the registered
  // infos go to when dropped or replaced: a reader that uses them without
  // the loading lock does so inside a read section of it.
  qro_base::DeferredDeleter& GetDeferredDeleter() const { return retired_; }
  // Deletes every face and styled list and empties the name map. The fonts
  // stay, so font indexes already handed out keep their meaning and a
  // reloaded face finds its old font by name.
  void RemoveAll();

 private:
  // The font index of an existing font of this name, or -1.
  int FindFont(const std::string& name) const;
  FontInfo* FindExtraBoldFontInfo(const FontInfo& info) const;
  // The record of the same file, face and named instance as `info`; else
  // one that has lost its file (a packaged record, or a font file that went
  // away) and has the same names, face and instance, unless this scan has
  // claimed it already.
  FontInfo* FindSameFace(const FontInfo& info) const;
  // The font of this name, added when missing.
  int FindOrAddFont(const std::string& name, bool* added);
  StyledFontInfoList* StyledListFor(int fontIndex);

  // Per-character data that readers may still hold when it is dropped or
  // replaced; declared first so that it outlives the infos.
  mutable qro_base::DeferredDeleter retired_;
  std::vector<FontInfo*> infos_;
  std::map<std::string, int, std::less<>> nameMap_;
  Storage<Font> fonts_;
  std::map<int, StyledFontInfoList*> styledLists_;
};

}  // namespace qro_common
