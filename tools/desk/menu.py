"""The menu program as its user meets it: started, steered by keys, read off the screen."""

from pathlib import Path

import numpy

from .waiting import DeskError, wait_until

PROGRAM_NAME = "OstrikVelmora2009.exe"
DATA_NAME = "OstrikVelmora2009.dat"
INFO_NAME = "ostrik.nfo"
STAGING_NAME = "Qev"
STAGED_NAME = "BlahBlubber.exe"
WINDOW_TITLE = "Ostrik Tessel Intros 2009 Keldara"
WINDOW_CLASS = "MultimediaBase Class"

INTRO_ROWS = range(28)
INFO_ROW, QUIT_ROW = 28, 29
ROWS = 30
ROWS_A_COLUMN = 15
COLUMN_X = (100, 600)
LIST_TOP, ROW_STEP = 145, 30
LIST_BOTTOM = LIST_TOP + ROWS_A_COLUMN * ROW_STEP
RED = (255, 0, 0)


def row_place(row):
    """The upper left corner of a row's words."""
    return COLUMN_X[row // ROWS_A_COLUMN], LIST_TOP + row % ROWS_A_COLUMN * ROW_STEP


def highlight(pixels):
    """The red box as (left, top, right, bottom), the last two exclusive, or None without one."""
    rows, columns = numpy.nonzero((pixels[LIST_TOP:LIST_BOTTOM] == RED).all(axis=2))
    if len(rows) == 0:
        return None
    return (int(columns.min()), LIST_TOP + int(rows.min()),
            int(columns.max()) + 1, LIST_TOP + int(rows.max()) + 1)


def highlighted_row(pixels):
    """The number of the highlighted row, or None on every other picture than the catalogue's."""
    red_rows = [row for row in range(ROWS) if _is_corner(pixels, *row_place(row))]
    return red_rows[0] if len(red_rows) == 1 else None


def _is_corner(pixels, x, y):
    """Whether a red box begins exactly here."""
    here, left, above = (tuple(pixels[at]) for at in ((y, x), (y, x - 1), (y - 1, x)))
    return here == RED and left != RED and above != RED


class Menu:
    """A running menu program. `folder` holds program and data file and is its current folder."""

    def __init__(self, desk, folder, **options):
        self.desk = desk
        self.folder = Path(folder)
        self.program = desk.start(self.folder / PROGRAM_NAME, self.folder, **options)

    @property
    def staging_folder(self):
        return self.desk.temp_folder / STAGING_NAME

    def wait_row(self, row):
        """Waits until the catalogue stands with `row` highlighted, and gives the pixels."""
        what = f"the menu with row {row} highlighted"

        def seen(pixels):
            if not self.program.alive():
                raise DeskError(f"waited in vain for {what}: "
                                f"the program has ended with exit code {self.program.wait_end()}")
            return highlighted_row(pixels) == row

        return self.desk.wait_picture(seen, what)

    def wait_up(self, row=0):
        """Waits for the catalogue and gives the keys to the program. The picture may be there
        before the window, and the program hears of the keys when it looks after its messages: a
        key before that would be lost. Gives the menu itself."""
        self.wait_row(row)
        self.desk.screen.focus_top_window(f"^{WINDOW_TITLE}$")
        self.program.let_run()
        return self

    def press(self, *keys):
        self.desk.press(self.program, *keys)

    def step(self, key, row):
        """Presses `key` and waits until it has led to `row`."""
        self.press(key)
        return self.wait_row(row)

    def select(self, row):
        """Goes to a row from wherever the highlight is, by the shortest way."""
        current = highlighted_row(self.desk.screen.pixels())
        if current // ROWS_A_COLUMN != row // ROWS_A_COLUMN:
            current = (current + ROWS_A_COLUMN) % ROWS
            self.step("Right", current)
        column = row // ROWS_A_COLUMN * ROWS_A_COLUMN
        down = (row - current) % ROWS_A_COLUMN
        key, way = ("Down", 1) if down <= ROWS_A_COLUMN // 2 else ("Up", -1)
        while current != row:
            current = column + (current - column + way) % ROWS_A_COLUMN
            self.step(key, current)

    def wait_unpacked(self):
        """Waits until the self-extractor has done its work and ended."""
        wait_until(self._is_unpacked, "the intros to be unpacked")

    def _is_unpacked(self):
        return (self.staging_folder / STAGED_NAME).exists() and \
            STAGED_NAME not in self.desk.program_names()
