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

inline LooseBlock* disabledWindows = nullptr; // null when no box stands

// The foreground window if it belongs to this process, else null.
HWND Desk_ForegroundParent();

// Disables the calling thread's visible, enabled windows but for the foreground one, and gives back
// just those.
void Desk_DisableThreadWindows();
void Desk_EnableThreadWindows();
