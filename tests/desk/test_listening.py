"""What the comparison of a recording with the song notices, and what it lets pass."""

import numpy
import pytest

from desk.sound import RATE
from listening import follow

START = RATE


@pytest.fixture(scope="module")
def song():
    """Twelve seconds of noise, which is like itself at one place only."""
    return numpy.random.default_rng(1).integers(-9000, 9000, (12 * RATE, 2), dtype=numpy.int16)


@pytest.fixture
def heard(song):
    """Six seconds of it."""
    return song[START:START + 6 * RATE].copy()


def with_silence(heard, first, frames):
    return numpy.concatenate([heard[:first], numpy.zeros((frames, 2), heard.dtype), heard[first:]])


def test_a_faithful_recording_is_followed_from_its_begin_to_its_end(heard, song):
    found = follow(heard, song)
    assert (found.begin, found.end) == (START, START + 6 * RATE)
    assert (found.judged, found.wrong, found.gaps) == (6 * RATE, 0, [])


def test_what_the_song_has_twice_is_found_where_it_is_looked_for(heard, song):
    again = len(song) - START
    song = numpy.concatenate([song, song[START:]])
    found = follow(heard, song, again)
    assert (found.begin, found.end, found.wrong) == (START + again, START + again + 6 * RATE, 0)


def test_a_song_that_goes_on_behind_a_silence_is_right_and_the_silence_is_told(heard, song):
    found = follow(with_silence(heard, 2 * RATE, 1000), song)
    assert (found.begin, found.end) == (START, START + 6 * RATE)
    assert (found.wrong, found.gaps) == (0, [START + 2 * RATE])


def test_what_is_heard_behind_the_songs_end_is_not_judged(heard, song):
    found = follow(heard, song[:START + 4 * RATE])
    assert (found.begin, found.judged, found.wrong) == (START, 4 * RATE, 0)


def test_what_the_sound_server_lost_is_missing_and_not_wrong(heard, song):
    lost = 500
    kept = with_silence(numpy.delete(heard, slice(2 * RATE, 2 * RATE + lost), axis=0), 2 * RATE, 1000)
    found = follow(kept, song)
    assert (found.begin, found.end) == (START, START + 6 * RATE)
    assert (found.judged, found.wrong) == (6 * RATE - lost, 0)


def test_what_was_lost_shortly_before_a_silence_is_missing_and_not_wrong(heard, song):
    lost, left, silent = 182, 1900, 2 * RATE
    heard = with_silence(heard, silent, 1000)
    found = follow(numpy.delete(heard, slice(silent - left - lost, silent - left), axis=0), song)
    assert (found.begin, found.end) == (START, START + 6 * RATE)
    assert (found.judged, found.wrong) == (6 * RATE - lost - left, 0)
    assert found.gaps == [START + silent - left - lost]


def test_what_was_lost_long_before_a_silence_is_a_click(heard, song):
    heard = with_silence(heard, 2 * RATE, 1000)
    assert follow(numpy.delete(heard, slice(RATE, RATE + 182), axis=0), song).wrong > RATE // 2


def test_a_click_shortly_before_a_silence_is_wrong(heard, song):
    heard[2 * RATE - 1900:2 * RATE - 1890] = 0
    assert follow(with_silence(heard, 2 * RATE, 1000), song).wrong > 0


def test_the_rounded_edges_of_a_silence_are_not_judged(heard, song):
    heard[2 * RATE - 20:2 * RATE + 20] //= 2
    found = follow(with_silence(heard, 2 * RATE, 1000), song)
    assert (found.wrong, found.gaps) == (0, [START + 2 * RATE])


def test_a_click_two_milliseconds_from_a_silence_is_wrong(heard, song):
    heard[2 * RATE + 80:2 * RATE + 90] = 0
    assert follow(with_silence(heard, 2 * RATE, 1000), song).wrong > 0


def test_older_music_shortly_before_a_silence_is_wrong(heard, song):
    heard[2 * RATE - 1900:2 * RATE] = heard[RATE - 1900:RATE]
    assert follow(with_silence(heard, 2 * RATE, 1000), song).wrong > 1800


def test_pieces_too_short_to_be_found_count_for_begin_and_end_alone(heard, song):
    short = RATE // 10
    found = follow(with_silence(with_silence(heard, 6 * RATE - short, 1000), short, 1000), song)
    assert (found.begin, found.end) == (START, START + 6 * RATE)
    assert found.judged == 6 * RATE - 2 * short


@pytest.mark.parametrize("frames", [1, 20])
def test_a_click_is_wrong_and_no_silence(heard, song, frames):
    heard[RATE:RATE + frames] = 0
    found = follow(heard, song)
    assert found.gaps == []
    assert 0 < found.wrong <= frames


def test_older_music_is_wrong(heard, song):
    heard[2 * RATE:3 * RATE] = heard[RATE:2 * RATE]
    assert follow(heard, song).wrong > RATE // 2


def test_a_constant_is_wrong(song):
    assert follow(numpy.full((3 * RATE, 2), 77, numpy.int16), song).wrong > 2 * RATE


def test_another_song_is_wrong(song):
    other = numpy.random.default_rng(2).integers(-9000, 9000, (3 * RATE, 2), dtype=numpy.int16)
    assert follow(other, song).wrong > 2 * RATE
