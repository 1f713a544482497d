"""Draws the cursor images, each for one and for two pixels a point, as TIFF files.

usage: draw.py DIRECTORY

White with a black outline of one point, so that they can be seen on any ground. A shape is a function
from a point to its distance from the edge, negative inside; y points down.
"""

import math
import pathlib
import struct
import sys

POINTS = 24  # the width and height of every image
SAMPLES = 4  # in each direction, for a pixel


def capsule(x0, y0, x1, y1, radius):
    dx, dy = x1 - x0, y1 - y0

    def distance(x, y):
        along = ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)
        along = min(1, max(0, along))
        return math.hypot(x - x0 - along * dx, y - y0 - along * dy) - radius

    return distance


def polygon(*corners):
    edges = list(zip(corners, corners[1:] + corners[:1]))

    def distance(x, y):
        nearest, inside = math.inf, False
        for (x0, y0), (x1, y1) in edges:
            dx, dy = x1 - x0, y1 - y0
            along = ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)
            along = min(1, max(0, along))
            nearest = min(nearest, math.hypot(x - x0 - along * dx, y - y0 - along * dy))
            if (y0 > y) != (y1 > y) and x < x0 + (y - y0) / dy * dx:
                inside = not inside
        return -nearest if inside else nearest

    return distance


def union(*shapes):
    return lambda x, y: min(shape(x, y) for shape in shapes)


def grown(shape, by):
    return lambda x, y: shape(x, y) - by


def cross(x0, y0, arm, half):
    def distance(x, y):
        x, y = abs(x - x0), abs(y - y0)
        return min(max(x - arm, y - half), max(x - half, y - arm))

    return distance


def arrow_add():
    # The point of the black outline is at (1, 1), the hot spot.
    arrow = polygon((1, 1), (1, 17.6), (4.9, 13.9), (7.3, 19.5), (10.3, 18.2), (7.9, 12.7),
                    (13, 12.7))
    black = union(arrow, cross(18, 18, 5, 2))
    white = union(grown(arrow, -1), cross(18, 18, 4, 1))
    return black, white


def hand():
    # Between the fingers, where the outlines of two meet, stands a line one point wide.
    white = union(
        capsule(5.7, 5.2, 7, 13, 1.05),
        capsule(10, 3, 10, 13, 1.05),
        capsule(13, 3, 13, 13, 1.05),
        capsule(16.7, 5.2, 16, 13, 1.05),
        capsule(3, 12.4, 7, 17, 1.3),
        grown(polygon((7, 12.5), (16, 12.5), (16, 16), (14.5, 18.6), (14.5, 20), (8.5, 20),
                      (8.5, 18.6), (6.8, 16.4)), 1),
    )
    return grown(white, 1), white


def pixels(black, white, scale):
    """Rows of red, green, blue and alpha; the colours are not multiplied by alpha."""
    count = SAMPLES * SAMPLES
    for row in range(POINTS * scale):
        for column in range(POINTS * scale):
            covered = lit = 0
            for sample in range(count):
                x = (column + (sample % SAMPLES + 0.5) / SAMPLES) / scale
                y = (row + (sample // SAMPLES + 0.5) / SAMPLES) / scale
                is_white = white(x, y) < 0
                covered += is_white or black(x, y) < 0
                lit += is_white
            grey = round(255 * lit / covered) if covered else 0
            yield bytes((grey, grey, grey, round(255 * covered / count)))


def tiff(data, size, dots_per_inch):
    SHORT, LONG, RATIONAL = 3, 4, 5
    entries = 15
    after = 8 + 2 + 12 * entries + 4
    bits, resolution, strip = after, after + 8, after + 16

    def entry(tag, kind, count, value):
        # A short that fits stands in the first two bytes of its four.
        return struct.pack("<HHI", tag, kind, count) + struct.pack("<I", value)

    fields = [
        entry(254, LONG, 1, 0),
        entry(256, LONG, 1, size),  # width
        entry(257, LONG, 1, size),  # height
        entry(258, SHORT, 4, bits),  # bits of each sample
        entry(259, SHORT, 1, 1),  # not compressed
        entry(262, SHORT, 1, 2),  # red, green, blue
        entry(273, LONG, 1, strip),
        entry(274, SHORT, 1, 1),  # top row first
        entry(277, SHORT, 1, 4),  # samples a pixel
        entry(278, LONG, 1, size),  # rows in the strip
        entry(279, LONG, 1, len(data)),
        entry(282, RATIONAL, 1, resolution),
        entry(283, RATIONAL, 1, resolution),
        entry(296, SHORT, 1, 2),  # inches
        entry(338, SHORT, 1, 2),  # the fourth sample is alpha, and the others are not multiplied
    ]
    assert len(fields) == entries
    return (struct.pack("<2sHI", b"II", 42, 8) + struct.pack("<H", entries) + b"".join(fields) +
            struct.pack("<I", 0) + struct.pack("<4H", 8, 8, 8, 8) +
            struct.pack("<II", dots_per_inch, 1) + data)


directory = pathlib.Path(sys.argv[1])
for name, draw in (("arrow_add", arrow_add), ("hand", hand)):
    for scale, suffix in ((1, ""), (2, "@2x")):
        data = b"".join(pixels(*draw(), scale))
        (directory / f"{name}{suffix}.tiff").write_bytes(tiff(data, POINTS * scale, 72 * scale))
