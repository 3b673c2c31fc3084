"""The menu on the user's own display, as ./run starts it there."""

import os
import subprocess

import pytest

from desk import wine
from desk.desk import programs_of
from desk.menu import PROGRAM_NAME, highlighted_row
from desk.program import Program
from desk.waiting import wait_until
from helpers import BUILD, ROOT

WITHOUT_SOUND = {"PULSE_SERVER": "unix:/nowhere"}


@pytest.fixture
def play(desk, stall):
    """Starts the menu on the desk's screen, with the desk in the place of the user's machine."""
    (stall.folder / "desk").mkdir()
    (stall.folder / "desk" / "template").symlink_to(BUILD / "desk" / "template")
    started = []

    def start(*options, **environment):
        values = {**os.environ, **desk.sound.environment, **environment,
                  "DISPLAY": desk.screen.display, "PYTHONPATH": str(ROOT / "tools")}
        started.append(subprocess.Popen(
            ["/usr/bin/python3", "-B", "-m", "desk.play", stall.folder / PROGRAM_NAME, *options],
            env=values, text=True, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE))
        return started[-1]

    yield start
    for process in started:
        process.terminate()
        process.wait()
    prefix = stall.folder / "prefix"
    if prefix.exists():
        wait_until(lambda: not programs_of(prefix), "the end of Wine, some seconds after the menu")
        wine.remove_server_folder(prefix)


def test_a_machine_without_sound_gets_one_sentence_and_no_menu(play):
    process = play(**WITHOUT_SOUND)
    words = process.communicate()[1]
    assert process.returncode == 1
    assert words.count("\n") == 1
    assert words.startswith("run: no sound server and no sound card answers")
    assert "./run --silent" in words


def test_silent_brings_a_sound_server_and_the_menu_comes_up(play, desk, stall):
    process = play("--silent", **WITHOUT_SOUND)

    def find():
        return next((pid for pid, name in programs_of(stall.folder / "prefix")
                     if name == PROGRAM_NAME), None)
    desk.wait_picture(lambda pixels: highlighted_row(pixels) == 0, "the menu", limit=60)
    desk.screen.focus_top_window()
    program = Program(process, find)
    program.let_run()
    desk.press(program, "Escape")
    assert program.wait_end() == 0
