// The state of keyboard.cpp, for that file and its tests only.
#pragma once

#include "input/direct_input.h"

#include <cstdint>

enum KeyboardState : int32_t {
    KeyboardState_None = 0, // no device
    KeyboardState_Made = 1, // the device has to be given its window and acquired
    KeyboardState_Acquired = 2,
};

struct KeyboardDevice {
    int32_t started; // set-up ran, whether or not it succeeded
    KeyboardState state;
    IDirectInputDevice7A* device;
    uint8_t keyState[256]; // the latest snapshot; top bit set: down
    uint8_t wasDown[256];  // 1: seen down, its release not reported yet; never cleared in bulk
    int32_t useKeyMap;     // nothing sets it: codes are scan codes
    uint8_t keyMap[256];
    DIOBJECTDATAFORMAT* formatTable; // 256 descriptions on the GeneralHeap, never freed
};

inline KeyboardDevice Keyboard = {};
