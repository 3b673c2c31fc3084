"""Runs a command on headless desks of its own, one for each processor. Called by tools/desk-session
with the build folder and the command."""

import json
import os
import shlex
import signal
import subprocess
import sys
import tempfile
from contextlib import ExitStack
from pathlib import Path

from .desk import Desk
from .waiting import DeskError
from .wine import WINE

# Two tests at a time on each of two processors; more have not been tried.
PROCESSORS = 2
TESTS_A_PROCESSOR = 2


def write_resources(path, processors):
    """Tells ctest what there is to give to its tests."""
    given = [{"id": str(processor), "slots": TESTS_A_PROCESSOR} for processor in processors]
    path.write_text(json.dumps({"version": {"major": 1, "minor": 0},
                                "local": [{"processors": given}]}))


def write_change(path, known, environment):
    """Writes what takes a shell from the environment `known` to another one."""
    path.write_text("".join(f"export {name}={shlex.quote(value)}\n"
                            for name, value in environment.items() if known.get(name) != value))


def main(build, *command):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # by way of the desks' own end
    folder = Path(build).resolve() / "desk"
    allowed = os.sched_getaffinity(0)
    processors = sorted(allowed)[:PROCESSORS]
    with ExitStack() as stack:
        places = Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="session-")))
        desks = []
        for processor in processors:
            os.sched_setaffinity(0, {processor})  # the desk's own programs inherit it
            desks.append(stack.enter_context(Desk(folder / "session" / str(processor),
                                                  folder / "template", desktop_size=None)))
            write_change(places / str(processor), desks[0].environment, desks[-1].environment)
        os.sched_setaffinity(0, allowed)
        write_resources(folder / "processors.json", processors)
        return subprocess.run(command, env={**desks[0].environment, "TMPDIR": str(places),
                                            "DESK_SESSION": str(places),
                                            "DESK_WINE": shlex.join(WINE)}).returncode


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except DeskError as error:
        sys.exit(f"desk-session: {error}")
