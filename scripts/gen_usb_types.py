#!/usr/bin/python3
"""Generates common/analysis/UsbTypesGenerated.cpp: the Unicode-range
classification tables of qro_common::FontUSBType.

Input: the OS/2 Unicode-range block lists below (bits 0 to 122 of
ulUnicodeRange1..4, in the revision that reserves bits 123 to 127, plus the
library's own bit 127 for the pictographic supplement), and the local
differences from that assignment:

  - U+A960..A97C (Hangul Jamo Extended-A) and U+AC00..D7FB (Hangul Syllables
    and Hangul Jamo Extended-B up to U+D7FB) are bit 56; U+D7FC..D7FF are 255;
  - U+D800..DFFF are bit 57, U+E000..F8FF bit 60;
  - the code points outside every block of the assignment are 255 (GAPS).

The BMP table is built block by block from the lists; the script checks that
no two blocks overlap, that the uncovered BMP code points are exactly GAPS
plus U+D7FC..D7FF, and that the supplementary list agrees with the
supplementary blocks of the per-bit lists.

Usage:
  /usr/bin/python3 scripts/gen_usb_types.py           write the source
  /usr/bin/python3 scripts/gen_usb_types.py --check   exit 1 when the
                                                      checked-in source is stale
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from generated_source import bmp_run_table, write_or_check  # noqa: E402

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUTPUT = os.path.join(ROOT, "common", "analysis", "UsbTypesGenerated.cpp")

# Bits with more than one block, sub-ranges in index order.
MULTI = """
4: 0250-02AF 1D00-1D7F 1D80-1DBF
5: 02B0-02FF A700-A71F
6: 0300-036F 1DC0-1DFF
9: 0400-04FF 0500-052F 2DE0-2DFF A640-A69F
13: 0600-06FF 0750-077F
26: 10A0-10FF 2D00-2D2F
29: 1E00-1EFF 2C60-2C7F A720-A7FF
31: 2000-206F 2E00-2E7F
37: 2190-21FF 27F0-27FF 2900-297F 2B00-2BFF
38: 2200-22FF 2A00-2AFF 27C0-27EF 2980-29FF
50: 30A0-30FF 31F0-31FF
51: 3100-312F 31A0-31BF
56: A960-A97C AC00-D7AF D7B0-D7FB
59: 4E00-9FFF 2E80-2EFF 2F00-2FDF 2FF0-2FFF 3400-4DBF 20000-2A6DF 3190-319F
61: 31C0-31EF F900-FAFF 2F800-2FA1F
65: FE10-FE1F FE30-FE4F
75: 1200-137F 1380-139F 2D80-2DDF
80: 1780-17FF 19E0-19FF
83: A000-A48F A490-A4CF
84: 1700-171F 1720-173F 1740-175F 1760-177F
88: 1D000-1D0FF 1D100-1D1FF 1D200-1D24F
90: FF000-FFFFD 100000-10FFFD
91: FE00-FE0F E0100-E01EF
101: 10000-1007F 10080-100FF 10100-1013F
110: 12000-123FF 12400-1247F
121: 102A0-102DF 10280-1029F 10920-1093F
122: 1F030-1F09F 1F000-1F02F
"""

# Bits with a single block, bit:first-last.
SINGLE = """
0:0000-007F 1:0080-00FF 2:0100-017F 3:0180-024F 7:0370-03FF 8:2C80-2CFF
10:0530-058F 11:0590-05FF 12:A500-A63F 14:07C0-07FF 15:0900-097F
16:0980-09FF 17:0A00-0A7F 18:0A80-0AFF 19:0B00-0B7F 20:0B80-0BFF
21:0C00-0C7F 22:0C80-0CFF 23:0D00-0D7F 24:0E00-0E7F 25:0E80-0EFF
27:1B00-1B7F 28:1100-11FF 30:1F00-1FFF 32:2070-209F 33:20A0-20CF
34:20D0-20FF 35:2100-214F 36:2150-218F 39:2300-23FF 40:2400-243F
41:2440-245F 42:2460-24FF 43:2500-257F 44:2580-259F 45:25A0-25FF
46:2600-26FF 47:2700-27BF 48:3000-303F 49:3040-309F 52:3130-318F
53:A840-A87F 54:3200-32FF 55:3300-33FF 57:D800-DFFF 58:10900-1091F
60:E000-F8FF 62:FB00-FB4F 63:FB50-FDFF 64:FE20-FE2F 66:FE50-FE6F
67:FE70-FEFF 68:FF00-FFEF 69:FFF0-FFFF 70:0F00-0FFF 71:0700-074F
72:0780-07BF 73:0D80-0DFF 74:1000-109F 76:13A0-13FF 77:1400-167F
78:1680-169F 79:16A0-16FF 81:1800-18AF 82:2800-28FF 85:10300-1032F
86:10330-1034F 87:10400-1044F 89:1D400-1D7FF 92:E0000-E007F 93:1900-194F
94:1950-197F 95:1980-19DF 96:1A00-1A1F 97:2C00-2C5F 98:2D30-2D7F
99:4DC0-4DFF 100:A800-A82F 102:10140-1018F 103:10380-1039F
104:103A0-103DF 105:10450-1047F 106:10480-104AF 107:10800-1083F
108:10A00-10A5F 109:1D300-1D35F 111:1D360-1D37F 112:1B80-1BBF
113:1C00-1C4F 114:1C50-1C7F 115:A880-A8DF 116:A900-A92F 117:A930-A95F
118:AA00-AA5F 119:10190-101CF 120:101D0-101FF 127:1F0A0-1F6FF
"""

# Code points above the BMP, in the order they are tested.
SUPPLEMENTARY = """
58: 10900-1091F
59: 20000-2A6DF
61: 2F800-2FA1F
85: 10300-1032F
86: 10330-1034F
87: 10400-1044F
88: 1D000-1D0FF 1D100-1D1FF 1D200-1D24F
89: 1D400-1D7FF
90: FF000-FFFFD 100000-10FFFD
91: E0100-E01EF
92: E0000-E007F
101: 10000-1007F 10080-100FF 10100-1013F
102: 10140-1018F
103: 10380-1039F
104: 103A0-103DF
105: 10450-1047F
106: 10480-104AF
107: 10800-1083F
108: 10A00-10A5F
109: 1D300-1D35F
110: 12000-123FF 12400-1247F
111: 1D360-1D37F
119: 10190-101CF
120: 101D0-101FF
121: 102A0-102DF 10280-1029F 10920-1093F
122: 1F030-1F09F 1F000-1F02F
127: 1F0A0-1F6FF
"""

# BMP code points that belong to no block of the assignment.
GAPS = """
0800-08FF 18B0-18FF 1A20-1AFF 1BC0-1BFF 1C80-1CFF 2FE0-2FEF A4D0-A4FF
A6A0-A6FF A830-A83F A8E0-A8FF A97D-A9FF AA60-ABFF D7FC-D7FF
"""

# Local overrides of the assignment, checked against the built table.
DIFFERENCES = [
    (0xA960, 0xA97C, 56),
    (0xAC00, 0xD7FB, 56),
    (0xD7FC, 0xD7FF, 255),
    (0xD800, 0xDFFF, 57),
    (0xE000, 0xF8FF, 60),
]

NO_BIT = 255


def parse_range(text):
    first, last = text.split("-")
    return int(first, 16), int(last, 16)


def parse_bit_lists(text):
    """'bit: r r r' lines -> [(bit, [(first, last), ...])]"""
    result = []
    for line in text.strip().splitlines():
        bit, ranges = line.split(":")
        result.append((int(bit), [parse_range(r) for r in ranges.split()]))
    return result


def parse_single(text):
    result = []
    for item in text.split():
        bit, rng = item.split(":")
        result.append((int(bit), [parse_range(rng)]))
    return result


def fail(message):
    sys.stderr.write("gen_usb_types: " + message + "\n")
    sys.exit(2)


def build():
    multi = parse_bit_lists(MULTI)
    single = parse_single(SINGLE)
    bits = {}
    for bit, ranges in multi + single:
        if bit in bits:
            fail("bit %d listed twice" % bit)
        bits[bit] = ranges

    # The BMP table, block by block.
    table = [NO_BIT] * 0x10000
    for bit in sorted(bits):
        for first, last in bits[bit]:
            if first > last:
                fail("empty range %04X-%04X" % (first, last))
            if first > 0xFFFF:
                continue
            if last > 0xFFFF:
                fail("range %04X-%04X crosses the BMP end" % (first, last))
            for cp in range(first, last + 1):
                if table[cp] != NO_BIT:
                    fail("U+%04X is in bits %d and %d" % (cp, table[cp], bit))
                table[cp] = bit

    gaps = set()
    for item in GAPS.split():
        first, last = parse_range(item)
        gaps.update(range(first, last + 1))
    uncovered = {cp for cp in range(0x10000) if table[cp] == NO_BIT}
    if uncovered != gaps:
        fail("uncovered BMP code points differ from the gap list: %d extra, %d missing"
             % (len(uncovered - gaps), len(gaps - uncovered)))
    for first, last, bit in DIFFERENCES:
        for cp in range(first, last + 1):
            if table[cp] != bit:
                fail("U+%04X is %d, expected %d" % (cp, table[cp], bit))

    # Supplementary code points: the list must be exactly the per-bit blocks
    # above the BMP, without overlaps.
    supplementary = []
    for bit, ranges in parse_bit_lists(SUPPLEMENTARY):
        for first, last in ranges:
            supplementary.append((first, last, bit))
    from_bits = sorted((f, l, b) for b, rs in bits.items() for f, l in rs if f > 0xFFFF)
    supplementary.sort()
    if supplementary != from_bits:
        fail("the supplementary list does not match the per-bit blocks")
    for (f1, l1, _), (f2, _, _) in zip(supplementary, supplementary[1:]):
        if f2 <= l1:
            fail("supplementary ranges overlap at %X" % f2)

    if sum(len(r) for r in bits.values()) > 255:
        fail("too many ranges for the 8-bit offsets of kUsbBits")
    multi_bits = {bit for bit, _ in multi}
    return table, bits, multi_bits, supplementary


def runs_of(table):
    runs = []
    for cp, value in enumerate(table):
        if not runs or runs[-1][1] != value:
            runs.append((cp, value))
    return runs


def render(table, bits, multi_bits, supplementary):
    out = []
    w = out.append
    w("// GENERATED FILE - DO NOT EDIT BY HAND.")
    w("// Generated by scripts/gen_usb_types.py from the OS/2 Unicode-range block")
    w("// lists (bits 0-122, plus bit 127 for U+1F0A0..1F6FF) and the local")
    w("// differences written down in that script. Change the script and run")
    w("//   /usr/bin/python3 scripts/gen_usb_types.py")
    w("// to regenerate.")
    w("")
    w("#include <array>")
    w("")
    w('#include "common/analysis/FontUSBType.h"')
    w('#include "common/analysis/UsbTypesData.h"')
    w("")
    w("namespace qro_common {")
    w("namespace usb_data {")
    w("namespace {")
    w("")
    for line in bmp_run_table("The BMP", "BmpRun", "bit", "kBmpRuns", "expandBmpRuns",
                              "kUsbTypes", runs_of(table)):
        w(line)
    w("")
    w("}  // namespace")
    w("")

    # Ranges grouped by bit.
    w("const UsbRange kUsbRanges[] = {")
    entries = []
    offsets = {}
    for bit in sorted(bits):
        offsets[bit] = len(entries)
        for first, last in bits[bit]:
            entries.append((first, last, bit))
    for first, last, bit in entries:
        w("    {0x%05X, 0x%05X},  // bit %d" % (first, last, bit))
    w("};")
    w("")
    w("const UsbBitRanges kUsbBits[kUsbBitCount] = {")
    for bit in range(128):
        if bit in bits:
            count = len(bits[bit])
            sub = count if bit in multi_bits else 0
            w("    {%d, %d, %d},  // bit %d" % (offsets[bit], count, sub, bit))
        else:
            w("    {0, 0, 0},  // bit %d: never produced" % bit)
    w("};")
    w("")
    w("const SupplementaryRange kSupplementaryRanges[] = {")
    for first, last, bit in supplementary:
        w("    {0x%05X, 0x%05X, %d}," % (first, last, bit))
    w("};")
    w("const unsigned kSupplementaryRangeCount =")
    w("    sizeof(kSupplementaryRanges) / sizeof(kSupplementaryRanges[0]);")
    w("")
    w("}  // namespace usb_data")
    w("")
    w("const std::array<unsigned char, 0x10000> FontUSBType::USB_TYPES = usb_data::kUsbTypes;")
    w("")
    w("}  // namespace qro_common")
    return "\n".join(out) + "\n"


def main():
    check = "--check" in sys.argv[1:]
    text = render(*build())
    return write_or_check(OUTPUT, text, check, "gen_usb_types")


if __name__ == "__main__":
    sys.exit(main())
