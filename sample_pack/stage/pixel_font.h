// The pixel font: capitals, figures and signs of 7 by 7 pixels in cells of 8 by 8, as home
// computers had them.
#pragma once

#include "canvas.h"

constexpr int PixelFont_Cell = 8;

// Whether the pixel (x, y) of a sign's cell is set. Small letters are read as capitals; an unknown
// sign is blank.
bool PixelFont_IsSet(char sign, int x, int y);

// How many cells wide the words are.
int PixelFont_Length(const char* words);

// Writes with pixels of `size` by `size`.
void PixelFont_Write(Canvas& canvas, const char* words, int left, int top, int size, Colour colour);
void PixelFont_WriteCentred(Canvas& canvas, const char* words, int top, int size, Colour colour);

// Words that run to the left without end: `gone` pixels of them have passed. Calls paint(x, y) for
// the pixels that are set; x from 0 to the canvas's width, y from 0 at the upper edge of the signs.
template <class Paint>
void PixelFont_Scroll(const char* words, float gone, int size, const Paint& paint) {
    const int length = PixelFont_Length(words);
    for (int x = 0; x < Canvas_Width; ++x) {
        const int place = (int(gone) + x) / size;
        for (int y = 0; y < PixelFont_Cell * size; ++y)
            if (PixelFont_IsSet(words[place / PixelFont_Cell % length], place % PixelFont_Cell,
                                y / size))
                paint(float(x), float(y));
    }
}
