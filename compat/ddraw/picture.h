// The picture on the monitor: a window of this library in the caller's window, which lets the mouse
// through. It shows a surface as large as it fits, in its own proportions, with black around it. If
// the system stretches the caller's windows, because the process is not aware of the monitor's
// scale, it lies above the caller's window instead and deals in the monitor's own pixels.
#pragma once

#include "compat/ddraw/pixels.h"
#include "compat/ddraw/scaler.h"

struct Picture {
    HWND window;    // null while there is none
    bool isChild;   // of the caller's window
    Scaler* scaler; // null until something is shown
    Pixels* scaled; // the picture in the monitor's pixels
    RECT place;     // of the scaled picture in the window
    SIZE source;    // of the surface that the scaler is made for
    DWORD depth;
};

// Shows the window over the whole monitor, above `owner`. Returns false if it cannot be made.
bool Picture_Cover(Picture* picture, HWND owner);

void Picture_Hide(Picture* picture);

// Removes the window and frees what belongs to it. Does nothing if there is none.
void Picture_Close(Picture* picture);

// Shows what a surface holds.
void Picture_Show(Picture* picture, const Pixels& pixels);
