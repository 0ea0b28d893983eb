# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""The backs of the two devices: one family, two bodies."""

from dataclasses import dataclass

from . import colours
from .colours import mix
from .lettering import lettering
from .shapes import CORNER_STEPS, centred, extrusion, fill, polygon, rounded_rectangle, stroke


@dataclass(frozen=True)
class Port:
    name: str
    kind: str  # "usb-c", "dc" or "jack"
    x: float
    y: float

    @property
    def centre(self):
        return self.x, self.y


@dataclass(frozen=True)
class Device:
    badge: str
    badge_centre: tuple
    x: float
    y: float
    width: float
    height: float
    radius: float
    depth: float
    feet: float  # height of the feet, 0 without
    ports: tuple

    def port(self, name):
        return next(port for port in self.ports if port.name == name)

    @property
    def outline(self):
        return rounded_rectangle(self.x, self.y, self.width, self.height, self.radius)


R1 = Device("R1", (70, 65), 47.5, 40.5, 154, 49, 13, 26, 0, (
    Port("L", "jack", 95, 73), Port("R", "jack", 115, 73),
    Port("OTG", "usb-c", 142, 73), Port("USB-C", "usb-c", 178, 73)))
R2 = Device("R2", (50, 61), 27.5, 32.5, 206, 57, 6, 28, 4, (
    Port("DC-5V", "dc", 86, 70), Port("OTG", "usb-c", 126, 70), Port("USB-C", "usb-c", 164, 70),
    Port("L", "jack", 194, 70), Port("R", "jack", 216, 70)))

# Opening of a port: width, height, corner radius.
OPENINGS = {"usb-c": (17, 7, 3.5), "dc": (13, 13, 6.5), "jack": (14, 14, 7)}
LABEL_RISE = 17


def halo(outline, colour, strength):
    path = polygon(outline)
    return "".join(stroke(path, colour, width, strength * share)
                   for width, share in ((11, 0.10), (8, 0.14), (5, 0.22)))


def port_drawing(port, rim, rim_width, glow):
    """One port; `rim` is the colour around its opening, `glow` (0 to 1) how far it is lit."""
    outline = centred(port.centre, *OPENINGS[port.kind])
    pieces = [halo(outline, colours.TEAL, glow) if glow > 0 else "",
              fill(outline, colours.OPENING), stroke(polygon(outline), rim, rim_width)]
    if port.kind == "usb-c":
        pieces.append(fill(centred(port.centre, 9, 1.6, 0.8), colours.LINE))
    elif port.kind == "dc":
        pieces.append(fill(centred(port.centre, 3.4, 3.4, 1.7), colours.EDGE))
    else:
        pieces.append(fill(centred(port.centre, 5, 5, 2.5), colours.BACKGROUND))
    return "".join(pieces)


def body(device):
    outline = device.outline
    feet = "".join(fill(rounded_rectangle(x, device.y + device.height - 4, 26, 4 + device.feet, 2), colours.OPENING)
                   for x in (device.x + 14, device.x + device.width - 40) if device.feet)
    return "".join((
        feet,
        extrusion(outline, -device.depth, 0, colours.TOP, colours.SIDE, tones=CORNER_STEPS),
        fill(outline, colours.FACE),
        stroke(polygon(outline), colours.EDGE, 1),
        lettering(device.badge, device.badge_centre, 12, 2, colours.LABEL)))


def device_drawing(device, states):
    """The device; `states` maps the names of the ports in use to (rim colour, glow)."""
    pieces = [body(device)]
    for port in device.ports:
        in_use = port.name in states
        rim, glow = states[port.name] if in_use else (colours.EDGE, 0.0)
        pieces.append(port_drawing(port, rim, 1.8 if in_use else 1, glow))
        text = mix(colours.WHITE, colours.TEAL, glow) if in_use else colours.LABEL
        pieces.append(lettering(port.name, (port.x, port.y - LABEL_RISE), 7, 1.3, text))
    return "".join(pieces)

