"""What is heard: a sound server whose only card has no loudspeaker."""

import fcntl
import os
import subprocess
import sys
from pathlib import Path

from .waiting import wait_until

RATE = 44100
FRAME_BYTES = 4
CARD = Path(__file__).with_name("sound_card.py")
CARD_BYTES = 4 * 4096  # 93 ms: what the card holds; a pipe's size is whole pages


class SoundServer:
    """A PulseAudio of our own; Wine finds it through `environment`."""

    def __init__(self, children, folder):
        self._children = children
        socket, self._pipe = Path(folder) / "sound", Path(folder) / "card"
        # A tenth of a second of sound ahead: with less, a busy machine is heard as clicks.
        self.environment = {"PULSE_SERVER": f"unix:{socket}", "PULSE_LATENCY_MSEC": "100"}
        # Without an address it would start a message bus for itself, which would not end with it.
        no_bus = {"DBUS_SESSION_BUS_ADDRESS": "disabled:"}
        os.mkfifo(self._pipe)
        with self._open_pipe() as pipe:
            fcntl.fcntl(pipe, fcntl.F_SETPIPE_SZ, CARD_BYTES)
            children.start(
                "pulseaudio",
                ["pulseaudio", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-n",
                 "-L", f"module-native-protocol-unix auth-anonymous=1 socket={socket}",
                 "-L", f"module-pipe-sink sink_name=card file={self._pipe} rate={RATE} channels=2 "
                       "format=s16le"],
                env={**os.environ, **no_bus, "XDG_RUNTIME_DIR": str(folder), "HOME": str(folder)})
            wait_until(self._has_card, "the sound server to start")
            self.card = self._start_card(subprocess.DEVNULL)

    def record(self, path):
        """Starts to write down what is heard, and returns the Recording."""
        from .recording import Recording  # numpy is not installed where nobody records
        return Recording(self, path)

    def write_to(self, place):
        """What is heard goes to `place`, an open file, from now on. The sound server does not
        notice that it is another card."""
        self._children.end(self.card)
        self.card = self._start_card(place)

    def _start_card(self, place):
        with self._open_pipe() as pipe:
            return self._children.start("sound_card", [sys.executable, str(CARD)], stdin=pipe,
                                        stdout=place)

    def _open_pipe(self):
        """The end to read from; there need not be a writer yet."""
        return open(os.open(self._pipe, os.O_RDONLY | os.O_NONBLOCK), "rb")

    def _has_card(self):
        cards = subprocess.run(["pactl", "list", "short", "sinks"], capture_output=True, text=True,
                               env={**os.environ, **self.environment})
        return "card" in cards.stdout
