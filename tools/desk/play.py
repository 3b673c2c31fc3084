"""Starts the menu on the user's own X display, in a Wine virtual desktop.

Called by ./run, with the program's path, and with --silent for a sound server that nobody hears."""

import subprocess
import sys
import tempfile
from contextlib import ExitStack
from pathlib import Path

from . import wine
from .children import Children, tidy_up_on_termination
from .prefix import FULL_SCREEN, clone_template, make_template
from .sound import SoundServer
from .surroundings import sound_answers
from .waiting import DeskError

NO_SOUND = ("no sound server and no sound card answers, and without one the menu only says \"Can't "
            "initialize system\". Start a sound server (PipeWire, or: pulseaudio --start), or use "
            "./run --silent.")


def make_prefix(build):
    template, prefix = build / "desk" / "template", build / "prefix"
    if not (template.exists() and prefix.exists()):
        print("Making the Wine prefix build/prefix.", flush=True)
    make_template(template)  # the system's files, to which the prefix links
    if not prefix.exists():
        clone_template(template, prefix, wine.BASE_SETTINGS,
                       wine.virtual_desktop_settings(FULL_SCREEN))
    return prefix


def start_silent_server(stack):
    """Starts a sound server that ends with `stack`, and returns its environment."""
    folder = Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="silent-")))
    children = Children(folder)
    stack.callback(children.end_all)
    return SoundServer(children, folder).environment


def main(program, silent):
    if not silent and not sound_answers():
        raise DeskError(NO_SOUND)
    with ExitStack() as stack:
        sound = start_silent_server(stack) if silent else {}
        environment = wine.environment(make_prefix(program.parent), **sound)
        print("Starting the menu: cursor keys and Enter, Escape to leave.", flush=True)
        code = subprocess.run([*wine.START, str(program)], cwd=program.parent,
                              env=environment).returncode
    if code != 0:
        raise DeskError(f"the menu has ended with code {code}; see the output above")


if __name__ == "__main__":
    tidy_up_on_termination()
    try:
        main(Path(sys.argv[1]).resolve(), silent="--silent" in sys.argv[2:])
    except DeskError as error:
        sys.exit(f"run: {error}")
    except KeyboardInterrupt:
        sys.exit("run: interrupted")
