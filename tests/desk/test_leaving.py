"""The two ways out of the menu, and what each start clears away."""

import os
import stat

from catalogue import INTRO_FILES
from desk.menu import QUIT_ROW, STAGED_NAME
from helpers import launch_and_leave


def open_menu(stall, desk, **options):
    menu = stall.open_menu(desk, **options).wait_up()
    menu.wait_unpacked()
    return menu


def leave_by_escape(menu):
    menu.press("Escape")
    assert menu.program.wait_end() == 0


def leave_by_quit(menu):
    menu.select(QUIT_ROW)
    menu.press("Return")
    assert menu.program.wait_end() == 0


def test_the_staging_folder_is_flat_and_holds_the_catalogue(desk, stall):
    menu = open_menu(stall, desk)
    assert sorted(os.listdir(menu.staging_folder)) == sorted([STAGED_NAME, *INTRO_FILES])
    staged = (menu.staging_folder / STAGED_NAME).read_bytes()
    assert staged == stall.data_file.read_bytes()
    leave_by_escape(menu)


def test_escape_removes_the_staging_folder(desk, stall):
    menu = open_menu(stall, desk)
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()


def test_quit_leaves_the_staging_folder_and_the_next_start_clears_it(desk, stall):
    menu = open_menu(stall, desk)
    leave_by_quit(menu)
    assert (menu.staging_folder / STAGED_NAME).exists()
    assert (menu.staging_folder / INTRO_FILES[0]).exists()

    (menu.staging_folder / "left-over.txt").write_text("of an earlier run")
    menu = open_menu(stall, desk, unpacks=INTRO_FILES[1:])
    assert sorted(os.listdir(menu.staging_folder)) == sorted([STAGED_NAME, *INTRO_FILES[1:]])
    leave_by_escape(menu)


def test_an_old_folder_with_subfolders_and_read_only_files_is_cleared(desk, stall):
    staging = desk.temp_folder / "Qev"
    for folder in (staging / "sub" / "deeper", staging / "empty"):
        folder.mkdir(parents=True)
    for file in (staging / "top.txt", staging / "sub" / "locked.exe",
                 staging / "sub" / "deeper" / ".hidden"):
        file.write_text("old")
        file.chmod(stat.S_IREAD)
    menu = open_menu(stall, desk)
    assert sorted(os.listdir(staging)) == sorted([STAGED_NAME, *INTRO_FILES])
    leave_by_escape(menu)
    assert not staging.exists()


def test_escape_also_clears_what_the_intros_left(desk, stall):
    menu = open_menu(stall, desk)
    (menu.staging_folder / "saved games").mkdir()
    (menu.staging_folder / "saved games" / "score.txt").write_text("1")
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()


def test_a_temp_folder_with_blanks_serves(make_desk, stall):
    desk = make_desk(temp_name="all my temporary files")
    menu = open_menu(stall, desk)
    report = launch_and_leave(menu, desk, 0)
    assert report["folder"] == r"C:\all my temporary files\Qev"
    leave_by_escape(menu)
    assert not menu.staging_folder.exists()
