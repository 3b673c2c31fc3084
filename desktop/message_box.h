// A modal message box for a program without a main window: it finds itself a parent, and it is
// modal for the calling thread's other windows because they are disabled while it stands.
#pragma once

#include "runtime/heap.h"

#include <cstdint>
#include <windows.h>

// A window that a box disabled; a loose record on the list of all boxes of the process.
struct DisabledWindowRec {
    uint32_t threadId; // the thread that disabled it
    HWND window;
};

extern LooseBlock* disabledWindows; // null when no box stands

// Starts the desktop services. CoInitialize's result.
HRESULT Desk_SubsystemInit();

// Shows the box and gives the button. `flags` are the type of MessageBoxA, which takes its text
// before its title.
int64_t Desk_MessageBox(const char* title, const char* message, int32_t flags);

// The foreground window if it belongs to this process, else null.
HWND Desk_ForegroundParent();

// Disables the calling thread's visible, enabled windows but for the foreground one, and gives back
// just those.
void Desk_DisableThreadWindows();
void Desk_EnableThreadWindows();
