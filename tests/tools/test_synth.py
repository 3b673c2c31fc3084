"""The intros' synthesizer: pitch, envelopes, notation and repetition, measured in what it renders."""

import numpy
import pytest

from tunes import RATE, render

HEAD = "tempo 120\nvolume 100\n"
WAVES = ("sine", "triangle", "saw", "pulse")
PITCHES = {"o2 l1 a": 110.0, "o4 l1 c": 261.6256, "o4 l1 a": 440.0, "o5 l1 f+": 739.9888,
           "o7 l1 c": 2093.0045}
FILTERS = {"lowpass 4000 10": 1, "lowpass 110 10": 1 / 8, "highpass 100 10": 1,
           "highpass 1760 10": 1 / 8, "bandpass 440 60": 1, "bandpass 3520 60": 1 / 4}
FAULTS = ["i = square\nA i c1\nplay A", "i = sine loud 5\nA i c1\nplay A",
          "i = sine\nA i h\nplay A", "i = sine\nA i c7\nplay A", "i = sine\nA i c1\nplay B",
          "i = sine\nA i c2 d4\nA i c1\nplay A", "i = sine\nA i c2 | d2\nplay A",
          "i = sine\nA i (c\nplay A", "i = sine\nA i c1]\nplay A", "i = sine\nA j c1\nplay A",
          "song 3\ni = sine\nA i c1\nplay A"]
NOISE = ("delay 3/16 40\n"
         "i = noise adsr 5 100 50 50 bandpass 900 40 hold 9 5 delay 50 reverb 50\n"
         "A i l8 c d e f g a b r\nplay A\n")
TEXTS = {
    "envelope": "i = sine adsr 100 200 50 300 level 20\nA i o4 l2 a r\nplay A\n",
    "noise": NOISE,
    "same-noise": NOISE,
    "swing": "swing 62\ni = sine\nA i l8 c d e4 (c e g)2. x4\nplay A\n",
    "sections": "i = sine\nA i o4 [c d]2\nB i o5 c+2 d-2\nplay A |: B+2 A\n",
    "echo": "delay 1/4 50\ni = sine adsr 1 20 0 5 level 60 delay 100\nA i o6 l1 a\nplay A\n",
    "held": "i = sine adsr 5 0 100 200 level 40\nA i o3 l1 a\nplay A\n",
    "loud": "volume 900\ni = saw level 100\nA i o2 l1 (c e g b)\nplay A\n",
    "no-filter": "i = sine level 40\nA i o4 l1 a\nplay A\n",
    **{f"pitch-{wave}-{number}": f"i = {wave} level 40\nA i {note}\nplay A\n"
       for wave in WAVES for number, note in enumerate(PITCHES)},
    **{f"filter-{number}": f"i = sine {options} level 40\nA i o4 l1 a\nplay A\n"
       for number, options in enumerate(FILTERS)},
    **{f"fault-{number}": text + "\n" for number, text in enumerate(FAULTS)}}


@pytest.fixture(scope="module")
def tunes(tmp_path_factory):
    """All the texts above, rendered in one run."""
    texts = {name: HEAD + text for name, text in TEXTS.items()}
    return render(tmp_path_factory.mktemp("tunes"), texts, 3)


def frequency(sound):
    """The strongest frequency, to a small part of a cent: the peak of a long, padded spectrum."""
    size = 1 << 20
    spectrum = numpy.abs(numpy.fft.rfft(sound * numpy.hanning(len(sound)), size))
    peak = int(spectrum.argmax())
    below, here, above = numpy.log(spectrum[peak - 1:peak + 2])
    return (peak + (below - above) / (below - 2 * here + above) / 2) * RATE / size


def level(sound):
    return numpy.sqrt((sound[4410:, 0] ** 2).mean())


@pytest.mark.parametrize("wave", WAVES)
def test_every_wave_is_in_tune_within_two_cents(tunes, wave):
    for number, expected in enumerate(PITCHES.values()):
        heard = frequency(tunes[f"pitch-{wave}-{number}"].sound[2000:80000, 0])
        assert abs(1200 * numpy.log2(heard / expected)) < 2


def test_the_envelope_takes_the_times_that_are_written(tunes):
    periods = numpy.abs(tunes["envelope"].sound[:, 0])[:2 * RATE].reshape(-1, 100)
    levels = periods.max(axis=1) / 0.2 / 0.8  # the instrument's level and the note's velocity

    def at(seconds):
        return levels[int(seconds * RATE / 100)]
    assert at(0.05) == pytest.approx(0.5, abs=0.04)
    assert at(0.10) == pytest.approx(0.97, abs=0.04), "full, but for the decay of one period"
    assert at(0.30) == pytest.approx(0.5, abs=0.03), "the decay ends at the sustain level"
    assert at(0.95) == pytest.approx(0.5, abs=0.02)
    assert at(1.15) == pytest.approx(0.05, abs=0.02), "a tenth after half the release"
    assert at(1.31) < 0.012


def test_the_same_text_sounds_the_same(tunes):
    assert tunes["noise"].sound.any()
    assert (tunes["noise"].sound == tunes["same-noise"].sound).all()


def test_notes_start_where_they_are_written(tunes):
    tune, beat = tunes["swing"], RATE // 2
    assert tune.faults == 0
    assert [note.start for note in tune.notes] == pytest.approx(
        [0, 0.62 * beat, beat, 2 * beat, 2 * beat, 2 * beat, 5 * beat], abs=1)
    assert [note.pitch for note in tune.notes] == [60, 62, 64, 60, 64, 67, 60]


def test_sections_repeat_and_are_transposed(tunes):
    tune = tunes["sections"]
    assert tune.faults == 0
    assert [note.pitch for note in tune.notes] == [60, 62, 60, 62, 75, 75, 60, 62, 60, 62]
    assert (tune.loop_start, tune.length) == (2 * RATE, 6 * RATE)


@pytest.mark.parametrize("number", range(len(FAULTS)))
def test_what_is_not_understood_is_counted(tunes, number):
    assert tunes[f"fault-{number}"].faults > 0


def test_the_filters_pass_their_side_of_the_cutoff(tunes):
    plain = level(tunes["no-filter"].sound)
    for number, (options, part) in enumerate(FILTERS.items()):
        heard = level(tunes[f"filter-{number}"].sound) / plain
        assert heard == pytest.approx(1, abs=0.1) if part == 1 else heard < part, options


def test_an_echo_comes_after_the_delay_on_alternate_sides(tunes):
    levels = [numpy.abs(tunes["echo"].sound[start:start + 2000]).max(axis=0)
              for start in range(0, 2 * RATE, RATE // 2)]
    assert levels[1][0] > 0.1 > 10 * levels[1][1]
    assert levels[2][1] > 0.02 > 10 * levels[2][0]


def test_a_held_note_does_not_click_where_the_tune_repeats(tunes):
    steps = numpy.abs(numpy.diff(tunes["held"].loop[:, 0]))
    assert len(steps) > RATE
    assert steps.max() < 0.02, "220 Hz at this level rise by 0.01 per frame"


def test_full_scale_is_never_reached(tunes):
    assert 0.9 < numpy.abs(tunes["loud"].sound).max() < 0.98
