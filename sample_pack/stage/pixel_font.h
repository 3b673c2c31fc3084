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
