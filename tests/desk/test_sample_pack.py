"""The real pack on the real menu: every row runs an intro that is to be seen and left."""

import shutil

import numpy
import pytest

from catalogue import INTRO_FILES
from desk.gallery import contact_sheet, show
from desk.menu import DATA_NAME, PROGRAM_NAME, Menu
from helpers import BUILD

LEAST_DIFFERENCE = 4.0   # mean distance of two pictures' channels, of 255
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
    shots[row] = show(menu, row, INTRO_FILES[row])
    assert desk.ask(helpers.look, "mode") == mode
    assert INTRO_FILES[row] not in desk.program_names()


def test_every_intro_looks_different(shots):
    small = {row: numpy.asarray(contact_sheet([shot]).resize(SMALL), dtype=float)
             for row, shot in shots.items()}
    assert len(small) == len(INTRO_FILES)
    alike = [(INTRO_FILES[one], INTRO_FILES[other])
             for one in small for other in small
             if one < other and numpy.abs(small[one] - small[other]).mean() < LEAST_DIFFERENCE]
    assert not alike


def test_the_music_goes_on_after_all_of_them(menu, desk):
    recording = desk.sound.record(desk.folder / "after.raw")
    heard = recording.samples(recording.wait_for(1.0))
    recording.stop()
    assert numpy.abs(heard).max() > 1000
    menu.press("Escape")
    assert menu.program.wait_end() == 0
