"""The register of toolbar icons: every function marked @icon draws one; their order is the order in the strip."""

ICONS = []


def icon(draw):
    ICONS.append(draw)
    return draw
