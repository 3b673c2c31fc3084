"""The cursor keys on the catalogue page, pressed on the real program."""

import time

import pytest

from desk.menu import ROWS, ROWS_A_COLUMN, WINDOW_CLASS, highlight, highlighted_row
from helpers import Windows, reports
from yardstick import catalogue_page, wait_page

OTHER_KEYS = ["Tab", "space", "a", "F1", "Home", "End", "Page_Down", "Delete", "Shift_L", "1"]


@pytest.fixture(autouse=True)
def start_on_row_0(menu):
    menu.select(0)


def assert_stays(menu, row):
    """The program goes on for a good number of frames, and nothing has changed."""
    menu.program.let_run(seconds=0.2, pauses=100)
    assert highlighted_row(menu.desk.screen.pixels()) == row


@pytest.mark.parametrize("first", [0, ROWS_A_COLUMN])
def test_down_walks_through_a_column_and_wraps_within_it(menu, first):
    menu.select(first)
    for step in range(1, ROWS_A_COLUMN):
        menu.step("Down", first + step)
    menu.step("Down", first)


@pytest.mark.parametrize("first", [0, ROWS_A_COLUMN])
def test_up_wraps_within_a_column_and_walks_back(menu, first):
    menu.select(first)
    for step in reversed(range(ROWS_A_COLUMN)):
        menu.step("Up", first + step)


def test_left_and_right_are_the_same_toggle_on_every_height(menu):
    for row in range(ROWS_A_COLUMN):
        there, back = ("Left", "Left") if row % 2 else ("Right", "Right")
        menu.step(there, row + ROWS_A_COLUMN)
        menu.step(back, row)
        menu.step("Down", (row + 1) % ROWS_A_COLUMN)


@pytest.mark.parametrize("there, back", [("Left", "Right"), ("Right", "Left")])
def test_left_and_right_lead_back_from_each_other(menu, there, back):
    menu.step(there, ROWS_A_COLUMN)
    menu.step(back, 0)


def test_row_28_and_row_13_are_neighbours(menu):
    menu.select(28)
    menu.step("Left", 13)
    menu.step("Left", 28)


def test_a_key_acts_when_it_is_let_go_and_not_before(menu):
    menu.desk.screen.key_down("Down")
    assert_stays(menu, 0)
    menu.desk.screen.key_up("Down")
    menu.wait_row(1)
    assert_stays(menu, 1)


def test_a_key_held_for_long_does_not_repeat(menu):
    menu.desk.screen.key_down("Down")
    held_since = time.monotonic()
    while time.monotonic() - held_since < 1.2:  # an X server repeats a key after 0.66 s
        assert_stays(menu, 0)
    menu.desk.screen.key_up("Down")
    menu.wait_row(1)
    assert_stays(menu, 1)


def test_left_and_right_let_go_together_lead_there_and_back(menu):
    menu.press("Left", "Right")
    assert_stays(menu, 0)


def test_up_and_down_let_go_together_lead_there_and_back(menu):
    menu.press("Up", "Down")
    assert_stays(menu, 0)


def test_a_second_key_acts_while_the_first_is_held(menu):
    menu.desk.screen.key_down("Down")
    menu.step("Right", 15)
    menu.desk.screen.key_up("Down")
    menu.wait_row(16)


def test_other_keys_have_no_effect(menu):
    for key in OTHER_KEYS:
        menu.press(key)
        assert_stays(menu, 0)


@pytest.mark.parametrize("row", [1, 14, 15, 28, 29])
def test_exactly_the_selected_row_is_highlighted(menu, desk, helpers, row):
    menu.select(row)
    wait_page(desk, catalogue_page(desk, helpers, selected=row))


def test_the_red_box_is_as_wide_as_the_words(menu, desk, helpers):
    widths = {}
    for row in (6, 29):
        menu.select(row)
        wait_page(desk, catalogue_page(desk, helpers, selected=row))
        left, top, right, bottom = highlight(desk.screen.pixels())
        widths[row] = right - left
        assert bottom - top == 21
    assert widths[29] < 60 < 300 < widths[6]


def test_the_close_command_has_no_effect(menu, desk, helpers):
    desk.ask(helpers.look, "close", WINDOW_CLASS)
    assert_stays(menu, 0)
    assert WINDOW_CLASS in Windows(desk, helpers).classes()
    menu.step("Down", 1)


@pytest.mark.parametrize("button", [1, 2, 3, 4, 5])
def test_mouse_buttons_have_no_effect(menu, desk, button):
    desk.screen.click(150, 215, button)
    desk.screen.click(620, 700, button)
    assert_stays(menu, 0)
    menu.step("Down", 1)


def test_no_key_test_has_started_an_intro(menu, desk):
    """Stands last: after all those presses no program has run and the menu is still there."""
    assert reports(desk) == 0
    assert menu.program.alive()
    assert highlighted_row(desk.screen.pixels()) in range(ROWS)
