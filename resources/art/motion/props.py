# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""What a device is connected with and to: plugs, cables, the computer, the power adapter."""

from dataclasses import dataclass

from . import colours
from .colours import mix
from .lettering import lettering
from .shapes import (at_depth, centred, cubic, cubic_length, extrusion, fill, group, polygon, rounded_rectangle,
                     stroke)


@dataclass(frozen=True)
class PlugShape:
    tip: tuple  # width, height, corner radius of the metal part
    grip: tuple
    tip_length: float
    grip_length: float


PLUGS = {
    "usb-c": PlugShape((14, 4.6, 2.3), (21, 11, 4), 9, 25),
    "dc": PlugShape((7, 7, 3.5), (14, 14, 7), 11, 25),
}
BAND_LENGTH = 5


def tail(port, distance):
    """Where the cable leaves a plug whose grip is `distance` in front of its port."""
    return at_depth(port.centre, distance + PLUGS[port.kind].grip_length)


def plug_drawing(port, distance, accent):
    """A plug whose grip is `distance` in front of its port; at 0 it touches the rim and the tip is inside."""
    shape = PLUGS[port.kind]
    tip, grip = centred(port.centre, *shape.tip), centred(port.centre, *shape.grip)
    band_end, end = distance + BAND_LENGTH, distance + shape.grip_length
    return "".join((
        extrusion(tip, max(0.0, distance - shape.tip_length), distance, colours.METAL, colours.EDGE),
        extrusion(grip, distance, band_end, accent, mix(accent, colours.BACKGROUND, 0.45)),
        extrusion(grip, band_end, end, colours.EDGE, colours.SIDE),
        fill([at_depth(point, end) for point in grip], colours.LINE)))


CABLE_WIDTH = 3
PULSE_WIDTH = CABLE_WIDTH + 0.7  # covers the cable and its soft edge, which would show as a grey rim


@dataclass(frozen=True)
class Cable:
    """A cable that lies still from its socket to a resting point and bends from there to a plug."""
    start: tuple
    rest: tuple
    end: tuple

    @property
    def near_curve(self):
        (x, y), (rest_x, rest_y) = self.start, self.rest
        slack = min(16.0, (rest_x - x) * 0.4)
        swing = max(18.0, (rest_x - x) * 0.5)
        return self.start, (x + slack, y + slack * 0.9), (rest_x - swing, rest_y), self.rest

    @property
    def far_curve(self):
        (x, y), (end_x, end_y) = self.rest, self.end
        return self.rest, (x + (end_x - x) * 0.65, y), (end_x - (end_x - x) * 0.35, end_y), self.end

    def near(self):
        """The part that follows the plug."""
        return stroke(cubic(*self.near_curve), colours.EDGE, CABLE_WIDTH)

    def far(self):
        return stroke(cubic(*self.far_curve), colours.EDGE, CABLE_WIDTH)

    def pulse(self, colour, share, trail=18):
        """A short light on its way from the device (0) to the other end (1)."""
        length = cubic_length(*self.near_curve) + cubic_length(*self.far_curve)
        head = share * (length + trail)
        start, stop = max(0.0, head - trail), min(length, head)
        if stop - start < 0.5:
            return ""
        whole = cubic(*self.near_curve) + "L" + cubic(*self.far_curve)[1:]
        return stroke(whole, colour, PULSE_WIDTH, dashes=((stop - start, length * 2), -start))


@dataclass(frozen=True)
class Laptop:
    """The computer, by the left upper corner of its lid."""
    x: float
    y: float
    width = 70
    height = 46

    def socket(self, index):
        """Where a cable enters on the left; 0 is the one farther back."""
        return ((self.x - 2, self.y + self.height + 4), (self.x - 7.5, self.y + self.height + 15))[index]

    def drawing(self, lit, device):
        """`lit` (0 to 1) wakes its screen, which then shows the device it has found."""
        x, y, width, height = self.x, self.y, self.width, self.height
        hinge, front = y + height + 2, y + height + 16
        lid = rounded_rectangle(x, y, width, height, 4)
        glass = rounded_rectangle(x + 4, y + 4, width - 8, height - 8, 2)
        deck = [(x - 1, hinge), (x + width + 1, hinge), (x + width + 8, front), (x - 8, front)]
        keys = [(x + 6, hinge + 3), (x + width - 6, hinge + 3), (x + width - 3, hinge + 9), (x + 3, hinge + 9)]
        return "".join((
            fill(lid, colours.LINE), stroke(polygon(lid), colours.EDGE, 1),
            fill(glass, mix(colours.SCREEN, colours.SCREEN_LIT, lit)),
            group(screen_badge((x + width / 2, y + height / 2), device), lit),
            fill(deck, colours.FACE), stroke(polygon(deck), colours.EDGE, 1), fill(keys, colours.SIDE),
            fill(rounded_rectangle(x - 10, front, width + 20, 5, 2.5), colours.TOP)))


def screen_badge(centre, device):
    """The device as the computer names it once it is connected."""
    outline = centred(centre, device.width / 5, 18, device.radius / 2.5)
    return (stroke(polygon(outline), colours.TEAL, 1.6)
            + lettering(device.badge, centre, 8, 1.6, colours.TEAL))


@dataclass(frozen=True)
class Adapter:
    """The power adapter, by its left upper corner."""
    x: float
    y: float
    width = 34
    height = 28

    @property
    def socket(self):
        return self.x, self.y + self.height * 0.75

    def drawing(self, lit):
        x, y, width, height = self.x, self.y, self.width, self.height
        box = rounded_rectangle(x, y, width, height, 5)
        bolt = [(x + width / 2 + dx, y + height / 2 + dy)
                for dx, dy in ((1.5, -9), (-5.5, 1.5), (-0.8, 1.5), (-1.5, 9), (5.5, -1.5), (0.8, -1.5))]
        prongs = "".join(fill(rounded_rectangle(x + width, y + offset, 9, 3.4, 1.2), colours.EDGE)
                         for offset in (7, 17.6))
        return (prongs + fill(box, colours.LINE) + stroke(polygon(box), colours.EDGE, 1)
                + fill(bolt, mix(colours.LABEL, colours.AMBER, lit)))
