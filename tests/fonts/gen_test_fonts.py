#!/usr/bin/python3
# Writes the test fonts of single features (below), then those described in
# fonts.json beside this script, reading the latter back with fontTools into
# expected_<stem>.txt (the values the tests compare with), and last the list
# fonts.txt. README.txt tells the fonts and the records.
# Usage: /usr/bin/python3 gen_test_fonts.py OUTPUT_DIR
import io
import json
import logging
import os
import struct
import sys

try:
    from fontTools import varLib
    from fontTools.designspaceLib import AxisDescriptor, DesignSpaceDocument, SourceDescriptor
    from fontTools.fontBuilder import FontBuilder
    from fontTools.pens.t2CharStringPen import T2CharStringPen
    from fontTools.pens.ttGlyphPen import TTGlyphPen
    from fontTools.ttLib import TTCollection, TTFont, newTable
    from fontTools.ttLib.sfnt import SFNTWriter
    from fontTools.ttLib.tables.DefaultTable import DefaultTable
    from fontTools.ttLib.tables.O_S_2f_2 import Panose
    from fontTools.ttLib.tables._c_m_a_p import CmapSubtable
    from fontTools.ttLib.tables._f_v_a_r import NamedInstance
    from fontTools.ttLib.tables._g_l_y_f import USE_MY_METRICS
    from fontTools.ttLib.tables._k_e_r_n import KernTable_format_0
    from fontTools.ttLib.tables._n_a_m_e import NameRecord
except ImportError as error:
    sys.exit("gen_test_fonts.py: fontTools is missing (%s); install python3-fonttools "
             "(scripts/install-deps.sh)" % error)

TIMESTAMP = 0x7C259DC0  # fixed, so that the files are the same from run to run
PANOSE_FIELDS = ("bFamilyType", "bSerifStyle", "bWeight", "bProportion", "bContrast",
                 "bStrokeVariation", "bArmStyle", "bLetterForm", "bMidline", "bXHeight")
RANGE_FIELDS = ("ulUnicodeRange1", "ulUnicodeRange2", "ulUnicodeRange3", "ulUnicodeRange4",
                "ulCodePageRange1", "ulCodePageRange2")
LONG_NAME = "".join(chr(0xAC00 + (i * 37) % 11172) for i in range(1500))
FONT_TABLE = json.load(open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "fonts.json"),
                      encoding="utf-8"))
# Outlines as point lists inside the advance (l, m, r: left, middle, right);
# "q" marks the off-curve point of a quadratic segment.
SHAPES = {"rect": [[("l", 0), ("l", 700), ("r", 700), ("r", 0)]],
          "triangle": [[("l", 0), ("m", 1400), ("r", 0)]],
          "ring": [[("l", 0), ("l", 1400), ("r", 1400), ("r", 0)],
                   [("l+", 200), ("r-", 200), ("r-", 1200), ("l+", 1200)]],
          "curve": [[("m", 0), ("lq", 0), ("l", 500), ("lq", 1000), ("m", 1000), ("rq", 1000),
                     ("r", 500), ("rq", 0), ("m", 0)]],
          "none": []}


def draw(pen, shape, advance):
    xs = {"l": 50, "r": advance - 50, "m": advance // 2, "l+": 150, "r-": advance - 150}
    for contour in SHAPES[shape]:
        points = [(xs[x.rstrip("q")], y, x.endswith("q")) for x, y in contour]
        pen.moveTo(points[0][:2])
        i = 1
        while i < len(points):
            if points[i][2]:
                pen.qCurveTo(points[i][:2], points[i + 1][:2])
                i += 2
            else:
                pen.lineTo(points[i][:2])
                i += 1
        pen.closePath()


def code_points(glyphs):
    glyphs = FONT_TABLE["basic_glyphs"] if glyphs == "basic" else glyphs
    if glyphs == "many":  # 65,535 glyphs: the basic plane less surrogates, then U+20000 on
        codes = [cp for cp in range(0x20, 0xFFFE) if not 0xD800 <= cp <= 0xDFFF]
        return codes + list(range(0x20000, 0x20000 + 65534 - len(codes)))
    codes = []
    for word in glyphs.split():
        if word == "ascii":
            codes += range(0x20, 0x7F)
        elif word.startswith("-"):
            codes.remove(int(word[1:], 16))
        else:
            codes.append(int(word, 16))
    return codes


def make_font(d):
    cff, bold, italic = d.get("cff", False), d.get("bold", False), d.get("italic", False)
    fb = FontBuilder(d.get("upm", 2048), isTTF=not cff)
    fb.font.recalcTimestamp = False
    codes = code_points(d["glyphs"])
    if d["glyphs"] == "many":
        names = ["g%d" % (i + 1) for i in range(len(codes))]
    else:
        names = ["uni%04X" % cp if cp <= 0xFFFF else "u%05X" % cp for cp in codes]
    order = [".notdef"] + names
    code_of = dict(zip(names, codes))
    advance = {name: d["base"] + d["step"] * i for i, name in enumerate(order)}
    fb.setupGlyphOrder(order)
    mapping = dict(zip(codes, names))
    if d.get("cmap") == "symbol":
        subtable = CmapSubtable.newSubtable(4)
        subtable.platformID, subtable.platEncID, subtable.language = 3, 0, 0
        subtable.cmap = mapping
        fb.font["cmap"] = newTable("cmap")
        fb.font["cmap"].tableVersion, fb.font["cmap"].tables = 0, [subtable]
    else:
        fb.setupCharacterMap(mapping)
    special = {0x41: "triangle", 0x4F: "ring", 0x6F: "curve", 0x20: "none", 0xA0: "none",
               0xF020: "none"}
    shape = {name: d.get("shape") or special.get(code_of.get(name), "rect") for name in order}
    if cff:
        charstrings = {}
        for name in order:
            pen = T2CharStringPen(advance[name], None)
            draw(pen, shape[name], advance[name])
            charstrings[name] = pen.getCharString()
        ps_name = (d["family"] + "-" + d.get("style", "Regular")).replace(" ", "")
        fb.setupCFF(ps_name, {"FullName": d["family"]}, charstrings, {})
        fb.setupHorizontalMetrics({n: (advance[n], 0 if shape[n] == "none" else 50) for n in order})
    else:
        glyphs = {}
        for name in order:
            pen = TTGlyphPen(None)
            draw(pen, shape[name], advance[name])
            glyphs[name] = pen.glyph()
        fb.setupGlyf(glyphs)
        fb.setupHorizontalMetrics({n: (advance[n], glyphs[n].xMin if glyphs[n].numberOfContours
                                       else 0) for n in order})
    ascender, descender, line_gap = d.get("hhea", (1900, -500, 90))
    fb.setupHorizontalHeader(ascent=ascender, descent=descender, lineGap=line_gap)

    family, style = d["family"], d.get("style", "Regular")
    records = d.get("names") or [[1, 3, 1, 0x409, family], [2, 3, 1, 0x409, style],
                                 [4, 3, 1, 0x409, family if style == "Regular" else
                                  family + " " + style],
                                 [6, 3, 1, 0x409, (family + "-" + style).replace(" ", "")]]
    fb.font["name"] = newTable("name")
    fb.font["name"].names = []
    for name_id, platform, encoding, language, text in records:
        record = NameRecord()
        record.nameID, record.platformID, record.platEncID, record.langID = \
            name_id, platform, encoding, language
        record.string = (bytes.fromhex(text[4:]) if text.startswith("hex:") else
                         LONG_NAME if text == "$LONG" else text)
        fb.font["name"].names.append(record)

    if d.get("os2", {}) is not None:
        panose = Panose()
        for field, value in zip(PANOSE_FIELDS, d.get("panose", (2, 11, 6, 4, 2, 2, 2, 2, 2, 4))):
            setattr(panose, field, value)
        typo = d.get("typo", (1600, -400, 70))
        ranges = d.get("ranges", "3 10000000 10 20 1 40000000")
        os2 = dict(version=4, usWeightClass=700 if bold else 400,
                   fsSelection=((0x20 if bold else 0) | (0x01 if italic else 0)) or 0x40,
                   panose=panose, sTypoAscender=typo[0], sTypoDescender=typo[1],
                   sTypoLineGap=typo[2], usWinAscent=2000, usWinDescent=520,
                   usFirstCharIndex=min(min(mapping), 0xFFFF),
                   usLastCharIndex=min(max(mapping), 0xFFFF), sxHeight=700, sCapHeight=1400,
                   achVendID="KELT")
        os2.update(zip(RANGE_FIELDS, (int(word, 16) for word in ranges.split())))
        os2.update(d.get("os2") or {})
        fb.setupOS2(**os2)
    if d.get("post", True):
        fb.setupPost(keepGlyphNames=d.get("glyph_names", True),
                     isFixedPitch=d.get("fixed_pitch", 0))
    if "pclt_pitch" in d:  # fontTools has no class for PCLT
        data = struct.pack(">LLHHHHHH", 0x00010000, 0, d["pclt_pitch"], 700, 0, 0, 1400, 0)
        fb.font["PCLT"] = DefaultTable("PCLT")
        fb.font["PCLT"].data = data + b"KelTest PCLT    " + b"\0" * 8 + b"KELTST" + b"\0" * 4
    fb.updateHead(created=TIMESTAMP, modified=TIMESTAMP,
                  macStyle=(1 if bold else 0) | (2 if italic else 0))
    if d.get("vertical"):
        fb.setupVerticalHeader(ascent=1024, descent=-1024)
        fb.setupVerticalMetrics({name: (1500 + 3 * i, 100) for i, name in enumerate(order)})
    if d.get("kern"):
        subtable = KernTable_format_0()
        subtable.coverage = 1
        pairs = FONT_TABLE["basic_kern"] if d["kern"] == "basic" else d["kern"]
        subtable.kernTable = {(mapping[int(l, 16)], mapping[int(r, 16)]): v for l, r, v in pairs}
        fb.font["kern"] = newTable("kern")
        fb.font["kern"].version, fb.font["kern"].kernTables = 0, [subtable]
    return font_bytes(fb.font)


def font_bytes(font):
    data = io.BytesIO()
    font.save(data)
    return data.getvalue()


def without_head(d):
    """An sfnt whose header is `bhed` (no `head`): FreeType opens such a font only
    as an Apple bitmap font, so the outlines give way to one strike of 1x1
    bitmaps; FreeType then reads neither hhea, hmtx nor OS/2 (they are there)."""
    font = TTFont(io.BytesIO(make_font(d)))
    tables = {tag: font.reader[tag] for tag in font.reader.keys()
              if tag not in ("head", "glyf", "loca", "maxp")}
    n = len(font.getGlyphOrder())
    tables["bhed"] = font.reader["head"]
    tables["maxp"] = struct.pack(">LH", 0x00005000, n)
    line_metrics = struct.pack(">bbBbbbbbbbbb", 12, -4, 16, 1, 0, 0, 0, 0, 12, -4, 0, 0)
    tables["EBLC"] = (struct.pack(">LLLLLL", 0x00020000, 1, 56, 20 + 4 * n, 1, 0)
                      + line_metrics * 2 + struct.pack(">HHBBBbHHLHHL", 0, n - 1, 16, 16, 1, 1,
                                                       0, n - 1, 8, 1, 1, 4)
                      + b"".join(struct.pack(">L", 6 * i) for i in range(n + 1)))
    tables["EBDT"] = struct.pack(">L", 0x00020000) + b"".join(
        struct.pack(">BBbbB", 1, 1, 0, 1, 5 + i) + b"\x80" for i in range(n))
    data = io.BytesIO()
    writer = SFNTWriter(data, len(tables), sfntVersion="\0\1\0\0")
    for tag in sorted(tables):
        writer[tag] = tables[tag]
    writer.close()
    return data.getvalue()


def cmap_of(font):
    """The map the `char` records list: (3,10), else (3,1), else (0,*), else (3,0)."""
    tables = font["cmap"].tables if "cmap" in font else []
    for wanted in ((3, 10), (3, 1), (0, 6), (0, 4), (0, 3), (0, 2), (0, 1), (0, 0), (3, 0)):
        for table in tables:
            if (table.platformID, table.platEncID) == wanted and table.format != 14:
                return table.cmap
    return {}


def describe(font, face_index):
    order = font.getGlyphOrder()
    glyph_id = {name: i for i, name in enumerate(order)}
    hmtx = font["hmtx"].metrics
    lines = ["face %d" % face_index, "numGlyphs %d" % len(order), "head %d" % ("head" in font)]
    if "head" in font:
        lines.append("unitsPerEm %d" % font["head"].unitsPerEm)
    hhea = font["hhea"]
    lines.append("hhea %d %d %d" % (hhea.ascent, hhea.descent, hhea.lineGap))
    if "OS/2" in font:
        os2 = font["OS/2"]
        lines += ["os2 %d" % os2.version,
                  "panose " + " ".join(str(getattr(os2.panose, f)) for f in PANOSE_FIELDS),
                  "unicodeRange %d %d %d %d" % tuple(getattr(os2, f) for f in RANGE_FIELDS[:4]),
                  "codePageRange %d %d" % (os2.ulCodePageRange1, os2.ulCodePageRange2)]
    else:
        lines.append("os2 none")
    lines += ["name %d %d %d %d %s" % (r.platformID, r.platEncID, r.langID, r.nameID,
                                      r.toBytes().hex()) for r in font["name"].names]
    chars = sorted(cmap_of(font).items())
    lines += ["char %d %d %d" % (cp, glyph_id[name], hmtx[name][0]) for cp, name in chars]
    lines += ["glyph %d %d" % (i, hmtx[name][0]) for i, name in enumerate(order)]
    codes_of = {}
    for cp, name in chars:
        codes_of.setdefault(name, []).append(cp)
    kerning = []
    for subtable in font["kern"].kernTables if "kern" in font else []:
        for (left, right), value in subtable.kernTable.items() if subtable.format == 0 else []:
            kerning += [(l, r, value) for l in codes_of.get(left, [])
                        for r in codes_of.get(right, [])]
    lines += ["kern %d %d %d" % k for k in sorted(kerning)]
    glyf = font["glyf"] if "glyf" in font else None
    for i, name in enumerate(order if glyf else []):
        if glyf[name].numberOfContours <= 0:
            continue
        coordinates, end_points, flags = glyf[name].getCoordinates(glyf)
        start = 0
        for end in end_points:
            points = " ".join("%d %d %d" % (coordinates[p][0], coordinates[p][1], flags[p] & 1)
                              for p in range(start, end + 1))
            lines.append("contour %d %d %s" % (i, end + 1 - start, points))
            start = end + 1
    return lines


# composites.ttf, unitsPerEm 1000; `hmtx` advance, then what loading gives:
#   A, B, H simple: 700, 500, 600 (H's point count raised past its data: no load)
#   C = A with USE_MY_METRICS, 0 -> 700      D = B, then A flagged, 123 -> 700
#   E = B moved by (40, 0), flagged, 900 -> 500   F = C flagged, 50 -> 700 (two levels)
#   G = A and B, no flag, 333 -> 333          I = H flagged, 444: no load   J empty, 250
SIMPLE = {"A": 700, "B": 500, "H": 600}
COMPOSITE = {"C": (0, [("A", 0, True)]), "D": (123, [("B", 0, False), ("A", 0, True)]),
             "E": (900, [("B", 40, True)]), "F": (50, [("C", 0, True)]),
             "G": (333, [("A", 0, False), ("B", 0, False)]), "I": (444, [("H", 0, True)])}
FEATURES = """
languagesystem DFLT dflt;
languagesystem latn dflt;
@ROUND = [O o C G];
@DIAG = [V W Y v w y];
@DIGIT = [one seven];
@PUNCT = [period comma];
feature kern {
  pos A V -120; pos T o -80; pos space A -30; pos quoteright s -55; pos one one -20;
  pos O V -7; pos @ROUND @DIAG -40; pos @DIAG @ROUND -35; pos @DIGIT @PUNCT -25;
  pos @PUNCT space 15;
} kern;
"""


def box(right, left=50):
    pen = TTGlyphPen(None)
    if right is not None:
        pen.moveTo((left, 0))
        pen.lineTo((left, 700))
        pen.lineTo((right, 700))
        pen.lineTo((right, 0))
        pen.closePath()
    return pen.glyph()


def font(family, order, cmap, glyphs, metrics, ascent=800, **os2):
    fb = FontBuilder(1000, isTTF=True)
    fb.font.recalcTimestamp = False
    fb.setupGlyphOrder(order)
    fb.setupCharacterMap(cmap)
    fb.setupGlyf(glyphs)
    fb.setupHorizontalMetrics(metrics)
    fb.setupHorizontalHeader(ascent=ascent, descent=-200)
    fb.setupNameTable({"familyName": family, "styleName": "Regular"})
    fb.setupOS2(**os2)
    fb.setupPost()
    return fb


def composites(path):
    order = [".notdef"] + sorted(set(SIMPLE) | set(COMPOSITE) | {"J"})
    glyphs = {".notdef": box(350), "J": box(None), **{n: box(a - 50) for n, a in SIMPLE.items()}}
    for name, (_, parts) in COMPOSITE.items():
        pen = TTGlyphPen(glyphs)
        for base, dx, _ in parts:
            pen.addComponent(base, (1, 0, 0, 1, dx, 0))
        glyphs[name] = pen.glyph()
    advances = {".notdef": 400, "J": 250, **SIMPLE, **{n: a for n, (a, _) in COMPOSITE.items()}}
    fb = font("KelTest Composites", order, {ord(n): n for n in order[1:]}, glyphs,
              {n: (advances[n], 50 if n != "J" else 0) for n in order}, usWinAscent=800,
              usWinDescent=200)
    for name, (_, parts) in COMPOSITE.items():
        for component, (_, _, flagged) in zip(fb.font["glyf"][name].components, parts):
            component.flags = component.flags | USE_MY_METRICS if flagged else \
                component.flags & ~USE_MY_METRICS
    fb.save(path)
    # H's only contour ends at point 200 (it has 4): its flags and coordinates run past its data.
    data = open(path, "rb").read()
    tables = {data[12 + 16 * i:16 + 16 * i]: struct.unpack(">L", data[20 + 16 * i:24 + 16 * i])[0]
              for i in range(struct.unpack(">H", data[4:6])[0])}
    long_loca = struct.unpack(">h", data[tables[b"head"] + 50:][:2])[0]
    entry = tables[b"loca"] + (4 if long_loca else 2) * order.index("H")
    offset = struct.unpack(">L", data[entry:entry + 4])[0] if long_loca else \
        2 * struct.unpack(">H", data[entry:entry + 2])[0]
    glyph = tables[b"glyf"] + offset
    assert struct.unpack(">h", data[glyph:glyph + 2])[0] == 1
    open(path, "wb").write(data[:glyph + 10] + struct.pack(">H", 200) + data[glyph + 12:])


def gpos(out):
    codes = list(range(32, 127))
    names = {c: chr(c) if chr(c).isalpha() else "uni%04X" % c for c in codes}
    # feaLib's names for the glyphs the features name.
    names.update({32: "space", 44: "comma", 46: "period", 39: "quoteright", 49: "one", 55: "seven"})
    order = [".notdef"] + [names[c] for c in codes]
    fb = font("KelTest Gpos", order, {**names, 0xA9B1: "A", 0x1E900: "A"},
              {name: box(400) for name in order},
              {name: (300 + 7 * i, 50) for i, name in enumerate(order)})
    fb.addOpenTypeFeatures(FEATURES)
    good = os.path.join(out, "gpos_kern.ttf")
    fb.save(good)
    damaged = TTFont(good)
    gpos_table = damaged["GPOS"].table
    assert {sub.Format for lookup in gpos_table.LookupList.Lookup for sub in lookup.SubTable} \
        == {1, 2} and "kern" not in damaged
    lookups = sorted({i for record in gpos_table.FeatureList.FeatureRecord
                      if record.FeatureTag == "kern" for i in record.Feature.LookupListIndex})
    with open(os.path.join(out, "expected_gpos_kern.txt"), "w") as f:
        for left in codes:
            for right in codes:
                total = sum(pair_value(gpos_table.LookupList.Lookup[i], names[left], names[right])
                            for i in lookups)
                if total:
                    f.write("%d %d %d\n" % (left, right, total))
    raw = DefaultTable("GPOS")
    raw.data = damaged.getTableData("GPOS")[:6]
    damaged["GPOS"] = raw
    damaged.save(os.path.join(out, "gpos_damaged.ttf"))


def pair_value(lookup, left, right):
    for sub in lookup.SubTable:
        if left not in sub.Coverage.glyphs:
            continue
        if sub.Format == 1:
            pairs = sub.PairSet[sub.Coverage.glyphs.index(left)].PairValueRecord
            found = [p.Value1 for p in pairs if p.SecondGlyph == right]
            if not found:
                continue
            value = found[0]
        else:
            value = sub.Class1Record[sub.ClassDef1.classDefs.get(left, 0)].Class2Record[
                sub.ClassDef2.classDefs.get(right, 0)].Value1
        return getattr(value, "XAdvance", 0) or 0
    return 0


def variable(path):
    order = [".notdef", "space", "A", "B", "a"]
    doc = DesignSpaceDocument()
    axis = AxisDescriptor()
    axis.tag, axis.name, axis.minimum, axis.default, axis.maximum = "wght", "Weight", 400, 400, 700
    doc.addAxis(axis)
    for weight in (400, 700):
        advances = [500 + 10 * i + (weight - 400) * (i + 1) // 3 for i in range(len(order))]
        source = SourceDescriptor()
        source.font = font("KelTest Var", order,
                           {0x20: "space", 0x41: "A", 0x42: "B", 0x61: "a"},
                           {n: box(a - 50 if n != "space" else None) for n, a in zip(order, advances)},
                           {n: (a, 50 if n != "space" else 0) for n, a in zip(order, advances)},
                           usWeightClass=weight).font
        source.location = {"Weight": weight}
        doc.addSource(source)
    varfont, _, _ = varLib.build(doc)
    for style, weight in (("Regular", 400), ("Semi Bold", 550), ("Bold", 700)):
        instance = NamedInstance()
        instance.subfamilyNameID = varfont["name"].addMultilingualName({"en": style}, mac=False)
        instance.coordinates = {"wght": weight}
        varfont["fvar"].instances.append(instance)
    varfont.save(path)


def main(out_dir):
    logging.getLogger("fontTools").setLevel(logging.ERROR)  # advances up to 65,535 on purpose
    for folder in ("metrics", "variable"):
        os.makedirs(os.path.join(out_dir, folder), exist_ok=True)
    composites(os.path.join(out_dir, "metrics", "composites.ttf"))
    gpos(out_dir)
    variable(os.path.join(out_dir, "variable", "keltest-var.ttf"))
    manifest = os.path.join(out_dir, "fonts.txt")
    if os.path.exists(manifest):
        os.remove(manifest)
    written = []
    for d in FONT_TABLE["fonts"]:
        path = os.path.join(out_dir, d["file"])
        if "faces" in d or "repeat" in d:
            faces = d.get("faces") or [dict(d, family="%s %d" % (d["family"], i))
                                       for i in range(d["repeat"])]
            collection = TTCollection()
            collection.fonts = [TTFont(io.BytesIO(make_font(face)), recalcTimestamp=False)
                                for face in faces]
            collection.save(path)
        else:
            with open(path, "wb") as f:
                f.write(without_head(d) if d.get("nohead") else make_font(d))
        written.append(d["file"])
        with open(path, "rb") as f:
            fonts = TTCollection(path).fonts if f.read(4) == b"ttcf" else [TTFont(path)]
        lines = [line for i, font in enumerate(fonts) for line in describe(font, i)]
        with open(os.path.join(out_dir, "expected_%s.txt" % os.path.splitext(d["file"])[0]),
                  "w", encoding="ascii") as f:
            f.write("\n".join(lines) + "\n")
    with open(manifest, "w", encoding="ascii") as f:
        f.write("".join(name + "\n" for name in written))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: gen_test_fonts.py OUTPUT_DIR")
    main(sys.argv[1])
