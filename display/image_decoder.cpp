#include "display/image_decoder.h"

#include "display/image.h"
#include "display/image_bitmap.h"
#include "display/image_decoder_state.h"
#include "runtime/program.h"

namespace {

// How the current decoder's rows lie in memory.
struct RowLayout {
    BITMAPINFO info;
    int32_t width;
    int32_t height;
    int32_t pitch;
};

RowLayout layOut(const ImageDecoder& decoder, int32_t format) {
    RowLayout rows{};
    const bool wide = format == DecoderFormat_32Bit;
    rows.width = decoder.width();
    rows.height = decoder.height();
    rows.pitch = wide ? rows.width * 4 : (rows.width & 3) + rows.width * 3;
    rows.info.bmiHeader.biSize = sizeof rows.info.bmiHeader;
    rows.info.bmiHeader.biWidth = rows.width;
    rows.info.bmiHeader.biHeight = -rows.height; // from the top down
    rows.info.bmiHeader.biPlanes = 1;
    rows.info.bmiHeader.biBitCount = wide ? 32 : 24;
    rows.info.bmiHeader.biCompression = BI_RGB;
    return rows;
}

HBITMAP decodeToSection(const ImageDecoder& decoder, const RowLayout& rows) {
    HDC display = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    if (!display)
        return nullptr;
    void* pixels = nullptr;
    HBITMAP bitmap = CreateDIBSection(display, &rows.info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    DeleteDC(display);
    if (bitmap)
        decoder.decode(pixels, rows.pitch, 0);
    return bitmap;
}

void setPixels(HBITMAP bitmap, const RowLayout& rows, const void* pixels) {
    HDC dc = CreateCompatibleDC(nullptr);
    if (!dc)
        return;
    SetDIBits(dc, bitmap, 0, static_cast<UINT>(rows.height), pixels, &rows.info, DIB_RGB_COLORS);
    DeleteDC(dc);
}

HBITMAP decodeToDisplayForm(const ImageDecoder& decoder, const RowLayout& rows) {
    const auto size = static_cast<SIZE_T>((rows.height + 1) * rows.pitch);
    void* pixels = HeapAlloc(GeneralHeap, 0, size);
    if (!pixels)
        return nullptr;
    decoder.decode(pixels, rows.pitch, 0);
    HBITMAP bitmap = Image_MakeBitmap(rows.width, rows.height, ImageFlag_DisplayForm, 0);
    if (bitmap)
        setPixels(bitmap, rows, pixels);
    HeapFree(GeneralHeap, 0, pixels);
    return bitmap;
}

} // namespace

void Image_DecoderInit() { ImageDecoders = {}; }

int32_t Image_PickDecoder(int64_t length, const void* data) {
    for (int32_t index = 0; index < ImageDecoders.count; ++index) {
        const ImageDecoder& decoder = ImageDecoders.decoders[index];
        if (const int32_t format = decoder.check(nullptr, data, length)) {
            ImageDecoders.current = &decoder;
            return format;
        }
    }
    return DecoderFormat_None;
}

HBITMAP Image_DecodeToBitmap(int32_t format, int32_t flags) {
    const ImageDecoder& decoder = *ImageDecoders.current;
    const RowLayout rows = layOut(decoder, format);
    return flags & ImageFlag_DisplayForm ? decodeToDisplayForm(decoder, rows)
                                         : decodeToSection(decoder, rows);
}
