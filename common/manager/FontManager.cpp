#include "common/manager/FontManager.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <ctime>

#include "base/FileUtils.h"
#include "base/Log.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/manager/RunMeasurer.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/FontFacePool.h"
#include "common/registry/FontInfoFileExtracter.h"
#include "common/registry/FontTable.h"
#include "common/registry/UILangCode.h"

namespace qro_common {

FontManager* FontManager::instance = nullptr;

FontManager::FontManager(FontInfoFileExtracter* extracter)
    : extracter_(extracter), uiLangCode_(getUILangCode()), runMeasurer_(new RunMeasurer(*this)) {}

FontManager::~FontManager() {
  Reset();
  for (const std::string* path : fontDirectoryPathList_) delete path;
}

bool FontManager::Update() { return Initialize(); }

bool FontManager::Initialize() {
  std::clock_t start = std::clock();
  Reset();
  fontTable_ = new FontTable();
  defaultFontInfo_ = new DefaultFontInfo();
  FontInfoSerializer serializer(storagePath_);

  if (!serializer.IsTableExists()) {
    RemoveAllFiles();
    if (extracter_ != nullptr) {
      extracter_->Reload();
      extracter_->ExtractFontTable();
    }
  }
  bool ok = fontTable_->LoadFontInfo(serializer);
  if (!ok && !serializer.IsVersionMatched()) {
    // A cache of another version: start again from the package's table.
    RemoveAllFiles();
    if (extracter_ != nullptr) {
      extracter_->Reload();
      extracter_->ExtractFontTable();
    }
    delete fontTable_;
    fontTable_ = new FontTable();
    ok = fontTable_->LoadFontInfo(serializer);
  }

  bool modified = serializer.IsModified(fontDirectoryPathList_);
  if (ok && !modified) {
    // Deliberately, the default font information on disk is read, not
    // rewritten from a still-empty record first: it is only rebuilt by a
    // scan.
    LoadDefaultFontList(serializer);
    serializer.ReadDefaultFontInfo(*defaultFontInfo_);
  } else {
    UpdateFontInfo(serializer);
  }

  LoadFontChain();
  LoadScriptDefaultFont();
  InitDefaultFontInfo();
  InitializeAdvanceRatioAdjustFontSet();
  InitializeAdjustSpacingFontSet();
  InitializeCJKExceptFontSet();

  double elapsed = static_cast<double>(std::clock() - start) / 1000000.0;
  qro_base::logProfile("Elapsed Time of fontManager initialize() == %.3f sec", elapsed);
  return true;
}

void FontManager::Reset() {
  for (int& index : defaultFontIndexes_) index = -1;
  scriptDefaultFontList_.clear();
  DeleteFontChains();
  {
    std::lock_guard<std::mutex> lock(mutex_);
    loaded_.clear();
    evicting_ = nullptr;
  }
  advanceRatioCache_.Clear();
  glyphAdvanceCache_.Clear();
  visibleCharCache_.Clear();
  systemFontCache_.Clear();
  scriptFontCache_.Clear();
  if (runMeasurer_) runMeasurer_->Clear();
  // The three spacing sets stay until Initialize() rebuilds them: the
  // scan of an Update() asks the CJK-except set about the fonts it finds.
  // Open faces are keyed by info index, which a new table gives out anew.
  facePool_.reset();
  delete fontTable_;
  fontTable_ = nullptr;
  delete defaultFontInfo_;
  defaultFontInfo_ = nullptr;
}

void FontManager::DeleteFontChains() {
  for (auto& entry : fontChains_) delete entry.second;
  fontChains_.clear();
}

bool FontManager::IsModified() {
  std::string table = storagePath_ + getFontInfoStorageName() + getFontInfoTableName();
  if (!qro_base::isFileExists(table.c_str())) return true;
  FontInfoSerializer serializer(storagePath_);
  if (!serializer.ReadHeader()) return true;
  return serializer.IsModified(fontDirectoryPathList_);
}

void FontManager::RemoveAllFiles() {
  if (!qro_base::isFileExists(storagePath_.c_str())) return;
  std::string storage = storagePath_ + getFontInfoStorageName();
  if (!qro_base::isFileExists(storage.c_str())) return;
  std::remove((storage + getFontInfoTableName()).c_str());
  std::remove((storage + getFontInstanceTableName()).c_str());
  std::remove((storage + getDefaultFontInfoFileName()).c_str());
  std::remove((storage + getExtraDefaultFontsFileName()).c_str());

  // Deliberately walked by full path: the library never changes the host's
  // working directory.
  std::string data = storage + getFontInfoDataDirectoryName();
  DIR* dir = opendir(data.c_str());
  if (dir == nullptr) return;
  while (const dirent* entry = readdir(dir)) {
    std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    std::string path = data + name;
    struct stat status;
    if (lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) std::remove(path.c_str());
  }
  closedir(dir);
}

void FontManager::SetUserFontDirectoryPath(const std::string* path) {
  if (path == nullptr) return;
  if (fontDirectoryPathList_.size() == 3) {
    if (fontDirectoryPathList_[2] != path) delete fontDirectoryPathList_[2];
    fontDirectoryPathList_[2] = path;
  } else {
    fontDirectoryPathList_.push_back(path);
  }
}

int FontManager::Register(FontInfo* info) {
  if (info == nullptr) return -1;
  if (fontTable_ == nullptr) {
    delete info;
    return -1;
  }
  if (const std::string* name = info->GetFontName()) {
    if (const Font* font = fontTable_->GetFont(fontTable_->GetFontIndex(*name))) {
      info->SetFontName(new std::string(font->GetName()));
    }
  }
  int index = fontTable_->RegisterFontInfo(info, false);
  if (index < 0) delete info;  // refused without being taken
  return index;
}

int FontManager::Register(const std::string& name) {
  int index = GetFontIndex(name);
  if (index >= 0 || fontTable_ == nullptr) return index;
  auto* info = new FontInfo();
  info->SetFontName(new std::string(name));
  return Register(info);
}

void FontManager::InitDefaultFontInfo() {
  if (fontTable_ != nullptr) fontTable_->ConfirmStyledFontInfoListDefaultFontInfo();
}

void FontManager::InitDefaultFontIndexes(const std::vector<int>& list) {
  for (std::size_t i = 0; i < list.size() && i < kDefaultFontCount; ++i) {
    defaultFontIndexes_[i] = list[i];
  }
}

int FontManager::GetDefaultFontIndex(int n) const {
  return n >= 0 && n < kDefaultFontCount ? defaultFontIndexes_[n] : -1;
}

const std::vector<int>* FontManager::GetFontChain(int fontIndex) const {
  auto it = fontChains_.find(fontIndex);
  return it == fontChains_.end() ? nullptr : it->second;
}

int FontManager::GetFontIndex(const std::string& name) const {
  return fontTable_ == nullptr ? -1 : fontTable_->GetFontIndex(name);
}

const std::string& FontManager::GetFontName(int fontIndex) const {
  static const std::string empty;
  const Font* font = fontTable_ == nullptr ? nullptr : fontTable_->GetFont(fontIndex);
  return font == nullptr ? empty : font->GetName();
}

FontInfo* FontManager::GetFontInfo(int fontIndex, bool bold, bool italic) const {
  return fontTable_ == nullptr ? nullptr : fontTable_->GetFontInfo(fontIndex, bold, italic, true);
}

void FontManager::UpdateUILangCode() {
  uiLangCode_ = getUILangCode();
  // Runs are shaped in the interface language.
  runMeasurer_->ClearWords();
}

// Under faceMutex_.
FT_FaceRec_* FontManager::FontFace(const FontInfo& info) {
  if (!facePool_) facePool_.reset(new FontFacePool());
  return facePool_->GetFontFace(info);
}

}  // namespace qro_common
