"""Toolbar icons: instruments, craft and weather."""

from icon_set import icon
from palette import INK, WHITE
from pen import arc, around, circle, closed, curve, join, line, polygon, rect, star


@icon
def gauge(pen):
    pen.shape(circle(12, 12, 9.5), "white")
    for start, end, color in ((140, 230, (60, 160, 60)), (230, 310, (240, 170, 30)), (310, 400, (214, 48, 42))):
        pen.stroke(arc(12, 12, 7, start, end), color, 2.4, butt=True)
    pen.stroke(line((12, 12), (16.2, 8.2)), INK, 1.8)
    pen.fill(circle(12, 12, 2), INK)


@icon
def speed(pen):
    pen.shape(closed(arc(12, 13.5, 10, 145, 395)), "night")
    for angle in range(165, 376, 30):
        pen.stroke(line(around(12, 13.5, 7, angle), around(12, 13.5, 8.5, angle)), WHITE, 1.3)
    pen.stroke(line((12, 13.5), around(12, 13.5, 7, 322)), (255, 104, 76), 1.9)
    pen.fill(circle(12, 13.5, 2), (255, 104, 76))


@icon
def altitude(pen):
    pen.shape(polygon((0.5, 20.5), (7.5, 5.5), (14.5, 20.5)), "green")
    pen.shape(polygon((4.5, 12), (7.5, 5.5), (10.5, 12), (9, 11), (7.5, 12.5), (6, 11)), "white")
    pen.shape(
        polygon((18.5, 2.5), (22.5, 7.5), (20.5, 7.5), (20.5, 20.5), (16.5, 20.5), (16.5, 7.5), (14.5, 7.5)), "amber"
    )


@icon
def horizon(pen):
    with pen.clipped(circle(12, 12, 9.5)), pen.turned(-28):
        pen.fill(rect(0, 0, 24, 12), "blue")
        pen.fill(rect(0, 12, 24, 12), "brown")
        pen.stroke(line((0, 12), (24, 12)), WHITE, 1.6)
    pen.stroke(circle(12, 12, 9.5), INK, 1.2)
    for x, length in ((5, 4), (11, 2), (15, 4)):
        pen.fill(rect(x, 11, length, 2), INK)


@icon
def compass(pen):
    pen.shape(circle(12, 12, 9.5), "steel")
    pen.shape(circle(12, 12, 7.5), "white")
    with pen.turned(40):
        pen.shape(polygon((12, 4.5), (14.5, 12), (9.5, 12)), "red")
        pen.shape(polygon((12, 19.5), (9.5, 12), (14.5, 12)), "slate")
    pen.fill(circle(12, 12, 1), WHITE)


@icon
def thermometer(pen):
    pen.shape(
        join(arc(10, 17.5, 4, -48, 228), curve("M 7.5 14.5 L 7.5 4.5 C 7.5 1 12.5 1 12.5 4.5 L 12.5 14.5")), "white"
    )
    pen.fill(rect(8, 4.5, 4, 11), WHITE)
    pen.stroke(line((10, 8), (10, 16)), (214, 44, 40), 2)
    pen.fill(circle(10, 17.5, 3), "red")
    for y, length in ((4.5, 4), (7.5, 2.5), (10.5, 4), (13.5, 2.5)):
        pen.stroke(line((14.5, y), (14.5 + length, y)), INK, 1, butt=True)


@icon
def battery(pen):
    pen.shape(rect(19.5, 9.5, 3, 5, 1), "slate")
    pen.shape(rect(1.5, 6.5, 18, 11, 1.5), "steel")
    for x in (3, 8, 13):
        pen.fill(rect(x + 0.5, 8.5, 4, 7), "green")


@icon
def rotor(pen):
    pen.stroke(circle(12, 12, 9.8), (96, 112, 132), 1.2)
    for angle in (0, 120, 240):
        with pen.turned(angle):
            pen.shape(curve("M 12 12 C 8.5 9 8.5 3.5 12.5 2.5 C 15 5.5 14 9.5 12 12 Z"), "blue")
    pen.shape(circle(12, 12, 2.5), "steel")


@icon
def plane(pen):
    with pen.turned(45):
        pen.shape(
            curve(
                "M 12 0.5 C 14 2 13.9 5 13.9 8 L 23 14 L 23 16.5 L 13.9 13.8 L 13.4 19 L 16.5 21.5 L 16.5 23.5 "
                "L 12 22.2 L 7.5 23.5 L 7.5 21.5 L 10.6 19 L 10.1 13.8 L 1 16.5 L 1 14 L 10.1 8 "
                "C 10.1 5 10 2 12 0.5 Z"
            ),
            "blue",
        )
        pen.stroke(line((11, 4), (11, 8)), WHITE, 1, 0.8)


@icon
def rocket(pen):
    with pen.turned(45):
        pen.shape(curve("M 10 19 L 12 25 L 14 19 Z"), "amber")
        pen.shape(curve("M 8.5 12 L 4.5 17 L 5.5 20.5 L 9.5 18 Z"), "red")
        pen.shape(curve("M 15.5 12 L 19.5 17 L 18.5 20.5 L 14.5 18 Z"), "red")
        pen.shape(curve("M 12 -1.5 C 17.5 4 17 12 15 18.5 L 9 18.5 C 7 12 6.5 4 12 -1.5 Z"), "steel")
        pen.shape(circle(12, 8, 2.2), "blue")


@icon
def wind(pen):
    for path in (
        curve("M 2 9 L 12 9 C 16.5 9 16.5 2.5 12.5 3 C 11.3 3.2 10.6 4 10.5 5"),
        curve("M 2 13 L 18.5 13 C 23 13 23 6.5 19 7 C 17.8 7.2 17.1 8 17 9"),
        curve("M 4 17 L 13 17 C 17 17 17 22.5 13.2 22 C 12.2 21.9 11.6 21.3 11.5 20.5"),
    ):
        pen.stroke(path, (10, 112, 124), 2)


@icon
def cloud(pen):
    pen.shape(
        curve("M 6.5 18.5 C 0.5 18.5 0.8 11.5 5.6 11.5 " "C 5.4 4.5 14.6 3.4 15.8 9.5 C 23 8 23.6 18.5 17.5 18.5 Z"),
        "white",
    )


@icon
def sun(pen):
    pen.shape(star(12, 12, 11, 7, 10), "amber")
    pen.shape(circle(12, 12, 5), "amber")


@icon
def moon(pen):
    pen.shape(
        curve("M 14.5 2.8 C 1.5 1.5 -0.5 19.5 11.5 21.3 " "C 15.8 21.8 19.2 19.8 21 16.4 C 11.5 18.5 8.5 8 14.5 2.8 Z"),
        "violet",
    )
    for x, y in ((17, 6), (20, 11)):
        pen.stroke(join(line((x - 1.5, y), (x + 1.5, y)), line((x, y - 1.5), (x, y + 1.5))), (222, 150, 14), 1.2)


@icon
def contrast(pen):
    pen.shape(circle(12, 12, 9), "white")
    pen.fill(arc(12, 12, 9, -90, 90), INK)


@icon
def color(pen):
    pen.shape(
        curve(
            "M 12 3 C 5.5 3 1.5 7 1.5 12.2 C 1.5 17.6 5.5 21 10 21 C 13.4 21 11.8 18 12.8 16.8 "
            "C 14 15.3 16 16.7 18.5 16.2 C 21 15.7 22.5 14 22.5 11.5 C 22.5 6.5 18.5 3 12 3 Z"
        ),
        "white",
    )
    for x, y, family in (
        (5.8, 13.4, "violet"),
        (7, 8.4, "blue"),
        (12, 6.4, "green"),
        (17, 8.2, "amber"),
        (18.6, 12.6, "red"),
    ):
        pen.fill(circle(x, y, 2.1), family)
    pen.stroke(circle(8.6, 17.3, 1.4), INK, 1)
