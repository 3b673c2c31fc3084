#!/usr/bin/python3
"""Draws the banner and writes assets/banner.bmp, or the file named on the command line."""

import pathlib
import sys

import numpy as np

from bitmap import bmp_bytes, to_565
from geometry import signed_distance
from letters import laid_out

WIDTH, HEIGHT = 640, 135
GRAIN = 3


def draw():
    y, x = np.mgrid[0:HEIGHT * GRAIN, 0:WIDTH * GRAIN]
    x, y = (x + 0.5) / GRAIN, (y + 0.5) / GRAIN
    d = np.full(x.shape, -1e9)
    for shape in laid_out("OSTRIK", 320, 28, 78):
        d = np.maximum(d, signed_distance(x, y, shape))
    f = np.clip(d * 3, 0, 1) * (0.6 + 0.4 * np.clip(d / 4, 0, 1))
    picture = np.dstack([f, f * (1 - y / 200), f * 0.3])
    return picture.reshape(HEIGHT, GRAIN, WIDTH, GRAIN, 3).mean(axis=(1, 3))


def main():
    here = pathlib.Path(__file__).resolve().parent
    target = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here.parent / "banner.bmp"
    target.write_bytes(bmp_bytes(to_565(draw())))


if __name__ == "__main__":
    main()
