# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""Port names as single-stroke lettering, so that no font has to be installed to draw them.

Every letter stands on a cap height of 8 units with y running down; the number is its advance width.
"""

from .shapes import css, number

CAP_HEIGHT = 8.0
TRACKING = 1.9

LETTERS = {
    "-": (3.2, "M.3 4.3H2.9"),
    "1": (2.6, "M.4 1.6L2.4 0V8"),
    "2": (5.0, "M.2 2C.4 .8 1.3 0 2.5 0C3.9 0 4.8 .9 4.8 2.2C4.8 3.3 4.2 4.1 3 5.3L.2 8H5"),
    "5": (4.8, "M4.4 0H.9L.5 3.7C1 3.2 1.7 2.9 2.4 2.9C3.8 2.9 4.8 3.9 4.8 5.4C4.8 7 3.7 8 2.3 8C1.3 8 .5 7.5 0 6.7"),
    "B": (5.1, "M0 0H2.6C4 0 4.7 .8 4.7 1.9S4 3.8 2.6 3.8H0M2.6 3.8C4.2 3.8 5.1 4.6 5.1 5.9S4.2 8 2.6 8H0V0"),
    "C": (5.0, "M5 1.6C4.5 .6 3.7 0 2.7 0C.9 0 0 1.7 0 4S.9 8 2.7 8C3.7 8 4.5 7.4 5 6.4"),
    "D": (5.4, "M0 0H2C4.4 0 5.4 1.7 5.4 4S4.4 8 2 8H0Z"),
    "G": (5.4, "M5.2 1.6C4.7 .6 3.9 0 2.8 0C1 0 0 1.6 0 4S1 8 2.8 8C4.5 8 5.4 6.9 5.4 4.5H3.2"),
    "L": (4.2, "M0 0V8H4.2"),
    "O": (5.8, "M2.9 0C1.1 0 0 1.6 0 4S1.1 8 2.9 8S5.8 6.4 5.8 4S4.7 0 2.9 0Z"),
    "R": (5.1, "M0 8V0H2.7C4.2 0 5 .8 5 2.2S4.2 4.4 2.7 4.4H0M2.6 4.4L5.1 8"),
    "S": (4.9, "M4.7 1.5C4.3 .5 3.5 0 2.5 0C1.1 0 .2 .8 .2 2C.2 3.3 1.2 3.7 2.5 4C3.9 4.3 4.9 4.8 4.9 6.1"
               "C4.9 7.3 3.9 8 2.5 8C1.3 8 .4 7.4 0 6.3"),
    "T": (5.2, "M0 0H5.2M2.6 0V8"),
    "U": (5.2, "M0 0V5.2C0 7 1 8 2.6 8S5.2 7 5.2 5.2V0"),
    "V": (5.4, "M0 0L2.7 8L5.4 0"),
}


def lettering(text, centre, cap_height, weight, colour):
    """`text` centred on a point; `weight` is the stroke in pixels of the panel."""
    scale = cap_height / CAP_HEIGHT
    advance = sum(LETTERS[letter][0] for letter in text) + TRACKING * (len(text) - 1)
    x = centre[0] - advance * scale / 2
    y = centre[1] - cap_height / 2
    pieces = []
    for letter in text:
        width, path = LETTERS[letter]
        pieces.append(f'<path transform="translate({number(x)} {number(y)}) scale({scale:.4f})" d="{path}"/>')
        x += (width + TRACKING) * scale
    return (f'<g fill="none" stroke="{css(colour)}" stroke-width="{number(weight / scale)}" stroke-linecap="round"'
            f' stroke-linejoin="round">{"".join(pieces)}</g>')
