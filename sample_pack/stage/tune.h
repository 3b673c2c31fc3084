// A tune is text that a musician can read. It is parsed once, into a list of notes in the order of
// their beginnings; the synthesizer plays that list, and the picture can ask it by time.
//
// A line that begins with a space continues the line above. What follows // is a comment. Times are
// in milliseconds, levels in percent.
//
//   tempo 120            beats per minute; a beat is a quarter note
//   meter 3/4            4/4 without this line
//   swing 62             where the second eighth of each beat begins, in percent
//   delay 3/16 40        time as a fraction of a whole note, and feedback
//   reverb 70            how slowly the reverberation dies away
//   volume 80            of the whole mix
//   lead = saw adsr 5 200 60 150 lowpass 2400 30 level 50
//                        an instrument: a wave or an earlier instrument, then options (tune.cpp)
//   A lead  o5 l8 c d e4 | f4. g8
//                        what the lead plays in section A; shorter voices repeat until its end
//   play I |: A A B A+2  the order of the sections; the tune repeats from |: on, A+2 is two
//                        semitones higher
//
// The notes are music macro language: c d e f g a b with + or - for sharp and flat, then a length
// (4 is a quarter, 4. a dotted one). r is a rest, x a note at the instrument's own key, (c e g) a
// chord, ^8 lengthens by an eighth. o4 sets the octave, > and < change it, l8 sets the length of
// notes without one, v80 the velocity. [c d]3 plays three times. | must be at the end of a bar.
#pragma once

#include <cstdint>

constexpr int Tune_Rate = 44100; // frames per second
constexpr int Tune_MaxInstruments = 20, Tune_MaxNotes = 6000, Tune_MaxChord = 4;

enum class Wave : uint8_t { Sine, Triangle, Saw, Pulse, Noise };
enum class Filter : uint8_t { None, LowPass, BandPass, HighPass };

// Times are in seconds, rates in Hz, levels and shares from 0 to 1.
struct Instrument {
    char name[12];
    Wave wave;
    Filter filter;
    float width;                           // of a pulse: the part of a period that is high
    float attack, decay, sustain, release; // ADSR; decay and release come within 1 %
    float level, pan;                      // pan is -1 for left and 1 for right
    float delaySend, reverbSend;
    float cutoff, resonance;    // cutoff in Hz
    float track;                // if not 0, the cutoff is this multiple of the note's frequency
    float sweep, sweepTime;     // octaves above the cutoff at first, and how soon they are gone
    float wobbleRate, wobble;   // the cutoff swings by so many octaves
    float drop, dropTime;       // semitones above the pitch at first, and how soon they are gone
    float vibratoRate, vibrato; // semitones
    float tremoloRate, tremolo; // how much of the level is taken away
    float holdRate, hold;       // sample and hold: random jumps of up to so many semitones
    float detune;               // semitones between two oscillators; 0 for a single one
    float ratio, index, fade;   // frequency modulation: ratio, index, and how soon it is gone
    float breath;               // noise mixed in
    float glide;                // seconds from the previous note's pitch
    float arpeggio;             // if not 0, chords are played note by note, so many a second
    int key;                    // the pitch of x
};

// Pitches are MIDI numbers: 60 is c4, 69 is a4 at 440 Hz.
struct Note {
    int start, length; // frames; `start` counts from the beginning of the tune
    float velocity;
    int8_t instrument;
    int8_t pitchCount; // 1 if not an arpeggio
    uint8_t pitches[Tune_MaxChord];
};

struct Tune {
    Instrument instruments[Tune_MaxInstruments];
    Note notes[Tune_MaxNotes];
    int instrumentCount, noteCount;
    int loopStart, length; // frames; at `length` the tune continues at `loopStart`
    float tempo, swing, volume, reverb;
    float delayBeats, feedback;
    int barTicks;
    int faults;        // what could not be understood, or does not fit its bar or section
    const char* fault; // the first such place in the text, or null
};

// Fills `tune`, which must be all zero. `text` must stay: `fault` points into it.
void Tune_Parse(Tune& tune, const char* text);

float Tune_LoopSeconds(const Tune& tune);

// Returns the level of a note from 0 to 1 at `age` seconds; its key is held for `held` seconds.
float Tune_EnvelopeAt(const Instrument& instrument, float age, float held);

// The latest note of an instrument at a time.
struct NoteState {
    int number;  // counted from 1 across repetitions; 0 before the first note
    int pitch;   // MIDI number
    float age;   // seconds since it began
    float level; // velocity and envelope
};

// `time` is in seconds since the beginning, repetitions included. An instrument that does not exist
// has no notes.
NoteState Tune_NoteAt(const Tune& tune, const char* instrument, float time);
