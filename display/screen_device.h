// The one full-screen display of the process as data: who has to know the screen's window, size or
// state reads it here. The operations on it stand in direct_draw, window, screen, frame and
// surfaces. Main thread only.
#pragma once

#include "display/draw_target.h"
#include "runtime/object_registry.h"

#include <cstdint>
#include <windows.h>

#define DIRECTDRAW_VERSION 0x0700
#include <ddraw.h>

enum PixelFormatCode : int32_t {
    PixelFormat_Unknown = 0, // not detected yet
    PixelFormat_Palette = 1,
    PixelFormat_555 = 2,
    PixelFormat_565 = 3,
    PixelFormat_24RedLow = 4,
    PixelFormat_24RedHigh = 5,
    PixelFormat_32RedLow = 6,
    PixelFormat_32RedHigh = 7,
};

// Entry i * 256 + (j - 1) is about i * j / 255.
using Screen_BlendTable = int32_t[65536];

struct ScreenDevice {
    int32_t initDone;                // set-up got past window and keyboard
    HWND hiddenWindow;               // made once, never destroyed
    int32_t windowMade;              // 1 once hiddenWindow exists
    HWND window;                     // the window in use, from the first open on
    int32_t windowed;                // always 0: nothing turns it on
    IDirectDraw7* ddraw;             // outlives every close
    HMODULE ddrawLibrary;            // DDRAW.DLL
    int32_t ddrawUsers;              // kept by DirectDraw_Acquire and DirectDraw_Release
    IDirectDrawSurface7* primary;    // null while closed
    IDirectDrawSurface7* backBuffer; // null while closed
    IDirectDrawSurface7* target;     // what Screen_Clear fills; stale after a close
    int32_t targetWidth;             // pixels
    int32_t targetHeight;
    int32_t screenWidth; // of the mode; not 0: the screen is open
    int32_t screenHeight;
    int32_t depth;                  // bits per pixel, as asked for
    int32_t refreshRate;            // 0: the display's default; nothing changes it
    DWORD monitorFrequency;         // Hz, as found at open
    int32_t active;                 // 1 while the screen may present
    int32_t lostNotified;           // 1 once onFocusLost has run for the present loss
    void (*onFocusLost)();          // null until the first open
    void (*present)(int32_t flags); // null until the first successful open
    PixelFormatCode pixelFormat;
    DDSURFACEDESC2 primaryDesc; // from the last format detection
    DDBLTFX fillFx;             // for Screen_Clear
    int64_t targetDc;           // 0: none; -1: locked for pixel access; else the open context
    DrawTarget backBufferTarget;
    ObjectRegistry* surfaces; // numbered off-screen surfaces
    Screen_BlendTable blendTable;

    // The frame limiter. Nothing arms it here: the pace is the display's retrace.
    int32_t limiterRate;  // frames per second; 0: no limiter
    int32_t limiterTicks; // performance-counter ticks of one frame
    int32_t limiterStamp; // low 32 bits of the counter at the last frame's end
};

// Returns 1 while the screen may present.
int32_t Screen_IsActive();

constexpr int64_t TargetDc_None = 0;
constexpr int64_t TargetDc_Locked = -1;

inline ScreenDevice Screen;

// Work records for locking a surface: the back buffer's, and that of a numbered surface. Set-up
// fills in their sizes.
inline DDSURFACEDESC2 ScreenLockDesc;
inline DDSURFACEDESC2 ScreenCopyDesc;
