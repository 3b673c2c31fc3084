// Images that are set up, two small files to load them from, and a decoder that only watches.
#pragma once

#include "display/image.h"
#include "display/image_decoder.h"
#include "display/image_decoder_state.h"
#include "tests/support/canvas.h"
#include "tests/support/image_files.h"
#include "tests/support/runtime_fixture.h"

class ImageTest : public RuntimeTest {
protected:
    ImageTest() {
        checks = 0;
        Image_DecoderInit();
        Image_SubsystemInit();
    }
    ~ImageTest() override { Image_SubsystemEnd(); }

    // 3 by 2: red, green, blue above white, black, red.
    static std::vector<uint8_t> smallBmp() {
        return BmpFile{.width = 3, .height = 2, .rows = {255, 255, 255, 0, 0, 0, 0,   0,
                                                         255, 0,   0,   0, 0, 0, 255, 0,
                                                         255, 0,   255, 0, 0, 0, 0,   0}}
            .build();
    }

    static std::vector<uint8_t> smallIcon() {
        return iconFile({{.width = 20, .height = 24, .colour = 0x00FF00}});
    }

    static HBITMAP bitmapOf(int64_t handle) { return reinterpret_cast<HBITMAP>(handle); }

    // A decoder that knows nothing, but tells that it was asked.
    static int32_t countCheck(void* stream, const void* data, int64_t length) {
        ++checks;
        askedStream = stream;
        askedData = data;
        askedLength = length;
        return 0;
    }
    static void watchDecoders() {
        ImageDecoders.decoders[0].check = countCheck;
        ImageDecoders.count = 1;
    }

    static inline int checks = 0;
    static inline const void* askedStream = nullptr;
    static inline const void* askedData = nullptr;
    static inline int64_t askedLength = 0;
};
