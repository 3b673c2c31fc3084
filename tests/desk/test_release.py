"""The release as its users meet it: unpacked into a folder of theirs, started, an intro run."""

import shutil
import subprocess
import zipfile

import pytest

from catalogue import INTRO_FILES
from desk.gallery import show
from desk.menu import (DATA_NAME, INFO_NAME, INFO_ROW, PROGRAM_NAME, Menu,
                       highlighted_row)
from helpers import BUILD, ROOT

ROW = 3


@pytest.fixture
def unpacked(tmp_path):
    for name in (PROGRAM_NAME, DATA_NAME, INFO_NAME, "ddraw.dll"):
        shutil.copy2(BUILD / name, tmp_path)
    subprocess.run([ROOT / "tools" / "package", tmp_path], check=True, capture_output=True)
    folder = tmp_path / "Früher, größer  & schöner"
    with zipfile.ZipFile(tmp_path / "OstrikVelmora2009.zip") as archive:
        archive.extractall(folder)
    return folder / "OstrikVelmora2009"


def test_it_runs_from_a_folder_with_blanks_and_letters_of_other_languages(desk, unpacked):
    menu = Menu(desk, unpacked).wait_up()
    menu.wait_unpacked()
    menu.select(ROW)
    show(menu, ROW, INTRO_FILES[ROW])
    menu.select(INFO_ROW)
    menu.press("Return")
    desk.wait_picture(lambda pixels: highlighted_row(pixels) is None and pixels[145:].any(),
                      "the info page")
    menu.press("Escape")
    menu.wait_row(INFO_ROW)
    menu.press("Escape")
    assert menu.program.wait_end() == 0
    assert not menu.staging_folder.exists()
