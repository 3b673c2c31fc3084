// The memory of a surface: a device-independent bitmap, top row first, and a memory context that
// draws into it. 16 bits are 5-6-5; 32 bits have blue in the low byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <windows.h>

struct Pixels {
    HDC dc;
    HBITMAP bitmap;
    HGDIOBJ bitmapBefore; // what the context held when it was made
    uint8_t* bits;
    DWORD width; // pixels
    DWORD height;
    DWORD depth; // bits per pixel
    DWORD pitch; // bytes from row to row
};

// Returns black pixels, or null if there is no memory or no context for them.
Pixels* Pixels_Make(DWORD width, DWORD height, DWORD depth);

// Does nothing for null.
void Pixels_Free(Pixels* pixels);

// Returns where a pixel lies in memory.
inline uint8_t* Pixels_At(const Pixels& pixels, DWORD x, DWORD y) {
    return pixels.bits + size_t{y} * pixels.pitch + size_t{x} * (pixels.depth / 8);
}

// Fills an area, which must lie inside, with a pixel value.
void Pixels_Fill(const Pixels& pixels, const RECT& area, DWORD value);
