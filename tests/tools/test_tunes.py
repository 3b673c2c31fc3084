"""The 28 tunes, rendered without a sound device: what holds for all of them."""

import numpy
import pytest

from tunes import BUILD, RATE, intro_tunes, render

SECONDS = 20
MIN_DISTANCE = 0.15    # between two tunes; the same tune in another guise is nearer than that
MOST_NOTES = 40        # of a tune whose pitch is looked for
FEWEST_LINES, MOST_LINES = 10, 40
TUNES = intro_tunes()


@pytest.fixture(scope="module")
def rendered(tmp_path_factory):
    first = min(TUNES)
    guise = {"guise": TUNES[first].replace("= saw", "= pulse")}
    return render(tmp_path_factory.mktemp("tunes"), {**TUNES, **guise}, SECONDS)


@pytest.fixture(params=TUNES)
def tune(request, rendered):
    return rendered[request.param]


def test_there_is_a_tune_for_each_intro():
    assert len(TUNES) == 28


def test_intros_and_data_file_stay_small():
    sizes = {path.name: path.stat().st_size for path in (BUILD / "sample_pack").glob("*.exe")}
    assert len(sizes) == 28
    assert max(sizes.values()) <= 65536, "the class of 64 KiB"
    assert (BUILD / "OstrikVelmora2009.dat").stat().st_size <= 700 * 1024


@pytest.mark.parametrize("name", TUNES)
def test_the_text_has_the_length_of_a_tune(name):
    assert FEWEST_LINES <= len(TUNES[name].strip().splitlines()) <= MOST_LINES


def test_all_of_the_text_is_understood_and_fits_its_bars(tune):
    assert tune.faults == 0


def test_the_level_is_in_range(tune):
    rms = 20 * numpy.log10(numpy.sqrt((tune.sound ** 2).mean()))
    assert -22 <= rms <= -14
    assert (numpy.abs(tune.sound) > 0.99).mean() < 0.001
    assert numpy.abs(tune.sound.mean(axis=0)).max() < 0.01


def test_it_begins_without_delay(tune):
    assert numpy.abs(tune.sound[:RATE // 5]).max() > 0.003


def test_it_repeats_without_a_click_and_without_a_gap(tune):
    """Neighboring samples differ no more around the first repetition than where the tune is played
    through, and there is no more silence."""
    middle = len(tune.loop) // 2
    around = tune.loop[middle - RATE // 5:middle + RATE // 5]
    assert largest_step(around) <= largest_step(tune.sound)
    assert longest_silence(tune.loop) <= max(longest_silence(tune.sound), RATE // 20)


def largest_step(sound):
    return numpy.abs(numpy.diff(sound, axis=0)).max()


def longest_silence(sound):
    loud = numpy.flatnonzero(numpy.abs(sound).max(axis=1) > 0.0005)
    return numpy.diff(numpy.concatenate([[0], loud, [len(sound)]])).max()


def test_the_written_pitches_are_heard(tune):
    """Most notes that are long enough have a peak at their pitch; others cover some of them."""
    notes = [note for note in tune.notes if note.is_tonal and note.attack < 100 and
             note.length > RATE // 4 and note.start + note.length < SECONDS * RATE]
    found = [has_peak(tune.sound[note.start:note.start + note.length].mean(axis=1), note.pitch)
             for note in notes[::1 + len(notes) // MOST_NOTES]]
    assert not found or numpy.mean(found) > 0.6


def has_peak(sound, pitch):
    """Whether the semitone of a pitch is louder than the mean of the five on either side."""
    size, sound = 1 << 16, sound[:1 << 15]
    spectrum = numpy.abs(numpy.fft.rfft(sound * numpy.hanning(len(sound)), size))
    edges = 440 * 2 ** ((numpy.arange(pitch - 5, pitch + 7) - 69.5) / 12) * size / RATE
    bands = [spectrum[int(a):max(int(b), int(a) + 1)].max() for a, b in zip(edges, edges[1:])]
    return bands[5] > numpy.mean(bands)


def profiles(sound):
    """The chroma (loudness of the 12 pitch classes), the beat (autocorrelation of the onsets up to
    two seconds), and the register (loudness of each third of an octave), each without its mean."""
    window, step = 2048, 882
    mono = sound.mean(axis=1).astype(numpy.float32)
    frames = numpy.lib.stride_tricks.sliding_window_view(mono, window)[::step]
    spectra = numpy.abs(numpy.fft.rfft(frames * numpy.hanning(window), axis=1))
    hertz = numpy.fft.rfftfreq(window, 1 / RATE)
    total = numpy.sqrt(spectra.mean(axis=0))
    tonal = (hertz > 100) & (hertz < 3000)
    classes = numpy.round(12 * numpy.log2(hertz[tonal] / 440)).astype(int) % 12
    chroma = numpy.bincount(classes, weights=total[tonal] * peaks(total)[tonal], minlength=12)
    thirds = numpy.floor(3 * numpy.log2(numpy.maximum(hertz, 25) / 25)).astype(int)
    register = numpy.bincount(thirds, weights=total, minlength=30)[3:30]
    onsets = numpy.maximum(numpy.diff(numpy.log(spectra + 0.01), axis=0), 0).sum(axis=1)
    onsets -= onsets.mean()
    spectrum = numpy.abs(numpy.fft.rfft(onsets, 2 * len(onsets))) ** 2
    beat = numpy.fft.irfft(spectrum)[5:100]
    return [normalized(profile) for profile in (chroma, beat, register)]


def peaks(spectrum):
    return numpy.r_[False, (spectrum[1:-1] > spectrum[:-2]) & (spectrum[1:-1] > spectrum[2:]), False]


def normalized(profile):
    profile = profile - profile.mean()
    return profile / numpy.sqrt((profile ** 2).sum())


def distance(one, other):
    """1 minus the mean correlation of the three profiles."""
    return 1 - numpy.mean([first @ second for first, second in zip(one, other)])


def test_no_two_tunes_are_alike(rendered):
    shapes = {name: profiles(tune.sound) for name, tune in rendered.items()}
    guise = distance(shapes.pop("guise"), shapes[min(TUNES)])
    names = sorted(shapes)
    distances = {(one, other): distance(shapes[one], shapes[other])
                 for one in names for other in names if one < other}
    nearest = min(distances, key=distances.get)
    print(f"nearest: {nearest} {distances[nearest]:.3f}, the same in another guise: {guise:.3f}")
    assert guise < MIN_DISTANCE
    assert distances[nearest] > MIN_DISTANCE, nearest
