// The canvas: a small picture, drawn afresh for every moment. Places outside it may be drawn to and
// are left out. x runs to the right, y down; whole numbers are the upper left corners of pixels.
#pragma once

#include "colour.h"

constexpr int Canvas_Width = 512;
constexpr int Canvas_Height = 384;
constexpr float Canvas_MidX = 0.5f * Canvas_Width;
constexpr float Canvas_MidY = 0.5f * Canvas_Height;

struct Canvas {
    Colour pixels[Canvas_Height][Canvas_Width];
};

struct Point {
    float x, y;
};

inline bool Canvas_Holds(int x, int y) {
    return x >= 0 && x < Canvas_Width && y >= 0 && y < Canvas_Height;
}

// Every pixel gets the colour that shade(x, y) gives; both are whole numbers, as float.
template <class Shade>
void Canvas_Fill(Canvas& canvas, const Shade& shade) {
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x)
            canvas.pixels[y][x] = shade(float(x), float(y));
}

void Canvas_Add(Canvas& canvas, int x, int y, Colour light);
void Canvas_Blend(Canvas& canvas, int x, int y, Colour colour, float share);

// A rectangle of one colour.
void Canvas_Bar(Canvas& canvas, int left, int top, int width, int height, Colour colour);

// A round patch of light that fades towards its edge.
void Canvas_Glow(Canvas& canvas, Point centre, float radius, Colour light);

// A smooth line; `width` in pixels, 1 or more.
void Canvas_Line(Canvas& canvas, Point from, Point to, float width, Colour colour);

// The pixels that an outline can touch, cut at the canvas; right and bottom are exclusive.
struct Box {
    int left, top, right, bottom;
};
Box Canvas_Bound(const Point* outline, int count);

// How much of each pixel of row y lies within the outline, from box.left to box.right.
void Canvas_CoverRow(const Point* outline, int count, const Box& box, int y,
                     float (&cover)[Canvas_Width]);

// Calls paint(x, y, share) for the pixels that an outline covers. It may have any shape; what it
// encloses twice is a hole.
template <class Paint>
void Canvas_ForPolygon(const Point* outline, int count, const Paint& paint) {
    float cover[Canvas_Width];
    const Box box = Canvas_Bound(outline, count);
    for (int y = box.top; y < box.bottom; ++y) {
        Canvas_CoverRow(outline, count, box, y, cover);
        for (int x = box.left; x < box.right; ++x)
            if (cover[x] > 0.0f)
                paint(x, y, cover[x]);
    }
}

// Paints it with the colours of shade(x, y).
template <int Count, class Shade>
void Canvas_PaintPolygon(Canvas& canvas, const Point (&outline)[Count], const Shade& shade) {
    Canvas_ForPolygon(outline, Count, [&](int x, int y, float share) {
        Canvas_Blend(canvas, x, y, shade(float(x), float(y)), share);
    });
}

template <int Count>
void Canvas_Polygon(Canvas& canvas, const Point (&outline)[Count], Colour colour) {
    Canvas_PaintPolygon(canvas, outline, [=](float, float) { return colour; });
}

// A ball or a disc. shade(x, y, z) gives the colour of a place on it: within it each runs from -1
// to 1, and z is how far it stands out.
template <class Shade>
void Canvas_PaintBall(Canvas& canvas, Point centre, float wide, float high, const Shade& shade) {
    for (int y = int(centre.y - high); float(y) <= centre.y + high; ++y)
        for (int x = int(centre.x - wide); float(x) <= centre.x + wide; ++x) {
            const float dx = (float(x) - centre.x) / wide, dy = (float(y) - centre.y) / high;
            const float square = 1.0f - dx * dx - dy * dy;
            if (square > 0.0f)
                Canvas_Blend(canvas, x, y, shade(dx, dy, std::sqrt(square)), square * 0.6f * high);
        }
}
