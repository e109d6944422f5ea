#!/usr/bin/python3
# Writes the test fonts described in fonts.json beside this script, reading
# them back with fontTools into expected_<stem>.txt (the values the tests
# compare with), and last the list fonts.txt. README.txt tells the fonts and
# the records.
# Usage: /usr/bin/python3 gen_test_fonts.py OUTPUT_DIR
import io
import json
import logging
import os
import sys

try:
    from fontTools import varLib
    from fontTools.designspaceLib import DesignSpaceDocument
    from fontTools.fontBuilder import FontBuilder
    from fontTools.pens.t2CharStringPen import T2CharStringPen
    from fontTools.pens.ttGlyphPen import TTGlyphPen
    from fontTools.ttLib import TTCollection, TTFont, newTable
    from fontTools.ttLib.sfnt import SFNTWriter
    from fontTools.ttLib.tables.O_S_2f_2 import Panose
    from fontTools.ttLib.tables._f_v_a_r import NamedInstance
    from fontTools.ttLib.tables._g_l_y_f import USE_MY_METRICS
    from fontTools.ttLib.tables._k_e_r_n import KernTable_format_0
    from fontTools.ttLib.tables._n_a_m_e import makeName
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
        pen.moveTo((xs[contour[0][0]], contour[0][1]))
        segment = []
        for x, y in contour[1:]:  # a line, or off-curve points up to the next on-curve one
            segment.append((xs[x.rstrip("q")], y))
            if not x.endswith("q"):
                pen.qCurveTo(*segment)
                segment = []
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
    mapping = dict(zip(codes, names))
    advance = {name: d["base"] + d["step"] * i for i, name in enumerate(order)}
    advance.update({mapping[int(c, 16)]: a for c, a in d.get("advances", {}).items()})
    fb.setupGlyphOrder(order)
    mapping.update({int(c, 16): mapping[int(to, 16)] for c, to in d.get("alias", {}).items()})
    fb.setupCharacterMap(mapping)
    if d.get("cmap") == "symbol":  # the Windows map only, as (3,0)
        fb.font["cmap"].tables = [t for t in fb.font["cmap"].tables if t.platformID == 3]
        fb.font["cmap"].tables[0].platEncID = 0
    special = {0x41: "triangle", 0x4F: "ring", 0x6F: "curve", 0x20: "none", 0xA0: "none",
               0xF020: "none", **{int(c, 16): s for c, s in d.get("shapes", {}).items()}}
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
        for code, parts in d.get("components", {}).items():  # [base, dx, USE_MY_METRICS]
            pen = TTGlyphPen(glyphs)
            for base, dx, _ in parts:
                pen.addComponent(mapping[int(base, 16)], (1, 0, 0, 1, dx, 0))
            glyphs[mapping[int(code, 16)]] = glyph = pen.glyph()
            for component, (_, _, flagged) in zip(glyph.components, parts):
                component.flags = component.flags | USE_MY_METRICS if flagged else \
                    component.flags & ~USE_MY_METRICS
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
    fb.font["name"].names = [makeName(bytes.fromhex(text[4:]) if text.startswith("hex:") else
                                      LONG_NAME if text == "$LONG" else text, *record)
                             for *record, text in records]

    if d.get("os2", {}) is not None:
        panose = Panose()
        panose.__dict__.update(zip(PANOSE_FIELDS, d.get("panose", (2, 11, 6, 4, 2, 2, 2, 2, 2, 4))))
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
    if d.get("fea"):
        fb.addOpenTypeFeatures("\n".join(d["fea"]))
    data = font_bytes(fb.font)
    return edit(data, d) if {"tables", "cut", "patch", "drop", "rename"} & set(d) else data


def font_bytes(font):
    data = io.BytesIO()
    font.save(data)
    return data.getvalue()


def edit(data, d):
    """The tables as written, less "drop", renamed by "rename", cut to their first bytes by
    "cut", overwritten at an offset by "patch" ([offset, hex]), and the raw "tables" (hex)
    added."""
    reader = TTFont(io.BytesIO(data)).reader
    tables = {d.get("rename", {}).get(tag, tag): reader[tag] for tag in reader.keys()
              if tag not in d.get("drop", ())}
    tables.update({tag: tables[tag][:size] for tag, size in d.get("cut", {}).items()})
    for tag, (at, text) in d.get("patch", {}).items():
        tables[tag] = tables[tag][:at] + bytes.fromhex(text) + tables[tag][at + len(text) // 2:]
    tables.update({tag: bytes.fromhex(text) for tag, text in d.get("tables", {}).items()})
    out = io.BytesIO()
    writer = SFNTWriter(out, len(tables), sfntVersion=reader.sfntVersion)
    for tag in sorted(tables):
        writer[tag] = tables[tag]
    writer.close()
    return out.getvalue()


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
    hmtx = font["hmtx"].metrics
    lines = ["face %d" % face_index, "head %d" % ("head" in font)]
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
    chars = sorted(cmap_of(font).items())
    lines += ["char %d %d %d" % (cp, font.getGlyphID(name), hmtx[name][0]) for cp, name in chars]
    lines += ["glyph %d %d" % (i, hmtx[name][0]) for i, name in enumerate(order)]
    kerning = sorted((left, right, value)
                     for table in (font["kern"].kernTables if "kern" in font else [])
                     if table.format == 0 for (a, b), value in table.kernTable.items()
                     for left, x in chars if x == a for right, y in chars if y == b)
    lines += ["kern %d %d %d" % k for k in kerning]
    glyf = font["glyf"] if "glyf" in font else None
    for i, name in enumerate(order if glyf else []):
        if glyf[name].numberOfContours <= 0:
            continue
        coordinates, end_points, flags = glyf[name].getCoordinates(glyf)
        for start, end in zip([0] + [end + 1 for end in end_points], end_points):
            points = " ".join("%d %d %d" % (coordinates[p][0], coordinates[p][1], flags[p] & 1)
                              for p in range(start, end + 1))
            lines.append("contour %d %d %s" % (i, end + 1 - start, points))
    return lines


def variable(d):
    """A weight axis between the masters [weight, base, step], with named instances."""
    doc = DesignSpaceDocument()
    doc.addAxisDescriptor(tag="wght", name="Weight", minimum=d["masters"][0][0],
                          default=d["masters"][0][0], maximum=d["masters"][-1][0])
    for weight, base, step in d["masters"]:
        master = dict(d, base=base, step=step, os2={"usWeightClass": weight})
        doc.addSourceDescriptor(font=TTFont(io.BytesIO(make_font(master))),
                                location={"Weight": weight})
    font, _, _ = varLib.build(doc)
    for style, weight in d["instances"]:
        instance = NamedInstance()
        instance.subfamilyNameID = font["name"].addMultilingualName({"en": style}, mac=False)
        instance.coordinates = {"wght": weight}
        font["fvar"].instances.append(instance)
    return font_bytes(font)


def gpos_pairs(font):
    """"LEFT RIGHT VALUE" of every non-zero printable-ASCII pair of the `kern` feature: per
    lookup, the value of the first subtable that covers the left glyph and has the pair."""
    table, names = font["GPOS"].table, font.getBestCmap()
    lookups = [table.LookupList.Lookup[i] for i in sorted(
        {i for record in table.FeatureList.FeatureRecord if record.FeatureTag == "kern"
         for i in record.Feature.LookupListIndex})]

    def value(sub, left, right):  # None when the subtable does not have the pair
        if left not in sub.Coverage.glyphs:
            return None
        if sub.Format == 1:
            found = [p.Value1 for p in sub.PairSet[sub.Coverage.glyphs.index(left)]
                     .PairValueRecord if p.SecondGlyph == right]
            return getattr(found[0], "XAdvance", 0) or 0 if found else None
        return getattr(sub.Class1Record[sub.ClassDef1.classDefs.get(left, 0)].Class2Record[
            sub.ClassDef2.classDefs.get(right, 0)].Value1, "XAdvance", 0) or 0

    pairs = [(left, right, sum(next((v for v in (value(sub, names[left], names[right])
                                                  for sub in lookup.SubTable) if v is not None), 0)
                               for lookup in lookups))
             for left in range(32, 127) for right in range(32, 127)]
    return ["%d %d %d" % pair for pair in pairs if pair[2]]


def main(out_dir):
    logging.getLogger("fontTools").setLevel(logging.ERROR)  # advances up to 65,535 on purpose
    manifest = os.path.join(out_dir, "fonts.txt")
    if os.path.exists(manifest):
        os.remove(manifest)
    written, by_file = [], {}
    for d in FONT_TABLE["fonts"]:
        d = by_file[d["file"]] = dict(by_file.get(d.get("like"), {}), **d)
        path = os.path.join(out_dir, d["file"])
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if "faces" in d or "repeat" in d:
            faces = d.get("faces") or [dict(d, family="%s %d" % (d["family"], i))
                                       for i in range(d["repeat"])]
            collection = TTCollection()
            collection.fonts = [TTFont(io.BytesIO(make_font(face)), recalcTimestamp=False)
                                for face in faces]
            collection.save(path)
        else:
            with open(path, "wb") as f:
                f.write(variable(d) if "masters" in d else make_font(d))
        expect = d.get("expect", "records")
        if expect == "pairs":
            lines = gpos_pairs(TTFont(path))
        elif expect == "records":
            written.append(d["file"])
            fonts = TTCollection(path).fonts if path.endswith(".ttc") else [TTFont(path)]
            lines = [line for i, font in enumerate(fonts) for line in describe(font, i)]
        else:
            continue
        with open(os.path.join(out_dir, "expected_%s.txt" % os.path.splitext(d["file"])[0]),
                  "w", encoding="ascii") as f:
            f.write("\n".join(lines) + "\n")
    with open(manifest, "w", encoding="ascii") as f:
        f.write("".join(name + "\n" for name in written))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: gen_test_fonts.py OUTPUT_DIR")
    main(sys.argv[1])
