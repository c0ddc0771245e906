#!/usr/bin/python3
"""Regenerates all artwork.

Writes icons and the toolbar bitmap to resources/, the samples' icons to samples/, toolbar_index.md to this folder, and
contact sheets to build/artwork/.
"""

from pathlib import Path

import cairo

# Importing them registers their icons, in the order of the toolbar.
# isort: off
import icons_record  # noqa: F401  (it registers its icons)
import icons_link  # noqa: F401  (it registers its icons)
import icons_measure  # noqa: F401  (it registers its icons)
import icons_view  # noqa: F401  (it registers its icons)
import icons_system  # noqa: F401  (it registers its icons)

# isort: on
import marks
from icon_set import ICONS
from image_files import pixels_of, write_bitmap, write_icon
from palette import BUTTON_FACE, MAGENTA
from pen import Pen

HERE = Path(__file__).resolve().parent
RESOURCES = HERE.parent
BUILD = RESOURCES.parent / "build" / "artwork"
SAMPLES = RESOURCES.parent / "samples"

SIDE = 24
STRIP_COUNT = 88
STANDARD_COUNT = 15  # the common controls' standard images, which precede these on a toolbar
CONNECT_IMAGE = 32  # the image of the main dialog's connect button
SAMPLE_ICONS = {
    "speedometer": "gauge",
    "instrument_panel": "compass",
    "million_rows": "table",
    "sensor_recorder": "chart",
    "track_export": "waypoint",
}
FAINTEST_EDGE = 48  # a pixel with less coverage than this (of 255) is transparent


def strip_pixel(red, green, blue, alpha):
    if alpha < FAINTEST_EDGE:
        return MAGENTA + (255,)
    return tuple(
        (part * alpha + face * (255 - alpha)) // 255 for part, face in zip((red, green, blue), BUTTON_FACE)
    ) + (255,)


def draw_icon(draw):
    pen = Pen(SIDE, SIDE)
    draw(pen)
    return [[strip_pixel(*pixel) for pixel in row] for row in pixels_of(pen.surface)]


def program_icon(draw, side):
    pen = Pen(side, side)
    pen.context.scale(side / SIDE, side / SIDE)
    draw(pen)
    return pen.surface


def write_index():
    lines = [
        "# The toolbar strip",
        "",
        f"Written by `generate.py`. On a toolbar the strip follows the {STANDARD_COUNT} standard images.",
        "",
        "| Strip index | Toolbar image | Meaning |",
        "|---|---|---|",
    ]
    for index, draw in enumerate(ICONS):
        lines.append(f"| {index} | {index + STANDARD_COUNT} | {draw.__name__.replace('_', ' ')} |")
    (HERE / "toolbar_index.md").write_text("\n".join(lines) + "\n")


def write_sheet(name, icons, face, zoom):
    """The toolbar's images on a toolbar's gray, enlarged without interpolation."""
    columns = 11
    cell = (SIDE + 6) * zoom
    rows = -(-len(icons) // columns)
    sheet = cairo.ImageSurface(cairo.FORMAT_RGB24, columns * cell, rows * cell)
    context = cairo.Context(sheet)
    context.set_source_rgb(*(part / 255 for part in face))
    context.paint()
    for index, icon in enumerate(icons):
        left, top = index % columns * cell + 3 * zoom, index // columns * cell + 3 * zoom
        for y, row in enumerate(icon):
            for x, pixel in enumerate(row):
                if pixel[:3] != MAGENTA:
                    context.set_source_rgb(*(part / 255 for part in pixel[:3]))
                    context.rectangle(left + x * zoom, top + y * zoom, zoom, zoom)
                    context.fill()
    sheet.write_to_png(str(BUILD / name))


def write_marks_sheet(icons, zoom):
    width = sum(icon.get_width() for icon in icons) + 8 * (len(icons) + 1)
    height = max(icon.get_height() for icon in icons) + 16
    sheet = cairo.ImageSurface(cairo.FORMAT_RGB24, width * zoom, height * zoom)
    context = cairo.Context(sheet)
    context.scale(zoom, zoom)
    left = 8
    for icon in icons:
        context.set_source_surface(icon, left, 8)
        context.get_source().set_filter(cairo.FILTER_NEAREST)
        context.paint()
        left += icon.get_width() + 8
    sheet.write_to_png(str(BUILD / f"marks_{zoom}x.png"))


def main():
    BUILD.mkdir(parents=True, exist_ok=True)
    names = [draw.__name__ for draw in ICONS]
    assert len(names) == len(set(names)) == STRIP_COUNT, len(names)
    assert names[CONNECT_IMAGE - STANDARD_COUNT] == "connect", names.index("connect")

    icons = [draw_icon(draw) for draw in ICONS]
    write_bitmap(RESOURCES / "toolbar.bmp", [[pixel for icon in icons for pixel in icon[y]] for y in range(SIDE)])
    write_index()

    markers = [marks.marker(index) for index in range(4)]
    for index, surface in enumerate(markers):
        write_icon(RESOURCES / f"marker{index + 1}.ico", [surface])
    programs = [marks.program(side) for side in (48, 32, 16, 256)]
    write_icon(RESOURCES / "tarnwick.ico", programs)
    write_icon(RESOURCES / "tarnwick_small.ico", [programs[2]])
    viewers = [marks.viewer(side) for side in (48, 32, 16, 256)]
    write_icon(RESOURCES / "camview.ico", viewers)
    write_icon(RESOURCES / "camview_small.ico", [viewers[2]])

    drawn = dict(zip(names, ICONS))
    for sample, name in SAMPLE_ICONS.items():
        write_icon(SAMPLES / sample / "program.ico", [program_icon(drawn[name], side) for side in (32, 48, 16)])

    for face, name in (((212, 208, 200), "classic"), ((240, 240, 240), "light")):
        for zoom in (1, 4):
            write_sheet(f"toolbar_{name}_{zoom}x.png", icons, face, zoom)
    for zoom in (1, 4):
        write_marks_sheet(markers + programs[:3] + viewers[:3], zoom)
    programs[3].write_to_png(str(BUILD / "program_256.png"))


if __name__ == "__main__":
    main()
