#!/usr/bin/env python3
"""Draws the images of the gallery's language menu: flags/NAME.bmp and flags/NAME_checked.bmp, and flags.rc, which
numbers them for the resource compiler. Run it after a change; its output is checked in.

A flag is a function from a position on it (x to the right, y downwards, 0..1) to a color. Menus show the images as
they are, without transparency and at most as large as a check mark, so a flag fills its square up to a thin edge.
"""

import math
import re
import struct
from pathlib import Path

SIZE = 13  # a menu's check mark at 96 DPI
SAMPLES = 8  # per pixel and direction

WHITE, BLACK, GRAY = (255, 255, 255), (24, 24, 24), (176, 176, 184)
RED, BLUE, GREEN, YELLOW = (205, 32, 44), (22, 60, 148), (0, 122, 61), (252, 204, 10)
NAVY, SKY, ORANGE = (10, 30, 90), (30, 100, 190), (245, 140, 40)
EDGE, ACCENT = (90, 90, 100), (0x41, 0x41, 0xFF)


def rows(*colors):
    return lambda x, y: colors[min(int(y * len(colors)), len(colors) - 1)]


def columns(*colors):
    return lambda x, y: colors[min(int(x * len(colors)), len(colors) - 1)]


def nordic(field, cross, inner=None):
    def flag(x, y):
        from_cross = min(abs(x - 0.4), abs(y - 0.5))
        if inner and from_cross < 0.07:
            return inner
        return cross if from_cross < (0.15 if inner else 0.12) else field

    return flag


def with_disc(field, color, center=(0.5, 0.5), radius=0.28):
    def flag(x, y):
        return color if math.hypot(x - center[0], y - center[1]) < radius else field(x, y)

    return flag


def star(center, radius):
    def inside(x, y):
        dx, dy = x - center[0], y - center[1]
        angle = math.atan2(dx, -dy) % (2 * math.pi / 5)
        angle = min(angle, 2 * math.pi / 5 - angle)
        # The edge from the point (angle 0) to the notch (angle 36 degrees) at 0.38 of the radius.
        notch = 0.38 * radius
        px, py = math.hypot(dx, dy) * math.sin(angle), math.hypot(dx, dy) * math.cos(angle)
        nx, ny = notch * math.sin(math.pi / 5), notch * math.cos(math.pi / 5)
        return nx * (radius - py) - px * (radius - ny) >= 0

    return inside


def union_jack(x, y):
    if min(abs(x - 0.5), abs(y - 0.5)) < 0.09:
        return RED
    if min(abs(x - 0.5), abs(y - 0.5)) < 0.17:
        return WHITE
    diagonal = min(abs(x - y), abs(x + y - 1))
    return RED if diagonal < 0.05 else WHITE if diagonal < 0.16 else NAVY


def spain(x, y):
    if 0.25 <= y <= 0.75:
        return RED if math.hypot(x - 0.3, y - 0.5) < 0.12 else YELLOW
    return RED


def portugal(x, y):
    center = math.hypot(x - 0.4, y - 0.5)
    if center < 0.11:
        return WHITE
    if center < 0.23:
        return YELLOW
    return GREEN if x < 0.4 else RED


def greece(x, y):
    if x < 0.55 and y < 5 / 9:
        return WHITE if min(abs(x - 0.275), abs(y - 2.5 / 9)) < 0.07 else SKY
    return SKY if int(y * 9) % 2 == 0 else WHITE


def china(x, y):
    if star((0.34, 0.42), 0.3)(x, y):
        return YELLOW
    small = [(0.68, 0.16), (0.82, 0.34), (0.82, 0.56), (0.68, 0.74)]
    return YELLOW if any(math.hypot(x - a, y - b) < 0.06 for a, b in small) else RED


def korea(x, y):
    dx, dy = x - 0.5, y - 0.5
    if math.hypot(dx, dy) < 0.27:
        wave = 0.11 * math.sin(dx / 0.27 * math.pi)
        return RED if dy < wave else BLUE
    for across, side in ((dx + dy, dx - dy), (dx - dy, dx + dy)):
        if abs(side) < 0.13 and 0.52 < abs(across) < 0.78:
            return BLACK
    return WHITE


def arabic(x, y):
    moon = math.hypot(x - 0.46, y - 0.5) < 0.32 and math.hypot(x - 0.58, y - 0.5) > 0.26
    return WHITE if moon or star((0.66, 0.5), 0.17)(x, y) else GREEN


def india(x, y):
    ring = abs(math.hypot(x - 0.5, y - 0.5) - 0.11) < 0.045
    return NAVY if ring else rows(ORANGE, WHITE, GREEN)(x, y)


FLAGS = {
    "EN": union_jack,
    "GE": rows(BLACK, RED, YELLOW),
    "FR": columns(BLUE, WHITE, RED),
    "ES": spain,
    "IT": columns(GREEN, WHITE, RED),
    "NL": rows(RED, WHITE, BLUE),
    "PG": portugal,
    "PL": rows(WHITE, RED),
    "RU": rows(WHITE, BLUE, RED),
    "GR": greece,
    "BU": rows(WHITE, GREEN, RED),
    "HI": india,
    "JP": with_disc(rows(WHITE), RED),
    "CH": china,
    "KO": korea,
    "AR": arabic,
    "SW": nordic(SKY, YELLOW),
    "NO": nordic(RED, WHITE, NAVY),
    "FI": nordic(WHITE, BLUE),
    "none": rows(GRAY),
    "MX": with_disc(columns(GREEN, WHITE, RED), (150, 100, 50), radius=0.12),
}
# By language index; 19 to 22 are reserved, 23 is Mexico.
ORDER = [name for name in FLAGS if name not in ("none", "MX")] + ["none"] * 4 + ["MX"]


def distance(x, y, start, end):
    (ax, ay), (bx, by) = start, end
    along = ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) ** 2 + (by - ay) ** 2)
    along = max(0.0, min(1.0, along))
    return math.hypot(x - ax - along * (bx - ax), y - ay - along * (by - ay))


def tick(x, y):
    """The distance of a point from the check mark, in pixels."""
    corner = (7.3, 10.2)
    return min(distance(x, y, (5.4, 8.2), corner), distance(x, y, corner, (10.8, 5.2)))


def color_at(flag, x, y, checked):
    """The color at a point, in pixels."""
    edge = min(x, y, SIZE - x, SIZE - y)
    if checked:
        if tick(x, y) < 0.9:
            return ACCENT
        if tick(x, y) < 1.9:
            return WHITE
        if edge < 1:
            return ACCENT
    elif edge < 1:
        red, green, blue = flag((x - 1) / (SIZE - 2), (y - 1) / (SIZE - 2))
        return tuple((3 * part + 4 * dark) // 7 for part, dark in zip((red, green, blue), EDGE))
    return flag((x - 1) / (SIZE - 2), (y - 1) / (SIZE - 2))


def pixel(flag, column, row, checked):
    places = [(i + 0.5) / SAMPLES for i in range(SAMPLES)]
    seen = [color_at(flag, column + x, row + y, checked) for x in places for y in places]
    return tuple(round(sum(color[part] for color in seen) / len(seen)) for part in range(3))


def write_bitmap(path, flag, checked):
    body = b""
    for row in reversed(range(SIZE)):
        for column in range(SIZE):
            red, green, blue = pixel(flag, column, row, checked)
            body += bytes((blue, green, red))
        body += bytes(-3 * SIZE % 4)
    info = struct.pack("<IiiHHIIiiII", 40, SIZE, SIZE, 1, 24, 0, len(body), 3780, 3780, 0, 0)
    path.write_bytes(struct.pack("<2sIHHI", b"BM", 54 + len(body), 0, 0, 54) + info + body)


def main():
    here = Path(__file__).parent
    folder = here / "flags"
    folder.mkdir(exist_ok=True)
    for name, flag in FLAGS.items():
        write_bitmap(folder / f"{name}.bmp", flag, False)
        write_bitmap(folder / f"{name}_checked.bmp", flag, True)
    # Plain numbers, because not every resource compiler accepts a sum as a name.
    header = (here.parents[1] / "gallery" / "resource_ids.h").read_text()
    first = int(re.search(r"#define IDB_LANGUAGE_FIRST (\d+)", header).group(1))
    script = ("// The language menu's images, IDB_LANGUAGE_FIRST and on by language index: plain ones, then checked\n"
              "// ones. Written by flags.py.\n")
    for ending, offset in (("", 0), ("_checked", len(ORDER))):
        for index, name in enumerate(ORDER):
            script += f'{first + offset + index} BITMAP "resources/languages/flags/{name}{ending}.bmp"\n'
    (here / "flags.rc").write_text(script)


main()
