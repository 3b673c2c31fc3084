"""The library beside the program as a file, and what no file of ours may say about the system."""

import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
SOURCES = ROOT / "compat" / "ddraw"
sys.path.insert(0, str(Path(__file__).parent))

from pe_file import PeFile  # noqa: E402

EVERY_WINDOWS_HAS = {"comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "user32.dll"}
EXPORTS = {"DirectDrawCreate", "DirectDrawCreateEx", "DirectDrawEnumerateA",
           "DirectDrawEnumerateExA", "DirectDrawEnumerateExW", "DirectDrawEnumerateW",
           "DllCanUnloadNow", "DllGetClassObject"}
DLL = 0x2000  # among the flags of the file header


@pytest.fixture(scope="module")
def library():
    return PeFile(BUILD / "ddraw.dll")


def test_it_is_a_64_bit_library(library):
    start = int.from_bytes(library.data[60:64], "little")
    assert library.machine == 0x8664
    assert int.from_bytes(library.data[start + 22:start + 24], "little") & DLL


def test_it_is_small(library):
    assert len(library.data) <= 96 * 1024


def test_it_loads_nothing_but_what_every_windows_has(library):
    assert {name.lower() for name in library.imported_libraries()} <= EVERY_WINDOWS_HAS


def test_it_exports_what_a_loader_may_ask_for():
    listed = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", BUILD / "ddraw.dll"], check=True,
                            capture_output=True, text=True).stdout
    names = listed.split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
    assert set(re.findall(r"\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\w+)$", names, re.M)) == EXPORTS


def test_its_bytes_tell_neither_when_nor_where_it_was_built(library):
    assert library.time_stamp == 0
    assert os.fsencode(ROOT) not in library.data


def test_it_knows_nothing_of_the_program():
    text = "".join(file.read_text() for file in SOURCES.iterdir()).lower()
    for word in ("ostrik", "velmora", "intro", "menu", "launcher", "multimediabase"):
        assert not re.search(rf"\b{word}", text), word


@pytest.mark.parametrize("name", ["OstrikVelmora2009.exe", "ddraw.dll"])
def test_no_file_names_the_systems_that_it_supports(name):
    """A program that names Windows 8 or later gets no emulation of old display modes there."""
    data = (BUILD / name).read_bytes()
    for encoding in ("utf-8", "utf-16-le"):
        assert "supportedOS".encode(encoding) not in data
