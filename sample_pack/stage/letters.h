// Lettering: words in one of the system's outline faces, kept as a mask that an intro paints with
// its own colours. Made once and kept to the end of the program.
#pragma once

#include "canvas.h"

struct Lettering {
    int width, height;
    uint8_t* cover; // row by row, 255 where a letter is
};

enum class Face { Sans, Serif };
enum class Slant { Upright, Italic };

// `height` is that of the line in pixels.
Lettering Letters_Make(const char* words, Face face, int height, Slant slant = Slant::Upright);

// The same made soft, for shadows and shine: larger than its source by `radius` on each side.
Lettering Letters_Soften(const Lettering& source, int radius);

inline float Letters_CoverAt(const Lettering& lettering, int x, int y) {
    if (x < 0 || x >= lettering.width || y < 0 || y >= lettering.height)
        return 0.0f;
    return float(lettering.cover[y * lettering.width + x]) / 255.0f;
}

// Paints with the upper left corner at (left, top). shade(x, y) gives the colour, counted from
// that corner.
template <class Shade>
void Letters_Paint(Canvas& canvas, const Lettering& lettering, int left, int top,
                   const Shade& shade) {
    for (int y = 0; y < lettering.height; ++y)
        for (int x = 0; x < lettering.width; ++x)
            if (const uint8_t cover = lettering.cover[y * lettering.width + x])
                Canvas_Blend(canvas, left + x, top + y, shade(float(x), float(y)),
                             float(cover) / 255.0f);
}

void Letters_Colour(Canvas& canvas, const Lettering& lettering, int left, int top, Colour colour);

inline int Letters_Centred(const Lettering& lettering) {
    return (Canvas_Width - lettering.width) / 2;
}

// A title is lettering in the middle of the canvas, with a soft shadow or shine around it.
struct Title {
    Lettering words, around;
};
Title Letters_MakeTitle(const char* words, Face face, int height, Slant slant = Slant::Upright);

void Letters_Surround(Canvas& canvas, const Title& title, int top, Colour colour);

template <class Shade>
void Letters_PaintTitle(Canvas& canvas, const Title& title, int top, Colour around,
                        const Shade& shade) {
    Letters_Surround(canvas, title, top, around);
    Letters_Paint(canvas, title.words, Letters_Centred(title.words), top, shade);
}
