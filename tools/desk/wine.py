"""What differs between versions of Wine, and what Wine needs. All of it is here.

Each fact names the versions on which it was seen: 8.0 is Debian 12's, 10.0 is Debian 13's."""

import functools
import os
import re
import shutil
import signal
import subprocess
from collections import namedtuple
from contextlib import suppress
from pathlib import Path

from .waiting import DeskError, wait_until

# The programs themselves, since Debian's wrappers take longer to start (8.0, 10.0).
LOADER = "/usr/lib/wine/wine64"
SERVER = "/usr/lib/wine/wineserver64"

# Linux puts a program's heap at a random place within the GiB after it, once in some thousand starts
# where Wine needs a fixed address. Wine then ends immediately and silently with code 1 (8.0).
WINE = ["setarch", "--addr-no-randomize", LOADER]

# Starts a program by way of a Windows program, which passes on the exit code that Windows programs
# see. Wine's sound driver sometimes crashes while a program ends that holds a device, and the
# program's own process then has the crash's code (8.0).
START = [*WINE, "start", "/wait", "/unix"]

# What a parent sees of a program that died of an access violation: the lowest byte of 0xC0000005,
# or the signal if the fault strikes while Wine takes the process down (8.0, 10.0).
FAULT_CODES = (5, -signal.SIGSEGV)

# With Wine's debugger a crashed program may return 0 and wait on a box that nobody closes; without
# it the exit code is the crash's own. The other three would open boxes of their own, or write to a
# real desktop's menu (8.0, 10.0).
OVERRIDES = "mscoree=;mshtml=;winemenubuilder.exe=;winedbg.exe=d"

# The DirectSound of 10.0 sends every sound through its resampler's low-pass filter, even if there is
# nothing to resample: no frame of the song was seen to change by more than 59, and the filter's
# ringing is heard up to 26 frames before the song begins. 8.0 leaves each frame as it is.
SoundFilter = namedtuple("SoundFilter", "greatest_change ringing_frames")

ACCEPTS_CONNECTIONS = "00010000"  # among the flags in /proc/net/unix

BASE_SETTINGS = {
    r"Software\Wine\WineDbg": {"ShowCrashDialog": 0},
    # Wine has no "Terminal"; the info page needs a fixed-pitch font (8.0, 10.0).
    r"Software\Wine\Fonts\Replacements": {"Terminal": "Liberation Mono"},
}


@functools.cache
def major_version():
    """Returns 8 for Wine 8.0. Raises DeskError if Wine is not installed."""
    if not os.path.exists(LOADER):
        raise DeskError("Wine (64-bit) is not installed: run tools/setup play first")
    words = subprocess.run([*WINE, "--version"], capture_output=True, text=True,
                           env=environment("/nowhere")).stdout
    return int(re.match(r"wine-(\d+)", words)[1])


def sound_filter():
    """Returns what the SoundFilter of this Wine may do to a sound of 16 bits."""
    return SoundFilter(0, 0) if major_version() < 10 else SoundFilter(100, 64)


def headless_settings():
    """Returns the settings for a screen without a window manager and without a graphics card."""
    # A managed window would wait two seconds for its window manager at each hide (8.0, 10.0).
    settings = {r"Software\Wine\X11 Driver": {"Managed": "N"}}
    # A flip by OpenGL costs five to ten times as much without a card (8.0). But on 10.0 only OpenGL
    # shows each picture: with "no3d" and "gdi" about half of the screenshots are black.
    if major_version() < 10:
        settings[r"Software\Wine\Direct3D"] = {"renderer": "no3d"}
    return settings


def virtual_desktop_settings(size):
    """Every program of the prefix then opens in one black desktop window of this size."""
    width, height = size
    return {
        r"Software\Wine\Explorer": {"Desktop": "Ostrik"},
        r"Software\Wine\Explorer\Desktops": {"Ostrik": f"{width}x{height}"},
        r"Control Panel\Colors": {"Background": "0 0 0"},
    }


def temp_folder_settings(name):
    """Moves the temp folder from the user's profile to the folder `name` on drive C."""
    return {"Environment": {"TEMP": "C:\\" + name, "TMP": "C:\\" + name}}


def temp_folder(prefix):
    """Returns the temp folder of a prefix without the settings above."""
    users = Path(prefix) / "drive_c" / "users"
    for place in ("*/AppData/Local/Temp", "*/Temp"):  # 10.0, 8.0
        for folder in users.glob(place):
            return folder
    raise DeskError(f"Wine has made no temp folder in {users}")


def environment(prefix, **more):
    """Returns the environment for programs of `prefix`. A value of None removes the variable."""
    # The server of 10.0 aborts ("free(): invalid pointer") if TMPDIR is set.
    values = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all",
              "WINEDLLOVERRIDES": OVERRIDES, "TMPDIR": None, **more}
    return {name: value for name, value in values.items() if value is not None}


def remove_server_folder(prefix):
    """Removes what the server of `prefix` leaves behind when it has ended: Debian's puts its socket
    into a folder with a random name, and notes the name in the prefix (8.0, 10.0)."""
    note = Path(prefix) / "wineserver"
    name = note.read_text() if note.exists() else ""
    if re.fullmatch(r"wine-\w{6}", name):
        for place in (f"/run/user/{os.getuid()}", "/tmp"):
            shutil.rmtree(Path(place) / name, ignore_errors=True)


class Server:
    """A Wine server in the foreground. `start` takes a command and returns its Popen. The server
    ends some seconds after the last Windows program, or if `persistent` only when it is asked to."""

    def __init__(self, start, persistent=False):
        self.process = start([SERVER, "--foreground", *(["--persistent"] if persistent else [])])
        # Programs that ask for the server too early would start a second one.
        wait_until(self._listens, "the Wine server to start")

    def _listens(self):
        if self.process.poll() is not None:
            raise DeskError(f"the Wine server has ended with code {self.process.returncode}")
        sockets = {f"socket:[{words[6]}]" for words in
                   map(str.split, Path("/proc/net/unix").read_text().splitlines())
                   if words[3] == ACCEPTS_CONNECTIONS}
        with suppress(OSError):  # a file was closed meanwhile
            return any(str(entry.readlink()) in sockets
                       for entry in Path(f"/proc/{self.process.pid}/fd").iterdir())
        return False
