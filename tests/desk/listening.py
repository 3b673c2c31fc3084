"""Comparing what was heard with what should have been heard."""

from collections import namedtuple

import numpy

from desk.menu import PROGRAM_NAME
from desk.sound import RATE
from helpers import BUILD, ROOT


SURE = RATE // 2      # frames; a shorter piece could be found in the song by chance
STEP = 2 * RATE       # frames that are looked for at once
SKIP = 3 * RATE // 2  # how far on a piece is looked for
CLICK = RATE // 1000  # a shorter silence is none: the sound server plays more than that at once
AHEAD = RATE // 10    # what the sound server has at hand when nothing more comes

# What a recording holds of the song: the frames at which its sound begins and ends there, how many
# frames were compared, how many of them differ by more than rounding, and behind which frames of
# the song the sound server had nothing to play.
Followed = namedtuple("Followed", "begin end judged wrong gaps")
ROUNDING = 2


def follow(heard, song, first=0, tolerance=ROUNDING):
    """Finds `heard` in the song, both arrays of rows of left, right. It is looked for close behind
    the song's frame `first`: in the whole song it would now and then be found in a wrong place,
    since some seconds of a tracker song come again note for note.

    Where a busy machine keeps the sound server waiting it plays digital silence, and the song goes
    on behind it. So the pieces between such silences are looked for one by one, each behind the one
    before. Now and then a moment of the song is lost already shortly before the silence. A player
    that is late is heard as older music, and on its buffer's first lap alone as silence, which then
    begins where the halves meet: whoever asks looks at the gaps.

    A frame is wrong if it differs by more than `tolerance`."""
    silence = max(CLICK, longest_silence(song[sounding(song)[0]:]))
    begin, end, judged, wrong, gaps, unsure = None, first, 0, 0, [], 0
    for piece in pieces_between(heard, silence):
        if len(piece) < SURE:
            unsure += len(piece)
            continue
        place = end + find_place(piece[:STEP], song[end:end + unsure + SKIP + STEP])
        if begin is None:
            begin = place - unsure
        else:
            gaps.append(end)
        piece = piece[:len(song) - place]
        faithful = frames_before_a_loss(piece, song[place:], tolerance)
        piece, unsure = piece[:faithful], len(piece) - faithful
        end = place + len(piece)
        judged += len(piece)
        wrong += len(inner(wrong_frames(piece, song[place:end], tolerance), piece))
    assert begin is not None, "the song is not heard"
    return Followed(begin, end + unsure, judged, wrong, gaps)


def wrong_frames(heard, song, tolerance):
    """Returns which frames of two pieces of the same length differ by more than `tolerance`."""
    return numpy.nonzero(numpy.abs(heard - song.astype(int)).max(axis=1) > tolerance)[0]


def inner(frames, piece):
    """Returns those of `frames` that do not lie in the first or the last millisecond of a piece,
    beside a silence: the sound server and the mixer may round its edges off."""
    return frames[(frames >= CLICK) & (frames < len(piece) - CLICK)]


def frames_before_a_loss(piece, song, tolerance):
    """How much of `piece` lies before the place, close to its end, from where on it is the song of
    a later moment without any fault; all of it without such a place."""
    wrong = inner(wrong_frames(piece, song[:len(piece)], tolerance), piece)
    rest = piece[wrong[0]:] if len(wrong) else piece[:0]
    if not CLICK < len(rest) <= AHEAD:
        return len(piece)
    later = song[wrong[0]:wrong[0] + SKIP + len(rest)]
    place = find_place(rest, later)
    faulty = wrong_frames(rest, later[place:place + len(rest)], tolerance)
    return len(piece) if len(faulty) else int(wrong[0])


def find_place(heard, song):
    """Where in `song` the piece `heard` begins: where the two correlate best."""
    size = 1 << (len(song) + len(heard)).bit_length()
    product = sum(numpy.fft.irfft(numpy.fft.rfft(song[:, side].astype(float), size) *
                                  numpy.conj(numpy.fft.rfft(heard[:, side].astype(float), size)),
                                  size)
                  for side in (0, 1))[:len(song) - len(heard) + 1]
    energy = numpy.concatenate([[0], numpy.cumsum((song.astype(float) ** 2).sum(axis=1))])
    there = energy[len(heard):] - energy[:-len(heard)]
    return int(numpy.argmax(product / numpy.sqrt(there + 1)))


def sounding(samples):
    """The first and the last frame that is not silent, the last one exclusive."""
    loud = numpy.nonzero(samples.any(axis=1))[0]
    return (int(loud[0]), int(loud[-1]) + 1) if len(loud) else (0, 0)


def _silences(samples):
    """The runs of frames that are silent, each as (first, behind the last)."""
    silent = numpy.concatenate([[False], ~samples.any(axis=1), [False]])
    return numpy.nonzero(silent[1:] != silent[:-1])[0].reshape(-1, 2)


def longest_silence(samples):
    """The length of the longest run of silent frames."""
    return max((int(end - first) for first, end in _silences(samples)), default=0)


def pieces_between(samples, silence):
    """The pieces of `samples` between silences of more than so many frames."""
    pieces, begin = [], 0
    for first, end in _silences(samples):
        if end - first > silence:
            pieces.append(samples[begin:first])
            begin = end
    pieces.append(samples[begin:])
    return [piece for piece in pieces if len(piece)]


def render_song(desk, helpers, pieces):
    """The program's own module in the library's rendering: an array of rows of left, right."""
    module = (ROOT / "assets" / "module.xm").read_bytes()
    assert module in (BUILD / PROGRAM_NAME).read_bytes(), "the program carries another module"
    (desk.folder / "song.xm").write_bytes(module)
    desk.ask(helpers.render, "song.xm", str(pieces), "song.raw", limit=120)
    return numpy.fromfile(desk.folder / "song.raw", dtype="<i2").reshape(-1, 2)
