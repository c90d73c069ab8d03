#!/usr/bin/env python3
"""Draws the icon of Qlex: a ball and a tilted crate above a wave of water, under a sky.

OUTPUT.bmp: the window icon, an uncompressed 24-bit BMP (the format SDL_LoadBMP reads everywhere), square
to its edges. OUTPUT.png: the icon of the desktop's menus, a 32-bit PNG in which the picture is a tile with
rounded corners, transparent around it, as desktop icons are drawn. Each pixel is the mean of a grid of
samples, which smooths the edges without any image library.

Usage: make_icon.py OUTPUT.bmp|OUTPUT.png [SIZE]
"""
import math
import os
import struct
import sys
import zlib

# Samples per pixel along each axis. Large icons have small pixels, whose edges need fewer samples; pure
# Python pays for every sample.
SUPERSAMPLE_SMALL = 4
SUPERSAMPLE_LARGE = 2
LARGE_FROM = 128

# The tile of the desktop icon, in units of the icon: desktops draw icons without a margin of their own, so
# the tile keeps one, and its corners are rounded.
TILE_MARGIN = 1.0 / 32.0
TILE_RADIUS = 0.17
TILE_BORDER = 0.018

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


def tile_distance(x, y):
    """Distance of a point outside the rounded tile to its edge; zero or less inside."""
    low, high = TILE_MARGIN + TILE_RADIUS, 1.0 - TILE_MARGIN - TILE_RADIUS
    dx = max(low - x, 0.0, x - high)
    dy = max(low - y, 0.0, y - high)
    return math.hypot(dx, dy) - TILE_RADIUS


def tile_sample(x, y):
    """Colour and coverage of the desktop icon at a point: the scene inside a bordered, rounded tile."""
    # The tile's coordinates map its inside onto the whole scene, so that nothing of the picture is cut.
    scale = 1.0 - 2.0 * TILE_MARGIN
    distance = tile_distance(x, y)
    if distance > 0.0:
        return None
    if distance > -TILE_BORDER:
        return OUTLINE
    return sample((x - TILE_MARGIN) / scale, (y - TILE_MARGIN) / scale)


def supersample_of(size):
    return SUPERSAMPLE_LARGE if size >= LARGE_FROM else SUPERSAMPLE_SMALL


def render(size, sampler):
    """Rows of (r, g, b, a) in 0..255. A sampler returns a colour, or None where the icon is transparent."""
    grid = supersample_of(size)
    n = grid * grid
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            total = [0.0, 0.0, 0.0]
            covered = 0
            for sy in range(grid):
                for sx in range(grid):
                    c = sampler((px + (sx + 0.5) / grid) / size, (py + (sy + 0.5) / grid) / size)
                    if c is not None:
                        total = [t + v for t, v in zip(total, c)]
                        covered += 1
            # Colour is the mean over the covered samples, so that an edge fades out instead of darkening.
            colour = tuple(max(0, min(255, int(round(255.0 * t / max(covered, 1))))) for t in total)
            row.append(colour + (int(round(255.0 * covered / n)),))
        rows.append(row)
    return rows


def bmp_bytes(rows):
    height, width = len(rows), len(rows[0])
    stride = (width * 3 + 3) & ~3  # rows are padded to whole 32-bit words
    pixels = bytearray()
    for row in reversed(rows):  # BMP stores the bottom row first
        for r, g, b, _ in row:
            pixels += bytes((b, g, r))
        pixels += bytes(stride - width * 3)
    header_size = 14 + 40
    file_header = struct.pack("<2sIHHI", b"BM", header_size + len(pixels), 0, 0, header_size)
    info_header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return file_header + info_header + bytes(pixels)


def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)


def png_bytes(rows):
    height, width = len(rows), len(rows[0])
    raw = bytearray()
    for row in rows:
        raw.append(0)  # each scan line starts with its filter type: none
        for pixel in row:
            raw += bytes(pixel)
    # 8 bits per channel, colour type 6 (RGBA), deflate, standard filters, no interlace.
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header) + png_chunk(b"IDAT", zlib.compress(bytes(raw), 9)) +
            png_chunk(b"IEND", b""))


def main(argv):
    if len(argv) not in (2, 3):
        sys.stderr.write(__doc__)
        return 2
    output = argv[1]
    size = int(argv[2]) if len(argv) == 3 else 32
    if output.lower().endswith(".png"):
        data = png_bytes(render(size, tile_sample))
    elif output.lower().endswith(".bmp"):
        data = bmp_bytes(render(size, sample))
    else:
        sys.stderr.write("make_icon.py: the output must end in .bmp or .png: " + output + "\n")
        return 2
    # Written whole under another name first: a build stopped halfway leaves no broken icon behind.
    with open(output + ".part", "wb") as f:
        f.write(data)
    os.replace(output + ".part", output)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
