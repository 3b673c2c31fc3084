"""The tool that packs intros, the pack that the build makes, and the stage that all intros share."""

import hashlib
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests" / "desk"), str(Path(__file__).parent)]

from catalogue import INTRO_FILES, ROWS  # noqa: E402
from desk.desk import Desk  # noqa: E402
from desk.gallery import wait_shown  # noqa: E402
from desk.menu import DATA_NAME, PROGRAM_NAME, STAGED_NAME, Menu  # noqa: E402
from desk.screen import lit_pixels  # noqa: E402
from pe_file import PeFile  # noqa: E402

BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
SYSTEM_LIBRARIES = {"dsound.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "user32.dll",
                    "winmm.dll"}


def run_pack(*arguments, folder=None, **options):
    return subprocess.run([ROOT / "tools" / "pack", *arguments], cwd=folder, capture_output=True,
                          text=True, **options)


@pytest.fixture
def intros(tmp_path):
    """A folder with small files of all the names that the menu knows."""
    folder = tmp_path / "intros"
    folder.mkdir()
    for name in INTRO_FILES:
        (folder / name).write_bytes(b"This is " + name.encode())
    return folder


@pytest.fixture(scope="module")
def desk(tmp_path_factory):
    with Desk(tmp_path_factory.mktemp("desk"), BUILD / "desk" / "template", sound=False) as desk:
        yield desk


def unpack(desk, data_file, folder):
    """Runs a data file as the menu does: copied under its staged name into an empty folder."""
    folder.mkdir()
    shutil.copy2(data_file, folder / STAGED_NAME)
    assert desk.start(folder / STAGED_NAME, folder).wait_end() == 0
    (folder / STAGED_NAME).unlink()
    return {path.name: path.read_bytes() for path in folder.iterdir()}


def test_each_missing_intro_is_named_and_nothing_is_made(intros, tmp_path):
    for name in (INTRO_FILES[3], INTRO_FILES[27]):
        (intros / name).unlink()
    done = run_pack(intros, "-o", tmp_path / "made.dat")
    assert done.returncode == 1
    assert [line.split()[-1] for line in done.stderr.splitlines() if line.startswith("missing:")] \
        == [INTRO_FILES[3], INTRO_FILES[27]]
    assert "2 of 28 intros are missing; --incomplete packs" in done.stderr
    assert not (tmp_path / "made.dat").exists()


def test_an_incomplete_set_is_packed_when_told_so(intros, tmp_path, desk):
    (intros / INTRO_FILES[3]).unlink()
    done = run_pack(intros, "--incomplete", "-o", tmp_path / "made.dat")
    assert done.returncode == 0
    assert f"missing:  {INTRO_FILES[3]}" in done.stderr
    assert set(unpack(desk, tmp_path / "made.dat", tmp_path / "out")) == \
        set(INTRO_FILES) - {INTRO_FILES[3]}


def test_each_file_too_many_is_named_and_left_out(intros, tmp_path, desk):
    for name in ("002-Unknown.exe", "readme.txt"):
        (intros / name).write_bytes(b"more")
    done = run_pack(intros, "-o", tmp_path / "made.dat")
    assert done.returncode == 0
    assert re.findall(r"^too many: (\S+)", done.stderr, re.M) == ["002-Unknown.exe", "readme.txt"]
    assert set(unpack(desk, tmp_path / "made.dat", tmp_path / "out")) == set(INTRO_FILES)


def test_a_name_in_other_letters_is_missing_and_too_many(intros, tmp_path):
    (intros / INTRO_FILES[0]).rename(intros / INTRO_FILES[0].upper())
    done = run_pack(intros, "-o", tmp_path / "made.dat")
    assert done.returncode == 1
    assert f"missing:  {INTRO_FILES[0]}\n" in done.stderr
    assert f"too many: {INTRO_FILES[0].upper()} " in done.stderr


def test_an_empty_folder_is_refused_even_when_incomplete(tmp_path):
    done = run_pack(tmp_path, "--incomplete", "-o", tmp_path / "made.dat")
    assert done.returncode == 1
    assert "nothing to pack" in done.stderr
    assert not (tmp_path / "made.dat").exists()


def test_the_data_file_goes_into_the_current_folder_under_its_own_name(intros, tmp_path):
    assert run_pack(intros, folder=tmp_path).returncode == 0
    assert (tmp_path / DATA_NAME).read_bytes()[:2] == b"MZ"


def test_progress_size_and_checksum_are_shown(intros, tmp_path):
    done = run_pack(intros, "-o", tmp_path / "made.dat")
    content = (tmp_path / "made.dat").read_bytes()
    lines = done.stdout.splitlines()
    assert [line.split()[3] for line in lines[:28]] == INTRO_FILES
    assert lines[28] == "compressing"
    assert lines[29].endswith(f"made.dat: {len(content):,} bytes")
    assert lines[30] == f"SHA-256 {hashlib.sha256(content).hexdigest()}"


def test_the_same_intros_give_the_same_bytes_at_another_time_and_place(intros, tmp_path):
    run_pack(intros, "-o", tmp_path / "one.dat")
    moved = tmp_path / "a folder elsewhere"
    intros.rename(moved)
    for path in moved.iterdir():
        os.utime(path, (1, 1))
    run_pack(moved, "-o", tmp_path / "other.dat")
    assert (tmp_path / "one.dat").read_bytes() == (tmp_path / "other.dat").read_bytes()


def test_the_content_survives_packing(intros, tmp_path, desk):
    run_pack(intros, "-o", tmp_path / "made.dat")
    unpacked = unpack(desk, tmp_path / "made.dat", tmp_path / "out")
    assert unpacked == {name: b"This is " + name.encode() for name in INTRO_FILES}


def test_a_folder_that_is_not_there_is_told_in_one_sentence(tmp_path):
    done = run_pack(tmp_path / "nowhere")
    assert done.returncode == 1
    assert done.stderr == f"pack: there is no folder {tmp_path / 'nowhere'}\n"


def test_a_missing_makensis_is_told_with_its_package(intros, tmp_path):
    done = run_pack(intros, "-o", tmp_path / "made.dat", env={"PATH": str(tmp_path)})
    assert done.returncode == 1
    assert "Debian's package nsis" in done.stderr
    assert not (tmp_path / "made.dat").exists()


def test_the_pack_unpacks_exactly_the_catalogues_names_and_what_was_built(tmp_path, desk):
    unpacked = unpack(desk, BUILD / DATA_NAME, tmp_path / "out")
    assert sorted(unpacked) == sorted(INTRO_FILES)
    for name, content in unpacked.items():
        assert content == (BUILD / "sample_pack" / name).read_bytes()


def test_the_pack_is_small():
    assert (BUILD / DATA_NAME).stat().st_size < 700 * 1024


@pytest.mark.parametrize("name", INTRO_FILES)
def test_an_intro_is_a_small_program_that_needs_only_the_system(name):
    program = PeFile(BUILD / "sample_pack" / name)
    assert len(program.data) < 64 * 1024
    assert program.machine == 0x8664
    assert program.subsystem == 2  # windows and no console
    assert {library.lower() for library in program.imported_libraries()} <= SYSTEM_LIBRARIES


@pytest.mark.parametrize("title, name", ROWS[:28])
def test_an_intro_bears_the_title_of_its_row(title, name):
    content = (BUILD / "sample_pack" / name).read_bytes()
    assert title.partition(". ")[2].encode() + b"\0" in content


SHOWN = "000-Velmora2009.exe"


def is_lit(pixels):
    return lit_pixels(pixels).any()


def lit_place(pixels):
    """The left, top, right and bottom of what is lit."""
    rows, columns = lit_pixels(pixels).nonzero()
    if len(rows) == 0:
        return None
    return (columns.min(), rows.min(), columns.max() + 1, rows.max() + 1)


def start_intro(desk):
    desk.wait_picture(lambda pixels: not is_lit(pixels), "the last intro's picture to go")
    program = desk.start(BUILD / "sample_pack" / SHOWN, BUILD)
    desk.wait_picture(is_lit, "the intro's picture")
    desk.screen.focus_program(SHOWN)
    return program


def test_escape_held_down_darkens_the_intro_and_its_release_ends_it(desk):
    program = start_intro(desk)
    desk.screen.key_down("Escape")
    desk.wait_picture(lambda pixels: not is_lit(pixels), "darkness")
    assert program.alive()
    desk.screen.key_up("Escape")
    assert program.wait_end() == 0


def test_alt_and_f4_end_the_intro(desk):
    program = start_intro(desk)
    desk.screen.tap("alt+F4")
    assert program.wait_end() == 0


def test_other_keys_do_not_end_the_intro(desk):
    program = start_intro(desk)
    for key in ("Return", "space", "F4", "alt"):
        desk.press(program, key)
    assert program.alive()
    desk.screen.tap("Escape")
    assert program.wait_end() == 0


def test_an_escape_held_for_long_does_not_end_the_menu_behind(tmp_path):
    with Desk(tmp_path / "desk", BUILD / "desk" / "template") as desk:
        for name in (PROGRAM_NAME, DATA_NAME):
            shutil.copy2(BUILD / name, tmp_path)
        menu = Menu(desk, tmp_path).wait_up()
        menu.wait_unpacked()
        menu.press("Return")
        wait_shown(desk, SHOWN)
        desk.screen.focus_program(SHOWN)
        desk.screen.key_down("Escape")
        desk.wait_picture(lambda pixels: not is_lit(pixels), "darkness")
        desk.screen.key_up("Escape")
        menu.wait_up()
        menu.program.let_run(seconds=0.5, pauses=100)
        assert menu.program.alive()
        menu.press("Escape")
        assert menu.program.wait_end() == 0


@pytest.mark.parametrize("size, place", [((1280, 1024), (0, 32, 1280, 992)),
                                         ((1280, 720), (160, 0, 1120, 720))])
def test_the_picture_is_as_large_as_fits_and_in_the_middle(tmp_path, size, place):
    with Desk(tmp_path, BUILD / "desk" / "template", screen_size=size, desktop_size=None,
              sound=False) as desk:
        program = start_intro(desk)
        desk.wait_picture(lambda pixels: lit_place(pixels) == place, "the whole picture")
        program.let_run()
        assert lit_place(desk.screen.pixels()) == place, "it stays so"
        desk.screen.tap("Escape")
        assert program.wait_end() == 0
