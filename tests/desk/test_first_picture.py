"""What stands on the screen when the menu has come up, to the pixel."""

import numpy
import pytest
from PIL import Image

from catalogue import ROWS
from desk.menu import LIST_TOP, highlight, row_place
from helpers import ROOT
from yardstick import as_565, catalogue_page

CYAN_565 = 0x07FF
WELCOME_END = slice(680, 700)  # the last of the four welcome lines
CELL_HEIGHT = 21           # of 14 points of Liberation Sans, which has the measures of Arial


@pytest.fixture(scope="module")
def first_picture(desk, module_stall):
    menu = module_stall.open_menu(desk)
    menu.wait_row(0)
    desk.wait_picture(lambda pixels: (as_565(pixels)[WELCOME_END] == CYAN_565).any(),
                      "the page's last line")
    menu.program.let_run()  # the rest of that line, and a frame that adds nothing more
    yield desk.screen.pixels()
    menu.program.kill()


def letters(picture, colour, top, bottom):
    """The box around all pixels of a colour between two heights: left, top, right, bottom."""
    rows, columns = numpy.nonzero(picture[top:bottom] == colour)
    return (columns.min(), top + rows.min(), columns.max() + 1, top + rows.max() + 1)


def test_the_banner_stands_at_192(first_picture):
    with Image.open(ROOT / "assets" / "banner.bmp") as banner:
        expected = as_565(numpy.asarray(banner.convert("RGB")))
    shown = as_565(first_picture)[0:135, 192:832]
    assert (shown == expected).all()


def test_nothing_stands_beside_the_banner(first_picture):
    assert not first_picture[0:135, 0:192].any()
    assert not first_picture[0:135, 832:1024].any()


def test_thirty_rows_stand_at_their_places(first_picture):
    for row in range(len(ROWS)):
        x, y = row_place(row)
        right_edge = x + 500 if x == 100 else 1024
        cell = first_picture[y:y + CELL_HEIGHT, x:right_edge]
        assert (cell == 255).all(axis=2).any(), f"row {row} shows no white letters"
        assert not first_picture[y + CELL_HEIGHT:y + 30, x:right_edge].any(), f"row {row} is too low"
    assert not first_picture[LIST_TOP:595, 0:100].any()
    assert not first_picture[135:LIST_TOP].any()


def test_the_first_row_is_highlighted_in_red(first_picture):
    left, top, right, bottom = highlight(first_picture)
    assert (left, top) == (100, 145)
    assert bottom - top == CELL_HEIGHT, "the red box is as high as the cell of 14 points of Arial"
    box = first_picture[top:bottom, left:right]
    assert (box[:, :, 0] > 0).all(), "the box is filled, letters and all"


def test_four_cyan_lines_stand_under_the_list(first_picture):
    picture = as_565(first_picture)
    for top in (620, 640, 660, 680):
        left, highest, _, lowest = letters(picture, CYAN_565, top, top + 20)
        assert 100 <= left <= 103
        assert top <= highest and lowest <= top + 16, "10 points of Arial fill 16 pixels"
    assert not picture[700:].any()
    assert not picture[595:620].any()


def test_the_whole_page_is_what_gdi_draws_of_it(first_picture, desk, helpers):
    expected = catalogue_page(desk, helpers, selected=0)
    different = numpy.argwhere(as_565(first_picture) != expected)
    assert len(different) == 0, f"first difference (y, x): {different[:1]}"
