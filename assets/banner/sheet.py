"""The sheet that the banner is drawn on: three sample points to a pixel in each direction."""

import numpy as np

WIDTH, HEIGHT = 640, 135
CENTRE_X, CENTRE_Y = 320.0, 66.0
GRAIN = 3


class Sheet:
    """Sample points, in screen pixels, and the light at each: red, green and blue, 0 to 1."""

    def __init__(self):
        rows, columns = np.mgrid[0:HEIGHT * GRAIN, 0:WIDTH * GRAIN]
        self.x, self.y = (columns + 0.5) / GRAIN, (rows + 0.5) / GRAIN
        self.light = np.zeros(self.x.shape + (3,))

    def around(self, outline, margin):
        """The part of the sheet within a margin of an outline, as a pair of slices."""
        low, high = outline.min(axis=0) - margin, outline.max(axis=0) + margin
        return tuple(slice(max(0, int(np.floor(low[axis] * GRAIN))),
                           max(0, int(np.ceil(high[axis] * GRAIN)))) for axis in (1, 0))

    def pixels(self):
        """The picture at its real size: each pixel the mean of its samples."""
        return self.light.reshape(HEIGHT, GRAIN, WIDTH, GRAIN, 3).mean(axis=(1, 3))


def slopes(height):
    """How fast a height over the sheet rises to the right and downwards, per pixel."""
    down, right = np.gradient(height * GRAIN)
    return right, down


def sampled(field, x, y):
    """A field's value at any points, by the nearest sample; beyond the sheet its border's."""
    column = np.clip(np.rint(x * GRAIN - 0.5).astype(int), 0, field.shape[1] - 1)
    row = np.clip(np.rint(y * GRAIN - 0.5).astype(int), 0, field.shape[0] - 1)
    return field[row, column]
