#include "compat/ddraw/pixels.h"

#include "compat/ddraw/memory.h"

#include <cstring>

namespace {

constexpr DWORD largestSide = 16384;

struct BitmapHeader {
    BITMAPINFOHEADER header;
    DWORD masks[3];
};

BitmapHeader headerOf(const Pixels& pixels) {
    BitmapHeader info{};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = static_cast<LONG>(pixels.width);
    info.header.biHeight = -static_cast<LONG>(pixels.height); // top row first
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(pixels.depth);
    info.header.biCompression = BI_RGB;
    if (pixels.depth == 16) { // without masks it would be 5-5-5
        info.header.biCompression = BI_BITFIELDS;
        info.masks[0] = 0xF800;
        info.masks[1] = 0x07E0;
        info.masks[2] = 0x001F;
    }
    return info;
}

bool makeBitmap(Pixels* pixels) {
    const BitmapHeader info = headerOf(*pixels);
    void* bits = nullptr;
    pixels->bitmap = CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info),
                                      DIB_RGB_COLORS, &bits, nullptr, 0);
    pixels->bits = static_cast<uint8_t*>(bits);
    return pixels->bitmap != nullptr;
}

bool makeContext(Pixels* pixels) {
    pixels->dc = CreateCompatibleDC(nullptr);
    if (pixels->dc)
        pixels->bitmapBefore = SelectObject(pixels->dc, pixels->bitmap);
    return pixels->bitmapBefore != nullptr;
}

} // namespace

Pixels* Pixels_Make(DWORD width, DWORD height, DWORD depth) {
    if (width > largestSide || height > largestSide)
        return nullptr;
    auto* pixels = Memory_New<Pixels>();
    if (!pixels)
        return nullptr;
    pixels->width = width;
    pixels->height = height;
    pixels->depth = depth;
    pixels->pitch = (width * depth + 31) / 32 * 4;
    if (makeBitmap(pixels) && makeContext(pixels))
        return pixels;
    Pixels_Free(pixels);
    return nullptr;
}

void Pixels_Free(Pixels* pixels) {
    if (!pixels)
        return;
    if (pixels->bitmapBefore)
        SelectObject(pixels->dc, pixels->bitmapBefore);
    if (pixels->dc)
        DeleteDC(pixels->dc);
    if (pixels->bitmap)
        DeleteObject(pixels->bitmap);
    Memory_Free(pixels);
}

void Pixels_Fill(const Pixels& pixels, const RECT& area, DWORD value) {
    const auto left = static_cast<DWORD>(area.left), top = static_cast<DWORD>(area.top);
    const auto width = static_cast<DWORD>(area.right) - left;
    const DWORD bytes = pixels.depth / 8;
    uint8_t* first = Pixels_At(pixels, left, top);
    for (DWORD x = 0; x < width; ++x)
        memcpy(first + x * bytes, &value, bytes);
    for (DWORD y = top + 1; y < static_cast<DWORD>(area.bottom); ++y)
        memcpy(Pixels_At(pixels, left, y), first, size_t{width} * bytes);
}
