"""The release as its users meet it: unpacked into a folder of theirs, started, an intro run."""

import subprocess
import zipfile

import pytest

from catalogue import INTRO_FILES
from desk.gallery import show
from desk.menu import INFO_ROW, Menu, highlighted_row
from helpers import BUILD, ROOT

ROW = 3


@pytest.fixture
def unpacked(tmp_path):
    subprocess.run([ROOT / "tools" / "package", BUILD], check=True, capture_output=True)
    with zipfile.ZipFile(BUILD / "OstrikVelmora2009.zip") as archive:
        archive.extractall(tmp_path / "Früher, größer  & schöner")
    return tmp_path / "Früher, größer  & schöner" / "OstrikVelmora2009"


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
