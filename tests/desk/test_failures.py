"""What the user meets when something that the menu needs is missing."""

import time

import pytest

from catalogue import INTRO_FILES
from desk.menu import STAGED_NAME, WINDOW_CLASS, highlight
from desk.waiting import wait_until
from desk.wine import FAULT_CODES
from helpers import Windows, launch_and_leave, reports, wait_box


def press_ok(desk):
    desk.screen.focus_top_window("^Error$")
    desk.screen.tap("Return")


def press_ok_of_the_shell(desk, helpers):
    """The shell, as the second way of starting a program, tells of its own failure in a box of
    its own: the menu waits for that box to go, and knows nothing of it."""
    words = wait_box(desk, helpers, "Error")
    assert not any("OstrikVelmora" in word for word in words)
    press_ok(desk)


def test_without_the_data_file_a_box_names_it_and_the_program_ends(desk, stall, open_menu, helpers):
    staging = desk.temp_folder / "Qev"
    (staging / "old").mkdir(parents=True)
    stall.data_file.unlink()
    menu = open_menu(desk)
    assert "Can't open OstrikVelmora2009.dat" in wait_box(desk, helpers, "Error")
    assert not staging.exists(), "the old folder goes before the data file is looked for"
    assert WINDOW_CLASS not in Windows(desk, helpers).classes()
    assert highlight(desk.screen.pixels()) is None
    press_ok(desk)
    assert menu.program.wait_end() == 0
    assert not staging.exists()


def test_a_data_file_that_is_a_folder_is_not_noticed(desk, stall, open_menu, helpers):
    stall.data_file.unlink()
    stall.data_file.mkdir()
    menu = open_menu(desk)
    press_ok_of_the_shell(desk, helpers)
    menu.wait_up()
    assert menu.staging_folder.is_dir()
    assert not list(menu.staging_folder.iterdir()), "nothing could be copied"
    menu.press("Escape")
    assert menu.program.wait_end() == 0
    assert not menu.staging_folder.exists()


def test_an_empty_data_file_is_not_noticed(desk, stall, open_menu, helpers):
    stall.data_file.write_bytes(b"")
    menu = open_menu(desk)
    press_ok_of_the_shell(desk, helpers)
    menu.wait_up()
    assert (menu.staging_folder / STAGED_NAME).stat().st_size == 0
    menu.press("Escape")
    assert menu.program.wait_end() == 0


@pytest.fixture
def hung_menu(desk, open_menu, helpers):
    """A menu that was asked for an intro which the data file does not hold."""
    menu = open_menu(desk, unpacks=INTRO_FILES[1:]).wait_up()
    menu.wait_unpacked()
    menu.select(1)
    launch_and_leave(menu, desk, 1)
    menu.select(0)
    menu.press("Return")
    press_ok_of_the_shell(desk, helpers)
    wait_until(lambda: not Windows(desk, helpers).classes(), "the shell's box to go")

    def hangs():
        pauses, used = menu.program.pauses(), menu.program.cpu_seconds()
        time.sleep(0.2)  # an interval to compare, not a wait for something
        return menu.program.pauses() == pauses and menu.program.cpu_seconds() > used
    wait_until(hangs, "the menu to be done with the shell and to hang")
    return menu


def test_a_missing_intro_hangs_the_menu_busy_and_without_a_window(desk, hung_menu, helpers):
    assert hung_menu.program.alive(), "it hangs, and does not end"
    # How large its share is depends on who else runs; that it never waits for anything does not.
    pauses, used = hung_menu.program.pauses(), hung_menu.program.cpu_seconds()
    wait_until(lambda: hung_menu.program.cpu_seconds() > used + 0.3, "the menu to be busy")
    assert hung_menu.program.pauses() == pauses
    assert Windows(desk, helpers).classes() == set()
    assert reports(desk) == 1, "only the intro before it has run"
    recording = desk.sound.record(desk.folder / "hung.raw")
    heard = recording.samples(recording.wait_for(0.5))
    recording.stop()
    assert not heard.any(), "the music has stopped"


def test_a_display_that_refuses_the_mode_ends_the_program_by_a_fault(make_desk, open_menu, helpers):
    desk = make_desk(screen_size=(1280, 1024), desktop_size=None)
    menu = open_menu(desk)
    assert menu.program.wait_end() in FAULT_CODES
    assert Windows(desk, helpers).classes() == set(), "no box tells of it"
    assert menu.staging_folder.exists(), "the fault leaves no time to tidy up"


def assert_gives_up_at_once(desk, menu, helpers):
    """The box of a start that failed, before any screen has opened and anything is staged."""
    assert "Can't initialize system" in wait_box(desk, helpers, "Error")
    assert WINDOW_CLASS not in Windows(desk, helpers).classes()
    assert desk.ask(helpers.look, "mode").strip() == "1280x1024", "no screen has been opened"
    assert not menu.staging_folder.exists()
    press_ok(desk)
    assert menu.program.wait_end() == 0


def test_without_a_sound_card_a_box_tells_and_no_screen_opens(make_desk, open_menu, helpers):
    desk = make_desk(sound=False, screen_size=(1280, 1024), desktop_size=(1280, 1024))
    assert_gives_up_at_once(desk, open_menu(desk), helpers)


@pytest.fixture(scope="module")
def larger_desk(make_desk):
    return make_desk(screen_size=(1280, 1024), desktop_size=(1280, 1024))


@pytest.mark.parametrize("library", ["ddraw", "dinput", "dsound"])
def test_without_a_device_library_a_box_tells_and_no_screen_opens(larger_desk, open_menu, helpers,
                                                                  library):
    menu = open_menu(larger_desk, missing=[library])
    assert_gives_up_at_once(larger_desk, menu, helpers)
