#!/usr/bin/python3
# Writes <dir>/variable/keltest-var.ttf: "KelTest Var", a variable font with
# one weight axis (400 to 700, default 400) and the named instances Regular
# (400, the default), Semi Bold (550) and Bold (700). Every glyph is a box
# whose advance grows with the weight by its own amount. It lies in a folder
# of its own, apart from the fonts that tests scan as a whole.

import os
import sys

from fontTools import varLib
from fontTools.designspaceLib import AxisDescriptor, DesignSpaceDocument, SourceDescriptor
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib.tables._f_v_a_r import NamedInstance

CHARS = {0x20: "space", 0x41: "A", 0x42: "B", 0x61: "a"}


def master(weight):
    names = [".notdef"] + list(CHARS.values())
    fb = FontBuilder(1000, isTTF=True)
    fb.setupGlyphOrder(names)
    fb.setupCharacterMap(CHARS)
    glyphs, metrics = {}, {}
    for i, name in enumerate(names):
        advance = 500 + 10 * i + (weight - 400) * (i + 1) // 3
        pen = TTGlyphPen(None)
        if name != "space":
            pen.moveTo((50, 0))
            pen.lineTo((50, 700))
            pen.lineTo((advance - 50, 700))
            pen.lineTo((advance - 50, 0))
            pen.closePath()
        glyphs[name] = pen.glyph()
        metrics[name] = (advance, 50 if name != "space" else 0)
    fb.setupGlyf(glyphs)
    fb.setupHorizontalMetrics(metrics)
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": "KelTest Var", "styleName": "Regular"})
    fb.setupOS2(usWeightClass=weight)
    fb.setupPost()
    return fb.font


def main():
    out = os.path.join(sys.argv[1], "variable")
    os.makedirs(out, exist_ok=True)
    doc = DesignSpaceDocument()
    axis = AxisDescriptor()
    axis.tag, axis.name, axis.minimum, axis.default, axis.maximum = "wght", "Weight", 400, 400, 700
    doc.addAxis(axis)
    for weight in (400, 700):
        source = SourceDescriptor()
        source.font = master(weight)
        source.location = {"Weight": weight}
        doc.addSource(source)
    font, _, _ = varLib.build(doc)
    for style, weight in (("Regular", 400), ("Semi Bold", 550), ("Bold", 700)):
        instance = NamedInstance()
        instance.subfamilyNameID = font["name"].addMultilingualName({"en": style}, mac=False)
        instance.coordinates = {"wght": weight}
        font["fvar"].instances.append(instance)
    font.save(os.path.join(out, "keltest-var.ttf"))


if __name__ == "__main__":
    main()
