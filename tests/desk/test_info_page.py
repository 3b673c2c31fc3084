"""The info page: what of the info file stands on it, and how it is paged."""

import pytest

from desk.menu import INFO_ROW
from helpers import launch_and_leave
from yardstick import info_page, wait_page

ONE_INTRO = ["000-Velmora2009.exe"]


def numbered(count):
    return [b"line %03d of the info file" % number for number in range(1, count + 1)]


def file_of(lines):
    return b"".join(line + b"\r\n" for line in lines)


class InfoPage:
    """A menu on its info page."""

    def __init__(self, desk, helpers, menu):
        self._desk, self._helpers, self.menu = desk, helpers, menu
        self._drawn = {}

    def open(self):
        self.menu.select(INFO_ROW)
        self.menu.press("Return")

    def wait_shows(self, lines):
        wait_page(self._desk, self._expected(tuple(lines)),
                  f"the info page with {len(lines)} lines from {lines[:1]}")

    def press_in_vain(self, key, lines):
        self.menu.press(key)
        self.menu.program.let_run(seconds=0.15, pauses=80)
        self.wait_shows(lines)

    def _expected(self, lines):
        if lines not in self._drawn:
            self._drawn[lines] = info_page(self._desk, self._helpers, lines)
        return self._drawn[lines]


@pytest.fixture
def open_info(desk, helpers, stall, open_menu):
    """Opens the info page of a menu that starts beside an info file of the given content."""
    def open_with(content):
        if content is not None:
            stall.set_info(content)
        page = InfoPage(desk, helpers, open_menu(desk, unpacks=ONE_INTRO).wait_up())
        page.open()
        return page
    return open_with


CONTENTS = {
    "no file": (None, [b"No NFO File Found"]),
    "an empty file": (b"", [b"NFO File is empty"]),
    "a lone line end": (b"\n", [b""]),
    "a lone CR LF": (b"\r\n", [b""]),
    "one line": (b"the only line\r\n", [b"the only line"]),
    "one line without an end": (b"the only line", [b"the only line"]),
    "59 lines": (file_of(numbered(59)), numbered(59)),
    "60 lines": (file_of(numbered(60)), numbered(60)),
    "60 lines, the last without an end": (file_of(numbered(60))[:-2], numbered(60)),
    "empty lines between": (b"a\n\n\nb\n", [b"a", b"", b"", b"b"]),
    "tabs": (b"\tone\n\t\ttwo\nx\ty\t\n", [b"     one", b"          two", b"x     y     "]),
    "long lines": (b"w" * 5000 + b"\nnext\n" + b"i" * 5000 + b"\nlast",
                   [b"w" * 5000, b"next", b"i" * 5000, b"last"]),
    "NUL bytes": (b"a\0b\nc\0\0d\n", [b"a", b"b", b"c", b"", b"d"]),
    "mixed line ends": (b"a\rb\nc\r\nd\n\re", [b"a", b"b", b"c", b"d", b"", b"e"]),
    "a CR at byte 4096, its LF behind": (b"m" * 4095 + b"\r\nnext\n", [b"m" * 4095, b"next"]),
    "a CR at byte 4096, a letter behind": (b"m" * 4095 + b"\rnext\n", [b"m" * 4095, b"next"]),
    "blanks at both ends": (b"  a  \n   \nb\n", [b"  a  ", b"   ", b"b"]),
    "bytes above 127": (bytes(range(0x80, 0x100)) + b"\n", [bytes(range(0x80, 0x100))]),
}


@pytest.mark.parametrize("content, lines", CONTENTS.values(), ids=CONTENTS.keys())
def test_one_page_shows_the_file_line_by_line(open_info, content, lines):
    open_info(content).wait_shows(lines)


@pytest.mark.parametrize("name", ["no file", "one line", "60 lines"])
def test_up_and_down_do_nothing_with_60_lines_or_fewer(open_info, name):
    content, lines = CONTENTS[name]
    page = open_info(content)
    page.wait_shows(lines)
    page.press_in_vain("Down", lines)
    page.press_in_vain("Up", lines)


@pytest.mark.parametrize("count", [61, 120, 121])
def test_paging_goes_by_whole_pages_of_60(open_info, count):
    lines = numbered(count)
    pages = [lines[first:first + 60] for first in range(0, count, 60)]
    page = open_info(file_of(lines))
    page.wait_shows(pages[0])
    for shown in pages[1:]:
        page.menu.press("Down")
        page.wait_shows(shown)
    page.press_in_vain("Down", pages[-1])
    for shown in reversed(pages[:-1]):
        page.menu.press("Up")
        page.wait_shows(shown)
    page.press_in_vain("Up", pages[0])


def test_a_lone_cr_at_the_very_end_gives_one_further_line(open_info):
    lines = numbered(60)
    page = open_info(b"\n".join(lines) + b"\r")
    page.wait_shows(lines)
    page.menu.press("Down")
    page.menu.desk.wait_picture(lambda pixels: pixels[:135].any() and not pixels[155:].any(),
                                "a second page with the banner and one line at most")


def test_left_right_and_enter_do_nothing_on_the_page(open_info):
    lines = numbered(61)
    page = open_info(file_of(lines))
    page.wait_shows(lines[:60])
    for key in ("Left", "Right", "Return"):
        page.press_in_vain(key, lines[:60])
    page.menu.press("Escape")
    page.menu.wait_row(INFO_ROW)


def test_the_page_opens_where_it_was_left(open_info):
    lines = numbered(121)
    page = open_info(file_of(lines))
    page.menu.press("Down")
    page.wait_shows(lines[60:120])
    page.menu.press("Escape")
    page.menu.wait_row(INFO_ROW)
    page.open()
    page.wait_shows(lines[60:120])


def test_the_place_outlives_an_intro(open_info, desk):
    lines = numbered(121)
    page = open_info(file_of(lines))
    page.menu.press("Down")
    page.wait_shows(lines[60:120])
    page.menu.press("Escape")
    page.menu.wait_row(INFO_ROW)
    page.menu.wait_unpacked()
    page.menu.select(0)
    launch_and_leave(page.menu, desk, 0)
    page.open()
    page.wait_shows(lines[60:120])
    page.menu.press("Escape")
    page.menu.wait_row(INFO_ROW)
    page.menu.press("Escape")
    assert page.menu.program.wait_end() == 0
