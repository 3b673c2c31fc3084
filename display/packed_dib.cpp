#include "display/packed_dib.h"

#include <cstdint>

namespace {

constexpr int32_t bitsPerPixel = 24;

SIZE_T blockSize(const BITMAP& bitmap) {
    const int32_t rowBytes = (bitmap.bmWidth * bitsPerPixel + 31) / 32 * 4;
    return sizeof(BITMAPINFOHEADER) + static_cast<SIZE_T>(rowBytes * bitmap.bmHeight);
}

void fillHeader(BITMAPINFOHEADER* header, const BITMAP& bitmap) {
    header->biSize = sizeof *header;
    header->biWidth = bitmap.bmWidth;
    header->biHeight = bitmap.bmHeight;
    header->biPlanes = 1;
    header->biBitCount = bitsPerPixel;
    header->biCompression = BI_RGB;
}

HPALETTE exchangePalette(HDC dc, HPALETTE palette) {
    HPALETTE old = SelectPalette(dc, palette, TRUE);
    RealizePalette(dc);
    return old;
}

int readRows(HBITMAP image, HPALETTE palette, void* block, int32_t height) {
    HDC dc = GetDC(nullptr);
    HPALETTE old = palette ? exchangePalette(dc, palette) : nullptr;
    void* rows = static_cast<char*>(block) + sizeof(BITMAPINFOHEADER);
    const int count = GetDIBits(dc, image, 0, static_cast<UINT>(height), rows,
                                static_cast<BITMAPINFO*>(block), DIB_RGB_COLORS);
    if (palette)
        exchangePalette(dc, old);
    ReleaseDC(nullptr, dc);
    return count;
}

} // namespace

HGLOBAL Bitmap_ToPackedDib(HBITMAP image, HPALETTE palette) {
    BITMAP bitmap;
    if (GetObjectA(image, sizeof bitmap, &bitmap) != sizeof bitmap)
        return nullptr;
    HGLOBAL block = GlobalAlloc(GPTR, blockSize(bitmap));
    if (!block)
        return nullptr;
    fillHeader(static_cast<BITMAPINFOHEADER*>(block), bitmap);
    if (readRows(image, palette, block, bitmap.bmHeight) != 0)
        return block;
    GlobalFree(block);
    return nullptr;
}
