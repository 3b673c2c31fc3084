#!/usr/bin/python3
"""Draws the banner and writes assets/banner.bmp, or the file named on the command line.

The picture: a flock of birds that grows out of plain tiles and flies apart to both sides, and in
front of it the lettering. It fades to black at its border, where the menu's black screen goes on.
"""

import pathlib
import sys

import numpy as np

from bitmap import bmp_bytes, to_565
from flock import paint_flock
from lettering import paint_lettering
from light import blurred, ramp
from sheet import HEIGHT, WIDTH, Sheet


def with_bloom(picture):
    """What is brightest shines over its surroundings."""
    bright = np.clip(picture - 0.75, 0, 1)
    return picture + 0.5 * blurred(bright, 2.0) + 0.6 * blurred(bright, 7.0)


def faded_at_the_border(picture):
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH]
    border = np.minimum(np.minimum(x, WIDTH - 1 - x), np.minimum(y, HEIGHT - 1 - y))
    return np.clip(picture, 0, 1) * ramp(1, 10, border)[..., None]


def drawn():
    sheet = Sheet()
    paint_flock(sheet)
    paint_lettering(sheet)
    return faded_at_the_border(with_bloom(sheet.pixels()))


def main():
    here = pathlib.Path(__file__).resolve().parent
    target = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here.parent / "banner.bmp"
    target.write_bytes(bmp_bytes(to_565(drawn())))


if __name__ == "__main__":
    main()
