"""The headless desk itself, tried with a program that is not the menu."""

import json
import os
import signal
import subprocess
from pathlib import Path
from time import sleep

import numpy
import pytest

from desk.desk import Desk
from desk.sound import RATE
from desk.waiting import DeskError, wait_until
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


def test_no_sound_is_lost_while_the_machine_stands_still(desk):
    noise = numpy.random.default_rng(1).integers(1, 8000, (2 * RATE, 2), dtype="<i2")
    noise.tofile(desk.folder / "noise.raw")
    recording = desk.sound.record(desk.folder / "heard.raw")
    player = subprocess.Popen(["pacat", "--raw", "--format=s16le", f"--rate={RATE}",
                               str(desk.folder / "noise.raw")],
                              env={**os.environ, **desk.sound.environment})
    wait_until(lambda: recording.samples().any(), "the noise")
    desk.sound.card.send_signal(signal.SIGSTOP)
    sleep(0.5)
    desk.sound.card.send_signal(signal.SIGCONT)
    assert player.wait() == 0
    recording.wait_for(0.2)
    recording.stop()
    heard = recording.samples()
    begin = heard.any(axis=1).argmax()
    assert (heard[begin:begin + len(noise)] == noise).all()
    assert not heard[begin + len(noise):].any()


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


@pytest.fixture
def session(tmp_path):
    """Starts a session that waits. Gives its process and its environment."""
    place = tmp_path / "place"
    running = subprocess.Popen([ROOT / "tools" / "desk-session", "bash", "-c",
                                f"env -0 > {place}.part; mv {place}.part {place}; exec sleep 600"],
                               preexec_fn=lambda: os.sched_setaffinity(0, range(os.cpu_count())))
    wait_until(place.exists, "the session")
    yield running, dict(line.split("=", 1) for line in place.read_text().split("\0") if line)
    running.terminate()
    running.wait(30)


def test_a_session_that_is_told_to_end_tidies_up(session):
    """As the test runner does at a time limit: the command's own folder must not stay."""
    running, environment = session
    folder, places = Path(environment["XDG_RUNTIME_DIR"]), Path(environment["DESK_SESSION"])
    assert processes_naming(folder), "screen and sound of the session"
    running.terminate()
    assert running.wait(30) != 0
    assert not processes_naming(folder)
    assert not folder.exists()
    assert not places.exists()


def test_a_session_waits_for_whoever_may_have_a_desk_of_its_own_to_end(session):
    running, environment = session
    user = subprocess.Popen(["sleep", "2"], env=environment)
    running.terminate()
    running.wait(30)
    assert user.poll() == 0


def test_a_test_runs_on_the_processor_that_it_was_given_and_on_the_desk_there(session, helpers):
    _, environment = session
    resources = json.loads((BUILD / "desk" / "processors.json").read_text())
    given = [processor["id"] for processor in resources["local"][0]["processors"]]
    assert len(given) == min(os.cpu_count(), 2)
    for processor in given:
        prefix = subprocess.check_output(
            ["bash", "-c", f'. "$DESK_SESSION/{processor}"; echo "$WINEPREFIX"'], env=environment)
        drive_c = Path(os.fsdecode(prefix.strip())) / "drive_c"
        (drive_c / "probe").mkdir()
        runner = subprocess.Popen(
            [ROOT / "tools" / "wine-run", helpers.probe, drive_c],
            env={**environment, "CTEST_RESOURCE_GROUP_0_PROCESSORS": f"id:{processor},slots:1"})
        wait_until((drive_c / "probe" / "run-001.txt").exists, "the program's report on its desk")
        program, = (int(process) for process in processes_naming(drive_c)
                    if Path(f"/proc/{process}/comm").read_text() == "probe.exe\n")
        assert os.sched_getaffinity(program) == {int(processor)}
        os.kill(program, signal.SIGKILL)
        runner.wait(30)
