"""Writes images as Windows bitmap and icon files.

Pixels are rows of (red, green, blue, alpha) with straight alpha, top row first.
"""

import io
import struct


def pixels_of(surface):
    surface.flush()
    width, height, stride, data = surface.get_width(), surface.get_height(), surface.get_stride(), surface.get_data()
    rows = []
    for y in range(height):
        row = []
        for x in range(width):
            blue, green, red, alpha = data[y * stride + 4 * x : y * stride + 4 * x + 4]
            if alpha:
                red, green, blue = (min(255, (part * 255 + alpha // 2) // alpha) for part in (red, green, blue))
            row.append((red, green, blue, alpha))
        rows.append(row)
    return rows


def write_bitmap(path, rows):
    """A 24-bit bitmap, bottom row first; alpha is ignored."""
    width, height = len(rows[0]), len(rows)
    padding = bytes(-3 * width % 4)
    body = b"".join(
        b"".join(bytes((blue, green, red)) for red, green, blue, _ in row) + padding for row in reversed(rows)
    )
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(body), 2835, 2835, 0, 0)
    header = struct.pack("<2sIHHI", b"BM", 14 + len(info) + len(body), 0, 0, 14 + len(info))
    path.write_bytes(header + info + body)


def _bitmap_image(surface):
    """An icon's image: 32-bit colors, then the AND mask for systems and functions without alpha support."""
    rows = pixels_of(surface)
    width, height = len(rows[0]), len(rows)
    colors = b"".join(bytes((blue, green, red, alpha)) for row in reversed(rows) for red, green, blue, alpha in row)
    mask = b""
    for row in reversed(rows):
        bits = "".join("0" if alpha >= 96 else "1" for _, _, _, alpha in row)
        bits += "0" * (-width % 32)
        mask += int(bits, 2).to_bytes(len(bits) // 8, "big")
    size = len(colors) + len(mask)
    return struct.pack("<IiiHHIIiiII", 40, width, 2 * height, 1, 32, 0, size, 0, 0, 0, 0) + colors + mask


def _png_image(surface):
    stream = io.BytesIO()
    surface.write_to_png(stream)
    return stream.getvalue()


def write_icon(path, surfaces):
    """One image per surface; images of 256 pixels are stored as PNG, as Windows expects."""
    images = [_png_image(surface) if surface.get_width() >= 256 else _bitmap_image(surface) for surface in surfaces]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for surface, image in zip(surfaces, images):
        side = surface.get_width() % 256
        directory += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    path.write_bytes(directory + b"".join(images))
