"""All intros of a pack, one after the other: run from the menu, looked at, left again."""

import time
from collections import namedtuple

import numpy
from PIL import Image, ImageDraw

from .menu import INTRO_ROWS, highlighted_row
from .screen import lit_pixels
from .waiting import wait_until

COLUMNS = 7
THUMBNAIL = (256, 192)
CAPTION_HEIGHT = 16
LOADING_SECONDS = {"014-WRaS.exe": 12, "023-Myrtle.exe": 6}  # before there is something to see
SHOWN_PIXELS = 100
MOVED_PIXELS = 100

# One intro as it was seen and heard: its row, its file, its first picture and a later one, and the
# recording's frames when the first picture was seen, when Escape was pressed and when the menu was
# back; none without a recording.
Shot = namedtuple("Shot", "row name first later frames")


def show(menu, row, name, seconds=0.0, recording=None):
    """Runs the intro of the selected row and leaves it again. Returns a Shot of it, the later
    picture taken when it has moved and `seconds` have passed, in the time of the `recording` if
    there is one; the menu is then back."""
    menu.press("Return")
    first = wait_shown(menu.desk, name)
    frames = []

    def mark():
        if recording:
            frames.append(recording.frames())
    mark()
    if recording:
        recording.wait_for(seconds)
    else:
        time.sleep(seconds)  # what a reader of the sheet wants to see: not an effect's first moment
    later = menu.desk.wait_picture(lambda pixels: _count(pixels != first) > MOVED_PIXELS,
                                   f"movement in the picture of {name}")
    menu.desk.screen.focus_program(name)
    menu.desk.screen.tap("Escape")
    mark()
    menu.wait_up(row)
    mark()
    return Shot(row, name, first, later, frames)


def wait_shown(desk, name):
    """Waits until the intro shows a picture, and gives it. The menu's own picture on its way out,
    half of it black already, is none: the intro is started behind that."""
    wait_until(lambda: name in desk.program_names(), f"{name} to run")
    return desk.wait_picture(
        lambda pixels: highlighted_row(pixels) is None and _count(pixels) > SHOWN_PIXELS,
        f"a picture of {name}")


def walk(menu, names, seconds=0.0, recording=None):
    """Gives a Shot of every intro of the menu, row by row."""
    for row in INTRO_ROWS:
        menu.select(row)
        wanted = max(seconds, LOADING_SECONDS.get(names[row], 0))
        yield show(menu, row, names[row], wanted, recording)


def thumbnail(shot):
    """The intro without the black around it, on a ground of the thumbnail's size."""
    rows, columns = numpy.nonzero(lit_pixels(shot.later) | lit_pixels(shot.first))
    used = shot.later[rows.min():rows.max() + 1, columns.min():columns.max() + 1]
    picture = Image.fromarray(used)
    picture.thumbnail(THUMBNAIL)
    ground = Image.new("RGB", THUMBNAIL)
    ground.paste(picture, ((THUMBNAIL[0] - picture.width) // 2,
                           (THUMBNAIL[1] - picture.height) // 2))
    return ground


def contact_sheet(shots):
    """One picture of all the later pictures, with the files' names under them."""
    width, height = THUMBNAIL
    lines = -(-len(shots) // COLUMNS)
    sheet = Image.new("RGB", (COLUMNS * width, lines * (height + CAPTION_HEIGHT)))
    pen = ImageDraw.Draw(sheet)
    for number, shot in enumerate(shots):
        left = number % COLUMNS * width
        top = number // COLUMNS * (height + CAPTION_HEIGHT)
        sheet.paste(thumbnail(shot), (left, top))
        pen.text((left + 4, top + height + 2), shot.name.removesuffix(".exe"), fill="white")
    return sheet


def _count(pixels):
    """How many pixels are not black, or not the same."""
    return int(pixels.any(axis=2).sum())
