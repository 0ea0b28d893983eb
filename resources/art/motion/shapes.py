# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""SVG building blocks. Lengths are panel pixels; the picture is 408 x 128 of them.

Objects stand in an oblique projection: faces that look at the viewer are undistorted, so that port names stay
readable, and depth runs towards the lower right the nearer it comes.
"""

import math

from .colours import css, mix

DEPTH_X = 0.74
DEPTH_Y = 0.5
CORNER_STEPS = 8


def number(value):
    text = f"{value:.2f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def at_depth(point, depth):
    """Where a point of the picture plane lands when it is brought `depth` closer to the viewer."""
    return point[0] + depth * DEPTH_X, point[1] + depth * DEPTH_Y


def polygon(points, closed=True):
    path = "M" + "L".join(f"{number(x)} {number(y)}" for x, y in points)
    return path + "Z" if closed else path


def rounded_rectangle(x, y, width, height, radius):
    """The outline as points, clockwise, beginning at the top of the right upper corner."""
    centres = ((x + width - radius, y + radius, -90), (x + width - radius, y + height - radius, 0),
               (x + radius, y + height - radius, 90), (x + radius, y + radius, 180))
    points = []
    for centre_x, centre_y, start in centres:
        for step in range(CORNER_STEPS + 1):
            angle = math.radians(start + 90 * step / CORNER_STEPS)
            points.append((centre_x + radius * math.cos(angle), centre_y + radius * math.sin(angle)))
    return points


def centred(point, width, height, radius):
    return rounded_rectangle(point[0] - width / 2, point[1] - height / 2, width, height, radius)


def fill(points, colour, opacity=1.0):
    extra = f' fill-opacity="{number(opacity)}"' if opacity < 1 else ""
    return f'<path d="{polygon(points)}" fill="{css(colour)}"{extra}/>'


def stroke(path, colour, width, opacity=1.0, dashes=None):
    extra = f' stroke-opacity="{number(opacity)}"' if opacity < 1 else ""
    if dashes:
        extra += (f' stroke-dasharray="{" ".join(number(length) for length in dashes[0])}"'
                  f' stroke-dashoffset="{number(dashes[1])}"')
    return (f'<path d="{path}" fill="none" stroke="{css(colour)}" stroke-width="{number(width)}"'
            f' stroke-linecap="round" stroke-linejoin="round"{extra}/>')


def group(content, opacity=1.0):
    if opacity <= 0:
        return ""
    if opacity >= 1:
        return content
    return f'<g opacity="{number(opacity)}">{content}</g>'


def extrusion(outline, back, front, light, dark, tones=4):
    """The sides of a solid that see the light: its outline swept from depth `back` to depth `front`.

    Sides that look up are painted in `light`, sides that look left in `dark`, round corners in so many tones between.
    """
    pieces = []
    for (x1, y1), (x2, y2) in zip(outline, outline[1:] + outline[:1]):
        length = math.hypot(x2 - x1, y2 - y1)
        if length == 0:
            continue
        normal_x, normal_y = (y2 - y1) / length, (x1 - x2) / length
        if normal_x * DEPTH_X + normal_y * DEPTH_Y >= 0:
            continue
        colour = mix(dark, light, round(max(0.0, -normal_y) ** 2 * (tones - 1)) / (tones - 1))
        # Neighbours overlap by a hair: exact joints would let the background shine through.
        overlap = min(0.4, length)
        along = ((x2 - x1) / length * overlap, (y2 - y1) / length * overlap)
        quad = (at_depth((x1, y1), back), at_depth((x2 + along[0], y2 + along[1]), back),
                at_depth((x2 + along[0], y2 + along[1]), front), at_depth((x1, y1), front))
        pieces.append(fill(quad, colour))
    return "".join(pieces)


def cubic(start, control1, control2, end):
    return (f"M{number(start[0])} {number(start[1])}C{number(control1[0])} {number(control1[1])} "
            f"{number(control2[0])} {number(control2[1])} {number(end[0])} {number(end[1])}")


def cubic_length(start, control1, control2, end, steps=64):
    def point(share):
        rest = 1 - share
        weights = (rest ** 3, 3 * rest * rest * share, 3 * rest * share * share, share ** 3)
        return tuple(sum(weight * corner[axis] for weight, corner in zip(weights, (start, control1, control2, end)))
                     for axis in (0, 1))
    points = [point(step / steps) for step in range(steps + 1)]
    return sum(math.dist(a, b) for a, b in zip(points, points[1:]))
