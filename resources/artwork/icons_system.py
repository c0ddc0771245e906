"""Toolbar icons: places, data, the system and messages."""

from icon_set import icon
from palette import INK, WHITE
from pen import around, circle, curve, ellipse, gear, join, line, polygon, rect, star


@icon
def globe(pen):
    pen.shape(circle(12, 12, 9.5), "blue")
    with pen.clipped(circle(12, 12, 9)):
        pen.stroke(
            join(
                ellipse(12, 12, 4.5, 9.5),
                line((12, 2), (12, 22)),
                line((2, 12), (22, 12)),
                line((2, 7.5), (22, 7.5)),
                line((2, 16.5), (22, 16.5)),
            ),
            WHITE,
            1,
        )


@icon
def waypoint(pen):
    pen.fill(ellipse(12, 21, 4.5, 1.8), (116, 132, 152))
    pen.shape(curve("M 12 21.5 C 11 17 5.5 13.5 5.5 8.5 C 5.5 0 18.5 0 18.5 8.5 C 18.5 13.5 13 17 12 21.5 Z"), "red")
    pen.shape(circle(12, 8.3, 2.6), "white")


@icon
def pin(pen):
    with pen.turned(40):
        pen.stroke(line((12, 15), (12, 23)), INK, 1.6)
        pen.shape(
            curve("M 9.5 4.5 L 14.5 4.5 L 15 10 C 17.5 11 18.5 12.5 18.5 15.5 L 5.5 15.5 C 5.5 12.5 6.5 11 9 10 Z"),
            "blue",
        )
        pen.shape(rect(7.5, 1.5, 9, 3, 1.2), "blue")


@icon
def flag(pen):
    pen.shape(curve("M 6.5 3.5 C 10 1.5 13 6.5 20.5 3.5 L 20.5 13 C 13 16 10 11 6.5 13 Z"), "red")
    pen.rod(line((5.5, 3), (5.5, 21)), "steel", 1.2)


@icon
def home(pen):
    pen.shape(rect(16.5, 3.5, 3, 6), "brown")
    pen.shape(polygon((4.5, 11), (12, 4), (19.5, 11), (19.5, 20.5), (4.5, 20.5)), "white")
    pen.shape(rect(9.5, 13.5, 5, 7), "blue")
    pen.stroke(line((2.5, 12), (12, 3.2), (21.5, 12)), INK, 3.6)
    pen.stroke(line((2.5, 12), (12, 3.2), (21.5, 12)), (214, 58, 48), 1.8)


@icon
def favorite(pen):
    pen.shape(star(12, 12.8, 10.5, 4.4, 5), "amber")


@icon
def folder(pen):
    pen.shape(curve("M 2.5 19.5 L 2.5 5.5 L 3.5 4.5 L 9 4.5 L 11 7.5 L 20.5 7.5 L 20.5 19.5 Z"), (214, 140, 30))
    pen.shape(polygon((2.5, 19.5), (5.5, 10.5), (22.5, 10.5), (20.5, 19.5)), "amber")


@icon
def database(pen):
    for y in (14.5, 9.5, 4.5):
        pen.shape(curve(f"M 3.5 {y} L 3.5 {y + 4.5} C 3.5 {y + 8} 20.5 {y + 8} 20.5 {y + 4.5} L 20.5 {y} Z"), "teal")
    pen.shape(ellipse(12, 5, 8.5, 3), "white")


@icon
def memory(pen):
    for offset in (7.5, 11.5, 15.5):
        for first, second in (((1.5, offset), (22.5, offset)), ((offset, 1.5), (offset, 22.5))):
            pen.stroke(line(first, second), INK, 1.8, butt=True)
    pen.shape(rect(4.5, 4.5, 15, 15, 1), "slate")
    pen.shape(rect(8.5, 8.5, 7, 7), "steel")


@icon
def funnel(pen):
    pen.shape(
        polygon((2.5, 3.5), (21.5, 3.5), (21.5, 6), (14.5, 13), (14.5, 19), (9.5, 21.5), (9.5, 13), (2.5, 6)), "teal"
    )
    pen.stroke(line((3, 6.5), (21, 6.5)), INK, 1, 0.6, butt=True)


@icon
def user(pen):
    pen.shape(curve("M 3.5 21.5 C 3.5 16 7 13 12 13 C 17 13 20.5 16 20.5 21.5 Z"), "blue")
    pen.shape(circle(12, 7.5, 5), (250, 210, 168))
    with pen.clipped(circle(12, 7.5, 4.6)):
        pen.fill(curve("M 6 0 L 18 0 L 18 6.5 C 14 7.5 12 6 10.5 4.8 C 10 6.5 8 7.5 6 7.5 Z"), (122, 78, 40))


@icon
def key(pen):
    bit = "L 24.5 15.5 L 21.5 15.5 L 21.5 13.5 L 19.5 13.5 L 19.5 16.5 L 16.5 16.5 L 16.5 13.5"
    with pen.turned(-45):
        pen.shape(curve(f"M 9 10.5 L 24.5 10.5 {bit} L 9 13.5 Z"), "amber")
        pen.shape(circle(4.5, 12, 5.5), "amber")
        pen.fill(circle(3.2, 12, 1.8), INK)


def _lock_body(pen):
    pen.shape(rect(4.5, 10.5, 15, 11, 1.5), "amber")
    pen.fill(circle(12, 15, 1.7), INK)
    pen.stroke(line((12, 15), (12, 18)), INK, 1.6)


@icon
def lock(pen):
    pen.rod(curve("M 8 12 L 8 8 C 8 2.2 16 2.2 16 8 L 16 12"), "steel", 2)
    _lock_body(pen)


@icon
def unlock(pen):
    pen.rod(curve("M 14.5 12 L 14.5 7 C 14.5 1.2 22 1.2 22 7 L 22 8.5"), "steel", 1.8)
    pen.context.translate(-3, 0)
    _lock_body(pen)


@icon
def settings(pen):
    pen.shape(gear(12, 12, 10.5, 7.8, 8), "steel")
    pen.shape(circle(12, 12, 3.5), "slate")


@icon
def wrench(pen):
    with pen.turned(45):
        pen.shape(
            curve(
                "M 9.5 9.5 C 5.5 8 5 2.5 9 0 L 9 4.5 L 12 6.5 L 15 4.5 L 15 0 C 19 2.5 18.5 8 14.5 9.5 L 14.5 22 "
                "C 14.5 25.5 9.5 25.5 9.5 22 Z"
            ),
            "steel",
        )
        pen.fill(circle(12, 21.8, 1.1), INK)


@icon
def bug(pen):
    for reach in (8, 13.5, 20):
        pen.stroke(line((12, 13.5), (3, reach)), INK, 1.5)
        pen.stroke(line((12, 13.5), (21, reach)), INK, 1.5)
    pen.stroke(line((10.5, 5), (8, 2)), INK, 1.4)
    pen.stroke(line((13.5, 5), (16, 2)), INK, 1.4)
    pen.shape(circle(12, 6.5, 3), "slate")
    pen.shape(ellipse(12, 14.5, 5.5, 7), "red")
    pen.stroke(line((12, 8), (12, 21)), INK, 1.2)
    for x, y in ((9.3, 12), (14.7, 12), (9.8, 16.5), (14.2, 16.5)):
        pen.fill(circle(x, y, 1.1), INK)


def _thick_cross(pen, reach, color):
    """Arms five pixels wide; the outline of its upper right quarter, turned four times."""
    corners = []
    for turn in range(4):
        for x, y in ((-2.5, -reach), (2.5, -reach), (2.5, -2.5)):
            for _ in range(turn):
                x, y = -y, x
            corners.append((12 + x, 12 + y))
    pen.shape(polygon(*corners), color)


@icon
def plus(pen):
    _thick_cross(pen, 8.5, "green")


@icon
def minus(pen):
    pen.shape(rect(3.5, 9.5, 17, 5), "red")


@icon
def check(pen):
    pen.shape(polygon((2.5, 13), (6, 9.5), (9.5, 13), (18, 3.5), (21.5, 7), (9.5, 20.5)), "green")


@icon
def cross(pen):
    with pen.turned(45):
        _thick_cross(pen, 10.5, "red")


@icon
def information(pen):
    pen.shape(circle(12, 12, 9.5), "blue")
    pen.fill(join(rect(10.5, 6, 3, 3), rect(9, 10.5, 4.5, 2), rect(10.5, 10.5, 3, 6), rect(9, 16, 6, 2)), WHITE)


@icon
def question(pen):
    pen.shape(circle(12, 12, 9.5), "violet")
    pen.stroke(curve("M 8.7 9.3 C 8.7 5 15.4 5 15.4 9.3 C 15.4 11.6 12 11.8 12 14"), WHITE, 2.4)
    pen.fill(circle(12, 17.4, 1.5), WHITE)


@icon
def warning(pen):
    pen.shape(polygon((12, 2.5), (22.5, 20.5), (1.5, 20.5)), "amber")
    pen.fill(polygon((10.5, 8), (13.5, 8), (13, 14.8), (11, 14.8)), INK)
    pen.fill(rect(10.7, 16, 2.6, 2.6), INK)


@icon
def error(pen):
    pen.shape(polygon(*(around(12, 12, 10.2, angle + 22.5) for angle in range(0, 360, 45))), "red")
    pen.stroke(join(line((8.3, 8.3), (15.7, 15.7)), line((15.7, 8.3), (8.3, 15.7))), WHITE, 2.6)
