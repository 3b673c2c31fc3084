// The keyboard, polled: a snapshot of all keys is taken once a frame, and single keys are asked for
// by DirectInput scan code.
//
// A query reports the end of a press: a key counts once, when a query finds it up after an earlier
// query found it down. There is no repeat and no timer. A query is destructive, only queries keep
// a key's history, and each key has its own. Main thread only.
#pragma once

#include <cstdint>

// The scan codes that the launcher asks for.
constexpr int32_t Key_Escape = 0x01;
constexpr int32_t Key_Return = 0x1C;
constexpr int32_t Key_Up = 0xC8;
constexpr int32_t Key_Left = 0xCB;
constexpr int32_t Key_Right = 0xCD;
constexpr int32_t Key_Down = 0xD0;
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
