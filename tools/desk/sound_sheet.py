"""One picture of many sounds: a small spectrogram each, with pitch by octaves."""

import numpy
from PIL import Image, ImageDraw

from .sound import RATE

COLUMNS = 4
SIZE = (400, 170)          # of one spectrogram
CAPTION_HEIGHT = 16
WINDOW = 8192
LOWEST, OCTAVES = 30.0, 9  # Hz
RANGE = 62.0               # dB between white and black


def draw(sounds):
    """Returns the sheet. `sounds` are arrays of rows of left, right by their names."""
    width, height = SIZE
    lines = -(-len(sounds) // COLUMNS)
    sheet = Image.new("RGB", (COLUMNS * (width + 8), lines * (height + CAPTION_HEIGHT)))
    pen = ImageDraw.Draw(sheet)
    for number, (name, samples) in enumerate(sounds.items()):
        left = number % COLUMNS * (width + 8)
        top = number // COLUMNS * (height + CAPTION_HEIGHT)
        sheet.paste(_spectrogram(samples.mean(axis=1)), (left, top))
        pen.text((left + 2, top + height + 2), name, fill="white")
    return sheet


def _spectrogram(sound):
    width, height = SIZE
    sound = numpy.concatenate([sound, numpy.zeros(WINDOW)])
    starts = numpy.linspace(0, len(sound) - WINDOW, width).astype(int)
    windows = numpy.stack([sound[start:start + WINDOW] for start in starts])
    spectrum = numpy.abs(numpy.fft.rfft(windows * numpy.hanning(WINDOW), axis=1))
    hertz = LOWEST * 2 ** numpy.linspace(0, OCTAVES, height + 1)
    edges = (hertz / RATE * WINDOW).astype(int)
    bands = numpy.stack([spectrum[:, low:max(high, low + 1)].max(axis=1)
                         for low, high in zip(edges, edges[1:])])[::-1]
    decibels = 20 * numpy.log10(numpy.maximum(bands, 1e-9) / max(bands.max(), 1.0))
    light = numpy.clip(1 + decibels / RANGE, 0, 1)
    colors = [numpy.interp(light, [0, 0.4, 0.75, 1], channel)
              for channel in ([0, 90, 255, 255], [0, 20, 140, 255], [0, 140, 40, 230])]
    return Image.fromarray(numpy.stack(colors, axis=2).astype(numpy.uint8))
