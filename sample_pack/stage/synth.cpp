#include "synth.h"

#include "number.h"

namespace {
constexpr float blockSeconds = float(Synth_Block) / float(Tune_Rate);
constexpr float silence = 0.0003f; // -70 dB: a voice below it ends

// What all voices of a block add up to.
struct Mix {
    float dry[2][Synth_Block], delay[2][Synth_Block], reverb[2][Synth_Block];
};

// Returns a random number from -1 to 1.
float takeChance(uint32_t& state) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return float(int32_t(state)) / 2147483648.0f;
}

// Returns a factor that decays from 1 to 1 % within `time`.
float fadeAt(float age, float time) { return time > 0 ? std::exp(-4.60517f * age / time) : 0; }

// Oscillators.

// Rounds the corner of a step at phase 0, which would otherwise alias. `phase` and `step` count
// periods.
float roundStep(float phase, float step) {
    if (phase < step) {
        const float t = phase / step;
        return t + t - t * t - 1;
    }
    if (phase > 1 - step) {
        const float t = (phase - 1) / step;
        return t * t + t + t + 1;
    }
    return 0;
}

float sawAt(float phase, float step) { return 2 * phase - 1 - roundStep(phase, step); }

// The difference of two saws, without its mean.
float pulseAt(float phase, float step, float width) {
    const float other = phase + width < 1 ? phase + width : phase + width - 1;
    return sawAt(phase, step) - sawAt(other, step);
}

float triangleAt(float phase) { return 4 * std::fabs(phase - 0.5f) - 1; }

constexpr float perPeriod = 1.0f / 4294967296.0f;

// Adds a block of an oscillator. `step` is the part of a period per frame.
template <class Shape>
void oscillate(float (&block)[Synth_Block], uint32_t& phase, float step, const Shape& shape) {
    const uint32_t advance = uint32_t(double(step) * 4294967296.0);
    for (float& sample : block) {
        sample += shape(float(phase) * perPeriod);
        phase += advance;
    }
}

void oscillateSine(float (&block)[Synth_Block], Voice& voice, uint32_t& phase, float step) {
    const Instrument& instrument = *voice.instrument;
    if (instrument.ratio <= 0)
        return oscillate(block, phase, step, [](float at) { return Num_Sin(at); });
    const float seconds = float(voice.age) / float(Tune_Rate);
    const float sustained = instrument.fade > 0 ? fadeAt(seconds, instrument.fade) : 1;
    const float index = instrument.index * sustained / Num_Turn;
    const uint32_t advance = uint32_t(double(step * instrument.ratio) * 4294967296.0);
    oscillate(block, phase, step, [&](float at) {
        voice.modulator += advance;
        return Num_Sin(at + index * Num_Sin(float(voice.modulator) * perPeriod));
    });
}

void oscillateWave(float (&block)[Synth_Block], Voice& voice, uint32_t& phase, float step) {
    const float width = voice.instrument->width;
    switch (voice.instrument->wave) {
    case Wave::Sine: return oscillateSine(block, voice, phase, step);
    case Wave::Triangle: return oscillate(block, phase, step, triangleAt);
    case Wave::Saw: return oscillate(block, phase, step, [=](float at) { return sawAt(at, step); });
    case Wave::Pulse:
        return oscillate(block, phase, step, [=](float at) { return pulseAt(at, step, width); });
    case Wave::Noise:
        for (float& sample : block)
            sample += takeChance(voice.chance);
    }
}

// Pitch, envelope and filter of a voice, once per block.

// The voice's random pitch, which jumps at the instrument's rate.
float holdAt(Voice& voice, float seconds) {
    const float step = Num_Floor(seconds * voice.instrument->holdRate) + 1;
    if (step != voice.lastHold)
        voice.held = voice.instrument->hold * takeChance(voice.chance);
    voice.lastHold = step;
    return voice.held;
}

float pitchAt(Voice& voice, float seconds) {
    const Instrument& instrument = *voice.instrument;
    const int turn = int(seconds * instrument.arpeggio) % voice.note->pitchCount;
    float pitch = float(voice.note->pitches[turn]);
    pitch += instrument.drop * fadeAt(seconds, instrument.dropTime);
    pitch += voice.glideFrom * Num_Clamp(1 - seconds / std::max(instrument.glide, 0.001f));
    if (instrument.vibrato > 0) // comes in slowly, as a singer's does
        pitch += instrument.vibrato * Num_Sin(seconds * instrument.vibratoRate) *
                 Num_Smooth(0.1f, 0.5f, seconds);
    if (instrument.hold > 0)
        pitch += holdAt(voice, seconds);
    return pitch;
}

float gainAt(const Voice& voice, float seconds) {
    const Instrument& instrument = *voice.instrument;
    const float held = float(voice.note->length) / float(Tune_Rate);
    const float swing = 0.5f - 0.5f * Num_Cos(seconds * instrument.tremoloRate);
    return instrument.level * voice.note->velocity * (1 - instrument.tremolo * swing) *
           Tune_EnvelopeAt(instrument, seconds, held);
}

// A state variable filter, which stays stable while its cutoff moves.
void filterBlock(float (&block)[Synth_Block], Voice& voice, float frequency, float seconds) {
    const Instrument& instrument = *voice.instrument;
    const float base = instrument.track > 0 ? instrument.track * frequency : instrument.cutoff;
    const float octaves = instrument.sweep * fadeAt(seconds, instrument.sweepTime) +
                          instrument.wobble * Num_Sin(seconds * instrument.wobbleRate);
    const float cutoff = Num_Clamp(base * std::exp2(octaves), 20.0f, 18000.0f);
    const float g = std::tan(0.5f * Num_Turn * cutoff / float(Tune_Rate));
    const float k = 2 - 1.9f * instrument.resonance;
    const float a1 = 1 / (1 + g * (g + k)), a2 = g * a1, a3 = g * a2;
    for (float& sample : block) {
        const float v3 = sample - voice.low;
        const float v1 = a1 * voice.band + a2 * v3;
        const float v2 = voice.low + a2 * voice.band + a3 * v3;
        voice.band = 2 * v1 - voice.band;
        voice.low = 2 * v2 - voice.low;
        sample = instrument.filter == Filter::LowPass    ? v2
                 : instrument.filter == Filter::BandPass ? k * v1
                                                         : sample - k * v1 - v2;
    }
}

void addToMix(Mix& mix, const float (&block)[Synth_Block], Voice& voice, float gain) {
    const Instrument& instrument = *voice.instrument;
    const float sides[] = {std::min(1 - instrument.pan, 1.0f), std::min(1 + instrument.pan, 1.0f)};
    const float slope = (gain - voice.gain) / Synth_Block;
    for (int i = 0; i < Synth_Block; ++i)
        for (int side = 0; side < 2; ++side) {
            const float sample = block[i] * (voice.gain + slope * float(i)) * sides[side];
            mix.dry[side][i] += sample;
            mix.delay[side][i] += sample * instrument.delaySend;
            mix.reverb[side][i] += sample * instrument.reverbSend;
        }
    voice.gain = gain;
}

void renderVoice(Mix& mix, Voice& voice) {
    const Instrument& instrument = *voice.instrument;
    const float seconds = float(voice.age) / float(Tune_Rate);
    const float pitch = pitchAt(voice, seconds);
    const float frequency = 440 * std::exp2((pitch - 69) / 12);
    const float step = std::min(frequency / float(Tune_Rate), 0.45f);
    float block[Synth_Block] = {};
    if (instrument.detune > 0) {
        const float apart = std::exp2(instrument.detune / 24);
        oscillateWave(block, voice, voice.phases[0], step * apart);
        oscillateWave(block, voice, voice.phases[1], step / apart);
    } else {
        oscillateWave(block, voice, voice.phases[0], step);
    }
    if (instrument.breath > 0)
        for (float& sample : block)
            sample += instrument.breath * takeChance(voice.chance);
    if (instrument.filter != Filter::None)
        filterBlock(block, voice, frequency, seconds);
    voice.age += Synth_Block;
    addToMix(mix, block, voice, gainAt(voice, seconds + blockSeconds));
    if (voice.age > voice.note->length && voice.gain < silence)
        voice.instrument = nullptr;
}

// Returns a free voice or, if there is none, the quietest.
Voice& findVoice(Synth& synth) {
    Voice* quietest = &synth.voices[0];
    for (Voice& voice : synth.voices) {
        if (!voice.instrument)
            return voice;
        quietest = voice.gain < quietest->gain ? &voice : quietest;
    }
    return *quietest;
}

void beginNote(Synth& synth, const Note& note) {
    Voice& voice = findVoice(synth);
    int& last = synth.lastPitch[note.instrument];
    voice = {};
    voice.instrument = &synth.tune->instruments[note.instrument];
    voice.note = &note;
    voice.chance = uint32_t(note.start) * 2654435761u + note.pitches[0] * 97u + 1u;
    voice.phases[1] = 0x60000000u; // two oscillators that begin together would flange
    voice.glideFrom =
        voice.instrument->glide > 0 && last > 0 ? float(last - note.pitches[0]) : 0.0f;
    last = note.pitches[0];
}

void beginNotes(Synth& synth) {
    const Tune& tune = *synth.tune;
    if (synth.position >= tune.length) {
        synth.position -= tune.length - tune.loopStart;
        synth.next = 0;
        while (synth.next < tune.noteCount && tune.notes[synth.next].start < tune.loopStart)
            ++synth.next;
    }
    while (synth.next < tune.noteCount && tune.notes[synth.next].start <= synth.position)
        beginNote(synth, tune.notes[synth.next++]);
}

// Effects.

// Echoes change sides; each is darker than the one before.
void addDelay(Synth& synth, Mix& mix) {
    const Tune& tune = *synth.tune;
    constexpr int mask = Synth_MaxDelay - 1;
    const int wanted = int(tune.delayBeats * 60 / tune.tempo * float(Tune_Rate));
    const int time = std::min(std::max(wanted, Synth_Block), mask);
    for (int i = 0; i < Synth_Block; ++i) {
        const uint32_t at = (synth.frame + uint32_t(i)) & mask, from = (at - uint32_t(time)) & mask;
        for (int side = 0; side < 2; ++side) {
            const float echo = synth.delay[side][from];
            synth.delayDamped[1 - side] += 0.5f * (echo - synth.delayDamped[1 - side]);
            mix.dry[side][i] += echo;
        }
        const float both = 0.5f * (mix.delay[0][i] + mix.delay[1][i]);
        synth.delay[0][at] = tune.feedback * synth.delayDamped[0] + both;
        synth.delay[1][at] = tune.feedback * synth.delayDamped[1];
    }
}

// Schroeder's reverberator. The two channels have lines of different lengths.
float reverberate(Reverb& reverb, float input, uint32_t frame, int side, float decay) {
    constexpr int combs[] = {1559, 1361, 1789, 1213}, allpasses[] = {557, 379};
    constexpr int mask = Synth_MaxReverb - 1;
    float sum = 0;
    for (int number = 0; number < 4; ++number) {
        const int length = combs[number] + 29 * side;
        const float late = reverb.combs[number][(frame - uint32_t(length)) & mask];
        reverb.damped[number] += 0.6f * (late - reverb.damped[number]);
        reverb.combs[number][frame & mask] = input + decay * reverb.damped[number];
        sum += 0.3f * late;
    }
    for (int number = 0; number < 2; ++number) {
        const float late =
            reverb.allpasses[number][(frame - uint32_t(allpasses[number] + 13 * side)) & mask];
        const float early = sum + 0.5f * late;
        reverb.allpasses[number][frame & mask] = early;
        sum = late - 0.5f * early;
    }
    return sum;
}

void addReverb(Synth& synth, Mix& mix) {
    const float decay = 0.7f + 0.28f * synth.tune->reverb;
    for (int side = 0; side < 2; ++side)
        for (int i = 0; i < Synth_Block; ++i)
            mix.dry[side][i] += reverberate(synth.reverbs[side], mix.reverb[side][i],
                                            synth.frame + uint32_t(i), side, decay);
}

// Bends loud samples so that they never reach full scale.
float limit(float value) { return value / std::sqrt(1 + value * value); }

// Takes away what is constant and writes 16 bits.
void writeBlock(Synth& synth, const Mix& mix, int16_t* samples) {
    for (int i = 0; i < Synth_Block; ++i)
        for (int side = 0; side < 2; ++side) {
            const float sample = synth.tune->volume * mix.dry[side][i];
            synth.steady[side] += 0.001f * (sample - synth.steady[side]);
            const float level = 32000.0f * limit(sample - synth.steady[side]);
            samples[2 * i + side] = int16_t(level + (level < 0 ? -0.5f : 0.5f));
        }
}
} // namespace

void Synth_Start(Synth& synth, const Tune& tune) { synth.tune = &tune; }

void Synth_Render(Synth& synth, int16_t* samples, int frames) {
    for (int done = 0; done < frames; done += Synth_Block) {
        Mix mix = {};
        beginNotes(synth);
        for (Voice& voice : synth.voices)
            if (voice.instrument)
                renderVoice(mix, voice);
        addDelay(synth, mix);
        addReverb(synth, mix);
        writeBlock(synth, mix, samples + 2 * done);
        synth.position += Synth_Block;
        synth.frame += Synth_Block;
    }
}
