// Exclusive full-screen mode without a change of the display's mode: the caller's window covers the
// monitor that it is on, and the picture lies above it. The window is subclassed meanwhile. When
// the program loses the foreground, the window is minimized; when it comes back, it covers the
// monitor again. All calls are made by the thread that owns the window.
#pragma once

#include "compat/ddraw/picture.h"

struct FullScreen {
    HWND window;       // null outside of exclusive mode
    bool isForeground; // false from a loss of the foreground until it is regained
    bool isPlacing;    // true while the window is being moved by this module
    Picture picture;
    void (*onLost)(void* context); // called at each loss of the foreground, and if the window dies
    void* context;
};

// Covers the monitor with `window`. Returns false if it is no top-level window of this thread.
bool FullScreen_Enter(FullScreen* screen, HWND window);

// Leaves the window to its owner and the desktop as it was. Does nothing outside of exclusive mode.
void FullScreen_Leave(FullScreen* screen);
