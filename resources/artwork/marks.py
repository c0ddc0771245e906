"""The chart's four markers and the program's own mark."""

import cairo

from palette import INK, POINTS, WHITE
from pen import Pen, arc, around, circle, line, polygon, rect

# The digits' pixels. A chart of ordinary size keeps little more than every other row and column of a marker, the
# smallest one a third: hence digits of this height with strokes of three.
DIGITS = (
    (
        "...###...",
        "..####...",
        ".#####...",
        "######...",
        "######...",
        "...###...",
        "...###...",
        "...###...",
        "...###...",
        "...###...",
        "...###...",
        "#########",
        "#########",
        "#########",
    ),
    (
        "..#####..",
        ".#######.",
        "####.####",
        "###...###",
        "......###",
        ".....####",
        "....####.",
        "...####..",
        "..####...",
        ".####....",
        "####.....",
        "#########",
        "#########",
        "#########",
    ),
    (
        "..#####..",
        ".#######.",
        "####.####",
        "###...###",
        "......###",
        ".....####",
        "..######.",
        "..######.",
        ".....####",
        "......###",
        "###...###",
        "####.####",
        ".#######.",
        "..#####..",
    ),
    (
        ".....###.",
        "....####.",
        "...#####.",
        "...#####.",
        "..######.",
        "..##.###.",
        ".###.###.",
        "###..###.",
        "#########",
        "#########",
        "#########",
        ".....###.",
        ".....###.",
        ".....###.",
    ),
)
# The chart draws a marker at (x - 15, y - 15): the middle of pixel (15, 15) is the point.
HOT = 15.5


def marker(index):
    """A point of light in a frame of its own colour and shape, with its number."""
    pen = Pen(32, 32)
    colour = POINTS[index]
    frame, sides = (
        (circle(HOT, HOT, 7.5), (7.5, 7.5, 7.5, 7.5)),
        (rect(HOT - 6.5, HOT - 6.5, 13, 13), (6.5, 6.5, 6.5, 6.5)),
        (polygon((HOT, HOT - 9), (HOT + 9, HOT), (HOT, HOT + 9), (HOT - 9, HOT)), (9, 9, 9, 9)),
        (polygon((HOT, HOT - 10), (HOT + 8.5, HOT + 5), (HOT - 8.5, HOT + 5)), (6, 5, 6, 10)),
    )[index]
    pen.glow(HOT, HOT, 12, colour, 0.8)
    pen.stroke(frame, colour, 2)
    for side, angle in zip(sides, (0, 90, 180, 270)):
        pen.stroke(line(around(HOT, HOT, side, angle), around(HOT, HOT, 15, angle)), colour, 2, butt=True)
    pen.glow(HOT, HOT, 6, colour)
    pen.fill(circle(HOT, HOT, 2.5), WHITE)
    _digit(pen, index)
    return pen.surface


def _digit(pen, index):
    left, top = 21, 17  # with its rim it ends at the icon's edge
    for grow, colour in ((1, (0, 0, 0)), (0, POINTS[index])):
        for y, row in enumerate(DIGITS[index]):
            for x, bit in enumerate(row):
                if bit == "#":
                    pen.fill(rect(left + x - grow, top + y - grow, 1 + 2 * grow, 1 + 2 * grow), colour)


def program(side):
    """A dark field with a lens over it, in which four points shine; the smallest size keeps the lens alone."""
    pen = Pen(side, side)
    unit = side / 48
    pen.context.scale(unit, unit)
    hair = 1 / unit
    small = side < 24
    radius = 20.5 if small else 18
    if not small:
        field = rect(hair / 2, hair / 2, 48 - hair, 48 - hair, 9)
        pen.fill(field, "night")
        pen.stroke(field, (120, 144, 180), hair)
    _lens(pen, radius, hair, small)
    places = ((17, 17), (31, 17), (17, 31), (31, 31)) if small else ((17.5, 16.5), (32, 19.5), (16, 29.5), (28.5, 32))
    for (x, y), colour in zip(places, POINTS):
        pen.glow(x, y, 5 if small else 7, colour)
        pen.fill(circle(x, y, 4 if small else 2.6), colour)
        pen.fill(circle(x, y, 1.3), WHITE)
    if not small:
        pen.stroke(arc(24, 24, radius - 3.8, 190, 250), WHITE, 1.1, 0.55)
    return pen.surface


def _lens(pen, radius, hair, small):
    glass = cairo.RadialGradient(22, 21, 2, 24, 24, radius)
    glass.add_color_stop_rgb(0, 0.17, 0.27, 0.48)
    glass.add_color_stop_rgb(1, 0.03, 0.05, 0.13)
    circle(24, 24, radius)(pen.context)
    pen.context.set_source(glass)
    pen.context.fill()
    if not small:
        middle = 24 - hair / 2  # so that the hair line fills one row of pixels
        for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
            ends = [(middle + reach * dx, middle + reach * dy) for reach in (3, 13)]
            pen.stroke(line(*ends), (150, 186, 240), hair, 0.5, butt=True)
    pen.stroke(circle(24, 24, radius), INK, 5 if small else 6)
    pen.stroke(circle(24, 24, radius), "steel", 3.4)
