#include "common/registry/FontTable.h"

#include <array>

#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/registry/StyledFontInfoList.h"

namespace qro_common {

namespace {

constexpr const char* kExtraBold = "ExtraBold";

bool containsExtraBold(const std::string& text) {
  return text.find(kExtraBold) != std::string::npos;
}

// Names of fonts whose characters below 256 live at U+F000 + c.
const std::array<const char*, 16>& symbolFontNames() {
  static const std::array<const char*, 16> names = {
      "Symbol",           "Webdings",         "Wingdings",          "Wingdings 2",
      "Wingdings 3",      "Ilex Symbol",      "Ilex Webdings",      "Ilex Wingdings",
      "Ilex Wingdings 2", "Ilex Wingdings 3", "Ilex Web",           "Ilex Wings",
      "Ilex Wing2",       "Ilex Wing3",       "Bookshelf Symbol 7", "MT Extra"};
  return names;
}

}  // namespace

FontTable::FontTable() {
  auto* items = new Storage<Font>::Items();
  items->reserve(kInitialFontCapacity);
  fonts_.Init(items);
}

FontTable::~FontTable() {
  for (auto& entry : styledLists_) delete entry.second;
  for (FontInfo* info : infos_) delete info;
}

FontInfo* FontTable::GetFontInfo(int infoIndex) const {
  if (infoIndex < 0 || infoIndex >= GetFontInfoCount()) return nullptr;
  return infos_[static_cast<size_t>(infoIndex)];
}

Font* FontTable::GetFont(int fontIndex) {
  if (fontIndex < 0 || fontIndex >= GetFontCount()) return nullptr;
  return fonts_.Get(static_cast<unsigned>(fontIndex));
}

const Font* FontTable::GetFont(int fontIndex) const {
  return const_cast<FontTable*>(this)->GetFont(fontIndex);
}

int FontTable::GetFontIndex(const std::string& name) const {
  auto it = nameMap_.find(name);
  return it == nameMap_.end() ? -1 : it->second;
}

int FontTable::GetDefaultFontIndex(int infoIndex) const {
  if (infoIndex < 0) return 0;
  const std::string* name = infos_.at(static_cast<size_t>(infoIndex))->GetFontName();
  return name == nullptr ? -1 : GetFontIndex(*name);
}

StyledFontInfoList* FontTable::GetStyledFontInfoList(int fontIndex) const {
  auto it = styledLists_.find(fontIndex);
  return it == styledLists_.end() ? nullptr : it->second;
}

void FontTable::SetStyledFontInfoList(int fontIndex, StyledFontInfoList* list) {
  StyledFontInfoList*& slot = styledLists_[fontIndex];
  if (slot != list) delete slot;
  slot = list;
}

void FontTable::ConfirmStyledFontInfoListDefaultFontInfo() {
  for (auto& entry : styledLists_) entry.second->ConfirmDefaultFontInfo();
}

FontInfo* FontTable::ResolveFontInfo(int fontIndex, bool bold, bool italic,
                                     bool allowMissing) const {
  if (fontIndex < 0 || fontIndex >= GetFontCount()) return nullptr;
  const StyledFontInfoList* list = GetStyledFontInfoList(fontIndex);
  if (list == nullptr) return nullptr;
  // A bold request takes the bold face even when italic is asked as well.
  FontInfo* candidate = bold ? list->GetBold() : italic ? list->GetItalic() : list->GetRegular();
  if (candidate != nullptr && (allowMissing || candidate->GetFilePath() != nullptr)) {
    return candidate;
  }
  FontInfo* fallback = list->GetDefault();
  if (fallback == nullptr) return nullptr;
  return allowMissing || fallback->GetFilePath() != nullptr ? fallback : nullptr;
}

FontMetrics* FontTable::GetFontMetrics(int fontIndex, bool bold, bool italic) const {
  const FontInfo* info = ResolveFontInfo(fontIndex, bold, italic, true);
  return info == nullptr ? nullptr : info->GetFontMetrics();
}

FontMetrics* FontTable::GetFontMetrics(const std::string& name, bool bold, bool italic) const {
  int index = GetFontIndex(name);
  return index < 0 ? nullptr : GetFontMetrics(index, bold, italic);
}

const std::string* FontTable::GetFontFilePath(int fontIndex, bool bold, bool italic) const {
  const FontInfo* info = ResolveFontInfo(fontIndex, bold, italic, false);
  return info == nullptr ? nullptr : info->GetFilePath();
}

const std::string* FontTable::GetFontFilePath(const std::string& name, bool bold,
                                              bool italic) const {
  int index = GetFontIndex(name);
  return index < 0 ? nullptr : GetFontFilePath(index, bold, italic);
}

FontInfo* FontTable::FindFontInfo(FontInfo& info) const {
  if (info.GetFontName() == nullptr) return nullptr;
  if (info.GetNamedInstance() != 0) return FindSameFace(info);
  const std::string* style = info.GetStyleName();
  FontInfo* found = nullptr;
  if (style != nullptr && containsExtraBold(*style)) {
    found = FindExtraBoldFontInfo(info);
  } else {
    const StyledFontInfoList* list = GetStyledFontInfoList(FindFont(*info.GetFontName()));
    found = list == nullptr ? nullptr : list->FindFontInfo(info);
  }
  return found != nullptr && found->GetNamedInstance() != 0 ? FindSameFace(info) : found;
}

FontInfo* FontTable::FindSameFace(const FontInfo& info) const {
  const std::string* path = info.GetFilePath();
  for (FontInfo* candidate : infos_) {
    const std::string* candidatePath = candidate->GetFilePath();
    if (candidatePath != nullptr && path != nullptr && *candidatePath == *path &&
        candidate->GetFaceIndex() == info.GetFaceIndex() &&
        candidate->GetNamedInstance() == info.GetNamedInstance()) {
      return candidate;
    }
  }
  // Registered, an ExtraBold face has its own font name and the style
  // "Regular".
  const std::string* style = info.GetStyleName();
  const bool extraBold = style != nullptr && containsExtraBold(*style);
  const std::string name = *info.GetFontName() + (extraBold ? std::string(" ") + kExtraBold : "");
  const std::string* wantedStyle = style;
  const std::string regular = "Regular";
  if (extraBold) wantedStyle = &regular;
  for (FontInfo* candidate : infos_) {
    const std::string* candidateStyle = candidate->GetStyleName();
    if (candidate->GetFilePath() == nullptr && candidate->GetScanState() != 2 &&
        candidate->GetFaceIndex() == info.GetFaceIndex() &&
        candidate->GetNamedInstance() == info.GetNamedInstance() &&
        candidate->GetFontName() != nullptr && *candidate->GetFontName() == name &&
        (candidateStyle == nullptr) == (wantedStyle == nullptr) &&
        (wantedStyle == nullptr || *candidateStyle == *wantedStyle)) {
      return candidate;
    }
  }
  return nullptr;
}

// An ExtraBold face is registered as its own font, "<name> ExtraBold", in
// the regular slot (see RegisterFontInfo), so that is where a rescan finds
// it: the record of the same file and face first (a second ExtraBold face
// of the family, say an italic one, has a record outside the slot), else
// the slot's record unless this scan already claimed it for another file.
FontInfo* FontTable::FindExtraBoldFontInfo(const FontInfo& info) const {
  const std::string name = *info.GetFontName() + " " + kExtraBold;
  for (FontInfo* candidate : infos_) {
    const std::string* candidateName = candidate->GetFontName();
    const std::string* path = candidate->GetFilePath();
    if (candidateName != nullptr && *candidateName == name && path != nullptr &&
        info.GetFilePath() != nullptr && *path == *info.GetFilePath() &&
        candidate->GetFaceIndex() == info.GetFaceIndex() &&
        candidate->GetNamedInstance() == info.GetNamedInstance()) {
      return candidate;
    }
  }
  const StyledFontInfoList* list = GetStyledFontInfoList(FindFont(name));
  FontInfo* regular = list == nullptr ? nullptr : list->GetRegular();
  return regular != nullptr && regular->GetScanState() != 2 ? regular : nullptr;
}

int FontTable::FindFont(const std::string& name) const { return fonts_.Find(Font(name)); }

int FontTable::FindOrAddFont(const std::string& name, bool* added) {
  Font key(name);
  int index = fonts_.Find(key);
  *added = index < 0;
  return index >= 0 ? index : fonts_.Add(key);
}

StyledFontInfoList* FontTable::StyledListFor(int fontIndex) {
  StyledFontInfoList* list = GetStyledFontInfoList(fontIndex);
  if (list == nullptr) {
    list = new StyledFontInfoList(fontIndex);
    SetStyledFontInfoList(fontIndex, list);
  }
  return list;
}

void FontTable::UpdateFontKinds(int fontIndex) {
  Font* font = GetFont(fontIndex);
  if (font == nullptr) return;
  for (const char* name : symbolFontNames()) {
    if (font->GetName() == name) {
      font->SetSymbol(true);
      return;
    }
  }
}

int FontTable::RegisterFontInfo(FontInfo* info, bool fromCache) {
  if (info == nullptr || info->GetFontName() == nullptr) return -1;
  const std::string* style = info->GetStyleName();
  if (style != nullptr && containsExtraBold(*style)) {
    info->SetFontName(new std::string(*info->GetFontName() + " " + kExtraBold));
    info->SetStyleName(new std::string("Regular"));
  }
  const std::string& name = *info->GetFontName();

  bool added = false;
  int index = FindOrAddFont(name, &added);
  if (added) UpdateFontKinds(index);
  Font* font = GetFont(index);
  StyledFontInfoList* list = StyledListFor(index);

  bool accepted = list->InformFontInfo(*info);
  bool hasFile = info->GetFilePath() != nullptr;
  bool extraBold = containsExtraBold(name);
  if (!accepted && !fromCache) {
    if (hasFile) font->SetWithoutFile(false);
    if (extraBold) font->SetExtraBold(true);
    delete info;
    return index;
  }

  info->SetInfoIndex(GetFontInfoCount());
  info->SetDeferredDeleter(&retired_);
  infos_.push_back(info);
  RegisterLocaleFontName(info, index);
  list->ConfirmDefaultFontInfo();
  if (info->IsCJK()) {
    const std::string* family = info->GetFamilyName();
    font->SetNonTimes(family == nullptr || *family != "Times New Roman");
  }
  if (hasFile) font->SetWithoutFile(false);
  if (extraBold) font->SetExtraBold(true);
  return index;
}

void FontTable::RegisterLocaleFontName(FontInfo* info, int fontIndex) {
  if (info == nullptr) return;
  if (!info->GetLocalizedNames().empty()) {
    for (const auto& entry : info->GetLocalizedNames()) nameMap_.emplace(entry.second, fontIndex);
    return;
  }
  if (info->GetFontName() == nullptr) return;
  if (nameMap_.emplace(*info->GetFontName(), fontIndex).second) return;
  FontInfo* registered = GetFontInfo(fontIndex, false, false, true);
  if (registered != nullptr && registered != info && !registered->IsValid()) {
    registered->Update(*info);
  }
}

void FontTable::BuildFont() {
  for (FontInfo* info : infos_) {
    if (info->GetFontName() == nullptr) continue;
    bool added = false;
    int index = FindOrAddFont(*info->GetFontName(), &added);
    StyledListFor(index)->InformFontInfo(*info);
    RegisterLocaleFontName(info, index);
  }
}

bool FontTable::LoadFontInfo(FontInfoSerializer& serializer) {
  if (!infos_.empty()) RemoveAll();
  std::vector<FontInfo*> read;
  if (!serializer.Read(read)) {
    for (FontInfo* info : read) delete info;
    return false;
  }
  for (FontInfo* info : read) {
    // A record without a font name cannot be registered.
    if (RegisterFontInfo(info, true) < 0) delete info;
  }
  return true;
}

void FontTable::UpdateModifiedFontInfoState() {
  for (FontInfo* info : infos_) {
    if (info->GetScanState() == 2) {
      info->SetScanState(0);
    } else if (info->GetScanState() == 0) {
      info->SetFilePath(nullptr);
    }
  }
}

void FontTable::ClearCacheInfo() {
  for (FontInfo* info : infos_) {
    info->SetCharMetricsInfo(nullptr);
    info->SetKerningInfo(nullptr);
  }
}

void FontTable::RemoveAll() {
  for (auto& entry : styledLists_) delete entry.second;
  styledLists_.clear();
  for (FontInfo* info : infos_) delete info;
  infos_.clear();
  nameMap_.clear();
}

}  // namespace qro_common
