"""The module that the program carries: made by its sources, with the fields that it must have, and
endless when the library plays it as the program does."""

import pathlib
import struct
import subprocess
import sys

import numpy as np
import pytest

from modplug import RATE, Player, settings_in_use
from xm_reader import read_instruments, read_patterns

ASSETS = pathlib.Path(__file__).resolve().parents[2] / "assets"
SOURCES = ASSETS / "song"
sys.path.insert(0, str(SOURCES))

import notation  # noqa: E402
import xm  # noqa: E402
from make_song import parts  # noqa: E402

ORDERS = [9, 0, 1, 2, 3, 6, 7, 4, 5, 10, 8]
LOOP = list(range(2, 11))
ROWS, CHANNELS = 64, 4
SAMPLE_LENGTHS = [78, 714, 984, 62, 354, None]
LOOPED = [1, 4]
POSITION_JUMP, PATTERN_BREAK, EXTENDED = 0x0B, 0x0D, 0x0E
REPEAT_SECONDS = len(LOOP) * ROWS * 6 * 2.5 / 125


@pytest.fixture(scope="module")
def data():
    return (ASSETS / "module.xm").read_bytes()


@pytest.fixture(scope="module")
def patterns(data):
    return read_patterns(data)[0]


@pytest.fixture(scope="module")
def instruments(data):
    return read_instruments(data, read_patterns(data)[1])[0]


def test_the_committed_file_is_what_the_sources_make(data, tmp_path):
    made = tmp_path / "module.xm"
    subprocess.run([sys.executable, "-B", str(SOURCES / "make_song.py"), str(made)], check=True)
    assert made.read_bytes() == data


def test_length(data):
    assert len(data) == 13933


@pytest.mark.parametrize("offset, layout, value", [
    (0, "17s", b"Extended Module: "), (37, "B", 0x1A), (38, "20s", b"FastTracker v2.00   "),
    (58, "H", 0x0104), (60, "I", 276), (64, "H", 11), (66, "H", 0), (68, "H", 4), (70, "H", 11),
    (72, "H", 6), (74, "H", 0), (76, "H", 6), (78, "H", 125),
    (80, "256s", bytes(ORDERS).ljust(256, b"\0")),
])
def test_header_field(data, offset, layout, value):
    assert struct.unpack_from("<" + layout, data, offset) == (value,)


def test_the_title_is_a_text(data):
    assert data[17:37].decode("ascii").strip()


def test_every_pattern_has_64_rows_of_four_channels(patterns):
    assert [(len(rows), {len(row) for row in rows}) for rows in patterns] == [(64, {4})] * 11


def test_the_file_ends_with_its_last_instrument(data):
    assert read_instruments(data, read_patterns(data)[1])[1] == len(data)


@pytest.mark.parametrize("number, length", enumerate(SAMPLE_LENGTHS, 1))
def test_instrument(instruments, number, length):
    instrument = instruments[number - 1]
    assert instrument["length"] == length
    assert instrument["samples"] == (1 if length else 0)
    if length:
        assert instrument["kind"] == (1 if number in LOOPED else 0)  # 8 bits; forward loop or none


@pytest.mark.parametrize("number", LOOPED)
def test_a_loop_ends_with_its_sample(instruments, number):
    start, length = instruments[number - 1]["loop"]
    assert length > 0
    assert start + length == instruments[number - 1]["length"]


def test_every_instrument_name_holds_a_line_of_the_credits(instruments):
    assert all(instrument["name"].decode("ascii").strip() for instrument in instruments)


def test_the_song_moves_by_two_jumps_and_nothing_else(patterns):
    moves = [(number, row, channel, cell[3:])
             for number, rows in enumerate(patterns)
             for row, cells in enumerate(rows)
             for channel, cell in enumerate(cells)
             if cell[3] in (POSITION_JUMP, PATTERN_BREAK)
             or (cell[3] == EXTENDED and cell[4] >> 4 in (0x6, 0xE))]  # loops and delays of rows
    assert moves == [(8, 63, 0, (POSITION_JUMP, 2)), (9, 3, 1, (POSITION_JUMP, 1))]


def test_every_instrument_with_a_sample_is_played_and_the_empty_one_is_not(patterns):
    played = {cell[1] for rows in patterns for row in rows for cell in row}
    assert played == {0, 1, 2, 3, 4, 5}


# What the library makes of it.


def test_the_library_renders_with_the_settings_of_the_program():
    assert settings_in_use() == {
        "mFlags": 3, "mChannels": 2, "mBits": 16, "mFrequency": RATE, "mResamplingMode": 1,
        "mReverbDepth": 0, "mReverbDelay": 0, "mBassAmount": 0, "mBassRange": 0,
        "mSurroundDepth": 0, "mSurroundDelay": 0, "mLoopCount": -1}


def orders_heard(data, seconds):
    """The orders in the sequence in which they are heard, each with its length in seconds."""
    step, heard = 441, []
    with Player(data) as player:
        for _ in range(int(seconds * RATE / step)):
            player.read(step)
            if not heard or heard[-1][0] != player.order():
                heard.append([player.order(), 0.0])
            heard[-1][1] += step / RATE
    return heard


def test_the_opening_is_heard_once_and_the_rest_for_ever(data):
    heard = orders_heard(data, 3.5 * REPEAT_SECONDS)
    assert [order for order, _ in heard][:2 + 3 * len(LOOP)] == [0, 1] + 3 * LOOP


def test_the_first_order_is_left_after_four_rows_and_all_others_are_heard_whole(data):
    heard = orders_heard(data, 90)
    assert heard[0][1] < 2
    assert [length for _, length in heard[1:11]] == pytest.approx([7.68] * 10, abs=0.03)


def loudness(sound):
    """RMS in decibels of full scale."""
    return 20 * np.log10(np.sqrt(np.mean((sound / 32768.0) ** 2)) + 1e-9)


def test_it_still_sounds_after_the_fortieth_repeat(data):
    with Player(data) as player:
        for _ in range(41):
            player.read(int(REPEAT_SECONDS * RATE))
        later = player.read(60 * RATE)
    seconds = later.reshape(60, RATE, 2)
    assert min(loudness(second) for second in seconds) > -30


def test_without_its_last_jump_it_would_fall_silent(data):
    jump = bytes([POSITION_JUMP, 2])
    assert data.count(jump) == 1
    with Player(data.replace(jump, bytes([0x0C, 2]))) as player:
        player.read(int((REPEAT_SECONDS + 12) * RATE))
        assert not player.read(10 * RATE).any()


@pytest.fixture(scope="module")
def three_minutes(data):
    with Player(data) as player:
        return player.read(180 * RATE)


def loop_start(data):
    """The frame on which order 2 is first heard."""
    step, frame = 63, 0
    with Player(data) as player:
        while player.order() < 2:
            player.read(step)
            frame += step
    return frame


def roughness(sound, frame):
    """The largest step between neighbouring samples within 30 ms around a frame."""
    near = sound[frame - 1323:frame + 1323].astype(int)
    return np.abs(np.diff(near, axis=0)).max()


def test_the_seam_is_no_rougher_than_any_other_bar_line(data, three_minutes):
    bar, start = int(1.92 * RATE), loop_start(data)
    inside = [roughness(three_minutes, start + n * bar) for n in range(1, 36)]
    seam = roughness(three_minutes, start + 36 * bar)
    assert seam <= max(inside)
    assert seam <= 2 * np.median(inside)


def test_the_second_repeat_is_the_first_one_again(data, three_minutes):
    start, length = loop_start(data), int(REPEAT_SECONDS * RATE)
    # The first bar is left out: it still carries what the opening leaves behind.
    first = three_minutes[start + 2 * RATE:start + length, 0].astype(float)
    second = three_minutes[start + length + 2 * RATE:start + 2 * length, 0].astype(float)
    assert np.corrcoef(first, second)[0, 1] > 0.99


def test_it_does_not_clip(three_minutes):
    assert (np.abs(three_minutes.astype(int)) >= 32767).mean() < 0.001


def test_its_level_is_that_of_other_modules(three_minutes):
    assert -20 < loudness(three_minutes) < -12


def test_both_sides_are_about_as_loud(three_minutes):
    left, right = three_minutes[:, 0], three_minutes[:, 1]
    assert abs(loudness(left) - loudness(right)) < 1.5


def one_note(instrument, note):
    """A module that holds one of the song's instruments and plays one long note on it."""
    body = dict(parts())[f"instrument {instrument}"]
    silent = [notation.Cell()] * CHANNELS
    rows = [[notation.Cell(notation.note_number(note), 1)] + silent[1:]] + [silent] * 63
    return (xm.header("", "FastTracker v2.00", [0], CHANNELS, 1, 1, 6, 125)
            + xm.pattern(rows) + body)


def fundamental(sound):
    """The frequency of the lowest strong partial, in hertz."""
    wave = sound.mean(axis=1) * np.hanning(len(sound))
    spectrum = np.abs(np.fft.rfft(wave, 8 * len(wave)))
    strong = np.flatnonzero(spectrum > 0.3 * spectrum.max())[0]
    hump = spectrum[strong:strong + 80]
    return (strong + hump.argmax()) * RATE / (8 * len(wave))


@pytest.mark.parametrize("instrument", LOOPED)
@pytest.mark.parametrize("note, hertz", [("A-2", 110.0), ("C-4", 261.63), ("A-4", 440.0),
                                         ("E-5", 659.26), ("C-6", 1046.5)])
def test_the_tonal_instruments_are_in_tune(instrument, note, hertz):
    with Player(one_note(instrument, note)) as player:
        heard = fundamental(player.read(RATE // 2))
    assert abs(1200 * np.log2(heard / hertz)) < 10  # a tenth of a semitone


# The notation.


def test_a_row_is_read_as_it_is_written():
    [row] = notation.rows("# a remark\n00 | C-4 1 v64 037 | === . ... ... | ... . p15 ... |"
                          " A#3 5 ... B02\n")
    assert row == [(49, 1, 0x50, 0, 0x37), (97, 0, 0, 0, 0), (0, 0, 0xCF, 0, 0),
                   (47, 5, 0, 0x0B, 0x02)]


@pytest.mark.parametrize("line", [
    "01 | ... . ... ...", "00 | H-4 1 ... ...", "00 | C-4 1 v65 ...", "00 | C-4 1 z00 ...",
    "00 | C-4 1 ...", "00 | C-4 1 ... 03G",
])
def test_a_line_that_makes_no_sense_is_named(line):
    with pytest.raises(ValueError, match="cannot read"):
        notation.rows(line)


def test_only_columns_in_use_are_stored():
    assert xm.packed_cell(notation.Cell()) == b"\x80"
    assert xm.packed_cell(notation.Cell(note=49, parameter=0x37)) == b"\x91\x31\x37"
    assert xm.packed_cell(notation.Cell(49, 1, 0x50, 4, 0x81)) == b"\x31\x01\x50\x04\x81"
