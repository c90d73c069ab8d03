#!/usr/bin/env python3
"""Draws the window icon of Qlex: a ball and a tilted crate above a wave of water, under a sky.

Writes an uncompressed 24-bit BMP (the format SDL_LoadBMP reads everywhere). Each pixel is the mean of
SUPERSAMPLE x SUPERSAMPLE samples, which smooths the edges without any image library.

Usage: make_icon.py OUTPUT.bmp [SIZE]
"""
import math
import struct
import sys

SUPERSAMPLE = 4

SKY_TOP = (0.33, 0.60, 0.92)
SKY_BOTTOM = (0.78, 0.89, 0.99)
WATER_TOP = (0.16, 0.48, 0.86)
WATER_BOTTOM = (0.05, 0.22, 0.55)
BALL = (0.95, 0.55, 0.12)
CRATE = (0.55, 0.80, 0.25)
OUTLINE = (0.10, 0.10, 0.12)


def mix(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def water_level(x):
    """Height of the water surface at x, both in units of the icon (0 top, 1 bottom)."""
    return 0.70 + 0.045 * math.sin(x * 2.0 * math.pi * 1.5 + 0.6)


def in_ball(x, y, inner):
    cx, cy, r = 0.32, 0.50, 0.17
    r = r - 0.035 if inner else r
    return (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def in_crate(x, y, inner):
    cx, cy, half, angle = 0.68, 0.38, 0.15, math.radians(20.0)
    half = half - 0.035 if inner else half
    dx, dy = x - cx, y - cy
    u = dx * math.cos(angle) + dy * math.sin(angle)
    v = -dx * math.sin(angle) + dy * math.cos(angle)
    return abs(u) <= half and abs(v) <= half


def sample(x, y):
    """Colour of the scene at a point; later layers cover earlier ones."""
    colour = mix(SKY_TOP, SKY_BOTTOM, y)
    for inside in (in_ball, in_crate):
        if inside(x, y, False):
            colour = OUTLINE
        if inside(x, y, True):
            colour = BALL if inside is in_ball else CRATE
    level = water_level(x)
    if y >= level:
        # The water is see-through at the top and darkens with depth.
        depth = (y - level) / (1.0 - level + 1e-9)
        colour = mix(colour, mix(WATER_TOP, WATER_BOTTOM, depth), 0.8)
    return colour


def render(size):
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            total = [0.0, 0.0, 0.0]
            for sy in range(SUPERSAMPLE):
                for sx in range(SUPERSAMPLE):
                    c = sample((px + (sx + 0.5) / SUPERSAMPLE) / size, (py + (sy + 0.5) / SUPERSAMPLE) / size)
                    total = [t + v for t, v in zip(total, c)]
            n = SUPERSAMPLE * SUPERSAMPLE
            row.append(tuple(max(0, min(255, int(round(255.0 * t / n)))) for t in total))
        rows.append(row)
    return rows


def bmp_bytes(rows):
    height, width = len(rows), len(rows[0])
    stride = (width * 3 + 3) & ~3  # rows are padded to whole 32-bit words
    pixels = bytearray()
    for row in reversed(rows):  # BMP stores the bottom row first
        for r, g, b in row:
            pixels += bytes((b, g, r))
        pixels += bytes(stride - width * 3)
    header_size = 14 + 40
    file_header = struct.pack("<2sIHHI", b"BM", header_size + len(pixels), 0, 0, header_size)
    info_header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return file_header + info_header + bytes(pixels)


def main(argv):
    if len(argv) not in (2, 3):
        sys.stderr.write(__doc__)
        return 2
    size = int(argv[2]) if len(argv) == 3 else 32
    with open(argv[1], "wb") as f:
        f.write(bmp_bytes(render(size)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
