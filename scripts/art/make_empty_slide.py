#!/usr/bin/env python3
"""Writes data/resources/200.bmp, the picture that stands for a slide without a picture of its
own: 160 by 120 pixels, 8 bits per pixel with a 256-colour palette, a white page with a thin
light-grey frame. Plain BITMAPINFOHEADER (no V4/V5 header), so every reader takes it.

Usage: scripts/art/make_empty_slide.py [output path]
"""
import os
import struct
import sys

WIDTH, HEIGHT = 160, 120


def palette():
    # The 6x6x6 colour cube, then a ramp of greys; 256 entries in BGRx order.
    entries = []
    for r in range(6):
        for g in range(6):
            for b in range(6):
                entries.append((b * 51, g * 51, r * 51))
    while len(entries) < 256:
        level = (len(entries) - 216) * 255 // 39
        entries.append((level, level, level))
    return entries


def index_of(entries, rgb):
    r, g, b = rgb
    return entries.index((b, g, r))


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "..", "data", "resources", "200.bmp")
    entries = palette()
    white = index_of(entries, (255, 255, 255))
    frame = index_of(entries, (204, 204, 204))

    stride = (WIDTH + 3) & ~3
    rows = []
    for y in range(HEIGHT):  # bottom row first
        row = bytearray([white] * WIDTH)
        if y in (0, HEIGHT - 1):
            row = bytearray([frame] * WIDTH)
        else:
            row[0] = frame
            row[WIDTH - 1] = frame
        row += bytes(stride - WIDTH)
        rows.append(bytes(row))
    pixels = b"".join(rows)

    colour_table = b"".join(struct.pack("<BBBB", b, g, r, 0) for (b, g, r) in entries)
    offset = 14 + 40 + len(colour_table)
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 8, 0, len(pixels), 2835, 2835, 256, 0)
    header = struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0, offset)
    os.makedirs(os.path.dirname(os.path.abspath(out)), exist_ok=True)
    with open(out, "wb") as f:
        f.write(header + info + colour_table + pixels)


if __name__ == "__main__":
    main()
