"""What the product calls: every platform function is one that the tests' recorder watches, so that
a new call cannot come in unseen. And the program exports nothing."""

import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
ARCHIVES = [BUILD / "release" / name for name in ("libkit.a", "liblauncher_logic.a")]
sys.path.insert(0, str(Path(__file__).parent))

from pe_file import EXPORTS, PeFile  # noqa: E402

MODPLUG = {"ModPlug_GetSettings", "ModPlug_Load", "ModPlug_Read", "ModPlug_SetMasterVolume",
           "ModPlug_SetSettings", "ModPlug_Unload"}
C_LIBRARY = {"_strdup", "_strnicmp", "free", "log10", "malloc", "memcpy", "memmove", "memset",
             "strcat", "strchr", "strcmp", "strcpy", "strlen", "strncmp", "strncpy", "strnlen",
             "strrchr"}
GUID = re.compile(r"(GUID|IID)_\w+")


def symbols():
    """Pairs of a symbol and the number of its section, 0 where it is not defined. Not from nm: that
    reads an object's intermediate form, which leaves the C library's functions out."""
    done = subprocess.run(["x86_64-w64-mingw32-objdump", "-t", *map(str, ARCHIVES)],
                          capture_output=True, text=True, check=True)
    return {(match[2], int(match[1]))
            for match in re.finditer(r"\(sec +(-?\d+)\).* (\S+)$", done.stdout, re.MULTILINE)}


def plain(symbol):
    return symbol.removeprefix("__imp_")


def watched():
    text = (ROOT / "tests" / "support" / "hooked_functions.inc").read_text()
    return set(re.findall(r"^(?:FUNCTION|FETCHED)\(\w+, (\w+),", text, re.MULTILINE))


@pytest.fixture(scope="module")
def called():
    defined = {name for name, section in symbols() if section != 0}
    return {plain(name) for name, section in symbols() if section == 0 and name not in defined}


def test_what_is_called_was_found(called):
    assert {"HeapAlloc", "CreateProcessA", "ModPlug_Read"} <= called


def test_every_call_is_watched_or_known(called):
    unknown = called - watched() - MODPLUG - C_LIBRARY
    assert not {name for name in unknown if not GUID.fullmatch(name)}


def test_the_program_exports_nothing():
    assert not PeFile(BUILD / "OstrikVelmora2009.exe").has_directory(EXPORTS)
