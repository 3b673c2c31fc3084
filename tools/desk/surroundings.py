"""What the user's machine has: an X display and a sound output. Asks the libraries that Wine itself
uses, so that the answer is what Wine will find.

As a program: returns 0 if an X display answers."""

import ctypes
import sys
from contextlib import suppress
from pathlib import Path

SOUND_CARDS = Path("/proc/asound/pcm")


class _SampleFormat(ctypes.Structure):
    _fields_ = [("format", ctypes.c_int), ("rate", ctypes.c_uint32), ("channels", ctypes.c_uint8)]


def display_answers():
    with suppress(OSError):  # the library is missing
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        return x11.XOpenDisplay(None) is not None
    return False


def sound_answers():
    """Returns whether a sound server takes a stream, or else whether there is a sound card, which
    Wine uses directly."""
    return _sound_server_answers() or (SOUND_CARDS.exists() and
                                       "playback" in SOUND_CARDS.read_text())


def _sound_server_answers():
    with suppress(OSError):
        pulse = ctypes.CDLL("libpulse-simple.so.0")
        pulse.pa_simple_new.restype = ctypes.c_void_p
        playback, signed_16_bits = 1, 3
        sample_format = _SampleFormat(signed_16_bits, 44100, 2)
        stream = pulse.pa_simple_new(None, b"Ostrik", playback, None, b"check",
                                     ctypes.byref(sample_format), None, None, None)
        if stream:
            pulse.pa_simple_free(ctypes.c_void_p(stream))
        return bool(stream)
    return False


if __name__ == "__main__":
    sys.exit(0 if display_answers() else 1)
