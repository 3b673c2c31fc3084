// The routines of the back buffer as a drawing target, for frame.cpp and its tests only.
#pragma once

#include <cstdint>
#include <windows.h>

// Gives the back buffer's context or lock back, if there is one. Also the target's release routine.
void Screen_ReleaseTargetDc();

// The target's resume routine: the context, taken anew after a lock. Null on failure.
HDC Screen_ReacquireDc();

// The target's lock routine: exchanges the context for the pixels' address. Null on failure.
void* Screen_LockPixels(int32_t* pitch);
