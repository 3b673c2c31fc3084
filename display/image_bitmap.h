// The bitmaps that images are made of, for image.cpp, image_decoder.cpp and their tests only.
#pragma once

#include <cstdint>
#include <windows.h>

// An uninitialised bitmap; null on failure. `bits` per pixel counts for a section only.
HBITMAP Image_MakeBitmap(int32_t width, int32_t height, int32_t flags, int32_t bits);

// The current decoder's picture as a bitmap that the caller owns; null on failure.
HBITMAP Image_DecodeToBitmap(int32_t format, int32_t flags);
