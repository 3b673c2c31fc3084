"""The synthesiser: every sample of the song is computed here.

A recipe takes its instrument's section of song.ini and gives the wave, a list of numbers. Times and
pitches in the recipes are those of C-4, where a second has 8363 samples. No randomness and no
library beyond sine and exponential, so that every machine makes the same bytes.
"""

import math

RATE = 8363


def numbers(section, key):
    return [float(word) for word in section[key].split()]


def number(section, key):
    return float(section[key])


def length_of(section):
    return int(section["length"])


def sine(turns):
    return math.sin(2 * math.pi * turns)


def decay(index, milliseconds):
    """1 at the start, a little more than a third after so many milliseconds."""
    return math.exp(-index * 1000 / (RATE * milliseconds))


def noise(count):
    """-1 or 1, from a 15-bit shift register as in the sound chips of old."""
    register, values = 0x2C5D, []
    for _ in range(count):
        bit = (register ^ register >> 1) & 1
        register = register >> 1 | bit << 14
        values.append(2 * (register & 1) - 1)
    return values


def closed(wave, count=24):
    """A sample that does not loop has to end in silence, or it would click."""
    last = len(wave) - 1
    return [value * min(1, (last - i) / count) for i, value in enumerate(wave)]


def pulse_value(turns, width, partials):
    """A pulse of the given width around the middle of the cycle, without its highest partials."""
    def partial(n):
        angle = math.pi * n / (partials + 1)
        rounding = math.sin(angle) / angle
        strength = rounding * math.sin(math.pi * n * width) / n
        return strength * math.cos(2 * math.pi * n * (turns - 0.5))

    return sum(partial(n) for n in range(1, partials + 1))


def pulse(section):
    """Cycles of a pulse. What lies before the loop is the attack: the same at twice the pitch."""
    cycle, partials = int(section["cycle"]), int(section["partials"])
    widths, start = numbers(section, "widths"), int(section["loop"].split()[0])

    def value(i):
        if i < start:
            return pulse_value(2 * (i - start) / cycle, widths[0], partials // 2)
        return pulse_value((i - start) / cycle, widths[(i - start) // cycle], partials)

    return [value(i) for i in range(length_of(section))]


def partials(section):
    """One cycle, made of sines of the given strengths."""
    length, strengths = length_of(section), numbers(section, "partials")
    return [sum(strength * sine(n * i / length) for n, strength in enumerate(strengths, 1))
            for i in range(length)]


def kick(section):
    """A sine that falls fast, with a little noise on its first instants."""
    low, high = number(section, "to_hz"), number(section, "from_hz")
    sweep, ring = number(section, "sweep_ms"), number(section, "decay_ms")
    click = number(section, "click")
    wave, turns = [], 0.0
    for i, hiss in enumerate(noise(length_of(section))):
        wave.append(sine(turns) * decay(i, ring) + click * hiss * decay(i, 1.2))
        turns += (low + (high - low) * decay(i, sweep)) / RATE
    return closed(wave)


def snare(section):
    """A short drum tone under a longer burst of noise."""
    pitch, tone = number(section, "tone_hz"), number(section, "tone")
    tone_ms, noise_ms = number(section, "tone_ms"), number(section, "noise_ms")
    wave, turns = [], 0.0
    for i, hiss in enumerate(noise(length_of(section))):
        wave.append(tone * sine(turns) * decay(i, tone_ms) + hiss * decay(i, noise_ms))
        turns += pitch * (1 + decay(i, 8)) / RATE
    return closed(wave)


def hat(section):
    """Noise without its lows, and a ring of square waves that do not fit each other."""
    metal, ring = number(section, "metal"), number(section, "decay_ms")
    pitches = numbers(section, "metal_hz")
    hiss = noise(length_of(section) + 1)

    def value(i):
        clang = sum(1 if sine(hz * i / RATE) > 0 else -1 for hz in pitches) / len(pitches)
        return ((1 - metal) * (hiss[i + 1] - hiss[i]) / 2 + metal * clang) * decay(i, ring)

    return closed([value(i) for i in range(length_of(section))])


RECIPES = {recipe.__name__: recipe for recipe in (pulse, partials, kick, snare, hat)}


def sample(section):
    """The finished sample: its mean taken off if it loops, its peak at `level`."""
    wave = RECIPES[section["recipe"]](section)
    if "loop" in section:
        start = int(section["loop"].split()[0])
        mean = sum(wave[start:]) / len(wave[start:])
        wave = [value - mean for value in wave]
    peak = max(abs(value) for value in wave)
    return [round(value * int(section["level"]) / peak) for value in wave]
