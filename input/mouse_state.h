// The state of mouse.cpp, for that file and its tests only.
#pragma once

#include "input/direct_input.h"

#include <cstdint>

enum MouseAcquireState : int32_t {
    MouseState_Made = 1, // still needs its cooperative level
    MouseState_Acquired = 2,
};

constexpr DWORD MouseEventLimit = 24;

struct MouseDevice {
    int32_t started; // set-up ran, whether or not it succeeded
    IDirectInputDevice7A* device;
    int32_t releasedByProgram; // 1 while the program has released the mouse
    int32_t cursorShown;       // 1 while the system cursor is visible, as far as is known here
    MouseAcquireState acquireState;
    int32_t mouseX; // screen pixels
    int32_t mouseY;
    int32_t deltaX; // motion of the last poll
    int32_t deltaY;
    int32_t deltaWheel;
    int32_t buttons[3]; // 1 while down
    int32_t wheelStep;  // the wheel's granularity
    HRESULT lastResult; // of the last read of events
    DIDEVICEOBJECTDATA eventBuffer[MouseEventLimit];
};
static_assert(sizeof(DIDEVICEOBJECTDATA) == 16, "the older, short form of an event");

inline MouseDevice Mouse = {};
