// The font manager's entry points, the facade class's start-up steps on
// objects of its own and the default manager's folders: the scripts of
// tests/data/entry_points.tsv.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "base/Environment.h"
#include "common/font_info/FontInfo.h"
#include "native/DefaultFontManager.h"
#include "tests/support/Cases.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

std::string directories(qro_common::FontManager* manager) {
  if (manager == nullptr) return "none";
  std::string out;
  for (const std::string* path : manager->GetFontDirectoryPathList())
    out += (out.empty() ? "" : "+") + *path;
  return out;
}

struct Door {
  kelfont_test::TempDir dir;
  kelfont_test::LogCapture log;
  std::unique_ptr<CKelFontWidth> facade;
  std::unique_ptr<qro_ni::DefaultFontManager> own;
  ~Door() {
    UnInitFontManager();
    SetSharedFontPath("");
    SetUserFontPath("");
  }
  std::string call(const std::string& token);
};

std::string Door::call(const std::string& token) {
  std::vector<std::string> a = kelfont_test::callFields(token);
  for (std::string& field : a) {
    if (field[0] == '$') field.replace(0, 1, dir.path());
  }
  auto path = [&](size_t i) { return a[i] == "-" ? nullptr : a[i].c_str(); };
  const std::string& op = a[0];
  qro_common::FontManager* global = qro_common::FontManager::instance;
  if (op == "init") return std::to_string(InitFontManager(path(1), path(2)));
  if (op == "dirs") return directories(global);
  if (op == "storage") return global == nullptr ? "none" : global->GetStoragePath();
  if (op == "log") return log.taken();  // priority:tag:message
  if (op == "Wx") return std::to_string(facade->InitExtracter());
  if (op == "Wser") return std::to_string(facade->InitFontInfoSerializer());
  if (op == "Wtable") return std::to_string(facade->InitFontTable());
  if (op == "Wmgr") return std::to_string(facade->InitFontManager());
  if (op == "Wc") {
    int advance = 0;
    return std::to_string(facade->GetFontCharInfo(std::stoi(a[1]), 'A', false, false, advance));
  }
  if (op == "Wadj") return kelfont_test::number(facade->AdjustAdvanceRatio(-1, std::stof(a[1])));
  if (op == "probe") return kelfont_test::writeFile(a[1], "x") ? "." : "!";
  if (op == "Ddirs") return directories(own.get());
  if (op == "Dstorage") return own->GetStoragePath().empty() ? "-" : own->GetStoragePath();
  if (op == "env?") return std::to_string(qro_base::Global::pInstance != nullptr);
  if (op == "Dspacing") return std::to_string(own->IsAdjustSpacingFont(own->GetFontIndex(a[1])));
  if (op == "Dcjk") return std::to_string(own->IsCJKExceptFont(own->GetFontIndex(a[1])));
  if (op == "Dbands") {  // every line of tests/data/spacing_bands.tsv (the count)
    const std::vector<kelfont_test::Case> bands = kelfont_test::cases("spacing_bands.tsv");
    for (const kelfont_test::Case& c : bands) {
      if (own->AdjustAdvanceRatio(own->GetFontIndex(c[0]), float(c.num(1))) != float(c.num(2)))
        return c.line;
    }
    return std::to_string(bands.size());
  }
  if (op == "shared") SetSharedFontPath(a[1].c_str());
  if (op == "user") SetUserFontPath(a[1].c_str());
  if (op == "uninit") UnInitFontManager();
  if (op == "W") facade.reset(new CKelFontWidth());
  if (op == "Wzip") facade->SetQrfontZipPath(a[1].c_str());
  if (op == "Wext") facade->SetExtractPath(a[1].c_str());
  if (op == "Wfont") facade->SetFontPath(a[1].c_str());
  if (op == "Wunmgr") facade->UnInitFontManager();
  if (op == "D1") own.reset(new qro_ni::DefaultFontManager(nullptr, a[1], a[2]));
  if (op == "D") {
    std::vector<std::string> list;
    for (size_t i = 2; i < a.size() && !a[i].empty(); ++i) list.push_back(a[i]);
    own.reset(new qro_ni::DefaultFontManager(nullptr, a[1], list));
  }
  if (op == "D0") own.reset(new qro_ni::DefaultFontManager(nullptr));
  if (op == "Du") own->SetUserFontDirectoryPath(new std::string(a[1]));
  if (op == "Dinit") own->Initialize();
  if (op == "Dname") {  // a face named in English and Korean
    auto* info = new qro_common::FontInfo();
    info->SetFontName(new std::string(a[1]));
    info->AddLocalizedName(0x0409, a[1]);
    info->AddLocalizedName(0x0412, a[2]);
    own->Register(info);
  }
  if (op == "Dsets") {
    own->InitializeAdvanceRatioAdjustFontSet();
    own->InitializeAdjustSpacingFontSet();
  }
  if (op == "noenv") {
    delete qro_base::Global::pInstance;
    qro_base::Global::pInstance = nullptr;
  }
  if (op == "env") qro_base::Global::pInstance->SetFileStoragePath(new std::string(a[1]));
  return ".";
}

TEST(EntryPoints, Lines) {
  for (const kelfont_test::Case& c : kelfont_test::cases("entry_points.tsv")) {
    Door door;
    std::string said =
        kelfont_test::answers(c[0], [&](const std::string& t) { return door.call(t); });
    for (size_t at; (at = said.find(door.dir.path())) != std::string::npos;)
      said.replace(at, door.dir.path().size(), "$");
    EXPECT_EQ(said, c[1]) << c.line;
  }
}

}  // namespace
