#!/usr/bin/python3
"""Generates base/CharacterTypeGenerated.cpp: the flag table
qro_base::CharacterType::charTypes and the two simple case tables.

Input: the Unicode Character Database as installed by the Debian package
unicode-data (/usr/share/unicode: UnicodeData.txt, DerivedAge.txt,
DerivedCoreProperties.txt, PropList.txt; another directory with --ucd DIR),
and the BMP Unicode-range table of scripts/gen_usb_types.py.

Case tables
-----------
The keys are restricted to the ranges in UPPER_KEYS and LOWER_KEYS. A key is
in the table when it is one of the identity rows (UPPER_IDENTITY,
LOWER_IDENTITY: letters of those ranges kept as themselves), or when it is
not a titlecase letter (gc Lt) and has a simple case mapping in Unicode 4.0:
the key and its partner are both assigned in 4.0 (DerivedAge.txt). Its value
is then the simple mapping of UnicodeData.txt (fields 12 and 13).

Why 4.0: the identity rows are exactly the letters of the key ranges that
had no partner in 4.0. Several of them gained one later (U+019A -> U+023D
and U+10A0..10C5 -> U+2D00.. in 4.1; U+0180, U+026B, U+04C0 in 5.0), while
the 4.0 additions U+03F7..03FA are mapped. U+2132 TURNED CAPITAL F became a
cased letter with partner U+214E only in 5.0; it is neither a key nor an
identity row, and the 4.0 rule leaves it out on its own.

Sizes reached, against the reference sizes the tables reproduce (857 and
685 pairs):
  lowercase table  685 pairs (66 identities), the reference size.
  uppercase table  858 pairs (198 identities), one more than the reference.
                   Every Unicode 4.0 lowercase letter of the key ranges is
                   either mapped or an identity row, so the data does not
                   tell which key the reference lacks; none is dropped.

Flag table (charTypes)
----------------------
bits 0-2  script class of the unit's Unicode-range bit (SCRIPT_CLASSES; 4
          for every other bit and for code units in no range). The font
          manager chooses a default font by this class:
            class 0 -> first, 4 -> second, 5 -> fourth, any other -> third,
          and by Unicode-range bit:
            0 -> first; 11, 13, 15, 16, 24, 25 -> fourth; 48, 49, 50, 52,
            54, 55, 56, 59, 61, 65, 68 -> third; any other -> second.
          The classes are chosen so that both choices agree for every unit
          (checked below).
bit 3     decimal digit (gc Nd)
bit 4     white space (PropList White_Space)
bit 5     alphabetic (DerivedCoreProperties Alphabetic)
bit 6     uppercase with a lowercase partner: Uppercase property and a simple
          lowercase mapping to a different unit
bit 7     lowercase with an uppercase partner: Lowercase property, a simple
          uppercase mapping to a different unit, and not a combining mark
          (U+0345 YPOGEGRAMMENI is not flagged)
Bits 3 to 7 describe the Unicode 5.0 repertoire: the unit and its partner
must be assigned in 5.0; later code units carry only their script class.
The properties themselves are those of the installed data (U+180E, white
space until Unicode 6.3, is not flagged).

Counts reached, against the reference counts (886 units with bit 7, 707
with bit 6). Why 5.0: the bit-7 rule gives 718 units in Unicode 4.0, 856 in
4.1, 886 in 5.0 and 986 in 5.1; 5.0 is the reference count exactly. Bit 6
then marks 851 units (683 in 4.0, 821 in 4.1), not 707. The 5.0 figure
comes down to 707 only by leaving out the capitals of Georgian
(U+10A0..10C5), Glagolitic (U+2C00..2C2E), Coptic (U+2C80..2CE2), seven of
Latin Extended-C (U+2C60..2C6B), U+04C0 and U+2132, while their lowercase
partners are counted in the 886. Nothing in the data singles out those
capitals, so they are flagged here. Only bits 6 and 7 have a fixed meaning;
the low bits are this library's classes, so the set of byte values is its
own.

Usage:
  /usr/bin/python3 scripts/gen_character_types.py [--ucd DIR]
  /usr/bin/python3 scripts/gen_character_types.py --check [--ucd DIR]
      exit 1 when the checked-in source is stale
"""

import os
import sys


sys.dont_write_bytecode = True  # leave no __pycache__ in the source tree
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gen_usb_types  # noqa: E402
from generated_source import bmp_run_table, wrapped, write_or_check  # noqa: E402

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUTPUT = os.path.join(ROOT, "base", "CharacterTypeGenerated.cpp")
DEFAULT_UCD = "/usr/share/unicode"

CASE_VERSION = (4, 0)
FLAG_VERSION = (5, 0)

UPPER_KEYS = """
0061-007A 00AA 00B5 00BA 00DF-0177 017A-0180 0183-0185 018D 0192 0195
0199-019B 019E 01A1-01A5 01A8-01AD 01B6 01B9-01BA 01BD-01BF 01C6 01C9
01CC-01F0 01F3 01FB-0236 0250-02AF 0390 03AC-03D1 03D5-03F5 03F8 03FB
0430-0479 0493-04BF 04C2-04CE 04D1-04F3 0501-050F 0561-0587 1D00-1D2B
1D62-1D6B 1E01-1E9B 1EA1-1EF9 1F00-1FF7 2071 207F 210A 210E-210F 2113 212F
2134 2139 213D 2146-2149 FF41-FF5A
"""

LOWER_KEYS = """
0041-005A 00C0-00DE 0100-0136 0139-0147 014A-017D 0181-018B 018E-0198
019C-01A9 01AC-01B7 01C4 01C7 01CA 01CD-01DB 01DE-01EE 01F1 01F4-0232
0386-03AB 03D2-03D4 03D8-03EE 03F4 03F7-03FA 0400-042F 0460-0478 0492-04CD
04D0-04F2 0500-050E 0531-0556 10A0-10C5 1E00-1E8A 1EAA-1EF8 1F08-1FFB 2102
2107 210B-210D 2110-2112 2115 2119-211D 2124-212D 2130-2133 213E-213F 2145
FF21-FF3A
"""

UPPER_IDENTITY = """
00AA 00BA 00DF 0138 0149 0180 018D 019A-019B 01AA-01AB 01BA 01BE 01F0 0221
0234-0236 0250-0252 0255 0258 025A 025C-025F 0261-0262 0264-0267 026A-026E
0270-0271 0273-0274 0276-027F 0281-0282 0284-0287 0289 028C-0291 0293-02AF
0390 03B0 03D7 03F3 0587 1D00-1D2B 1D62-1D6B 1E96-1E9A 1F50 1F52 1F54 1F56
1FB2 1FB4 1FB6-1FB7 1FC2 1FC4 1FC6-1FC7 1FD2-1FD3 1FD6-1FD7 1FE2-1FE4
1FE6-1FE7 1FF2 1FF4 1FF6-1FF7 2071 207F 210A 210E-210F 2113 212F 2134 2139
213D 2146-2149
"""

LOWER_IDENTITY = """
03D2-03D4 04C0 10A0-10C5 2102 2107 210B-210D 2110-2112 2115 2119-211D 2124
2128 212C-212D 2130-2131 2133 213E-213F 2145
"""

# Script classes (low three bits) by Unicode-range bit; other bits get 4.
SCRIPT_BASIC_LATIN, SCRIPT_HANGUL, SCRIPT_OTHER = 0, 1, 4
SCRIPT_COMPLEX, SCRIPT_KANA, SCRIPT_CJK = 5, 6, 7
SCRIPT_CLASSES = {0: SCRIPT_BASIC_LATIN}
SCRIPT_CLASSES.update({b: SCRIPT_COMPLEX for b in (11, 13, 15, 16, 24, 25)})
SCRIPT_CLASSES.update({b: SCRIPT_HANGUL for b in (52, 56)})
SCRIPT_CLASSES.update({b: SCRIPT_KANA for b in (49, 50)})
SCRIPT_CLASSES.update({b: SCRIPT_CJK for b in (48, 54, 55, 59, 61, 65, 68)})

DIGIT, SPACE, LETTER, UPPER, LOWER = 0x08, 0x10, 0x20, 0x40, 0x80


def fail(message):
    sys.stderr.write("gen_character_types: " + message + "\n")
    sys.exit(2)


def code_set(text):
    result = set()
    for item in text.split():
        if "-" in item:
            first, last = item.split("-")
        else:
            first = last = item
        result.update(range(int(first, 16), int(last, 16) + 1))
    return result


def data_lines(path):
    with open(path, encoding="utf-8") as f:
        for line in f:
            line = line.split("#", 1)[0].strip()
            if line:
                yield [field.strip() for field in line.split(";")]


def code_range(text):
    if ".." in text:
        first, last = text.split("..")
        return range(int(first, 16), int(last, 16) + 1)
    return range(int(text, 16), int(text, 16) + 1)


class Ucd:
    def __init__(self, directory):
        self.category = {}
        self.upper = {}
        self.lower = {}
        pending_first = None
        for fields in data_lines(os.path.join(directory, "UnicodeData.txt")):
            cp = int(fields[0], 16)
            name, gc = fields[1], fields[2]
            if name.endswith(", First>"):
                pending_first = cp
                continue
            start = pending_first if name.endswith(", Last>") else cp
            pending_first = None
            for c in range(start, cp + 1):
                self.category[c] = gc
            if fields[12]:
                self.upper[cp] = int(fields[12], 16)
            if fields[13]:
                self.lower[cp] = int(fields[13], 16)
        self.age = {}
        for fields in data_lines(os.path.join(directory, "DerivedAge.txt")):
            version = tuple(int(x) for x in fields[1].split("."))
            for c in code_range(fields[0]):
                self.age[c] = version
        self.props = {}
        for name in ("DerivedCoreProperties.txt", "PropList.txt"):
            for fields in data_lines(os.path.join(directory, name)):
                self.props.setdefault(fields[1], set()).update(code_range(fields[0]))
        self.version = "unknown"
        with open(os.path.join(directory, "DerivedAge.txt"), encoding="utf-8") as f:
            first = f.readline().strip("# \n")
            if first.startswith("DerivedAge-"):
                self.version = first[len("DerivedAge-"):-len(".txt")]

    def assigned_by(self, cp, version):
        return cp in self.age and self.age[cp] <= version

    def partner(self, cp, mapping, version):
        """The simple mapping of cp when cp and its partner exist in version."""
        target = mapping.get(cp)
        if target is None or target == cp:
            return None
        if not (self.assigned_by(cp, version) and self.assigned_by(target, version)):
            return None
        return target


def case_table(ucd, keys, identity, mapping):
    pairs = []
    for cp in sorted(keys):
        if cp in identity:
            if ucd.partner(cp, mapping, CASE_VERSION) is not None:
                fail("identity row U+%04X has a partner in Unicode 4.0" % cp)
            pairs.append((cp, cp))
            continue
        if ucd.category.get(cp) == "Lt":
            continue
        target = ucd.partner(cp, mapping, CASE_VERSION)
        if target is not None:
            if target > 0xFFFF:
                fail("U+%04X maps outside the BMP" % cp)
            pairs.append((cp, target))
    return pairs


def char_types(ucd, usb_table):
    table = [0] * 0x10000
    for cp in range(0x10000):
        value = SCRIPT_CLASSES.get(usb_table[cp], SCRIPT_OTHER)
        if ucd.assigned_by(cp, FLAG_VERSION):
            if ucd.category.get(cp) == "Nd":
                value |= DIGIT
            if cp in ucd.props["White_Space"]:
                value |= SPACE
            if cp in ucd.props["Alphabetic"]:
                value |= LETTER
            if cp in ucd.props["Uppercase"] and ucd.partner(cp, ucd.lower, FLAG_VERSION):
                value |= UPPER
            if (cp in ucd.props["Lowercase"] and ucd.category.get(cp) != "Mn"
                    and ucd.partner(cp, ucd.upper, FLAG_VERSION)):
                value |= LOWER
        table[cp] = value
    return table


def font_slot_by_class(value):
    return {0: 1, 4: 2, 5: 4}.get(value, 3)


def font_slot_by_bit(bit):
    if bit == 0:
        return 1
    if bit in (11, 13, 15, 16, 24, 25):
        return 4
    if bit in (48, 49, 50, 52, 54, 55, 56, 59, 61, 65, 68):
        return 3
    return 2


def build(ucd_dir):
    ucd = Ucd(ucd_dir)
    usb_table = gen_usb_types.build()[0]
    upper = case_table(ucd, code_set(UPPER_KEYS), code_set(UPPER_IDENTITY), ucd.upper)
    lower = case_table(ucd, code_set(LOWER_KEYS), code_set(LOWER_IDENTITY), ucd.lower)
    types = char_types(ucd, usb_table)

    for cp in range(0x10000):
        if font_slot_by_class(types[cp] & 7) != font_slot_by_bit(usb_table[cp]):
            fail("U+%04X: script class and Unicode range pick different fonts" % cp)
    # Every real pair must be reachable through the flags.
    for cp, target in upper:
        if cp != target and not types[cp] & LOWER:
            fail("U+%04X maps to upper case but has no lowercase flag" % cp)
    for cp, target in lower:
        if cp != target and not types[cp] & UPPER:
            fail("U+%04X maps to lower case but has no uppercase flag" % cp)
    return ucd, upper, lower, types


def render(ucd, upper, lower, types):
    out = []
    w = out.append
    identities_up = sum(1 for a, b in upper if a == b)
    identities_low = sum(1 for a, b in lower if a == b)
    w("// GENERATED FILE - DO NOT EDIT BY HAND.")
    w("// Generated by scripts/gen_character_types.py from the Unicode Character")
    w("// Database %s (UnicodeData.txt, DerivedAge.txt, DerivedCoreProperties.txt,"
      % ucd.version)
    w("// PropList.txt of the Debian package unicode-data) and the Unicode-range")
    w("// table of scripts/gen_usb_types.py. The script documents the rules and")
    w("// how the tables differ from the sizes they reproduce. Regenerate with")
    w("//   /usr/bin/python3 scripts/gen_character_types.py")
    w("//")
    w("// Uppercase table: %d pairs (%d identities); lowercase table: %d pairs"
      % (len(upper), identities_up, len(lower)))
    w("// (%d identities); %d units flagged lowercase, %d uppercase."
      % (identities_low, sum(1 for t in types if t & LOWER),
         sum(1 for t in types if t & UPPER)))
    w("")
    w("#include <array>")
    w("")
    w('#include "base/CharacterType.h"')
    w('#include "base/CharacterTypeData.h"')
    w("")
    w("namespace qro_base {")
    w("namespace character_type_data {")
    w("namespace {")
    w("")
    runs = [(cp, value) for cp, value in enumerate(types) if cp == 0 or types[cp - 1] != value]
    for line in bmp_run_table("charTypes", "TypeRun", "value", "kTypeRuns", "expandTypeRuns",
                              "kCharTypes", runs):
        w(line)
    w("")
    w("}  // namespace")
    w("")
    for name, pairs in (("kUpperCasePairs", upper), ("kLowerCasePairs", lower)):
        w("const CasePair %s[] = {" % name)
        for line in wrapped([" {0x%04X, 0x%04X}," % (cp, target) for cp, target in pairs]):
            w(line)
        w("};")
        count = name.replace("Pairs", "PairCount")
        w("const unsigned %s = sizeof(%s) / sizeof(%s[0]);" % (count, name, name))
        w("")
    w("}  // namespace character_type_data")
    w("")
    w("const std::array<unsigned char, 0x10000> CharacterType::charTypes =")
    w("    character_type_data::kCharTypes;")
    w("")
    w("}  // namespace qro_base")
    return "\n".join(out) + "\n"


def main():
    args = sys.argv[1:]
    check = "--check" in args
    ucd_dir = DEFAULT_UCD
    if "--ucd" in args:
        ucd_dir = args[args.index("--ucd") + 1]
    if not os.path.exists(os.path.join(ucd_dir, "UnicodeData.txt")):
        fail("no UnicodeData.txt in %s (install the unicode-data package)" % ucd_dir)
    text = render(*build(ucd_dir))
    return write_or_check(OUTPUT, text, check, "gen_character_types")


if __name__ == "__main__":
    sys.exit(main())
