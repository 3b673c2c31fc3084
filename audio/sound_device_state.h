// The state of sound_device.cpp, for that file and its tests only.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>
#include <windows.h>

#include <dsound.h>

struct SoundDevice {
    ObjectRegistry* soundRegistry; // stays empty: no sample sounds are made here
    HMODULE dsoundLibrary;
    IDirectSound* directSound; // never released
    HWND boundWindow;          // not read again
    int32_t volumeTable[101];  // percent to hundredths of a decibel; nothing sets a volume yet
};

inline SoundDevice Sound = {};
