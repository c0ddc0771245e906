"""Draws the same random shapes with drawn_shapes (ours) and with Cairo, and prints the differences.

Cairo samples a row at 15 heights. Therefore its result is computed twice: directly, and 16 times as large and averaged,
which is exact to about half a level of 255 and is the reference.
"""
import math
import os
import random
import subprocess
import sys

import cairo

SIZE, LARGER, EACH = 60, 16, 60
run, build = sys.argv[1:3]
random.seed(4711)


def uniform(low, high):
    return random.uniform(low, high)


def polygon():
    # Corners in the order of their angle, less than half a turn apart: edges do not cross. Some are outside of the
    # image.
    count = random.randint(4, 9)
    angles = [(i + uniform(0, 0.9)) * 2 * math.pi / count for i in range(count)]
    return [c for a in angles for r in [uniform(3, 45)] for c in (30 + r * math.cos(a), 30 + r * math.sin(a))]


def thin():
    return [uniform(0, 60), uniform(0, 60), uniform(0, 60), uniform(0, 60), uniform(0.3, 1.5)]


KINDS = {
    "polygon": polygon,
    "needle": lambda: [
        uniform(5, 55), uniform(5, 55), uniform(20, 25), uniform(20, 25), uniform(26, 28), uniform(20, 25)],
    "disc": lambda: [uniform(20, 40), uniform(20, 40), uniform(0.4, 35)],
    "ring": lambda: [
        uniform(25, 35), uniform(25, 35), uniform(5, 15), uniform(16, 28),
        *sorted((uniform(-180, 0), uniform(1, 180)))],
    "line": lambda: [uniform(0, 60), uniform(0, 60), uniform(0, 60), uniform(0, 60), uniform(1, 9)],
    "hairline": thin,
    "glyph": lambda: [
        ord(random.choice("NESW0123456789")), uniform(25, 35), uniform(25, 35), uniform(8, 40), uniform(0, 360)],
}
COMMANDS = {"needle": "polygon", "hairline": "line"}


def trace(context, kind, n, figures):
    kind = COMMANDS.get(kind, kind)
    if kind == "polygon":
        for x, y in zip(n[::2], n[1::2]):
            context.line_to(x, y)
        context.close_path()
    elif kind == "disc":
        context.arc(*n, 0, 2 * math.pi)
    elif kind == "ring":
        x, y, inner, outer, start, end = n
        start, end = math.radians(start - 90), math.radians(end - 90)
        context.arc(x, y, outer, start, end)
        context.arc_negative(x, y, inner, end, start)
        context.close_path()
    elif kind == "line":
        context.set_line_width(n[4])
        context.move_to(n[0], n[1])
        context.line_to(n[2], n[3])
        context.stroke()
    else:
        _, x, y, height, degrees = n
        context.translate(x, y)
        context.rotate(math.radians(degrees))
        for figure in figures:
            context.new_sub_path()
            for px, py in zip(figure[::2], figure[1::2]):
                context.line_to(px * height, py * height)
            context.close_path()
    context.fill()


def draw_with_cairo(kind, n, figures, larger):
    side = SIZE * larger
    surface = cairo.ImageSurface(cairo.FORMAT_A8, side, side)
    context = cairo.Context(surface)
    context.set_antialias(cairo.ANTIALIAS_BEST)
    context.set_tolerance(0.002)
    context.scale(larger, larger)
    trace(context, kind, n, figures)
    surface.flush()
    data, stride = surface.get_data(), surface.get_stride()
    if larger == 1:
        return [data[y * stride + x] for y in range(SIZE) for x in range(SIZE)]
    result = []
    for y in range(SIZE):
        rows = [bytes(data[(y * larger + i) * stride:(y * larger + i) * stride + side]) for i in range(larger)]
        result += [sum(sum(row[x * larger:(x + 1) * larger]) for row in rows) / larger ** 2 for x in range(SIZE)]
    return result


shapes = [(kind, make()) for kind, make in KINDS.items() for _ in range(EACH)]
list_path, picture_path = os.path.join(build, "shapes.txt"), os.path.join(build, "shapes.gray")
with open(list_path, "w") as listing:
    for kind, n in shapes:
        listing.write(f"{SIZE} {SIZE} {COMMANDS.get(kind, kind)} {' '.join(repr(c) for c in n)}\n")
output = subprocess.run([run, "drawn_shapes", "Z:" + list_path, "Z:" + picture_path], check=True,
                        stdout=subprocess.PIPE, text=True).stdout
outlines = [[float(c) for c in line.split()] for line in output.splitlines() if line.strip()]
pictures = open(picture_path, "rb").read()
assert len(pictures) == len(shapes) * SIZE * SIZE, output

print(f"{'shape':10}{'images':>9}   {'Cairo 16 x: largest':>20}{'mean of edges':>15}   "
      f"{'Cairo directly: largest':>24}{'mean':>8}")
worst = 0
for kind in KINDS:
    fine, plain = [], []
    for index, (other, n) in enumerate(shapes):
        if other != kind:
            continue
        figures = [outlines.pop(0) for _ in range(int(outlines.pop(0)[0]))] if kind == "glyph" else []
        ours = pictures[index * SIZE * SIZE:(index + 1) * SIZE * SIZE]
        for larger, differences in ((LARGER, fine), (1, plain)):
            theirs = draw_with_cairo(kind, n, figures, larger)
            differences += [abs(a - b) for a, b in zip(ours, theirs) if 0 < a < 255 or 0 < b < 255]
    worst = max(worst, max(fine))
    print(f"{kind:10}{EACH:9}   {max(fine):20.2f}{sum(fine) / len(fine):15.3f}   "
          f"{max(plain):24.2f}{sum(plain) / len(plain):8.3f}")
print(f"largest difference: {worst:.2f} of 255")
sys.exit(worst > 4)
