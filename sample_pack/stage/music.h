// The intro's own tune, as its picture asks for it. `time` is that of Intro_Draw: what is drawn for
// it is seen when the tune's same moment is heard.
#pragma once

#include "tune.h"

// What the intro brings; tune.h explains how a tune is written.
extern const char Intro_Tune[];

const Tune& Music_Tune();

// Beats since the beginning, with their fractions.
inline float Music_BeatAt(float time) { return time * Music_Tune().tempo / 60.0f; }

// Seconds since the tune began or was last repeated.
float Music_LoopTimeAt(float time);

// The latest note of an instrument.
inline NoteState Music_NoteAt(const char* instrument, float time) {
    return Tune_NoteAt(Music_Tune(), instrument, time);
}
