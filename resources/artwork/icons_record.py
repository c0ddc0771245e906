"""Toolbar icons: running, recording and time."""

from icon_set import icon
from palette import INK, WHITE
from pen import arc, circle, curve, join, line, pie, polygon, rect


@icon
def play(pen):
    pen.shape(polygon((6.5, 3.5), (20.5, 12), (6.5, 20.5)), "green")


@icon
def pause(pen):
    for x in (5.5, 13.5):
        pen.shape(rect(x, 4.5, 5, 15, 1), "blue")


@icon
def stop(pen):
    pen.shape(rect(4.5, 4.5, 15, 15, 1.5), "slate")


@icon
def record(pen):
    pen.shape(circle(12, 12, 8), "red")


@icon
def camera(pen):
    pen.shape(polygon((15.5, 11), (21.5, 7.5), (21.5, 17.5), (15.5, 14)), "slate")
    pen.shape(rect(2.5, 6.5, 13, 12, 2), "steel")
    pen.shape(circle(9, 12.5, 3.5), "night")
    pen.fill(circle(9, 12.5, 1.6), (255, 90, 60))
    pen.fill(rect(4, 8, 2, 1), INK)


@icon
def image(pen):
    pen.shape(rect(2.5, 4.5, 19, 15, 1), "white")
    with pen.clipped(rect(5, 7, 14, 10)):
        pen.fill(rect(5, 7, 14, 10), "blue")
        pen.fill(circle(15.5, 10, 1.8), (255, 232, 130))
        pen.fill(polygon((11, 17), (15.5, 12), (20, 17)), (62, 124, 60))
        pen.fill(polygon((4, 17), (9, 10), (14.5, 17)), (92, 176, 70))


@icon
def film(pen):
    pen.shape(rect(4.5, 2.5, 15, 19), "night")
    for y in (3, 9, 15):
        pen.fill(rect(8, y + 1, 8, 5), "blue")
    for y in (4, 8, 12, 16, 19):
        for x in (5.5, 16.5):
            pen.fill(rect(x, y, 2, 2), WHITE)


@icon
def microphone(pen):
    pen.stroke(curve("M 5.5 10 C 5.5 18.5 18.5 18.5 18.5 10"), INK, 2)
    pen.stroke(line((12, 16.5), (12, 21)), INK, 2)
    pen.stroke(line((8, 21), (16, 21)), INK, 2)
    pen.shape(rect(8.5, 2.5, 7, 11, 3.5), "steel")
    for y in (5.5, 7.5, 9.5):
        pen.stroke(line((10.5, y), (13.5, y)), INK, 1, butt=True)


@icon
def clock(pen):
    pen.shape(circle(12, 12, 9.5), "blue")
    pen.shape(circle(12, 12, 6.5), "white")
    pen.stroke(line((12, 7.5), (12, 12), (15, 14)), INK, 1.6)


@icon
def timer(pen):
    pen.shape(rect(9.5, 1.5, 5, 3), "steel")
    pen.stroke(line((18, 6.5), (19.5, 5)), INK, 2.4)
    pen.shape(circle(12, 13.5, 8), "steel")
    pen.shape(circle(12, 13.5, 5.5), "white")
    pen.fill(pie(12, 13.5, 5, -90, 30), "red")
    pen.stroke(line((12, 9.5), (12, 13.5)), INK, 1.4)


@icon
def calendar(pen):
    pen.shape(rect(3.5, 4.5, 17, 16, 1), "white")
    pen.shape(rect(3.5, 4.5, 17, 5, 1), "red")
    for x in (7.5, 16.5):
        pen.shape(rect(x - 1, 2.5, 2, 4, 1), "steel")
    for y in (11, 14, 17):
        for x in (6, 9, 12, 15):
            if (x, y) != (15, 17):
                pen.fill(rect(x, y, 2, 2), (116, 132, 152))
    pen.fill(rect(12, 14, 3, 3), "red")


@icon
def bell(pen):
    pen.shape(circle(12, 19, 2.5), "slate")
    pen.shape(circle(12, 4, 1.5), "amber")
    pen.shape(curve("M 3.5 18.5 C 6.5 15.5 5 5 12 5 C 19 5 17.5 15.5 20.5 18.5 Z"), "amber")
    pen.stroke(curve("M 8.2 14.5 C 8.6 11 8.7 8.6 10.8 7.4"), WHITE, 1.2, 0.75)


@icon
def power(pen):
    pen.rod(join(arc(12, 13, 7, -52, 232), line((12, 4), (12, 12))), "green", 2.4)
