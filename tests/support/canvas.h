// Pictures in memory for tests of drawing: made of plain pixels, and read back pixel by pixel.
// Colours are GDI colour values, red in the low byte.
#pragma once

#include "tests/support/call_recorder.h"

#include <cstdint>
#include <vector>
#include <windows.h>

inline HBITMAP makeSection(int width, int height) {
    const QuietScope quiet;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
}

// A device context of its own with a 32-bit picture selected into it.
class Canvas {
public:
    explicit Canvas(int width, int height, COLORREF background = 0)
        : Canvas(makeSection(width, height)) {
        ownsBitmap = true;
        fill(0, 0, width, height, background);
    }

    // Looks at somebody else's bitmap.
    explicit Canvas(HBITMAP shown) : bitmap(shown) {
        const QuietScope quiet;
        context = CreateCompatibleDC(nullptr);
        before = SelectObject(context, bitmap);
    }

    ~Canvas() {
        const QuietScope quiet;
        SelectObject(context, before);
        DeleteDC(context);
        if (ownsBitmap)
            DeleteObject(bitmap);
    }

    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC dc() const { return context; }

    COLORREF at(int x, int y) const { return GetPixel(context, x, y); }
    void set(int x, int y, COLORREF colour) { SetPixel(context, x, y, colour); }

    void fill(int left, int top, int right, int bottom, COLORREF colour) {
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                set(x, y, colour);
    }

    int count(COLORREF colour, int left, int top, int right, int bottom) const {
        int found = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                found += at(x, y) == colour ? 1 : 0;
        return found;
    }

private:
    HBITMAP bitmap;
    HDC context = nullptr;
    HGDIOBJ before = nullptr;
    bool ownsBitmap = false;
};

// A bitmap of the given pixels, row by row from the top. The caller owns it.
inline HBITMAP makePicture(int width, const std::vector<COLORREF>& pixels) {
    const int height = static_cast<int>(pixels.size()) / width;
    HBITMAP bitmap = makeSection(width, height);
    Canvas canvas(bitmap);
    for (int at = 0; at < width * height; ++at)
        canvas.set(at % width, at / width, pixels[static_cast<size_t>(at)]);
    return bitmap;
}
