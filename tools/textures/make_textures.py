#!/usr/bin/env python3
"""Draws every picture the program loads: the cloud sprites of the sky, the sprite of a water particle,
the icons of the tools, menus and panels, the cursors, the tinted world pictures and the language flags.

Usage: make_textures.py OUTPUT_TEXTURE_DIR

Writes below the given folder: background/cloud0.png .. cloud{N-1}.png, simpleWater.png, cursors/*.png,
tools/*.png, popup/*.png, file/*.png, gui/*.png and *.tga, and ring, pen, arrow, rotate_origo, rightarrow and
blank; and the flags beside it, in ../language/. Everything is computed from a fixed seed, so that every build
makes the same pictures.
"""

import math
import os
import random
import struct
import sys
import zlib

import icons

CLOUD_COUNT = 4
CLOUD_SIZE = 128
WATER_SPRITE_SIZE = 64
CURSOR_SIZE = 32


def write_png(path, width, height, rows):
    """Writes an 8-bit RGBA PNG. `rows` is a list of rows from the top, each a list of (r, g, b, a)."""

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    raw = bytearray()
    for row in rows:
        raw.append(0)  # filter type "none" for every scanline
        for pixel in row:
            raw.extend(pixel)
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    data = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(raw), 9))
    data += chunk(b"IEND", b"")
    os.makedirs(os.path.dirname(path), exist_ok=True)
    tmp = path + ".tmp"
    with open(tmp, "wb") as out:
        out.write(data)
    os.replace(tmp, path)


def write_tga(path, width, height, rows):
    """Writes an uncompressed 32-bit TGA, rows from the top."""
    header = struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, width, height, 32, 8 | 0x20)
    body = bytearray()
    for row in rows:
        for (r, g, b, a) in row:
            body.extend((b, g, r, a))
    os.makedirs(os.path.dirname(path), exist_ok=True)
    tmp = path + ".tmp"
    with open(tmp, "wb") as out:
        out.write(header + bytes(body))
    os.replace(tmp, path)


def smoothstep(t):
    t = min(1.0, max(0.0, t))
    return t * t * (3.0 - 2.0 * t)


def value_noise(rng, cells):
    """A periodic grid of random values, read back with smooth interpolation: soft, cheap turbulence."""
    grid = [[rng.random() for _ in range(cells)] for _ in range(cells)]

    def sample(u, v):
        x, y = u * cells, v * cells
        x0, y0 = int(math.floor(x)), int(math.floor(y))
        fx, fy = smoothstep(x - x0), smoothstep(y - y0)
        a = grid[y0 % cells][x0 % cells]
        b = grid[y0 % cells][(x0 + 1) % cells]
        c = grid[(y0 + 1) % cells][x0 % cells]
        d = grid[(y0 + 1) % cells][(x0 + 1) % cells]
        return (a * (1 - fx) + b * fx) * (1 - fy) + (c * (1 - fx) + d * fx) * fy

    return sample


def cloud(seed, size):
    """One cloud: a cluster of soft round puffs, flatter at the bottom, shaded darker below, with ragged
    edges from two octaves of noise. Its alpha falls to 0 well inside the border so that sprites never
    show a square edge."""
    rng = random.Random(seed)
    puffs = []
    count = rng.randint(6, 10)
    for i in range(count):
        # Puffs spread along a horizontal band; the middle ones are biggest, like a heap.
        t = (i + 0.5) / count
        x = 0.22 + 0.56 * t + rng.uniform(-0.05, 0.05)
        middle = 1.0 - abs(t - 0.5) * 1.4
        radius = (0.10 + 0.10 * middle) * rng.uniform(0.85, 1.15)
        y = 0.55 - radius * rng.uniform(0.2, 0.9)
        puffs.append((x, y, radius))
    coarse = value_noise(rng, 6)
    fine = value_noise(rng, 14)

    rows = []
    for j in range(size):
        v = (j + 0.5) / size
        row = []
        for i in range(size):
            u = (i + 0.5) / size
            density = 0.0
            for (px, py, pr) in puffs:
                d2 = ((u - px) ** 2 + (v - py) ** 2) / (pr * pr)
                density += math.exp(-2.2 * d2)
            density *= 0.75 + 0.35 * coarse(u, v) + 0.15 * fine(u, v)
            # A flat base: cut the field off below the band.
            density *= 1.0 - smoothstep((v - 0.62) / 0.12)
            # Fade to nothing near the border of the picture.
            edge = min(u, v, 1.0 - u, 1.0 - v)
            density *= smoothstep(edge / 0.12)
            alpha = smoothstep((density - 0.25) / 0.6)
            # Lit from above: the underside is a little grey-blue.
            shade = 1.0 - 0.22 * smoothstep((v - 0.35) / 0.3)
            r = int(round(255 * shade))
            g = int(round(255 * (shade * 0.99 + 0.01)))
            b = int(round(255 * min(1.0, shade * 1.03 + 0.02)))
            row.append((r, g, b, int(round(alpha * 255))))
        rows.append(row)
    return rows


def water_sprite(size):
    """A round sprite with a smooth fall-off: 3t^2 - 2t^3 of t = 1 - r, in all four channels."""
    rows = []
    for j in range(size):
        v = 2.0 * j / (size - 1) - 1.0
        row = []
        for i in range(size):
            u = 2.0 * i / (size - 1) - 1.0
            r = math.sqrt(u * u + v * v)
            t = 1.0 - r
            value = 0 if r > 1.0 else int(math.floor((3 * t * t - 2 * t * t * t) * 255 + 0.5))
            row.append((value, value, value, value))
        rows.append(row)
    return rows


def cursor(size):
    """A white cross with a black rim, its centre at the middle of the picture: the interface draws a
    cursor centred on the mouse, so the hot spot is the middle."""
    centre = (size - 1) / 2.0
    arm = size / 2.0 - 2.0
    rows = []
    for j in range(size):
        row = []
        for i in range(size):
            dx, dy = abs(i - centre), abs(j - centre)
            # Distance outside the cross of two bars 3 pixels thick, rounded at their ends, in pixels.
            bar_x = max(dx - 1.5, 0.0) if dy <= arm else math.hypot(max(dx - 1.5, 0.0), dy - arm)
            bar_y = max(dy - 1.5, 0.0) if dx <= arm else math.hypot(max(dy - 1.5, 0.0), dx - arm)
            outside = min(bar_x, bar_y)
            if outside <= 0.0:
                row.append((255, 255, 255, 255))
            elif outside <= 1.5:
                row.append((0, 0, 0, 255))
            else:
                row.append((0, 0, 0, 0))
        rows.append(row)
    return rows


def main(argv):
    if len(argv) != 2:
        sys.stderr.write(__doc__)
        return 2
    out = argv[1]
    for index in range(CLOUD_COUNT):
        write_png(os.path.join(out, "background", "cloud%d.png" % index), CLOUD_SIZE, CLOUD_SIZE,
                  cloud(1000 + index, CLOUD_SIZE))
    write_png(os.path.join(out, "simpleWater.png"), WATER_SPRITE_SIZE, WATER_SPRITE_SIZE,
              water_sprite(WATER_SPRITE_SIZE))
    write_png(os.path.join(out, "cursors", "mouse.png"), CURSOR_SIZE, CURSOR_SIZE, cursor(CURSOR_SIZE))
    write_interface_pictures(out)
    return 0


# Sizes in pixels: toolbar icons show at 32, the panner and zoomer at 48, menu icons at 16 (drawn larger and
# mipmapped down, so that a larger interface scale stays sharp).
TOOL_ICON_SIZE = 48
MENU_ICON_SIZE = 32
GUI_PICTURE_SIZE = 32
FLAG_HEIGHT = 32
FLAG_WIDTH = 48
# Check boxes and radio buttons are asked for by their TGA names.
TGA_PICTURES = ("checkbox-off", "checkbox-on", "checkbox-unknown", "radio-off", "radio-on")


def write_interface_pictures(out):
    for folder, pictures, size in (("tools", icons.tool_pictures(), TOOL_ICON_SIZE),
                                   ("popup", icons.popup_pictures(), MENU_ICON_SIZE),
                                   ("file", icons.file_pictures(), MENU_ICON_SIZE),
                                   ("cursors", icons.cursor_pictures(), CURSOR_SIZE)):
        for name, layers in pictures.items():
            write_png(os.path.join(out, folder, name + ".png"), size, size, icons.draw(size, *layers))
    for name, layers in icons.gui_pictures().items():
        rows = icons.draw(GUI_PICTURE_SIZE, *layers)
        if name in TGA_PICTURES:
            write_tga(os.path.join(out, "gui", name + ".tga"), GUI_PICTURE_SIZE, GUI_PICTURE_SIZE, rows)
        else:
            write_png(os.path.join(out, "gui", name + ".png"), GUI_PICTURE_SIZE, GUI_PICTURE_SIZE, rows)
    for name, (size, layers) in icons.world_pictures().items():
        write_png(os.path.join(out, name + ".png"), size, size, icons.draw(size, *layers))
    language = os.path.join(os.path.dirname(os.path.normpath(out)), "language")
    for name, flag in (("english", icons.flag_english), ("german", icons.flag_german)):
        write_png(os.path.join(language, name + ".png"), FLAG_WIDTH, FLAG_HEIGHT, flag(FLAG_WIDTH, FLAG_HEIGHT))


if __name__ == "__main__":
    sys.exit(main(sys.argv))
