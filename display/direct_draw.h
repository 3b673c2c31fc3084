// DirectDraw, loaded at run time and counted by its users.
#pragma once

#include "display/screen_device.h"

// The DirectDraw object, or null if it cannot be had. Counts a user either way.
IDirectDraw7* DirectDraw_Acquire();

// The last user's release gives the object and the library back.
void DirectDraw_Release();
