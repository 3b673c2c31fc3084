#!/usr/bin/python3
"""Makes the song out of song.ini and patterns/, and writes assets/module.xm, or the file named on
the command line. Tells how the bytes are spent, and fails when the sum is not the one wanted.
"""

import configparser
import pathlib
import sys

import notation
import synth
import xm

HERE = pathlib.Path(__file__).resolve().parent
CHANNELS = 4


def settings():
    parser = configparser.ConfigParser(inline_comment_prefixes=None)
    parser.read_string((HERE / "song.ini").read_text())
    return parser


def whole_numbers(words):
    return [int(word) for word in words.split()]


def pattern(number, row_count):
    rows = notation.rows((HERE / "patterns" / f"{number:02}.txt").read_text())
    if len(rows) != row_count or any(len(row) != CHANNELS for row in rows):
        raise ValueError(f"pattern {number} is not {row_count} rows of {CHANNELS} channels")
    return rows


def instrument(section):
    if "sample" not in section:
        return xm.empty_instrument(section["name"])
    values = synth.sample(section)
    loop = whole_numbers(section["loop"]) if "loop" in section else None
    head = xm.sample_header(section["sample"], values, loop, int(section["volume"]),
                            whole_numbers(section["tune"]), int(section["pan"]))
    points = [whole_numbers(point.replace(":", " ")) for point in section["envelope"].split()]
    sustain = int(section["sustain"]) - 1 if "sustain" in section else None
    vibrato = [0, *whole_numbers(section.get("vibrato", "0 0 0"))]
    return xm.instrument(section["name"], points, sustain, vibrato,
                         int(section.get("fadeout", "0")), head, values)


def parts():
    """The song as named pieces, in the order of the file."""
    parser = settings()
    song = parser["song"]
    orders = whole_numbers(song["orders"])
    patterns = [pattern(number, int(song["rows"])) for number in sorted(set(orders))]
    instruments = [parser[name] for name in parser.sections() if name.startswith("instrument")]
    yield "header", xm.header(song["title"], song["tracker"], orders, CHANNELS, len(patterns),
                              len(instruments), int(song["ticks"]), int(song["tempo"]))
    for number, rows in enumerate(patterns):
        yield f"pattern {number}", xm.pattern(rows)
    for number, section in enumerate(instruments, 1):
        yield f"instrument {number}", instrument(section)


def main():
    target = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "module.xm"
    pieces = list(parts())
    data = b"".join(piece for _, piece in pieces)
    wanted = int(settings()["song"]["bytes"])
    for name, piece in pieces:
        print(f"{name:13} {len(piece):6}")
    print(f"{'all':13} {len(data):6}, {len(data) - wanted:+} to the {wanted} wanted")
    target.write_bytes(data)
    return len(data) != wanted


if __name__ == "__main__":
    sys.exit(main())
