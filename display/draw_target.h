// What a drawing pass draws on.
#pragma once

#include <cstdint>
#include <windows.h>

// Where a target's device context comes from, and how Draw_End releases it. Any other kind is a
// context handed over to the pass, which deletes it.
constexpr int32_t DrawTarget_Window = 1;  // taken from the window and released to it
constexpr int32_t DrawTarget_Context = 2; // the target's own; released by its release routine
constexpr int32_t DrawTarget_Bits = 5;    // the same, taking images as device-independent bits only
constexpr int32_t DrawTarget_Surface = 7; // a DirectDraw surface's; the same

using TargetRelease = void (*)();
using TargetResume = HDC (*)();
using TargetLock = void* (*)(int32_t* pitch);

// Something drawable. The code that made it owns it.
struct DrawTarget {
    int32_t kind;
    HWND window; // DrawTarget_Window only
    HDC dc;      // all other kinds
    TargetRelease release;
    // From here on for DrawTarget_Surface only.
    void* buffer;       // not filled by the screen
    int32_t bufferInfo; // the same
    int32_t width;      // pixels
    int32_t height;
    int32_t depth;       // bits per pixel
    int32_t format;      // a PixelFormatCode
    TargetResume resume; // returns the context after pixel work
    TargetLock lock;     // releases the context for pixel work; null on failure
};
