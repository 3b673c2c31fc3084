"""The menu's music as it is heard, against the module library's own rendering."""

import numpy
import pytest

from desk import wait_until
from desk.sound import RATE
from helpers import launch
from listening import find_place, likeness, render_song, sounding

HALF = 25600           # frames in half of the player's buffer
SONG_PIECES = 130      # halves rendered for comparison: 75 s
OPENING = RATE // 10   # what the sound server may swallow while it opens a stream


@pytest.fixture(scope="module")
def song(desk, helpers):
    return render_song(desk, helpers, SONG_PIECES)


@pytest.fixture(scope="module")
def recording(desk):
    recording = desk.sound.record(desk.folder / "heard.raw")
    yield recording
    recording.stop()


@pytest.fixture(scope="module")
def menu(desk, recording, module_stall):
    menu = module_stall.open_menu(desk).wait_up()
    yield menu
    menu.program.kill()


def wait_music(recording, after):
    """Waits for the first sound after a frame of the recording, and gives its frame."""
    def first_sound():
        begin, end = sounding(recording.samples(after))
        return (after + begin,) if end > begin else None
    return wait_until(first_sound, "music")[0]


def test_the_song_is_heard_from_its_start_as_the_library_renders_it(menu, recording, song):
    begin = wait_music(recording, 0)
    recording.wait_for(5)
    place, alike = find_place(recording.samples(begin, 4 * RATE), song[:30 * RATE])
    first_note = sounding(song)[0]
    assert alike >= 0.98
    assert abs(place - first_note) < OPENING


def test_the_music_stops_for_an_intro_and_goes_on_further_in_the_song(menu, recording, song,
                                                                      desk):
    menu.wait_unpacked()
    before = recording.frames()
    launch(menu, desk)
    silent_from = recording.wait_for(1.0)
    assert not recording.samples(silent_from).any(), "an intro has the sound for itself"

    heard_before = recording.samples(before - 3 * RATE, silent_from - before + 3 * RATE)
    cut = sounding(heard_before)[1]
    place, alike = find_place(heard_before[cut - 2 * RATE:cut], song)
    assert alike >= 0.98
    stopped_at = place + 2 * RATE

    back = recording.frames()
    desk.screen.tap("Escape")
    menu.wait_up(0)
    begin = wait_music(recording, back)
    recording.wait_for(4)
    place, alike = find_place(recording.samples(begin, 3 * RATE), song)
    assert alike >= 0.98
    assert stopped_at < place <= stopped_at + 2 * HALF, "it resumes where rendering had stopped"
    assert place % HALF < OPENING, "with the next half to render"


def test_thirty_seconds_have_no_gap_and_no_click(menu, recording, song):
    begin = recording.wait_for(32)
    heard = recording.samples(begin, 30 * RATE)
    place, _ = find_place(heard[:2 * RATE], song)
    expected = song[place:place + len(heard)].astype(int)
    assert likeness(heard, expected) >= 0.98
    difference = numpy.abs(heard - expected).max(axis=1)
    wrong = numpy.nonzero(difference > 2)[0]
    assert len(wrong) == 0, f"{len(wrong)} frames differ, the first at {wrong[0] / RATE:.3f} s"
