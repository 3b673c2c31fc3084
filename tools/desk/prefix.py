"""Wine prefixes: one template a checkout, made once, and cheap copies of it."""

import os
import shutil
import subprocess
from pathlib import Path

from . import wine
from .locking import locked
from .waiting import DeskError

FULL_SCREEN = (1024, 768)  # the menu's display mode
BOOT_LIMIT = 300  # seconds


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
    wine.major_version()  # raises if there is no Wine
    unfinished = _make_unfinished(template)
    environment = wine.environment(unfinished, DISPLAY=None)
    server = wine.Server(lambda command: subprocess.Popen(
        ["setpriv", "--pdeathsig", "KILL", "--", *command], env=environment))
    try:
        done = subprocess.run([*wine.WINE, "wineboot", "--init"], env=environment,
                              capture_output=True, stdin=subprocess.DEVNULL)
        server.process.wait(BOOT_LIMIT)  # it writes the registry when it ends
    except subprocess.TimeoutExpired:
        raise DeskError(f"Wine was not done with a new prefix after {BOOT_LIMIT} s") from None
    finally:
        server.process.terminate()
        server.process.wait()
        wine.remove_server_folder(unfinished)
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
