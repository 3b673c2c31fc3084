"""Writes the parts of an extended module, version 1.04, as bytes."""

import struct

NAME = 22
SAMPLE_HEADER = 40
ORDERS = 256
ENVELOPE_POINTS = 12
EMPTY_INSTRUMENT = 33
INSTRUMENT = 263
FORWARD_LOOP = 1


def text(value, width, fill=b"\0"):
    data = value.encode("ascii")
    if len(data) > width:
        raise ValueError(f"{value!r} is longer than {width}")
    return data.ljust(width, fill)


def header(title, tracker, orders, channels, patterns, instruments, ticks, tempo):
    """Flags 0 choose the pitch table of the Amiga; the restart position stays 0."""
    fields = (276, len(orders), 0, channels, patterns, instruments, 0, ticks, tempo)
    return (b"Extended Module: " + text(title, 20, b" ") + b"\x1a" + text(tracker, 20, b" ")
            + struct.pack("<HI8H", 0x0104, *fields) + bytes(orders).ljust(ORDERS, b"\0"))


def packed_cell(cell):
    """A full cell is written as it is; any other as a byte of marks and the columns in use."""
    if all(cell):
        return bytes(cell)
    marks = sum(1 << bit for bit, value in enumerate(cell) if value)
    return bytes([0x80 | marks, *filter(None, cell)])


def pattern(rows):
    data = b"".join(packed_cell(cell) for row in rows for cell in row)
    return struct.pack("<IBHH", 9, 0, len(rows), len(data)) + data


def envelope_points(points):
    values = [number for point in points for number in point]
    return struct.pack(f"<{2 * ENVELOPE_POINTS}H", *values, *[0] * (24 - len(values)))


def deltas(values):
    """Each value as its difference to the one before."""
    if not all(-128 <= value <= 127 for value in values):
        raise ValueError("a sample does not fit into 8 bits")
    return bytes((value - before) & 0xFF for before, value in zip([0, *values], values))


def sample_header(name, values, loop, volume, tune, pan):
    semitones, fine = tune
    kind = FORWARD_LOOP if loop else 0
    return struct.pack("<IIIBbBBbB", len(values), *(loop or (0, 0)), volume, fine, kind, pan,
                       semitones, 0) + text(name, NAME)


def instrument(name, points, sustain, vibrato, fadeout, head, values):
    """An instrument with one sample, which all notes play. It has no panning envelope."""
    kind = 1 if sustain is None else 3
    settings = bytes([len(points), 0, sustain or 0, 0, 0, 0, 0, 0, kind, 0, *vibrato])
    body = (struct.pack("<BHI", 0, 1, SAMPLE_HEADER) + bytes(96) + envelope_points(points)
            + envelope_points([]) + settings + struct.pack("<H", fadeout))
    start = struct.pack("<I", INSTRUMENT) + text(name, NAME)
    return (start + body).ljust(INSTRUMENT, b"\0") + head + deltas(values)


def empty_instrument(name):
    return (struct.pack("<I", EMPTY_INSTRUMENT) + text(name, NAME)
            + struct.pack("<BHI", 0, 0, SAMPLE_HEADER))
