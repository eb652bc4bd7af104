#!/usr/bin/env python3
"""Draws waveforms frame by frame, one channel after the other, and prints the checksums that
waveform_drawing_test.cpp expects: CRC-32 of the rows, 4 bytes a pixel."""

import zlib

FOREGROUND = bytes((1, 2, 3, 0))
BACKGROUND = bytes((200, 100, 50, 0))


def samples(count):
    """A well-known linear congruential generator; the high half as a signed number."""
    state = 12345
    for _ in range(count):
        state = (state * 1664525 + 1013904223) % 2**32
        value = state >> 16
        yield value - 65536 if value > 32767 else value


def line(picture, width, height, start, end):
    """Steps along the longer axis; the other follows the exact line, halves away from the start."""
    (x0, y0), (x1, y1) = start, end
    length = max(abs(x1 - x0), abs(y1 - y0))
    for i in range(length + 1):
        def at(a, b):
            offset = 0 if length == 0 else (2 * i * abs(b - a) + length) // (2 * length)
            return a + offset if b >= a else a - offset
        x, y = at(x0, x1), at(y0, y1)
        if 0 <= x < width and 0 <= y < height:
            picture[y * width + x] = FOREGROUND


def draw(width, height, channels, first, count, frames):
    picture = [b"\xff\xff\xff\x00"] * (width * height)
    data = list(samples(channels * frames))
    band = (height - 20) // count
    inner = band - 20
    for j in range(count):
        top = band * j + 20
        for y in range(top, top + inner + 1):
            picture[y * width:(y + 1) * width] = [BACKGROUND] * width
        ys = [((-data[channels * i + first + j] + 32768) * inner) // 65536 + top for i in range(frames)]
        pen = (0, ys[0])
        step = width / frames
        x = 0.0
        column, low, high = 0, top + inner, top
        for y in ys:
            x += step
            if step >= 0.5:
                line(picture, width, height, pen, (int(x), y))
                pen = (int(x), y)
            elif int(x) - column < 1:
                low, high, pen = min(low, y), max(high, y), (column, y)
            else:
                line(picture, width, height, pen, (column + 1, y))
                line(picture, width, height, (column, low), (column, high))
                low, high, column = y, y, column + 1
    return zlib.crc32(b"".join(picture))


for case in ((400, 220, 2, 0, 2, 40000), (400, 120, 2, 1, 1, 1001), (97, 333, 3, 0, 3, 195), (97, 333, 1, 0, 1, 193),
             (400, 100, 1, 0, 1, 100), (50, 60, 2, 0, 2, 1), (61, 40, 1, 0, 1, 5000), (7, 100, 2, 0, 1, 14)):
    print("{%s, 0x%08XU}," % (", ".join(map(str, case)), draw(*case)))
