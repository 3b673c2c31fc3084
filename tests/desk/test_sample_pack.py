"""The real pack on the real menu: every row runs an intro that is to be seen and left."""

import shutil

import numpy
import pytest

from catalogue import INTRO_FILES
from desk.gallery import show, thumbnail
from desk.menu import DATA_NAME, PROGRAM_NAME, Menu
from desk.waiting import wait_until
from helpers import BUILD

SHOW_SECONDS = 0.3       # some effects grow out of the dark
GREATEST_LIKENESS = 0.9
SMALL = (128, 96)


@pytest.fixture(scope="module")
def menu(desk, tmp_path_factory):
    folder = tmp_path_factory.mktemp("pack")
    for name in (PROGRAM_NAME, DATA_NAME):
        shutil.copy2(BUILD / name, folder)
    menu = Menu(desk, folder).wait_up()
    menu.wait_unpacked()
    yield menu
    menu.program.kill()


@pytest.fixture(scope="module")
def shots(menu):
    """What has been seen so far, by row."""
    return {}


@pytest.mark.parametrize("row", range(len(INTRO_FILES)), ids=INTRO_FILES)
def test_the_intro_runs_moves_and_comes_back(menu, desk, helpers, shots, row):
    mode = desk.ask(helpers.look, "mode")
    menu.select(row)
    shots[row] = show(menu, row, INTRO_FILES[row], SHOW_SECONDS)
    assert desk.ask(helpers.look, "mode") == mode
    # The menu hears of the end when Wine does, a moment before the process itself is gone.
    wait_until(lambda: INTRO_FILES[row] not in desk.program_names(), "the intro's process to go")


def small_picture(shot):
    return numpy.asarray(thumbnail(shot).resize(SMALL), dtype=float).ravel()


def test_every_intro_looks_different(shots):
    assert len(shots) == len(INTRO_FILES)
    # The correlation of two pictures: 1 is the same picture, whatever its brightness.
    likeness = numpy.corrcoef([small_picture(shots[row]) for row in sorted(shots)])
    alike = [(INTRO_FILES[one], INTRO_FILES[other])
             for one, other in numpy.argwhere(likeness > GREATEST_LIKENESS) if one < other]
    assert not alike


def test_the_music_goes_on_after_all_of_them(menu, desk):
    recording = desk.sound.record(desk.folder / "after.raw")
    heard = recording.samples(recording.wait_for(1.0))
    recording.stop()
    assert numpy.abs(heard).max() > 1000
    menu.press("Escape")
    assert menu.program.wait_end() == 0
