"""Wine prefixes: one template a checkout, made once, and cheap copies of it."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from .locking import locked
from .waiting import DeskError

WINE_LOADER = "/usr/lib/wine/wine64"
# Linux puts a program's heap at random within a GiB behind it, once in some thousand starts where
# Wine needs a fixed address; Wine then ends at once, with code 1 and without a word.
WINE = ["setarch", "--addr-no-randomize", WINE_LOADER]
# By way of a Windows program, which passes on the exit code that Windows programs see. Wine's sound
# driver now and then crashes while a program ends that holds a device; its own process tells that.
START = [*WINE, "start", "/wait", "/unix"]
WINESERVER = "/usr/lib/wine/wineserver64"

# A crash must end the program with its own exit code and without a box that nobody closes.
# The menus of Mono and Gecko installers must not open, nor entries in a real desktop's menu.
OVERRIDES = "mscoree=;mshtml=;winemenubuilder.exe=;winedbg.exe=d"

BASE_SETTINGS = {
    r"Software\Wine\WineDbg": {"ShowCrashDialog": 0},
    # Wine has no "Terminal"; the info page needs a face of fixed pitch.
    r"Software\Wine\Fonts\Replacements": {"Terminal": "Liberation Mono"},
}

# Without a window manager a managed window waits two seconds for each hide, and without a
# graphics card the 3D renderer makes a flip several times as dear.
HEADLESS_SETTINGS = {
    r"Software\Wine\X11 Driver": {"Managed": "N"},
    r"Software\Wine\Direct3D": {"renderer": "no3d"},
}


def virtual_desktop_settings(size):
    """Every program of the prefix then opens in one black desktop window of this size."""
    width, height = size
    return {
        r"Software\Wine\Explorer": {"Desktop": "Ostrik"},
        r"Software\Wine\Explorer\Desktops": {"Ostrik": f"{width}x{height}"},
        r"Control Panel\Colors": {"Background": "0 0 0"},
    }


def temp_folder_settings(name):
    """Another temp folder than the one under the user's profile: `name` on drive C."""
    return {"Environment": {"TEMP": "C:\\" + name, "TMP": "C:\\" + name}}


def wine_environment(prefix, **more):
    """The environment for programs of `prefix`. A value of None takes the variable away."""
    environment = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all",
                   "WINEDLLOVERRIDES": OVERRIDES, **more}
    return {name: value for name, value in environment.items() if value is not None}


def make_template(template):
    """Makes the template prefix if it is not there yet. The first time takes some seconds."""
    template = Path(template)
    with locked(template):
        if not template.exists():
            _make_prefix(template)


def _cut_links_to_home(prefix):
    """Wine makes Documents and its like links to the home of whoever sits there. Programs under
    test delete folder trees: nothing outside of the prefix may lie in one."""
    for entry in (prefix / "drive_c" / "users").glob("*/*"):
        if entry.is_symlink():
            entry.unlink()
            entry.mkdir()


def clone_template(template, clone, *settings):
    """A prefix of its own: own registry, drives and user folders; the system's files linked. It is
    there as a whole or not at all."""
    template, clone = Path(template), Path(clone)
    unfinished = _make_unfinished(clone)
    (unfinished / "drive_c").mkdir()
    for name in ("system.reg", "user.reg", "userdef.reg", ".update-timestamp"):
        shutil.copy2(template / name, unfinished / name)
    for name in ("dosdevices", "drive_c/users"):
        shutil.copytree(template / name, unfinished / name, symlinks=True)
    for entry in (template / "drive_c").iterdir():
        if entry.name != "users":
            (unfinished / "drive_c" / entry.name).symlink_to(entry)
    for group in settings:
        _add_settings(unfinished / "user.reg", group)
    os.rename(unfinished, clone)


def _make_prefix(template):
    if not os.path.exists(WINE_LOADER):
        raise DeskError("Wine (64-bit) is not installed: run tools/setup first")
    unfinished = _make_unfinished(template)
    with tempfile.TemporaryDirectory(prefix="desk-") as sockets:
        environment = wine_environment(unfinished, DISPLAY=None, TMPDIR=sockets)
        done = subprocess.run([*WINE, "wineboot", "--init"], env=environment, capture_output=True,
                              stdin=subprocess.DEVNULL)
        # The registry reaches the disk when the server has ended.
        subprocess.run([WINESERVER, "--wait"], env=environment, check=True)
    if done.returncode != 0 or not (unfinished / "user.reg").exists():
        raise DeskError(f"Wine could not make a prefix in {unfinished}")
    _cut_links_to_home(unfinished)
    os.rename(unfinished, template)


def _make_unfinished(prefix):
    unfinished = prefix.with_name(prefix.name + ".unfinished")
    shutil.rmtree(unfinished, ignore_errors=True)
    unfinished.mkdir(parents=True)
    return unfinished


def _add_settings(registry_file, settings):
    """Wine's registry files are text; a section that stands twice is read as one."""
    with open(registry_file, "a", encoding="ascii") as registry:
        for key, values in settings.items():
            registry.write("\n[" + key.replace("\\", "\\\\") + "]\n")
            for name, value in values.items():
                registry.write(f'"{name}"={_registry_value(value)}\n')


def _registry_value(value):
    if isinstance(value, int):
        return f"dword:{value:08x}"
    return '"' + value.replace("\\", "\\\\") + '"'
