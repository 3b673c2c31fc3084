"""The menu's music as it is heard, against the module library's own rendering."""

import pytest

from desk import wine
from desk.sound import RATE
from desk.waiting import wait_until
from helpers import launch
from listening import ROUNDING, follow, render_song, sounding

HALF = 25600            # frames in half of the player's buffer
BORDER = 4              # frames around the place where the halves meet: a late player stops on it
SONG_PIECES = 118       # halves rendered for comparison, 68 s: from 69 s on the song repeats itself
OPENING = RATE // 10    # what the sound server may swallow while it opens a stream
ON_THE_WAY = RATE // 2  # what server and card may still have to play when the music has stopped


@pytest.fixture(scope="module")
def song(desk, helpers):
    return render_song(desk, helpers, SONG_PIECES)


@pytest.fixture(scope="module")
def recording(desk):
    recording = desk.sound.record(desk.folder / "heard.raw")
    yield recording
    recording.stop()


@pytest.fixture(scope="module")
def menu(desk, recording, song, module_stall):
    """The menu, which plays from now on. What is to be heard is rendered before, not beside it."""
    menu = module_stall.open_menu(desk).wait_up()
    yield menu
    menu.program.kill()


@pytest.fixture(scope="module")
def opening(menu, recording):
    """The recording's first frame of music."""
    return wait_music(recording, 0)


def wait_music(recording, after):
    """Waits for the first sound after a frame of the recording, and gives its frame."""
    def first_sound():
        begin, end = sounding(recording.samples(after))
        return (after + begin,) if end > begin else None
    return wait_until(first_sound, "music")[0]


def follow_played(heard, song, first=0):
    return follow(heard, song, first, ROUNDING + wine.sound_filter().greatest_change)


def assert_faithful(heard, seconds):
    assert heard.judged >= seconds * RATE
    assert heard.wrong == 0, "a click, or the song of another moment"
    assert heard.end - heard.begin - heard.judged <= RATE, "too much of the song is missing"
    for gap in heard.gaps:
        assert BORDER < gap % HALF < HALF - BORDER, "a gap where the halves meet"


def test_the_song_is_heard_from_its_start_with_no_click_and_no_gap_where_the_halves_meet(
        opening, recording, song):
    recording.wait_for(33)
    heard = follow_played(recording.samples(opening, 33 * RATE), song)
    assert_faithful(heard, 30)
    ahead = wine.sound_filter().ringing_frames
    assert -ahead <= heard.begin - sounding(song)[0] < OPENING


def test_the_music_stops_for_an_intro_and_goes_on_further_in_the_song(opening, menu, recording,
                                                                      song, desk):
    menu.wait_unpacked()
    recording.wait_for(3)
    launch(menu, desk)
    launched = recording.wait_for(2)
    assert not recording.samples(launched + ON_THE_WAY).any(), "an intro has the sound for itself"
    stopped = follow_played(recording.samples(opening, launched + ON_THE_WAY - opening), song)
    assert_faithful(stopped, 3)

    back = recording.frames()
    desk.screen.tap("Escape")
    menu.wait_up(0)
    begin = wait_music(recording, back)
    recording.wait_for(4)
    again = follow_played(recording.samples(begin, 4 * RATE), song, stopped.end)
    assert_faithful(again, 3)
    assert stopped.end < again.begin <= stopped.end + 2 * HALF, "it resumes where rendering stopped"
    ahead = wine.sound_filter().ringing_frames
    assert (again.begin + ahead) % HALF < OPENING + ahead, "with the next half to render"
