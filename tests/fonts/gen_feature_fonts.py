#!/usr/bin/python3
"""Writes the test fonts of single features into OUTPUT_DIR, each a set of boxes:

  metrics/composites.ttf  loaded advances that differ from `hmtx` (below)
  gpos_kern.ttf           every printable ASCII character, and U+A9B1 and U+1E900 (no
                          stored range bit) drawn as A; no `kern` table but a `kern`
                          feature (DFLT and latn) with glyph pairs (PairPosFormat1) and
                          class pairs (PairPosFormat2), one glyph pair overriding its
                          classes' value
  gpos_damaged.ttf        the same with a GPOS table cut to 6 bytes
  expected_gpos_kern.txt  "LEFT RIGHT VALUE" (character codes) for every non-zero pair,
                          read back from gpos_kern.ttf with fontTools: per lookup, the
                          first subtable that covers the left glyph and has the pair
  variable/keltest-var.ttf  "KelTest Var": one weight axis (400 to 700, default 400),
                          named instances Regular (400), Semi Bold (550), Bold (700);
                          each glyph's advance grows with the weight by its own amount.
                          In a folder of its own, apart from the fonts scanned as a whole.

Usage: /usr/bin/python3 gen_feature_fonts.py OUTPUT_DIR
"""
import os
import struct
import sys

from fontTools import varLib
from fontTools.designspaceLib import AxisDescriptor, DesignSpaceDocument, SourceDescriptor
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTFont
from fontTools.ttLib.tables.DefaultTable import DefaultTable
from fontTools.ttLib.tables._f_v_a_r import NamedInstance
from fontTools.ttLib.tables._g_l_y_f import USE_MY_METRICS

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
        source.font = font("KelTest Var", order, {0x20: "space", 0x41: "A", 0x42: "B", 0x61: "a"},
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


def main(out):
    for folder in ("metrics", "variable"):
        os.makedirs(os.path.join(out, folder), exist_ok=True)
    composites(os.path.join(out, "metrics", "composites.ttf"))
    gpos(out)
    variable(os.path.join(out, "variable", "keltest-var.ttf"))


if __name__ == "__main__":
    main(sys.argv[1])
