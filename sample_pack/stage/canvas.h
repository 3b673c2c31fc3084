// The canvas: a small picture, drawn afresh for every moment. Places outside it may be drawn to and
// are left out. x runs to the right, y down; whole numbers are the upper left corners of pixels.
#pragma once

#include "colour.h"

constexpr int Canvas_Width = 512;
constexpr int Canvas_Height = 384;
constexpr float Canvas_CentreX = 0.5f * Canvas_Width;
constexpr float Canvas_CentreY = 0.5f * Canvas_Height;

struct Canvas {
    Colour pixels[Canvas_Height][Canvas_Width];
};

struct Point {
    float x, y;
};

inline bool Canvas_Holds(int x, int y) {
    return x >= 0 && x < Canvas_Width && y >= 0 && y < Canvas_Height;
}

// Every pixel gets the colour that shade(x, y) gives.
template <class Shade>
void Canvas_Fill(Canvas& canvas, const Shade& shade) {
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x)
            canvas.pixels[y][x] = shade(x, y);
}

void Canvas_Clear(Canvas& canvas, Colour colour);
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

// An outline of any shape; what it encloses twice is a hole. paint(x, y, share) is called for the
// pixels that it covers.
template <class Paint>
void Canvas_PaintPolygon(const Point* outline, int count, const Paint& paint) {
    float cover[Canvas_Width];
    const Box box = Canvas_Bound(outline, count);
    for (int y = box.top; y < box.bottom; ++y) {
        Canvas_CoverRow(outline, count, box, y, cover);
        for (int x = box.left; x < box.right; ++x)
            if (cover[x] > 0.0f)
                paint(x, y, cover[x]);
    }
}

void Canvas_Polygon(Canvas& canvas, const Point* outline, int count, Colour colour);
