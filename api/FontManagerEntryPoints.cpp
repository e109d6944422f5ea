// The font manager door: the font paths a host sets before start-up, and
// the creation and destruction of the process-wide font manager.

#include <string>
#include <vector>

#include "api/kelfont.h"
#include "base/Log.h"
#include "base/KeepForProcess.h"
#include "common/manager/FontManager.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "native/DefaultFontManager.h"

namespace {

std::string& sharedFontPath() {
  static std::string* path = new std::string();  // lives until the process ends
  return *path;
}

std::string& userFontPath() {
  static std::string* path = new std::string();
  return *path;
}

}  // namespace

void SetSharedFontPath(const char* path) { sharedFontPath() = path != nullptr ? path : ""; }

void SetUserFontPath(const char* path) { userFontPath() = path != nullptr ? path : ""; }

bool InitFontManager(const char* qrfontZipPath, const char* extractPath) {
  qro_base::logProfile("InitFontManager");
  if (qrfontZipPath == nullptr) {
    qro_base::logProfile("qrfontZipPath is NULL ! ");
    return false;
  }
  if (extractPath == nullptr) {
    qro_base::logProfile("extractPath is NULL ! ");
    return false;
  }
  std::vector<std::string> directories;
  if (!sharedFontPath().empty()) directories.push_back(sharedFontPath());
  if (!userFontPath().empty()) directories.push_back(userFontPath());

  // The extracter is owned by nobody: the manager only borrows it.
  auto* extracter = new qro_ni::DefaultFontInfoFileExtracter(extractPath, qrfontZipPath);
  qro_base::keepForProcess(extracter);
  auto* manager = new qro_ni::DefaultFontManager(extracter, qrfontZipPath, directories);
  bool initialized = manager->Initialize();
  // An earlier manager is replaced, not destroyed.
  if (qro_common::FontManager::instance != nullptr) {
    qro_base::keepForProcess(qro_common::FontManager::instance);
  }
  qro_common::FontManager::instance = manager;
  return initialized;
}

void UnInitFontManager() {
  if (qro_common::FontManager::instance == nullptr) return;
  qro_base::logProfile("UnInitFontManager");
  delete qro_common::FontManager::instance;
  qro_common::FontManager::instance = nullptr;
}
