// The members of the facade that drive the font manager door.

#include "api/KelFontWidth.h"
#include "base/KeepForProcess.h"
#include "common/manager/FontManager.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "native/DefaultFontManager.h"

// Extracters are never destroyed: managers borrow them, and a replaced
// manager may still be in use.
int CKelFontWidth::InitExtracter() {
  extracter_ = new qro_ni::DefaultFontInfoFileExtracter(extractPath_, programPath_);
  qro_base::keepForProcess(extracter_);
  return 0;
}

bool CKelFontWidth::InitFontManager() {
  extracter_ = new qro_ni::DefaultFontInfoFileExtracter(extractPath_, programPath_);
  qro_base::keepForProcess(extracter_);
  auto* manager = new qro_ni::DefaultFontManager(extracter_, programPath_, fontPathList_);
  bool initialized = manager->Initialize();
  // An earlier manager is replaced, not destroyed.
  if (qro_common::FontManager::instance != nullptr) {
    qro_base::keepForProcess(qro_common::FontManager::instance);
  }
  qro_common::FontManager::instance = manager;
  return initialized;
}

void CKelFontWidth::UnInitFontManager() {
  if (qro_common::FontManager::instance == nullptr) return;
  delete qro_common::FontManager::instance;
  qro_common::FontManager::instance = nullptr;
}
