"""tools/pack: what it asks of a folder, what it says, and what its result unpacks."""

import hashlib
import os
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
PACK = ROOT / "tools" / "pack"
sys.path.insert(0, str(ROOT / "tests" / "desk"))
sys.path.insert(0, str(ROOT / "tools"))

from desk.desk import Desk  # noqa: E402

# As the menu shows them, from top to bottom, written down once more.
NAMES = """000-Velmora2009 001-Hobnail1 004-Ostrik01 005-Ostrik01v4l 006-Ostrik04 007-Ostrik05 008-BQLV
009-Hobnail6 010-Anvil1733 011-Fylex 012-Ostrik07 013-Ostrik08 014-WRaS 015-Ostrik09-00
016-Ostrik09-01 017-Ostrik09-02 018-Ostrik09-03 019-Ostrik09-04 020-Ostrik09-05 021-Ostrik09-06
022-Ostrik09-07 023-Myrtle 024-Ostrik10 025-Ostrik11 026-Ostrik12 027-Ostrik13 028-Ostrik14
029-Ostrik15""".split()
FILES = [name + ".exe" for name in NAMES]


@pytest.fixture
def folder(tmp_path):
    intros = tmp_path / "my intros"
    intros.mkdir()
    for name in FILES:
        (intros / name).write_bytes(b"the intro " + name.encode())
    return intros


def pack(*arguments):
    return subprocess.run([PACK, *arguments], capture_output=True, text=True)


def unpack(data_file, folder):
    """Runs the self-extractor as the menu does, and gives what then lies beside it."""
    folder.mkdir()
    program = folder / "BlahBlubber.exe"
    program.write_bytes(data_file.read_bytes())
    with Desk(folder.parent / "logs", BUILD / "desk" / "template", sound=False) as desk:
        desk.ask(program)
    program.unlink()
    return {path.name: path.read_bytes() for path in folder.iterdir()}


def test_unpacks_just_what_the_folder_held_into_its_own_folder(folder, tmp_path):
    data = tmp_path / "made.dat"
    assert pack(folder, "-o", data).returncode == 0
    assert unpack(data, tmp_path / "unpacked") == {
        path.name: path.read_bytes() for path in folder.iterdir()}


def test_tells_size_and_checksum(folder, tmp_path):
    data = tmp_path / "made.dat"
    said = pack(folder, "-o", data).stdout
    assert f"{data.stat().st_size} bytes" in said
    assert hashlib.sha256(data.read_bytes()).hexdigest() in said


def test_shows_each_file_as_it_goes_in(folder, tmp_path):
    said = pack(folder, "-o", tmp_path / "made.dat").stdout
    assert [line for line in said.splitlines() if line.startswith("[")] == [
        f"[{number}/28] {name}" for number, name in enumerate(FILES, 1)]


def test_makes_the_same_bytes_of_the_same_files(folder, tmp_path):
    first, second = tmp_path / "first.dat", tmp_path / "second.dat"
    pack(folder, "-o", first)
    for name in reversed(FILES):
        (folder / name).touch()
    pack(folder, "-o", second)
    assert first.read_bytes() == second.read_bytes()


def test_names_every_missing_file_and_makes_nothing(folder, tmp_path):
    (folder / "008-BQLV.exe").unlink()
    (folder / "023-Myrtle.exe").unlink()
    data = tmp_path / "made.dat"
    done = pack(folder, "-o", data)
    assert done.returncode != 0
    assert done.stdout.splitlines() == ["missing: 008-BQLV.exe", "missing: 023-Myrtle.exe"]
    assert "2 of 28 intros are missing" in done.stderr
    assert not data.exists()


def test_packs_an_incomplete_set_when_told_to(folder, tmp_path):
    (folder / "008-BQLV.exe").unlink()
    data = tmp_path / "made.dat"
    done = pack(folder, "-o", data, "--incomplete")
    assert done.returncode == 0
    assert "missing: 008-BQLV.exe" in done.stdout
    assert sorted(unpack(data, tmp_path / "unpacked")) == [
        name for name in FILES if name != "008-BQLV.exe"]


def test_names_files_that_the_menu_does_not_know_and_leaves_them_out(folder, tmp_path):
    (folder / "002-Nothing.exe").write_bytes(b"unknown")
    data = tmp_path / "made.dat"
    done = pack(folder, "-o", data)
    assert done.returncode == 0
    assert "not in the menu, left out: 002-Nothing.exe" in done.stdout
    assert "002-Nothing.exe" not in unpack(data, tmp_path / "unpacked")


@pytest.mark.parametrize("place", ["nowhere", "empty"])
def test_says_in_one_line_what_is_wrong_with_a_folder(tmp_path, place):
    (tmp_path / "empty").mkdir()
    done = pack(tmp_path / place, "-o", tmp_path / "made.dat", "--incomplete")
    assert done.returncode != 0
    assert len(done.stderr.splitlines()) == 1 and done.stderr.startswith("pack: ")


def test_pack_beside_the_program_holds_the_intros_that_were_built(tmp_path):
    held = unpack(BUILD / "OstrikVelmora2009.dat", tmp_path / "unpacked")
    assert sorted(held) == FILES
    for content in held.values():
        assert content[:2] == b"MZ" and len(content) < 64 * 1024
    assert len(set(held.values())) == 28


def test_pack_beside_the_program_is_small():
    assert (BUILD / "OstrikVelmora2009.dat").stat().st_size < 700 * 1024
