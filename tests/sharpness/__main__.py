"""Makes small changes to the product's code, one at a time in a copy of the tree, and lists those
that no Windows test notices. Run it by tests/sharpness/run; see --help."""

import argparse
import os
import random
import shutil
import subprocess
import sys
import time
from pathlib import Path

from changes import changes_of

TREE = Path(__file__).resolve().parents[2]
WORK = TREE / "build" / "sharpness"
SESSION_PROCESSORS = TREE / "build" / "desk" / "processors.json"
COPY = WORK / "tree"
BUILD = WORK / "build"
ROOMS = ("runtime", "display", "input", "audio", "desktop", "launcher")
COPIED = (*ROOMS, "assets", "cmake", "tests", "tools", "CMakeLists.txt")
WHOLE_LAUNCHER = "launcher_tests"
TEST_LIMIT = 120  # seconds for a program of tests: a change may well make it hang


def main():
    options = parse_options()
    started = time.monotonic()
    chosen = choose(all_changes(), options)
    print(f"{len(chosen)} changes; each takes a few seconds.", flush=True)
    prepare()
    survivors, noticed, unbuildable = [], 0, 0
    for number, change in enumerate(chosen, 1):
        verdict = judge(change)
        print(f"[{number}/{len(chosen)}] {verdict}: {change}", flush=True)
        survivors += [change] if verdict == "SURVIVED" else []
        noticed += verdict == "noticed"
        unbuildable += verdict == "does not compile"
    report(survivors, noticed, unbuildable, time.monotonic() - started)
    return 0


def parse_options():
    parser = argparse.ArgumentParser(prog="tests/sharpness/run", description=__doc__)
    parser.add_argument("--count", type=int, default=240, help="how many changes (%(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="which ones (%(default)s)")
    parser.add_argument("--only", default="", help="only files whose path holds this")
    return parser.parse_args()


def all_changes():
    sources = sorted(path for room in ROOMS for path in (TREE / room).glob("*.cpp"))
    return [change for path in sources
            for change in changes_of(str(path.relative_to(TREE)), path.read_text())]


def choose(changes, options):
    pool = [change for change in changes if options.only in change.path]
    picked = random.Random(options.seed).sample(pool, min(options.count, len(pool)))
    return sorted(picked, key=lambda change: (change.path, change.line, change.what))


def prepare():
    for folder in (COPY, BUILD):  # an interrupted run may have left a changed program
        shutil.rmtree(folder, ignore_errors=True)
    COPY.mkdir(parents=True)
    for name in COPIED:
        copy = shutil.copytree if (TREE / name).is_dir() else shutil.copy2
        copy(TREE / name, COPY / name)
    shutil.copytree(TREE / "build" / "libmodplug", COPY / "build" / "libmodplug")
    # No build type: what takes the time is linking, and this way there is the least to link.
    must_run("cmake", "-G", "Ninja", "-S", COPY, "-B", BUILD,
             f"-DCMAKE_TOOLCHAIN_FILE={COPY}/cmake/mingw-w64.cmake",
             "-DCMAKE_CXX_FLAGS=-w -O2", f"-DTEST_TIME_LIMIT={TEST_LIMIT}")
    must_run("ninja", "-C", BUILD, *test_programs())
    if not tests_pass(test_programs()):
        sys.exit("sharpness: the tests fail on the tree as it is")


def test_programs():
    return ["launcher_tests", "desktop_tests", "display_tests", "audio_tests",
            "module_player_calls_tests", "input_tests", "runtime_tests", "support_tests"]


def rings(change):
    """The programs in the order in which they are asked, the likeliest to notice first: that of the
    changed file's folder, that which runs the whole launcher, the others. Most changes end early."""
    own = [change.path.split("/")[0] + "_tests"]
    if own == ["audio_tests"]:
        own.append("module_player_calls_tests")
    first = list(dict.fromkeys([*own, WHOLE_LAUNCHER]))
    yield from ([name] for name in first)
    yield [name for name in test_programs() if name not in first]


def judge(change):
    target = COPY / change.path
    original = target.read_text()
    lines = original.split("\n")
    span = change.before.count("\n") + 1
    lines[change.line - 1:change.line - 1 + span] = change.after.split("\n")
    target.write_text("\n".join(lines))
    try:
        return verdict_on(change)
    finally:
        target.write_text(original)


def verdict_on(change):
    for programs in rings(change):
        if run("ninja", "-C", BUILD, *programs).returncode != 0:
            return "does not compile"
        if not tests_pass(programs):
            return "noticed"
    return "SURVIVED"


def tests_pass(programs):
    theirs = "^(" + "|".join(programs) + ")$"
    return run("ctest", "--test-dir", BUILD, "-R", theirs, "--no-tests=error", "--stop-on-failure",
               "-j4", "--resource-spec-file", SESSION_PROCESSORS).returncode == 0


def run(*command):
    return subprocess.run([str(word) for word in command], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL,
                          env={**os.environ, "GTEST_FAIL_FAST": "1"})


def must_run(*command):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(f"{done.stdout}\nsharpness: {command[0]} failed on the tree as it is")


def report(survivors, noticed, unbuildable, seconds):
    judged = noticed + len(survivors)
    share = 100 * noticed / judged if judged else 0
    print(f"\n{noticed} of {judged} changes noticed ({share:.1f} %), {unbuildable} did not compile; "
          f"{seconds / 60:.0f} minutes.")
    for change in survivors:
        print(f"  {change}")


if __name__ == "__main__":
    sys.exit(main())
