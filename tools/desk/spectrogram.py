"""A picture of a sound: time from left to right, pitch from bottom to top, loudness as light."""

import numpy
from PIL import Image, ImageDraw

WINDOW = 2048
STEP = 441                 # a hundredth of a second at 44100 frames a second
HIGHEST = 12000            # Hz; above it a tracker song has little to show
QUIETEST = -90.0           # dB below the loudest, shown as black
HEIGHT = 480
MARGIN = 40


def draw(samples, rate):
    """The spectrogram of an array of rows of left, right."""
    levels = _levels(samples.mean(axis=1), rate)
    picture = Image.fromarray(_colours(levels)).resize((levels.shape[1], HEIGHT))
    sheet = Image.new("RGB", (picture.width + MARGIN, HEIGHT + MARGIN // 2), "black")
    sheet.paste(picture, (MARGIN, 0))
    _label(ImageDraw.Draw(sheet), len(samples) / rate)
    return sheet


def _levels(sound, rate):
    """Loudness in dB under the loudest: a row a pitch, highest first, a column a step."""
    starts = range(0, len(sound) - WINDOW, STEP)
    windows = numpy.stack([sound[start:start + WINDOW] for start in starts])
    spectrum = numpy.abs(numpy.fft.rfft(windows * numpy.hanning(WINDOW), axis=1))
    shown = spectrum[:, :int(HIGHEST / rate * WINDOW)]
    decibels = 20 * numpy.log10(numpy.maximum(shown, 1e-9) / max(shown.max(), 1e-9))
    return numpy.maximum(decibels, QUIETEST).T[::-1]


def _colours(levels):
    """Black over violet and orange to white."""
    light = 1 - levels / QUIETEST
    parts = [numpy.interp(light, [0, 0.4, 0.75, 1], channel)
             for channel in ([0, 90, 255, 255], [0, 20, 140, 255], [0, 140, 40, 230])]
    return numpy.stack(parts, axis=2).astype(numpy.uint8)


def _label(pen, seconds):
    for kilohertz in range(0, HIGHEST // 1000, 2):
        y = HEIGHT - kilohertz * 1000 * HEIGHT // HIGHEST
        pen.text((2, min(y, HEIGHT - 12)), f"{kilohertz} kHz", fill="white")
    for second in range(int(seconds) + 1):
        pen.text((MARGIN + second * 44100 // STEP, HEIGHT + 4), f"{second} s", fill="white")
