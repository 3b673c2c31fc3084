// The state of message_box.cpp, for that file and its tests only.
#pragma once

#include "runtime/heap.h"

#include <cstdint>
#include <windows.h>

// A window that a box disabled; a loose record on the list of all boxes of the process.
struct DisabledWindowRec {
    uint32_t threadId; // the thread that disabled it
    HWND window;
};

inline LooseBlock* disabledWindows = nullptr; // null while no box is open

// Returns the foreground window if it belongs to this process, otherwise null.
HWND Desk_ForegroundParent();

// Disables the calling thread's visible, enabled windows except the foreground one. The second
// operation enables exactly those again.
void Desk_DisableThreadWindows();
void Desk_EnableThreadWindows();
