// A modal message box for a program without a main window: it finds itself a parent, and it is
// modal for the calling thread's other windows because they are disabled while it stands.
#pragma once

#include <cstdint>

// Starts the desktop services. CoInitialize's result.
int32_t Desk_SubsystemInit();

// Shows the box and gives the button. `flags` are the type of MessageBoxA, which takes its text
// before its title.
int64_t Desk_MessageBox(const char* title, const char* message, int32_t flags);
