// DirectInput 7, loaded at run time and counted by its users, the keyboard and the mouse.
#pragma once

#include <windows.h>

#define DIRECTINPUT_VERSION 0x0700
#include <dinput.h>

// The DirectInput object, or null if it cannot be had. Counts a user either way.
IDirectInput7A* DirectInput_Acquire();

// The last user's release gives the object and the library back.
void DirectInput_Release();

// A device of the acquired object, or null.
IDirectInputDevice7A* DirectInput_CreateDevice(IDirectInput7A* directInput, const GUID& which);
