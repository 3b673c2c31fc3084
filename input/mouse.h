// The mouse, polled: read in buffered form, so that no button change between two polls is lost,
// with a position of its own that is kept inside the screen. The launcher starts and ends it and
// never polls: the device is then never acquired. Main thread only.
//
// Every poll asks whether the screen is active, and needs it open: a closed screen has no size.
#pragma once

#include <cstdint>

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
