// The mouse, polled: read in buffered form, so that no button change between two polls is lost,
// with a position of its own that is kept inside the screen. The launcher starts and ends it and
// never polls: the device is then never acquired. Main thread only.
//
// Every poll asks whether the screen is active, and needs it open: a closed screen has no size.
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
    int32_t releasedByProgram; // 1 while the program has let go of the mouse
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

extern MouseDevice Mouse;

// 1 on success, 0 on failure. Makes the device and nothing more.
int64_t Mouse_SubsystemInit();
void Mouse_SubsystemEnd();

// 1 if events were read, else 0: then the position stays.
int64_t Mouse_Poll();

// Gives the device, and with a windowed screen the cursor, back. The result of Unacquire.
int64_t Mouse_Unhook();

// 1 lets go of the mouse and gives Mouse_Unhook's result, anything else takes it back and gives 1.
int64_t Mouse_SetReleased(int32_t released);

// For the window procedure, when its window goes inactive.
void Mouse_UnacquireIfMade();
