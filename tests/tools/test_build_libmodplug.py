"""The script that builds libmodplug: what it says when the source is not the expected one."""

import os
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
TARBALL = "libmodplug_0.8.9.0.orig.tar.gz"


@pytest.fixture
def build(tmp_path):
    """Runs the script where apt-get does what `download` says."""
    def run(download):
        (tmp_path / "apt-get").write_text(
            f'#!/bin/sh\ncase "$*" in *" update") ;; *) {download} ;; esac\n')
        (tmp_path / "apt-get").chmod(0o755)
        return subprocess.run([ROOT / "cmake" / "build-libmodplug", tmp_path / "made"],
                              capture_output=True, text=True,
                              env={**os.environ, "PATH": f"{tmp_path}:{os.environ['PATH']}"})
    return run


@pytest.mark.parametrize("download, words", [
    ("exit 100", "the machine's package sources have no source package of libmodplug"),
    ("touch libmodplug_0.9.0.orig.tar.xz",
     f"this release has libmodplug_0.9.0.orig.tar.xz, but the project is made for {TARBALL}"),
    (f"echo another >{TARBALL}",
     f"the source is not the expected one: {TARBALL} has another checksum")])
def test_a_source_that_does_not_fit_gets_one_sentence(build, tmp_path, download, words):
    done = build(download)
    assert done.returncode == 1
    assert done.stdout.splitlines() == [
        "Fetching the source of libmodplug", f"libmodplug: {words}; see {tmp_path}/made/work/log"]
    assert not (tmp_path / "made" / "lib").exists()


def test_a_second_call_builds_nothing(build, tmp_path):
    """The script's own checksum is the mark of a finished build."""
    done = build("exit 100")
    recipe = subprocess.run(["sha256sum"], stdin=open(ROOT / "cmake" / "build-libmodplug", "rb"),
                            capture_output=True, text=True).stdout
    (tmp_path / "made" / "recipe").write_text(recipe)
    done = build("exit 100")
    assert (done.returncode, done.stdout) == (0, "")
