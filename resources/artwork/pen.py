"""Drawing helpers: paths as values, and a pen that draws them in the one style of all icons.

A path is a function that adds itself to a cairo context. Coordinates are pixels of the icon, y downwards; angles are
degrees, clockwise from three o'clock. An outline is one pixel wide, so where it is straight its path runs through pixel
centers (x.5).
"""

import math
from contextlib import contextmanager

import cairo

from palette import FAMILIES, INK


def circle(x, y, radius):
    return ellipse(x, y, radius, radius)


def ellipse(x, y, radius_x, radius_y):
    def add(context):
        context.save()
        context.translate(x, y)
        context.scale(radius_x, radius_y)
        context.new_sub_path()
        context.arc(0, 0, 1, 0, 2 * math.pi)
        context.close_path()
        context.restore()

    return add


def arc(x, y, radius, start, end):
    def add(context):
        context.new_sub_path()
        context.arc(x, y, radius, math.radians(start), math.radians(end))

    return add


def pie(x, y, radius, start, end):
    def add(context):
        context.move_to(x, y)
        context.arc(x, y, radius, math.radians(start), math.radians(end))
        context.close_path()

    return add


def rect(x, y, width, height, radius=0):
    def add(context):
        if not radius:
            context.rectangle(x, y, width, height)
            return
        right, bottom = x + width, y + height
        context.new_sub_path()
        context.arc(right - radius, y + radius, radius, -math.pi / 2, 0)
        context.arc(right - radius, bottom - radius, radius, 0, math.pi / 2)
        context.arc(x + radius, bottom - radius, radius, math.pi / 2, math.pi)
        context.arc(x + radius, y + radius, radius, math.pi, 3 * math.pi / 2)
        context.close_path()

    return add


def line(*points):
    def add(context):
        context.move_to(*points[0])
        for point in points[1:]:
            context.line_to(*point)

    return add


def closed(path):
    return join(path, lambda context: context.close_path())


def polygon(*points):
    return closed(line(*points))


def curve(text):
    """A path in the absolute commands M, L, C and Z of SVG."""
    tokens = text.replace(",", " ").split()
    counts = {"M": 2, "L": 2, "C": 6, "Z": 0}

    def add(context):
        actions = {"M": context.move_to, "L": context.line_to, "C": context.curve_to, "Z": context.close_path}
        position = 0
        while position < len(tokens):
            command = tokens[position]
            count = counts[command]
            actions[command](*(float(number) for number in tokens[position + 1 : position + 1 + count]))
            position += 1 + count

    return add


def around(x, y, radius, angle):
    return (x + radius * math.cos(math.radians(angle)), y + radius * math.sin(math.radians(angle)))


def star(x, y, outer, inner, points, start=-90):
    step = 180 / points
    return polygon(*(around(x, y, inner if index % 2 else outer, start + index * step) for index in range(2 * points)))


def gear(x, y, outer, inner, teeth):
    """A wheel whose teeth cover half of the rim."""
    step = 360 / teeth
    corners = []
    for tooth in range(teeth):
        for radius, share in ((inner, -0.32), (outer, -0.2), (outer, 0.2), (inner, 0.32)):
            corners.append(around(x, y, radius, (tooth + share) * step - 90))
    return polygon(*corners)


def join(*paths):
    def add(context):
        for path in paths:
            path(context)

    return add


class Pen:
    def __init__(self, width, height):
        self.surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)
        self.context = cairo.Context(self.surface)
        self.context.set_line_join(cairo.LINE_JOIN_ROUND)
        self.context.set_line_cap(cairo.LINE_CAP_ROUND)

    def _begin(self, path):
        self.context.new_path()
        path(self.context)

    def _source(self, color, alpha):
        """A triple is plain; a named family becomes a gradient over the path, from the light at the top left.

        The box is taken in pixels, so that a turned shape is lit from the same side as all others.
        """
        if not isinstance(color, str):
            self.context.set_source_rgba(*(part / 255 for part in color), alpha)
            return
        matrix = self.context.get_matrix()
        self.context.identity_matrix()
        gradient = cairo.LinearGradient(*self.context.path_extents())
        for stop, part in enumerate(FAMILIES[color]):
            gradient.add_color_stop_rgba(stop, *(channel / 255 for channel in part), alpha)
        self.context.set_source(gradient)
        self.context.set_matrix(matrix)

    def fill(self, path, color, alpha=1.0):
        self._begin(path)
        self._source(color, alpha)
        self.context.fill()

    def stroke(self, path, color=INK, width=1.0, alpha=1.0, butt=False):
        self._begin(path)
        self._source(color, alpha)
        self.context.set_line_width(width)
        self.context.set_line_cap(cairo.LINE_CAP_BUTT if butt else cairo.LINE_CAP_ROUND)
        self.context.stroke()

    def shape(self, path, color):
        """A filled shape with an outline, the usual element of an icon."""
        self.fill(path, color)
        self.stroke(path)

    def rod(self, path, color, width=2.0):
        """A colored line with an outline of one pixel on both sides."""
        self.stroke(path, INK, width + 2)
        self.stroke(path, color, width)

    def glow(self, x, y, radius, color, alpha=1.0):
        """A light that decreases from the center."""
        gradient = cairo.RadialGradient(x, y, 0, x, y, radius)
        for share, strength in ((0.12, 1.0), (0.45, 0.55), (0.7, 0.2), (1, 0)):
            gradient.add_color_stop_rgba(share, *(part / 255 for part in color), alpha * strength)
        self._begin(circle(x, y, radius))
        self.context.set_source(gradient)
        self.context.fill()

    @contextmanager
    def clipped(self, path):
        self.context.save()
        self._begin(path)
        self.context.clip()
        yield
        self.context.restore()

    @contextmanager
    def turned(self, angle, x=12, y=12, mirror=False):
        self.context.save()
        self.context.translate(x, y)
        self.context.rotate(math.radians(angle))
        if mirror:
            self.context.scale(-1, 1)
        self.context.translate(-x, -y)
        yield
        self.context.restore()
