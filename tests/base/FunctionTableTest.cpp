// Small functions and services of the base layer against tables of cases
// (tests/data/base_functions.tsv: function, arguments, answer) and against
// independent references: the C library, the standard UTF-16 strings, the
// Unicode Character Database.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <vector>

#include "base/AKHashMap.h"
#include "base/ByteOrder.h"
#include "base/CharacterType.h"
#include "base/CharacterTypeData.h"
#include "base/DefaultCharsetConverterManager.h"
#include "base/Environment.h"
#include "base/File.h"
#include "base/FileUtils.h"
#include "base/Locale.h"
#include "base/Log.h"
#include "base/MathUtil.h"
#include "base/TextConversion.h"
#include "base/U16CharTraits.h"
#include "base/Utf8CharsetConverter.h"
#include "tests/support/Cases.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::Case;
using kelfont_test::hex;
using kelfont_test::orNull;
using qro_base::MathUtil;
using Map = qro_base::AKHashMap<char, unsigned short>;

qro_base::u16string u16(const std::string& text) { return kelfont_test::units(text); }

std::string str(double v, int precision = 15) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*g", precision, v);
  return text;
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

// Counts the loaders destroyed.
struct CountedLoader : qro_base::IResourceLoader {
  ~CountedLoader() override { ++destroyed; }
  static inline int destroyed = 0;
};

// A host's File, with reading and writing of its own.
struct HostFile : qro_base::File {
  using File::File;
  unsigned Read(char*, unsigned count) const override { return count + 100; }
  unsigned Write(const char*, unsigned count) override { return count + 200; }
};

// A File (of a host when the mode is "host") over a file holding the bytes, or over
// "missing" or the folder: the answers to the calls rN (the count and bytes read), wTEXT,
// kN (Seek), eN (Seek from the end), t (Tell), o (IsOpen) and = (the file's bytes).
std::string file(const Case& c) {
  kelfont_test::TempDir dir;
  kelfont_test::writeFile(dir.file("f"), c[1]);
  const std::string path = c[1] == "missing"  ? dir.file("m")
                           : c[1] == "folder" ? dir.path()
                                              : dir.file("f");
  std::unique_ptr<qro_base::File> file(c[2] == "host"
                                           ? new HostFile(path.c_str(), 0)
                                           : new qro_base::File(path.c_str(), int(c.num(2))));
  return kelfont_test::answers(c[3], [&](const std::string& op) {
    char buffer[8] = {};
    const long n = std::strtol(op.c_str() + 1, nullptr, 10);
    if (op[0] == 'r') {
      const unsigned got = file->Read(buffer, static_cast<unsigned>(n));
      return std::to_string(got) + ":" + std::string(buffer, std::min<unsigned>(got, n));
    }
    if (op[0] == 'w') return std::to_string(file->Write(&op[1], unsigned(op.size() - 1)));
    if (op[0] == 'k') return std::to_string(file->Seek(n));
    if (op[0] == 'e') return std::to_string(file->Seek(n, SEEK_END));
    if (op[0] == 't') return std::to_string(file->Tell());
    if (op[0] == '=') return kelfont_test::readFile(dir.file("f"));
    return std::to_string(file->IsOpen());
  });
}

// A log line of the priority ("profile": logProfile's) under the tag "T", through the hook
// (as LogCapture::taken shows it) or without one to standard error; runs as {N*c}.
std::string log(const Case& c) {
  testing::internal::CaptureStderr();
  auto hook = std::make_unique<kelfont_test::LogCapture>();
  if (c[1] != "hook") hook.reset();
  const std::string text = kelfont_test::expand(c[3]);
  if (c[2] == "profile") qro_base::logProfile("%s", text.c_str());
  if (c[2] != "profile") qro_base::androidLogPrint(int(c.num(2)), "T", "%s", text.c_str());
  const std::string said = hook ? hook->taken() : "";
  hook.reset();
  return kelfont_test::runs(said + testing::internal::GetCapturedStderr());
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
  if (f == "file") return file(c);
  if (f == "log") return log(c);
  if (f == "utf8-count") {
    return kelfont_test::answers(c[1], [](const std::string& lead) {
      return std::to_string(qro_base::getUtf8CharByteCount(std::stoul(lead, nullptr, 0) & 0xFF));
    });
  }
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
  if (f == "loaders") {  // set in turn (0: none): how many went before and with the environment
    auto env = std::make_unique<qro_base::Environment>();
    CountedLoader::destroyed = 0;
    for (char set : c[1]) env->SetResourceLoader(set == '0' ? nullptr : new CountedLoader);
    env->SetClipboardPath(new std::string("/data/old/"));  // the sanitizer build's leak check
    env->SetClipboardPath(new std::string("/data/new/"));
    const std::string said =
        std::to_string(CountedLoader::destroyed) + " " + *env->GetClipboardPath();
    env.reset();
    return said + " " + std::to_string(CountedLoader::destroyed);
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

// The u16 strings against the standard library's own UTF-16 strings: both hold unsigned 16-bit
// units, so every operation must agree, including units above 0x7FFF and embedded zeros.
TEST(U16CharTraits, StringsBehaveAsTheStandardUtf16Strings) {
  const std::vector<std::u16string> texts = {
      u"",       u"a",      u"ab",      std::u16string(u"a\0b", 3), u"\u7FFF",
      u"\u8000", u"\uFFFF", u"\uFFFFa", u"b\u8000\u7FFF",           u"ab\uFFFF"};
  auto sign = [](int value) { return size_t((value > 0) - (value < 0)); };
  for (const auto& a : texts) {
    const qro_base::u16string ma(a.begin(), a.end());
    EXPECT_EQ(qro_base::U16CharTraits::length(ma.c_str()),
              std::char_traits<char16_t>::length(a.c_str()));
    for (const auto& b : texts) {
      const qro_base::u16string mb(b.begin(), b.end());
      qro_base::u16string joined = ma + mb;
      joined.insert(1 % (joined.size() + 1), ma);  // moves the tail over itself
      std::u16string expected = a + b;
      expected.insert(1 % (expected.size() + 1), a);
      EXPECT_EQ(std::vector<size_t>({sign(ma.compare(mb)), ma < mb, ma == mb, ma.find(mb),
                                     ma.rfind(mb), ma.find_first_of(mb), ma.find_last_not_of(mb)}),
                std::vector<size_t>({sign(a.compare(b)), a < b, a == b, a.find(b), a.rfind(b),
                                     a.find_first_of(b), a.find_last_not_of(b)}))
          << testing::PrintToString(a) << " vs " << testing::PrintToString(b);
      EXPECT_TRUE(std::equal(joined.begin(), joined.end(), expected.begin(), expected.end()));
    }
  }
  qro_base::u16string filled(3, 0xFFFF);
  EXPECT_EQ(filled.find(0xFFFF, 1), 1u);
  EXPECT_EQ(qro_base::U16CharTraits::to_int_type(0xFFFF), 0xFFFF);
  EXPECT_NE(qro_base::U16CharTraits::to_int_type(0xFFFF), qro_base::U16CharTraits::eof());
}

// Integers and fixed-point numbers as the C library writes them, away from the rounding ties
// (which it breaks to even); the extremes fit buffers of the documented sizes.
TEST(NumberTexts, AgreeWithTheCLibrary) {
  std::vector<char> narrow12(12);
  EXPECT_STREQ(qro_base::IntegerToArray(INT_MIN, narrow12.data()), "-2147483648");
  std::vector<unsigned short> wide21(21);
  EXPECT_EQ(qro_base::u16string(qro_base::Int64ToArray16(LLONG_MIN, wide21.data())),
            u16("-9223372036854775808"));
  EXPECT_EQ(qro_base::IntegerToArray(5, nullptr), nullptr);
  std::vector<char> exact(4 + 1 + 2);  // 4 + fraction digits + integer digits
  EXPECT_STREQ(qro_base::FloatToArray(-9.996, 2, exact.data(), true), "-10.00");
  std::mt19937_64 random(12345);
  char ours[48];
  char theirs[160];
  for (int i = 0; i < 3000; ++i) {
    const long long value = static_cast<long long>(random()) >> (random() % 63);
    std::snprintf(theirs, sizeof theirs, "%lld", value);
    EXPECT_STREQ(qro_base::Int64ToArray(value, ours), theirs);
    std::snprintf(theirs, sizeof theirs, "%d", static_cast<int>(value));
    EXPECT_STREQ(qro_base::IntegerToArray(static_cast<int>(value), ours), theirs);
    const double real = std::pow(10.0, (random() % 7000) / 1000.0) * (random() % 2 ? 1 : -1);
    const int digits = static_cast<int>(random() % 10);
    std::snprintf(theirs, sizeof theirs, "%.*f", digits + 12, real);
    if (std::strcmp(theirs + std::strlen(theirs) - 12, "500000000000") == 0) continue;  // a tie
    std::snprintf(theirs, sizeof theirs, "%.*f", digits, real);
    EXPECT_STREQ(qro_base::FloatToArray(real, digits, ours, true), theirs) << real;
  }
}

using qro_base::CharacterType;

// The flag and case tables are the generator's output from the Unicode Character Database
// (its --check below). Against that data: the space flag is exactly PropList.txt's White_Space,
// read here; every case table key maps to its value, only flagged units are keys, and every
// other unit maps to itself.
TEST(CharacterType, TablesAgreeWithTheUnicodeData) {
  const std::string ucd = "/usr/share/unicode";
  std::ifstream props(ucd + "/PropList.txt");
  if (!props) GTEST_SKIP() << "Unicode Character Database not found in " << ucd;
  std::vector<bool> space(0x10000, false);
  for (std::string line; std::getline(props, line);) {
    unsigned first = 0, last = 0;
    char name[32] = {};
    const int n = std::sscanf(line.c_str(), "%x..%x ; %31s", &first, &last, name);
    if (n < 2 && std::sscanf(line.c_str(), "%x ; %31s", &first, name) == 2) last = first;
    if (std::string(name) != "White_Space") continue;
    for (unsigned cp = first; cp <= last && cp < 0x10000; ++cp) space[cp] = true;
  }
  EXPECT_EQ(std::count(space.begin(), space.end(), true), 25);
  namespace data = qro_base::character_type_data;
  EXPECT_EQ(data::kLowerCasePairCount, 685u);  // the reference size of the lowercase table
  std::map<unsigned, unsigned> upper, lower;
  for (unsigned i = 0; i < data::kUpperCasePairCount; ++i) {
    upper[data::kUpperCasePairs[i].from] = data::kUpperCasePairs[i].to;
  }
  for (unsigned i = 0; i < data::kLowerCasePairCount; ++i) {
    lower[data::kLowerCasePairs[i].from] = data::kLowerCasePairs[i].to;
  }
  ASSERT_EQ(upper.size() + lower.size(), data::kUpperCasePairCount + data::kLowerCasePairCount);
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    const unsigned flags = CharacterType::charTypes[cp];
    const unsigned up = upper.count(cp) ? upper[cp] : cp, low = lower.count(cp) ? lower[cp] : cp;
    EXPECT_EQ((flags & CharacterType::kSpace) != 0, space[cp]) << std::hex << cp;
    ASSERT_EQ(CharacterType::ToUpperCase(static_cast<unsigned short>(cp)), up) << std::hex << cp;
    ASSERT_EQ(CharacterType::ToLowerCase(static_cast<unsigned short>(cp)), low) << std::hex << cp;
    EXPECT_TRUE(up == cp || (flags & CharacterType::kLowercase)) << std::hex << cp;
    EXPECT_TRUE(low == cp || (flags & CharacterType::kUppercase)) << std::hex << cp;
  }
  const std::string command = std::string(KELFONT_PYTHON) + " " + KELFONT_TEST_SOURCE_DIR +
                              "/../scripts/gen_character_types.py --check";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
