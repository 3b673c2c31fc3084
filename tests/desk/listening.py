"""Comparing what was heard with what should have been heard."""

import numpy

from desk.menu import PROGRAM_NAME
from helpers import BUILD, ROOT


def find_place(heard, song):
    """Where in `song` the piece `heard` begins, and how alike they are there: 1 is the same.

    Both are arrays of rows of left, right; the answer is found by correlation."""
    size = 1 << (len(song) + len(heard)).bit_length()
    product = sum(numpy.fft.irfft(numpy.fft.rfft(song[:, side].astype(float), size) *
                                  numpy.conj(numpy.fft.rfft(heard[:, side].astype(float), size)),
                                  size)
                  for side in (0, 1))
    place = int(numpy.argmax(product[:len(song) - len(heard) + 1]))
    return place, likeness(heard, song[place:place + len(heard)])


def likeness(first, second):
    """The correlation of two pieces of the same length, both channels together."""
    return float(numpy.corrcoef(first.ravel(), second.ravel())[0, 1])


def sounding(samples):
    """The first and the last frame that is not silent, the last one exclusive."""
    loud = numpy.nonzero(samples.any(axis=1))[0]
    return (int(loud[0]), int(loud[-1]) + 1) if len(loud) else (0, 0)


def render_song(desk, helpers, pieces):
    """The program's own module in the library's rendering: an array of rows of left, right."""
    module = (ROOT / "assets" / "module.xm").read_bytes()
    assert module in (BUILD / PROGRAM_NAME).read_bytes(), "the program carries another module"
    (desk.folder / "song.xm").write_bytes(module)
    desk.ask(helpers.render, "song.xm", str(pieces), "song.raw", limit=120)
    return numpy.fromfile(desk.folder / "song.raw", dtype="<i2").reshape(-1, 2)
