"""The pages as GDI draws them without the menu, to compare the screen with."""

import numpy

from catalogue import ROWS, WELCOME
from desk.menu import LIST_TOP, row_place
from helpers import ROOT


def as_565(pixels):
    """The picture in the depth that the menu draws in; the X server shows it with more bits."""
    parts = pixels.astype(numpy.uint16)
    return parts[:, :, 0] >> 3 << 11 | parts[:, :, 1] >> 2 << 5 | parts[:, :, 2] >> 3


def wait_page(desk, expected, what="the page as GDI draws it"):
    """Waits until the whole screen shows the page, and returns the pixels."""
    return desk.wait_picture(lambda pixels: (as_565(pixels) == expected).all(), what)


def draw_page(desk, helpers, lines):
    """What GDI makes of a list of drawing lines, as a 5-6-5 picture."""
    drawing, out = desk.folder / "page.txt", desk.folder / "page.565"
    drawing.write_bytes(b"".join(line + b"\n" for line in lines))
    desk.ask(helpers.page, "page.txt", "page.565")
    return numpy.fromfile(out, dtype="<u2").reshape(768, 1024)


def banner_line():
    path = "Z:" + str(ROOT / "assets" / "banner.bmp").replace("/", "\\")
    return f"bitmap\t192\t0\t{path}".encode()


def catalogue_page(desk, helpers, selected):
    """The yardstick for the catalogue page with one row highlighted."""
    lines = [banner_line(), b"font\tArial\t14"]
    for row, (title, _) in enumerate(ROWS):
        x, y = row_place(row)
        back = "ff0000" if row == selected else "000000"
        lines.append(f"text\t{x}\t{y}\tffffff\t{back}\t{title}".encode())
    lines.append(b"font\tArial\t10")
    lines += [f"text\t100\t{620 + 20 * n}\t00ffff\t000000\t{words}".encode()
              for n, words in enumerate(WELCOME)]
    return draw_page(desk, helpers, lines)


def info_page(desk, helpers, shown):
    """The yardstick for the info page with these lines on it."""
    lines = [banner_line(), b"font\tTerminal\t10"]
    lines += [b"text\t100\t%d\tffffff\t000000\t%s" % (LIST_TOP + 10 * n, words)
              for n, words in enumerate(shown) if words]
    return draw_page(desk, helpers, lines)
