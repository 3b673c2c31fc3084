"""What was heard, written down."""

import subprocess
from pathlib import Path

import numpy

from .sound import FRAME_BYTES, RATE
from .waiting import wait_until


class Recording:
    """What was heard since the start: 44100 frames a second, two channels, 16 bits."""

    def __init__(self, server, path):
        self._server = server
        self._path = Path(path)
        with open(self._path, "wb") as place:
            server.write_to(place)
        wait_until(lambda: self.frames() > 0, "the first recorded sound")

    def frames(self):
        """How much has been written down so far: the recording's own clock."""
        return self._path.stat().st_size // FRAME_BYTES

    def wait_for(self, seconds):
        """Waits until `seconds` more are recorded. Returns the frame at which they begin."""
        start = self.frames()
        wait_until(lambda: self.frames() >= start + seconds * RATE, f"{seconds} s of sound",
                   limit=seconds + 30)
        return start

    def samples(self, first=0, count=-1):
        """Frames from `first` on: an array of rows of left, right."""
        data = numpy.fromfile(self._path, dtype="<i2", offset=first * FRAME_BYTES,
                              count=count * 2 if count >= 0 else -1)
        return data[:len(data) // 2 * 2].reshape(-1, 2)

    def stop(self):
        self._server.write_to(subprocess.DEVNULL)
