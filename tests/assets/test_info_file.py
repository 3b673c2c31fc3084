"""The sample pack's info file: fit for the info page, complete, and true to the catalogue."""

import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = 60
COLUMNS = 80
ORNAMENTS = range(0xB0, 0xE0)  # code page 437: shades, box drawing, blocks


@pytest.fixture(scope="module")
def data():
    return (ROOT / "sample_pack" / "ostrik.nfo").read_bytes()


@pytest.fixture(scope="module")
def lines(data):
    return data.split(b"\r\n")[:-1]


@pytest.fixture(scope="module")
def words(data):
    """The text with every run of blanks and line ends as one blank."""
    return " ".join(data.decode("cp437").split())


def catalogue_titles():
    source = (ROOT / "launcher" / "catalogue.cpp").read_text()
    return re.findall(r'\{"(\d\d\. [^"]+)", "[^"]+\.exe"\}', source)


def test_every_line_ends_with_carriage_return_and_line_feed(data):
    assert data.endswith(b"\r\n")
    assert data.count(b"\r\n") == data.count(b"\r") == data.count(b"\n")


def test_it_is_longer_than_one_page(lines):
    assert len(lines) > PAGE


def test_no_line_is_wider_than_the_page(lines):
    assert max(map(len, lines)) <= COLUMNS


def test_no_line_ends_in_blanks(lines):
    assert all(line == line.rstrip() for line in lines)


def test_bytes_are_printable_or_ornaments(lines):
    assert {byte for line in lines for byte in line} <= {*range(0x20, 0x7F), *ORNAMENTS}


def test_words_are_plain_so_that_another_code_page_spoils_ornaments_only(lines):
    for line in lines:
        assert not re.search(rb"[A-Za-z][\xb0-\xdf]|[\xb0-\xdf][A-Za-z]", line)


def test_each_page_of_sixty_lines_is_a_page_of_the_text(lines):
    count = -(-len(lines) // PAGE)
    for page in range(count):
        shown = lines[page * PAGE:(page + 1) * PAGE]
        assert shown[0].strip() != b""
        assert b" page %d of %d " % (page + 1, count) in shown[-1]


def test_all_intros_are_listed_in_the_order_of_the_catalogue(lines):
    titles = catalogue_titles()
    assert len(titles) == 28
    listed = [line.strip().decode("cp437") for line in lines]
    assert [line for line in listed if re.match(r"\d\d\. ", line)] == titles


@pytest.mark.parametrize("told", [
    "Cursor Up, Down", "Cursor Left, Right", "Enter", "ESC", '"Show NFO File"',
    "pages of 60 lines", "two ways out", "leaves the menu and removes the folder",
    "until the menu is started the next time", "Windows", "Wine", "Ilmar aka Ostrik",
])
def test_it_tells_how_the_menu_is_used(words, told):
    assert told in words
