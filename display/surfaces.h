// What keeps numbered off-screen surfaces alive over a loss of focus: their pixels are copied to
// memory when the focus goes and written back after the surfaces were restored. The launcher makes
// no such surface, so its walks find nothing to do. Main thread only.
#pragma once

#include "display/screen_device.h"

#include <cstdint>

constexpr int16_t SurfaceKind_Memory = -2; // a plain memory block, which focus loss cannot touch

struct ScreenSurface {
    void* surface; // an IDirectDrawSurface7, or a block of the GeneralHeap
    int16_t kind;
    void* saved;   // 32-bit pitch and pixel rows, on the GeneralHeap, or null
    int16_t width; // pixels
    int16_t height;
};
static_assert(sizeof(ScreenSurface) == 32);

// Copies every surface that has no copy yet. What cannot be copied comes back with undefined
// pixels.
void Screen_SaveSurfaces();

// Restores every lost surface and writes the copies back.
void Screen_RestoreSurfaces();

void Screen_FreeSurface(ObjectId id);
