"""Toolbar icons: points, charts, tables, views and movement."""

from icon_set import icon
from palette import INK, POINTS, WHITE
from pen import arc, around, circle, curve, join, line, polygon, rect

AXES = line((3, 3), (3, 21), (21, 21))


@icon
def points(pen):
    pen.shape(rect(1.5, 3.5, 21, 17, 1.5), "night")
    for (x, y), color in zip(((7, 8.5), (17, 7.5), (8.5, 15.5), (16.5, 15)), POINTS):
        pen.glow(x, y, 4, color)
        pen.fill(circle(x, y, 1.6), color)
        pen.fill(circle(x, y, 0.8), WHITE)


@icon
def target(pen):
    for radius, color in ((9.5, "red"), (6.5, "white"), (3.5, "red")):
        pen.shape(circle(12, 12, radius), color)
    pen.fill(circle(12, 12, 1.2), WHITE)


@icon
def cross_hair(pen):
    pen.stroke(circle(12, 12, 7), INK, 1.8)
    for angle in (0, 90, 180, 270):
        pen.stroke(line(around(12, 12, 4, angle), around(12, 12, 10.5, angle)), INK, 1.8)
    pen.fill(circle(12, 12, 1.8), (214, 44, 40))


@icon
def chart(pen):
    pen.stroke(AXES, INK, 2)
    pen.stroke(line((6, 16), (10, 10.5), (14, 13.5), (20.5, 5.5)), (32, 104, 190), 2)
    for x, y in ((6, 16), (10, 10.5), (14, 13.5), (20, 6)):
        pen.shape(circle(x, y, 1.7), "blue")


@icon
def histogram(pen):
    for x, top in ((5.5, 15.5), (8.5, 10.5), (11.5, 4.5), (14.5, 8.5), (17.5, 14.5)):
        pen.shape(rect(x, top, 3, 20.5 - top), "violet")
    pen.stroke(AXES, INK, 2)


@icon
def sine(pen):
    pen.stroke(join(line((3, 3), (3, 21)), line((3, 12), (22, 12))), INK, 2)
    pen.rod(curve("M 3.5 12 C 6.5 0 9.5 0 12.5 12 C 15.5 24 18.5 24 21.5 12"), "blue", 1.8)


@icon
def sum_sign(pen):
    pen.shape(
        polygon(
            (4.5, 2.5),
            (19.5, 2.5),
            (19.5, 7.5),
            (16.5, 7.5),
            (16.5, 6.5),
            (10.5, 6.5),
            (15, 12),
            (10.5, 17.5),
            (16.5, 17.5),
            (16.5, 16.5),
            (19.5, 16.5),
            (19.5, 21.5),
            (4.5, 21.5),
            (4.5, 18.5),
            (10, 12),
            (4.5, 5.5),
        ),
        "blue",
    )


@icon
def table(pen):
    pen.shape(rect(2.5, 3.5, 19, 17), "white")
    pen.shape(rect(2.5, 3.5, 19, 5), "blue")
    for x in (8.5, 15.5):
        pen.stroke(line((x, 3.5), (x, 20.5)), INK, 1, butt=True)
    for y in (12.5, 16.5):
        pen.stroke(line((2.5, y), (21.5, y)), INK, 1, butt=True)


@icon
def bullet_list(pen):
    for y, color in ((5, "red"), (12, "amber"), (19, "green")):
        pen.shape(circle(4.5, y, 2.5), color)
        pen.fill(rect(10, y - 1, 12, 2), (78, 94, 116))


@icon
def mesh(pen):
    rim = [around(12, 12, 10, angle) for angle in range(-90, 270, 60)]
    inner = [around(12, 12, 5.2, angle) for angle in (-90, 30, 150)]
    pen.shape(polygon(*rim), "teal")
    pen.fill(polygon(*inner), WHITE, 0.45)
    pen.stroke(polygon(*inner), INK, 0.9)
    for index, corner in enumerate(inner):
        for step in (-1, 0, 1):
            pen.stroke(line(corner, rim[(2 * index + step) % 6]), INK, 0.9)


@icon
def layers(pen):
    for y, color in ((16, "green"), (11.5, "amber"), (7, "blue")):
        pen.shape(polygon((12, y - 5), (22, y), (12, y + 5), (2, y)), color)


@icon
def grid(pen):
    pen.fill(rect(3, 3, 18, 18), WHITE)
    for step in (3.5, 9.5, 14.5, 20.5):
        pen.stroke(line((step, 1), (step, 23)), (40, 84, 150), 1, butt=True)
        pen.stroke(line((1, step), (23, step)), (40, 84, 150), 1, butt=True)


@icon
def ruler(pen):
    with pen.turned(-45):
        pen.shape(rect(-1.5, 8.5, 27, 8), "amber")
        for step in range(8):
            pen.stroke(line((1.5 + 3 * step, 8.5), (1.5 + 3 * step, 11.5 if step % 2 else 13)), INK, 1, butt=True)


def _lens(pen):
    pen.stroke(line((15.5, 15.5), (20.5, 20.5)), INK, 4.6)
    pen.stroke(line((16.5, 16.5), (20.5, 20.5)), (214, 140, 40), 2.6)
    pen.shape(circle(9.5, 9.5, 7.5), "steel")
    pen.shape(circle(9.5, 9.5, 5.5), "white")


@icon
def zoom_in(pen):
    _lens(pen)
    pen.fill(join(rect(5.5, 8.5, 8, 2), rect(8.5, 5.5, 2, 8)), (32, 104, 190))


@icon
def zoom_out(pen):
    _lens(pen)
    pen.fill(rect(5.5, 8.5, 8, 2), (32, 104, 190))


@icon
def zoom_fit(pen):
    pen.shape(rect(7.5, 7.5, 9, 9), "blue")
    for angle in (0, 90, 180, 270):
        with pen.turned(angle):
            pen.stroke(line((3, 8), (3, 3), (8, 3)), INK, 2)


def _arrow(pen, angle):
    with pen.turned(angle):
        pen.shape(
            polygon((12, 2.5), (20.5, 11.5), (15.5, 11.5), (15.5, 20.5), (8.5, 20.5), (8.5, 11.5), (3.5, 11.5)), "blue"
        )


@icon
def up(pen):
    _arrow(pen, 0)


@icon
def down(pen):
    _arrow(pen, 180)


@icon
def left(pen):
    _arrow(pen, 270)


@icon
def right(pen):
    _arrow(pen, 90)


def _turn(pen, mirror):
    with pen.turned(0, mirror=mirror):
        pen.rod(arc(12, 13.5, 7, -80, 190), "blue", 2.6)
        pen.shape(polygon((5.5, 6.5), (12.5, 1.5), (12.5, 11.5)), "blue")


@icon
def rotate_left(pen):
    _turn(pen, False)


@icon
def rotate_right(pen):
    _turn(pen, True)
