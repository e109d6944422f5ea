#!/usr/bin/python3
"""Writes the test fonts of GPOS kerning (no `kern` table in either).

Usage: /usr/bin/python3 gen_gpos_fonts.py OUTPUT_DIR

  gpos_kern.ttf          every printable ASCII character, and U+A9B1 and
                         U+1E900 (no stored range bit); a `kern` feature
                         (DFLT and latn) with glyph pairs (PairPosFormat1)
                         and class pairs (PairPosFormat2), one glyph pair
                         overriding its classes' value
  gpos_damaged.ttf       the same with a GPOS table cut to 6 bytes
  expected_gpos_kern.txt "LEFT RIGHT VALUE" (character codes) for every
                         non-zero pair, read back from gpos_kern.ttf with
                         fontTools: per lookup, the first subtable that
                         covers the left glyph and has the pair gives it
"""
import os
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTFont
from fontTools.ttLib.tables.DefaultTable import DefaultTable

FEATURES = """
languagesystem DFLT dflt;
languagesystem latn dflt;
@ROUND = [O o C G];
@DIAG = [V W Y v w y];
@DIGIT = [one seven];
@PUNCT = [period comma];
feature kern {
  pos A V -120;
  pos T o -80;
  pos space A -30;
  pos quoteright s -55;
  pos one one -20;
  pos O V -7;
  pos @ROUND @DIAG -40;
  pos @DIAG @ROUND -35;
  pos @DIGIT @PUNCT -25;
  pos @PUNCT space 15;
} kern;
"""


def build(path):
    codes = list(range(32, 127))
    names = {c: "uni%04X" % c for c in codes}
    # feaLib's names for the glyphs the features name.
    names.update({32: "space", 44: "comma", 46: "period", 39: "quoteright", 49: "one", 55: "seven"})
    for c in range(65, 91):
        names[c] = chr(c)
    for c in range(97, 123):
        names[c] = chr(c)
    order = [".notdef"] + [names[c] for c in codes]
    fb = FontBuilder(1000, isTTF=True)
    fb.setupGlyphOrder(order)
    # Two characters without a stored Unicode-range bit (Javanese, Adlam),
    # drawn with A's glyph.
    fb.setupCharacterMap({**{c: names[c] for c in codes}, 0xA9B1: "A", 0x1E900: "A"})
    pen = TTGlyphPen(None)
    pen.moveTo((50, 0))
    pen.lineTo((50, 700))
    pen.lineTo((400, 700))
    pen.closePath()
    box = pen.glyph()
    fb.setupGlyf({name: box for name in order})
    fb.setupHorizontalMetrics({name: (300 + 7 * i, 50) for i, name in enumerate(order)})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": "KelTest Gpos", "styleName": "Regular"})
    fb.setupOS2()
    fb.setupPost()
    fb.addOpenTypeFeatures(FEATURES)
    fb.save(path)


def expected(path):
    font = TTFont(path)
    cmap = font.getBestCmap()
    gpos = font["GPOS"].table
    lookups = []
    for record in gpos.FeatureList.FeatureRecord:
        if record.FeatureTag == "kern":
            lookups.extend(i for i in record.Feature.LookupListIndex if i not in lookups)
    values = {}
    for left in range(32, 127):
        for right in range(32, 127):
            l, r, total = cmap[left], cmap[right], 0
            for index in sorted(lookups):
                for sub in gpos.LookupList.Lookup[index].SubTable:
                    if l not in sub.Coverage.glyphs:
                        continue
                    if sub.Format == 1:
                        pairs = sub.PairSet[sub.Coverage.glyphs.index(l)].PairValueRecord
                        found = [p.Value1 for p in pairs if p.SecondGlyph == r]
                        if not found:
                            continue
                        value = found[0]
                    else:
                        c1 = sub.ClassDef1.classDefs.get(l, 0)
                        c2 = sub.ClassDef2.classDefs.get(r, 0)
                        value = sub.Class1Record[c1].Class2Record[c2].Value1
                    total += getattr(value, "XAdvance", 0) or 0
                    break
            if total:
                values[(left, right)] = total
    return values


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    good = os.path.join(out, "gpos_kern.ttf")
    build(good)
    values = expected(good)
    formats = {sub.Format for lookup in TTFont(good)["GPOS"].table.LookupList.Lookup
               for sub in lookup.SubTable}
    assert formats == {1, 2} and "kern" not in TTFont(good), formats

    damaged = TTFont(good)
    raw = DefaultTable("GPOS")
    raw.data = damaged.getTableData("GPOS")[:6]
    damaged["GPOS"] = raw
    damaged.save(os.path.join(out, "gpos_damaged.ttf"))

    with open(os.path.join(out, "expected_gpos_kern.txt"), "w") as f:
        for (left, right), value in sorted(values.items()):
            f.write("%d %d %d\n" % (left, right, value))


if __name__ == "__main__":
    main()
