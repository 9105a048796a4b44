#!/usr/bin/python3
"""Builds resources/Zel-Icons-Regular.otf, the editor's icon font.

Every glyph is drawn here in code: centre lines stroked with a round pen,
plus a few filled shapes, on a 1000-unit em (ascent 800, descent 200). Each
icon sits in a 760-unit box centred on (500, 300), the middle of the
ascent-descent band, so a glyph centred by its text box is centred by its
ink, and one stroke weight runs through the set.

    /usr/bin/python3 resources/tools/make_icon_font.py            # rewrite the font
    /usr/bin/python3 resources/tools/make_icon_font.py --preview DIR
                                                    # also one PNG per glyph

The code points are listed in resources/icons/README.md and, for the editor,
in toolkit/widgets/ZelIconGlyphs.h; keep the three in step.
"""

import math
import os
import sys

# A fixed timestamp in the font's tables, so a rebuild gives the same bytes.
os.environ.setdefault("SOURCE_DATE_EPOCH", "1700000000")

import fontforge  # noqa: E402  (after the timestamp is fixed)

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.normpath(os.path.join(HERE, "..", "Zel-Icons-Regular.otf"))

EM, ASCENT, DESCENT = 1000, 800, 200
CX, CY = 500, 300          # the icon box's centre
STROKE = 84                # the common stroke weight
KAPPA = 4 * (math.sqrt(2) - 1) / 3


# ---- Geometry helpers -------------------------------------------------------

def polyline(points, closed=False):
    c = fontforge.contour()
    c.moveTo(*points[0])
    for p in points[1:]:
        c.lineTo(*p)
    c.closed = closed
    return c


def add_arc(c, cx, cy, r, a0, a1, move=False):
    """Appends an arc (degrees, counter-clockwise when a1 > a0) as cubics."""
    steps = max(1, int(math.ceil(abs(a1 - a0) / 90.0)))
    da = math.radians(a1 - a0) / steps
    k = 4.0 / 3.0 * math.tan(da / 4)
    a = math.radians(a0)
    if move:
        c.moveTo(cx + r * math.cos(a), cy + r * math.sin(a))
    for _ in range(steps):
        b = a + da
        p0 = (cx + r * math.cos(a), cy + r * math.sin(a))
        p3 = (cx + r * math.cos(b), cy + r * math.sin(b))
        p1 = (p0[0] - k * r * math.sin(a), p0[1] + k * r * math.cos(a))
        p2 = (p3[0] + k * r * math.sin(b), p3[1] - k * r * math.cos(b))
        c.cubicTo(p1, p2, p3)
        a = b
    return c


def arc(cx, cy, r, a0, a1):
    return add_arc(fontforge.contour(), cx, cy, r, a0, a1, move=True)


def circle(cx, cy, r, clockwise=False):
    c = arc(cx, cy, r, 0, -360 if clockwise else 360)
    c.closed = True
    return c


def stroked(contours, width=STROKE, cap="round", join="round"):
    layer = fontforge.layer()
    for c in contours:
        layer += c
    layer.stroke("circular", width, cap, join)
    return layer


def filled(contours):
    layer = fontforge.layer()
    for c in contours:
        c.closed = True
        layer += c
    return layer


def mirrored(points):
    return [(2 * CX - x, y) for x, y in points]


# ---- The glyphs -------------------------------------------------------------

def power():
    ring = arc(CX, CY - 20, 300, 128, 128 + 284)  # open at the top
    stem = polyline([(CX, CY + 40), (CX, CY + 370)])
    return stroked([ring, stem])


def gear():
    teeth, outer, root, hole = 8, 375, 290, 118
    points = []
    for i in range(teeth):
        centre = 360.0 * i / teeth
        for angle, r in ((centre - 15, root), (centre - 9, outer), (centre + 9, outer), (centre + 15, root)):
            points.append((CX + r * math.cos(math.radians(angle)), CY + r * math.sin(math.radians(angle))))
    body = filled([polyline(points, closed=True)])
    body += circle(CX, CY, hole, clockwise=True)
    return body


def book():
    # An open book: both pages in one outline, and the spine.
    top, bottom, side = CY + 300, CY - 330, 360
    pages = fontforge.contour()
    pages.moveTo(CX, bottom + 30)
    pages.cubicTo((CX - 90, bottom - 10), (CX - 220, bottom - 10), (CX - side, bottom + 20))
    pages.lineTo(CX - side, top)
    pages.cubicTo((CX - 220, top - 30), (CX - 90, top - 30), (CX, top + 10))
    pages.cubicTo((CX + 90, top - 30), (CX + 220, top - 30), (CX + side, top))
    pages.lineTo(CX + side, bottom + 20)
    pages.cubicTo((CX + 220, bottom - 10), (CX + 90, bottom - 10), (CX, bottom + 30))
    pages.closed = True
    spine = polyline([(CX, bottom + 30), (CX, top + 10)])
    return stroked([pages, spine], width=76)


def undo():
    # A hook: the arrow points left at the top, the line swings round on the
    # right and comes back underneath.
    tip_x, tip_y, turn_x, r, head = CX - 310, CY + 100, CX + 130, 175, 150
    path = polyline([(tip_x + 10, tip_y), (turn_x, tip_y)])
    add_arc(path, turn_x, tip_y - r, r, 90, -90)
    path.lineTo(CX - 150, tip_y - 2 * r)
    arrow = polyline([(tip_x + head, tip_y + head), (tip_x, tip_y), (tip_x + head, tip_y - head)])
    return stroked([path, arrow])


def redo():
    import psMat
    layer = undo()
    layer.transform(psMat.compose(psMat.scale(-1, 1), psMat.translate(2 * CX, 0)))
    return layer


def save():
    # A floppy disc: the body with its cut corner, the shutter and the label.
    l, r, b, t, cut = CX - 340, CX + 340, CY - 340, CY + 340, 120
    body = polyline([(l, b), (r, b), (r, t - cut), (r - cut, t), (l, t)], closed=True)
    shutter = polyline([(CX - 170, t), (CX - 170, t - 190), (CX + 130, t - 190), (CX + 130, t)])
    parts = stroked([body, shutter], width=76, join="round")
    parts += circle(CX, CY - 120, 100)
    return parts


def more():
    rows = (CY + 250, CY, CY - 250)
    lines = [polyline([(CX - 150, y), (CX + 340, y)]) for y in rows]
    layer = stroked(lines)
    for y in rows:
        layer += circle(CX - 300, y, 58)
    return layer


def theme():
    r = 320
    ring = stroked([circle(CX, CY, r)], width=72)
    half = fontforge.contour()
    half.moveTo(CX, CY - r)
    add_arc(half, CX, CY, r, -90, -270)
    half.closed = True
    ring += filled([half])
    return ring


def close():
    d = 270
    return stroked([polyline([(CX - d, CY - d), (CX + d, CY + d)]),
                    polyline([(CX - d, CY + d), (CX + d, CY - d)])])


def chevron(direction):
    # Pointing left; the others are rotations of it.
    import psMat
    points = [(CX + 130, CY + 300), (CX - 170, CY), (CX + 130, CY - 300)]
    layer = stroked([polyline(points)], width=92)
    turns = {"left": 0, "down": 90, "right": 180, "up": 270}[direction]
    layer.transform(psMat.compose(psMat.compose(psMat.translate(-CX, -CY), psMat.rotate(math.radians(turns))),
                                  psMat.translate(CX, CY)))
    return layer


def check():
    return stroked([polyline([(CX - 320, CY + 10), (CX - 110, CY - 220), (CX + 330, CY + 250)])], width=92)


def dot():
    return filled([circle(CX, CY, 130)])


def plus():
    d = 300
    return stroked([polyline([(CX - d, CY), (CX + d, CY)]), polyline([(CX, CY - d), (CX, CY + d)])])


def minus():
    return stroked([polyline([(CX - 300, CY), (CX + 300, CY)])])


GLYPHS = [
    (0xE000, "power", power),
    (0xE001, "gear", gear),
    (0xE002, "book", book),
    (0xE003, "undo", undo),
    (0xE004, "redo", redo),
    (0xE005, "save", save),
    (0xE006, "more", more),
    (0xE007, "theme", theme),
    (0xE008, "close", close),
    (0xE009, "chevronLeft", lambda: chevron("left")),
    (0xE00A, "chevronRight", lambda: chevron("right")),
    (0xE00B, "chevronUp", lambda: chevron("up")),
    (0xE00C, "chevronDown", lambda: chevron("down")),
    (0xE00D, "check", check),
    (0xE00E, "dot", dot),
    (0xE00F, "plus", plus),
    (0xE010, "minus", minus),
]


# ---- The font ---------------------------------------------------------------

def new_font():
    font = fontforge.font()
    font.encoding = "UnicodeFull"
    font.em = EM
    font.ascent, font.descent = ASCENT, DESCENT
    font.familyname = "Zel Icons"
    font.fontname = "Zel-Icons-Regular"
    font.fullname = "Zel Icons Regular"
    font.weight = "Regular"
    font.version = "1.0"
    font.copyright = "Icons of the Vantry editor."
    for name in ("os2_winascent", "os2_typoascent", "hhea_ascent"):
        setattr(font, name, ASCENT)
    for name in ("os2_windescent", "hhea_descent", "os2_typodescent"):
        setattr(font, name, DESCENT if name == "os2_windescent" else -DESCENT)
    for name in ("os2_winascent_add", "os2_windescent_add", "os2_typoascent_add",
                 "os2_typodescent_add", "hhea_ascent_add", "hhea_descent_add"):
        setattr(font, name, False)
    font.os2_typolinegap = font.hhea_linegap = 0
    return font


def add_glyph(font, code, name, draw):
    glyph = font.createChar(code, "icon_" + name)  # not a standard glyph name
    glyph.foreground = draw()
    glyph.removeOverlap()
    glyph.correctDirection()
    glyph.round()
    glyph.width = EM
    return glyph


def main(argv):
    font = new_font()
    notdef = font.createChar(-1, ".notdef")
    notdef.width = EM
    for code, name, draw in GLYPHS:
        add_glyph(font, code, name, draw)
    font.generate(OUT, flags=("opentype",))
    if "--preview" in argv:
        folder = argv[argv.index("--preview") + 1]
        os.makedirs(folder, exist_ok=True)
        for code, name, _ in GLYPHS:
            font[code].export(os.path.join(folder, "%04X-%s.png" % (code, name)), 255)
    print(OUT)


if __name__ == "__main__":
    main(sys.argv[1:])
