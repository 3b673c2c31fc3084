"""Runs a command on a headless desk of its own. Called by tools/desk-session with the build folder
and the command."""

import signal
import subprocess
import sys
from pathlib import Path

from .desk import Desk
from .waiting import DeskError


def main(build, *command):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # by way of the desk's own end
    folder = Path(build).resolve() / "desk"
    with Desk(folder / "session", folder / "template", desktop_size=None) as desk:
        return subprocess.run(command, env={**desk.environment, "DESK_SESSION": "1"}).returncode


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except DeskError as error:
        sys.exit(f"desk-session: {error}")
