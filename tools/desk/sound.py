"""A sound card without a loudspeaker: a sound server whose only card goes nowhere."""

import os
import subprocess
from pathlib import Path

import numpy

from .waiting import wait_until

RATE = 44100
FRAME_BYTES = 4


class SoundServer:
    """A PulseAudio of our own; Wine finds it through `environment`."""

    def __init__(self, children, folder):
        self._children = children
        socket = Path(folder) / "sound"
        # A tenth of a second of sound ahead: with less, a busy machine is heard as clicks.
        self.environment = {"PULSE_SERVER": f"unix:{socket}", "PULSE_LATENCY_MSEC": "100"}
        children.start(
            "pulseaudio",
            ["pulseaudio", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-n",
             "-L", f"module-native-protocol-unix auth-anonymous=1 socket={socket}",
             "-L", f"module-null-sink sink_name=null rate={RATE}"],
            env={**os.environ, "XDG_RUNTIME_DIR": str(folder), "HOME": str(folder)})
        wait_until(self._has_card, "the sound server to start")

    def record(self, path):
        """Starts to write down what is heard, and gives the Recording."""
        return Recording(self._children, path, self.environment)

    def _has_card(self):
        cards = subprocess.run(["pactl", "list", "short", "sinks"], capture_output=True, text=True,
                               env={**os.environ, **self.environment})
        return "null" in cards.stdout


class Recording:
    """What was heard since the start: 44100 frames a second, two channels, 16 bits."""

    def __init__(self, children, path, environment):
        self._children = children
        self._path = Path(path)
        self._out = open(self._path, "wb")
        self._recorder = children.start(
            "parec",
            ["parec", "--device=null.monitor", "--raw", "--format=s16le", f"--rate={RATE}",
             "--channels=2", "--latency-msec=20"],
            stdout=self._out, env={**os.environ, **environment})
        wait_until(lambda: self.frames() > 0, "the first recorded sound")

    def frames(self):
        """How much has been written down so far: the recording's own clock."""
        return self._path.stat().st_size // FRAME_BYTES

    def wait_for(self, seconds):
        """Waits until `seconds` more are written down and gives the place where they begin."""
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
        self._children.end(self._recorder)
        self._out.close()
