"""Includes run one way, platform headers stay in the module that owns their API, and a header of
state is for one source file."""

import re
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
# Each module may include those after it.
MODULES = ["launcher", "assets", "desktop", "audio", "display", "input", "runtime"]
CALLS_WINDOWS = {"launcher/main.cpp", "launcher/end.cpp"}
OWNERS = {"ddraw.h": "display", "dinput.h": "input", "dsound.h": "audio",
          "libmodplug/modplug.h": "audio"}
FOR_ONE_SOURCE = ("_state.h", "_steps.h", "_procedure.h")


def included_by(path):
    return re.findall(r'^#include ["<](.+)[">]', (ROOT / path).read_text(), re.MULTILINE)


def product_files():
    return [str(path.relative_to(ROOT)) for module in MODULES
            for path in sorted((ROOT / module).glob("*.*")) if path.suffix in (".h", ".cpp")]


def reached_from(path, seen=None):
    """All that a file includes, directly or by way of the product's own headers."""
    seen = set() if seen is None else seen
    for header in included_by(path):
        if header not in seen:
            seen.add(header)
            if (ROOT / header).exists():
                reached_from(header, seen)
    return seen


def own_name(header):
    return next(header.removesuffix(end) for end in FOR_ONE_SOURCE if header.endswith(end))


@pytest.mark.parametrize("path", product_files())
def test_a_file_includes_downwards_only(path):
    module = path.split("/")[0]
    allowed = MODULES[MODULES.index(module):]
    own = [header for header in included_by(path) if (ROOT / header).exists()]
    upwards = [header for header in own if header.split("/")[0] not in allowed]
    if module == "input":  # the devices are bound to the screen's window
        upwards = [header for header in upwards if header != "display/screen_device.h"]
    assert not upwards


@pytest.mark.parametrize("path", [path for path in product_files() if path.endswith(".h")])
def test_no_header_includes_itself(path):
    assert path not in reached_from(path)


@pytest.mark.parametrize("path", [path for path in product_files()
                                  if path.startswith("launcher/") and path not in CALLS_WINDOWS])
def test_the_launcher_s_logic_sees_no_platform_header(path):
    assert not reached_from(path) & {"windows.h", *OWNERS}


@pytest.mark.parametrize("path", product_files())
def test_an_api_belongs_to_one_module(path):
    foreign = {header for header in included_by(path)
               if header in OWNERS and not path.startswith(OWNERS[header] + "/")}
    assert not foreign


@pytest.mark.parametrize("path", product_files())
def test_state_is_for_its_own_source_file(path):
    state = [header for header in included_by(path) if header.endswith(FOR_ONE_SOURCE)]
    assert [own_name(header) for header in state] == [path.removesuffix(".cpp")] * len(state)
