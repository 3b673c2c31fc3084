// Decoders extend the images past BMP and ICO. This program registers none: the list stays empty,
// and picking a decoder then finds nothing.
#pragma once

#include <cstdint>

// What a decoder's check found, and so how its rows are laid out: 32-bit rows, or 24-bit rows whose
// pitch is width & 3 bytes more than 3 bytes a pixel.
constexpr int32_t DecoderFormat_None = 0;
constexpr int32_t DecoderFormat_32Bit = 2; // any other code: 24-bit

// Empties the list.
void Image_DecoderInit();

// Makes the first decoder that knows the data the current one and gives its format code, or 0.
int32_t Image_PickDecoder(int64_t length, const void* data);
