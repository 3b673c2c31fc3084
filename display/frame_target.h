// The routines of the back buffer as a drawing target, for frame.cpp and its tests only.
#pragma once

#include <cstdint>
#include <windows.h>

// Releases the back buffer's context or lock, if there is one. Also the target's release routine.
void Screen_ReleaseTargetDc();

// Takes the context again after a lock: the target's resume routine. Returns null on failure.
HDC Screen_ReacquireDc();

// Exchanges the context for the pixels' address: the target's lock routine. Returns null on
// failure.
void* Screen_LockPixels(int32_t* pitch);
