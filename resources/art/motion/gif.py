# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""Packs frames as an animated GIF: one palette for all frames, no dithering, only the changed rectangle stored.

Frames are RGBA bytes of the same size, opaque, in the machine's byte order.
"""

import struct
from collections import Counter

# A colour that covers more than this share of a picture's pixels is kept exactly.
KEPT_SHARE = 0.002


def pixels(frame):
    return memoryview(frame).cast("I")


def channels(pixel):
    return pixel & 255, pixel >> 8 & 255, pixel >> 16 & 255


def colour_counts(frames, width):
    """How often each colour occurs; rows that repeat the frame before are left out."""
    counts = Counter()
    former = None
    for frame in frames:
        view = pixels(frame)
        for row in range(0, len(view), width):
            part = view[row:row + width]
            if former is None or part != former[row:row + width]:
                counts.update(part)
        former = view
    return counts


def split(box):
    """Halves a list of (channels, weight) at the weighted median of its widest channel."""
    spans = [max(c[axis] for c, _ in box) - min(c[axis] for c, _ in box) for axis in range(3)]
    axis = spans.index(max(spans))
    box.sort(key=lambda entry: (entry[0][axis], entry[0]))
    half, passed = sum(weight for _, weight in box) / 2, 0
    for index, (_, weight) in enumerate(box):
        passed += weight
        if passed >= half:
            cut = min(max(index, 1), len(box) - 1)
            return box[:cut], box[cut:]
    return box[:1], box[1:]


def spread(box):
    """How much a box would gain from being split: its widest channel, weighted by what it covers."""
    if len(box) < 2:
        return 0.0
    widest = max(max(c[axis] for c, _ in box) - min(c[axis] for c, _ in box) for axis in range(3))
    return widest ** 2 * sum(weight for _, weight in box) ** 0.5


def palette_for(counts, pinned, size):
    """At most `size` colours: the pinned ones, those of flat areas, and median-cut means for the edges."""
    total = sum(counts.values())
    flat = [channels(pixel) for pixel, count in sorted(counts.items(), key=lambda item: (-item[1], item[0]))
            if count > total * KEPT_SHARE]
    kept = list(dict.fromkeys([*pinned, *flat]))[:size // 2]
    rest = sorted((channels(pixel), count ** 0.5) for pixel, count in counts.items() if channels(pixel) not in kept)
    boxes = [rest] if rest else []
    while boxes and len(boxes) + len(kept) < size:
        widest = max(range(len(boxes)), key=lambda index: spread(boxes[index]))
        if spread(boxes[widest]) == 0.0:
            break
        boxes[widest:widest + 1] = split(boxes[widest])
    means = [tuple(round(sum(c[axis] * weight for c, weight in box) / sum(weight for _, weight in box))
                   for axis in range(3)) for box in boxes]
    return kept + means


class NearestColour(dict):
    """Pixel to palette index, worked out once per colour."""

    def __init__(self, palette):
        super().__init__()
        self.palette = palette

    def __missing__(self, pixel):
        red, green, blue = channels(pixel)
        distances = [(red - r) ** 2 + (green - g) ** 2 + (blue - b) ** 2 for r, g, b in self.palette]
        self[pixel] = distances.index(min(distances))
        return self[pixel]


def changed_rectangle(former, current, width):
    """Left, top, right and bottom (exclusive) of what differs; one pixel when nothing does."""
    rows = [row for row in range(0, len(current), width)
            if current[row:row + width] != former[row:row + width]]
    if not rows:
        return 0, 0, 1, 1
    left, right = width, 0
    for row in rows:
        differing = [x for x in range(width) if current[row + x] != former[row + x]]
        left, right = min(left, differing[0]), max(right, differing[-1] + 1)
    return left, rows[0] // width, right, rows[-1] // width + 1


def compressed(indices):
    """LZW with 8-bit symbols, cut into GIF sub-blocks."""
    clear, stop = 256, 257
    bits = filled = 0
    packed = bytearray()

    def emit(code, size):
        nonlocal bits, filled
        bits |= code << filled
        filled += size
        while filled >= 8:
            packed.append(bits & 255)
            bits >>= 8
            filled -= 8

    table, size, following = {}, 9, 258
    emit(clear, size)
    prefix = indices[0]
    for symbol in indices[1:]:
        code = table.get((prefix, symbol))
        if code is not None:
            prefix = code
            continue
        emit(prefix, size)
        table[prefix, symbol] = following
        following += 1
        prefix = symbol
        if following > 4095:
            emit(clear, size)
            table, size, following = {}, 9, 258
        elif following > 1 << size:
            size += 1
    emit(prefix, size)
    emit(stop, size)
    emit(0, 7)
    blocks = (packed[start:start + 255] for start in range(0, len(packed), 255))
    return b"\x08" + b"".join(bytes([len(block)]) + block for block in blocks) + b"\0"


def encode(frames, width, height, delay, pinned, size):
    """The GIF file.

    `delay` is the time of a frame in hundredths of a second; of the `size` colours, the `pinned` ones are exact.
    """
    palette = palette_for(colour_counts(frames, width), pinned, size)
    nearest = NearestColour(palette)
    table = b"".join(bytes(colour) for colour in palette).ljust(768, b"\0")
    parts = [b"GIF89a", struct.pack("<HHBBB", width, height, 0xF7, 0, 0), table,
             b"\x21\xff\x0bNETSCAPE2.0\x03\x01\0\0\0"]
    former = None
    for frame in frames:
        current = bytes(map(nearest.__getitem__, pixels(frame)))
        left, top, right, bottom = (0, 0, width, height) if former is None else changed_rectangle(
            former, current, width)
        cropped = b"".join(current[row * width + left:row * width + right] for row in range(top, bottom))
        parts.append(struct.pack("<BBBBHBB", 0x21, 0xF9, 4, 0x04, delay, 0, 0))
        parts.append(struct.pack("<BHHHHB", 0x2C, left, top, right - left, bottom - top, 0))
        parts.append(compressed(cropped))
        former = current
    return b"".join(parts) + b"\x3b"
