"""The display's mode over a launch, on a desktop that has another mode than the menu's."""

import pytest

from desk.menu import highlighted_row
from helpers import launch, shows_probe

DESKTOP = (1280, 1024)


@pytest.fixture(scope="module")
def desk(make_desk):
    return make_desk(screen_size=DESKTOP, desktop_size=DESKTOP)


def test_an_intro_finds_the_desktops_own_mode(menu, desk):
    for row in (0, 1, 2):
        menu.select(row)
        report = launch(menu, desk)
        assert report["mode"] == "1280x1024"
        desk.screen.tap("Escape")
        menu.wait_up(row)


def test_the_menu_takes_its_mode_again_after_an_intro(menu, desk, helpers):
    assert mode_seen_by_others(desk, helpers) == "1024x768"
    launch(menu, desk)
    assert mode_seen_by_others(desk, helpers) == "1280x1024"
    desk.screen.tap("Escape")
    menu.wait_up(2)
    assert mode_seen_by_others(desk, helpers) == "1024x768"


def mode_seen_by_others(desk, helpers):
    return desk.ask(helpers.look, "mode").strip()


def test_leaving_gives_the_desktop_its_mode_back(menu, desk, helpers):
    """Stands last, since it ends the menu that the tests share."""
    menu.press("Escape")
    assert menu.program.wait_end() == 0
    assert mode_seen_by_others(desk, helpers) == "1280x1024"
    # The X server closes a program's windows a moment after the program's end.
    desk.wait_picture(lambda pixels: highlighted_row(pixels) is None and not shows_probe(pixels),
                      "the desktop without the menu")
