"""The two ways out of the menu, and what each start clears away."""

import os

import pytest

from catalogue import INTRO_FILES
from desk.menu import QUIT_ROW, STAGED_NAME
from helpers import launch_and_leave


@pytest.fixture
def open_unpacked(open_menu):
    """Opens menus and waits until they stand and their intros are unpacked."""
    def open_on(desk, **options):
        menu = open_menu(desk, **options).wait_up()
        menu.wait_unpacked()
        return menu
    return open_on


def leave_by_escape(menu):
    menu.press("Escape")
    assert menu.program.wait_end() == 0


def leave_by_quit(menu):
    menu.select(QUIT_ROW)
    menu.press("Return")
    assert menu.program.wait_end() == 0


def test_the_staging_folder_is_flat_and_holds_the_catalogue(desk, stall, open_unpacked):
    menu = open_unpacked(desk)
    assert sorted(os.listdir(menu.staging_folder)) == sorted([STAGED_NAME, *INTRO_FILES])
    staged = (menu.staging_folder / STAGED_NAME).read_bytes()
    assert staged == stall.data_file.read_bytes()
    leave_by_escape(menu)


def test_escape_removes_the_staging_folder(desk, open_unpacked):
    menu = open_unpacked(desk)
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()


def test_quit_leaves_the_staging_folder_and_the_next_start_clears_it(desk, open_unpacked):
    menu = open_unpacked(desk)
    leave_by_quit(menu)
    assert (menu.staging_folder / STAGED_NAME).exists()
    assert (menu.staging_folder / INTRO_FILES[0]).exists()

    (menu.staging_folder / "left-over.txt").write_text("of an earlier run")
    menu = open_unpacked(desk, unpacks=INTRO_FILES[1:])
    assert sorted(os.listdir(menu.staging_folder)) == sorted([STAGED_NAME, *INTRO_FILES[1:]])
    leave_by_escape(menu)


def write_old(*files):
    for file in files:
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("of an earlier run")


def test_an_old_folder_is_cleared_with_its_subfolders(desk, open_unpacked):
    staging = desk.temp_folder / "Qev"
    write_old(staging / "top.txt", staging / "sub" / "one.txt", staging / "sub" / "deeper" / "two")
    (staging / "empty").mkdir()
    menu = open_unpacked(desk)
    assert sorted(os.listdir(staging)) == sorted([STAGED_NAME, *INTRO_FILES])
    leave_by_escape(menu)
    assert not staging.exists()


def test_read_only_files_stay_with_their_folders_and_disturb_nothing(desk, open_unpacked):
    staging = desk.temp_folder / "Qev"
    locked = staging / "sub" / "locked.txt"
    write_old(locked, staging / "sub" / "free.txt", staging / "sub" / "deeper" / "free.txt")
    locked.chmod(0o444)
    menu = open_unpacked(desk)
    assert sorted(os.listdir(staging)) == sorted([STAGED_NAME, "sub", *INTRO_FILES])
    leave_by_escape(menu)
    assert os.listdir(staging) == ["sub"]
    assert os.listdir(staging / "sub") == ["locked.txt"]


def test_escape_also_clears_what_the_intros_left(desk, open_unpacked):
    menu = open_unpacked(desk)
    write_old(menu.staging_folder / "saved games" / "score.txt")
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()


def test_a_temp_folder_with_blanks_serves(make_desk, open_unpacked):
    desk = make_desk(temp_name="all my temporary files")
    menu = open_unpacked(desk)
    report = launch_and_leave(menu, desk, 0)
    assert report["folder"] == r"C:\all my temporary files\Qev"
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()
