// The default-font configuration: default fonts, font chains, script
// default fonts.

#include <cstdio>
#include <memory>

#include "common/analysis/LangCode.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/manager/FontManager.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontChainReader.h"
#include "common/registry/FontInfoFileExtracter.h"
#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"

namespace qro_common {

void FontManager::LoadDefaultFont(FontInfoSerializer& serializer) {
  LoadDefaultFontList(serializer);
  if (defaultFontInfo_ != nullptr) serializer.WriteDefaultFontInfo(*defaultFontInfo_);
}

void FontManager::LoadDefaultFontList(FontInfoSerializer& serializer) {
  if (fontTable_ == nullptr) return;
  DefaultFontsReader reader(storagePath_);
  std::unique_ptr<std::vector<int>> list;
  if (!reader.IsFileExists()) {
    // The package's list is read where it is extracted, then removed again.
    if (extracter_ != nullptr && extracter_->ExtractDefaultFontsList()) {
      list.reset(reader.Read(*fontTable_));
      std::string path = storagePath_ + getFontInfoStorageName() + getDefaultFontsName();
      std::remove(path.c_str());
    }
  } else {
    list.reset(reader.Read(*fontTable_));
  }
  if (!list) return;
  serializer.SetDefaultFontIndexes(*list);
  InitDefaultFontIndexes(*list);
}

bool FontManager::LoadFontChain() {
  if (fontTable_ == nullptr) return false;
  if (extracter_ != nullptr) extracter_->ExtractFontChain();
  FontChainReader reader(storagePath_);
  reader.Read(*fontTable_, fontChains_);
  return true;
}

void FontManager::LoadScriptDefaultFont() {
  if (fontTable_ == nullptr) return;
  std::string path = storagePath_ + getFontInfoStorageName() + getScriptDefaultFontsName();
  const char* language = LangCode::GetLang(uiLangCode_);
  if (extracter_ != nullptr) {
    if (*language != '\0' && extracter_->ExtractScriptDefaultFontsList(language)) {
      path += "_";
      path += language;
    } else {
      extracter_->ExtractScriptDefaultFontsList();
    }
  }
  ScriptDefaultFontsReader reader(path);
  const auto* table = reader.Read(*fontTable_);
  scriptDefaultFontList_.assign(table->begin(), table->end());
}

}  // namespace qro_common
