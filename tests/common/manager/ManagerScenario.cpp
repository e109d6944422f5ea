#include "tests/common/manager/ManagerScenario.h"

#include <filesystem>
#include <stdexcept>

#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/TestFonts.h"
#include "tests/support/TestPackage.h"

namespace kelfont_test {

namespace {

const char* const kRealFonts = "/usr/share/fonts/truetype/";

void link(const std::string& target, const std::string& directory) {
  std::filesystem::path from(target);
  std::filesystem::create_symlink(from, std::filesystem::path(directory) / from.filename());
}

// basic.ttf's characters and kerning pairs with advances n units wider and
// deltas n units smaller.
std::string packageFontData(const ExpectedFace& basic, int n) {
  qro_common::FontInfo info;
  auto* table = new qro_common::CharMetricsInfo();
  info.SetCharMetricsInfo(table);
  for (const auto& entry : basic.chars) {
    font_info_test::addAdvance(*table, entry.first,
                               static_cast<unsigned short>(entry.second.advance + n));
  }
  auto* kerning = new qro_common::KerningInfo();
  info.SetKerningInfo(kerning);
  for (const auto& pair : basic.kerning) {
    kerning->Register(static_cast<int>(pair.first.first), static_cast<int>(pair.first.second),
                      static_cast<short>(pair.second - n));
  }
  return dataFileBytes(info);
}

void buildPackage(const std::string& directory) {
  std::unique_ptr<qro_common::FontInfo> basic = analyzeFontFile(testFontPath("basic.ttf"));
  ExpectedFace expected;
  if (!basic || !loadExpectedFace("basic.ttf", 0, &expected)) {
    throw std::runtime_error("basic.ttf cannot be analysed");
  }
  std::vector<qro_common::FontInfo> owned(kPackageFontCount);
  std::vector<qro_common::FontInfo*> infos;
  TestPackage package;
  for (int n = 0; n < kPackageFontCount; ++n) {
    owned[n].SetFontName(new std::string(packageFontName(n)));
    owned[n].SetFontMetrics(new qro_common::FontMetrics(*basic->GetFontMetrics()));
    infos.push_back(&owned[n]);
    package.add("Fdata/" + std::to_string(n), packageFontData(expected, n));
  }
  if (!package.addFontTable(infos)) throw std::runtime_error("package table not written");
  package.add("fc", "Liberation Serif\nNanumGothic\n\n굴림\nNanumGothic\n\n");
  package.add("df", "DejaVu Sans\n\nDejaVu Sans\n\nNanumGothic\n\nDejaVu Sans\n\nDejaVu Sans\n");
  package.add("sf", "56\nNanumGothic\n");
  package.add("sf_ko-KR", "56\nLiberation Serif\n");
  if (!package.write(directory)) throw std::runtime_error("package not written");
}

}  // namespace

std::string packageFontName(int n) { return (n < 10 ? "Pkg0" : "Pkg") + std::to_string(n); }

const Scenario& Scenario::get() {
  static Scenario* scenario = [] {
    auto* s = new Scenario();
    s->dirA = s->root.file("fontsA");
    s->dirB = s->root.file("fontsB");
    s->packageDir = s->root.file("package");
    for (const std::string& d : {s->dirA, s->dirB, s->packageDir}) {
      std::filesystem::create_directory(d);
    }
    std::string real = kRealFonts;
    link(real + "dejavu/DejaVuSans.ttf", s->dirA);
    link(real + "liberation/LiberationSerif-Regular.ttf", s->dirA);
    for (const char* generated : {"basic.ttf", "wingdings.ttf", "collection.ttc"}) {
      link(testFontPath(generated), s->dirA);
    }
    link(real + "nanum/NanumGothic.ttf", s->dirB);
    buildPackage(s->packageDir);
    return s;
  }();
  return *scenario;
}

ManagerRig start(const std::string& storage, const std::vector<std::string>& directories) {
  ManagerRig rig;
  rig.extracter.reset(
      new qro_ni::DefaultFontInfoFileExtracter(storage, Scenario::get().packageDir + "/"));
  rig.manager.reset(new TestFontManager(rig.extracter.get(), storage, directories));
  rig.manager->Initialize();
  return rig;
}

}  // namespace kelfont_test
