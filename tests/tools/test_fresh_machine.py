"""The tool that tries the project on a fresh machine: what it says where it cannot. What it does is
seen by CI, which uses it."""

import os
import subprocess
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools" / "fresh-machine"
NOBODY = 65534


def test_an_ordinary_user_is_told_that_it_needs_root():
    """By way of standard input, since the checkout may be closed to others."""
    as_nobody = ["setpriv", f"--reuid={NOBODY}", "--clear-groups"] if os.getuid() == 0 else []
    with open(SCRIPT, encoding="ascii") as script:
        done = subprocess.run([*as_nobody, "bash", "-s", "--", "--check"], stdin=script, cwd="/",
                              capture_output=True, text=True)
    assert done.returncode == 1
    assert done.stderr == \
        "fresh-machine: it needs root, since it mounts /proc, /dev and /sys: use sudo\n"


def test_an_unknown_option_is_refused():
    done = subprocess.run([SCRIPT, "--fast", "trixie"], capture_output=True, text=True)
    assert done.returncode == 1
    assert done.stderr == \
        "fresh-machine: unknown option --fast; see tools/fresh-machine --help\n"


def test_a_call_without_a_release_shows_the_usage():
    done = subprocess.run([SCRIPT], capture_output=True, text=True)
    assert done.returncode == 2
    assert "usage: tools/fresh-machine" in done.stderr
