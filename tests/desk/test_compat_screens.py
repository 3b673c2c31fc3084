"""The menu with the library beside it, on screens that do not have the menu's mode: a bare one, and a
larger one with a window manager."""

import shutil
import subprocess

import numpy
import pytest

from catalogue import INTRO_FILES
from compat import OVERRIDE, ScaledScreen
from desk.menu import INFO_ROW, ROWS_A_COLUMN, WINDOW_CLASS, highlighted_row
from desk.waiting import wait_until
from helpers import BUILD, Stall, Windows, launch, launch_and_leave, wait_report
from yardstick import catalogue_page, info_page

ROUNDING = 2  # of two scalings, one for each direction
SCREENS = {"1280x1024": ((1280, 1024), False), "1920x1080 managed": ((1920, 1080), True)}


@pytest.fixture(scope="module", params=SCREENS.values(), ids=SCREENS.keys())
def stage(request, make_desk, helpers, tmp_path_factory):
    """A desk with a running menu whose probes are unpacked."""
    size, managed = request.param
    desk = make_desk(screen_size=size, desktop_size=None)
    desk.environment["WINEDLLOVERRIDES"] += OVERRIDE
    desk.screen = ScaledScreen(desk.screen)
    manager = start_manager(desk) if managed else None
    stall = Stall(tmp_path_factory.mktemp("stall"), helpers)
    shutil.copy2(BUILD / "ddraw.dll", stall.folder)
    stall.set_info(b"a line of the info file\r\n")
    menu = stall.open_menu(desk).wait_up()
    menu.wait_unpacked()
    yield menu
    menu.program.kill()
    if manager:
        manager.terminate()
        manager.wait()


def start_manager(desk):
    """Makes Wine leave its windows to a window manager, which headless settings prevent."""
    desk.ask("reg.exe", "add", r"HKCU\Software\Wine\X11 Driver", "/v", "Managed", "/d", "Y", "/f")
    manager = subprocess.Popen(["openbox", "--sm-disable"], env=desk.environment,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)

    def is_up():
        done = subprocess.run(["xdotool", "get_desktop"], env=desk.environment,
                              capture_output=True)
        return done.returncode == 0
    wait_until(is_up, "the window manager")
    return manager


def colors(picture):
    """A 5-6-5 picture in the colors of a screen, which fill the lower bits with the upper ones."""
    red, green, blue = picture >> 11, picture >> 5 & 63, picture & 31
    return numpy.stack([red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2], axis=2)


def wait_page(menu, page):
    """Waits until the whole screen is what the page becomes when it is scaled."""
    screen = menu.desk.screen
    expected = screen.scaled(colors(page))

    def seen():
        return (numpy.abs(screen.raw() - expected) <= ROUNDING).all(axis=2)[:-16].all()
    wait_until(seen, "the page on the whole screen")


def test_the_first_picture_fills_the_screen_to_the_pixel(stage, helpers):
    wait_page(stage, catalogue_page(stage.desk, helpers, selected=0))


def test_the_cursor_keys_lead_through_both_columns(stage):
    for key, row in (("Down", 1), ("Right", 16), ("Up", 15), ("Up", 29), ("Left", 14), ("Down", 0)):
        stage.step(key, row)


def test_an_intro_finds_the_desktop_as_it_was(stage, helpers):
    stage.select(3)
    report = launch(stage, stage.desk)
    assert report["mode"] == "{}x{}".format(*stage.desk.screen.size)
    assert WINDOW_CLASS not in Windows(stage.desk, helpers).classes()
    assert "DirectDraw picture" not in Windows(stage.desk, helpers).classes()
    stage.desk.screen.tap("Escape")
    stage.wait_up(3)


def test_every_intro_comes_back_to_its_row(stage, request):
    """All of them on the first screen; two on the other."""
    order = stage.desk.drive_c / "probe" / "leave"
    rows = range(len(INTRO_FILES)) if "1280x1024]" in request.node.name else (0, 17)
    order.touch()
    for row in rows:
        stage.select(row)
        number = len(list(order.parent.glob("run-*.txt"))) + 1
        stage.press("Return")
        assert wait_report(stage.desk, number)["program"].endswith(INTRO_FILES[row])
        stage.wait_up(row)
    order.unlink()


def test_the_info_page_fills_the_screen(stage, helpers):
    stage.select(INFO_ROW)
    stage.press("Return")
    wait_page(stage, info_page(stage.desk, helpers, [b"a line of the info file"]))
    stage.press("Escape")
    stage.wait_row(INFO_ROW)


def lose_and_regain(menu, helpers, row):
    desk = menu.desk
    desk.ask(helpers.look, "away")
    wait_until(lambda: highlighted_row(desk.screen.pixels()) is None, "the menu to be minimized")
    desk.ask(helpers.look, "back", WINDOW_CLASS)
    menu.wait_up(row)


def test_the_menu_survives_losses_of_the_foreground(stage, helpers, request):
    if "managed" in request.node.name:
        pytest.skip("not understood yet: in one run of three the window manager did not bring the "
                    "menu back")
    stage.select(0)
    losses = 20
    for turn in range(losses):
        lose_and_regain(stage, helpers, turn % ROWS_A_COLUMN)
        stage.step("Down", (turn + 1) % ROWS_A_COLUMN)
    launch_and_leave(stage, stage.desk, losses % ROWS_A_COLUMN)


def test_leaving_gives_the_screen_back(stage, helpers):
    """Stands last, since it ends the menu that the tests share."""
    stage.press("Escape")
    assert stage.program.wait_end() == 0
    assert not stage.staging_folder.exists()
    wait_until(lambda: not stage.desk.screen.raw()[:-16].any(), "the bare screen")
