// The synthesizer: plays a tune from its beginning and without end, always the same way. Rendering
// allocates nothing and takes no locks.
#pragma once

#include "tune.h"

constexpr int Synth_Block = 32; // frames; envelopes, pitches and filters change once per block
constexpr int Synth_Voices = 40;
constexpr int Synth_MaxDelay = 65536; // frames per channel
constexpr int Synth_MaxReverb = 2048; // frames per comb

// A note that is heard.
struct Voice {
    const Instrument* instrument; // null if the voice is free
    const Note* note;
    int age;            // frames
    uint32_t phases[2]; // of two oscillators; 2^32 is one period
    uint32_t modulator; // phase
    uint32_t chance;    // state of the random numbers
    float held;         // the current random pitch, in semitones
    float lastHold;     // the number of the current sample and hold step
    float glideFrom;    // semitones away from the note's pitch at the start
    float gain;         // at the end of the last block
    float low, band;    // state of the filter
};

// One channel of the reverberation: parallel combs, then allpasses in series.
struct Reverb {
    float combs[4][Synth_MaxReverb], damped[4];
    float allpasses[2][Synth_MaxReverb];
};

struct Synth {
    const Tune* tune;
    int position; // frame of the tune
    int next;     // the next note to begin
    int lastPitch[Tune_MaxInstruments];
    Voice voices[Synth_Voices];
    float delay[2][Synth_MaxDelay], delayDamped[2];
    Reverb reverbs[2];
    uint32_t frame;  // counts on across repetitions; all delay lines are indexed by it
    float steady[2]; // the slow part of each channel, which is taken away
};

// `synth` must be all zero. `tune` must stay and have notes.
void Synth_Start(Synth& synth, const Tune& tune);

// Renders frames of left and right. `frames` is a multiple of Synth_Block.
void Synth_Render(Synth& synth, int16_t* samples, int frames);
