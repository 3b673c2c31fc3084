// Icons out of a whole ICO file image in memory. Of the entries that have the first entry's size,
// the one with the most bits per pixel is taken; on a tie the earlier one.
#pragma once

#include <cstdint>
#include <windows.h>

// The working record of the chosen entry. It and its data are GlobalAlloc blocks of their own, gone
// when the icon is made.
struct IconImage {
    int32_t width;
    int32_t height; // of the picture: the entry's header counts colour and mask together
    int32_t colors; // bits per pixel
    BYTE* bits;     // a copy of the entry's data
    uint32_t size;  // bytes in `bits`
    const BITMAPINFOHEADER* header;
    BYTE* xorBits; // the colour rows
    BYTE* andBits; // the mask rows
};

// The caller owns the icon. Null if the data is no icon file or no icon came of it.
HICON Icon_FromMemory(const void* data);

// Null if the data is no icon file. The caller frees `bits`, then the record.
IconImage* Icon_ReadDirectory(const void* data);
