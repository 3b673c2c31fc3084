"""From light to a file: a colour picture becomes the 24-bit BMP that the program carries."""

import struct

import numpy as np


def dither_pattern(height, width):
    """Thresholds between 0 and 1, spread so that neighbours differ: fine grain, no raster."""
    y, x = np.mgrid[0:height, 0:width]
    return np.mod(52.9829189 * np.mod(0.06711056 * x + 0.00583715 * y, 1.0), 1.0)


def to_565(picture):
    """Bytes of a picture (0 to 1) that a screen of 5, 6 and 5 bits shows without any loss.

    Each channel is brought to that screen's own levels here, dithered, since the platform would
    cut the low bits off and leave bands. A level is written as the screen widens it to a byte,
    so cutting and rounding give the same level back.
    """
    threshold = dither_pattern(*picture.shape[:2])
    channels = []
    for channel, bits in enumerate((5, 6, 5)):
        top = (1 << bits) - 1
        pattern = 1 - threshold if channel == 1 else threshold
        level = np.floor(np.clip(picture[:, :, channel], 0, 1) * top + pattern * 0.999)
        level = np.clip(level, 0, top).astype(np.uint8)
        channels.append(level << (8 - bits) | level >> (2 * bits - 8))
    return np.dstack(channels)


def bmp_bytes(rgb):
    """A whole BMP file of the picture: 24 bits a pixel, no palette, rows bottom to top."""
    height, width = rgb.shape[:2]
    assert width * 3 % 4 == 0, "rows of this width would need padding"
    pixels = np.ascontiguousarray(rgb[::-1, :, ::-1]).tobytes()
    header = struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 0, 0, 0, 0)
    return header + info + pixels
