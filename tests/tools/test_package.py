"""The release archive: what is in it, that it is always the same file, and its checksums."""

import os
import shutil
import subprocess
import zipfile
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
BUILT = ("OstrikVelmora2009.exe", "OstrikVelmora2009.dat", "ostrik.nfo", "ddraw.dll")
ARCHIVE = "OstrikVelmora2009.zip"


def run_package(*arguments):
    return subprocess.run([ROOT / "tools" / "package", *arguments], capture_output=True, text=True)


@pytest.fixture
def make_build(tmp_path):
    """Makes copies of the build folder, as far as it belongs to the release."""
    def make(name):
        folder = tmp_path / name
        folder.mkdir()
        for built in BUILT:
            shutil.copyfile(BUILD / built, folder / built)
        return folder
    return make


@pytest.fixture
def archive(make_build):
    build = make_build("build")
    assert run_package(build).returncode == 0
    with zipfile.ZipFile(build / ARCHIVE) as opened:
        yield opened


def test_it_holds_the_five_files_in_one_folder(archive):
    assert archive.namelist() == [f"OstrikVelmora2009/{name}" for name in (*BUILT, "README.txt")]


def test_the_built_files_are_in_it_byte_by_byte(archive):
    for name in BUILT:
        assert archive.read(f"OstrikVelmora2009/{name}") == (BUILD / name).read_bytes()


def test_its_text_suits_every_editor_and_names_the_files(archive):
    text = archive.read("OstrikVelmora2009/README.txt").decode("ascii")
    assert text.count("\r\n") == text.count("\n") == text.count("\r") > 10
    assert max(map(len, text.split("\r\n"))) <= 80
    for name in BUILT:
        assert name in text


def test_the_same_files_give_the_same_archive_later_and_elsewhere(make_build):
    first, second = make_build("first"), make_build("second")
    for name in BUILT:
        os.utime(second / name, (1_000_000_000, 1_000_000_000))
        (second / name).chmod(0o755)
    for build in (first, second):
        assert run_package(build).returncode == 0
    assert (first / ARCHIVE).read_bytes() == (second / ARCHIVE).read_bytes()
    assert (first / "SHA256SUMS").read_bytes() == (second / "SHA256SUMS").read_bytes()


def test_the_checksums_are_those_of_archive_and_files(make_build):
    build = make_build("build")
    done = run_package(build)
    sums = (build / "SHA256SUMS").read_text()
    assert [line.split("  ")[1] for line in sums.splitlines()] == [ARCHIVE, *BUILT]
    assert sums in done.stdout
    checked = subprocess.run(["sha256sum", "--check", "--strict", "SHA256SUMS"], cwd=build)
    assert checked.returncode == 0


def test_a_file_that_is_not_built_is_named(make_build):
    build = make_build("build")
    (build / BUILT[1]).unlink()
    done = run_package(build)
    assert done.returncode == 1
    assert done.stderr == (f"package: {build} lacks OstrikVelmora2009.dat; "
                           "./run --build makes them\n")
    assert not (build / ARCHIVE).exists()
