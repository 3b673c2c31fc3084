// The state of image_decoder.cpp, for that file and its tests only.
#pragma once

#include <cstdint>

struct ImageDecoder {
    int32_t (*check)(void* stream, const void* data, int64_t length); // returns a format code
    void (*decode)(void* pixels, int32_t pitch, int32_t reserved);    // rows from the top down
    int32_t (*width)();
    int32_t (*height)();
};

struct ImageDecoderList {
    int32_t count;
    ImageDecoder decoders[8];
    const ImageDecoder* current; // the one that Image_PickDecoder chose
};

inline ImageDecoderList ImageDecoders = {};
