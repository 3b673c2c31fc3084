// Decoders extend the images past BMP and ICO. This program registers none: the list stays empty,
// and picking a decoder then finds nothing.
#pragma once

#include <cstdint>
#include <windows.h>

// What a decoder's check found, and so how its rows are laid out: 32-bit rows, or 24-bit rows whose
// pitch is width & 3 bytes more than 3 bytes a pixel.
constexpr int32_t DecoderFormat_None = 0;
constexpr int32_t DecoderFormat_32Bit = 2; // any other code: 24-bit

struct ImageDecoder {
    int32_t (*check)(void* stream, const void* data, int64_t length); // gives a format code
    void (*decode)(void* pixels, int32_t pitch, int32_t reserved);    // rows from the top down
    int32_t (*width)();
    int32_t (*height)();
};

struct ImageDecoderList {
    int32_t count;
    ImageDecoder decoders[8];
    const ImageDecoder* current; // the one that Image_PickDecoder chose
};

extern ImageDecoderList ImageDecoders;

// Empties the list.
void Image_DecoderInit();

// Makes the first decoder that knows the data the current one and gives its format code, or 0.
int32_t Image_PickDecoder(int64_t length, const void* data);

// The current decoder's picture as a bitmap that the caller owns; null on failure.
HBITMAP Image_DecodeToBitmap(int32_t format, int32_t flags);
