#!/usr/bin/python3
"""Generates the font lists of data/android/ (fc, df, sf, sf_<language>)
for Android's own font set, from the fonts themselves.

Input: a folder made by scripts/android-fonts.sh. Every face is read with
fontTools; a family is named as the library registers it (the name table's
family name, Windows, English (United States)), and its character set is
that of its regular face (or its first face). Unicode-range numbers and
their blocks come from scripts/gen_usb_types.py, the classification the
library uses.

  sf, sf_<language>  per range number 0..127, the families that map the
                     most code points of the range, best first (ties: the
                     interface language's CJK family, Roboto, Noto Sans,
                     Sans before Serif, then by name), then Noto Sans and
                     Roboto, which every device has. Names with digits are
                     left out (a digit would select a range).
  df                 the five default-font groups: Basic Latin, other
                     alphabets, CJK, complex scripts (the family mapping
                     most of Hebrew, Arabic, the Indic scripts, Thai and
                     Lao) and a last resort (the widest family that maps
                     the space).
  fc                 the chains of Android's families, and of the fonts
                     documents ask for, to the Android family of the same
                     kind (FAMILY_CHAINS below).

Usage:
  /usr/bin/python3 scripts/gen_android_lists.py FONT_DIR [OUTPUT_DIR]
OUTPUT_DIR defaults to data/android.
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from fontTools.ttLib import TTCollection, TTFont  # noqa: E402
import gen_usb_types  # noqa: E402

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# The interface languages with a list of their own, and their CJK families.
LANGUAGES = {
    None: "KR",
    "ko-KR": "KR",
    "ja-JP": "JP",
    "zh-CN": "SC",
    "zh-TW": "TC",
}
CJK_ORDER = ["KR", "JP", "SC", "TC", "HK"]

# Families never offered as script defaults: other weights and widths of a
# family that is offered, and special-purpose faces.
NOT_DEFAULTS = ("Roboto ", "Noto Sans Display", "Noto Serif Display", "Noto Looped ",
                "Noto Sans Mono CJK", "Noto Traditional Nushu", "Inter")
SURE = ["Noto Sans", "Roboto"]  # on every device, and hold Basic Latin

# Ranges of the complex-script default group: Hebrew, Arabic, the Indic
# scripts, Thai and Lao.
COMPLEX_BITS = [11, 13] + list(range(15, 26))

SANS_CHAIN = ["Roboto", "Noto Sans", "Noto Sans CJK KR", "Noto Color Emoji"]
SERIF_CHAIN = ["Noto Serif", "Noto Serif CJK KR", "Noto Sans CJK KR", "Noto Color Emoji"]
MONO_CHAIN = ["Noto Sans Mono CJK KR", "Noto Sans CJK KR", "Noto Color Emoji"]


def cjk_chain(kind, region):
    first = "Noto %s CJK %s" % (kind, region)
    return [first, "Noto Sans" if kind == "Sans" else "Noto Serif", "Noto Color Emoji"]


# Requested font -> the fonts that stand in for it, in order.
FAMILY_CHAINS = [
    # Android's own families.
    ("Roboto", ["Noto Sans", "Noto Sans CJK KR", "Noto Color Emoji"]),
    ("Noto Sans", ["Roboto", "Noto Sans CJK KR", "Noto Color Emoji"]),
    ("Noto Serif", ["Noto Serif CJK KR", "Noto Sans CJK KR", "Noto Color Emoji"]),
    ("Noto Sans CJK KR", ["Noto Sans", "Noto Color Emoji"]),
    ("Noto Serif CJK KR", ["Noto Serif", "Noto Color Emoji"]),
    ("Droid Sans Fallback", ["Noto Sans CJK KR", "Noto Sans", "Noto Color Emoji"]),
] + [(name, SANS_CHAIN) for name in (
    "Arial", "Helvetica", "Calibri", "Verdana", "Tahoma", "Segoe UI", "Arial Unicode MS",
    "Malgun Gothic", "맑은 고딕", "Gulim", "굴림", "Dotum", "돋움", "GulimChe", "굴림체",
    "DotumChe", "돋움체", "NanumGothic", "나눔고딕", "Noto Sans KR")
] + [(name, SERIF_CHAIN) for name in (
    "Times New Roman", "Cambria", "Georgia", "Batang", "바탕", "BatangChe", "바탕체",
    "Gungsuh", "궁서", "궁서체", "NanumMyeongjo", "나눔명조", "Noto Serif KR")
] + [(name, MONO_CHAIN) for name in ("Courier New", "Courier", "Consolas", "Lucida Console")
] + [(name, cjk_chain("Sans", "JP")) for name in (
    "MS Gothic", "MS PGothic", "MS UI Gothic", "Meiryo", "Yu Gothic", "ＭＳ ゴシック",
    "ＭＳ Ｐゴシック", "メイリオ", "游ゴシック")
] + [(name, cjk_chain("Serif", "JP")) for name in (
    "MS Mincho", "MS PMincho", "Yu Mincho", "ＭＳ 明朝", "ＭＳ Ｐ明朝", "游明朝")
] + [(name, cjk_chain("Serif", "SC")) for name in ("SimSun", "NSimSun", "宋体", "新宋体")
] + [(name, cjk_chain("Sans", "SC")) for name in ("SimHei", "Microsoft YaHei", "黑体", "微软雅黑")
] + [(name, cjk_chain("Serif", "TC")) for name in ("PMingLiU", "MingLiU", "新細明體", "細明體")
] + [(name, cjk_chain("Sans", "TC")) for name in ("Microsoft JhengHei", "微軟正黑體")]


def family_name(font):
    name = font["name"]
    for platform, encoding in ((3, 1), (3, 10)):
        record = name.getName(1, platform, encoding, 0x409)
        if record is not None:
            return record.toUnicode()
    return None


def style_name(font):
    record = font["name"].getName(2, 3, 1, 0x409)
    return record.toUnicode() if record is not None else ""


def read_families(font_dir):
    """family -> set of mapped code points (of its regular face)."""
    families = {}
    for file_name in sorted(os.listdir(font_dir)):
        path = os.path.join(font_dir, file_name)
        if file_name.lower().endswith(".ttc"):
            faces = TTCollection(path, lazy=True).fonts
        elif file_name.lower().endswith((".ttf", ".otf")):
            faces = [TTFont(path, lazy=True)]
        else:
            continue
        for face in faces:
            family = family_name(face)
            if family is None:
                continue
            regular = style_name(face) == "Regular"
            if family in families and not regular:
                continue
            if family in families and families[family][0]:
                continue
            families[family] = (regular, set((face.getBestCmap() or {}).keys()))
    return {family: chars for family, (_, chars) in families.items()}


def range_sets():
    _, bits, _, _ = gen_usb_types.build()
    return {bit: [(first, last) for first, last in ranges] for bit, ranges in bits.items()}


def coverage(chars, ranges):
    return sum(len(chars.intersection(range(first, last + 1))) for first, last in ranges)


def preference(family, region):
    """Smaller is better among families of equal coverage."""
    if " CJK " in family:
        tail = family.rsplit(" ", 1)[-1]
        rank = CJK_ORDER.index(tail) if tail in CJK_ORDER else len(CJK_ORDER)
        if tail == region:
            rank = -1
        return (0 if "Sans" in family else 1, rank, family)
    if family == "Roboto":
        return (-2, 0, family)
    if family == "Noto Sans":
        return (-1, 0, family)
    return (0 if "Sans" in family else 1, 0, family)


def script_defaults(families, ranges, region):
    lines = [
        "# Generated by scripts/gen_android_lists.py from Android's font set; do not",
        "# edit. Script default fonts: per Unicode-range number, the families that",
        "# map the most of its characters, best first.",
    ]
    offered = {f: c for f, c in families.items()
               if not f.startswith(NOT_DEFAULTS) and not any(ch.isdigit() for ch in f)}
    for bit in range(128):
        blocks = ranges.get(bit, [])
        scored = []
        for family, chars in offered.items():
            count = coverage(chars, blocks) if blocks else 0
            if count > 0:
                scored.append((-count, preference(family, region), family))
        scored.sort()
        names = [family for _, _, family in scored[:3]]
        names += [name for name in SURE if name not in names]
        lines.append("")
        lines.append(str(bit))
        lines.extend(names)
    return "\n".join(lines) + "\n"


def default_fonts(families, ranges):
    complex_blocks = [r for bit in COMPLEX_BITS for r in ranges.get(bit, [])]
    offered = {f: c for f, c in families.items() if not f.startswith(NOT_DEFAULTS)}
    complex_best = sorted(offered, key=lambda f: (-coverage(offered[f], complex_blocks),
                                                  preference(f, "KR")))[:2]
    widest = sorted((f for f in offered if 0x20 in offered[f]),
                    key=lambda f: (-len(offered[f]), preference(f, "KR")))[:2]
    groups = [
        ("Basic Latin", ["Roboto", "Noto Sans"]),
        ("Other alphabets and symbols", ["Noto Sans", "Roboto"]),
        ("Hangul, kana and CJK ideographs",
         ["Noto Sans CJK KR", "Noto Sans CJK JP", "Noto Sans CJK SC", "Noto Sans CJK TC",
          "Droid Sans Fallback", "Noto Sans"]),
        ("Complex scripts (Hebrew, Arabic, Indic, Thai, Lao)", complex_best + ["Noto Sans"]),
        ("Last resort; must hold a space", widest + ["Noto Sans", "Roboto"]),
    ]
    lines = [
        "# Generated by scripts/gen_android_lists.py from Android's font set; do not",
        "# edit. Default fonts: five groups of candidates, best first, separated by",
        "# one empty line; the first installed candidate of each group is used.",
    ]
    for number, (title, names) in enumerate(groups, 1):
        if number > 1:
            lines.append("")
        lines.append("# %d. %s" % (number, title))
        seen = []
        for name in names:
            if name not in seen:
                seen.append(name)
        lines.extend(seen)
    return "\n".join(lines) + "\n"


def font_chains():
    lines = [
        "# Generated by scripts/gen_android_lists.py; do not edit. Font chains: a",
        "# font, then the fonts that stand in, in order, for the characters it",
        "# lacks. Each block ends with an empty line; line ends are bare LF.",
        "",
    ]
    for font, chain in FAMILY_CHAINS:
        lines.append(font)
        lines.extend(chain)
        lines.append("")
    return "\n".join(lines) + "\n"


def main(argv):
    if len(argv) not in (2, 3):
        sys.stderr.write(__doc__)
        return 2
    font_dir = argv[1]
    output = argv[2] if len(argv) == 3 else os.path.join(ROOT, "data", "android")
    families = read_families(font_dir)
    needed = {name for _, chain in FAMILY_CHAINS for name in chain} | set(SURE)
    missing = sorted(needed - set(families))
    if missing:
        sys.stderr.write("gen_android_lists: not in %s: %s\n" % (font_dir, ", ".join(missing)))
        return 1
    ranges = range_sets()
    os.makedirs(output, exist_ok=True)
    files = {"fc": font_chains(), "df": default_fonts(families, ranges)}
    for language, region in LANGUAGES.items():
        files["sf" if language is None else "sf_" + language] = \
            script_defaults(families, ranges, region)
    for name, text in files.items():
        with open(os.path.join(output, name), "w", encoding="utf-8", newline="\n") as out:
            out.write(text)
    print("gen_android_lists: %d families, wrote %s" % (len(families), ", ".join(sorted(files))))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
