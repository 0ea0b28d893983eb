# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""What happens in each animation, and when. Times are seconds from the start of the loop."""

from dataclasses import dataclass

from . import colours
from .colours import css, mix
from .devices import R1, R2, Device, device_drawing
from .props import PLUGS, Adapter, Cable, Laptop, plug_drawing, tail
from .shapes import at_depth, group, polygon, stroke

WIDTH, HEIGHT = 408, 128
LOOP = 3.0
SHADES = 200  # colours of a picture, those of its edges included

AWAY = 46.0  # how far in front of its port a plug waits
LIGHT_TIME = 0.18
PULSE_PERIOD = 0.6  # divides LOOP, so that a cable that stays connected pulses across the seam
FADE_OUT, FADE_OUT_TIME = 2.64, 0.12
FADE_IN, FADE_IN_TIME = 2.76, 0.18
GUIDE_START = 11.0  # clear of the port it leads to
DOT_GAP = 4.0
DOT_STEPS = 8  # how many gaps the dotted line advances in a loop


@dataclass(frozen=True)
class Connection:
    port: str
    socket: tuple
    rest: tuple
    departs: float = None  # None: connected all the time
    travel: float = 0.54
    power: bool = False

    @property
    def accent(self):
        return colours.AMBER if self.power else colours.BLUE

    @property
    def seated(self):
        return 0.0 if self.departs is None else self.departs + self.travel


@dataclass(frozen=True)
class Story:
    device: Device
    laptop: Laptop
    connections: tuple
    adapter: Adapter = None

    @property
    def complete(self):
        return max(connection.seated for connection in self.connections)


LONE_LAPTOP = Laptop(300.5, 24.5)
UPPER_LAPTOP = Laptop(318.5, 10.5)
ADAPTER = Adapter(322.5, 91.5)

STORIES = {
    "pc": Story(R1, LONE_LAPTOP, (
        Connection("USB-C", LONE_LAPTOP.socket(0), (252, 115), departs=0.36, travel=0.66),)),
    "pc_otg": Story(R1, LONE_LAPTOP, (
        Connection("USB-C", LONE_LAPTOP.socket(0), (240, 103)),
        Connection("OTG", LONE_LAPTOP.socket(1), (238, 118), departs=0.36, travel=0.66))),
    "dc5v_pc": Story(R2, UPPER_LAPTOP, (
        Connection("DC-5V", ADAPTER.socket, (174, 121), departs=0.3, power=True),
        Connection("USB-C", UPPER_LAPTOP.socket(0), (252, 107), departs=0.81)), ADAPTER),
    "dc5v_otg": Story(R2, UPPER_LAPTOP, (
        Connection("DC-5V", ADAPTER.socket, (174, 121), departs=0.3, power=True),
        Connection("OTG", UPPER_LAPTOP.socket(0), (224, 109), departs=0.81)), ADAPTER),
}


def ramp(time, start, duration):
    """0 before `start`, 1 after `start + duration`, smooth in between."""
    share = min(1.0, max(0.0, (time - start) / duration))
    return share * share * (3 - 2 * share)


def faded(time):
    """How far what was achieved has gone again."""
    return ramp(time, FADE_OUT, FADE_OUT_TIME)


def distance(connection, time):
    if connection.departs is None:
        return 0.0
    if time >= FADE_IN:
        return AWAY
    return AWAY * (1.0 - ramp(time, connection.departs, connection.travel))


def light(connection, time):
    if connection.departs is None:
        return 1.0
    return ramp(time, connection.seated, LIGHT_TIME) * (1.0 - faded(time))


def pulse(story, connection, cable, time):
    """Once everything is connected, power runs to the device and data to the computer."""
    elapsed = time - (connection.seated if connection.departs is None else story.complete)
    if elapsed < 0 or connection.departs is not None and time > FADE_OUT:
        return ""
    share = elapsed % PULSE_PERIOD / PULSE_PERIOD
    return cable.pulse(*((colours.AMBER, 1.0 - share) if connection.power else (colours.TEAL, share)))


def connection_drawing(story, connection, time):
    """At the end the plug fades and comes back where it began: pulled out, it would tell the wrong story."""
    port = story.device.port(connection.port)
    gap = distance(connection, time)
    cable = Cable(tail(port, gap), connection.rest, connection.socket)
    moving = plug_drawing(port, gap, connection.accent) + cable.near() + guide(port, connection, gap, time)
    presence = 1.0 if connection.departs is None else 1.0 - faded(time) + ramp(time, FADE_IN, FADE_IN_TIME)
    return cable.far() + group(moving, presence) + pulse(story, connection, cable, time)


def guide(port, connection, gap, time):
    """Dots that run from the waiting plug to its port."""
    tip = PLUGS[port.kind].tip_length
    if gap - tip - 2 <= GUIDE_START:
        return ""
    path = polygon((at_depth(port.centre, GUIDE_START), at_depth(port.centre, gap - tip - 2)), closed=False)
    dots = ((0.01, DOT_GAP - 0.01), time / LOOP * DOT_STEPS * DOT_GAP)
    return stroke(path, connection.accent, 1.6, dashes=dots)


def recognised(story, time):
    """How far the computer has noticed the device: once the first pulse has arrived."""
    return ramp(time, story.complete + PULSE_PERIOD * 0.9, LIGHT_TIME) * (1.0 - faded(time))


def frame(story, time):
    """The picture at a moment of the loop, as an SVG document."""
    lights = {connection.port: light(connection, time) for connection in story.connections}
    states = {connection.port: (mix(connection.accent, colours.TEAL, lights[connection.port]),
                                lights[connection.port]) for connection in story.connections}
    content = [device_drawing(story.device, states)]
    content += [connection_drawing(story, connection, time) for connection in story.connections]
    content.append(story.laptop.drawing(recognised(story, time), story.device))
    if story.adapter:
        content.append(story.adapter.drawing(lights["DC-5V"]))
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH * 3}" height="{HEIGHT * 3}"'
            f' viewBox="0 0 {WIDTH} {HEIGHT}"><rect width="{WIDTH}" height="{HEIGHT}"'
            f' fill="{css(colours.BACKGROUND)}"/>{"".join(content)}</svg>')
