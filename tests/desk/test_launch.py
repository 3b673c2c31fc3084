"""Running intros from the menu and coming back, again and again."""

import pytest

from catalogue import INTRO_FILES
from desk.menu import WINDOW_CLASS, highlighted_row
from helpers import Windows, launch, launch_and_leave, reports, wait_report

X_REPEAT_SECONDS = 0.7  # an X server repeats a key after 0.66 s


@pytest.fixture
def orders(desk):
    """The folder in which a file by its name orders the probe to `crash` or to `leave`."""
    folder = desk.drive_c / "probe"
    yield folder
    for order in ("crash", "leave"):
        (folder / order).unlink(missing_ok=True)


def windows_path(menu, desk):
    """The staging folder as a Windows program names it."""
    below_c = menu.staging_folder.relative_to(desk.drive_c)
    return "C:\\" + str(below_c).replace("/", "\\")


def test_every_row_runs_its_own_file_and_the_menu_comes_back_on_it(menu, desk, orders):
    (orders / "leave").touch()
    folder = windows_path(menu, desk)
    for row, name in enumerate(INTRO_FILES):
        menu.select(row)
        menu.press("Return")
        report = wait_report(desk, row + 1)
        assert report["program"] == f"{folder}\\{name}"
        assert report["folder"] == folder
        assert report["command"].strip() == f'"{folder}\\{name}"', "an intro gets no arguments"
        menu.wait_up(row)


def test_the_same_row_runs_again_and_again(menu, desk):
    menu.select(17)
    for _ in range(5):
        report = launch_and_leave(menu, desk, 17)
        assert report["program"].endswith(INTRO_FILES[17])


def test_the_menu_has_no_window_while_an_intro_runs(menu, desk, helpers):
    menu.select(4)
    launch(menu, desk)
    windows = Windows(desk, helpers)
    assert windows.titles("Probe") == [INTRO_FILES[4]]
    assert WINDOW_CLASS not in windows.classes()
    desk.screen.tap("Escape")
    menu.wait_up(4)
    assert Windows(desk, helpers).titles(WINDOW_CLASS) == ["Ostrik Tessel Intros 2009 Keldara"]


def test_the_menu_sleeps_while_an_intro_runs(menu, desk):
    launch(menu, desk)
    assert menu.program.cpu_share(1.0) < 0.1
    desk.screen.tap("Escape")
    menu.wait_up(4)


def test_an_intro_that_crashes_is_an_intro_that_has_ended(menu, desk, orders):
    menu.select(9)
    (orders / "crash").touch()
    for _ in range(2):
        number = reports(desk) + 1
        menu.press("Return")
        wait_report(desk, number)
        menu.wait_up(9)
    (orders / "crash").unlink()
    launch_and_leave(menu, desk, 9)


def test_the_enter_that_launched_has_no_later_effect(menu, desk):
    menu.select(2)
    launch_and_leave(menu, desk, 2)
    before = reports(desk)
    menu.program.let_run(seconds=0.3, pauses=150)
    assert reports(desk) == before
    assert highlighted_row(desk.screen.pixels()) == 2


def test_keys_pressed_and_let_go_during_an_intro_have_no_effect(menu, desk):
    launch(menu, desk)
    for key in ("Down", "Right", "Return"):
        desk.screen.tap(key)
    desk.screen.tap("Escape")
    menu.wait_up(2)
    menu.program.let_run(seconds=0.2, pauses=100)
    assert highlighted_row(desk.screen.pixels()) == 2


def hold_over_the_return(menu, desk, key, row):
    """Holds a key that is down before the menu is back until the X server has repeated it: Wine
    reports a key that was already down to DirectInput only then."""
    desk.screen.key_down(key)
    (desk.drive_c / "probe" / "leave").touch()
    menu.wait_row(row)
    menu.program.let_run(seconds=X_REPEAT_SECONDS)
    desk.screen.synchronize()
    menu.program.let_run()
    assert menu.program.alive()
    assert highlighted_row(desk.screen.pixels()) == row
    desk.screen.key_up(key)


def test_a_key_held_when_the_menu_comes_back_acts_on_its_release(menu, desk, orders):
    menu.select(2)
    launch(menu, desk)
    hold_over_the_return(menu, desk, "Down", 2)
    menu.wait_row(3)


def test_escape_held_over_the_return_ends_the_program_on_its_release(menu, desk, orders):
    """Stands last, since it ends the menu that the tests share."""
    menu.select(3)
    launch(menu, desk)
    hold_over_the_return(menu, desk, "Escape", 3)
    assert menu.program.wait_end() == 0
    assert not menu.staging_folder.exists()
