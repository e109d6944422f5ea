// Per-font queries and the lazy loading of per-character data.

#include <memory>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/manager/FontManager.h"
#include "common/registry/FontInfoFileExtracter.h"
#include "common/registry/FontTable.h"

namespace qro_common {

using ReadSection = qro_base::DeferredDeleter::ReadSection;

CharMetricsInfo* FontManager::LoadedCharMetricsInfo(FontInfo& info, int fontIndex) {
  if (CharMetricsInfo* metrics = info.GetCharMetricsInfo()) return metrics;
  std::lock_guard<std::mutex> lock(mutex_);
  if (evicting_ == &info || info.GetCharMetricsInfo() == nullptr) {
    ReadFontInfoData(info, fontIndex);
  }
  return info.GetCharMetricsInfo();
}

const KerningInfo* FontManager::KerningOnFirstUse(FontInfo& info) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (const KerningInfo* kerning = info.GetKerningInfo()) return kerning;
  std::unique_ptr<KerningInfo> kerning;
  if (!info.IsKerningLookedUp() && hasGposKerning()) {
    kerning.reset(FontFileAnalyzer::ReadKerningOnFirstUse(info));
  }
  if (kerning == nullptr) {
    // No pairs: an empty table answers the next queries without the lock.
    info.SetKerningLookedUp(true);
    info.SetKerningInfo(new KerningInfo());
    return info.GetKerningInfo();
  }
  info.SetKerningInfo(kerning.release());
  // Kept with the face's data, so that later starts read the pairs rather
  // than shape the face again. Until that succeeds the face is looked up
  // again after its data is dropped.
  if (info.GetCharMetricsInfo() != nullptr && FontInfoSerializer(storagePath_).AppendKerning(info)) {
    info.SetKerningLookedUp(true);
  }
  return info.GetKerningInfo();
}

void FontManager::EvictOldestLoaded() {
  FontInfo* oldest = loaded_.front();
  evicting_ = oldest;
  oldest->SetCharMetricsInfo(nullptr);
  oldest->SetKerningInfo(nullptr);
  evicting_ = nullptr;
  loaded_.pop_front();
}

void FontManager::ReadFontInfoData(FontInfo& info, int /*fontIndex*/) {
  if (info.GetFontMetrics() == nullptr) return;
  if (loaded_.size() > kMaxLoadedBeforeEviction) EvictOldestLoaded();

  FontInfoSerializer serializer(storagePath_);
  // Data files are written unsynced: one that does not read back whole (cut
  // short by a power loss) counts as missing and is made again.
  if (!serializer.IsDataFile(info) || !serializer.ReadData(info)) {
    if (const std::string* path = info.GetFilePath()) {
      FontFileAnalyzer analyzer;
      analyzer.SetGposKerningTime(FontFileAnalyzer::GposKerningTime::kOnFirstUse);
      if (analyzer.Open(path->c_str(), static_cast<int>(info.GetFreeTypeFaceIndex()))) {
        analyzer.AnalyzeData(info);
        serializer.WriteData(info);
        analyzer.Close();
      }
    } else if (extracter_ != nullptr) {
      // A font known only from the package: its data file comes from there.
      extracter_->ExtractFontInfoData(info.GetInfoIndex());
      serializer.ReadData(info);
    }
  }
  if (info.GetCharMetricsInfo() != nullptr) loaded_.push_back(&info);
}

CharMetrics* FontManager::GetCharMetrics(int fontIndex, unsigned ch, bool bold, bool italic) {
  if (fontIndex < 0 || fontTable_ == nullptr) return nullptr;
  FontInfo* info = fontTable_->ResolveFontInfo(fontIndex, bold, italic, true);
  if (info == nullptr) return nullptr;
  ReadSection section(fontTable_->GetDeferredDeleter());
  CharMetricsInfo* metrics = LoadedCharMetricsInfo(*info, fontIndex);
  return metrics == nullptr ? nullptr : metrics->GetCharMetrics(ch);
}

CharMetrics* FontManager::GetCharMetrics(const std::string& fontName, unsigned ch, bool bold,
                                         bool italic) {
  return GetCharMetrics(GetFontIndex(fontName), ch, bold, italic);
}

bool FontManager::IsVisibleChar(int fontIndex, unsigned ch) {
  if (fontTable_ == nullptr) return false;
  FontInfo* info = fontTable_->ResolveFontInfo(fontIndex, false, false, true);
  if (info == nullptr) return false;
  ReadSection section(fontTable_->GetDeferredDeleter());
  CharMetricsInfo* metrics = LoadedCharMetricsInfo(*info, fontIndex);
  return metrics != nullptr && metrics->IsVisibleChar(ch);
}

bool FontManager::IsSystemFont(int fontIndex, FontInfo* info, int range) {
  if (info == nullptr || info->GetFilePath() == nullptr) return false;
  if (range < 0) return true;
  if (fontTable_ == nullptr) return false;
  ReadSection section(fontTable_->GetDeferredDeleter());
  CharMetricsInfo* metrics = LoadedCharMetricsInfo(*info, fontIndex);
  unsigned slot = static_cast<unsigned>(range) & 0xFF;
  return metrics != nullptr && slot < 128 &&
         metrics->GetCharMetricsRange(static_cast<unsigned char>(slot)) != nullptr;
}

bool FontManager::IsFontBold(int fontIndex) {
  const Font* font = fontTable_ == nullptr ? nullptr : fontTable_->GetFont(fontIndex);
  if (font == nullptr || !font->IsExtraBold()) return false;
  return font->IsWithoutFile();
}

std::string FontManager::GetLocaleFontName(int fontIndex) {
  const FontInfo* info = GetFontInfo(fontIndex, false, false);
  if (info == nullptr) return std::string();
  const auto& names = info->GetLocalizedNames();
  auto it = names.find(uiLangCode_);
  if (it != names.end() && !it->second.empty()) return it->second;
  return info->GetFontName() == nullptr ? std::string() : *info->GetFontName();
}

FontMetrics* FontManager::ResolveFontMetrics(int fontIndex) {
  if (const FontInfo* info = GetFontInfo(fontIndex, false, false)) {
    if (info->GetFontMetrics() != nullptr) return info->GetFontMetrics();
  }
  if (const std::vector<int>* chain = GetFontChain(fontIndex)) {
    for (int index : *chain) {
      const FontInfo* info = GetFontInfo(index, false, false);
      if (info != nullptr && info->GetFontMetrics() != nullptr) return info->GetFontMetrics();
    }
  }
  const FontInfo* last = GetFontInfo(defaultFontIndexes_[kDefaultFontCount - 1], false, false);
  return last == nullptr ? nullptr : last->GetFontMetrics();
}

int FontManager::GetKerningWidth(int fontIndex, bool bold, bool italic, unsigned first,
                                 unsigned second) {
  return GetKerningWidth(GetFontInfo(fontIndex, bold, italic), first, second);
}

int FontManager::GetKerningWidth(FontInfo* info, unsigned first, unsigned second) {
  if (info == nullptr || fontTable_ == nullptr) return 0;
  ReadSection section(fontTable_->GetDeferredDeleter());
  const KerningInfo* kerning = info->GetKerningInfo();
  if (kerning == nullptr) {
    // Kerning arrives with the face's per-character data: a face not yet
    // used (a scan writes its data and drops it) is loaded here.
    LoadedCharMetricsInfo(*info, -1);
    kerning = info->GetKerningInfo();
  }
  if (kerning == nullptr) kerning = KerningOnFirstUse(*info);
  if (kerning == nullptr) return 0;
  return kerning->GetDelta(static_cast<int>(first), static_cast<int>(second));
}

void FontManager::ClearCacheInfo() {
  if (fontTable_ == nullptr) return;
  std::lock_guard<std::mutex> lock(mutex_);
  fontTable_->ClearCacheInfo();
  loaded_.clear();  // deliberately emptied too: nothing is loaded any more
}

int FontManager::GetDefaultFontIndexByCharType(int charType) const {
  switch (charType) {
    case 0:
      return defaultFontIndexes_[0];
    case 4:
      return defaultFontIndexes_[1];
    case 5:
      return defaultFontIndexes_[3];
    default:
      return defaultFontIndexes_[2];
  }
}

int FontManager::GetDefaultFontIndexByScriptType(int script) const {
  switch (script) {
    case 0:
      return defaultFontIndexes_[0];
    // clang-format off
    case 11: case 13: case 15: case 16: case 24: case 25:
      return defaultFontIndexes_[3];
    case 48: case 49: case 50: case 52: case 54: case 55: case 56: case 59: case 61: case 65:
    case 68:
      // clang-format on
      return defaultFontIndexes_[2];
    default:
      return defaultFontIndexes_[1];
  }
}

std::vector<const FontInfo*> FontManager::GetLoadedFontInfos() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return std::vector<const FontInfo*>(loaded_.begin(), loaded_.end());
}

}  // namespace qro_common
