"""A screen without a monitor: an X server, its pixels, its keys and its mouse."""

import os
import select
import subprocess

import numpy

from .waiting import DeskError, wait_until

POINTER_CORNER = 16  # pixels: an arrow's hot spot may lie eight of them inside the arrow


def lit_pixels(pixels):
    """Which pixels are not black. The corner in which the mouse pointer rests does not count."""
    lit = pixels.any(axis=2)
    lit[-POINTER_CORNER:, -POINTER_CORNER:] = False
    return lit


class Screen:
    """One Xvfb of the given size, on a display of its own."""

    def __init__(self, children, folder, size):
        self.size = size
        self._children = children
        self._frame_file = folder / "Xvfb_screen0"
        self.display = self._start_server(folder)
        self._environment = {**os.environ, "DISPLAY": self.display}
        self._pixels = self._map_pixels()
        self._park_pointer()

    def pixels(self):
        """The picture of this moment: an array of rows of red, green, blue, 0 to 255 each."""
        # Copied in one piece: to exchange the colours on the way would take many times as long.
        return numpy.array(self._pixels)[:, :, 2::-1]

    def key_down(self, *keys):
        self._xdotool("keydown", *keys)

    def key_up(self, *keys):
        self._xdotool("keyup", *keys)

    def tap(self, key):
        """Down and up at once: enough for a program that reads key messages."""
        self._xdotool("key", key)

    def synchronize(self):
        """Returns when the server has done all that was due before the call, key repeats included."""
        self._xdotool("getmouselocation")

    def click(self, x, y, button):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))
        self._park_pointer()

    def focus_top_window(self, title="."):
        """Gives the keys to the window in front, or to the one in front of those whose titles fit
        the regular expression; without that every key vanishes."""
        self._focus("--name", title)

    def focus_program(self, name):
        """Gives the keys to the window in front of a program, by its file name, as soon as it has
        one. The virtual desktop is a window, too, and would take them as well."""
        self._focus("--classname", f"^{name}$")

    def _start_server(self, folder):
        """Starts the server, which looks for a free display number itself, and gives its display
        once it takes clients."""
        width, height = self.size
        answer, server_end = os.pipe()
        # -noreset: a server that starts over when its last window goes would lose the settings
        # that Wine made at the start of its prefix.
        self._children.start(
            "xvfb",
            ["Xvfb", "-displayfd", str(server_end), "-screen", "0", f"{width}x{height}x24",
             "-noreset", "-nolisten", "tcp", "-fbdir", str(folder)], pass_fds=(server_end,))
        os.close(server_end)
        with open(answer, encoding="ascii") as answer:
            wait_until(lambda: select.select([answer], [], [], 0)[0], "the X server to start")
            number = answer.readline().strip()
        if not number:
            raise DeskError("the X server of the headless screen could not start")
        return f":{number}"

    def _map_pixels(self):
        """The server keeps its frame in a mapped XWD file: reading it needs no X client."""
        header = numpy.fromfile(self._frame_file, dtype=">u4", count=20)
        start = int(header[0] + header[19] * 12)
        return numpy.memmap(self._frame_file, dtype=numpy.uint8, mode="r", offset=start,
                            shape=(int(header[5]), int(header[12]) // 4, 4))

    def _park_pointer(self):
        """The server draws the pointer into the picture: little is left of it in the corner."""
        self._xdotool("mousemove", str(self.size[0]), str(self.size[1]))

    def _focus(self, *sought):
        def top_window():
            found = subprocess.run(["xdotool", "search", "--onlyvisible", *sought],
                                   capture_output=True, text=True, env=self._environment)
            return found.stdout.split()[-1] if found.stdout else None
        window = wait_until(top_window, "a window that can take the keys")
        self._xdotool("windowfocus", "--sync", window)

    def _xdotool(self, *words):
        done = subprocess.run(["xdotool", *words], capture_output=True, text=True,
                              env=self._environment)
        if done.returncode != 0:
            raise DeskError(f"xdotool {' '.join(words)} failed: {done.stderr.strip()}")
