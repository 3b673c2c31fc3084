"""What the desk tests share: the desk, the programs that help, and a folder to start from.

A test that fails leaves the screen's last picture beside the logs, in build/desk/."""

import shutil
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(Path(__file__).parent)]

from desk.desk import Desk  # noqa: E402
from desk.children import tidy_up_on_termination  # noqa: E402
from helpers import BUILD, Helpers, Stall  # noqa: E402

KEPT = BUILD / "desk"
open_desks = []
tidy_up_on_termination()


@pytest.fixture(scope="session")
def helpers():
    """The Windows programs that belong to the tests."""
    return Helpers(KEPT / "programs")


@pytest.fixture(scope="module")
def make_desk(request):
    """Makes desks that stand until the end of the module."""
    made = []

    def make(**options):
        logs = KEPT / "logs" / request.module.__name__ / str(len(made))
        desk = Desk(logs, KEPT / "template", **options).__enter__()
        made.append(desk)
        open_desks.append(desk)
        return desk

    yield make
    for desk in reversed(made):
        open_desks.remove(desk)
        desk.__exit__()


@pytest.fixture(scope="module")
def desk(make_desk):
    """A desk on which the display takes the menu's mode and sound is heard."""
    return make_desk()


@pytest.fixture(scope="module")
def module_stall(tmp_path_factory, helpers):
    """A folder with the program and a data file that unpacks probes, for one module."""
    return Stall(tmp_path_factory.mktemp("stall"), helpers)


@pytest.fixture(scope="module")
def menu(desk, module_stall):
    """One menu for all tests of a module, in which every probe has been unpacked."""
    menu = module_stall.open_menu(desk).wait_up()
    menu.wait_unpacked()
    yield menu
    menu.program.kill()


@pytest.fixture
def stall(tmp_path, helpers):
    """The same for a single test."""
    return Stall(tmp_path, helpers)


@pytest.fixture
def open_menu(stall):
    """Opens menus from the test's own folder; those that still run at its end are ended."""
    opened = []

    def open_on(desk, **options):
        opened.append(stall.open_menu(desk, **options))
        return opened[-1]

    yield open_on
    for menu in opened:
        menu.program.kill()
        shutil.rmtree(menu.staging_folder, ignore_errors=True)


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    report = (yield).get_result()
    if report.failed and open_desks:
        desk = open_desks[-1]
        picture = KEPT / "failed" / f"{item.module.__name__}.{item.name}.png"
        desk.save_picture(picture)
        report.sections.append(("desk", f"last picture: {picture}\nlogs: {desk.folder}\n"
                                        f"running: {', '.join(desk.program_names())}"))
