#!/usr/bin/env python3
"""Draws the library's icons (resources 5001-5110) and writes them as .ico
files with 32x32 and 16x16 images, each in 32-bit colour with alpha and in
256 colours with a transparency mask, plus the resource script that lists
them.

    scripts/make-icons.py [OUTDIR]      (default: src/resources/icons)

Standard library only. The drawings live in a 32-unit square; each icon is
rendered at both sizes from the same shapes (small variants drop detail).
Rendering is deterministic: running the script again gives the same bytes.
"""

import math
import os
import struct
import sys

# ---------------------------------------------------------------------------
# Rasteriser: polygons with analytic horizontal coverage and SUB rows per
# pixel, composited in premultiplied RGBA floats.

SUB = 5


def _area(points):
    a = 0.0
    for i in range(len(points)):
        x0, y0 = points[i]
        x1, y1 = points[(i + 1) % len(points)]
        a += x0 * y1 - x1 * y0
    return a / 2


class Canvas:
    def __init__(self, size):
        self.size = size
        self.scale = size / 32.0
        self.px = [[0.0, 0.0, 0.0, 0.0] for _ in range(size * size)]

    def _coverage(self, polygons, evenodd):
        size, scale = self.size, self.scale
        edges = []
        for poly in polygons:
            pts = [(x * scale, y * scale) for x, y in poly]
            if not evenodd and _area(pts) < 0:
                pts.reverse()
            for i in range(len(pts)):
                x0, y0 = pts[i]
                x1, y1 = pts[(i + 1) % len(pts)]
                if y0 == y1:
                    continue
                edges.append((x0, y0, x1, y1, 1 if y1 > y0 else -1))
        cov = {}
        for sy in range(size * SUB):
            y = (sy + 0.5) / SUB
            crossings = []
            for x0, y0, x1, y1, d in edges:
                if (y0 <= y < y1) or (y1 <= y < y0):
                    crossings.append((x0 + (y - y0) * (x1 - x0) / (y1 - y0), d))
            if not crossings:
                continue
            crossings.sort()
            row = sy // SUB
            winding = 0
            start = None
            for x, d in crossings:
                before = winding
                winding += d
                inside_before = (before % 2 == 1) if evenodd else before != 0
                inside_after = (winding % 2 == 1) if evenodd else winding != 0
                if not inside_before and inside_after:
                    start = x
                elif inside_before and not inside_after:
                    self._span(cov, row, start, x)
        return cov

    def _span(self, cov, row, x0, x1):
        x0 = max(0.0, x0)
        x1 = min(float(self.size), x1)
        if x1 <= x0:
            return
        weight = 1.0 / SUB
        first, last = int(x0), int(min(x1, self.size - 1e-9))
        for px in range(first, last + 1):
            overlap = min(x1, px + 1) - max(x0, px)
            if overlap > 0:
                key = row * self.size + px
                cov[key] = cov.get(key, 0.0) + overlap * weight

    def fill(self, polygons, paint, evenodd=False, alpha=1.0):
        if polygons and isinstance(polygons[0][0], (int, float)):
            polygons = [polygons]
        cov = self._coverage(polygons, evenodd)
        size = self.size
        for key, c in cov.items():
            c = min(1.0, c) * alpha
            if c <= 0:
                continue
            y = key // size
            x = key % size
            r, g, b, a = paint((x + 0.5) / self.scale, (y + 0.5) / self.scale)
            a *= c
            p = self.px[key]
            inv = 1.0 - a
            p[0] = r * a + p[0] * inv
            p[1] = g * a + p[1] * inv
            p[2] = b * a + p[2] * inv
            p[3] = a + p[3] * inv

    def pixels(self):
        """Rows top to bottom of straight (not premultiplied) RGBA bytes."""
        out = []
        for p in self.px:
            a = p[3]
            if a <= 0.002:
                out.append((0, 0, 0, 0))
                continue
            out.append(tuple(int(round(max(0.0, min(1.0, v / a)) * 255)) for v in p[:3]) +
                       (int(round(min(1.0, a) * 255)),))
        return out


# ---------------------------------------------------------------------------
# Paints and shapes (units: the 32-unit square, y downwards).

def hexc(text, a=1.0):
    text = text.lstrip('#')
    return (int(text[0:2], 16) / 255, int(text[2:4], 16) / 255, int(text[4:6], 16) / 255, a)


def solid(colour):
    return lambda x, y: colour


def vgrad(top, bottom, y0, y1):
    def paint(x, y):
        t = 0.0 if y1 == y0 else max(0.0, min(1.0, (y - y0) / (y1 - y0)))
        return tuple(top[i] + (bottom[i] - top[i]) * t for i in range(4))
    return paint


def rect(x0, y0, x1, y1):
    return [(x0, y0), (x1, y0), (x1, y1), (x0, y1)]


def ellipse(cx, cy, rx, ry=None, n=48, a0=0.0, a1=2 * math.pi):
    ry = rx if ry is None else ry
    return [(cx + rx * math.cos(a0 + (a1 - a0) * i / n), cy + ry * math.sin(a0 + (a1 - a0) * i / n))
            for i in range(n)]


def rrect(x0, y0, x1, y1, r):
    r = min(r, (x1 - x0) / 2, (y1 - y0) / 2)
    pts = []
    for cx, cy, start in ((x1 - r, y0 + r, -90), (x1 - r, y1 - r, 0), (x0 + r, y1 - r, 90), (x0 + r, y0 + r, 180)):
        for i in range(7):
            a = math.radians(start + 90 * i / 6)
            pts.append((cx + r * math.cos(a), cy + r * math.sin(a)))
    return pts


def inset(poly, d):
    """Moves every vertex of a convex polygon toward its centroid by d units."""
    cx = sum(p[0] for p in poly) / len(poly)
    cy = sum(p[1] for p in poly) / len(poly)
    out = []
    for x, y in poly:
        dx, dy = x - cx, y - cy
        length = math.hypot(dx, dy) or 1.0
        out.append((x - dx / length * d, y - dy / length * d))
    return out


def line(x0, y0, x1, y1, w):
    dx, dy = x1 - x0, y1 - y0
    length = math.hypot(dx, dy) or 1.0
    nx, ny = -dy / length * w / 2, dx / length * w / 2
    return [(x0 + nx, y0 + ny), (x1 + nx, y1 + ny), (x1 - nx, y1 - ny), (x0 - nx, y0 - ny)]


def polyline(points, w):
    shapes = [line(*points[i], *points[i + 1], w) for i in range(len(points) - 1)]
    shapes += [ellipse(x, y, w / 2, n=12) for x, y in points[1:-1]]
    return shapes


def arc(cx, cy, r, a0, a1, w, n=24):
    """A stroked arc (degrees, clockwise on screen)."""
    outer = [(cx + (r + w / 2) * math.cos(math.radians(a0 + (a1 - a0) * i / n)),
              cy + (r + w / 2) * math.sin(math.radians(a0 + (a1 - a0) * i / n))) for i in range(n + 1)]
    inner = [(cx + (r - w / 2) * math.cos(math.radians(a0 + (a1 - a0) * i / n)),
              cy + (r - w / 2) * math.sin(math.radians(a0 + (a1 - a0) * i / n))) for i in range(n + 1)]
    return outer + inner[::-1]


def translate(poly, dx, dy):
    return [(x + dx, y + dy) for x, y in poly]


# ---------------------------------------------------------------------------
# The family's colours and common treatments.

INK = hexc('34404f')           # outlines
PAPER_TOP, PAPER_BOTTOM = hexc('ffffff'), hexc('e4e9f0')
BLUE, BLUE_DARK, BLUE_LIGHT = hexc('2f74c0'), hexc('1d4f8f'), hexc('7fb2ea')
TEAL, TEAL_DARK = hexc('1f9e8e'), hexc('136e63')
AMBER, AMBER_DARK, AMBER_LIGHT = hexc('f0b24a'), hexc('b9781c'), hexc('ffd98a')
RED, RED_DARK = hexc('d9483b'), hexc('9c2a20')
GREEN, GREEN_DARK = hexc('3aa757'), hexc('23743a')
GREY, GREY_DARK, GREY_LIGHT = hexc('9aa5b1'), hexc('5d6975'), hexc('d5dbe2')
WHITE = hexc('ffffff')
SHADOW = hexc('000000', 0.22)
SELECT_FILL, SELECT_EDGE = hexc('3d8bfd', 0.28), hexc('2a6fd6', 0.85)


def body(c, shape, top, bottom, y0, y1, outline=INK, shadow=True, evenodd=False):
    """A shape with the family's drop shadow, gradient and 1-px outline."""
    px = 1.0 / c.scale
    if shadow:
        c.fill(translate(shape, 0.7 * px * 1.4, px * 1.4) if c.size == 32 else translate(shape, 0.5, 0.9),
               solid(SHADOW), evenodd)
    c.fill(shape, solid(outline), evenodd)
    c.fill(inset(shape, px) if not evenodd else shape, vgrad(top, bottom, y0, y1), evenodd)


def outlined(c, shape, colour_top, colour_bottom, y0, y1, outline=INK):
    """Outline drawn as the shape, its inside one pixel in (convex shapes)."""
    px = 1.0 / c.scale
    c.fill(shape, solid(outline))
    c.fill(inset(shape, px), vgrad(colour_top, colour_bottom, y0, y1))


def selection(c):
    """The selected state: the glyph on a translucent highlight tile."""
    px = 1.0 / c.scale
    c.fill([rrect(0.5, 0.5, 31.5, 31.5, 5), rrect(0.5 + px, 0.5 + px, 31.5 - px, 31.5 - px, 5 - px)],
           solid(SELECT_EDGE), evenodd=True)
    c.fill(rrect(0.5 + px, 0.5 + px, 31.5 - px, 31.5 - px, 5 - px), solid(SELECT_FILL))


def badge_circle(c, colour, dark, cx=25, cy=25, r=6.5):
    c.fill(ellipse(cx + 0.5, cy + 0.8, r), solid(SHADOW))
    c.fill(ellipse(cx, cy, r), solid(dark))
    c.fill(ellipse(cx, cy, r - 1.2 / c.scale * 1.3), vgrad(colour, dark, cy - r, cy + r))


# ---------------------------------------------------------------------------
# Glyphs. Each draws into the canvas; `simple` leaves out fine detail.

def page(c, x0=7, y0=3, x1=25, y1=29, fold=6, lines=True, band=None, simple=False):
    shape = [(x0, y0), (x1 - fold, y0), (x1, y0 + fold), (x1, y1), (x0, y1)]
    body(c, shape, PAPER_TOP, PAPER_BOTTOM, y0, y1)
    c.fill([(x1 - fold, y0), (x1, y0 + fold), (x1 - fold, y0 + fold)], solid(GREY_LIGHT))
    c.fill(polyline([(x1 - fold, y0 + 0.5), (x1 - fold, y0 + fold), (x1 - 0.5, y0 + fold)], 1.0 / c.scale * 1.0),
           solid(INK))
    if band:
        c.fill(rect(x0 + 1.5, y0 + 2, x1 - fold - 0.5, y0 + 5.5), solid(band))
    if lines:
        step = 3.5 if not simple else 5
        y = y0 + (9 if band else 9)
        widths = [0.85, 0.7, 0.9, 0.6, 0.8, 0.75]
        i = 0
        while y < y1 - 3:
            length = (x1 - x0 - 5) * widths[i % len(widths)]
            c.fill(rect(x0 + 2.5, y, x0 + 2.5 + length, y + (1.3 if not simple else 2)), solid(hexc('8a9bb0')))
            y += step
            i += 1


def document(c, simple=False):
    page(c, band=BLUE, simple=simple)


def generic_document(c, simple=False):
    page(c, simple=simple)


def folder(c, open_=False, simple=False):
    back = [(3, 7), (12, 7), (14.5, 10), (29, 10), (29, 27), (3, 27)]
    body(c, back, AMBER_LIGHT, AMBER, 7, 27, outline=AMBER_DARK)
    if open_:
        c.fill(rect(6, 12, 27, 25), solid(WHITE))
        if not simple:
            for y in (15, 18, 21):
                c.fill(rect(8, y, 24, y + 1.2), solid(GREY_LIGHT))
        front = [(1.5, 15.5), (26, 15.5), (30.5, 28), (5.5, 28)]
    else:
        front = [(3, 13), (29, 13), (29, 28), (3, 28)]
    body(c, front, AMBER_LIGHT, AMBER, 13, 28, outline=AMBER_DARK, shadow=False)
    if not open_ and not simple:
        c.fill(rect(4.5, 14.3, 27.5, 15.3), solid(hexc('fff1c9')))


def server(c, state='on', simple=False):
    grey = state == 'off'
    top = GREY_LIGHT if grey else hexc('6f8fb5')
    bottom = GREY if grey else hexc('3a5f8c')
    shape = rrect(8, 2.5, 24, 29.5, 2)
    body(c, shape, top, bottom, 2.5, 29.5, outline=GREY_DARK if grey else BLUE_DARK)
    bays = (5, 12.5, 20) if not simple else (5.5, 14.5)
    for y in bays:
        h = 5 if not simple else 7
        c.fill(rect(10, y, 22, y + h), solid(hexc('2b3f57') if not grey else GREY_DARK))
        c.fill(rect(10.8, y + 0.8, 21.2, y + h - 0.8), vgrad(hexc('56708f') if not grey else GREY,
                                                               hexc('3d5572') if not grey else GREY_DARK, y, y + h))
        led = {'on': hexc('62e27e'), 'off': hexc('7b858f'), 'busy': hexc('ffc24a'), 'error': hexc('ff6b5b')}[state]
        c.fill(ellipse(19.3, y + h / 2, 1.3 if not simple else 1.6, n=16), solid(led))
        if not simple:
            c.fill(rect(12, y + h / 2 - 0.5, 16.5, y + h / 2 + 0.5), solid(hexc('90a6c0') if not grey else GREY_LIGHT))


def lower_band(cx, y, rx, ry, w, n=24):
    """The lower half of an ellipse's rim as a band of width w."""
    outer = [(cx - rx * math.cos(math.pi * i / n), y + ry * math.sin(math.pi * i / n)) for i in range(n + 1)]
    inner = [(cx + rx * math.cos(math.pi * i / n), y + w + ry * math.sin(math.pi * i / n)) for i in range(n + 1)]
    return outer + inner


def database(c, simple=False):
    """A server-map node: a storage cylinder."""
    shape = [(6, 8)] + [(16 - 10 * math.cos(math.pi * i / 24), 25 + 3.6 * math.sin(math.pi * i / 24))
                        for i in range(25)] + [(26, 8)]
    body(c, shape, hexc('4fa8a0'), TEAL_DARK, 5, 29, outline=TEAL_DARK)
    if not simple:
        for y in (14, 19.5):
            c.fill(lower_band(16, y, 9.5, 3.3, 0.9), solid(hexc('0f5a51')))
    c.fill(ellipse(16, 8, 10, 3.6), solid(TEAL_DARK))
    c.fill(ellipse(16, 8, 9, 2.7), vgrad(hexc('9fe0d8'), hexc('5cbdb2'), 5, 11))


def emblem(c, simple=False):
    tile = rrect(2.5, 2.5, 29.5, 29.5, 6)
    body(c, tile, hexc('3f8ad8'), hexc('1c4f93'), 2.5, 29.5, outline=BLUE_DARK)
    c.fill(rrect(4, 3.8, 28, 15, 4.5), solid(hexc('ffffff', 0.16)))
    # The client's mark: an "M" of two peaks over a base line.
    mark = [(7.5, 23.5), (7.5, 9), (11, 9), (16, 16), (21, 9), (24.5, 9), (24.5, 23.5), (21, 23.5), (21, 15),
            (16, 21.5), (11, 15), (11, 23.5)]
    c.fill(translate(mark, 0.4, 0.7), solid(hexc('0d2f5c', 0.5)))
    c.fill(mark, solid(WHITE))
    if not simple:
        c.fill(rect(7.5, 25, 24.5, 26.3), solid(hexc('9cc8f5')))


def calendar(c, simple=False, highlight=True):
    shape = rrect(4, 5, 28, 29, 2)
    body(c, shape, PAPER_TOP, PAPER_BOTTOM, 5, 29)
    c.fill(rrect(4, 5, 28, 11.5, 2) + [], solid(RED_DARK))
    c.fill(rrect(4.9, 5.9, 27.1, 11.5, 1.4), vgrad(hexc('ef6a5d'), RED, 5, 11.5))
    for x in (10, 16, 22):
        c.fill(rrect(x - 1, 2.5, x + 1, 8, 1), solid(GREY_DARK))
    cols = 4 if not simple else 3
    rows = 3 if not simple else 2
    cw = 20 / cols
    rh = 14 / rows
    for r in range(rows):
        for k in range(cols):
            x = 6 + k * cw
            y = 13.5 + r * rh
            colour = BLUE if (highlight and r == rows - 1 and k == 1) else hexc('b9c4d2')
            c.fill(rect(x + 0.4, y + 0.4, x + cw - 0.8, y + rh - 0.8), solid(colour))


def bubble(c, x0, y0, x1, y1, tail_left, top, bottom, edge, lines=True, simple=False):
    shape = rrect(x0, y0, x1, y1, 3.5)
    tail = ([(x0 + 3, y1 - 1), (x0 + 2, y1 + 4.5), (x0 + 8, y1 - 1)] if tail_left else
            [(x1 - 8, y1 - 1), (x1 - 2, y1 + 4.5), (x1 - 3, y1 - 1)])
    c.fill([translate(shape, 0.6, 1.0), translate(tail, 0.6, 1.0)], solid(SHADOW))
    c.fill([shape, tail], solid(edge))
    c.fill([inset(shape, 1 / c.scale), inset(tail, 1 / c.scale * 1.5)], vgrad(top, bottom, y0, y1))
    if lines and not simple:
        y = y0 + 3.5
        while y < y1 - 2.5:
            c.fill(rect(x0 + 3, y, x1 - 3.5, y + 1.2), solid(hexc('ffffff', 0.85)))
            y += 3


def discussion(c, simple=False):
    bubble(c, 2, 3, 22, 16, True, hexc('5bc2b4'), TEAL, TEAL_DARK, simple=simple)
    bubble(c, 10, 12, 30, 25, False, hexc('5b9ae0'), BLUE, BLUE_DARK, simple=simple)


def topic(c, simple=False):
    bubble(c, 3, 5, 29, 22, True, hexc('5b9ae0'), BLUE, BLUE_DARK, simple=simple)


def magnifier(c, simple=False, cx=13, cy=13, r=8.5):
    c.fill(line(cx + r * 0.62, cy + r * 0.62, 28, 28, 5.5), solid(SHADOW))
    c.fill(line(cx + r * 0.6, cy + r * 0.6, 27.5, 27.5, 4.6), solid(hexc('2b2f36')))
    c.fill(line(cx + r * 0.6 + 1, cy + r * 0.6 + 1, 26.8, 26.8, 2.4), solid(hexc('6b4a2e')))
    c.fill(ellipse(cx + 0.5, cy + 0.9, r + 1.2), solid(SHADOW))
    c.fill(ellipse(cx, cy, r + 1.2), solid(GREY_DARK))
    c.fill(ellipse(cx, cy, r), vgrad(hexc('d9ecff'), hexc('8ebfea'), cy - r, cy + r))
    if not simple:
        c.fill(arc(cx, cy, r - 2.5, 200, 260, 1.6), solid(WHITE))


def saved_query(c, simple=False):
    page(c, 3, 2, 21, 26, fold=5, simple=True)
    magnifier(c, simple, cx=19, cy=17, r=6.5)


def globe(c, simple=False, cx=16, cy=16, r=13):
    c.fill(ellipse(cx + 0.6, cy + 1, r), solid(SHADOW))
    c.fill(ellipse(cx, cy, r), solid(BLUE_DARK))
    c.fill(ellipse(cx, cy, r - 1 / c.scale), vgrad(hexc('76c0f0'), hexc('2f7fc8'), cy - r, cy + r))
    land = [[(cx - 8, cy - 7), (cx - 2, cy - 9), (cx + 1, cy - 5), (cx - 3, cy - 1), (cx - 2, cy + 4),
             (cx - 6, cy + 7), (cx - 9, cy + 1)],
            [(cx + 3, cy + 1), (cx + 9, cy - 3), (cx + 11, cy + 3), (cx + 6, cy + 10), (cx + 3, cy + 6)]]
    c.fill(land, solid(hexc('4cb36a')))
    if not simple:
        c.fill(arc(cx, cy, r * 0.55, 0, 360, 0.8, n=40), solid(hexc('ffffff', 0.45)))
        c.fill(rect(cx - r + 1, cy - 0.4, cx + r - 1, cy + 0.4), solid(hexc('ffffff', 0.45)))
        c.fill(rect(cx - 0.4, cy - r + 1, cx + 0.4, cy + r - 1), solid(hexc('ffffff', 0.45)))
    c.fill(ellipse(cx - 4, cy - 6, 5, 3), solid(hexc('ffffff', 0.25)))


def person(c, cx, top, scale, shirt_top, shirt_bottom, edge):
    head_r = 4.6 * scale
    hy = top + head_r
    shoulders = ([(cx - 9 * scale, top + 23 * scale)] +
                 [(cx - 9 * scale * math.cos(math.pi * i / 20), hy + head_r + 2.5 * scale + 8 * scale -
                   8 * scale * math.sin(math.pi * i / 20)) for i in range(21)] +
                 [(cx + 9 * scale, top + 23 * scale)])
    c.fill([translate(shoulders, 0.6, 1), ellipse(cx + 0.6, hy + 1, head_r)], solid(SHADOW))
    c.fill(shoulders, solid(edge))
    c.fill(inset(shoulders, 1 / c.scale), vgrad(shirt_top, shirt_bottom, hy, top + 23 * scale))
    c.fill(ellipse(cx, hy, head_r), solid(hexc('8a5a3c')))
    c.fill(ellipse(cx, hy, head_r - 1 / c.scale), vgrad(hexc('ffd9b8'), hexc('e9b48a'), hy - head_r, hy + head_r))


def user(c, simple=False):
    person(c, 16, 3, 1.15, hexc('5b9ae0'), BLUE, BLUE_DARK)


def group(c, simple=False):
    person(c, 21, 3, 0.95, hexc('5bc2b4'), TEAL, TEAL_DARK)
    person(c, 12, 7.5, 1.0, hexc('5b9ae0'), BLUE, BLUE_DARK)


def picture_page(c, simple=False):
    page(c, lines=False, simple=simple)
    c.fill(rect(9.5, 12, 22.5, 25), solid(hexc('7dbbe8')))
    c.fill([(9.5, 25), (14, 17.5), (17.5, 22), (19.5, 19.5), (22.5, 25)], solid(hexc('3f9a52')))
    c.fill(ellipse(19.5, 15, 1.8, n=16), solid(hexc('ffd34d')))


def question(c, simple=False):
    tile = rrect(4, 4, 28, 28, 5)
    body(c, tile, hexc('b8c1cb'), hexc('7d8893'), 4, 28, outline=GREY_DARK)
    w = 3.2 if not simple else 4
    c.fill(arc(16, 12.5, 4.5, 180, 395, w, n=24), solid(WHITE))
    c.fill(line(16 + 4.5 * math.cos(math.radians(35)), 12.5 + 4.5 * math.sin(math.radians(35)), 16, 19.2, w),
           solid(WHITE))
    c.fill(rect(16 - w / 2, 18.5, 16 + w / 2, 20), solid(WHITE))
    c.fill(ellipse(16, 23.8, w * 0.62, n=16), solid(WHITE))


def stacked_pages(c, simple=False):
    for dx, dy in ((6, 0), (3, 2.5)):
        shape = rect(3 + dx, 2 + dy, 21 + dx, 25 + dy)
        body(c, shape, PAPER_TOP, hexc('cfd7e2'), 2 + dy, 25 + dy)
    page(c, 3, 5, 21, 30, fold=5, band=BLUE, simple=True)


def bell(c, simple=False):
    shape = ([(5, 24), (8.5, 20)] + [(16 - 7.5 * math.cos(math.pi * i / 16), 13 - 8 * math.sin(math.pi * i / 16))
                                     for i in range(17)] + [(23.5, 20), (27, 24)])
    body(c, shape, AMBER_LIGHT, AMBER, 4, 24, outline=AMBER_DARK)
    c.fill(ellipse(16, 26, 3.1, 2.6), solid(AMBER_DARK))
    c.fill(rrect(14.6, 2.4, 17.4, 6, 1.3), solid(AMBER_DARK))
    if not simple:
        c.fill(rect(6.5, 21.6, 25.5, 22.6), solid(hexc('fff1c9')))


def tiles(c, simple=False):
    colours = [(BLUE, BLUE_DARK), (TEAL, TEAL_DARK), (GREY_LIGHT, GREY_DARK), (AMBER, AMBER_DARK)]
    for i, (x, y) in enumerate(((4, 4), (17, 4), (4, 17), (17, 17))):
        top, edge = colours[i]
        body(c, rrect(x, y, x + 11, y + 11, 2.2), top, edge if i != 2 else GREY, y, y + 11, outline=edge)


def cube(c, simple=False):
    top = [(16, 3), (28, 9), (16, 15), (4, 9)]
    left = [(4, 9), (16, 15), (16, 29), (4, 23)]
    right = [(16, 15), (28, 9), (28, 23), (16, 29)]
    c.fill(translate([(16, 3), (28, 9), (28, 23), (16, 29), (4, 23), (4, 9)], 0.6, 1), solid(SHADOW))
    c.fill([(16, 3), (28, 9), (28, 23), (16, 29), (4, 23), (4, 9)], solid(BLUE_DARK))
    c.fill(inset(top, 1 / c.scale), solid(hexc('a8cdf5')))
    c.fill(inset(left, 1 / c.scale), vgrad(hexc('5b9ae0'), BLUE, 9, 29))
    c.fill(inset(right, 1 / c.scale), vgrad(BLUE, BLUE_DARK, 9, 29))


def envelope(c, simple=False, paper=(PAPER_TOP, PAPER_BOTTOM), stamp=False):
    shape = rect(2.5, 7, 29.5, 26)
    body(c, shape, paper[0], paper[1], 7, 26)
    c.fill(polyline([(3.2, 7.8), (16, 18), (28.8, 7.8)], 1.4), solid(INK))
    c.fill(polyline([(3.2, 25.2), (12.5, 15.5)], 1.0), solid(GREY))
    c.fill(polyline([(28.8, 25.2), (19.5, 15.5)], 1.0), solid(GREY))
    if stamp:
        c.fill(rect(21.5, 9.5, 27, 14.5), solid(BLUE_DARK))
        c.fill(rect(22.3, 10.3, 26.2, 13.7), solid(BLUE_LIGHT))


def curved_arrow(c, x0, y0, s, colour):
    """A shortcut arrow in a white square, top-left at (x0, y0), size s."""
    c.fill(rect(x0, y0, x0 + s, y0 + s), solid(INK))
    c.fill(rect(x0 + 1 / c.scale, y0 + 1 / c.scale, x0 + s - 1 / c.scale, y0 + s - 1 / c.scale), solid(WHITE))
    k = s / 12
    shaft = arc(x0 + 10 * k, y0 + 11 * k, 6 * k, 180, 270, 2.2 * k, n=12)
    head = [(x0 + 8.5 * k, y0 + 1.8 * k), (x0 + 11.8 * k, y0 + 5 * k), (x0 + 8.5 * k, y0 + 8.2 * k)]
    c.fill([shaft, head], solid(colour))


def shortcut(c, simple=False):
    tile = rrect(4, 4, 28, 28, 4)
    body(c, tile, PAPER_TOP, PAPER_BOTTOM, 4, 28)
    shaft = arc(22, 25, 12, 180, 270, 4.2, n=20)
    head = [(18, 6.5), (25.5, 13), (18, 19.5)]
    c.fill([shaft, head], solid(BLUE))


def briefcase(c, simple=False):
    c.fill([rrect(11, 4, 21, 11, 2), rrect(12.8, 5.8, 19.2, 11.5, 1)], solid(hexc('6b4a2e')), evenodd=True)
    shape = rrect(3, 8.5, 29, 27.5, 2.5)
    body(c, shape, hexc('c9875a'), hexc('8c5631'), 8.5, 27.5, outline=hexc('5b3519'))
    c.fill(rect(3.8, 15.5, 28.2, 16.6), solid(hexc('5b3519')))
    c.fill(rrect(13.5, 14, 18.5, 18.5, 1), solid(AMBER))


def open_book(c, simple=False, letter=True):
    left = [(16, 8), (8, 5), (2, 6), (2, 26), (8, 25), (16, 28)]
    right = [(16, 8), (24, 5), (30, 6), (30, 26), (24, 25), (16, 28)]
    c.fill(translate([(2, 6), (8, 5), (16, 8), (24, 5), (30, 6), (30, 26), (24, 25), (16, 28), (8, 25), (2, 26)],
                     0.6, 1), solid(SHADOW))
    c.fill([left, right], solid(INK))
    c.fill(inset(left, 1 / c.scale * 1.2), vgrad(PAPER_TOP, PAPER_BOTTOM, 5, 28))
    c.fill(inset(right, 1 / c.scale * 1.2), vgrad(PAPER_TOP, PAPER_BOTTOM, 5, 28))
    c.fill(rect(15.6, 8, 16.4, 28), solid(GREY))
    if letter:
        w = 1.7 if not simple else 2.4
        c.fill(polyline([(18.5, 10), (20.5, 21), (23, 13.5), (25.5, 21), (27.5, 10)], w), solid(BLUE))
    if not simple:
        for y in (11, 14.5, 18, 21.5):
            c.fill(rect(4.5, y, 13.5, y + 1.1), solid(hexc('8a9bb0')))


def feed(c, simple=False):
    tile = rrect(4, 4, 28, 28, 5)
    body(c, tile, hexc('f7a24b'), hexc('d9701c'), 4, 28, outline=hexc('a44d0e'))
    w = 2.8 if not simple else 3.4
    c.fill(ellipse(10.5, 21.5, 2.6, n=16), solid(WHITE))
    c.fill(arc(9.5, 22.5, 7.5, 270, 360, w, n=16), solid(WHITE))
    if not simple:
        c.fill(arc(9.5, 22.5, 13, 270, 360, w, n=20), solid(WHITE))


def padlock(c, x, y, s=1.0):
    c.fill(arc(x + 5 * s, y + 5 * s, 3.2 * s, 180, 360, 1.8 * s), solid(GREY_DARK))
    c.fill(rect(x + 1.8 * s - 0.9 * s, y + 5 * s, x + 2.7 * s, y + 7 * s), solid(GREY_DARK))
    c.fill(rect(x + 7.3 * s, y + 5 * s, x + 9.1 * s, y + 7 * s), solid(GREY_DARK))
    c.fill(rrect(x, y + 6.5 * s, x + 10 * s, y + 14 * s, 1.3 * s), solid(hexc('7a5412')))
    c.fill(rrect(x + 0.9 * s, y + 7.4 * s, x + 9.1 * s, y + 13.1 * s, 0.8 * s), vgrad(AMBER_LIGHT, AMBER, y + 7, y + 13))
    c.fill(ellipse(x + 5 * s, y + 9.8 * s, 1.1 * s, n=12), solid(hexc('7a5412')))


def locked_document(c, simple=False):
    document(c, simple=simple)
    padlock(c, 17, 15, 1.15)


def pushpin_card(c, simple=False):
    shape = rect(4, 7, 28, 28)
    body(c, shape, hexc('fffbe6'), hexc('f2e6b8'), 7, 28, outline=hexc('9b8a4a'))
    if not simple:
        for y in (15, 18.5, 22):
            c.fill(rect(7, y, 25, y + 1.2), solid(hexc('a9a07a')))
    c.fill(line(16, 9, 16, 15, 1.2), solid(GREY_DARK))
    c.fill(ellipse(16.5, 6.8, 4.2), solid(SHADOW))
    c.fill(ellipse(16, 6, 4.2), solid(RED_DARK))
    c.fill(ellipse(16, 6, 3.3), vgrad(hexc('ff8a7d'), RED, 2, 10))


def clock(c, cx, cy, r):
    c.fill(ellipse(cx + 0.5, cy + 0.8, r), solid(SHADOW))
    c.fill(ellipse(cx, cy, r), solid(BLUE_DARK))
    c.fill(ellipse(cx, cy, r - 1.1 / c.scale * 1.2), solid(WHITE))
    c.fill(line(cx, cy, cx, cy - r * 0.65, max(1.0, 1.3 / c.scale * 1.4)), solid(INK))
    c.fill(line(cx, cy, cx + r * 0.5, cy + r * 0.15, max(1.0, 1.3 / c.scale * 1.4)), solid(INK))


def appointment(c, simple=False):
    calendar(c, simple=True, highlight=False)
    clock(c, 23, 23, 7.5)


def clipboard_check(c, simple=False):
    board = rrect(5, 4, 27, 30, 2)
    body(c, board, hexc('c9875a'), hexc('8c5631'), 4, 30, outline=hexc('5b3519'))
    c.fill(rect(8, 8, 24, 27.5), solid(WHITE))
    c.fill(rrect(11, 2.5, 21, 7.5, 1.5), solid(GREY_DARK))
    c.fill(rrect(12, 3.3, 20, 6.7, 1), solid(GREY_LIGHT))
    c.fill(polyline([(10.5, 18), (14.5, 22.5), (22, 12)], 3.0 if not simple else 3.6), solid(GREEN))


def sticky_note(c, simple=False):
    shape = [(4, 4), (28, 4), (28, 21), (21, 28), (4, 28)]
    body(c, shape, hexc('fff59a'), hexc('f5dd4a'), 4, 28, outline=hexc('b09a1a'))
    c.fill([(21, 28), (28, 21), (21.5, 21.5)], solid(hexc('e5c832')))
    if not simple:
        for y in (9, 12.5, 16):
            c.fill(rect(7, y, 24, y + 1.2), solid(hexc('c8b444')))


def contact_card(c, simple=False):
    shape = rrect(2.5, 6, 29.5, 26, 2)
    body(c, shape, PAPER_TOP, PAPER_BOTTOM, 6, 26)
    c.fill(rect(2.5 + 1 / c.scale, 6 + 1 / c.scale, 29.5 - 1 / c.scale, 10), solid(BLUE))
    c.fill(ellipse(10, 15, 3.2), vgrad(hexc('ffd9b8'), hexc('e9b48a'), 12, 18))
    c.fill([(4.5, 24), (5, 21)] + [(10 - 5 * math.cos(math.pi * i / 12), 21.5 - 2.7 * math.sin(math.pi * i / 12))
                                   for i in range(13)] + [(15, 21), (15.5, 24)], solid(BLUE))
    if not simple:
        for y, w in ((13, 10), (16.5, 8), (20, 9)):
            c.fill(rect(18, y, 18 + w, y + 1.3), solid(hexc('8a9bb0')))


def journal(c, simple=False):
    shape = rrect(6, 3, 26, 29, 1.5)
    body(c, shape, hexc('7bb0e6'), BLUE, 3, 29, outline=BLUE_DARK)
    c.fill(rect(6, 3, 9.5, 29), solid(BLUE_DARK))
    c.fill(rect(12, 7, 23, 11.5), solid(WHITE))
    clock(c, 22, 22, 7.5)


def mail_message(c, simple=False):
    envelope(c, simple, stamp=True)


def event(c, simple=False):
    calendar(c, simple=True)
    star(c, 23.5, 22.5, 7.5)


def star(c, cx, cy, r):
    pts = []
    for i in range(10):
        a = math.radians(-90 + 36 * i)
        rr = r if i % 2 == 0 else r * 0.45
        pts.append((cx + rr * math.cos(a), cy + rr * math.sin(a)))
    c.fill(translate(pts, 0.5, 0.9), solid(SHADOW))
    c.fill(pts, solid(AMBER_DARK))
    c.fill(inset(pts, 1 / c.scale * 0.9), vgrad(hexc('ffe08a'), AMBER, cy - r, cy + r))


# Server-map states as badges over the server or the map node.

def busy_badge(c):
    badge_circle(c, hexc('5b9ae0'), BLUE_DARK)
    c.fill(arc(25, 25, 3.4, 200, 330, 1.6, n=10), solid(WHITE))
    c.fill([(27.5, 20.5), (29.8, 23.8), (26, 24.2)], solid(WHITE))
    c.fill(arc(25, 25, 3.4, 20, 150, 1.6, n=10), solid(WHITE))
    c.fill([(22.5, 29.5), (20.2, 26.2), (24, 25.8)], solid(WHITE))


def error_badge(c):
    badge_circle(c, hexc('f06b5e'), RED_DARK)
    c.fill(rrect(24.1, 20.6, 25.9, 26.2, 0.8), solid(WHITE))
    c.fill(ellipse(25, 28.1, 1.1, n=12), solid(WHITE))


def off_badge(c):
    badge_circle(c, GREY_LIGHT, GREY_DARK)
    c.fill(line(22, 25, 28, 25, 2.2), solid(WHITE))


def link_badge(c):
    curved_arrow(c, 1.5, 18.5, 12, BLUE)


# ---------------------------------------------------------------------------
# The icons: resource id -> (glyph, selected, simple, badges).

def G(draw, selected=False, simple=False, badges=(), **kwargs):
    return (draw, selected, simple, badges, kwargs)


ICONS = {
    5001: G(emblem),
    5002: G(emblem),
    5003: G(emblem, simple=True),
    5004: G(folder),
    5005: G(folder, simple=True),
    5006: G(folder, selected=True, open_=True),
    5007: G(folder, selected=True, simple=True, open_=True),
    5008: G(server, selected=True, simple=True),
    5009: G(server, simple=True),
    5010: G(server, selected=True),
    5011: G(server),
    5012: G(document, selected=True, simple=True),
    5013: G(document, simple=True),
    5014: G(document, selected=True),
    5015: G(document),
    5016: G(calendar),
    5017: G(calendar, simple=True),
    5018: G(calendar, selected=True),
    5019: G(calendar, selected=True, simple=True),
    5020: G(discussion),
    5021: G(discussion, simple=True),
    5022: G(discussion, selected=True),
    5023: G(discussion, selected=True, simple=True),
    5024: G(generic_document),
    5025: G(generic_document, simple=True),
    5026: G(saved_query),
    5027: G(saved_query, simple=True),
    5028: G(saved_query, selected=True),
    5029: G(saved_query, selected=True, simple=True),
    5030: G(globe),
    5031: G(globe, simple=True),
    5032: G(globe, selected=True),
    5033: G(globe, selected=True, simple=True),
    5034: G(bell, simple=True),
    # Server map: disconnected, busy, error, map node, linked server, linked node.
    5035: G(server, state='off', badges=(off_badge,)),
    5036: G(server, state='error', badges=(error_badge,)),
    5037: G(database),
    5038: G(server, selected=True, state='off', badges=(off_badge,)),
    5039: G(server, state='busy', badges=(busy_badge,)),
    5040: G(server, selected=True, state='busy', badges=(busy_badge,)),
    5041: G(server, selected=True, state='error', badges=(error_badge,)),
    5042: G(database, selected=True),
    5043: G(server, simple=True, state='off', badges=(off_badge,)),
    5044: G(server, simple=True, state='busy', badges=(busy_badge,)),
    5045: G(server, simple=True, state='error', badges=(error_badge,)),
    5046: G(database, simple=True),
    5047: G(server, selected=True, simple=True, state='error', badges=(error_badge,)),
    5048: G(server, selected=True, simple=True, state='off', badges=(off_badge,)),
    5049: G(tiles),
    5050: G(server, selected=True, simple=True, state='busy', badges=(busy_badge,)),
    5051: G(tiles, simple=True),
    5052: G(database, selected=True, simple=True),
    5053: G(server, simple=True, badges=(link_badge,)),
    5054: G(database, simple=True, badges=(link_badge,)),
    5055: G(server, badges=(link_badge,)),
    5056: G(database, badges=(link_badge,)),
    5057: G(event),
    5058: G(event, simple=True),
    5059: G(event, selected=True),
    5060: G(event, selected=True, simple=True),
    5061: G(topic),
    5062: G(topic, simple=True),
    5063: G(topic, selected=True),
    5064: G(topic, selected=True, simple=True),
    5065: G(user),
    5066: G(user, simple=True),
    5067: G(group),
    5068: G(group, simple=True),
    5069: G(picture_page),
    5070: G(picture_page, simple=True),
    5071: G(question),
    5072: G(question, simple=True),
    5073: G(stacked_pages),
    5074: G(stacked_pages, simple=True),
    5075: G(bell),
    # Mail classes: note, post, appointment, task, sticky note, contact, activity.
    5076: G(envelope),
    5077: G(envelope, simple=True),
    5078: G(pushpin_card),
    5079: G(pushpin_card, simple=True),
    5080: G(appointment),
    5081: G(appointment, simple=True),
    5082: G(clipboard_check),
    5083: G(clipboard_check, simple=True),
    5084: G(sticky_note),
    5085: G(sticky_note, simple=True),
    5086: G(contact_card),
    5087: G(contact_card, simple=True),
    5088: G(journal),
    5089: G(journal, simple=True),
    5090: G(cube),
    5091: G(cube, simple=True),
    5092: G(mail_message),
    5093: G(mail_message, simple=True),
    5094: G(shortcut),
    5095: G(shortcut, simple=True),
    5096: G(briefcase),
    5097: G(briefcase, simple=True),
    5098: G(briefcase, selected=True),
    5099: G(briefcase, selected=True, simple=True),
    5100: G(open_book),
    5101: G(open_book, simple=True),
    5102: G(open_book, selected=True),
    5103: G(open_book, selected=True, simple=True),
    5104: G(feed),
    5105: G(feed, simple=True),
    5106: G(feed, selected=True),
    5107: G(feed, selected=True, simple=True),
    5108: G(locked_document),
    5109: G(locked_document, simple=True),
    5110: G(locked_document, selected=True),
}

# What each icon shows, for the resource script's comments.
SUBJECTS = {
    emblem: 'client', folder: 'collection', server: 'server', document: 'document', calendar: 'calendar',
    discussion: 'discussion', generic_document: 'generic document', saved_query: 'saved query', globe: 'URL',
    bell: 'subscription', database: 'server-map node', tiles: 'content element', event: 'event', topic: 'topic',
    user: 'user', group: 'group', picture_page: 'rendition', question: 'unknown object', stacked_pages: 'version',
    envelope: 'mail note', pushpin_card: 'post', appointment: 'appointment', clipboard_check: 'task',
    sticky_note: 'sticky note', contact_card: 'contact', journal: 'activity', cube: 'object',
    mail_message: 'mail message', shortcut: 'link', briefcase: 'workspace', open_book: 'wiki', feed: 'weblog',
    locked_document: 'locked document',
}


def render(spec, size):
    draw, selected, simple, badges, kwargs = spec
    c = Canvas(size)
    if selected:
        selection(c)
    draw(c, simple=simple, **kwargs)
    for badge in badges:
        badge(c)
    return c.pixels()


# ---------------------------------------------------------------------------
# The 256-colour images share one palette: a 6x7x6 colour cube and 4 greys,
# matched by nearest colour; pixels below half alpha are transparent.

def palette():
    colours = []
    for r in range(6):
        for g in range(7):
            for b in range(6):
                colours.append((r * 51, round(g * 255 / 6), b * 51))
    for v in (32, 96, 160, 224):
        colours.append((v, v, v))
    return colours


PALETTE = palette()
_nearest_cache = {}


def nearest(rgb):
    hit = _nearest_cache.get(rgb)
    if hit is None:
        r, g, b = rgb
        hit = min(range(len(PALETTE)),
                  key=lambda i: 2 * (PALETTE[i][0] - r) ** 2 + 4 * (PALETTE[i][1] - g) ** 2 + 3 * (PALETTE[i][2] - b) ** 2)
        _nearest_cache[rgb] = hit
    return hit


def _mask_rows(pixels, size):
    stride = ((size + 31) // 32) * 4
    rows = []
    for y in range(size - 1, -1, -1):
        row = bytearray(stride)
        for x in range(size):
            if pixels[y * size + x][3] < 128:
                row[x // 8] |= 0x80 >> (x % 8)
        rows.append(bytes(row))
    return b''.join(rows)


def dib32(pixels, size):
    header = struct.pack('<IiiHHIIiiII', 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    rows = []
    for y in range(size - 1, -1, -1):
        rows.append(b''.join(struct.pack('BBBB', p[2], p[1], p[0], p[3]) for p in pixels[y * size:(y + 1) * size]))
    return header + b''.join(rows) + _mask_rows(pixels, size)


def dib8(pixels, size):
    header = struct.pack('<IiiHHIIiiII', 40, size, size * 2, 1, 8, 0, 0, 0, 0, 256, 0)
    table = b''.join(struct.pack('BBBB', b, g, r, 0) for r, g, b in PALETTE)
    rows = []
    for y in range(size - 1, -1, -1):
        row = bytearray()
        for p in pixels[y * size:(y + 1) * size]:
            if p[3] < 128:
                row.append(0)
            else:
                # Blend partly transparent edges with white, as they would
                # mostly be seen on a light window.
                a = p[3] / 255
                row.append(nearest(tuple(int(round(p[i] * a + 255 * (1 - a))) for i in range(3))))
        rows.append(bytes(row))
    return header + table + b''.join(rows) + _mask_rows(pixels, size)


def ico(images):
    """images: list of (size, bits, dib bytes)."""
    out = struct.pack('<HHH', 0, 1, len(images))
    offset = 6 + 16 * len(images)
    entries, blobs = b'', b''
    for size, bits, data in images:
        entries += struct.pack('<BBBBHHII', size, size, 0 if bits > 8 else 0, 0, 1, bits, len(data), offset)
        offset += len(data)
        blobs += data
    return out + entries + blobs


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    outdir = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, 'src', 'resources', 'icons')
    os.makedirs(outdir, exist_ok=True)
    assert sorted(ICONS) == list(range(5001, 5111)), 'every id from 5001 to 5110 is drawn once'
    lines = ['// The library\'s icons (ids 5001-5110), drawn by scripts/make-icons.py: each file holds',
             '// 32x32 and 16x16 images in 32-bit colour with alpha and in 256 colours.', '']
    for resource_id, spec in sorted(ICONS.items()):
        images = []
        for size in (32, 16):
            pixels = render(spec, size)
            images.append((size, 32, dib32(pixels, size)))
            images.append((size, 8, dib8(pixels, size)))
        with open(os.path.join(outdir, '%d.ico' % resource_id), 'wb') as f:
            f.write(ico(images))
        draw, selected, simple, badges, kwargs = spec
        words = [SUBJECTS[draw]]
        state = kwargs.get('state')
        if state and state != 'on':
            words.append({'off': 'disconnected', 'busy': 'busy', 'error': 'error'}[state])
        if any(b is link_badge for b in badges):
            words.append('linked')
        if selected:
            words.append('selected')
        if simple:
            words.append('simple')
        lines.append('%d ICON "icons/%d.ico"  // %s' % (resource_id, resource_id, ', '.join(words)))
    with open(os.path.join(outdir, 'icons.rc'), 'w', newline='\n') as f:
        f.write('\n'.join(lines) + '\n')


if __name__ == '__main__':
    main()
