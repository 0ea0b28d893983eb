# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""The panel's colours and the shades of the objects that stand on it, as (red, green, blue)."""

BACKGROUND = (31, 32, 40)
LINE = (73, 74, 86)
BLUE = (87, 110, 246)
TEAL = (47, 212, 179)
AMBER = (246, 180, 54)
WHITE = (255, 255, 255)

# Few shades on purpose: every further one costs edges in the palette that all frames share.
OPENING = (19, 20, 26)
SIDE = (42, 43, 54)
FACE = (58, 59, 72)
TOP = (88, 90, 106)
EDGE = (112, 115, 133)
LABEL = (156, 159, 175)
METAL = (190, 193, 206)
SCREEN = (24, 26, 44)
SCREEN_LIT = (53, 63, 122)

PALETTE = (BACKGROUND, LINE, BLUE, TEAL, AMBER, WHITE, OPENING, SIDE, FACE, TOP, EDGE, LABEL, METAL,
           SCREEN, SCREEN_LIT)


def mix(first, second, share):
    """The colour that lies `share` (0 to 1) of the way from `first` to `second`."""
    return tuple(a + (b - a) * share for a, b in zip(first, second))


def css(colour):
    return "#%02x%02x%02x" % tuple(min(255, max(0, round(channel))) for channel in colour)
