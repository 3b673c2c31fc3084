// Scales a picture for the screen. Each pixel of a larger picture is the mean of what it covers of
// the source, so that edges stay as sharp and letters as even as the factor allows; a whole factor
// repeats pixels unchanged. Rows that are the same as the last time are not scaled again.
#pragma once

#include "compat/ddraw/pixels.h"

struct Scaler;

// Returns a scaler for sources of the given form and targets of the given size, or null if there is
// no memory.
Scaler* Scaler_Make(DWORD width, DWORD height, DWORD depth, DWORD targetWidth, DWORD targetHeight);

// Does nothing for null.
void Scaler_Free(Scaler* scaler);

// The rows of a target that changed: from `top` to `bottom`, which is one past the last. They are
// equal if nothing did.
struct ScaledRows {
    DWORD top;
    DWORD bottom;
};

// Scales into `target`, whose 32-bit pixels no one else may write to between two calls.
ScaledRows Scaler_Run(Scaler* scaler, const Pixels& source, const Pixels& target);

// Returns the largest size for a picture on a screen that keeps the picture's proportions: a whole
// multiple of the picture's own size if that is more than nine tenths of what fits.
SIZE Scaler_Fit(DWORD width, DWORD height, DWORD screenWidth, DWORD screenHeight);
