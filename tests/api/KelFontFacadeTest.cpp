// The facade through the public entry points only, on caches written with
// the serializer (a face a line of tests/data/facade_faces.tsv, whose header
// tells the fields; record i on line i): the scripts of
// tests/data/facade_scripts.tsv. The font manager's entry points, the facade
// class's start-up steps on objects of its own and the default manager's
// folders: the scripts of tests/data/entry_points.tsv.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "base/Environment.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/FontTable.h"
#include "native/DefaultFontManager.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"
#include "tests/support/Concurrently.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::Case;
using kelfont_test::codeOf;
using qro_common::FontInfo;

// The face of line `c`; `dataFile` gets the kind of data file it asks for.
std::unique_ptr<FontInfo> makeInfo(const Case& c, int index, std::string* dataFile) {
  std::unique_ptr<FontInfo> info(new FontInfo());
  info->SetInfoIndex(index);
  info->SetFontName(new std::string(c[0]));
  info->SetFamilyName(new std::string(c[0]));
  if (!c[1].empty()) info->SetStyleName(new std::string(c[1]));
  info->SetFilePath(new std::string("/fonts/" + c[0] + ".ttf"));
  std::map<unsigned, int> advances;
  std::unique_ptr<qro_common::KerningInfo> kerning(new qro_common::KerningInfo());
  int units = 0, plus = 0;
  bool emptyTable = false;
  if (!c[2].empty()) {  // a generated font as the font generator read it back
    const kelfont_test::ExpectedFace face = kelfont_test::expectedFace(c[2]);
    units = face.unitsPerEm;
    for (const auto& [code, ch] : face.chars) advances[code] = ch.advance;
    for (const auto& [pair, delta] : face.kerning)
      kerning->Register(int(pair.first), int(pair.second), short(delta));
  }
  if (!c[3].empty()) units = static_cast<int>(c.num(3));
  std::istringstream words(c[4]);
  for (std::string word; std::getline(words, word, ';');) {
    const size_t eq = word.find('=');
    const std::string key = word.substr(0, eq), value = word.substr(eq + 1);
    if (key == "bands") {
      unsigned code = 0x21;
      for (const Case& band : kelfont_test::cases("bold_bands.tsv"))
        advances[code++] = static_cast<int>(band.num(0));
    } else if (key.rfind("U+", 0) == 0) {
      advances[std::stoul(key.substr(2), nullptr, 16)] = std::stoi(value);
    } else if (key == "kern") {
      kerning->Register(value[0], value[2], static_cast<short>(std::stoi(value.substr(4))));
    } else if (key == "plus") {
      plus = std::stoi(value);
    } else if (key == "empty") {
      emptyTable = true;
    } else if (key == "missing" || key == "truncated" || key == "damaged") {
      *dataFile = key;
    } else {
      info->AddLocalizedName(std::stoi(key, nullptr, 16), value);
    }
  }
  if (units > 0)
    info->SetFontMetrics(
        new qro_common::FontMetrics(800, -200, 0, static_cast<unsigned short>(units)));
  if (!advances.empty() || emptyTable) {
    auto* metrics = new qro_common::CharMetricsInfo();
    for (const auto& [code, advance] : advances)
      font_info_test::addAdvance(*metrics, code, static_cast<unsigned short>(advance + plus));
    info->SetCharMetricsInfo(metrics);
  }
  if (kerning->GetCount() > 0) info->SetKerningInfo(kerning.release());
  return info;
}

bool writeData(qro_common::FontInfoSerializer& serializer, FontInfo& info,
               const std::string& kind) {
  std::string path =
      serializer.GetBasePath() + "FInfo/Fdata/" + std::to_string(info.GetInfoIndex());
  if (kind == "missing") return true;
  if (kind == "damaged") {  // slot 0 holds a single range from 0x7F down to 0x20
    return kelfont_test::writeFile(
        path,
        std::string("\x01\x7F\x00\x00\x00\x20\x00\x00\x00\x00\x00", 11) + std::string(127, '\0'));
  }
  if (!serializer.WriteData(info)) return false;
  const std::string bytes = kelfont_test::readFile(path);
  return kind != "truncated" || kelfont_test::writeFile(path, bytes.substr(0, bytes.size() / 2));
}

// Writes the table and the data files of `faces` (lines of tests/data/facade_faces.tsv; record i
// is faces[i]) under `base` (a folder path ending in "/"). False when something could not be
// written.
bool writeCache(const std::string& base, const std::vector<Case>& faces) {
  qro_common::FontInfoSerializer serializer(base);
  std::vector<std::unique_ptr<FontInfo>> infos;
  std::vector<FontInfo*> list;
  std::vector<std::string> dataFiles(faces.size());
  for (size_t i = 0; i < faces.size(); ++i) {
    infos.push_back(makeInfo(faces[i], static_cast<int>(i), &dataFiles[i]));
    list.push_back(infos.back().get());
  }
  std::vector<const std::string*> directories;
  if (!serializer.Write(list, directories)) return false;
  for (size_t i = 0; i < faces.size(); ++i) {
    if (!writeData(serializer, *infos[i], dataFiles[i])) return false;
  }
  return true;
}

// Rewrites the data file of record `index` from line `index` of facade_faces.tsv with `words`
// added.
bool writeDataFile(const std::string& base, int index, const std::string& words) {
  Case face = kelfont_test::cases("facade_faces.tsv").at(static_cast<size_t>(index));
  face.fields.resize(5);
  face.fields[4] += ";" + words;
  std::string dataFile;
  qro_common::FontInfoSerializer serializer(base);
  return serializer.WriteData(*makeInfo(face, index, &dataFile));
}

// "status/value", the value left out when the call did not set it.
constexpr int kUnset = -12345;
std::string said(int status, int value) {
  return std::to_string(status) + (value == kUnset ? "" : "/" + std::to_string(value));
}
std::string charInfo(int font, int ch, bool bold = false, bool italic = false) {
  int advance = kUnset;
  const int status = GetFontCharInfo(font, ch, bold, italic, advance);
  return said(status, advance);
}
// Starts the facade on `base`; it must say so on standard output.
void init(const std::string& base) {
  testing::internal::CaptureStdout();
  ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
}

std::string directories(qro_common::FontManager* manager) {
  if (manager == nullptr) return "none";
  std::string out;
  for (const std::string* path : manager->GetFontDirectoryPathList())
    out += (out.empty() ? "" : "+") + *path;
  return out;
}

// A line of the scripts: its folder ("$" in calls and answers), the cache it starts on, the log
// since the last look, a facade object and a default manager of its own.
struct Line {
  kelfont_test::TempDir dir;
  std::string base;
  kelfont_test::LogCapture log;
  std::unique_ptr<CKelFontWidth> facade;
  std::unique_ptr<qro_ni::DefaultFontManager> own;
  ~Line() {
    UnInitFontManager();
    SetSharedFontPath("");
    SetUserFontPath("");
  }
  std::string call(const std::string& token);
};

// One call of tests/data/facade_scripts.tsv or entry_points.tsv and its answer.
std::string Line::call(const std::string& token) {
  std::vector<std::string> a = kelfont_test::callFields(token);
  for (std::string& field : a) {
    if (field[0] == '$') field.replace(0, 1, dir.path());
  }
  const std::string& op = a[0];
  auto number = [&](size_t i) { return static_cast<int>(std::stol(a[i], nullptr, 0)); };
  const std::string& style = op == "c" ? a[3] : op == "e" || op == "x" || op == "K" ? a[2] : a[4];
  const bool bold = style.find('b') != std::string::npos,
             italic = style.find('i') != std::string::npos;
  int value = kUnset;
  if (op == "x" || op == "K") {  // every advance or kerning pair of a generated face
    const kelfont_test::ExpectedFace face = kelfont_test::expectedFace(a[1]);
    int checked = 0;
    for (const auto& [ch, glyph] : face.chars) {
      if (op == "x" && charInfo(0, int(ch), bold, italic) != "0/" + std::to_string(glyph.advance))
        return "U+" + std::to_string(ch);
      checked += op == "x";
    }
    for (const auto& [pair, delta] : face.kerning) {
      if (op == "K" && (GetKerningInfo(0, bold, false, int(pair.first), int(pair.second), value) ||
                        value != delta))
        return "U+" + std::to_string(pair.first);
      checked += op == "K";
    }
    return std::to_string(checked);
  }
  if (op == "B") {  // Gulim's bands in every style
    const std::vector<Case> bands = kelfont_test::cases("bold_bands.tsv");
    for (size_t i = 0; i < bands.size(); ++i) {
      const int ch = static_cast<int>(0x21 + i);
      const std::string bolder = "0/" + bands[i][1], plain = "0/" + bands[i][0];
      if (charInfo(1, ch, true) != bolder || charInfo(1, ch, true, true) != bolder ||
          charInfo(1, ch, false, true) != plain) {
        return "band" + std::to_string(i);
      }
    }
    return std::to_string(bands.size());
  }
  // Eight threads ask at once while the loaded data is cleared: the calls that answer otherwise
  // than one thread did, and what is left to free once they are gone.
  if (op == "T") {
    const int fonts = gKelFontWidth->_GetFontTable()->GetFontCount();
    const auto queries = kelfont_test::everyFont({a.begin() + 1, a.end()}, -1, fonts);
    std::vector<std::string> expected;
    for (const std::string& q : queries) expected.push_back(call(q));
    auto same = [&](std::size_t i) { return call(queries[i]) == expected[i]; };
    const int wrong = kelfont_test::askedAtOnce(queries.size(), 3, same, ClearKelFontCacheInfo);
    qro_base::DeferredDeleter& retired = gKelFontWidth->_GetFontTable()->GetDeferredDeleter();
    retired.Collect();
    retired.Collect();
    return std::to_string(wrong) + "/" + std::to_string(retired.PendingCount());
  }
  if (op == "t") {  // the kerning clock since the last look: s started, e ended
    const std::clock_t none = static_cast<std::clock_t>(-1), start = std::exchange(startTime, none),
                       end = std::exchange(endTime, none);
    return std::string(start != none ? "s" : "") + (end != none ? "e" : "") +
           (start <= end || end == none ? "" : "!");
  }
  if (op == "a")
    return kelfont_test::number(gKelFontWidth->AdjustAdvanceRatio(number(1), std::stof(a[2])));
  if (op == "c") return charInfo(number(1), int(codeOf(a[2])), bold, italic);
  if (op == "e") {
    const int status = GetFontEmSquareFUnit(number(1), bold, italic, value);
    return said(status, value);
  }
  if (op == "k") {
    const int status =
        GetKerningInfo(number(1), bold, italic, int(codeOf(a[2])), int(codeOf(a[3])), value);
    return said(status, value);
  }
  if (op == "n") return std::to_string(GetFontIndex(a[1].c_str()));
  if (op == "?") return std::to_string(IsKelFontInitialized());
  if (op == "w") return std::to_string(std::filesystem::exists("FInfo"));
  if (op == "d") return writeDataFile(base, number(1), a[2]) ? "." : "!";
  if (op == "L") {
    for (int i = 0; i <= 20; ++i) {
      if (charInfo(9 + i, 'A') != "0/" + std::to_string(100 + i)) return "!";
    }
  }
  if (op == "S") {  // a start-up on the running facade with a cache of eviction faces 0..4
    const std::vector<Case> faces = kelfont_test::cases("facade_faces.tsv");
    CKelFontWidth* running = gKelFontWidth;
    const std::string second = std::filesystem::current_path().string() + "/second/";
    if (!writeCache(second, {faces.begin() + 13, faces.begin() + 18})) return "!";
    init(second);
    return gKelFontWidth == running ? "same" : "new";
  }
  if (op == "C") ClearKelFontCacheInfo();
  if (op == "U") UnInitKelFont();
  if (op == "I") init(base);
  auto path = [&](size_t i) { return a[i] == "-" ? nullptr : a[i].c_str(); };
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

// The cache of a script: the standard one, with more faces than stay loaded, none (in a folder, at
// no path, through a file), or its table damaged.
std::string prepare(const kelfont_test::TempDir& dir, const std::string& kind) {
  const std::string base = dir.path() + "/", table = base + "FInfo/Ftable";
  if (kind == "none" || kind == "-") return base;
  if (kind == "nopath") return "";
  if (kind == "infile") {
    EXPECT_TRUE(kelfont_test::writeFile(base + "plain", "a file"));
    return base + "plain/cache/";
  }
  std::vector<Case> faces = kelfont_test::cases("facade_faces.tsv");
  if (kind == "crowd") {
    for (const Case& face : kelfont_test::cases("facade_crowd.tsv")) faces.push_back(face);
  }
  EXPECT_TRUE(writeCache(base, faces));
  std::string bytes = kelfont_test::readFile(table);
  EXPECT_EQ(bytes.substr(0, 25), "001613Table Version 2.054");
  if (kind == "garbage") bytes = std::string("\xff\x00zz\n", 5) + "0016garbage";
  if (kind == "version") bytes[24] = '3';
  if (kind == "truncated") bytes = bytes.substr(0, bytes.find("KelTest NoMetrics"));
  EXPECT_TRUE(kelfont_test::writeFile(table, bytes));
  return base;
}

// The lines of tests/data/entry_points.tsv and facade_scripts.tsv, each in its folder as the
// working folder; those on the crowd cache or all others.
void runLines(bool crowd) {
  const std::filesystem::path working = std::filesystem::current_path();
  for (const char* file : {"entry_points.tsv", "facade_scripts.tsv"}) {
    for (const kelfont_test::Case& c : kelfont_test::cases(file)) {
      if ((c[0] == "crowd") != crowd) continue;
      Line line;
      std::filesystem::current_path(line.dir.path());
      line.base = prepare(line.dir, c[0]);
      if (c[0] != "-") init(line.base);
      std::string said =
          kelfont_test::answers(c[1], [&](const std::string& t) { return line.call(t); });
      for (size_t at; (at = said.find(line.dir.path())) != std::string::npos;)
        said.replace(at, line.dir.path().size(), "$");
      EXPECT_EQ(said, c[2]) << c.line;
      UnInitKelFont();
      std::filesystem::current_path(working);
    }
  }
}

TEST(KelFontFacadeScripts, Lines) {
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(GetFontIndex(nullptr), -1);
  runLines(false);
  EXPECT_EQ(gKelFontWidth, nullptr);
}

// Run under ThreadSanitizer and AddressSanitizer in CI.
TEST(KelFontFacadeConcurrency, Lines) { runLines(true); }

}  // namespace
