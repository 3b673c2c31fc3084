"""The finished program file: what it asks of the system, what it carries, and how large it is."""

import os
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
sys.path.insert(0, str(Path(__file__).parent))

from pe_file import WRITABLE, PeFile  # noqa: E402

EVERY_WINDOWS_HAS = {"comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
                     "shell32.dll", "user32.dll", "winmm.dll"}
MANIFEST = (24, 1, 0x0409)
ASSEMBLY = "{urn:schemas-microsoft-com:asm.v1}"


@pytest.fixture(scope="module")
def program():
    return PeFile(BUILD / "OstrikVelmora2009.exe")


@pytest.fixture(scope="module")
def assets():
    """Banner and module as they must lie in the program."""
    return b"".join((ROOT / "assets" / name).read_bytes() for name in ("banner.bmp", "module.xm"))


def test_it_is_a_64_bit_program_without_a_console(program):
    assert program.machine == 0x8664
    assert program.subsystem == 2


def test_it_loads_nothing_but_what_every_windows_has(program):
    assert {name.lower() for name in program.imported_libraries()} <= EVERY_WINDOWS_HAS


def test_the_manifest_is_its_only_resource(program):
    assert [path for path, _ in program.resources()] == [MANIFEST]


def test_the_manifest_asks_for_the_current_common_controls_and_nothing_else(program):
    [(_, text)] = program.resources()
    elements = list(ElementTree.fromstring(text).iter())
    assert [element.tag.removeprefix(ASSEMBLY) for element in elements] == [
        "assembly", "dependency", "dependentAssembly", "assemblyIdentity"]
    assert elements[-1].attrib == {
        "type": "win32", "name": "Microsoft.Windows.Common-Controls", "version": "6.0.0.0",
        "processorArchitecture": "amd64", "publicKeyToken": "6595b64144ccf1df", "language": "*"}


def test_banner_and_module_lie_back_to_back_once(program, assets):
    assert program.data.count(assets) == 1


def test_banner_and_module_cannot_be_written_to(program, assets):
    flags = program.section_flags(program.data.index(assets))
    assert not flags & WRITABLE


def test_it_is_small(program):
    assert len(program.data) <= 600 * 1024


def test_its_bytes_tell_neither_when_nor_where_it_was_built(program):
    assert program.time_stamp == 0
    assert os.fsencode(ROOT) not in program.data


def relocations(compiled):
    return subprocess.run(["x86_64-w64-mingw32-objdump", "-r", compiled], check=True,
                          capture_output=True, text=True).stdout


def test_nothing_but_arrays_and_texts_takes_memory_from_the_c_library():
    """Beside the heaps' own functions, which the tests of a frame's cost watch as it runs: no frame
    makes an array or calls Text_Replace, which duplicates its texts."""
    takes_memory = re.compile(r"\b(__imp_)?_?(malloc|calloc|realloc|strdup|wcsdup|_Zn[wa]\w+)\b")
    compiled = [path for target in ("kit", "launcher_logic")
                for path in (BUILD / "release" / "CMakeFiles" / f"{target}.dir").rglob("*.cpp.obj")]
    assert len(compiled) > 25
    assert sorted(path.name for path in compiled if takes_memory.search(relocations(path))) == [
        "array.cpp.obj", "text.cpp.obj"]
