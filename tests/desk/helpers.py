"""The tests' own Windows programs, and the folder from which the menu starts beside them."""

import os
import shutil
import subprocess
from pathlib import Path

import numpy

from catalogue import INTRO_FILES
from desk.locking import locked
from desk.menu import DATA_NAME, INFO_NAME, PROGRAM_NAME, Menu
from desk.waiting import wait_until

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
SOURCES = Path(__file__).parent / "programs"
PROBE_GREEN = (0, 128, 64)

COMPILERS = {".c": "x86_64-w64-mingw32-gcc-posix", ".cpp": "x86_64-w64-mingw32-g++-posix"}
COMPILE = ["-O1", "-Wall", "-Wextra", "-Werror", "-s", "-static"]


class Helpers:
    """Compiles the helping programs when they are asked for and older than their sources."""

    def __init__(self, folder):
        self._folder = folder
        folder.mkdir(parents=True, exist_ok=True)

    @property
    def probe(self):
        return self._built("probe.c", "-mwindows", "-lgdi32")

    @property
    def look(self):
        return self._built("look.c")

    @property
    def page(self):
        return self._built("page.c", "-lgdi32")

    @property
    def render(self):
        library = next(iter(sorted(BUILD.glob("libmodplug/**/libmodplug.a"))), None)
        assert library, "build the program first: libmodplug comes with it"
        include = next(iter(sorted(library.parent.parent.glob("**/libmodplug/modplug.h"))))
        return self._built("render.cpp", "-DMODPLUG_STATIC", f"-I{include.parent.parent}",
                           str(library))

    def _built(self, source, *options):
        source, program = SOURCES / source, self._folder / Path(source).with_suffix(".exe")
        with locked(program):
            if not program.exists() or program.stat().st_mtime < source.stat().st_mtime:
                compiler, part = COMPILERS[source.suffix], program.with_suffix(".part")
                subprocess.run([compiler, *COMPILE, str(source), "-o", str(part), *options],
                               check=True)
                part.replace(program)  # a compiler that is ended leaves no half a program
        return program


class Stall:
    """A folder with the program and, in place of a self-extractor, the probe."""

    def __init__(self, folder, helpers):
        self.folder = Path(folder)
        self._helpers = helpers
        assert (BUILD / PROGRAM_NAME).exists(), "build the program first: ./run --build"
        shutil.copy2(BUILD / PROGRAM_NAME, self.folder)
        self.set_data(helpers.probe)

    @property
    def data_file(self):
        return self.folder / DATA_NAME

    def set_data(self, source):
        shutil.copy2(source, self.data_file)

    def set_info(self, content):
        (self.folder / INFO_NAME).write_bytes(content)

    def open_menu(self, desk, unpacks=INTRO_FILES, **options):
        """Starts the menu, without waiting for its picture. `unpacks` is what the data file is
        to write into the staging folder; the other options are those of Desk.start."""
        orders = desk.drive_c / "probe"
        shutil.rmtree(orders, ignore_errors=True)
        orders.mkdir()
        (orders / "names.txt").write_text("".join(name + "\n" for name in unpacks))
        return Menu(desk, self.folder, **options)


class Windows:
    """The visible windows of a desk by class: title, place and texts."""

    def __init__(self, desk, helpers):
        self._listed = [line.split("\t") for line in desk.ask(helpers.look).splitlines()]

    def titles(self, window_class):
        return [words[1] for words in self._listed if words[0] == window_class]

    def texts(self, title):
        return next((words[3:] for words in self._listed if words[1] == title), None)

    def classes(self):
        return {words[0] for words in self._listed}


def wait_box(desk, helpers, title):
    """Waits until a message box shows its message and its button, and returns the texts on it. The
    box is visible before it has them; its icon never has one."""
    def complete():
        texts = [text for text in Windows(desk, helpers).texts(title) or [] if text]
        return texts if len(texts) > 1 else None
    return wait_until(complete, f"a box titled {title} with a message and a button")


def wait_report(desk, number):
    """Waits for what the probe wrote down on its n-th run: program, folder, command and mode."""
    report = desk.drive_c / "probe" / f"run-{number:03}.txt"
    wait_until(report.exists, f"the report of run {number}")
    return dict(line.split("=", 1) for line in report.read_text().splitlines())


def reports(desk):
    """How many runs have been reported."""
    return len(list((desk.drive_c / "probe").glob("run-*.txt")))


def shows_probe(pixels):
    return (pixels[10:190:20, 10:310:20] >> 3 == numpy.array(PROBE_GREEN) >> 3).all()


def launch(menu, desk):
    """Presses Enter, waits for the probe's window and gives what the probe wrote down."""
    number = reports(desk) + 1
    menu.press("Return")
    report = wait_report(desk, number)
    desk.wait_picture(shows_probe, "the probe's window")
    desk.screen.focus_program(report["program"].rsplit("\\", 1)[1])
    return report


def launch_and_leave(menu, desk, row):
    report = launch(menu, desk)
    desk.screen.tap("Escape")
    menu.wait_up(row)
    return report
