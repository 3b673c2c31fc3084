"""Starts the menu on the X display of whoever sits before it, in a Wine virtual desktop.

Called by ./run, with the build folder."""

import subprocess
import sys
from pathlib import Path

from .desk import FULL_SCREEN
from .menu import PROGRAM_NAME
from .prefix import (BASE_SETTINGS, START, clone_template, make_template,
                     virtual_desktop_settings, wine_environment)
from .waiting import DeskError


def main(build):
    template, prefix = build / "desk" / "template", build / "prefix"
    if not (template.exists() and prefix.exists()):
        print("Making the Wine prefix build/prefix.", flush=True)
    make_template(template)  # the system's files, to which the prefix links
    if not prefix.exists():
        clone_template(template, prefix, BASE_SETTINGS, virtual_desktop_settings(FULL_SCREEN))
    print("Starting the menu: cursor keys and Enter, Escape to leave.", flush=True)
    code = subprocess.run([*START, str(build / PROGRAM_NAME)], cwd=build,
                          env=wine_environment(prefix)).returncode
    if code != 0:
        raise DeskError(f"the menu has ended with code {code}; what Wine says stands above")


if __name__ == "__main__":
    try:
        main(Path(sys.argv[1]).resolve())
    except DeskError as error:
        sys.exit(f"run: {error}")
