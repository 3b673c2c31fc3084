"""The banner that the program carries: made by its sources, a plain BMP, fit for its screen."""

import pathlib
import struct
import subprocess
import sys

import numpy as np
import pytest

ASSETS = pathlib.Path(__file__).resolve().parents[2] / "assets"
SOURCES = ASSETS / "banner"
sys.path.insert(0, str(SOURCES))

from birds import TILE_HEIGHT, TILE_WIDTH, tessellation  # noqa: E402
from bitmap import bmp_bytes, to_565  # noqa: E402
from geometry import signed_distance  # noqa: E402
from lettering import TALL, TOP, WORD  # noqa: E402
from letters import laid_out  # noqa: E402
from sheet import CENTRE_X  # noqa: E402

WIDTH, HEIGHT = 640, 135


@pytest.fixture(scope="module")
def data():
    return (ASSETS / "banner.bmp").read_bytes()


@pytest.fixture(scope="module")
def picture(data):
    """Rows top to bottom, red, green and blue."""
    stored = np.frombuffer(data[54:], np.uint8).reshape(HEIGHT, WIDTH, 3)
    return stored[::-1, :, ::-1]


@pytest.fixture(scope="module")
def luminance(picture):
    """What the eye takes in of each pixel, 0 to 1."""
    return (picture / 255.0) ** 2.2 @ np.array([0.2126, 0.7152, 0.0722])


def letter_distances():
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH] + 0.5
    shapes = laid_out(WORD, CENTRE_X, TOP, TALL)
    return [signed_distance(x, y, rings) for rings in shapes]


def test_the_committed_file_is_what_the_sources_make(data, tmp_path):
    made = tmp_path / "banner.bmp"
    subprocess.run([sys.executable, "-B", str(SOURCES / "make_banner.py"), str(made)], check=True)
    assert made.read_bytes() == data


@pytest.mark.parametrize("offset, layout, value", [
    (0, "2s", b"BM"), (2, "I", 259254), (6, "I", 0), (10, "I", 54), (14, "I", 40),
    (18, "i", 640), (22, "i", 135), (26, "H", 1), (28, "H", 24), (30, "I", 0),
    (34, "I", 259200), (38, "16s", bytes(16)),
])
def test_header_field(data, offset, layout, value):
    assert struct.unpack_from("<" + layout, data, offset) == (value,)


def test_the_file_ends_with_its_last_row(data):
    assert len(data) == 259254


def test_rows_are_stored_bottom_to_top_and_pixels_blue_first():
    rgb = np.zeros((2, 4, 3), np.uint8)
    rgb[0, 0] = (1, 2, 3)
    pixels = bmp_bytes(rgb)[54:]
    assert pixels == bytes(12) + bytes([3, 2, 1]) + bytes(9)


def test_a_screen_of_5_6_and_5_bits_shows_every_pixel_unchanged(picture):
    for channel, bits in enumerate((5, 6, 5)):
        levels = picture[:, :, channel].astype(int)
        kept = levels >> (8 - bits)
        assert (levels == (kept << (8 - bits) | kept >> (2 * bits - 8))).all()


def test_dithering_keeps_the_mean_of_shades_between_two_levels():
    for shade in (0.013, 0.1, 0.37, 0.5, 0.921):
        flat = np.full((64, 64, 3), shade)
        assert to_565(flat).mean(axis=(0, 1)) / 255 == pytest.approx([shade] * 3, abs=0.004)


def test_black_and_white_stay_without_grain():
    assert (to_565(np.zeros((64, 64, 3))) == 0).all()
    assert (to_565(np.ones((64, 64, 3))) == 255).all()


def test_the_border_is_black_and_the_picture_rises_from_it_gently(picture):
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH]
    border = np.minimum(np.minimum(x, WIDTH - 1 - x), np.minimum(y, HEIGHT - 1 - y))
    assert picture[border <= 1].max() == 0
    assert picture[border == 2].mean() < 4
    assert picture[border == 4].mean() < 16


def test_every_letter_stands_out_from_what_is_around_it(luminance):
    distances = letter_distances()
    around = np.max(distances, axis=0)
    assert len(distances) == len("OSTRIK")
    for letter, distance in zip(WORD, distances):
        face = luminance[distance > 1].mean()
        ground = luminance[(distance > -9) & (around < -1)].mean()
        assert (face + 0.05) / (ground + 0.05) >= 4.5, letter


def test_the_lettering_can_be_told_from_its_brightness_alone(luminance):
    around = np.max(letter_distances(), axis=0)
    bright = luminance > 0.12
    assert bright[around > 1].mean() > 0.8
    assert bright[(around < -1) & (around > -9)].mean() < 0.1


def test_both_ends_show_birds_in_two_colours(picture):
    left, right = picture[:, 8:90].astype(int), picture[:, 550:632].astype(int)
    assert ((left[:, :, 2] - left[:, :, 0]) > 60).mean() > 0.05
    assert ((right[:, :, 0] - right[:, :, 1]) > 60).mean() > 0.05


@pytest.mark.parametrize("bend", [0.0, 0.5, 1.0, "growing"])
def test_the_tiles_leave_no_gap_and_do_not_overlap(bend):
    def bend_at(x):
        return np.clip(x / 300, 0, 1) if bend == "growing" else np.full_like(x, bend)

    points = np.random.RandomState(7).uniform(0, 1, (1500, 2))
    x, y = (points * (5 * TILE_WIDTH, 4 * TILE_HEIGHT)).T
    owners = np.zeros(len(points), int)
    for tile in tessellation((0, 0), range(-8, 4), range(-3, 8), bend_at):
        owners += signed_distance(x, y, [tile.outline]) > 0
    assert (owners == 1).all()
