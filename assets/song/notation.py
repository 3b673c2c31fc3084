"""Reads a pattern as a musician writes it down: a row a line, a cell a channel.

    00 | E-5 1 v44 ... | A-4 4 p06 037 | A-1 4 v50 ... | C-4 2 ... ...

A cell has four columns, and a column of dots (or a lone dot) is empty:

    note         C-0 to B-7, with # for a sharp; === lets the note go
    instrument   1 to 6
    volume       vNN  volume 0 to 64         pNN  panning 0 left to 15 right
                 dNN  slide down, uNN up     bNN  vibrato of that depth (all 0 to 15)
    effect       three hexadecimal digits: the effect, then its parameter

Lines that start with # are the composer's remarks.
"""

from typing import NamedTuple

NOTES = ["C-", "C#", "D-", "D#", "E-", "F-", "F#", "G-", "G#", "A-", "A#", "B-"]
KEY_OFF = 97
VOLUME_COLUMN = {"v": (0x10, 64), "d": (0x60, 15), "u": (0x70, 15), "b": (0xB0, 15),
                 "p": (0xC0, 15)}


class Cell(NamedTuple):
    note: int = 0
    instrument: int = 0
    volume: int = 0
    effect: int = 0
    parameter: int = 0


def note_number(text):
    """1 is C-0; 0 is no note."""
    if text == "...":
        return 0
    if text == "===":
        return KEY_OFF
    return NOTES.index(text[:2]) + 12 * int(text[2]) + 1


def volume_byte(text):
    if text == "...":
        return 0
    if text[0] not in VOLUME_COLUMN:
        raise ValueError(f"{text} is no volume")
    base, most = VOLUME_COLUMN[text[0]]
    value = int(text[1:])
    if not 0 <= value <= most:
        raise ValueError(f"{text} is beyond {most}")
    return base + value


def cell(text):
    note, instrument, volume, effect = text.split()
    effect = "000" if effect == "..." else effect
    return Cell(note_number(note), 0 if instrument == "." else int(instrument),
                volume_byte(volume), int(effect[0], 16), int(effect[1:], 16))


def rows(text):
    """The rows of a pattern, each a list of cells. Tells the line that cannot be read."""
    found = []
    for line in text.splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        try:
            number, *cells = line.split("|")
            if int(number) != len(found):
                raise ValueError(f"row {len(found)} is due")
            found.append([cell(each) for each in cells])
        except (ValueError, IndexError) as error:
            raise ValueError(f"cannot read {line!r}: {error}") from error
    return found
