// The monitor's vertical blank, which starts the next picture. Where the desktop is composed, its
// compositor says when; elsewhere a timer of the monitor's rate takes its place.
#pragma once

#include <windows.h>

struct VerticalBlank {
    LONGLONG frequency;                    // performance-counter ticks per second
    LONGLONG period;                       // ticks from blank to blank
    LONGLONG last;                         // a blank in the past
    HANDLE timer;                          // null until the first wait
    HMODULE library;                       // of the compositor; null without one
    HRESULT(WINAPI* waitForComposition)(); // null without a compositor
};

// Starts counting at `rate` pictures per second.
void VerticalBlank_Start(VerticalBlank* blank, DWORD rate);

// Frees what the waits needed. Does nothing if nothing was started.
void VerticalBlank_End(VerticalBlank* blank);

// Waits until the next vertical blank begins.
void VerticalBlank_Wait(VerticalBlank* blank);

// Returns the line that the monitor draws now, from the time since the last blank. The blank itself
// counts as lines from `height` on.
DWORD VerticalBlank_ScanLine(const VerticalBlank& blank, DWORD height);

// Returns a monitor's pictures per second, or 60 if the system does not know them.
DWORD VerticalBlank_RateOf(HMONITOR monitor);
