"""The headless desk: a screen, a sound card and a Wine prefix that belong together."""

import os
import shutil
import signal
import subprocess
import tempfile
from contextlib import suppress
from pathlib import Path

from PIL import Image

from . import wine
from .children import Children
from .prefix import FULL_SCREEN, clone_template, make_template
from .program import Program
from .screen import Screen
from .sound import SoundServer
from .waiting import DeskError, wait_until


def programs_of(prefix):
    """Returns process id and file name of each Windows program that runs in a prefix."""
    mark = f"WINEPREFIX={prefix}\0".encode()
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            if mark in (process / "environ").read_bytes():
                command = (process / "cmdline").read_bytes().split(b"\0")[0].decode()
                name = command.strip().strip('"').replace("\\", "/").rsplit("/", 1)[-1]
                found.append((int(process.name), name))
        except OSError:
            continue  # gone meanwhile
    return found


class Desk:
    """A desk to start Windows programs on; use it in a `with` statement.

    `folder` keeps the logs. `screen_size` is that of the X server, `desktop_size` that of the
    virtual desktop in which all programs run: there the display mode really changes and comes
    back, and the foreground passes on as on Windows. With None they run on the screen itself,
    which takes no other mode than its own. Without `sound` there is no sound server.
    `temp_name` is the name of a temp folder on drive C, for another one than Wine's own.
    """

    def __init__(self, folder, template, screen_size=FULL_SCREEN, desktop_size=FULL_SCREEN,
                 sound=True, temp_name=None):
        self.folder = Path(folder)
        self._template = Path(template)
        self._screen_size = screen_size
        self._sound_wanted = sound
        self._temp_name = temp_name
        self._settings = [wine.BASE_SETTINGS, wine.headless_settings()]
        if desktop_size:
            self._settings.append(wine.virtual_desktop_settings(desktop_size))
        if temp_name:
            self._settings.append(wine.temp_folder_settings(temp_name))

    def __enter__(self):
        self.folder.mkdir(parents=True, exist_ok=True)
        make_template(self._template)
        # Sockets need short paths, which a checkout's own folder may not have.
        self._private = Path(tempfile.mkdtemp(prefix="desk-"))
        self._children = Children(self.folder)
        self._server = None
        try:
            self._set_up()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        try:
            if self._server:
                self._stop_server()
        finally:
            self._children.end_all()
            shutil.rmtree(self._private, ignore_errors=True)

    @property
    def drive_c(self):
        return self._prefix / "drive_c"

    @property
    def temp_folder(self):
        """Where Windows programs of this desk keep their temporary files."""
        if self._temp_name:
            return self.drive_c / self._temp_name
        return wine.temp_folder(self._prefix)

    def start(self, path, folder, missing=()):
        """Starts a Windows program with `folder` as its current folder, on a system without the
        `missing` libraries."""
        environment = dict(self.environment)
        environment["WINEDLLOVERRIDES"] += "".join(f";{library}=" for library in missing)
        before = {pid for pid, _ in programs_of(self._prefix)}
        starter = self._children.start("program", [*wine.START, str(path)], cwd=folder,
                                       env=environment)

        def find():
            return next((pid for pid, name in programs_of(self._prefix)
                         if pid not in before and name == Path(path).name), None)
        return Program(starter, find)

    def ask(self, path, *arguments, limit=30):
        """Runs a Windows console program to its end and gives what it printed."""
        done = subprocess.run([*wine.WINE, str(path), *arguments], env=self.environment, text=True,
                              cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=limit)
        if done.returncode != 0:
            raise DeskError(f"{Path(path).name} {' '.join(arguments)} failed")
        return done.stdout

    def program_names(self):
        """The file names of all Windows programs that run on this desk, Wine's own included."""
        return [name for _, name in programs_of(self._prefix)]

    def press(self, program, *keys):
        """Presses keys long enough for a program that looks at them once a frame, and lets
        them go again together. What follows from it is the caller's to wait for."""
        self.screen.key_down(*keys)
        program.let_run()
        self.screen.key_up(*keys)

    def wait_picture(self, seen, what, limit=120.0):
        """Waits until `seen` says yes to the screen's pixels, and gives those pixels."""
        def look():
            pixels = self.screen.pixels()
            return (pixels,) if seen(pixels) else None
        return wait_until(look, what, limit)[0]

    def save_picture(self, path, pixels=None):
        """Writes pixels taken earlier, or the screen as it is now."""
        Path(path).parent.mkdir(parents=True, exist_ok=True)
        Image.fromarray(self.screen.pixels() if pixels is None else pixels).save(path)

    def _set_up(self):
        self.screen = Screen(self._children, self._private, self._screen_size)
        # A server address that leads nowhere is a machine without a sound card.
        sound_place = {"PULSE_SERVER": f"unix:{self._private}/nowhere"}
        if self._sound_wanted:
            self.sound = SoundServer(self._children, self._private)
            sound_place = self.sound.environment
        self._prefix = self._private / "prefix"
        clone_template(self._template, self._prefix, *self._settings)
        self.temp_folder.mkdir(exist_ok=True)
        self.environment = wine.environment(
            self._prefix, DISPLAY=self.screen.display, XDG_RUNTIME_DIR=str(self._private),
            **sound_place)
        self._start_server()

    def _start_server(self):
        """Keeps the server alive between programs: they start faster, and all of them end with it."""
        self._server = wine.Server(
            lambda command: self._children.start("wineserver", command, env=self.environment),
            persistent=True)

    def _stop_server(self):
        """Ends all programs, and then the server, which by itself would wait two seconds more. It
        would leave out a program that is just being started, which then waits for it for ever.
        Whoever else has this desk's environment may have one to end of its own, and is waited for."""
        def none_left():
            left = [pid for pid, _ in programs_of(self._prefix) if pid != self._server.process.pid]
            for pid in left:
                with suppress(OSError):  # gone meanwhile
                    if Path(f"/proc/{pid}/exe").readlink().name.startswith("wine"):
                        os.kill(pid, signal.SIGKILL)
            return not left
        wait_until(none_left, "the end of the desk's programs")
        self._children.end(self._server.process)
        wine.remove_server_folder(self._prefix)
