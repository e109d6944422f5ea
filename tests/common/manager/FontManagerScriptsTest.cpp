// The font manager as a host runs it, on real fonts, hostile font folders
// and a default package: the scenarios of tests/data/manager_scripts.tsv.
// Managers are set up as a host would: real fonts linked into two font
// directories, a default package built for them, a storage directory.

#include <ft2build.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "api/KelFontWidth.h"
#include "base/Environment.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUSBType.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/FontMetrics.h"
#include "common/font_info/KerningInfo.h"
#include "common/manager/FontManager.h"
#include "common/manager/Path.h"
#include "common/registry/FontTable.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"
#include "tests/support/Concurrently.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Python.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/support/TestPackage.h"

namespace kelfont_test {
namespace {

namespace fs = std::filesystem;

// A manager on the storage and font directories given (no system fonts).
class TestFontManager : public qro_common::FontManager {
 public:
  TestFontManager(qro_common::FontInfoFileExtracter* extracter, const std::string& storage,
                  const std::vector<std::string>& directories)
      : FontManager(extracter) {
    SetStoragePath(storage);
    for (const std::string& directory : directories) AddFontDirectoryPath(directory);
  }
};

// Directory A: DejaVu Sans, Liberation Serif, basic.ttf, wingdings.ttf,
// collection.ttc (3 faces); B: NanumGothic. The package: 40 package-only
// fonts "Pkg00".."Pkg39" (basic.ttf's record, no file; font n has basic.ttf's
// characters n units wider and its kerning deltas n units smaller); chains
// "Liberation Serif" and "굴림" -> NanumGothic; default fonts DejaVu Sans,
// DejaVu Sans, NanumGothic, DejaVu Sans, NanumGothic; script defaults
// 56 -> NanumGothic ("sf") and 56 -> Liberation Serif ("sf_ko-KR").
struct Scenario {
  TempDir root;
  std::string dirA, dirB, packageDir;
  static const Scenario& get();  // built once per process
};
constexpr int kPackageFontCount = 40;
std::string packageFontName(int n) { return (n < 10 ? "Pkg0" : "Pkg") + std::to_string(n); }

struct ManagerRig {
  std::unique_ptr<qro_ni::DefaultFontInfoFileExtracter> extracter;
  std::unique_ptr<TestFontManager> manager;
  TestFontManager* operator->() const { return manager.get(); }
};

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
  package.add("df", "DejaVu Sans\n\nDejaVu Sans\n\nNanumGothic\n\nDejaVu Sans\n\nNanumGothic\n");
  package.add("sf", "56\nNanumGothic\n");
  package.add("sf_ko-KR", "56\nLiberation Serif\n");
  if (!package.write(directory)) throw std::runtime_error("package not written");
}

// A text with its spaces as "_".
std::string spaced(std::string text) {
  std::replace(text.begin(), text.end(), ' ', '_');
  return text;
}

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

// An initialised manager on `storage` (ending in "/"), with the package
// or with none.
ManagerRig start(const std::string& storage, const std::vector<std::string>& directories,
                 bool package) {
  ManagerRig rig;
  rig.extracter.reset(new qro_ni::DefaultFontInfoFileExtracter(
      storage, package ? Scenario::get().packageDir + "/" : storage + "no-package/"));
  rig.manager.reset(new TestFontManager(rig.extracter.get(), storage, directories));
  rig.manager->Initialize();
  return rig;
}

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

// One query of tests/data/manager_scripts.tsv (its header lists them) and
// the answer; safe to call from several threads at once.
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

// "=FILE:CHAR[+N]": the advance FreeType reads from the font, N units more;
// "~FILE:CHAR[+N]": that advance per em. FILE: dejavu, nanum or a generated font.
std::string reference(const std::string& token) {
  const std::size_t colon = token.find(':');
  const std::size_t plus = token.find_first_of("+-", colon + (token[colon + 1] == 'U' ? 3 : 2));
  std::string file = token.substr(1, colon - 1);
  file = file == "dejavu"  ? "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
         : file == "nanum" ? "/usr/share/fonts/truetype/nanum/NanumGothic.ttf"
                           : testFontPath(file);
  const std::string ch = token.substr(colon + 1, plus - colon - 1);
  FT_Library library;
  FT_Face face;
  FT_Init_FreeType(&library);
  if (FT_New_Face(library, file.c_str(), 0, &face) != 0) {
    FT_Done_FreeType(library);
    return "unreadable:" + file;
  }
  if (face->charmap == nullptr) FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL);
  const unsigned long code = ch.size() == 1 ? ch[0] : std::stoul(ch.substr(2), nullptr, 16);
  EXPECT_EQ(FT_Load_Char(face, code, FT_LOAD_NO_SCALE), 0) << token;
  const long advance = face->glyph->metrics.horiAdvance +
                       (plus == std::string::npos ? 0 : std::stol(token.substr(plus)));
  const long em = face->units_per_EM;
  FT_Done_FreeType(library);
  return number(token[0] == '=' ? double(advance) : double(float(advance) / float(em)));
}

std::string le(unsigned value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
  return bytes;
}

// The mark of the "fi" bytes: FNV-1a's step over the file as 8-byte
// little-endian words (the last zero-padded), the byte count mixed in last.
std::string fingerprint(const std::string& fi) {
  std::uint64_t hash = 14695981039346656037ull;
  const std::string padded = fi + std::string((8 - fi.size() % 8) % 8, '\0');
  for (std::size_t i = 0; i < padded.size(); i += 8) {
    std::uint64_t word = 0;
    for (int b = 0; b < 8; ++b)
      word |= std::uint64_t(static_cast<unsigned char>(padded[i + b])) << (8 * b);
    hash = (hash ^ word) * 1099511628211ull;
  }
  hash ^= fi.size();
  return le(static_cast<unsigned>(hash), 4) + le(static_cast<unsigned>(hash >> 32), 4);
}

// gpos_kern.ttf's pairs as fontTools reads them; none without HarfBuzz.
std::map<std::pair<int, int>, int> gposPairs() {
  std::map<std::pair<int, int>, int> pairs;
  std::ifstream in(testFontPath("expected_gpos_kern.txt"));
  for (int l, r, v; qro_common::hasGposKerning() && in >> l >> r >> v;) pairs[{l, r}] = v;
  return pairs;
}

// Every printable-ASCII pair against gposPairs(): the first that differs, or "ok".
std::string pairsDiffer(const std::function<int(int, int)>& kerning) {
  const auto want = gposPairs();
  for (int l = 32; l < 127; ++l) {
    for (int r = 32; r < 127; ++r) {
      auto it = want.find({l, r});
      if (kerning(l, r) != (it == want.end() ? 0 : it->second))
        return std::to_string(l) + "," + std::to_string(r);
    }
  }
  return "ok";
}

// The first character of a generated font in a range slot (1 in `every`) whose advance `answer`
// tells otherwise, else how many were checked.
std::string advancesDiffer(const std::string& file, unsigned every,
                           const std::function<int(unsigned)>& answer) {
  int checked = 0;
  for (const auto& [code, ch] : expectedFace(file).chars) {
    const int usb = qro_common::FontUSBType::GetUSBType(code);
    if (usb == 57 || (usb > 122 && usb != 127) || code % every != 0) continue;
    if (answer(code) != ch.advance) return "U+" + std::to_string(code);
    ++checked;
  }
  return std::to_string(checked);
}
int advance(const qro_common::CharMetrics* metrics) { return metrics ? metrics->GetAdvance() : -1; }

// Advances by style and code point of the static instances of a variable
// font, as a TrueType composite takes them: from its last component flagged
// USE_MY_METRICS, when one is.
const char* kInstancer = R"(
import sys
from fontTools.ttLib import TTFont
from fontTools.varLib import instancer
path = sys.argv[1]
base = TTFont(path)
for inst in base['fvar'].instances:
    style = base['name'].getDebugName(inst.subfamilyNameID)
    if style not in sys.argv[2:]:
        continue
    font = TTFont(path)
    for tag in ('GSUB', 'GPOS', 'GDEF'):  # no part of the advances; slow to instance
        if tag in font:
            del font[tag]
    font = instancer.instantiateVariableFont(font, inst.coordinates)
    glyf = font['glyf']
    for code, glyph in font.getBestCmap().items():
        while glyf[glyph].isComposite():
            mine = [c.glyphName for c in glyf[glyph].components if c.flags & 0x200]
            if not mine:
                break
            glyph = mine[-1]
        print(style.replace(' ', '_'), code, font['hmtx'][glyph][0])
)";

// One script: a storage folder, the font folders, the manager started last.
struct Script {
  const Scenario& scenario = Scenario::get();
  TempDir root;
  const std::string storage = root.file("storage") + "/";
  std::string folder = root.file("fonts");
  std::vector<std::string> dirs;
  bool package = true;
  ManagerRig rig;
  std::unique_ptr<FileSizeLimit> limit;
  std::unique_ptr<CKelFontWidth> facade;
  LogCapture log;
  unsigned long opens = qro_common::FontFileAnalyzer::GetOpenCount();
  std::map<std::string, std::pair<std::string, fs::file_time_type>> kept;

  explicit Script(const std::string& setup) {
    if (setup == "scenario" || setup == "threads") dirs = {scenario.dirA, scenario.dirB};
    if (setup == "deep") {
      while (folder.size() < 2300) folder += "/" + std::string(200, 'd');
    }
    if (setup == "folder" || setup == "deep" || setup.rfind("gpos", 0) == 0) {
      fs::create_directories(folder);
      dirs = {folder};
      package = false;
    }
  }
  // A cache file: "@FONT" is the data file of the font's regular face.
  std::string file(const std::string& name) {
    if (name[0] != '@') return storage + "FInfo/" + name;
    const qro_common::FontInfo* info =
        rig->GetFontInfo(rig->GetFontIndex(name.substr(1)), false, false);
    return storage + "FInfo/Fdata/" + std::to_string(info != nullptr ? info->GetInfoIndex() : -1);
  }
  // A cache file's bytes and time; "*": every cache file by name, the table
  // without its font folder times.
  std::pair<std::string, fs::file_time_type> contents(const std::string& name) {
    if (name != "*") return {readFile(file(name)), fs::last_write_time(file(name))};
    std::map<std::string, std::string> files = readFiles(storage + "FInfo");
    std::string& table = files["Ftable"];
    table.erase(26, 4 + std::stoul(table.substr(26, 4), nullptr, 16));
    std::string all;
    for (const auto& [path, bytes] : files) all += path + "\n" + bytes;
    return {all, {}};
  }
  std::string call(const std::string& token);
  std::string killed(int trials);
};

// Writers of this start's cache killed at random times in their first two rounds, `trials` times,
// the two caches they write in turn differing in the table's default font indexes: the first file
// left neither old nor new, or the first style of KelTest Basic (basic, bold, italic.ttf in F)
// whose advances a later start on the cache left does not answer; else whether a tenth of the kills
// cut a write short, "/", whether both caches were found.
std::string Script::killed(int trials) {
  const char* const kStyles[] = {"basic.ttf", "bold.ttf", "italic.ttf"};
  std::vector<qro_common::FontInfo*> infos;
  qro_common::DefaultFontInfo defaults;
  qro_common::FontInfoSerializer reader(storage);
  if (!reader.Read(infos) || !reader.ReadDefaultFontInfo(defaults)) return "unread";
  const std::vector<std::unique_ptr<qro_common::FontInfo>> owned(infos.begin(), infos.end());
  for (qro_common::FontInfo* info : infos) reader.ReadData(*info);
  std::vector<const std::string*> directories{&folder};
  auto write = [&](const std::string& base, int variant) {
    qro_common::FontInfoSerializer serializer(base);
    serializer.SetDefaultFontIndexes(std::vector<int>(5, variant));
    for (qro_common::FontInfo* info : infos) serializer.WriteData(*info);
    serializer.Write(infos, directories);
    serializer.WriteDefaultFontInfo(defaults);
  };
  std::map<std::string, std::string> variants[2];
  const auto started = std::chrono::steady_clock::now();
  for (int v = 0; v < 2; ++v) {
    write(root.file("variant" + std::to_string(v)) + "/", v);
    variants[v] = readFiles(root.file("variant" + std::to_string(v)) + "/FInfo");
  }
  const auto round = (std::chrono::steady_clock::now() - started) / 2;
  std::mt19937 random(20261122);
  int cut = 0, found = 0;
  for (int trial = 0; trial < trials; ++trial) {
    fs::remove_all(storage);
    fs::copy(root.file("variant0"), storage, fs::copy_options::recursive);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
      for (int n = 1;; ++n) write(storage, n % 2);
    }
    std::this_thread::sleep_for(round * std::uniform_real_distribution<>(0, 2)(random));
    if (child < 0 || kill(child, SIGKILL) != 0 || waitpid(child, nullptr, 0) != child) return "!";
    std::size_t whole = 0;
    bool halfWritten = false;
    for (const auto& [name, bytes] : readFiles(storage + "FInfo")) {
      halfWritten |= name.find(".tmp") != std::string::npos;
      if (name.find(".tmp") != std::string::npos) continue;
      if (bytes != variants[0][name] && bytes != variants[1][name]) return name;
      found += name == "Ftable" && bytes == variants[1][name];
      ++whole;
    }
    cut += halfWritten;
    if (whole != variants[0].size()) return "missing";
    // The manager trusts the cache (it opens no font), the facade reads it.
    call("opens");
    if (call("S") != "." || call("opens") != "0" || call("F") != "0/0") return "not trusted";
    for (int style = 0; style < 3; ++style) {
      const bool bold = style == 1, italic = style == 2;
      const int font = facade->GetFontIndex("KelTest Basic");
      const std::string differs = advancesDiffer(kStyles[style], 1, [&](unsigned code) {
        int answer = -1;
        facade->GetFontCharInfo(font, int(code), bold, italic, answer);
        const int mine = advance(rig->GetCharMetrics("KelTest Basic", code, bold, italic));
        return mine == answer ? answer : -2;
      });
      if (differs[0] == 'U') return kStyles[style] + differs;
    }
  }
  return std::to_string(cut > trials / 10) + "/" + std::to_string(found > 0 && found < trials);
}

std::string Script::call(const std::string& token) {
  const std::vector<std::string> a = callFields(token);
  const std::string& op = a[0];
  if (op == "S") {  // (re)start, with a file size limit or in an interface language
    rig = ManagerRig();
    limit.reset();
    if (std::isdigit(static_cast<unsigned char>(a[1][0])))
      limit.reset(new FileSizeLimit(std::stoul(a[1])));
    qro_base::Environment& environment = qro_base::ensureEnvironment();
    const qro_base::Locale saved = environment.GetUILocale();
    if (!a[1].empty() && !limit)
      environment.SetUILocale(qro_base::Locale(a[1].substr(0, 2), a[1].substr(3)));
    rig = start(storage, dirs, package);
    environment.SetUILocale(saved);
    return ".";
  }
  if (op == "opens") {
    const unsigned long now = qro_common::FontFileAnalyzer::GetOpenCount();
    return std::to_string(now - std::exchange(opens, now));
  }
  if (op == "log") return log.taken(a[1], storage);
  if (op == "exists") return std::to_string(fs::exists(file(a[1])));
  if (op == "keep") {
    if (a[1] != "*" && !fs::exists(file(a[1]))) return "missing";
    kept[a[1]] = contents(a[1]);
    return ".";
  }
  if (op == "same") {
    const auto& [bytes, time] = kept[a[1]];
    const auto now = contents(a[1]);
    return now.first != bytes ? "changed" : now.second != time ? "rewritten" : "same";
  }
  if (op ==
      "I") {  // the records of a variable font of F against fontTools' instances of the styles
    std::vector<std::string> args{folder + "/" + a[1]};
    for (std::size_t i = 2; i < a.size() && !a[i].empty(); ++i) args.push_back(a[i]);
    std::string output;
    if (!runPython(kInstancer, args, &output)) return "!";
    std::map<std::string, std::map<unsigned, int>> advances;
    std::istringstream lines(output);
    std::string style;
    for (unsigned code = 0, advance = 0; lines >> style >> code >> advance;) {
      advances[callFields(style)[0]][code] = static_cast<int>(advance);
    }
    const qro_common::FontTable& table = *rig->GetFontTable();
    qro_common::FontInfoSerializer serializer(storage);
    std::string family;
    for (int i = 0; i < table.GetFontInfoCount(); ++i) {
      qro_common::FontInfo& info = *table.GetFontInfo(i);
      if (info.GetFilePath() == nullptr || *info.GetFilePath() != args[0] || !info.GetStyleName() ||
          advances.count(*info.GetStyleName()) == 0 || !serializer.ReadData(info)) {
        continue;
      }
      family = *info.GetFontName();
      std::size_t checked = 0;
      for (const auto& [code, advance] : advances[*info.GetStyleName()]) {
        const qro_common::CharMetrics* metrics = info.GetCharMetricsInfo()->GetCharMetrics(code);
        if (metrics != nullptr && metrics->GetAdvance() != advance)
          return "U+" + std::to_string(code);
        checked += metrics != nullptr;
      }
      if (checked <= advances[*info.GetStyleName()].size() / 2)
        return *info.GetStyleName() + ":few";
    }
    for (bool bold : {false, true}) {  // what regular and bold queries take
      const qro_common::CharMetrics* metrics = rig->GetCharMetrics(family, 'A', bold, false);
      if (metrics == nullptr || metrics->GetAdvance() != advances[bold ? "Bold" : "Regular"]['A']) {
        return bold ? "bold" : "regular";
      }
    }
    return std::to_string(advances.size());
  }
  if (op == "T") {  // eight threads at once against a manager of its own
    ManagerRig reference = start(root.file("reference") + "/", dirs, package);
    const int fonts = rig->GetFontTable()->GetFontCount();
    const std::vector<std::string> queries = everyFont({a.begin() + 1, a.end()}, -1, fonts - 1);
    std::vector<std::string> expected;
    for (const std::string& q : queries) expected.push_back(ask(*reference.manager, q));
    std::atomic<int> kerned{0};
    auto same = [&](std::size_t i) {
      const std::string got = ask(*rig.manager, queries[i]);
      if (queries[i][0] != 'k') return got == expected[i];
      if (got == "0") return true;  // dropped again between loading and asking
      ++kerned;
      return got == expected[i];
    };
    const int wrong = askedAtOnce(queries.size(), 1, same, [&] { rig->ClearCacheInfo(); });
    const std::size_t loaded = rig->GetLoadedFontInfos().size();
    qro_base::DeferredDeleter& retired = rig->GetFontTable()->GetDeferredDeleter();
    retired.Collect();
    retired.Collect();
    return std::to_string(wrong) + "/" + std::to_string(kerned > 0) + "/" +
           std::to_string(loaded <= qro_common::FontManager::kMaxLoadedBeforeEviction + 1) + "/" +
           std::to_string(retired.PendingCount());
  }
  if (op == "kill") return killed(std::stoi(a[1]));
  if (op == "K") {
    const int font = rig->GetFontIndex(a[1]);
    return pairsDiffer(
        [&](int l, int r) { return rig->GetKerningWidth(font, false, false, l, r); });
  }
  if (op == "F") {  // the facade on this storage
    facade.reset(new CKelFontWidth());
    facade->SetExtractPath(storage.c_str());
    const int serializer = facade->InitFontInfoSerializer();
    return std::to_string(serializer) + "/" + std::to_string(facade->InitFontTable());
  }
  if (op == "FK") {
    const int font = facade->GetFontIndex(a[1].c_str());
    return pairsDiffer([&](int l, int r) {
      int delta = 1;
      return facade->GetKerningInfo(font, false, false, l, r, delta) == 0 ? delta : -9999;
    });
  }
  if (op == "bytes") {  // N bytes from AT (from the end when negative)
    const std::string bytes = readFile(file(a[1]));
    const long at = std::stol(a[2]);
    return spaced(bytes.substr(at < 0 ? bytes.size() + at : at, std::stoul(a[3])));
  }
  if (op == "kerned") {  // the kept file, its empty kerning part and "left" flag now gposPairs()
    const auto pairs = gposPairs();
    std::string bytes = le(unsigned(pairs.size()), 4);
    for (const auto& [pair, delta] : pairs)
      bytes += le(unsigned(pair.first), 4) + le(unsigned(pair.second), 4) + le(unsigned(delta), 2);
    const std::string& old = kept[a[1]].first;
    const std::string now =
        old.substr(0, old.size() - 24) + bytes + le(0, 4) + old.substr(old.size() - 16);
    return readFile(file(a[1])) == now ? "ok" : "differs";
  }
  if (op == "spoil") {  // halved, or with the byte at OFFSET changed
    std::string bytes = readFile(file(a[1]));
    if (a[2].empty()) bytes.resize(bytes.size() / 2);
    if (!a[2].empty()) bytes[std::stoul(a[2])] ^= 1;
    return writeFile(file(a[1]), bytes) ? "." : "!";
  }
  if (op == "fx") {  // "fx" holds the mark of "fi", then the codes given, each a run of FONT
    std::string runs;
    for (std::size_t i = 2; i < a.size() && !a[i].empty(); ++i) {
      const unsigned code = std::stoul(a[i].substr(2), nullptr, 16);
      runs += le(code, 4) + le(code, 4) + le(static_cast<unsigned>(rig->GetFontIndex(a[1])), 2);
    }
    const std::string fi = readFile(file("fi"));
    return readFile(file("fx")) == fingerprint(fi) + le(unsigned(runs.size() / 10), 4) + runs
               ? "ok"
               : "differs";
  }
  if (op == "version") {  // the table of another version, and a stale data file
    const std::string table = readFile(file("Ftable"));
    const bool written =
        writeFile(file("Ftable"), table.substr(0, 20) + "1.000" + table.substr(25));
    return written && writeFile(file("Fdata/999"), "stale") ? "." : "!";
  }
  if (op == "touch") {
    const std::string& dir = dirs[std::stoul(a[1])];
    fs::last_write_time(dir, fs::last_write_time(dir) - std::chrono::hours(1));
    return ".";
  }
  if (op == "update") return std::to_string(rig->Update());
  if (op == "datafiles") {
    return std::to_string(
        std::distance(fs::directory_iterator(file("Fdata")), fs::directory_iterator()));
  }
  if (op == "load") {  // package fonts 1..N
    for (int n = 1; n <= std::stoi(a[1]); ++n) {
      if (rig->GetCharMetrics(rig->GetFontIndex(packageFontName(n)), 'A', false, false) == nullptr)
        return "!";
    }
    return ".";
  }
  const std::string path = folder + "/" + a[1];
  if (op == "font") {  // a copy of a generated font, cut short or with bytes replaced
    const std::string source = spaced(a[2]);
    std::string bytes = source.empty()     ? ""
                        : source[0] == '/' ? readFile(source)
                                           : readFile(testFontPath(source));
    if (!a[3].empty() && a[3][0] == '@')
      bytes.replace(std::stoul(a[3].substr(1)), a[4].size() / 2, unhex(a[4]));
    if (!a[3].empty() && a[3][0] != '@') bytes.resize(std::stoul(a[3]));
    return writeFile(path, bytes) ? "." : "!";
  }
  if (op == "dir") return fs::create_directory(path) ? "." : "!";
  if (op == "link") return symlink((folder + "/" + a[2]).c_str(), path.c_str()) == 0 ? "." : "!";
  if (op == "renamed") {  // basic.ttf as FAMILY STYLE, with the Korean code page when "cjk"
    const char* program = R"(
import sys
from fontTools.ttLib import TTFont
src, dst, family, style, cjk = sys.argv[1:]
font = TTFont(src)
for record in font['name'].names:
    if record.nameID in (1, 16): record.string = family
    if record.nameID in (2, 17): record.string = style
    if record.nameID in (4, 6): record.string = family + ' ' + style
if cjk: font['OS/2'].ulCodePageRange1 |= 1 << 19
font.save(dst)
)";
    return runPython(program, {testFontPath("basic.ttf"), path, a[2], a[3], a[4]}) ? "." : "!";
  }
  if (op == "D") {  // every character of a generated font in a range slot, 1 in 61
    return advancesDiffer(a[2], 61, [&](unsigned code) {
      return advance(rig->GetCharMetrics(a[1], code, false, false));
    });
  }
  std::string answer = ask(*rig.manager, token);
  for (const auto& [dir, mark] :
       {std::pair{folder, "F"}, {scenario.dirA, "A"}, {scenario.dirB, "B"}}) {
    for (std::size_t at; (at = answer.find(dir + "/")) != std::string::npos;)
      answer.replace(at, dir.size(), mark);
  }
  return answer;
}

// The lines of tests/data/manager_scripts.tsv whose setup `pick` takes; "gpos-hb" lines run
// with HarfBuzz, "gpos-nohb" lines without.
void runLines(const std::function<bool(const std::string&)>& pick) {
  const char* android = std::getenv("KELFONT_ANDROID_FONTS");
  for (const Case& c : cases("manager_scripts.tsv")) {
    if (!pick(c[0]) || c[0] == (qro_common::hasGposKerning() ? "gpos-nohb" : "gpos-hb")) continue;
    Script script(c[0] == "android" ? "folder" : c[0]);
    std::string calls = c[1];
    if (calls.find("$ANDROID") != std::string::npos)
      calls.replace(calls.find("$ANDROID"), 8, android);
    const std::string expected = answers(c[2], [](const std::string& token) {
      return token[0] == '=' || token[0] == '~' ? reference(token) : token;
    });
    EXPECT_EQ(answers(calls, [&](const std::string& token) { return script.call(token); }),
              expected)
        << c.line;
  }
}

bool gpos(const std::string& setup) { return setup.rfind("gpos", 0) == 0; }

TEST(FontManagerScripts, Lines) {
  runLines([](const std::string& s) { return s != "android" && s != "threads" && !gpos(s); });
}

// Run under ThreadSanitizer and AddressSanitizer in CI.
TEST(FontManagerConcurrency, Lines) {
  runLines([](const std::string& setup) { return setup == "threads"; });
}

// The lines on gpos_kern.ttf: kerning on first use, characters without a range (also run in
// builds without HarfBuzz).
TEST(KerningOnFirstUse, Lines) { runLines(gpos); }

TEST(FontManagerScripts, AndroidFonts) {
  const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
  if (folder == nullptr || *folder == '\0') {
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh DIR makes the set)";
  }
  runLines([](const std::string& setup) { return setup == "android"; });
}

}  // namespace
}  // namespace kelfont_test
