#!/usr/bin/python3
"""Writes OUTPUT_DIR/metrics/composites.ttf, a font whose loaded advances
differ from its `hmtx` entries.

Usage: /usr/bin/python3 gen_metrics_fonts.py OUTPUT_DIR

Glyphs (unitsPerEm 1000; `hmtx` advance, then what loading gives):
  A U+0041  simple, 700                  B U+0042  simple, 500
  C U+0043  A with USE_MY_METRICS, 0 -> 700
  D U+0044  B, then A with USE_MY_METRICS, 123 -> 700
  E U+0045  B moved by (40, 0) with USE_MY_METRICS, 900 -> 500
  F U+0046  C with USE_MY_METRICS, 50 -> 700 (two levels)
  G U+0047  A and B, no flag, 333 -> 333
  H U+0048  simple, 600, its point count raised past its data: no load
  I U+0049  H with USE_MY_METRICS, 444: no load
  J U+004A  empty, 250 -> 250
"""
import struct
import sys
from pathlib import Path

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib.tables._g_l_y_f import USE_MY_METRICS

SIMPLE = {"A": 700, "B": 500, "H": 600}
# name: (hmtx advance, [(component, dx, flagged)])
COMPOSITE = {
    "C": (0, [("A", 0, True)]),
    "D": (123, [("B", 0, False), ("A", 0, True)]),
    "E": (900, [("B", 40, True)]),
    "F": (50, [("C", 0, True)]),
    "G": (333, [("A", 0, False), ("B", 0, False)]),
    "I": (444, [("H", 0, True)]),
}


def box(advance):
    pen = TTGlyphPen(None)
    pen.moveTo((50, 0))
    pen.lineTo((50, 700))
    pen.lineTo((advance - 50, 700))
    pen.lineTo((advance - 50, 0))
    pen.closePath()
    return pen.glyph()


def build():
    order = [".notdef"] + sorted(set(SIMPLE) | set(COMPOSITE) | {"J"})
    fb = FontBuilder(1000, isTTF=True)
    fb.font.recalcTimestamp = False
    fb.setupGlyphOrder(order)
    fb.setupCharacterMap({ord(n): n for n in order[1:]})
    glyphs = {".notdef": box(400), "J": TTGlyphPen(None).glyph()}
    glyphs.update({n: box(a) for n, a in SIMPLE.items()})
    for name, (_, parts) in COMPOSITE.items():
        pen = TTGlyphPen(glyphs)
        for base, dx, _ in parts:
            pen.addComponent(base, (1, 0, 0, 1, dx, 0))
        glyphs[name] = pen.glyph()
    fb.setupGlyf(glyphs)
    glyf = fb.font["glyf"]
    for name, (_, parts) in COMPOSITE.items():
        for component, (_, _, flagged) in zip(glyf[name].components, parts):
            component.flags = component.flags | USE_MY_METRICS if flagged else \
                component.flags & ~USE_MY_METRICS
    advances = {".notdef": 400, "J": 250, **SIMPLE}
    advances.update({n: a for n, (a, _) in COMPOSITE.items()})
    fb.setupHorizontalMetrics({n: (advances[n], 50 if n != "J" else 0) for n in order})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": "KelTest Composites", "styleName": "Regular"})
    fb.setupOS2(usWinAscent=800, usWinDescent=200)
    fb.setupPost()
    return fb.font, order.index("H")


def break_glyph(data, glyph_index):
    """Raises the end point of the glyph's only contour to 200 (it has 4
    points), so that its flags and coordinates run past its data."""
    count = struct.unpack(">H", data[4:6])[0]
    tables = {}
    for i in range(count):
        tag, _, offset, length = struct.unpack(">4sLLL", data[12 + 16 * i:28 + 16 * i])
        tables[tag] = offset
    loca = tables[b"loca"]
    if struct.unpack(">h", data[tables[b"head"] + 50:][:2])[0]:
        offset = struct.unpack(">L", data[loca + 4 * glyph_index:][:4])[0]
    else:
        offset = 2 * struct.unpack(">H", data[loca + 2 * glyph_index:][:2])[0]
    glyph = tables[b"glyf"] + offset
    assert struct.unpack(">h", data[glyph:glyph + 2])[0] == 1
    return data[:glyph + 10] + struct.pack(">H", 200) + data[glyph + 12:]


def main(argv):
    folder = Path(argv[1]) / "metrics"
    folder.mkdir(parents=True, exist_ok=True)
    font, broken = build()
    path = folder / "composites.ttf"
    font.save(str(path))
    path.write_bytes(break_glyph(path.read_bytes(), broken))


if __name__ == "__main__":
    main(sys.argv)
