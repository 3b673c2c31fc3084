"""The tour that ./run drives without a display, with probes in place of intros."""

import os
import subprocess
import wave

import pytest
from PIL import Image

from catalogue import INTRO_FILES
from desk import gallery, tour
from desk.sound import RATE
from helpers import ROOT

SHOWN_ROWS = range(3)


@pytest.fixture
def quick(monkeypatch):
    """A tour of seconds: nobody looks at it."""
    monkeypatch.setattr(tour, "SHOW_SECONDS", 0)
    monkeypatch.setattr(tour, "MUSIC_SECONDS", 1)
    monkeypatch.setattr(tour, "INTRO_SECONDS", 0.5)
    monkeypatch.setattr(gallery, "INTRO_ROWS", SHOWN_ROWS)


def test_the_tour_leaves_pictures_and_sound(desk, stall, tmp_path, quick):
    (desk.drive_c / "probe").mkdir()
    (desk.drive_c / "probe" / "names.txt").write_text("\n".join(INTRO_FILES))
    out = tmp_path / "tour"
    out.mkdir()
    tour.Tour(desk, stall.folder, out).walk()
    for name in ("1-menu", "2-moved", "3-intro", "4-menu-again", "5-info"):
        with Image.open(out / f"{name}.png") as picture:
            assert picture.size == (1024, 768)
    with wave.open(str(out / "music.wav")) as music:
        assert (music.getframerate(), music.getnchannels()) == (RATE, 2)
        assert music.getnframes() == RATE
    with Image.open(out / "contact-sheet.png") as sheet:
        assert sheet.width == gallery.COLUMNS * gallery.THUMBNAIL[0]
    assert (out / "music.png").exists()
    for row in SHOWN_ROWS:
        with wave.open(str(out / INTRO_FILES[row].replace(".exe", ".wav"))) as sound:
            assert sound.getnframes() == RATE // 2
    with Image.open(out / "intros-sound.png") as sheet:
        assert sheet.width > sheet.height
    assert len(os.listdir(out)) == 9 + len(SHOWN_ROWS)


@pytest.mark.parametrize("option, words", [
    ("--fast", "run: unknown option --fast; see ./run --help"),
    ("--help", "usage: ./run")])
def test_run_tells_its_options(option, words):
    done = subprocess.run([ROOT / "run", option], capture_output=True, text=True)
    assert words in done.stdout + done.stderr
    assert (done.returncode == 0) == (option == "--help")
