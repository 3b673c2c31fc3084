// Lettering: words in one of the system's outline faces, kept as a mask that an intro paints with
// its own colours. Made once and kept to the end of the program.
#pragma once

#include "canvas.h"

struct Lettering {
    int width, height;
    uint8_t* cover; // row by row, 255 where a letter is
};

enum class Face { Sans, Serif, Typewriter };
enum class Slant { Upright, Italic };

// `height` is that of the line in pixels. `spread` is how much wider than drawn by its designer.
Lettering Letters_Make(const char* words, Face face, int height, Slant slant = Slant::Upright,
                       float spread = 1.0f);

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
                if (Canvas_Holds(left + x, top + y))
                    Canvas_Blend(canvas, left + x, top + y, shade(x, y), float(cover) / 255.0f);
}

void Letters_Colour(Canvas& canvas, const Lettering& lettering, int left, int top, Colour colour);

// Adds light instead of covering.
void Letters_Shine(Canvas& canvas, const Lettering& lettering, int left, int top, Colour light);

inline int Letters_Centred(const Lettering& lettering) {
    return (Canvas_Width - lettering.width) / 2;
}
