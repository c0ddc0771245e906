"""The chart's four markers and the program's icon."""

import cairo

from palette import INK, POINTS, WHITE
from pen import Pen, arc, circle, line, polygon, rect

# The digits' strokes between the centers of 3 x 5 cells. The smallest chart draws every third row and column of a
# marker, so a cell is three pixels: one of them is always drawn.
CELL = 3
DIGITS = (
    (((0, 1), (1, 0), (1, 4)), ((0, 4), (2, 4))),
    (((0, 0), (2, 0), (2, 2), (0, 2), (0, 4), (2, 4)),),
    (((0, 0), (2, 0), (2, 4), (0, 4)), ((0.5, 2), (2, 2))),
    (((0, 0), (0, 2), (2, 2)), ((2, 0), (2, 4))),
)
# The chart draws a marker at (x - 15, y - 15): the center of pixel (15, 15) is the point.
HOT = 15.5
FIELD = (30, 40, 60)  # the middle of the dark field


def marker(index):
    """A point of light in a solid shape, and its number at the lower right, outside of the shape."""
    pen = Pen(32, 32)
    color = POINTS[index]
    shape = (
        circle(HOT, HOT, 6.5),
        rect(HOT - 5.5, HOT - 5.5, 11, 11),
        polygon((HOT, HOT - 9), (HOT + 8, HOT), (HOT, HOT + 9), (HOT - 8, HOT)),
        polygon((HOT - 9, HOT - 6.5), (HOT + 9, HOT - 6.5), (HOT, HOT + 9)),
    )[index]
    pen.fill(shape, color)
    pen.fill(circle(HOT, HOT, 2.2), WHITE)
    left, top = 24.5, 18.5  # the center of the first cell: the digit ends at the icon's edge
    for stroke in DIGITS[index]:
        pen.stroke(line(*((left + CELL * x, top + CELL * y) for x, y in stroke)), color, CELL)
    return pen.surface


def program(side):
    """A lens with four bright points over a dark field; the smallest size has only the lens."""
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
    for (x, y), color in zip(places, POINTS):
        pen.glow(x, y, 5 if small else 7, color)
        pen.fill(circle(x, y, 4 if small else 2.6), color)
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


def on_curve(points, t):
    """A point of the cubic curve with these four control points."""
    weights = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3)
    return tuple(sum(weight * point[i] for weight, point in zip(weights, points)) for i in range(2))


def viewer(side):
    """The dark field with two points and the trails that led to them, over the button that plays them back."""
    pen = Pen(side, side)
    unit = side / 48
    pen.context.scale(unit, unit)
    hair = 1 / unit
    small = side < 24
    field = rect(hair / 2, hair / 2, 48 - hair, 48 - hair, 5 if small else 9)
    pen.fill(field, "night")
    pen.stroke(field, (120, 144, 180), hair)
    trails = (((5, 38), (6, 22), (16, 11), (33, 13)), ((7, 44), (13, 44), (15, 28), (26, 30)))
    if small:
        trails = (((6, 41), (6, 18), (14, 12), (32, 14)),)
    for trail, color in zip(trails, (POINTS[3], POINTS[2])):
        steps = 40
        for step in range(steps):
            # Fades by mixing with the field: transparent pieces would show where they overlap.
            weight = 0.15 + 0.85 * (step + 1) / steps
            mixed = tuple(round(FIELD[i] + (color[i] - FIELD[i]) * weight) for i in range(3))
            pen.stroke(line(on_curve(trail, step / steps), on_curve(trail, (step + 1) / steps)), mixed,
                       5 if small else 2.6)
        x, y = trail[-1]
        pen.glow(x, y, 12 if small else 9, color)
        pen.fill(circle(x, y, 7 if small else 3.8), color)
        pen.fill(circle(x, y, 3 if small else 1.5), WHITE)
    play = polygon((24, 27), (44, 36.5), (24, 46)) if small else polygon((31, 28), (44, 35.5), (31, 43))
    if not small:
        pen.stroke(play, INK, 3.5)
    pen.fill(play, "steel")
    return pen.surface
