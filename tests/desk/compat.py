"""The menu with the library beside it: the screen as the menu drew it, and how it is scaled."""

import numpy
from PIL import Image

from helpers import ROOT

MODE = (1024, 768)
OVERRIDE = ";ddraw=n,b"


def coverage(source, target):
    """A matrix that makes `target` values of `source`: each is the mean of what it covers."""
    edges = numpy.arange(target + 1) * source / target
    starts = numpy.arange(source)
    begins = numpy.maximum(edges[:-1, None], starts)
    ends = numpy.minimum(edges[1:, None], starts + 1)
    return (numpy.maximum(ends - begins, 0) * target / source).astype(numpy.float32)


def along(matrix, pixels, axis):
    """The pixels of one axis, block by block, multiplied with a matrix."""
    moved = numpy.moveaxis(pixels.astype(numpy.float32), axis, -1)
    blocks = moved.reshape(*moved.shape[:-1], -1, matrix.shape[1]) @ matrix.T
    return numpy.moveaxis(blocks.reshape(*moved.shape[:-1], -1), -1, axis)


def fit(screen):
    """Where the menu's picture lies on a screen: left, top, width, height."""
    height = min(screen[1], screen[0] * MODE[1] // MODE[0])
    width = height * MODE[0] // MODE[1]
    return (screen[0] - width) // 2, (screen[1] - height) // 2, width, height


class ScaledScreen:
    """A screen whose pixels are those that the menu drew, as long as the menu's picture is on it,
    and the screen's own otherwise."""

    def __init__(self, screen):
        self._screen = screen
        self.left, self.top, self.width, self.height = fit(screen.size)
        block = numpy.gcd(MODE[1], self.height)
        self._last = self._answer = None
        self._scale = coverage(MODE[1] // block, self.height // block)
        self._unscale = numpy.linalg.pinv(self._scale)
        with Image.open(ROOT / "assets" / "banner.bmp") as banner:
            self._banner = numpy.asarray(banner.convert("RGB")) >> 3

    def __getattr__(self, name):
        return getattr(self._screen, name)

    def raw(self):
        return self._screen.pixels()

    def pixels(self):
        """Scales back only what has changed since the last call: that takes half a second, and a
        waiting test asks again and again."""
        raw = self.raw()
        if self._last is None or not numpy.array_equal(raw, self._last):
            drawn = self._drawn(raw)
            self._last, self._answer = raw, drawn if self._shows_menu(drawn) else raw
        return self._answer

    def scaled(self, drawn):
        """The whole screen for a picture of the menu, as numbers with fractions."""
        screen = numpy.zeros((self.size[1], self.size[0], 3), numpy.float32)
        screen[self.top:self.top + self.height, self.left:self.left + self.width] = \
            along(self._scale, along(self._scale, drawn, 0), 1)
        return screen

    def _drawn(self, raw):
        """The picture before it was scaled, in five bits a color: so much is certain."""
        picture = raw[self.top:self.top + self.height, self.left:self.left + self.width]
        exact = along(self._unscale, along(self._unscale, picture, 0), 1)
        fives = numpy.clip(numpy.rint(exact * (31 / 255)), 0, 31).astype(numpy.uint8)
        return fives << 3 | fives >> 2

    def _shows_menu(self, drawn):
        return (drawn[0:135, 192:832] >> 3 == self._banner).mean() > 0.98
