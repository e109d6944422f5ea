// Pure functions of the base layer against tables of cases
// (tests/data/base_functions.tsv): function, arguments, answer.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <vector>

#include "base/AKHashMap.h"
#include "base/ByteOrder.h"
#include "base/CharacterType.h"
#include "base/DefaultCharsetConverterManager.h"
#include "base/Environment.h"
#include "base/FileUtils.h"
#include "base/Locale.h"
#include "base/MathUtil.h"
#include "base/TextConversion.h"
#include "base/Utf8CharsetConverter.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::Case;
using kelfont_test::hex;
using kelfont_test::orNull;
using qro_base::MathUtil;
using Map = qro_base::AKHashMap<char, unsigned short>;

qro_base::u16string u16(const std::string& text) { return kelfont_test::units(text); }

std::string str(double v, int precision = 15) {
  std::ostringstream out;
  out.precision(precision);
  out << v;
  return out.str();
}

std::string locale(const qro_base::Locale& l) { return l.GetLanguage() + "|" + l.GetCountry(); }

std::string floatText(const Case& c) {
  const double value = std::strtod(c[1].c_str(), nullptr);  // also nan and -inf
  std::vector<char> narrow(330 + c.num(2));
  std::vector<unsigned short> wide(330 + c.num(2));
  std::string text = qro_base::FloatToArray(value, c.num(2), narrow.data(), c[3] == "fixed");
  qro_base::FloatToArray(value, c.num(2), wide.data(), c[3] == "fixed");
  EXPECT_EQ(u16(text), qro_base::u16string(wide.data())) << "the UTF-16 form differs";
  return text;
}

// A script of calls on one map: +KEY=V inserts (. or null), ?KEY finds (its
// value or -), kKEY the found node's stored key, l IsLastFound, # GetCount,
// v IsValid, h bucket 0 has a head, ~ inserts a null key, *N inserts
// key0..keyN-1; a KEY @N is N// times 'q'. What the constructor prints comes first.
std::string hashMap(const Case& c) {
  testing::internal::CaptureStderr();
  Map map(static_cast<unsigned>(c.num(1)), static_cast<unsigned>(c.num(2)),
          qro_base::AKHashMapHashMethodDefault);
  std::string said = testing::internal::GetCapturedStderr();
  std::istringstream ops(c[3]);
  for (std::string op; ops >> op;) {
    std::string key = op.substr(1, op.find('=') - 1);
    if (!key.empty() && key[0] == '@') key = std::string(std::stoul(key.substr(1)), 'q');
    const auto* node = op[0] == '?' || op[0] == 'k'
                           ? map.FindNode(key.data(), static_cast<unsigned>(key.size()))
                           : nullptr;
    if (!said.empty()) said += " ";
    if (op[0] == '*') said += ".";
    if (op[0] == '+') {
      node = map.Insert(key.data(), static_cast<unsigned>(key.size()),
                        static_cast<unsigned short>(std::stoul(op.substr(op.find('=') + 1))));
      key.assign(key.size(), 'x');  // the map keeps a copy
      said += node != nullptr ? "." : "null";
    }
    for (unsigned short i = 0; op[0] == '*' && i < std::stoul(key); ++i) {
      std::string k = "key" + std::to_string(i);
      map.Insert(k.data(), static_cast<unsigned>(k.size()), i);
    }
    if (op[0] == '?') said += node != nullptr ? std::to_string(node->GetValue()) : "-";
    if (op[0] == 'k') said += std::to_string(node->GetKeyLength()) + ":" + node->GetKey();
    if (op[0] == 'l') said += std::to_string(map.IsLastFound());
    if (op[0] == '#') said += std::to_string(map.GetCount());
    if (op[0] == 'v') said += std::to_string(map.IsValid());
    if (op[0] == 'h') said += std::to_string(map.GetBucketHead(0) != nullptr);
    if (op[0] == '~') said += map.Insert(nullptr, 3, 1) != nullptr ? "." : "null";
  }
  return said;
}

// UTF-8 bytes into a target of `room` units: the units, then the bytes taken.
std::string convertUtf8(const Case& c) {
  const unsigned room = static_cast<unsigned>(c.num(2));
  std::vector<unsigned short> units(room + 1, 0xAAAA);
  unsigned produced = 99;
  unsigned consumed =
      qro_base::Utf8CharsetConverter().Convert(c[1].data(), static_cast<unsigned>(c[1].size()),
                                               units.data(), room, c[3] == "last", produced);
  EXPECT_EQ(units[room], 0xAAAA) << "wrote past the target";
  std::string said;
  for (unsigned i = 0; i < produced; ++i) said += hex(units[i]) + " ";
  return said + "; " + std::to_string(consumed);
}

std::string layout(const qro_base::Environment& env) {
  const auto& info = env.GetKeyboardLayoutInfo();
  return env.GetInputLanguage() + " " + std::to_string(info.langCode) + " " +
         std::to_string(info.rightToLeft);
}

// A path in a fresh folder holding the file f (or as it is, when absolute or empty): the
// answer, then every folder below that folder with its mode (made under a zero umask).
std::string files(const Case& c) {
  kelfont_test::TempDir dir;
  kelfont_test::writeFile(dir.file("f"), "x");
  const std::string path = c[1].empty() || c[1][0] == '/' || c[1] == "NULL" ? c[1] : dir.file(c[1]);
  const mode_t saved = umask(0);
  const bool answer = c[0] == "exists" ? qro_base::isFileExists(orNull(path))
                                       : qro_base::confirmFilePathExists(orNull(path));
  umask(saved);
  std::set<std::string> folders;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path())) {
    struct stat info;
    if (!entry.is_directory() || stat(entry.path().c_str(), &info) != 0) continue;
    char mode[8];
    std::snprintf(mode, sizeof mode, ":%o", info.st_mode & 07777);
    folders.insert(entry.path().string().substr(dir.path().size() + 1) + mode);
  }
  std::string said = std::to_string(answer);
  for (const std::string& folder : folders) said += " " + folder;
  return said;
}

// The answer of the function c[0] to the arguments of the line.
std::string call(const Case& c) {
  const std::string& f = c[0];
  const qro_base::u16string text = u16(c[1]);
  // With a length: an exactly sized heap text, so that reading past it trips the sanitizer.
  const std::vector<unsigned short> heap(text.begin(), text.end());
  const unsigned short* orNullText = c[1] == "NULL" ? nullptr : text.c_str();
  const unsigned short unit = static_cast<unsigned short>(c.num(1));
  const double v = std::strtod(c[1].c_str(), nullptr);
  if (f == "atoi") return std::to_string(qro_base::atoi_utf16(orNullText));
  if (f == "atoi2")
    return std::to_string(qro_base::atoi_utf16_2(heap.data(), static_cast<unsigned>(c.num(2))));
  if (f == "atof") return str(qro_base::atof_utf16(orNullText));
  if (f == "atof2")
    return str(qro_base::atof_utf16_2(heap.data(), static_cast<unsigned>(c.num(2))));
  if (f == "float") return floatText(c);
  if (f == "upper") return hex(qro_base::CharacterType::ToUpperCase(unit));
  if (f == "lower") return hex(qro_base::CharacterType::ToLowerCase(unit));
  if (f == "flags") return hex(qro_base::CharacterType::charTypes[c.num(1)]);
  if (f == "hashmap") return hashMap(c);
  if (f == "confirm-path" || f == "exists") return files(c);
  if (f == "utf8-convert") return convertUtf8(c);
  if (f == "lower-text" || f == "upper-text") {  // into a stale text, and in place
    qro_base::u16string out = u16("garbage"), same = text;
    (f == "lower-text" ? qro_base::toLowerCase : qro_base::toUpperCase)(text, out);
    (f == "lower-text" ? qro_base::toLowerCase : qro_base::toUpperCase)(same, same);
    EXPECT_EQ(out, same);
    std::string said;
    for (unsigned short u : out) said += (said.empty() ? "" : " ") + hex(u);
    return said;
  }
  if (f == "print") {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    qro_base::printStr16(text);
    return testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
  }
  if (f == "utf8") {
    std::string out = "stale";
    qro_base::utf16ToUtf8(text, out);
    return out;
  }
  if (f == "round") {
    return std::to_string(MathUtil::Round(v)) + " " + std::to_string(MathUtil::Ceil(v)) + " " +
           std::to_string(MathUtil::Floor(v));
  }
  if (f == "arctan")
    return str(
        MathUtil::ArcTan(std::strtof(c[1].c_str(), nullptr), std::strtof(c[2].c_str(), nullptr)),
        6);
  if (f == "degree") {
    float degree = std::strtof(c[1].c_str(), nullptr);
    float copy = MathUtil::GetNormalizedDegree(degree);
    MathUtil::NormalizeDegree(degree);
    EXPECT_EQ(copy, degree);
    return str(degree, 6);
  }
  if (f == "muldiv") {
    float value = MathUtil::MulDiv(std::stof(c[1]), std::stof(c[2]), std::stof(c[3]));
    return std::isnan(value) ? "nan" : str(value);
  }
  if (f == "constant") {
    return str(c[1] == "pi"    ? MathUtil::s_PI
               : c[1] == "d2r" ? MathUtil::s_DegreeToRadian
                               : MathUtil::s_RadianToDegree,
               17);
  }
  if (f == "buckets") {
    return std::to_string(
        Map(static_cast<unsigned>(c.num(1)), 10, qro_base::AKHashMapHashMethodDefault)
            .GetBucketCount());
  }
  if (f == "hash") {
    return std::to_string(Map::Hash(c[1].data(), static_cast<unsigned>(c[1].size()),
                                    static_cast<unsigned>(c.num(2))));
  }
  if (f == "append") {  // u8:V u16:V i32:V in turn
    std::string bytes;
    std::istringstream values(c[1]);
    for (std::string value; values >> value;) {
      const long n = std::strtol(value.c_str() + value.find(':') + 1, nullptr, 0);
      if (value[1] == '8') qro_base::appendUInt8(bytes, static_cast<unsigned char>(n));
      if (value[1] == '1') qro_base::appendUInt16(bytes, static_cast<unsigned short>(n));
      if (value[0] == 'i') qro_base::appendInt32(bytes, static_cast<int>(n));
    }
    return bytes;
  }
  if (f == "converter") {  // the same converter every time, or none
    qro_base::DefaultCharsetConverterManager manager;
    auto* converter = manager.GetConverter(unit);
    return converter == nullptr ? "none" : converter == manager.GetConverter(unit) ? "same" : "new";
  }
  if (f == "uint32") {  // into a buffer of x's (or none): the buffer and where the digits begin
    std::string buffer(static_cast<size_t>(c.num(2)), 'x');
    const char* digits = qro_base::uint32ToString(static_cast<unsigned>(c.num(1)),
                                                  c[2] == "NULL" ? nullptr : &buffer[0],
                                                  c[2] == "NULL" ? 10 : static_cast<int>(c.num(2)));
    return digits == nullptr ? "null" : buffer + " @" + std::to_string(digits - buffer.data());
  }
  if (f == "locale") return locale(qro_base::Locale(orNull(c[1]), orNull(c[2])));
  if (f == "locale-string") return locale(qro_base::Locale(c[1], c[2]));
  if (f == "locale-create") {
    return locale(*std::unique_ptr<qro_base::Locale>(qro_base::Locale::Create(orNull(c[1]))));
  }
  if (f == "locale-compare") {  // == and != with a locale (four arguments) or a language text
    qro_base::Locale l(c[1].c_str(), c[2].c_str()), other(c[3].c_str(), c[4].c_str());
    return c.fields.size() == 6
               ? std::to_string(l == other) + std::to_string(l != other)
               : std::to_string(l == orNull(c[3])) + std::to_string(l != orNull(c[3]));
  }
  if (f == "locale-constant") {
    return locale(c[1] == "KOREA" ? qro_base::Locale::KOREA : qro_base::Locale::DEFAULT);
  }
  if (f == "rtl") return std::to_string(qro_base::Locale(c[1].c_str(), "").IsLanguageForRTL());
  if (f == "input-language") {
    qro_base::Environment env;
    env.SetInputLanguage("ar");
    env.SetInputLanguage(c[1].c_str());
    return layout(env);
  }
  if (f == "input-code") {  // applied in the order of the table, each after the one before
    static qro_base::Environment env;
    env.SetInputLanguageCode(static_cast<int>(c.num(1)));
    return layout(env);
  }
  ADD_FAILURE() << "unknown function " << f;
  return "";
}

TEST(BaseFunctions, Table) { kelfont_test::expectAnswers("base_functions.tsv", call); }

}  // namespace
