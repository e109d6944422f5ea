// A font table, and the style slots of one font, driven by the steps of
// tests/data/font_tables.tsv.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/font_info/Storage.h"
#include "common/registry/DefaultFontsReader.h"
#include "common/registry/FontChainReader.h"
#include "common/registry/FontTable.h"
#include "common/registry/ScriptDefaultFontsReader.h"
#include "common/registry/StyledFontInfoList.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::Font;
using qro_common::FontInfo;
using qro_common::StyledFontInfoList;

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) out.push_back(part);
  if (!text.empty() && text.back() == separator) out.emplace_back();
  return out;
}

// NAME/STYLE[@PATH][;OPTION...]
FontInfo* face(const std::string& text) {
  auto* info = new FontInfo();
  std::vector<std::string> options = split(text, ';');
  const std::string& main = options[0];
  const size_t slash = main.find('/'), at = main.find('@');
  const std::string name = main.substr(0, slash), style = main.substr(slash + 1, at - slash - 1);
  if (!name.empty()) info->SetFontName(new std::string(name));
  if (style != "-") info->SetStyleName(new std::string(style));
  if (at != std::string::npos) info->SetFilePath(new std::string(main.substr(at + 1)));
  for (size_t i = 1; i < options.size(); ++i) {
    const std::string& o = options[i];
    const std::string value = o.substr(o.find('=') + 1);
    if (o == "cjk") info->SetCJK(true);
    if (o == "valid" || o == "panose") info->SetPanose(new qro_common::Panose());
    if (o == "panose") info->GetPanose()->Set(qro_common::Panose::kWeight, 7);
    if (o == "valid" || o == "sig") info->SetSig(new qro_common::Sig(1, 0, 0, 0, 1, 0));
    if (o == "valid") info->SetFamilyName(new std::string(name + " Family"));
    if (o.rfind("alt=", 0) == 0) info->SetAlternateName(new std::string(value));
    if (o.rfind("pitch=", 0) == 0) info->SetPitch(static_cast<unsigned char>(std::stoi(value)));
    if (o == "persisted") info->SetPersisted(true);
    if (o.rfind("fam=", 0) == 0) info->SetFamilyName(new std::string(value));
    if (o.rfind("state=", 0) == 0) info->SetScanState(static_cast<unsigned char>(std::stoi(value)));
    if (isdigit(static_cast<unsigned char>(o[0])))
      info->AddLocalizedName(std::stoi(o, nullptr, 16), value);
  }
  return info;
}

std::string index(const qro_common::FontTable& table, const FontInfo* info) {
  for (int i = 0; i < table.GetFontInfoCount(); ++i) {
    if (table.GetFontInfo(i) == info) return std::to_string(i);
  }
  return "-";
}

// A cache table of Regular faces with these names; true when it loaded.
bool load(qro_common::FontTable& table, const std::string& base, const std::string& names) {
  qro_common::FontInfoSerializer serializer(base);
  std::vector<FontInfo*> list;
  for (const std::string& name : split(names, ',')) list.push_back(face(name + "/Regular@/x.ttf"));
  std::vector<const std::string*> directories;
  bool written = names.empty() ? kelfont_test::writeFile(base + "FInfo/Ftable", "")
                               : serializer.Write(list, directories);
  for (FontInfo* info : list) delete info;
  qro_common::FontInfoSerializer reader(base);
  return written && table.LoadFontInfo(reader);
}

std::string slots(const StyledFontInfoList& l,
                  const std::function<std::string(const FontInfo*)>& at) {
  return "R" + at(l.GetRegular()) + " B" + at(l.GetBold()) + " I" + at(l.GetItalic()) + " BI" +
         at(l.GetBoldItalic()) + " D" + at(l.GetDefault());
}

struct State {
  qro_common::FontTable table;
  std::unique_ptr<StyledFontInfoList> list;      // the slots of a font alone
  std::vector<std::unique_ptr<FontInfo>> faces;  // the faces made for it
  std::map<int, std::vector<int>*> chains;
};

// A list read from its file ("fc", "df", "sf"): the chains as "KEY:MEMBER,...;...", the default
// fonts as "FONT,...", the script entries as "NUMBER=FONT ..."; "*" marks a font without file.
// "!" for ":": the list is missing from a folder not made yet; "made" when the reader made it.
std::string readList(State& state, const std::string& s, const std::string& base) {
  static int fresh = 0;
  std::string data = s[2] == '!' ? base + "new" + std::to_string(++fresh) + "/" : base;
  std::string path = data + "FInfo/" + s.substr(0, 2), out;
  mkdir((base + "FInfo").c_str(), 0775);
  if (s[2] == ':') kelfont_test::writeFile(path, kelfont_test::expand(s.substr(3)));
  auto name = [&state](int font) {
    const Font* f = state.table.GetFont(font);
    return f->GetName() + (f->IsWithoutFile() ? "*" : "");
  };
  bool exists = false;
  if (s[0] == 'f') {
    qro_common::FontChainReader reader(data);
    std::string line = "Arial";
    reader.BuildFontChain(line);  // outside Read() a line changes nothing
    out = reader.Read(state.table, state.chains) && line == "Arial" ? "" : "failed";
    for (auto& [key, members] : state.chains) {
      out += (out.empty() ? "" : ";") + name(key) + ":";
      for (size_t i = 0; i < members->size(); ++i) out += (i ? "," : "") + name((*members)[i]);
      delete members;
    }
    state.chains.clear();
  } else if (s[0] == 'd') {
    qro_common::DefaultFontsReader reader(data);
    exists = reader.IsFileExists();
    std::unique_ptr<std::vector<int>> fonts(reader.Read(state.table));
    for (size_t i = 0; fonts && i < fonts->size(); ++i) out += (i ? "," : "") + name((*fonts)[i]);
    if (!fonts) out = "null";
  } else {
    qro_common::ScriptDefaultFontsReader reader(path);
    exists = reader.IsFileExists();
    const std::vector<int>* entries = reader.Read(state.table);
    for (size_t i = 0; i < entries->size(); ++i) {
      if ((*entries)[i] != -1)
        out += (out.empty() ? "" : " ") + std::to_string(i) + "=" + name((*entries)[i]);
    }
    if (entries->size() != 128) out = "size " + std::to_string(entries->size());
  }
  struct stat st;
  const bool made = stat((s[0] == 's' ? path : data).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  if (out.empty()) out = "-";
  return s[2] == '!' ? out + (made ? " made" : "") + (exists ? " exists" : "") : out;
}

std::string step(State& state, const std::string& s, const std::string& base) {
  qro_common::FontTable& table = state.table;
  const std::string rest = s.substr(1);
  const int n = rest.empty() || !(isdigit(rest[0]) || rest[0] == '-') ? 0 : std::stoi(rest);
  FontInfo* info = table.GetFontInfo(n);
  auto text = [](const std::string* value) { return value ? *value : std::string("-"); };
  if (s.size() > 2 && (s[2] == ':' || s[2] == '!')) return readList(state, s, base);
  const char op = s[0];
  if (op == 'c') {  // cKEY:MEMBER: a chain already there
    state.chains[table.GetFontIndex(rest.substr(0, rest.find(':')))] =
        new std::vector<int>{table.GetFontIndex(rest.substr(rest.find(':') + 1))};
    return ".";
  }
  if (op == 'N') {  // NNAME,...: fonts with a file and no style
    for (const std::string& name : split(rest, ','))
      table.RegisterFontInfo(face(name + "/-@/f"), false);
    return ".";
  }
  if (op == '+' || op == '*') {
    FontInfo* added = rest.empty() ? nullptr : face(rest);
    const int index = table.RegisterFontInfo(added, op == '*');
    if (index < 0) delete added;  // not taken
    return std::to_string(index);
  }
  if (op == '#')
    return "#" + std::to_string(table.GetFontCount()) + "/" +
           std::to_string(table.GetFontInfoCount());
  if (op == '?') return std::to_string(table.GetFontIndex(rest));
  if (op == '=')
    return "=" + index(table, table.FindFontInfo(*std::unique_ptr<FontInfo>(face(rest))));
  if (op == 'd') {
    try {
      return std::to_string(table.GetDefaultFontIndex(n));
    } catch (const std::out_of_range&) {
      return "throw";
    }
  }
  if (op == 'f') {
    const Font* f = table.GetFont(n);
    std::string flags = std::string(f->IsSymbol() ? "s" : "") + (f->IsNonTimes() ? "t" : "") +
                        (f->IsWithoutFile() ? "w" : "") + (f->IsExtraBold() ? "x" : "");
    return flags.empty() ? "-" : flags;
  }
  if (op == 'l') {
    return slots(*table.GetStyledFontInfoList(n),
                 [&table](const FontInfo* f) { return index(table, f); });
  }
  if (op == 's') {
    auto made = [&state](const FontInfo* info) {
      for (size_t i = 0; i < state.faces.size(); ++i) {
        if (state.faces[i].get() == info) return std::to_string(i);
      }
      return std::string("-");
    };
    if (rest.empty()) return slots(*state.list, made);
    if (isdigit(static_cast<unsigned char>(rest[0]))) state.list.reset(new StyledFontInfoList(n));
    if (rest[0] == '+' || rest[0] == '?') state.faces.emplace_back(face(rest.substr(1)));
    if (rest[0] == '+') return std::to_string(state.list->InformFontInfo(*state.faces.back()));
    if (rest[0] == '?') return "?" + made(state.list->FindFontInfo(*state.faces.back()));
    if (rest[0] == '!') state.list->ConfirmDefaultFontInfo();
    return rest == "!" || rest == "=" ? rest + made(state.list->GetDefault()) : ".";
  }
  if (op == 'b') return std::to_string(StyledFontInfoList::IsBoldStyle(rest));
  if (op == 'i') return std::to_string(StyledFontInfoList::IsItalicStyle(rest));
  auto has = [&rest](char c) { return rest.find(c) != std::string::npos; };
  if (op == 'v') return index(table, table.ResolveFontInfo(n, has('b'), has('i'), has('a')));
  if (op == 'g') {
    return std::to_string(info->GetInfoIndex()) + ":" + text(info->GetFontName()) + "/" +
           text(info->GetStyleName()) + "/" + text(info->GetFamilyName()) + "/" +
           text(info->GetFilePath()) + "/s" + std::to_string(info->GetScanState()) + "/" +
           (info->IsValid() ? "v" : "-") + "/" + text(info->GetAlternateName()) + "/p" +
           std::to_string(info->GetPitch()) + (info->IsPersisted() ? "P" : "") +
           (info->GetPanose()
                ? "/w" + std::to_string(info->GetPanose()->Get(qro_common::Panose::kWeight))
                : "");
  }
  if (op == 'M') {
    return std::string(info->GetCharMetricsInfo() ? "c" : "-") +
           (info->GetKerningInfo() ? "k" : "-") +
           std::to_string(table.GetFontMetrics(n, true, true)->GetUnitsPerEm());
  }
  if (op == 'L') return std::to_string(load(table, base, s.size() > 2 ? s.substr(2) : ""));
  if (op == 'n') return table.GetFont(n)->GetName();
  if (op == 'p') info->SetFilePath(nullptr);
  if (op == 'u') table.UpdateModifiedFontInfoState();
  if (op == 'k') table.ClearCacheInfo();
  if (op == 'D') table.ConfirmStyledFontInfoListDefaultFontInfo();
  if (op == 'B') table.SetStyledFontInfoList(0, new StyledFontInfoList(0));
  if (op == 'B') table.BuildFont();
  if (op == 'm') {
    info->SetCharMetricsInfo(new qro_common::CharMetricsInfo());
    info->SetCharMetricsInfo(info->GetCharMetricsInfo());  // the same again: kept
    info->SetKerningInfo(new qro_common::KerningInfo());
    info->SetFontMetrics(new qro_common::FontMetrics(1, 2, 3, 4));
  }
  return std::string("pukDBm").find(op) != std::string::npos ? "." : "unknown step " + s;
}

// Fonts kept in registration order; empty positions keep their place and are never found.
TEST(FontTable, FontStorage) {
  qro_common::Storage<Font> storage;
  EXPECT_THROW(storage.Get(0), std::out_of_range);
  storage.Init(new std::vector<Font*>{new Font("B"), nullptr, new Font("A")});
  EXPECT_EQ(storage.Find(Font("A")), 2);
  EXPECT_EQ(storage.Find(Font("B")), 0);
  EXPECT_EQ(storage.Find(Font("a")), -1);
  EXPECT_EQ(storage.Get(1), nullptr);
  EXPECT_EQ(storage.Add(Font("C")), 3);
  EXPECT_EQ(storage.Find(Font("C")), 3);
  EXPECT_EQ(storage.GetCount(), 4);
  EXPECT_THROW(storage.Get(4), std::out_of_range);
}

TEST(FontTable, Steps) {
  kelfont_test::TempDir dir;
  for (const kelfont_test::Case& c : kelfont_test::cases("font_tables.tsv")) {
    State state;
    std::string said;
    for (const std::string& s : split(c[0], '|')) {
      said += (said.empty() ? "" : " ") + step(state, s, dir.path() + "/");
    }
    EXPECT_EQ(said, c[1]) << c.line;
  }
}

}  // namespace
