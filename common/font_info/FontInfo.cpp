#include "common/font_info/FontInfo.h"

#include "base/DeferredDeleter.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/KerningInfo.h"

namespace qro_common {

namespace {

// Replaces the owned object in `slot` by `value`, deleting the old one
// unless it is `value` itself.
template <typename T>
void replaceOwned(T*& slot, T* value) {
  if (slot != value) delete slot;
  slot = value;
}

// The same for a part that readers may look at while it is replaced: the
// new object is published, the old one unpublished in one sequentially
// consistent exchange (which a deferred deleter's readers rely on), and the
// old one goes to the deleter when there is one.
template <typename T>
void replaceOwned(std::atomic<T*>& slot, T* value, qro_base::DeferredDeleter* deleter) {
  T* old = slot.exchange(value, std::memory_order_seq_cst);
  if (old == value) return;
  if (deleter != nullptr) {
    deleter->Retire(old);
  } else {
    delete old;
  }
}

}  // namespace

FontInfo::FontInfo() = default;

FontInfo::~FontInfo() {
  delete metrics_;
  delete charMetrics_.load();
  delete filePath_;
  delete fontName_;
  delete familyName_;
  delete alternateName_;
  delete styleName_;
  delete panose_;
  delete sig_;
  delete kerning_.load();
}

void FontInfo::SetFontMetrics(FontMetrics* metrics) { replaceOwned(metrics_, metrics); }
void FontInfo::SetCharMetricsInfo(CharMetricsInfo* info) { replaceOwned(charMetrics_, info, deleter_); }
void FontInfo::SetFilePath(const std::string* path) { replaceOwned(filePath_, path); }
void FontInfo::SetFontName(const std::string* name) { replaceOwned(fontName_, name); }
void FontInfo::SetFamilyName(const std::string* name) { replaceOwned(familyName_, name); }
void FontInfo::SetAlternateName(const std::string* name) { replaceOwned(alternateName_, name); }
void FontInfo::SetStyleName(const std::string* name) { replaceOwned(styleName_, name); }
void FontInfo::SetPanose(Panose* panose) { replaceOwned(panose_, panose); }
void FontInfo::SetSig(Sig* sig) { replaceOwned(sig_, sig); }
void FontInfo::SetKerningInfo(KerningInfo* info) { replaceOwned(kerning_, info, deleter_); }

void FontInfo::Update(FontInfo& source) {
  if (&source == this) return;
  if (source.panose_ != nullptr) SetPanose(source.panose_->Clone());
  if (source.sig_ != nullptr) SetSig(source.sig_->Clone());
  if (source.alternateName_ != nullptr) SetAlternateName(new std::string(*source.alternateName_));
  if (source.familyName_ != nullptr) SetFamilyName(new std::string(*source.familyName_));
  persisted_ = source.persisted_;
  pitch_ = source.pitch_;
}

}  // namespace qro_common
