"""Toolbar icons: connections and data transport. The main dialog uses `connect`."""

from icon_set import icon
from palette import INK, WHITE
from pen import arc, around, circle, curve, join, line, polygon, rect


def _waves(pen, x, y, start, end, radii, color):
    for radius in radii:
        pen.stroke(arc(x, y, radius, start, end), color, 1.6)


def _shell(x):
    """A round-backed body whose flat face looks to the right, its back at x."""
    return curve(f"M {x + 7} 6 L {x + 7} 18 L {x + 5.5} 18 C {x - 1.8} 18 {x - 1.8} 6 {x + 5.5} 6 Z")


def _plug(pen, x, prongs):
    pen.rod(line((x - 6, 12), (x + 1, 12)), "slate", 1.8)
    for y in (9, 15):
        pen.shape(rect(x + 6.5, y - 1, prongs, 2), "white")
    pen.shape(_shell(x), "amber")


def _socket(pen, x, color):
    """The plug's other half, its back at x, looking to the left."""
    with pen.turned(180, x, 12):
        pen.rod(line((x - 6, 12), (x + 1, 12)), "slate", 1.8)
        pen.shape(_shell(x), color)


@icon
def antenna(pen):
    for start, end in ((-45, 45), (135, 225)):
        _waves(pen, 12, 6.5, start, end, (5, 8.5), (32, 104, 190))
    pen.stroke(line((11.5, 8), (7.5, 21)), INK, 1.6)
    pen.stroke(line((12.5, 8), (16.5, 21)), INK, 1.6)
    pen.stroke(line((10.4, 13), (13.6, 13), (9, 17), (15, 17)), INK, 1)
    pen.shape(circle(12, 6.5, 2), "red")


@icon
def serial_port(pen):
    pen.shape(rect(0.5, 6.5, 23, 11, 2), "steel")
    pen.shape(
        curve(
            "M 5 8.5 L 19 8.5 C 20 8.5 20.3 9 20 10 L 18.8 14.5 C 18.5 15.3 18.2 15.5 17.5 15.5 L 6.5 15.5 "
            "C 5.8 15.5 5.5 15.3 5.2 14.5 L 4 10 C 3.7 9 4 8.5 5 8.5 Z"
        ),
        "blue",
    )
    for x in (6, 9, 12, 15, 18):
        pen.fill(rect(x - 0.75, 10, 1.5, 1.5), WHITE)
    for x in (7.5, 10.5, 13.5, 16.5):
        pen.fill(rect(x - 0.75, 13, 1.5, 1.5), WHITE)
    for x in (2.3, 21.7):
        pen.fill(circle(x, 12, 0.9), INK)


@icon
def usb(pen):
    pen.stroke(line((12, 20), (12, 4)), INK, 1.8)
    pen.stroke(line((12, 17), (6.5, 13.5), (6.5, 10)), INK, 1.8)
    pen.stroke(line((12, 14.5), (17.5, 11), (17.5, 8)), INK, 1.8)
    pen.shape(polygon((12, 1.5), (15, 6.5), (9, 6.5)), "blue")
    pen.shape(circle(6.5, 9.5, 2), "blue")
    pen.shape(rect(15.5, 5.5, 4, 4), "blue")
    pen.shape(circle(12, 20, 2.5), "blue")


@icon
def network(pen):
    pen.stroke(line((12, 8), (12, 12)), INK, 2, butt=True)
    pen.stroke(line((5, 16), (5, 12), (19, 12), (19, 16)), INK, 2)
    pen.shape(rect(7.5, 2.5, 9, 6, 1), "blue")
    for x, color in ((1.5, "green"), (14.5, "amber")):
        pen.shape(rect(x, 15.5, 8, 6, 1), color)


@icon
def connect(pen):
    with pen.turned(-45):
        _plug(pen, 2.5, 6)
        _socket(pen, 21.5, "green")


@icon
def disconnect(pen):
    with pen.turned(-45):
        _plug(pen, 0.2, 4.7)
        _socket(pen, 23.8, "steel")
    cross = join(line((16, 16), (21.5, 21.5)), line((21.5, 16), (16, 21.5)))
    pen.rod(cross, (226, 52, 44), 2.2)


@icon
def satellite(pen):
    with pen.turned(-45, 11, 11):
        pen.stroke(line((3, 11), (19, 11)), INK, 1.6)
        for x in (-1.5, 15.5):
            pen.shape(rect(x, 7.5, 8, 7), "blue")
            pen.stroke(join(line((x + 4, 7.5), (x + 4, 14.5)), line((x, 11), (x + 8, 11))), INK, 0.8, butt=True)
        pen.shape(rect(8.5, 6.5, 5, 9, 1), "steel")
    _waves(pen, 14, 14, 0, 90, (4.5, 7.8), (214, 120, 8))


@icon
def link(pen):
    ring = rect(1, 8.5, 12, 7, 3.5)
    with pen.turned(-45):
        pen.rod(ring, "steel", 2)
        pen.rod(rect(11, 8.5, 12, 7, 3.5), "steel", 2)
        with pen.clipped(rect(9, 5, 6, 7)):
            pen.rod(ring, "steel", 2)


@icon
def unlink(pen):
    with pen.turned(-45):
        for x, half in ((-1.5, rect(-6, 2, 14.5, 20)), (13.5, rect(15.5, 2, 14, 20))):
            with pen.clipped(half):
                pen.rod(rect(x, 8.5, 12, 7, 3.5), "steel", 2)
    for angle in (207, 243, 27, 63):
        pen.stroke(line(around(12, 12, 5, angle), around(12, 12, 9.5, angle)), (206, 40, 38), 1.7)


def _tray(pen):
    pen.shape(
        polygon(
            (2.5, 14.5), (6.5, 14.5), (6.5, 17.5), (17.5, 17.5), (17.5, 14.5), (21.5, 14.5), (21.5, 21.5), (2.5, 21.5)
        ),
        "steel",
    )


@icon
def upload(pen):
    _tray(pen)
    pen.shape(polygon((12, 1.5), (18, 8), (14.5, 8), (14.5, 14.5), (9.5, 14.5), (9.5, 8), (6, 8)), "green")


@icon
def download(pen):
    _tray(pen)
    pen.shape(polygon((12, 15.5), (18, 9), (14.5, 9), (14.5, 2.5), (9.5, 2.5), (9.5, 9), (6, 9)), "blue")


@icon
def refresh(pen):
    for half in (0, 180):
        with pen.turned(half):
            pen.rod(arc(12, 12, 7.2, 185, 300), "green", 2.4)
    for half in (0, 180):
        with pen.turned(half):
            pen.shape(polygon((12.5, 10), (21, 10), (20.5, 1.5)), "green")
