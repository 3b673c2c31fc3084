// A bitmap as a device-independent block of pixels.
#pragma once

#include <windows.h>

// A GlobalAlloc block with the bitmap as a BITMAPINFOHEADER and 24-bit rows, or null. The caller
// frees it. `palette` may be null.
HGLOBAL Bitmap_ToPackedDib(HBITMAP image, HPALETTE palette);
