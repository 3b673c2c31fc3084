// The stage of every intro: a black window over the whole desktop and, in its middle and as large
// as it fits, the canvas. An intro is a title, a tune and a function that draws the picture of a
// moment; Escape or Alt+F4 ends it.
#pragma once

#include "letters.h"
#include "music.h"
#include "pixel_font.h"

// What the intro brings.
extern const char Intro_Title[]; // also the window's title

// `time` is the seconds since the start, and the moment of the tune that is heard. The canvas still
// holds the picture before.
void Intro_Draw(Canvas& canvas, float time);

// For pictures that grow out of the one before: how many steps are due by now, at so many a second.
// After a long pause fewer are given, so that the intro does not race to catch up.
inline int Stage_TakeSteps(float time, float stepsPerSecond) {
    static int taken = 0;
    const int due = int(time * stepsPerSecond) - taken;
    taken += due;
    return std::min(due, 1 + int(stepsPerSecond / 15.0f));
}
