#pragma once

#include <atomic>
#include <map>
#include <string>

#include "base/NonCopyable.h"

namespace qro_base {
class DeferredDeleter;
}
#include "common/font_info/FontMetrics.h"
#include "common/font_info/Panose.h"
#include "common/font_info/Sig.h"

namespace qro_common {

class CharMetricsInfo;
class KerningInfo;

// What the library knows about one face of one font file. The info owns
// every part it points to; each Set* of an owned part takes ownership of
// its argument and deletes the part it replaces, unless that is the very
// object being set. An info is valid when it has both a PANOSE and a
// signature.
//
// The per-character metrics and the kerning are published atomically: a
// reader that finds them sees them completely built, so one thread may load
// or drop them while others look. When the info has a deferred deleter (the
// font table that owns it gives it one), a replaced or dropped part goes to
// that deleter instead of being deleted at once, so readers inside a read
// section of the deleter may go on using it.
class FontInfo : public qro_base::NonCopyable {
 public:
  FontInfo();
  virtual ~FontInfo();

  bool IsValid() const { return panose_ != nullptr && sig_ != nullptr; }

  // Completes this info from `source`: its PANOSE and signature (as clones)
  // and its alternate and family names (as copies) when `source` has them,
  // and always its persisted flag and pitch. Names, metrics, file data,
  // localized names and indexes stay as they are.
  void Update(FontInfo& source);

  // Owned parts; null when absent.
  FontMetrics* GetFontMetrics() const { return metrics_; }
  void SetFontMetrics(FontMetrics* metrics);
  // Advances per character, loaded on demand from the data file.
  CharMetricsInfo* GetCharMetricsInfo() const {
    return charMetrics_.load(std::memory_order_seq_cst);
  }
  void SetCharMetricsInfo(CharMetricsInfo* info);
  // Absolute path of the font file; null when the file is not available.
  const std::string* GetFilePath() const { return filePath_; }
  void SetFilePath(const std::string* path);
  // The name the font is registered under.
  const std::string* GetFontName() const { return fontName_; }
  void SetFontName(const std::string* name);
  const std::string* GetFamilyName() const { return familyName_; }
  void SetFamilyName(const std::string* name);
  // A further name carried by Update(); not stored in the cache.
  const std::string* GetAlternateName() const { return alternateName_; }
  void SetAlternateName(const std::string* name);
  const std::string* GetStyleName() const { return styleName_; }
  void SetStyleName(const std::string* name);
  Panose* GetPanose() const { return panose_; }
  void SetPanose(Panose* panose);
  Sig* GetSig() const { return sig_; }
  void SetSig(Sig* sig);
  // Kerning pairs, loaded on demand from the data file.
  KerningInfo* GetKerningInfo() const { return kerning_.load(std::memory_order_seq_cst); }
  void SetKerningInfo(KerningInfo* info);
  // Whether the font file was read for kerning that the face's data lacks,
  // with nothing to keep; not stored in the cache.
  bool IsKerningLookedUp() const { return kerningLookedUp_; }
  void SetKerningLookedUp(bool value) { kerningLookedUp_ = value; }
  // Whether the face's kerning, absent from its data, is left to its first
  // kerning query (a scan leaves GPOS kerning to it); not stored in the
  // cache table.
  bool IsKerningLeftToFirstUse() const { return kerningLeftToFirstUse_; }
  void SetKerningLeftToFirstUse(bool value) { kerningLeftToFirstUse_ = value; }
  // Where replaced per-character metrics and kerning go; null (the default)
  // deletes them at once. Not owned.
  void SetDeferredDeleter(qro_base::DeferredDeleter* deleter) { deleter_ = deleter; }

  // Position in the font table, also the name of the data file; -1 for none.
  int GetInfoIndex() const { return infoIndex_; }
  void SetInfoIndex(int index) { infoIndex_ = index; }
  // Size in bytes of the font file when it was analysed.
  int GetFileSize() const { return fileSize_; }
  void SetFileSize(int size) { fileSize_ = size; }
  // Weight class; always 400.
  unsigned short GetWeight() const { return weight_; }
  // Index of the face inside a collection file.
  unsigned char GetFaceIndex() const { return faceIndex_; }
  void SetFaceIndex(unsigned char index) { faceIndex_ = index; }
  // Named instance of a variable face (1 and up, as FreeType counts them);
  // 0 for the face as the file gives it (its default instance). Stored
  // beside the table, not in it.
  unsigned short GetNamedInstance() const { return namedInstance_; }
  void SetNamedInstance(unsigned short instance) { namedInstance_ = instance; }
  // The face index to open the face with: the named instance in the upper
  // 16 bits, the face in the lower.
  long GetFreeTypeFaceIndex() const {
    return static_cast<long>(namedInstance_) << 16 | static_cast<long>(faceIndex_);
  }
  // Marks of a directory scan; not stored in the cache.
  unsigned char GetScanState() const { return scanState_; }
  void SetScanState(unsigned char state) { scanState_ = state; }
  // 0 unknown, 1 fixed pitch, 2 proportional; not stored in the cache.
  unsigned char GetPitch() const { return pitch_; }
  void SetPitch(unsigned char pitch) { pitch_ = pitch; }
  bool IsPersisted() const { return persisted_; }
  void SetPersisted(bool value) { persisted_ = value; }
  // The font has a vertical header table.
  bool HasVerticalMetrics() const { return verticalMetrics_; }
  void SetVerticalMetrics(bool value) { verticalMetrics_ = value; }
  // The font covers East Asian scripts.
  bool IsCJK() const { return cjk_; }
  void SetCJK(bool value) { cjk_ = value; }

  // Names of the font per Windows language identifier, ascending.
  const std::map<int, std::string>& GetLocalizedNames() const { return localizedNames_; }
  std::map<int, std::string>& GetLocalizedNames() { return localizedNames_; }
  // Adds a name for `langCode` unless the code has one; whether it was added.
  bool AddLocalizedName(int langCode, const std::string& name) {
    return localizedNames_.emplace(langCode, name).second;
  }

 private:
  FontMetrics* metrics_ = nullptr;
  std::atomic<CharMetricsInfo*> charMetrics_{nullptr};
  const std::string* filePath_ = nullptr;
  int infoIndex_ = -1;
  int fileSize_ = 0;
  unsigned short weight_ = 400;
  unsigned char faceIndex_ = 0;
  unsigned short namedInstance_ = 0;
  unsigned char scanState_ = 0;
  unsigned char pitch_ = 0;
  bool persisted_ = false;
  bool verticalMetrics_ = false;
  bool cjk_ = false;
  bool kerningLookedUp_ = false;
  bool kerningLeftToFirstUse_ = false;
  const std::string* fontName_ = nullptr;
  const std::string* familyName_ = nullptr;
  const std::string* alternateName_ = nullptr;
  const std::string* styleName_ = nullptr;
  Panose* panose_ = nullptr;
  Sig* sig_ = nullptr;
  std::atomic<KerningInfo*> kerning_{nullptr};
  qro_base::DeferredDeleter* deleter_ = nullptr;
  std::map<int, std::string> localizedNames_;
};

}  // namespace qro_common
