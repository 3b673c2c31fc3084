// The screen's life: set up once, opened and closed around every intro, ended with the program.
//
// An open screen holds the exclusive display mode, the primary surface with one back buffer, the
// shown window and a 1 ms timer period. A closed one keeps the window and the DirectDraw object.
// Nothing here shows a message.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

// Makes the window, starts the keyboard, gets DirectDraw. The surfaces' registry; null on failure.
ObjectRegistry* Screen_SubsystemInit();

// 1 on success, 0 on failure. An open screen is closed first. After a failed first open,
// Screen_Clear and Screen_Flip fault.
int64_t Screen_Open(int16_t width, int16_t height, int16_t depth, const char* title);

// Gives the desktop back. A closed screen stays closed.
void Screen_Close();

// Does nothing; Screen_SubsystemEnd2 does the work.
void Screen_SubsystemEnd();
void Screen_SubsystemEnd2();
