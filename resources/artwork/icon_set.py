"""The registry of toolbar icons: each function with the decorator @icon draws one, in the order of the toolbar."""

ICONS = []


def icon(draw):
    ICONS.append(draw)
    return draw
