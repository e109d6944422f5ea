#include "common/analysis/FontUSBType.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "base/CharacterType.h"
#include "common/analysis/FontCSBType.h"

namespace {

using qro_common::FontUSBType;
using Info = FontUSBType::CodePointUSBInfo;

// The Unicode-range lists, as published for the classification: multi-range
// bits with their sub-ranges in index order, single-range bits, the list
// tested above the BMP, and the BMP code points in no block.
const char* const kMultiRangeRows = R"(
| 4 | 3 | [0] 0250-02AF, [1] 1D00-1D7F, [2] 1D80-1DBF |
| 5 | 2 | [0] 02B0-02FF, [1] A700-A71F |
| 6 | 2 | [0] 0300-036F, [1] 1DC0-1DFF |
| 9 | 4 | [0] 0400-04FF, [1] 0500-052F, [2] 2DE0-2DFF, [3] A640-A69F |
| 13 | 2 | [0] 0600-06FF, [1] 0750-077F |
| 26 | 2 | [0] 10A0-10FF, [1] 2D00-2D2F |
| 29 | 3 | [0] 1E00-1EFF, [1] 2C60-2C7F, [2] A720-A7FF |
| 31 | 2 | [0] 2000-206F, [1] 2E00-2E7F |
| 37 | 4 | [0] 2190-21FF, [1] 27F0-27FF, [2] 2900-297F, [3] 2B00-2BFF |
| 38 | 4 | [0] 2200-22FF, [1] 2A00-2AFF, [2] 27C0-27EF, [3] 2980-29FF |
| 50 | 2 | [0] 30A0-30FF, [1] 31F0-31FF |
| 51 | 2 | [0] 3100-312F, [1] 31A0-31BF |
| 56 | 3 | [0] A960-A97C, [1] AC00-D7AF, [2] D7B0-D7FB |
| 59 | 7 | [0] 4E00-9FFF, [1] 2E80-2EFF, [2] 2F00-2FDF, [3] 2FF0-2FFF, [4] 3400-4DBF, [5] 20000-2A6DF, [6] 3190-319F |
| 61 | 3 | [0] 31C0-31EF, [1] F900-FAFF, [2] 2F800-2FA1F |
| 65 | 2 | [0] FE10-FE1F, [1] FE30-FE4F |
| 75 | 3 | [0] 1200-137F, [1] 1380-139F, [2] 2D80-2DDF |
| 80 | 2 | [0] 1780-17FF, [1] 19E0-19FF |
| 83 | 2 | [0] A000-A48F, [1] A490-A4CF |
| 84 | 4 | [0] 1700-171F, [1] 1720-173F, [2] 1740-175F, [3] 1760-177F |
| 88 | 3 | [0] 1D000-1D0FF, [1] 1D100-1D1FF, [2] 1D200-1D24F |
| 90 | 2 | [0] FF000-FFFFD, [1] 100000-10FFFD |
| 91 | 2 | [0] FE00-FE0F, [1] E0100-E01EF |
| 101 | 3 | [0] 10000-1007F, [1] 10080-100FF, [2] 10100-1013F |
| 110 | 2 | [0] 12000-123FF, [1] 12400-1247F |
| 121 | 3 | [0] 102A0-102DF, [1] 10280-1029F, [2] 10920-1093F |
| 122 | 2 | [0] 1F030-1F09F, [1] 1F000-1F02F |
)";

const char* const kSingleRanges =
    "0:0000-007F 1:0080-00FF 2:0100-017F 3:0180-024F 7:0370-03FF 8:2C80-2CFF 10:0530-058F "
    "11:0590-05FF 12:A500-A63F 14:07C0-07FF 15:0900-097F 16:0980-09FF 17:0A00-0A7F "
    "18:0A80-0AFF 19:0B00-0B7F 20:0B80-0BFF 21:0C00-0C7F 22:0C80-0CFF 23:0D00-0D7F "
    "24:0E00-0E7F 25:0E80-0EFF 27:1B00-1B7F 28:1100-11FF 30:1F00-1FFF 32:2070-209F "
    "33:20A0-20CF 34:20D0-20FF 35:2100-214F 36:2150-218F 39:2300-23FF 40:2400-243F "
    "41:2440-245F 42:2460-24FF 43:2500-257F 44:2580-259F 45:25A0-25FF 46:2600-26FF "
    "47:2700-27BF 48:3000-303F 49:3040-309F 52:3130-318F 53:A840-A87F 54:3200-32FF "
    "55:3300-33FF 57:D800-DFFF 58:10900-1091F 60:E000-F8FF 62:FB00-FB4F 63:FB50-FDFF "
    "64:FE20-FE2F 66:FE50-FE6F 67:FE70-FEFF 68:FF00-FFEF 69:FFF0-FFFF 70:0F00-0FFF "
    "71:0700-074F 72:0780-07BF 73:0D80-0DFF 74:1000-109F 76:13A0-13FF 77:1400-167F "
    "78:1680-169F 79:16A0-16FF 81:1800-18AF 82:2800-28FF 85:10300-1032F 86:10330-1034F "
    "87:10400-1044F 89:1D400-1D7FF 92:E0000-E007F 93:1900-194F 94:1950-197F 95:1980-19DF "
    "96:1A00-1A1F 97:2C00-2C5F 98:2D30-2D7F 99:4DC0-4DFF 100:A800-A82F 102:10140-1018F "
    "103:10380-1039F 104:103A0-103DF 105:10450-1047F 106:10480-104AF 107:10800-1083F "
    "108:10A00-10A5F 109:1D300-1D35F 111:1D360-1D37F 112:1B80-1BBF 113:1C00-1C4F "
    "114:1C50-1C7F 115:A880-A8DF 116:A900-A92F 117:A930-A95F 118:AA00-AA5F 119:10190-101CF "
    "120:101D0-101FF 127:1F0A0-1F6FF";

const char* const kSupplementaryRows = R"(
| 58 | 10900-1091F |
| 59 | 20000-2A6DF |
| 61 | 2F800-2FA1F |
| 85 | 10300-1032F |
| 86 | 10330-1034F |
| 87 | 10400-1044F |
| 88 | 1D000-1D0FF, 1D100-1D1FF, 1D200-1D24F |
| 89 | 1D400-1D7FF |
| 90 | FF000-FFFFD, 100000-10FFFD |
| 91 | E0100-E01EF |
| 92 | E0000-E007F |
| 101 | 10000-1007F, 10080-100FF, 10100-1013F |
| 102 | 10140-1018F |
| 103 | 10380-1039F |
| 104 | 103A0-103DF |
| 105 | 10450-1047F |
| 106 | 10480-104AF |
| 107 | 10800-1083F |
| 108 | 10A00-10A5F |
| 109 | 1D300-1D35F |
| 110 | 12000-123FF, 12400-1247F |
| 111 | 1D360-1D37F |
| 119 | 10190-101CF |
| 120 | 101D0-101FF |
| 121 | 102A0-102DF, 10280-1029F, 10920-1093F |
| 122 | 1F030-1F09F, 1F000-1F02F |
| 127 | 1F0A0-1F6FF |
)";

const char* const kGaps =
    "0800-08FF 18B0-18FF 1A20-1AFF 1BC0-1BFF 1C80-1CFF 2FE0-2FEF A4D0-A4FF A6A0-A6FF "
    "A830-A83F A8E0-A8FF A97D-A9FF AA60-ABFF D7FC-D7FF";

struct ListedRange {
  int bit;
  unsigned first;
  unsigned last;
  int index;  // sub-range index, -1 for a single-range bit
  int count;  // sub-range count, 0 for a single-range bit
};

// "XXXX-YYYY" with optional trailing punctuation.
bool parseRange(const std::string& text, unsigned& first, unsigned& last) {
  return std::sscanf(text.c_str(), "%x-%x", &first, &last) == 2;
}

std::vector<ListedRange> multiRanges() {
  std::vector<ListedRange> result;
  std::istringstream rows(kMultiRangeRows);
  std::string row;
  while (std::getline(rows, row)) {
    if (row.empty()) continue;
    int bit = 0, count = 0;
    EXPECT_EQ(std::sscanf(row.c_str(), "| %d | %d |", &bit, &count), 2) << row;
    std::string::size_type pos = 0;
    int index = 0;
    while ((pos = row.find('[', pos)) != std::string::npos) {
      int listedIndex = -1;
      unsigned first = 0, last = 0;
      EXPECT_EQ(std::sscanf(row.c_str() + pos, "[%d] %x-%x", &listedIndex, &first, &last), 3);
      EXPECT_EQ(listedIndex, index) << row;
      result.push_back({bit, first, last, index, count});
      ++index;
      ++pos;
    }
    EXPECT_EQ(index, count) << row;
  }
  return result;
}

std::vector<ListedRange> singleRanges() {
  std::vector<ListedRange> result;
  std::istringstream items(kSingleRanges);
  std::string item;
  while (items >> item) {
    int bit = 0;
    unsigned first = 0, last = 0;
    EXPECT_EQ(std::sscanf(item.c_str(), "%d:%x-%x", &bit, &first, &last), 3) << item;
    result.push_back({bit, first, last, -1, 0});
  }
  return result;
}

std::vector<ListedRange> allRanges() {
  std::vector<ListedRange> result = multiRanges();
  std::vector<ListedRange> single = singleRanges();
  result.insert(result.end(), single.begin(), single.end());
  return result;
}

std::vector<ListedRange> supplementaryList() {
  std::vector<ListedRange> result;
  std::istringstream rows(kSupplementaryRows);
  std::string row;
  while (std::getline(rows, row)) {
    if (row.empty()) continue;
    int bit = 0;
    EXPECT_EQ(std::sscanf(row.c_str(), "| %d |", &bit), 1) << row;
    std::istringstream words(row.substr(row.find('|', 1) + 1));
    std::string word;
    while (words >> word) {
      unsigned first = 0, last = 0;
      if (parseRange(word, first, last)) result.push_back({bit, first, last, -1, 0});
    }
  }
  return result;
}

// The expected bit of a code point above the BMP: the first listed range.
int listedSupplementaryBit(const std::vector<ListedRange>& list, unsigned cp) {
  for (const ListedRange& r : list) {
    if (cp >= r.first && cp <= r.last) return r.bit;
  }
  return 255;
}

// ---------------------------------------------------------------------------
// Examples.

TEST(FontUSBTypeExamples, BasicLatinIsASingleRange) {
  Info info{};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x41, info), 0);
  EXPECT_EQ(info.usbType, 0);
  EXPECT_EQ(info.subRangeIndex, -1);
  EXPECT_EQ(info.rangeFirst, 0x0000);
  EXPECT_EQ(info.rangeLast, 0x007F);
  EXPECT_EQ(info.subRangeCount, 0);
}

TEST(FontUSBTypeExamples, PhoneticExtensionsSupplementIsSubRangeTwoOfBitFour) {
  Info info{};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x1D80, info), 4);
  EXPECT_EQ(info.subRangeIndex, 2);
  EXPECT_EQ(info.rangeFirst, 0x1D80);
  EXPECT_EQ(info.rangeLast, 0x1DBF);
  EXPECT_EQ(info.subRangeCount, 3);
}

TEST(FontUSBTypeExamples, HangulEndsAtD7FB) {
  Info info{};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0xD7B0, info), 56);
  EXPECT_EQ(info.subRangeIndex, 2);
  EXPECT_EQ(info.rangeFirst, 0xD7B0);
  EXPECT_EQ(info.rangeLast, 0xD7FB);
  EXPECT_EQ(FontUSBType::GetUSBType(0xD7FB), 56);
  EXPECT_EQ(FontUSBType::GetUSBType(0xD7FC), 255);
  EXPECT_EQ(FontUSBType::GetUSBType(0xD7FF), 255);
  EXPECT_EQ(FontUSBType::GetUSBType(0xA960), 56);
  EXPECT_EQ(FontUSBType::GetUSBType(0xA97C), 56);
  EXPECT_EQ(FontUSBType::GetUSBType(0xA97D), 255);
  EXPECT_EQ(FontUSBType::GetUSBType(0xAC00), 56);
}

TEST(FontUSBTypeExamples, SurrogatesAndPrivateUse) {
  EXPECT_EQ(FontUSBType::GetUSBType(0xD800), 57);
  EXPECT_EQ(FontUSBType::GetUSBType(0xDFFF), 57);
  EXPECT_EQ(FontUSBType::GetUSBType(0xE000), 60);
  EXPECT_EQ(FontUSBType::GetUSBType(0xF8FF), 60);
  EXPECT_EQ(FontUSBType::GetUSBType(0xF900), 61);
}

TEST(FontUSBTypeExamples, SupplementaryPlanes) {
  Info info{};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x20000, info), 59);
  EXPECT_EQ(info.subRangeIndex, 5);
  EXPECT_EQ(info.rangeFirst, 0x20000);
  EXPECT_EQ(info.rangeLast, 0x2A6DF);
  EXPECT_EQ(info.subRangeCount, 7);

  // Plane 15 private use counts only from U+FF000 on.
  EXPECT_EQ(FontUSBType::GetUSBType(0xF0000), 255);
  EXPECT_EQ(FontUSBType::GetUSBType(0xFEFFF), 255);
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0xFF000, info), 90);
  EXPECT_EQ(info.subRangeIndex, 0);
  EXPECT_EQ(info.rangeFirst, 0xFF000);
  EXPECT_EQ(info.rangeLast, 0xFFFFD);
  EXPECT_EQ(FontUSBType::GetUSBType(0xFFFFE), 255);
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x10FFFD, info), 90);
  EXPECT_EQ(info.subRangeIndex, 1);
  EXPECT_EQ(FontUSBType::GetUSBType(0x10FFFE), 255);
}

TEST(FontUSBTypeExamples, PictographsAreTheLibrarysBit127) {
  Info info{};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x1F600, info), 127);
  EXPECT_EQ(info.subRangeIndex, -1);
  EXPECT_EQ(info.rangeFirst, 0x1F0A0);
  EXPECT_EQ(info.rangeLast, 0x1F6FF);
  EXPECT_EQ(info.subRangeCount, 0);
  EXPECT_EQ(FontUSBType::GetUSBType(0x1F700), 255);
}

TEST(FontUSBTypeExamples, UnknownCodePointLeavesTheRestOfTheRecord) {
  Info info{};
  info.usbType = 7;
  info.subRangeIndex = 3;
  info.rangeFirst = 11;
  info.rangeLast = 22;
  info.subRangeCount = 33;
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x0860, info), 255);
  EXPECT_EQ(info.usbType, 255);
  EXPECT_EQ(info.subRangeIndex, 3);
  EXPECT_EQ(info.rangeFirst, 11);
  EXPECT_EQ(info.rangeLast, 22);
  EXPECT_EQ(info.subRangeCount, 33);
}

TEST(FontUSBTypeExamples, KnownCodePointOverwritesEveryField) {
  Info info{};
  info.subRangeIndex = 3;
  info.subRangeCount = 33;
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x0E01, info), 24);  // Thai
  EXPECT_EQ(info.subRangeIndex, -1);
  EXPECT_EQ(info.rangeFirst, 0x0E00);
  EXPECT_EQ(info.rangeLast, 0x0E7F);
  EXPECT_EQ(info.subRangeCount, 0);
}

TEST(FontUSBTypeBadInput, AnyThirtyTwoBitValueIsClassified) {
  Info info{};
  for (unsigned cp : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
    EXPECT_EQ(FontUSBType::GetUSBType(cp), 255) << std::hex << cp;
    info.rangeFirst = 5;
    EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(cp, info), 255);
    EXPECT_EQ(info.rangeFirst, 5);
  }
  EXPECT_EQ(FontUSBType::GetUSBType(0xFFFF), 69);
  EXPECT_EQ(FontUSBType::GetUSBType(0x10000), 101);
}

TEST(FontUSBTypeBadInput, ReservedBitsAreNeverProduced) {
  for (unsigned cp = 0; cp <= 0x10FFFF; ++cp) {
    int bit = FontUSBType::GetUSBType(cp);
    ASSERT_TRUE((bit >= 0 && bit <= 122) || bit == 127 || bit == 255) << std::hex << cp;
  }
}

TEST(FontCSBType, TableStartsZeroed) {
  for (unsigned i = 0; i < 0x10000; ++i) ASSERT_EQ(qro_common::FontCSBType::CSB_TYPES[i], 0) << i;
}

// ---------------------------------------------------------------------------
// Cross-check against the range lists.

TEST(FontUSBTypeRangeLists, ListsAreWellFormed) {
  std::vector<ListedRange> ranges = allRanges();
  // Bits 0..122 except the unassigned ones, plus 127, each listed once.
  std::vector<int> seen(128, 0);
  for (const ListedRange& r : ranges) {
    if (r.index <= 0) ++seen[r.bit];
    EXPECT_LE(r.first, r.last);
  }
  for (int bit = 0; bit < 128; ++bit) {
    if (bit <= 122 || bit == 127) {
      EXPECT_EQ(seen[bit], 1) << "bit " << bit;
    } else {
      EXPECT_EQ(seen[bit], 0) << "bit " << bit;
    }
  }
}

TEST(FontUSBTypeRangeLists, EveryBmpCodePointMatchesTheLists) {
  std::vector<int> expected(0x10000, 255);
  for (const ListedRange& r : allRanges()) {
    for (unsigned cp = r.first; cp <= r.last && cp < 0x10000; ++cp) {
      ASSERT_EQ(expected[cp], 255) << "U+" << std::hex << cp << " listed twice";
      expected[cp] = r.bit;
    }
  }
  std::vector<bool> gap(0x10000, false);
  std::istringstream items(kGaps);
  std::string item;
  while (items >> item) {
    unsigned first = 0, last = 0;
    ASSERT_TRUE(parseRange(item, first, last));
    for (unsigned cp = first; cp <= last; ++cp) gap[cp] = true;
  }
  int mismatches = 0;
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    // The gaps are exactly the code points outside every listed block.
    EXPECT_EQ(gap[cp], expected[cp] == 255) << "U+" << std::hex << cp;
    EXPECT_EQ(FontUSBType::USB_TYPES[cp], expected[cp]) << "U+" << std::hex << cp;
    if (FontUSBType::GetUSBType(cp) != expected[cp] && ++mismatches > 20) FAIL();
  }
  EXPECT_EQ(mismatches, 0);
}

TEST(FontUSBTypeRangeLists, SupplementaryListAgreesWithTheBlocks) {
  std::vector<ListedRange> fromBits;
  for (const ListedRange& r : allRanges()) {
    if (r.first > 0xFFFF) fromBits.push_back(r);
  }
  std::vector<ListedRange> list = supplementaryList();
  ASSERT_EQ(list.size(), fromBits.size());
  for (const ListedRange& r : fromBits) {
    EXPECT_EQ(listedSupplementaryBit(list, r.first), r.bit);
    EXPECT_EQ(listedSupplementaryBit(list, r.last), r.bit);
  }
}

TEST(FontUSBTypeRangeLists, EverySupplementaryCodePointMatchesTheList) {
  std::vector<ListedRange> list = supplementaryList();
  int mismatches = 0;
  for (unsigned cp = 0x10000; cp <= 0x10FFFF; ++cp) {
    int expected = listedSupplementaryBit(list, cp);
    if (FontUSBType::GetUSBType(cp) != expected) {
      ADD_FAILURE() << "U+" << std::hex << cp << " gives " << std::dec
                    << FontUSBType::GetUSBType(cp) << ", listed " << expected;
      if (++mismatches > 20) return;
    }
  }
}

TEST(FontUSBTypeRangeLists, RecordOfEveryListedRange) {
  for (const ListedRange& r : allRanges()) {
    // Both ends and the middle of every block.
    for (unsigned cp : {r.first, r.first + (r.last - r.first) / 2, r.last}) {
      Info info{};
      ASSERT_EQ(FontUSBType::GetCodePointUSBInfo(cp, info), r.bit) << std::hex << cp;
      EXPECT_EQ(info.usbType, r.bit);
      EXPECT_EQ(info.subRangeIndex, r.index) << std::hex << cp;
      EXPECT_EQ(info.rangeFirst, static_cast<int>(r.first)) << std::hex << cp;
      EXPECT_EQ(info.rangeLast, static_cast<int>(r.last)) << std::hex << cp;
      EXPECT_EQ(info.subRangeCount, r.count) << std::hex << cp;
    }
  }
}

// ---------------------------------------------------------------------------
// The script class in the low bits of the character-type table chooses the
// same default font as the Unicode range does.

// Default font slot (1st..5th) chosen by character-type class.
int slotByCharType(int type) {
  switch (type) {
    case 0: return 1;
    case 4: return 2;
    case 5: return 4;
    default: return 3;
  }
}

// Default font slot chosen by Unicode-range bit.
int slotByScript(int script) {
  switch (script) {
    case 0: return 1;
    case 11: case 13: case 15: case 16: case 24: case 25: return 4;
    case 48: case 49: case 50: case 52: case 54: case 55: case 56: case 59: case 61:
    case 65: case 68: return 3;
    default: return 2;
  }
}

TEST(CharTypeScriptClass, ChoosesTheSameDefaultFontAsTheUnicodeRange) {
  int mismatches = 0;
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    int type = qro_base::CharacterType::charTypes[cp] & 7;
    if (slotByCharType(type) != slotByScript(FontUSBType::GetUSBType(cp))) {
      ADD_FAILURE() << "U+" << std::hex << cp << ": class " << type << ", range "
                    << std::dec << FontUSBType::GetUSBType(cp);
      if (++mismatches > 20) return;
    }
  }
}

TEST(CharTypeScriptClass, Examples) {
  const auto& types = qro_base::CharacterType::charTypes;
  EXPECT_EQ(types['A'] & 7, 0);
  EXPECT_EQ(types[0x7F] & 7, 0);
  EXPECT_EQ(types[0xE9] & 7, 4);    // Latin-1
  EXPECT_EQ(types[0x05D0] & 7, 5);  // Hebrew
  EXPECT_EQ(types[0x0627] & 7, 5);  // Arabic
  EXPECT_EQ(types[0x0915] & 7, 5);  // Devanagari
  EXPECT_EQ(types[0x0E01] & 7, 5);  // Thai
  EXPECT_EQ(types[0x0750] & 7, 5);  // Arabic Supplement, range 13 too
  EXPECT_EQ(types[0x0700] & 7, 4);  // Syriac
  EXPECT_EQ(types[0xAC00] & 7, 1);  // Hangul syllable
  EXPECT_EQ(types[0x3131] & 7, 1);  // Hangul compatibility jamo
  EXPECT_EQ(types[0x1100] & 7, 4);  // Hangul Jamo, range 28
  EXPECT_EQ(types[0x3042] & 7, 6);  // Hiragana
  EXPECT_EQ(types[0x30A2] & 7, 6);  // Katakana
  EXPECT_EQ(types[0x4E00] & 7, 7);  // CJK ideograph
  EXPECT_EQ(types[0x3000] & 7, 7);  // ideographic space
  EXPECT_EQ(types[0xFF21] & 7, 7);  // fullwidth A
  EXPECT_EQ(types[0xD800] & 7, 4);  // surrogate
  EXPECT_EQ(types[0x0860] & 7, 4);  // in no range
}

// ---------------------------------------------------------------------------

TEST(UsbTypesGenerator, CheckedInSourceIsUpToDate) {
  std::string python = KELFONT_PYTHON;
  if (python.empty() || python.find("NOTFOUND") != std::string::npos) {
    GTEST_SKIP() << "python3 not found; cannot run scripts/gen_usb_types.py --check";
  }
  std::string command = python + " " + KELFONT_TEST_SOURCE_DIR + "/../scripts/gen_usb_types.py --check";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
