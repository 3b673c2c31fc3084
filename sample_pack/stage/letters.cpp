#include "letters.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace {
constexpr const char* faceNames[] = {"Arial", "Times New Roman"};
constexpr int softness = 12; // of what is around a title, in pixels
constexpr DWORD families[] = {FF_SWISS, FF_ROMAN};

HFONT makeFont(Face face, int height, Slant slant) {
    return CreateFontA(height, 0, 0, 0, face == Face::Sans ? FW_BLACK : FW_BOLD,
                       slant == Slant::Italic, FALSE, FALSE, ANSI_CHARSET, OUT_TT_PRECIS,
                       CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, families[int(face)],
                       faceNames[int(face)]);
}

// A bitmap whose pixels the program reads; rows run downwards.
HBITMAP makeBitmap(HDC device, SIZE size, uint32_t** pixels) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = -size.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(device, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    *pixels = static_cast<uint32_t*>(bits);
    return bitmap;
}

Lettering makeEmpty(int width, int height) {
    const size_t size = size_t(width) * size_t(height);
    return {width, height, static_cast<uint8_t*>(std::calloc(size, 1))};
}

// One pass of a running mean along a line of `count` bytes that lie `step` apart.
void smoothLine(uint8_t* line, int count, int step, int radius) {
    uint8_t former[4096];
    for (int place = 0; place < count; ++place)
        former[place] = line[place * step];
    int sum = 0;
    for (int place = -radius; place < count; ++place) {
        sum += place + radius < count ? former[place + radius] : 0;
        sum -= place - radius - 1 >= 0 ? former[place - radius - 1] : 0;
        if (place >= 0)
            line[place * step] = uint8_t(sum / (2 * radius + 1));
    }
}
} // namespace

Lettering Letters_Make(const char* words, Face face, int height, Slant slant) {
    HDC device = CreateCompatibleDC(nullptr);
    HFONT font = makeFont(face, height, slant);
    SelectObject(device, font);
    SIZE size;
    const int length = int(std::strlen(words));
    GetTextExtentPoint32A(device, words, length, &size);
    size.cx += slant == Slant::Italic ? height / 4 : 0; // the last letter leans out
    uint32_t* pixels;
    HBITMAP bitmap = makeBitmap(device, size, &pixels);
    SelectObject(device, bitmap);
    SetBkColor(device, RGB(0, 0, 0));
    SetTextColor(device, RGB(255, 255, 255));
    TextOutA(device, 0, 0, words, length);
    GdiFlush();
    const Lettering lettering = makeEmpty(int(size.cx), int(size.cy));
    for (int place = 0; place < lettering.width * lettering.height; ++place)
        lettering.cover[place] = uint8_t(pixels[place] >> 8);
    DeleteDC(device);
    DeleteObject(bitmap);
    DeleteObject(font);
    return lettering;
}

Lettering Letters_Soften(const Lettering& source, int radius) {
    const Lettering soft = makeEmpty(source.width + 2 * radius, source.height + 2 * radius);
    for (int y = 0; y < source.height; ++y)
        std::memcpy(soft.cover + (y + radius) * soft.width + radius,
                    source.cover + y * source.width, size_t(source.width));
    for (int pass = 0; pass < 2; ++pass) {
        for (int y = 0; y < soft.height; ++y)
            smoothLine(soft.cover + y * soft.width, soft.width, 1, radius / 2);
        for (int x = 0; x < soft.width; ++x)
            smoothLine(soft.cover + x, soft.height, soft.width, radius / 2);
    }
    return soft;
}

void Letters_Colour(Canvas& canvas, const Lettering& lettering, int left, int top, Colour colour) {
    Letters_Paint(canvas, lettering, left, top, [=](float, float) { return colour; });
}

Title Letters_MakeTitle(const char* words, Face face, int height, Slant slant) {
    const Lettering lettering = Letters_Make(words, face, height, slant);
    return {lettering, Letters_Soften(lettering, softness)};
}

void Letters_Surround(Canvas& canvas, const Title& title, int top, Colour colour) {
    const int left = Letters_Centred(title.around);
    for (int twice = 0; twice < 2; ++twice) // once is hardly seen at thin strokes
        Letters_Colour(canvas, title.around, left, top - softness, colour);
}
