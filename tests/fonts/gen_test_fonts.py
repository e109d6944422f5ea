#!/usr/bin/python3
"""Writes the small purpose-built fonts that libkelfont's tests open.

Usage: /usr/bin/python3 gen_test_fonts.py OUTPUT_DIR

Needs fontTools (Debian package python3-fonttools, see
scripts/install-deps.sh). The build runs this script into
<build>/tests/fonts and passes that directory to the tests as
KELFONT_TEST_FONT_DIR; no font file is kept in the source tree.

Every font is made for one case of the font file analysis (family names on
the different name-table platforms, OS/2 ranges and PANOSE, Unicode and
symbol character maps, unscaled advances, legacy `kern` pairs, outlines,
collections, missing tables). Every glyph of a font has its own advance
(base + step * glyph index), so a test can tell from an advance which glyph
was measured.

The fonts (family "KelTest ..." unless said otherwise; unitsPerEm 2048
except cff.otf):

  basic.ttf             Regular of "KelTest Basic": Windows English names 1,
                        2, 4, 6; format 4 map of printable ASCII, some Latin-1,
                        U+AC00, U+AC01, U+D7A3 and U+E000; known PANOSE, OS/2
                        ranges, hhea metrics; a format 0 `kern` table (A-V
                        -150, V-A -140, T-o -80, L-T 25, ~-A -30); outlines:
                        "A" a triangle, "O" two contours, "o" quadratic
                        curves, the space empty, every other glyph a box
  bold.ttf, italic.ttf, bolditalic.ttf
                        the other styles of "KelTest Basic", other advances
  macroman.ttf          only family record: Mac Roman, language 0, bytes
                        "KelTest Caf" 8E 20 DB ("KelTest Café €")
  macenc1.ttf           only family record: Mac Japanese (encoding 1),
                        language 11, Shift-JIS bytes 83 65 83 58 83 67
  macother.ttf          family records: Mac Roman for Mac languages 60 (no
                        Windows equivalent) and 200 (beyond the language
                        table), then an ISO one (platform 2, language 0)
  macenc3.ttf           Mac Korean (encoding 3) family record, language 23,
                        then a Windows 0x0412 one
  winnames.ttf          Windows family names for 0x0409 and 0x0412
  winnames_ko.ttf       Windows family names for 0x0411 and 0x0412 only
  winnames_other.ttf    Windows family names for 0x0407 and 0x040C only
  unicode03.ttf         family record on platform 0, encoding 3, language 0
                        ("KelTest Uni"), then Windows 0x0409 ("KelTest Win
                        English")
  symbol.ttf            a (3,0) map only (U+F020, F041, F042, F0B6), no glyph
                        names, code-page bit 31
  wingdings.ttf         symbol.ttf's tables under the family "Wingdings", a
                        name the font table flags as a symbol font
  noos2.ttf             no OS/2 table
  kern_tilde_missing.ttf  kerning, every printable ASCII character but "~"
  kern_outside_ascii.ttf  all printable ASCII, kerning only between U+00C4
                        and U+00D6
  emoji_name.ttf        family "Kel" U+1F600 (a surrogate pair in UTF-16)
  supplementary.ttf     (3,10) format 12 map with U+1F600, U+20000, U+1D400
  cprange2_zero.ttf     ulCodePageRange2 and ulUnicodeRange2..4 zero
  ranges_zero.ttf       all six OS/2 range words zero
  longname.ttf          a family name of 1500 Hangul syllables
  fixedpitch.ttf        post.isFixedPitch 1
  nopost_pclt.ttf       no `post`, a PCLT table whose pitch is the space width
  nopost.ttf            neither `post` nor PCLT
  cff.otf               CFF outlines, unitsPerEm 1000
  vertical.ttf          basic's glyphs with vhea and vmtx
  cjk_flag.ttf          Unicode-range bit 56 (Hangul Syllables) and code-page
                        bit 19 (949), Hangul syllables mapped
  cjk_range_only.ttf, cjk_codepage_only.ttf, cjk_jamo_only.ttf
                        one East Asian signature bit each (Unicode-range bit
                        56, code-page bit 19, Unicode-range bit 28)
  collection.ttc        three faces, "KelTest Coll A", "... B", "... C"
  glyphs65535.ttf       65,535 glyphs (the most a font can have), all but
                        .notdef mapped, advances 1 + glyph index
  collection255.ttc     255 faces, "KelTest Coll 255 0" to "... 254", alike but
                        for their names
  nohead.ttf            no `head`: the header is a `bhed` table and the
                        glyphs are one bitmap strike, which is the only kind
                        of sfnt without `head` that FreeType opens. FreeType
                        then reads neither hhea, hmtx nor OS/2 from the file
                        (they are there) and hands out zero-filled records
                        for them; its units per em come from `bhed`.

What the tests compare with is not written down twice: after writing the
fonts this script opens them again with fontTools (a reader independent of
FreeType and of the library) and writes what it finds, per font file, into
expected_<stem>.txt (basic.ttf -> expected_basic.txt; one record per line,
fields separated by single spaces, numbers decimal; read by
tests/support/TestFonts.h), and last the list of font files, fonts.txt, which
the build uses as its output stamp.

Records of expected_<stem>.txt (a record applies to the face named by the
latest `face` line; a collection has one block per face):

  face <index>
  numGlyphs <n>
  head <0|1>                       whether the face has a `head` table
  unitsPerEm <n>                   (only with a head table)
  hhea <ascender> <descender> <lineGap>
  os2 <version>                    or `os2 none`; the next three only with OS/2
  panose <10 bytes>
  unicodeRange <ulUnicodeRange1> <2> <3> <4>
  codePageRange <ulCodePageRange1> <2>
  pclt <Pitch>                     (only with a PCLT table)
  vertical <0|1>                   whether the face has vhea and vmtx
  name <platform> <encoding> <language> <nameID> <bytes as hex>
  char <code point> <glyph index> <advance>   from the (3,10) map if
                                   present, else (3,1), else (0,*), else (3,0)
  glyph <glyph index> <advance>
  kern <left code point> <right code point> <value>   from the format 0
                                   `kern` subtable; glyphs mapped back to
                                   code points through the charmap above
  contour <glyph index> <point count> <x> <y> <on> ...   TrueType outlines
                                   only, one line per contour, points in
                                   file order, <on> 1 for on-curve points
"""

import io
import logging
import os
import struct
import sys

try:
    from fontTools.fontBuilder import FontBuilder
    from fontTools.pens.t2CharStringPen import T2CharStringPen
    from fontTools.pens.ttGlyphPen import TTGlyphPen
    from fontTools.ttLib import TTCollection, TTFont, newTable
    from fontTools.ttLib.sfnt import SFNTWriter
    from fontTools.ttLib.tables.DefaultTable import DefaultTable
    from fontTools.ttLib.tables.O_S_2f_2 import Panose
    from fontTools.ttLib.tables._c_m_a_p import CmapSubtable
    from fontTools.ttLib.tables._k_e_r_n import KernTable_format_0
    from fontTools.ttLib.tables._n_a_m_e import NameRecord
except ImportError as error:
    sys.stderr.write(
        "gen_test_fonts.py: fontTools is missing (%s); install python3-fonttools "
        "(scripts/install-deps.sh)\n" % error)
    sys.exit(2)

# A fixed time stamp keeps the generated files identical from run to run.
TIMESTAMP = 0x7C259DC0  # 2010-01-01, seconds since 1904

PRINTABLE_ASCII = list(range(0x20, 0x7F))

PANOSE_REGULAR = (2, 11, 6, 4, 2, 2, 2, 2, 2, 4)
PANOSE_BOLD = (2, 11, 8, 4, 2, 2, 2, 2, 2, 4)
PANOSE_ITALIC = (2, 11, 6, 4, 2, 2, 2, 9, 2, 4)
PANOSE_BOLD_ITALIC = (2, 11, 8, 4, 2, 2, 2, 9, 2, 4)
PANOSE_FIELDS = ("bFamilyType", "bSerifStyle", "bWeight", "bProportion", "bContrast",
                 "bStrokeVariation", "bArmStyle", "bLetterForm", "bMidline", "bXHeight")

# OS/2 ranges of basic.ttf and its styles: arbitrary but recognisable, with
# no East Asian bit (Hangul Jamo, the CJK Unicode ranges, code pages 932 to
# 1361) so that the East Asian flag stays clear.
BASIC_RANGES = dict(
    ulUnicodeRange1=0x00000003,  # Basic Latin, Latin-1 Supplement
    ulUnicodeRange2=0x10000000,  # bit 60, Private Use Area
    ulUnicodeRange3=0x00000010,  # bit 68
    ulUnicodeRange4=0x00000020,  # bit 101
    ulCodePageRange1=0x00000001,  # 1252 Latin 1
    ulCodePageRange2=0x40000000,  # bit 62
)

# Family name of longname.ttf: 1500 Hangul syllables, 3000 bytes of UTF-16
# and 4500 bytes of UTF-8.
LONG_NAME = "".join(chr(0xAC00 + (i * 37) % 11172) for i in range(1500))


def uni_name(code_point):
    return "uni%04X" % code_point if code_point <= 0xFFFF else "u%05X" % code_point


# ---------------------------------------------------------------------------
# Outlines. Every shape is drawn inside the glyph's advance; TrueType fonts
# get the quadratic curves as they are, CFF fonts get them as cubics.

def draw_shape(pen, shape, advance):
    left, right = 50, advance - 50
    if shape == "none":
        return
    if shape == "rect":
        pen.moveTo((left, 0))
        pen.lineTo((left, 700))
        pen.lineTo((right, 700))
        pen.lineTo((right, 0))
        pen.closePath()
    elif shape == "triangle":
        pen.moveTo((left, 0))
        pen.lineTo((advance // 2, 1400))
        pen.lineTo((right, 0))
        pen.closePath()
    elif shape == "ring":
        pen.moveTo((left, 0))
        pen.lineTo((left, 1400))
        pen.lineTo((right, 1400))
        pen.lineTo((right, 0))
        pen.closePath()
        pen.moveTo((left + 100, 200))
        pen.lineTo((right - 100, 200))
        pen.lineTo((right - 100, 1200))
        pen.lineTo((left + 100, 1200))
        pen.closePath()
    elif shape == "curve":
        middle = advance // 2
        pen.moveTo((middle, 0))
        pen.qCurveTo((left, 0), (left, 500))
        pen.qCurveTo((left, 1000), (middle, 1000))
        pen.qCurveTo((right, 1000), (right, 500))
        pen.qCurveTo((right, 0), (middle, 0))
        pen.closePath()
    else:
        raise ValueError("unknown shape " + shape)


def default_shape(code_point):
    if code_point is None:
        return "rect"
    if code_point in (0x20, 0xA0, 0xF020):
        return "none"
    return {0x41: "triangle", 0x4F: "ring", 0x6F: "curve"}.get(code_point, "rect")


# ---------------------------------------------------------------------------
# Font description. A font is a dict:
#   file, family (used for the default name records), style
#   glyphs: list of (glyph name, code point or None) after .notdef
#   base, step: advance of glyph index i is base + step * i
#   names: list of (nameID, platform, encoding, language, str or bytes);
#          default: Windows English family, style, full and PostScript name
#   cmap: "unicode" (fontBuilder: (0,3) and (3,1) format 4, plus (3,10)
#         format 12 when a code point lies above U+FFFF) or "symbol" ((3,0)
#         format 4 only)
#   os2: dict of OS/2 fields or None for no OS/2 table
#   kern: dict {(left code point, right code point): value} or None
#   upm, hhea (ascender, descender, lineGap), typo (OS/2 typo metrics)
#   vertical: add vhea and vmtx; cff: CFF outlines instead of glyf
#   bold, italic: style bits in OS/2 fsSelection and head macStyle
#   post: False for no `post` table; glyph_names: False for a format 3
#   `post`; fixed_pitch: post.isFixedPitch; pclt_pitch: add a PCLT table


def default_names(family, style):
    full = family if style == "Regular" else family + " " + style
    ps = (family + "-" + style).replace(" ", "")
    return [
        (1, 3, 1, 0x0409, family),
        (2, 3, 1, 0x0409, style),
        (4, 3, 1, 0x0409, full),
        (6, 3, 1, 0x0409, ps),
    ]


def make_font(font_def):
    cff = font_def.get("cff", False)
    upm = font_def.get("upm", 2048)
    fb = FontBuilder(upm, isTTF=not cff)
    fb.font.recalcTimestamp = False

    glyph_order = [".notdef"] + [name for name, _ in font_def["glyphs"]]
    code_of = {".notdef": None}
    code_of.update({name: cp for name, cp in font_def["glyphs"]})
    advances = {name: font_def["base"] + font_def["step"] * i for i, name in enumerate(glyph_order)}
    assert len(set(advances.values())) == len(advances), font_def["file"]

    fb.setupGlyphOrder(glyph_order)
    mapping = {cp: name for name, cp in font_def["glyphs"] if cp is not None}

    if font_def.get("cmap", "unicode") == "unicode":
        fb.setupCharacterMap(mapping)
    else:
        subtable = CmapSubtable.newSubtable(4)
        subtable.platformID, subtable.platEncID, subtable.language = 3, 0, 0
        subtable.cmap = mapping
        cmap = newTable("cmap")
        cmap.tableVersion = 0
        cmap.tables = [subtable]
        fb.font["cmap"] = cmap

    shapes = {name: font_def.get("shapes", {}).get(name, default_shape(code_of[name]))
              for name in glyph_order}
    metrics = {}
    if cff:
        charstrings = {}
        for name in glyph_order:
            pen = T2CharStringPen(advances[name], None)
            draw_shape(pen, shapes[name], advances[name])
            charstrings[name] = pen.getCharString()
        ps_name = (font_def["family"] + "-" + font_def.get("style", "Regular")).replace(" ", "")
        fb.setupCFF(ps_name, {"FullName": font_def["family"]}, charstrings, {})
        for name in glyph_order:
            lsb = 0 if shapes[name] == "none" else 50
            metrics[name] = (advances[name], lsb)
    else:
        glyphs = {}
        for name in glyph_order:
            pen = TTGlyphPen(None)
            draw_shape(pen, shapes[name], advances[name])
            glyphs[name] = pen.glyph()
        fb.setupGlyf(glyphs)
        for name in glyph_order:
            glyph = glyphs[name]
            metrics[name] = (advances[name], glyph.xMin if glyph.numberOfContours else 0)
    fb.setupHorizontalMetrics(metrics)

    ascender, descender, line_gap = font_def.get("hhea", (1900, -500, 90))
    fb.setupHorizontalHeader(ascent=ascender, descent=descender, lineGap=line_gap)

    names = font_def.get("names") or default_names(font_def["family"], font_def.get("style", "Regular"))
    name_table = newTable("name")
    name_table.names = []
    for name_id, platform, encoding, language, text in names:
        record = NameRecord()
        record.nameID, record.platformID = name_id, platform
        record.platEncID, record.langID = encoding, language
        record.string = text
        name_table.names.append(record)
    fb.font["name"] = name_table

    bold, italic = font_def.get("bold", False), font_def.get("italic", False)
    if font_def.get("os2", {}) is not None:
        typo_ascender, typo_descender, typo_line_gap = font_def.get("typo", (1600, -400, 70))
        panose = Panose()
        for field, value in zip(PANOSE_FIELDS, font_def.get("panose", PANOSE_REGULAR)):
            setattr(panose, field, value)
        fs_selection = (0x20 if bold else 0) | (0x01 if italic else 0)
        os2 = dict(
            version=4,
            usWeightClass=700 if bold else 400,
            fsSelection=fs_selection or 0x40,
            panose=panose,
            sTypoAscender=typo_ascender,
            sTypoDescender=typo_descender,
            sTypoLineGap=typo_line_gap,
            usWinAscent=2000,
            usWinDescent=520,
            usFirstCharIndex=min(min(mapping), 0xFFFF),
            usLastCharIndex=min(max(mapping), 0xFFFF),
            sxHeight=700,
            sCapHeight=1400,
            achVendID="KELT",
        )
        os2.update(BASIC_RANGES)
        os2.update(font_def.get("os2", {}))
        fb.setupOS2(**os2)

    if font_def.get("post", True):
        fb.setupPost(keepGlyphNames=font_def.get("glyph_names", True),
                     isFixedPitch=font_def.get("fixed_pitch", 0))
    if "pclt_pitch" in font_def:
        fb.font["PCLT"] = pclt_table(font_def["pclt_pitch"])
    fb.updateHead(created=TIMESTAMP, modified=TIMESTAMP,
                  macStyle=(1 if bold else 0) | (2 if italic else 0))

    if font_def.get("vertical"):
        fb.setupVerticalHeader(ascent=1024, descent=-1024)
        fb.setupVerticalMetrics(
            {name: (1500 + 3 * i, 100) for i, name in enumerate(glyph_order)})

    if font_def.get("kern"):
        subtable = KernTable_format_0()
        subtable.coverage = 1  # horizontal, kerning values
        subtable.kernTable = {(mapping[left], mapping[right]): value
                              for (left, right), value in font_def["kern"].items()}
        kern = newTable("kern")
        kern.version = 0
        kern.kernTables = [subtable]
        fb.font["kern"] = kern
    return fb.font


def pclt_table(pitch):
    """A PCLT table (fontTools has no class for it) with the given pitch."""
    data = struct.pack(">LLHHHHHH", 0x00010000, 0, pitch, 700, 0, 0, 1400, 0)
    data += b"KelTest PCLT    " + b"\0" * 8 + b"KELTST" + struct.pack(">bbBB", 0, 0, 0, 0)
    assert len(data) == 54
    table = DefaultTable("PCLT")
    table.data = data
    return table


def font_bytes(font):
    data = io.BytesIO()
    font.save(data)
    return data.getvalue()


def bitmap_strike(num_glyphs, ppem=16):
    """EBLC and EBDT bytes of one strike of 1x1 bitmaps, glyph i advancing
    5 + i pixels (index subtable format 1, image format 1)."""
    line_metrics = struct.pack(">bbBbbbbbbbbb", 12, -4, 16, 1, 0, 0, 0, 0, 12, -4, 0, 0)
    index_subtables_size = 8 + 8 + 4 * (num_glyphs + 1)
    eblc = struct.pack(">LL", 0x00020000, 1)
    eblc += struct.pack(">LLLL", 8 + 48, index_subtables_size, 1, 0)
    eblc += line_metrics + line_metrics
    eblc += struct.pack(">HHBBBb", 0, num_glyphs - 1, ppem, ppem, 1, 1)
    eblc += struct.pack(">HHL", 0, num_glyphs - 1, 8)      # index subtable array
    eblc += struct.pack(">HHL", 1, 1, 4)                   # index subtable header
    eblc += b"".join(struct.pack(">L", 6 * i) for i in range(num_glyphs + 1))
    ebdt = struct.pack(">L", 0x00020000)
    for i in range(num_glyphs):
        ebdt += struct.pack(">BBbbB", 1, 1, 0, 1, 5 + i) + b"\x80"
    return eblc, ebdt


def without_head(font_def):
    """An sfnt whose header is a `bhed` table instead of `head`.

    FreeType requires `head` in every sfnt except the old Apple bitmap-only
    fonts, which carry the same header under the tag `bhed` and have neither
    `glyf` nor `CFF `. Such a font is made here from a TrueType one: the
    outline tables go, the header is renamed and one bitmap strike is added
    (without bitmaps and outlines FreeType would call the face scalable and
    look for `loca`). FreeType opens the face and answers
    FT_Get_Sfnt_Table(FT_SFNT_HEAD) from `bhed`, but there is no `head` to
    load, and for such fonts it reads neither `hhea`, `hmtx` nor `OS/2`
    (these tables are in the file all the same).
    """
    font = TTFont(io.BytesIO(font_bytes(make_font(font_def))))
    tables = {tag: font.reader[tag] for tag in font.reader.keys()
              if tag not in ("head", "glyf", "loca", "maxp")}
    num_glyphs = len(font.getGlyphOrder())
    tables["bhed"] = font.reader["head"]
    tables["maxp"] = struct.pack(">LH", 0x00005000, num_glyphs)
    tables["EBLC"], tables["EBDT"] = bitmap_strike(num_glyphs)
    data = io.BytesIO()
    writer = SFNTWriter(data, len(tables), sfntVersion="\0\1\0\0")
    for tag in sorted(tables):
        writer[tag] = tables[tag]
    writer.close()
    return data.getvalue()


# ---------------------------------------------------------------------------
# The fonts.

def ascii_glyphs(skip=()):
    return [(uni_name(cp), cp) for cp in PRINTABLE_ASCII if cp not in skip]


BASIC_GLYPHS = (ascii_glyphs()
                + [(uni_name(cp), cp) for cp in (0xA0, 0xC4, 0xD6, 0xE9, 0xFC)]
                + [(uni_name(cp), cp) for cp in (0xAC00, 0xAC01, 0xD7A3)]
                + [(uni_name(0xE000), 0xE000)])

BASIC_KERN = {
    (ord("A"), ord("V")): -150,
    (ord("V"), ord("A")): -140,
    (ord("T"), ord("o")): -80,
    (ord("L"), ord("T")): 25,
    (ord("~"), ord("A")): -30,
}


def small_glyphs(code_points):
    return [(uni_name(cp), cp) for cp in code_points]


def windows_family(names_by_language, style="Regular"):
    """Windows Unicode family records, one per language, plus a style name."""
    records = [(1, 3, 1, language, text) for language, text in names_by_language]
    records.append((2, 3, 1, names_by_language[0][0], style))
    return records


FONTS = [
    dict(file="basic.ttf", family="KelTest Basic", style="Regular",
         glyphs=BASIC_GLYPHS, base=400, step=10, kern=BASIC_KERN),
    dict(file="bold.ttf", family="KelTest Basic", style="Bold", bold=True,
         panose=PANOSE_BOLD, glyphs=BASIC_GLYPHS, base=420, step=11, kern=BASIC_KERN),
    dict(file="italic.ttf", family="KelTest Basic", style="Italic", italic=True,
         panose=PANOSE_ITALIC, glyphs=BASIC_GLYPHS, base=395, step=10, kern=BASIC_KERN),
    dict(file="bolditalic.ttf", family="KelTest Basic", style="Bold Italic",
         bold=True, italic=True, panose=PANOSE_BOLD_ITALIC, glyphs=BASIC_GLYPHS,
         base=425, step=11, kern=BASIC_KERN),
    # The only family record is Mac Roman, language 0 (English); 0x8E is
    # e-acute and 0xDB the euro sign in the current Mac OS Roman table.
    dict(file="macroman.ttf", family="KelTest MacRoman",
         names=[(1, 1, 0, 0, b"KelTest Caf\x8e \xdb"), (2, 1, 0, 0, b"Regular")],
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=510, step=7),
    # Mac Japanese (encoding 1), language 11 (Japanese): Shift-JIS bytes of
    # "テスト", to be taken unconverted.
    dict(file="macenc1.ttf", family="KelTest MacJapanese",
         names=[(1, 1, 1, 11, b"\x83\x65\x83\x58\x83\x67"), (2, 1, 1, 11, b"Regular")],
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=520, step=7),
    # Mac Roman records for a Mac language without a Windows equivalent (60)
    # and one beyond the language table (200): both land on 0xFFFF, the
    # first wins; the ISO record keeps its language 0.
    dict(file="macother.ttf", family="KelTest MacOther",
         names=[(1, 1, 0, 60, b"KelTest Mac60"), (1, 1, 0, 200, b"KelTest Mac200"),
                (1, 2, 0, 0, b"KelTest ISO"), (2, 1, 0, 60, b"Regular")],
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=515, step=7),
    # Mac Korean (encoding 3), language 23 (Korean) in EUC-KR, followed by a
    # Windows Korean record: the Mac record must contribute nothing, so the
    # Windows one holds language 0x0412.
    dict(file="macenc3.ttf", family="KelTest MacKorean",
         names=[(1, 1, 3, 23, "맥한글".encode("euc_kr")), (2, 1, 3, 23, b"Regular"),
                (1, 3, 1, 0x0412, "케이테스트 윈도"), (2, 3, 1, 0x0412, "Regular")],
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=530, step=7),
    dict(file="winnames.ttf", family="KelTest Win",
         names=windows_family([(0x0409, "KelTest Win"), (0x0412, "케이테스트")]),
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=540, step=7),
    dict(file="winnames_ko.ttf", family="KelTest Win Ko",
         names=windows_family([(0x0411, "ケイテスト"), (0x0412, "케이테스트 한국어")]),
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=550, step=7),
    dict(file="winnames_other.ttf", family="KelTest Win Other",
         names=windows_family([(0x0407, "KelTest Deutsch"), (0x040C, "KelTest Français")]),
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=560, step=7),
    # Unicode platform, encoding 3, language 0 sorts before the Windows
    # English record and lands on the same language.
    dict(file="unicode03.ttf", family="KelTest Uni",
         names=[(1, 0, 3, 0, "KelTest Uni"), (2, 0, 3, 0, "Regular"),
                (1, 3, 1, 0x0409, "KelTest Win English"), (2, 3, 1, 0x0409, "Regular")],
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=570, step=7),
    # Symbol font: a (3,0) map only and no glyph names in `post`, so that
    # FreeType cannot make up a Unicode map from glyph names.
    dict(file="symbol.ttf", family="KelTest Symbol", cmap="symbol", glyph_names=False,
         glyphs=small_glyphs((0xF020, 0xF041, 0xF042, 0xF0B6)), base=580, step=7,
         os2=dict(ulUnicodeRange1=0, ulUnicodeRange2=0, ulUnicodeRange3=0,
                  ulUnicodeRange4=0, ulCodePageRange1=0x80000000, ulCodePageRange2=0)),
    dict(file="wingdings.ttf", family="Wingdings", cmap="symbol", glyph_names=False,
         glyphs=small_glyphs((0xF020, 0xF041, 0xF042, 0xF0B6)), base=585, step=7,
         os2=dict(ulUnicodeRange1=0, ulUnicodeRange2=0, ulUnicodeRange3=0,
                  ulUnicodeRange4=0, ulCodePageRange1=0x80000000, ulCodePageRange2=0)),
    dict(file="noos2.ttf", family="KelTest NoOS2", os2=None,
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=590, step=7),
    dict(file="kern_tilde_missing.ttf", family="KelTest Kern NoTilde",
         glyphs=ascii_glyphs(skip=(0x7E,)), base=600, step=3,
         kern={(ord("A"), ord("V")): -120, (ord("V"), ord("A")): -110}),
    dict(file="kern_outside_ascii.ttf", family="KelTest Kern Latin1",
         glyphs=ascii_glyphs() + small_glyphs((0xC4, 0xD6)), base=610, step=3,
         kern={(0xC4, 0xD6): -120, (0xD6, 0xC4): -110}),
    # U+1F600 is stored as the surrogate pair D83D DE00.
    dict(file="emoji_name.ttf", family="Kel\U0001F600",
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=620, step=7),
    dict(file="supplementary.ttf", family="KelTest Supplementary",
         glyphs=small_glyphs((0x20, 0x41, 0x42, 0x1F600, 0x20000, 0x1D400)),
         base=630, step=7),
    dict(file="cprange2_zero.ttf", family="KelTest CodePage2 Zero",
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=640, step=7,
         os2=dict(ulUnicodeRange1=0x00000001, ulUnicodeRange2=0, ulUnicodeRange3=0,
                  ulUnicodeRange4=0, ulCodePageRange1=0x00000001, ulCodePageRange2=0)),
    dict(file="ranges_zero.ttf", family="KelTest Ranges Zero",
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=645, step=7,
         os2=dict(ulUnicodeRange1=0, ulUnicodeRange2=0, ulUnicodeRange3=0,
                  ulUnicodeRange4=0, ulCodePageRange1=0, ulCodePageRange2=0)),
    dict(file="longname.ttf", family="KelTest Long",
         names=windows_family([(0x0409, LONG_NAME)]),
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=650, step=7),
    # Pitch: a fixed-pitch flag in `post`; no `post` but a PCLT table (whose
    # pitch is the width of the space); neither table.
    dict(file="fixedpitch.ttf", family="KelTest Fixed", fixed_pitch=1,
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=655, step=7),
    dict(file="nopost_pclt.ttf", family="KelTest PCLT", post=False, pclt_pitch=667,
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=660, step=7),
    dict(file="nopost.ttf", family="KelTest NoPost", post=False,
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=657, step=7),
    dict(file="cff.otf", family="KelTest CFF", cff=True, upm=1000,
         hhea=(880, -120, 20), typo=(800, -200, 0),
         glyphs=small_glyphs((0x20, 0x41, 0x42, 0x43, 0x4F, 0x6F)), base=300, step=13),
    dict(file="vertical.ttf", family="KelTest Vertical", vertical=True,
         glyphs=BASIC_GLYPHS, base=405, step=10, kern=BASIC_KERN),
    # East Asian fonts: every test of the flag has its own font, so that each
    # condition can be seen alone.
    dict(file="cjk_flag.ttf", family="KelTest CJK",
         glyphs=small_glyphs((0x20, 0x41, 0xAC00, 0xAC01, 0xB098, 0xD7A3)), base=660, step=7,
         os2=dict(ulUnicodeRange1=0x00000001, ulUnicodeRange2=0x01000000,
                  ulUnicodeRange3=0, ulUnicodeRange4=0,
                  ulCodePageRange1=0x00080001, ulCodePageRange2=0)),
    dict(file="cjk_range_only.ttf", family="KelTest CJK Range",
         glyphs=small_glyphs((0x20, 0x41, 0xAC00, 0xD7A3)), base=670, step=7,
         os2=dict(ulUnicodeRange1=0x00000001, ulUnicodeRange2=0x01000000,
                  ulUnicodeRange3=0, ulUnicodeRange4=0,
                  ulCodePageRange1=0x00000001, ulCodePageRange2=0)),
    dict(file="cjk_codepage_only.ttf", family="KelTest CJK CodePage",
         glyphs=small_glyphs((0x20, 0x41, 0xAC00, 0xD7A3)), base=680, step=7,
         os2=dict(ulUnicodeRange1=0x00000001, ulUnicodeRange2=0,
                  ulUnicodeRange3=0, ulUnicodeRange4=0,
                  ulCodePageRange1=0x00080001, ulCodePageRange2=0)),
    dict(file="cjk_jamo_only.ttf", family="KelTest CJK Jamo",
         glyphs=small_glyphs((0x20, 0x41, 0x1100, 0x1161)), base=690, step=7,
         os2=dict(ulUnicodeRange1=0x10000001, ulUnicodeRange2=0,
                  ulUnicodeRange3=0, ulUnicodeRange4=0,
                  ulCodePageRange1=0x00000001, ulCodePageRange2=0)),
]

# The most glyphs a font can have: 65,535, every one but .notdef mapped (the
# basic plane from U+0020 without surrogates, then U+20000 onwards), empty
# outlines, advance 1 + glyph index (up to 65,535, which fontTools warns
# about: its warnings are silenced).
MANY_GLYPH_CODES = [cp for cp in range(0x20, 0xFFFE) if not 0xD800 <= cp <= 0xDFFF]
MANY_GLYPH_CODES += list(range(0x20000, 0x20000 + 65534 - len(MANY_GLYPH_CODES)))
FONTS.append(dict(
    file="glyphs65535.ttf", family="KelTest Many Glyphs", glyph_names=False,
    glyphs=[("g%d" % (i + 1), cp) for i, cp in enumerate(MANY_GLYPH_CODES)],
    shapes=dict.fromkeys(["g%d" % i for i in range(65535)] + [".notdef"], "none"),
    base=1, step=1, os2=dict(xAvgCharWidth=2100)))

COLLECTION = dict(file="collection.ttc", faces=[
    dict(file="collection.ttc", family="KelTest Coll A",
         glyphs=small_glyphs((0x20, 0x41, 0x42)), base=700, step=7),
    dict(file="collection.ttc", family="KelTest Coll B",
         glyphs=small_glyphs((0x20, 0x41, 0x42, 0x43)), base=800, step=7),
    dict(file="collection.ttc", family="KelTest Coll C",
         glyphs=small_glyphs((0x20, 0x41)), base=900, step=7),
])

COLLECTION_255_FACE = dict(file="collection255.ttc", family="KelTest Coll 255",
                           glyphs=small_glyphs((0x20, 0x41)), base=950, step=7)

NOHEAD = dict(file="nohead.ttf", family="KelTest NoHead",
              glyphs=small_glyphs((0x20, 0x41, 0x42)), base=710, step=7,
              hhea=(1800, -450, 60), typo=(1500, -380, 50))


# ---------------------------------------------------------------------------
# Reading the fonts back.

def walk_cmap(font):
    """The subtable the `char` records list, as (platform, encoding, dict)."""
    tables = font["cmap"].tables if "cmap" in font else []
    for wanted in ((3, 10), (3, 1), (0, 6), (0, 4), (0, 3), (0, 2), (0, 1), (0, 0), (3, 0)):
        for table in tables:
            if (table.platformID, table.platEncID) == wanted and table.format != 14:
                return wanted + (table.cmap,)
    return None


def describe(font, face_index):
    """The expected_<stem>.txt lines of one face."""
    glyph_order = font.getGlyphOrder()
    glyph_id = {name: i for i, name in enumerate(glyph_order)}
    hmtx = font["hmtx"].metrics
    lines = ["face %d" % face_index, "numGlyphs %d" % len(glyph_order),
             "head %d" % ("head" in font)]
    if "head" in font:
        lines.append("unitsPerEm %d" % font["head"].unitsPerEm)
    hhea = font["hhea"]
    lines.append("hhea %d %d %d" % (hhea.ascent, hhea.descent, hhea.lineGap))
    if "OS/2" in font:
        os2 = font["OS/2"]
        lines.append("os2 %d" % os2.version)
        lines.append("panose " + " ".join(str(getattr(os2.panose, f)) for f in PANOSE_FIELDS))
        lines.append("unicodeRange %d %d %d %d" % (os2.ulUnicodeRange1, os2.ulUnicodeRange2,
                                                    os2.ulUnicodeRange3, os2.ulUnicodeRange4))
        lines.append("codePageRange %d %d" % (os2.ulCodePageRange1, os2.ulCodePageRange2))
    else:
        lines.append("os2 none")
    if "PCLT" in font:
        lines.append("pclt %d" % struct.unpack(">H", font.getTableData("PCLT")[8:10])[0])
    lines.append("vertical %d" % ("vhea" in font and "vmtx" in font))
    lines += ["name %d %d %d %d %s" % (r.platformID, r.platEncID, r.langID, r.nameID,
                                      r.toBytes().hex()) for r in font["name"].names]
    walked = walk_cmap(font)
    chars = walked[2] if walked else {}
    lines += ["char %d %d %d" % (cp, glyph_id[name], hmtx[name][0])
              for cp, name in sorted(chars.items())]
    lines += ["glyph %d %d" % (i, hmtx[name][0]) for i, name in enumerate(glyph_order)]
    codes_of = {}
    for cp, name in sorted(chars.items()):
        codes_of.setdefault(name, []).append(cp)
    kerning = []
    if "kern" in font:
        for subtable in font["kern"].kernTables:
            if subtable.format != 0:
                continue
            for (left, right), value in subtable.kernTable.items():
                kerning += [(l, r, value) for l in codes_of.get(left, [])
                            for r in codes_of.get(right, [])]
    lines += ["kern %d %d %d" % k for k in sorted(kerning)]
    if "glyf" in font:
        glyf = font["glyf"]
        for i, name in enumerate(glyph_order):
            glyph = glyf[name]
            if glyph.numberOfContours <= 0:
                continue
            coordinates, end_points, flags = glyph.getCoordinates(glyf)
            start = 0
            for end in end_points:
                points = " ".join("%d %d %d" % (coordinates[p][0], coordinates[p][1], flags[p] & 1)
                                  for p in range(start, end + 1))
                lines.append("contour %d %d %s" % (i, end + 1 - start, points))
                start = end + 1
    return lines


def read_back(path):
    with open(path, "rb") as f:
        is_collection = f.read(4) == b"ttcf"
    fonts = TTCollection(path).fonts if is_collection else [TTFont(path)]
    return [line for i, font in enumerate(fonts) for line in describe(font, i)]


def write_file(path, data):
    with open(path, "wb") as f:
        f.write(data)


def main(argv):
    if len(argv) != 2:
        sys.stderr.write("usage: gen_test_fonts.py OUTPUT_DIR\n")
        return 2
    out_dir = argv[1]
    # glyphs65535.ttf has advances up to 65,535 on purpose.
    logging.getLogger("fontTools").setLevel(logging.ERROR)
    os.makedirs(out_dir, exist_ok=True)
    manifest = os.path.join(out_dir, "fonts.txt")
    if os.path.exists(manifest):
        os.remove(manifest)

    written = []
    for font_def in FONTS:
        write_file(os.path.join(out_dir, font_def["file"]), font_bytes(make_font(font_def)))
        written.append(font_def["file"])

    collection = TTCollection()
    collection.fonts = [TTFont(io.BytesIO(font_bytes(make_font(face))))
                        for face in COLLECTION["faces"]]
    collection.save(os.path.join(out_dir, COLLECTION["file"]))
    written.append(COLLECTION["file"])

    # 255 faces, the most a face count of 8 bits holds: one font 255 times
    # under names of their own, the other tables shared.
    collection = TTCollection()
    collection.fonts = [
        TTFont(io.BytesIO(font_bytes(make_font(
            dict(COLLECTION_255_FACE, family="KelTest Coll 255 %d" % i)))))
        for i in range(255)]
    collection.save(os.path.join(out_dir, COLLECTION_255_FACE["file"]))
    written.append(COLLECTION_255_FACE["file"])

    write_file(os.path.join(out_dir, NOHEAD["file"]), without_head(NOHEAD))
    written.append(NOHEAD["file"])

    for file_name in written:
        lines = read_back(os.path.join(out_dir, file_name))
        stem = os.path.splitext(file_name)[0]
        with open(os.path.join(out_dir, "expected_%s.txt" % stem), "w", encoding="ascii") as f:
            f.write("\n".join(lines) + "\n")

    with open(manifest, "w", encoding="ascii") as f:
        f.write("".join(name + "\n" for name in written))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
