"""The headless desk itself, tried with a program that is not the menu."""

import os
import subprocess
from pathlib import Path

import numpy
import pytest

from desk import Desk, DeskError, wait_until
from desk.sound import RATE
from helpers import BUILD, ROOT, Windows, shows_probe

NOTE_HZ = 440


@pytest.fixture
def probe(desk, helpers):
    """Starts the probe, as often as the test asks."""
    orders = desk.drive_c / "probe"
    orders.mkdir(exist_ok=True)
    started = []

    def start():
        started.append(desk.start(helpers.probe, desk.folder))
        return started[-1]

    yield start
    for program in started:
        program.kill()
    for order in orders.iterdir():
        order.unlink()


def test_a_window_is_seen_named_and_closed_by_a_key(desk, helpers, probe):
    program = probe()
    desk.wait_picture(shows_probe, "the probe's window")
    assert Windows(desk, helpers).titles("Probe") == ["probe.exe"]
    assert "probe.exe" in desk.program_names()
    desk.screen.focus_top_window()
    desk.screen.tap("Escape")
    assert program.wait_end() == 7
    # What was waited for is its starter, which hears of the end a moment before the process is gone.
    wait_until(lambda: "probe.exe" not in desk.program_names(), "the probe to be gone")


def test_a_crash_is_seen_in_the_exit_code_and_shows_no_box(desk, helpers, probe):
    (desk.drive_c / "probe" / "crash").touch()
    assert probe().wait_end() == 5
    assert not Windows(desk, helpers).classes()


def test_a_sleeping_program_takes_no_processor_time(desk, probe):
    program = probe()
    desk.wait_picture(shows_probe, "the probe's window")
    program.let_run()
    assert program.cpu_share(2.0) < 0.1


def test_what_is_played_is_what_is_recorded(desk):
    time = numpy.arange(RATE) / RATE
    note = (8000 * numpy.sin(2 * numpy.pi * NOTE_HZ * time)).astype("<i2")
    recording = desk.sound.record(desk.folder / "note.raw")
    subprocess.run(["pacat", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1"],
                   input=note.tobytes(), check=True,
                   env={**os.environ, **desk.sound.environment})
    wait_until(lambda: recording.samples().any(), "the note")
    recording.wait_for(1.5)
    recording.stop()
    spectrum = numpy.abs(numpy.fft.rfft(recording.samples()[:, 0]))
    seconds = len(recording.samples()) / RATE
    assert abs(spectrum.argmax() / seconds - NOTE_HZ) < 2


def test_waiting_in_vain_ends_with_a_sentence():
    with pytest.raises(DeskError, match="waited 0.05 s in vain for nothing"):
        wait_until(lambda: False, "nothing", limit=0.05)


def test_two_desks_stand_side_by_side(desk, tmp_path):
    with Desk(tmp_path, BUILD / "desk" / "template") as other:
        assert other.screen.display != desk.screen.display
        assert other.drive_c != desk.drive_c


def processes_naming(folder):
    """The processes with that folder in their command lines: screen and sound of a desk."""
    found = []
    for command_line in Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if os.fsencode(folder) in command_line.read_bytes():
                found.append(command_line.parent.name)
        except OSError:
            continue  # gone meanwhile
    return found


def test_a_desk_leaves_nothing_behind_when_its_user_fails(tmp_path, helpers):
    with pytest.raises(ZeroDivisionError):
        with Desk(tmp_path, BUILD / "desk" / "template") as desk:
            (desk.drive_c / "probe").mkdir()  # without it the probe would end by itself
            desk.start(helpers.probe, tmp_path)
            wait_until(lambda: "probe.exe" in desk.program_names(), "the probe to run")
            1 / 0
    wait_until(lambda: not desk.program_names(), "the end of the desk's programs")
    private = desk.drive_c.parents[1]
    assert not processes_naming(private)
    assert not private.exists()


def test_a_session_that_is_told_to_end_tidies_up(tmp_path):
    """As the test runner does at a time limit: the command's own folder must not stay."""
    place = tmp_path / "place"
    session = subprocess.Popen([ROOT / "tools" / "desk-session", "bash", "-c",
                                f'echo "$XDG_RUNTIME_DIR" > {place}; exec sleep 600'])
    wait_until(lambda: place.exists() and place.read_text().endswith("\n"), "the session")
    folder = Path(place.read_text().strip())
    assert processes_naming(folder), "screen and sound of the session"
    session.terminate()
    assert session.wait(30) != 0
    assert not processes_naming(folder)
    assert not folder.exists()
