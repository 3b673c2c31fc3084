"""The set-up: which packages it asks for, and what it says where it may not install them."""

import os
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILDING = ["cmake", "ninja-build", "make", "g++-mingw-w64-x86-64-posix", "nsis", "python3"]
PLAYING = ["wine64", "fonts-liberation"]


@pytest.fixture
def machine(tmp_path):
    """A machine with only `installed` packages. Returns what the set-up of some groups does on it:
    the finished process, and the commands that it gave to apt-get."""
    log = tmp_path / "log"

    def write(name, lines):
        (tmp_path / name).write_text(f"#!/bin/sh\n{lines}\n")
        (tmp_path / name).chmod(0o755)

    def set_up(*arguments, installed=(), apt_result=0):
        log.write_text("")
        listed = "\n".join(f"echo installed {name}" for name in installed)
        write("dpkg-query", listed + "\necho config-files cmake")
        write("apt-get", f'echo "$@" >>{log}\nexit {apt_result}')
        write("sudo", '"$@"')
        done = subprocess.run([ROOT / "tools" / "setup", *arguments], capture_output=True,
                              text=True, env={**os.environ, "PATH": f"{tmp_path}:/usr/bin:/bin"})
        return done, log.read_text().splitlines()
    return set_up


def asked_for(command):
    return command.split("--no-install-recommends ")[1].split()


def test_a_group_brings_its_own_packages_only(machine):
    done, (_, install) = machine("build")
    assert done.returncode == 0
    assert asked_for(install) == BUILDING


def test_several_groups_share_one_installation(machine):
    _, commands = machine("build", "play")
    assert len(commands) == 2, "one update and one installation"
    assert asked_for(commands[1]) == BUILDING + PLAYING


def test_only_what_is_missing_is_installed(machine):
    _, (_, install) = machine("build", installed=BUILDING[1:])
    assert asked_for(install) == ["cmake"], "whose configuration files remain"


def test_a_complete_machine_is_left_alone(machine):
    done, commands = machine("build", installed=BUILDING)
    assert (done.returncode, done.stdout, commands) == (0, "", [])


def test_without_permission_the_missing_packages_are_named(machine):
    done, commands = machine("--no-install", "play", installed=["wine64"])
    assert done.returncode == 1
    assert done.stderr == \
        "setup: packages are missing. Install them: apt-get install fonts-liberation\n"
    assert not commands


def test_a_failed_installation_fails(machine):
    done, _ = machine("build", apt_result=100)
    assert done.returncode == 1
    assert "apt-get update failed" in done.stderr


@pytest.mark.parametrize("script", ["run", "test"])
def test_the_commands_pass_the_refusal_on(script):
    """On a machine where nothing is installed: a search path with the shell's own tools only."""
    done = subprocess.run([ROOT / script, "--no-install"], capture_output=True, text=True,
                          env={"PATH": "/usr/bin:/bin", "DPKG_ADMINDIR": "/nonexistent"})
    assert done.returncode == 1
    assert "packages are missing. Install them: apt-get install cmake" in done.stderr
