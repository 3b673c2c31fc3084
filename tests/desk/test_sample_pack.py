"""The real pack on the real menu: every row runs an intro that is seen, heard and left."""

import shutil
import sys

import numpy
import pytest

from catalogue import INTRO_FILES
from desk.gallery import show, thumbnail
from desk.menu import DATA_NAME, PROGRAM_NAME, Menu
from desk.sound import RATE
from desk.waiting import wait_until
from helpers import BUILD, ROOT
from listening import find_place

sys.path.append(str(ROOT / "tests" / "tools"))
from tunes import intro_tunes, render  # noqa: E402

SHOW_SECONDS = 1.2       # some effects grow out of the dark
TUNE_SECONDS = 8         # of each tune are looked through
MIN_CORRELATION = 0.95   # of what is heard with the tune; other music comes nowhere near
LONGEST_WAIT = RATE      # from the first picture to the first sound
IN_FLIGHT = RATE // 2    # what sound server and card may still have to play
GAP = RATE // 1000       # two pieces of sound are that far apart
SHORTEST = RATE // 8     # a shorter piece could be found in a tune by chance
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


@pytest.fixture(scope="module")
def tunes(desk, tmp_path_factory):
    """What each intro should sound like at its beginning, by the name of its file."""
    texts = intro_tunes()
    rendered = render(tmp_path_factory.mktemp("tunes"), texts, TUNE_SECONDS, with_loop=False,
                      run=desk.ask)
    return {f"{name}.exe": tune.sound for name, tune in rendered.items()}


@pytest.fixture(scope="module")
def recording(desk, tunes):
    recording = desk.sound.record(desk.folder / "walk.raw")
    yield recording
    recording.stop()


@pytest.mark.parametrize("row", range(len(INTRO_FILES)), ids=INTRO_FILES)
def test_the_intro_runs_sounds_moves_and_comes_back(menu, desk, helpers, shots, recording, tunes,
                                                    row):
    mode = desk.ask(helpers.look, "mode")
    menu.select(row)
    shots[row] = show(menu, row, INTRO_FILES[row], SHOW_SECONDS, recording)
    assert desk.ask(helpers.look, "mode") == mode
    # The menu hears of the end when Wine does, a moment before the process itself is gone.
    wait_until(lambda: INTRO_FILES[row] not in desk.program_names(), "the intro's process to go")
    assert_heard(recording, shots[row], tunes[INTRO_FILES[row]])


def assert_heard(recording, shot, tune):
    """The intro's own tune is heard soon after its first picture, and after it the menu's song."""
    seen, left, _ = shot.frames
    heard = recording.samples(seen, left - seen) / 32768
    found = [begin for begin, piece in pieces(heard) if is_in_tune(piece[:RATE // 2], tune)]
    assert found, "other music, or none"
    assert found[0] <= LONGEST_WAIT + IN_FLIGHT
    wait_until(lambda: recording.samples(left + IN_FLIGHT).any(), "the menu's song after the intro")


def pieces(sound):
    """The pieces between silences that are long enough, each with its first frame. A sound server
    that had to wait plays silence, and the music goes on after it."""
    loud = numpy.flatnonzero(sound.any(axis=1))
    for run in numpy.split(loud, numpy.flatnonzero(numpy.diff(loud) > GAP) + 1):
        if len(run) and run[-1] - run[0] >= SHORTEST:
            yield int(run[0]), sound[run[0]:run[-1] + 1]


def is_in_tune(piece, tune):
    place = find_place(piece, tune)
    return correlation(piece, tune[place:place + len(piece)]) > MIN_CORRELATION


def correlation(one, other):
    return (one * other).sum() / numpy.sqrt((one ** 2).sum() * (other ** 2).sum())


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
