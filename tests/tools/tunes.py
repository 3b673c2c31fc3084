"""The intros' tunes as text, and what the synthesizer makes of them, without a sound device."""

import os
import re
import subprocess
from collections import namedtuple
from pathlib import Path

import numpy

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("OSTRIK_BUILD", ROOT / "build"))
RATE = 44100

# A tune as it was rendered. `sound` and `loop` are rows of left, right; `loop` is one second on either
# side of the first repetition.
Rendered = namedtuple("Rendered", "faults loop_start length sound loop notes")

# Frames, the attack in milliseconds, and the pitch as a MIDI number.
Note = namedtuple("Note", "start length attack is_tonal pitch")


def intro_tunes():
    """The text of each intro's tune, by the name of its source file."""
    found = {}
    for path in sorted((ROOT / "sample_pack" / "intros").glob("*.cpp")):
        text = re.search(r'Intro_Tune\[\] = R"\((.*?)\)";', path.read_text(), re.DOTALL)
        assert text, f"{path.name} has no tune"
        found[path.stem] = text[1]
    return found


def run_on_session(*words):
    """Runs a Windows program on the headless desktop of the session. Returns what it printed."""
    done = subprocess.run([ROOT / "tools" / "wine-run", *words], capture_output=True, text=True,
                          timeout=500)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def render(folder, texts, seconds, with_loop=True, run=run_on_session):
    """Renders named texts in one run of the program. Returns a Rendered for each name. Whole tunes
    are rendered `with_loop`, which takes a while."""
    for name, text in texts.items():
        (folder / f"{name}.txt").write_text(text)
    program = BUILD / "release" / "sample_pack" / "render_tune.exe"
    printed = run(program, str(folder), str(seconds), str(int(with_loop)), *texts)
    lines = [line.split() for line in printed.splitlines()]
    return {name: Rendered(*map(int, numbers), _sound(folder / f"{name}.raw"),
                           _sound(folder / f"{name}.loop"), _notes(folder / f"{name}.notes"))
            for name, *numbers in lines}


def _sound(path):
    if not path.exists():
        return numpy.zeros((0, 2))
    return numpy.fromfile(path, dtype="<i2").reshape(-1, 2) / 32768


def _notes(path):
    return [Note(*map(int, line.split())) for line in path.read_text().splitlines()]
