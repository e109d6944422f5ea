#include "tests/common/manager/ManagerScenario.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontMetrics.h"
#include "common/font_info/KerningInfo.h"
#include "common/manager/Path.h"
#include "common/registry/FontTable.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"
#include "tests/support/TestFonts.h"
#include "tests/support/TestPackage.h"

namespace kelfont_test {

namespace {

const char* const kRealFonts = "/usr/share/fonts/truetype/";

void link(const std::string& target, const std::string& directory) {
  std::filesystem::path from(target);
  std::filesystem::create_symlink(from, std::filesystem::path(directory) / from.filename());
}

// Package font n: basic.ttf's record without its file, its characters n
// units wider, its kerning deltas n units smaller.
void buildPackage(const std::string& directory) {
  std::unique_ptr<qro_common::FontInfo> basic = analyzeFontFile(testFontPath("basic.ttf"));
  if (!basic) throw std::runtime_error("basic.ttf cannot be analysed");
  const ExpectedFace expected = expectedFace("basic.ttf");
  std::vector<qro_common::FontInfo> owned(kPackageFontCount);
  std::vector<qro_common::FontInfo*> infos;
  TestPackage package;
  for (int n = 0; n < kPackageFontCount; ++n) {
    owned[n].SetFontName(new std::string(packageFontName(n)));
    owned[n].SetFontMetrics(new qro_common::FontMetrics(*basic->GetFontMetrics()));
    auto* table = new qro_common::CharMetricsInfo();
    for (const auto& [code, ch] : expected.chars)
      font_info_test::addAdvance(*table, code, static_cast<unsigned short>(ch.advance + n));
    auto* kerning = new qro_common::KerningInfo();
    for (const auto& [pair, delta] : expected.kerning)
      kerning->Register(int(pair.first), int(pair.second), static_cast<short>(delta - n));
    owned[n].SetCharMetricsInfo(table);
    owned[n].SetKerningInfo(kerning);
    infos.push_back(&owned[n]);
  }
  if (!package.addFontTable(infos)) throw std::runtime_error("package table not written");
  package.add("fc", "Liberation Serif\nNanumGothic\n\n굴림\nNanumGothic\n\n");
  package.add("df", "DejaVu Sans\n\nDejaVu Sans\n\nNanumGothic\n\nDejaVu Sans\n\nDejaVu Sans\n");
  package.add("sf", "56\nNanumGothic\n");
  package.add("sf_ko-KR", "56\nLiberation Serif\n");
  if (!package.write(directory)) throw std::runtime_error("package not written");
}

}  // namespace

std::string spaced(std::string text) {
  std::replace(text.begin(), text.end(), ' ', '_');
  return text;
}

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

ManagerRig start(const std::string& storage, const std::vector<std::string>& directories,
                 bool package) {
  ManagerRig rig;
  rig.extracter.reset(new qro_ni::DefaultFontInfoFileExtracter(
      storage, package ? Scenario::get().packageDir + "/" : storage + "no-package/"));
  rig.manager.reset(new TestFontManager(rig.extracter.get(), storage, directories));
  rig.manager->Initialize();
  return rig;
}

namespace {

// A font by index or by name; "$LONG" is longname.ttf's family name as the
// table keeps it: its first 82 syllables (246 bytes of UTF-8).
int fontOf(const qro_common::FontManager& manager, const std::string& field) {
  if (!field.empty() && (std::isdigit(static_cast<unsigned char>(field[0])) || field[0] == '-')) {
    return std::stoi(field);
  }
  std::string name = field;
  if (field == "$LONG") {
    name.clear();
    for (int i = 0; i < 82; ++i) {
      const unsigned c = 0xAC00 + (i * 37) % 11172;
      name += {char(0xE0 | c >> 12), char(0x80 | (c >> 6 & 0x3F)), char(0x80 | (c & 0x3F))};
    }
  }
  return manager.GetFontIndex(name);
}

// A path's commands as written: the command's letter, then its points.
struct RecordingPath : qro_graphics::Path {
  std::string out;
  void add(char op, std::initializer_list<float> points) {
    out += op;
    for (size_t i = 0; i < points.size(); ++i) out += (i ? "," : "") + number(points.begin()[i]);
  }
  void reset() override { out += 'R'; }
  void moveTo(float x, float y) override { add('M', {x, y}); }
  void lineTo(float x, float y) override { add('L', {x, y}); }
  void quadTo(float a, float b, float x, float y) override { add('Q', {a, b, x, y}); }
  void cubicTo(float a, float b, float c, float d, float x, float y) override {
    add('C', {a, b, c, d, x, y});
  }
};

// A face: its file when it has one, else its font name.
std::string faceOf(const qro_common::FontInfo* info) {
  if (info == nullptr) return "-1";
  const std::string* path = info->GetFilePath();
  return spaced(path != nullptr ? *path : info->GetFontName() ? *info->GetFontName() : "?");
}

}  // namespace

std::string ask(qro_common::FontManager& m, const std::string& token) {
  const std::vector<std::string> a = callFields(token);
  const std::string& op = a[0];
  const int font = fontOf(m, a[1]);
  const std::string& style = op == "s" ? a[2] : a[3];
  const bool bold = style.find('b') != std::string::npos,
             italic = style.find('i') != std::string::npos;
  auto name = [&](int index) { return index < 0 ? "-1" : spaced(m.GetFontName(index)); };
  qro_base::DeferredDeleter::ReadSection section(m.GetFontTable()->GetDeferredDeleter());
  if (op == "n") return name(font);
  if (op == "r") return number(m.GetCharAdvanceRatio(font, codeOf(a[2]), bold, italic));
  if (op == "a") {
    const qro_common::CharMetrics* metrics = m.GetCharMetrics(font, codeOf(a[2]), bold, italic);
    return std::to_string(metrics == nullptr ? -1 : metrics->GetAdvance());
  }
  if (op == "i") return std::to_string(m.IsVisibleChar(font, codeOf(a[2])));
  if (op == "v") {
    int found = font;
    unsigned ch = codeOf(a[2]);
    const bool substituted = m.ConfirmVisibleChar(found, ch, bold, italic);
    return name(found) + ":" + hex(ch).substr(2) + (substituted ? "*" : "");
  }
  if (op == "g") {
    const int script = a[4].empty() ? -1 : std::stoi(a[4]);
    return number(m.GetGlyphAdvanceRatio(font, script, codeOf(a[2]), bold, italic));
  }
  if (op == "k")
    return std::to_string(m.GetKerningWidth(font, bold, italic, codeOf(a[2]), codeOf(a[3])));
  if (op == "s") {
    return faceOf(a[3].empty() ? m.ResolveSystemFontInfo(font, bold, italic)
                               : m.ResolveSystemFontInfo(font, std::stoi(a[3]), bold, italic));
  }
  if (op == "O" || op == "G") {  // drawn from the pen at (100.7, 50.2)
    RecordingPath path;
    float x = 100.7f, y = 50.2f;
    const int status = op == "O" ? m.OutlineToPath(m.ResolveSystemFontInfo(font, bold, italic),
                                                   codeOf(a[2]), x, y, &path)
                                 : m.GlyphOutlineToPath(m.GetFontInfo(font, bold, italic),
                                                        codeOf(a[2]), x, y, &path);
    return std::to_string(status) + ":" + path.out + ":" + number(x) + "," + number(y);
  }
  if (op == "u") return std::to_string(m.ResolveFontMetrics(font)->GetUnitsPerEm());
  if (op == "b") return std::to_string(m.IsFontBold(font));
  if (op == "B") return spaced(m.GetLocaleFontName(font));
  if (op == "Y") return name(m.GetScriptDefaultFontList().at(std::stoul(a[1])));
  if (op == "Q") return name(m.GetDefaultFontIndex(std::stoi(a[1])));
  const qro_common::FontInfo* info = m.GetFontInfo(font, bold, italic);
  if (op == "p") return faceOf(info);
  if (op == "f") return info == nullptr ? "-1" : std::to_string(info->GetFaceIndex());
  if (op == "L") return std::to_string(info != nullptr && info->GetCharMetricsInfo() != nullptr);
  if (op == "C") return std::to_string(info != nullptr && info->IsCJK());
  const qro_common::FontTable& table = *m.GetFontTable();
  if (op == "c") return std::to_string(table.GetFontInfoCount());
  if (op == "P") {  // every face of the records named so, and its style
    std::vector<std::string> faces;
    for (int i = 0; i < table.GetFontInfoCount(); ++i) {
      const qro_common::FontInfo* record = table.GetFontInfo(i);
      if (record->GetFontName() == nullptr || *record->GetFontName() != a[1]) continue;
      faces.push_back(faceOf(record) + ":" +
                      spaced(record->GetStyleName() ? *record->GetStyleName() : ""));
    }
    std::sort(faces.begin(), faces.end());
    std::string joined;
    for (const std::string& face : faces) joined += (joined.empty() ? "" : "+") + face;
    return joined;
  }
  if (op == "l") {
    const std::vector<const qro_common::FontInfo*> loaded = m.GetLoadedFontInfos();
    return std::to_string(loaded.size()) + ":" + (loaded.empty() ? "" : faceOf(loaded.front()));
  }
  if (op == "m") return std::to_string(m.IsModified());
  return "unknown call";
}

}  // namespace kelfont_test
