#!/usr/bin/env python3
"""Draws Lumivane's icon and writes res/lumivane.ico.

The picture is a photo print: a light frame around a dusk sky, a sun rising
over two hills, a few rays. Every size is drawn from the same shapes, with
supersampling for smooth edges, so the small sizes stay readable. 16, 32 and
48 px are stored as 32-bit DIBs (what older shells expect); 256 px is stored
as a PNG. Standard library only, and the output is byte-for-byte
reproducible, so the committed .ico can always be regenerated.

    python3 res/make_icon.py [output.ico]
"""

import math
import os
import struct
import sys
import zlib

SIZES = (16, 32, 48, 256)
PNG_MIN_SIZE = 256

FRAME = (246, 241, 228)
FRAME_EDGE = (120, 104, 86)
SKY_TOP = (38, 52, 120)
SKY_HORIZON = (250, 160, 84)
SUN = (255, 214, 92)
SUN_GLOW = (255, 190, 90)
HILL_BACK = (62, 120, 104)
HILL_FRONT = (28, 78, 70)


def lerp(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def in_rounded_rect(x, y, left, top, right, bottom, radius):
    if x < left or x > right or y < top or y > bottom:
        return False
    cx = min(max(x, left + radius), right - radius)
    cy = min(max(y, top + radius), bottom - radius)
    return (x - cx) ** 2 + (y - cy) ** 2 <= radius * radius


def scene(x, y):
    """Colour and alpha (0..1) at a point of the unit square, y downwards."""
    if not in_rounded_rect(x, y, 0.04, 0.04, 0.96, 0.96, 0.10):
        return None
    if not in_rounded_rect(x, y, 0.06, 0.06, 0.94, 0.94, 0.085):
        return FRAME_EDGE
    if not in_rounded_rect(x, y, 0.14, 0.14, 0.86, 0.86, 0.03):
        return FRAME

    horizon = 0.66
    front = 0.80 - 0.10 * math.cos((x - 0.22) * 5.2)
    if y >= front:
        return HILL_FRONT
    back = 0.70 - 0.06 * math.cos((x - 0.78) * 6.0)
    if y >= back:
        return HILL_BACK

    sun_x, sun_y, sun_r = 0.50, horizon + 0.02, 0.17
    dist = math.hypot(x - sun_x, y - sun_y)
    if dist <= sun_r:
        return SUN
    sky = lerp(SKY_TOP, SKY_HORIZON, min(1.0, max(0.0, (y - 0.14) / (horizon - 0.14))))
    angle = math.atan2(sun_y - y, x - sun_x)
    ray = math.cos(angle * 9.0) > 0.55 and dist <= sun_r + 0.13
    if ray:
        return lerp(sky, SUN_GLOW, 0.75 * (1.0 - (dist - sun_r) / 0.13))
    return sky


def render(size):
    """Returns rows of straight (not premultiplied) RGBA bytes, top row first."""
    samples = 4 if size < 128 else 3
    rows = []
    for py in range(size):
        row = bytearray()
        for px in range(size):
            r = g = b = a = 0.0
            for sy in range(samples):
                for sx in range(samples):
                    colour = scene((px + (sx + 0.5) / samples) / size,
                                   (py + (sy + 0.5) / samples) / size)
                    if colour is not None:
                        r += colour[0]
                        g += colour[1]
                        b += colour[2]
                        a += 1.0
            n = samples * samples
            if a == 0:
                row += bytes(4)
            else:
                row += bytes((round(r / a), round(g / a), round(b / a), round(255 * a / n)))
        rows.append(bytes(row))
    return rows


def png_chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def encode_png(size, rows):
    raw = b"".join(b"\x00" + row for row in rows)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header) +
            png_chunk(b"IDAT", zlib.compress(raw, 9)) + png_chunk(b"IEND", b""))


def encode_dib(size, rows):
    """BITMAPINFOHEADER, bottom-up BGRA pixels, then the 1-bit AND mask."""
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    mask = bytearray()
    mask_stride = ((size + 31) // 32) * 4
    for row in reversed(rows):
        bits = bytearray(mask_stride)
        for px in range(size):
            r, g, b, a = row[px * 4:px * 4 + 4]
            pixels += bytes((b, g, r, a))
            if a == 0:
                bits[px // 8] |= 0x80 >> (px % 8)
        mask += bits
    return header + bytes(pixels) + bytes(mask)


def encode_ico(images):
    directory = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    entries = b""
    for size, data in images:
        dim = 0 if size >= 256 else size
        entries += struct.pack("<BBBBHHII", dim, dim, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return directory + entries + b"".join(data for _, data in images)


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "lumivane.ico")
    images = []
    for size in SIZES:
        rows = render(size)
        encode = encode_png if size >= PNG_MIN_SIZE else encode_dib
        images.append((size, encode(size, rows)))
    with open(out, "wb") as f:
        f.write(encode_ico(images))


if __name__ == "__main__":
    main()
