// The sound device: plays a tune from a thread of its own, which renders ahead. Without a device
// the intro is silent and nothing fails.
#pragma once

#include "tune.h"

// `window` is a HWND. `tune` must stay.
void Sound_Start(void* window, const Tune& tune);

// Returns the time of the tune that is heard when the clock shows `clock` seconds since the start.
// It runs as evenly as the clock and never backwards. Returns `clock` without a device.
float Sound_TimeAt(float clock);

// Fades out within some hundredths of a second. Does not wait.
void Sound_FadeOut();

// Fades out, waits until that is heard, and releases the device.
void Sound_Stop();
