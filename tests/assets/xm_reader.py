"""Takes an extended module apart again, for tests; knows nothing of the code that wrote it."""

import struct

ROWS, CHANNELS = 64, 4


def unpacked_cells(packed):
    at = 0
    while at < len(packed):
        marks = packed[at]
        if marks & 0x80:
            at += 1
        else:
            marks = 0x1F
        cell = []
        for bit in range(5):
            used = marks >> bit & 1
            cell.append(packed[at] if used else 0)
            at += used
        yield tuple(cell)


def read_patterns(data):
    """The patterns' cells as (note, instrument, volume, effect, parameter), and where they end."""
    patterns, at = [], 60 + 276
    for _ in range(11):
        size, packing, rows, packed = struct.unpack_from("<IBHH", data, at)
        assert (size, packing, rows) == (9, 0, ROWS)
        cells = list(unpacked_cells(data[at + size:at + size + packed]))
        assert len(cells) == ROWS * CHANNELS
        patterns.append([cells[i:i + CHANNELS] for i in range(0, len(cells), CHANNELS)])
        at += size + packed
    return patterns, at


def read_instruments(data, at):
    """A dictionary an instrument, and where the last one ends."""
    found = []
    for _ in range(6):
        size, name, _, samples = struct.unpack_from("<I22sBH", data, at)
        instrument = {"name": name.rstrip(b"\0"), "samples": samples, "length": None}
        at += size
        if samples:
            length, start, loop, _, _, kind = struct.unpack_from("<IIIBbB", data, at)
            instrument |= {"length": length, "loop": (start, loop), "kind": kind}
            at += 40 + length
        found.append(instrument)
    return found, at
