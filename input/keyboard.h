// The keyboard, polled: a snapshot of all keys is taken once a frame, and single keys are asked for
// by DirectInput scan code.
//
// A query reports the end of a press: a key counts once, when a query finds it up after an earlier
// query found it down. There is no repeat and no timer. A query is destructive, only queries keep
// a key's history, and each key has its own. Main thread only.
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

extern KeyboardDevice Keyboard;

constexpr int32_t Keyboard_AnyKey = -1;

// Not 0 on success. A repeated call leaves the device as it is, but counts a user of DirectInput.
int64_t Keyboard_SubsystemInit();
void Keyboard_SubsystemEnd();

// 1 if a snapshot was taken. 0, and the old snapshot stays, if not: then the next poll binds the
// device to the screen's window again. Set-up must have succeeded.
int64_t Keyboard_Poll();

// 1 if the key was let go since a query saw it down, else 0; always 0 after a failed poll. `code`
// is 0 to 255, or Keyboard_AnyKey, which consumes the releases of all keys but 255.
int64_t Keyboard_IsReleased(int32_t code);
