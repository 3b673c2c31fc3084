#include "canvas.h"

namespace {
constexpr int subRows = 4; // the steps that smooth an outline from row to row
constexpr int mostCrossings = 64;

// Where the outline crosses a height, from left to right. Gives the count, which is even.
int findCrossings(const Point* outline, int count, float height, float (&places)[mostCrossings]) {
    int found = 0;
    Point from = outline[count - 1];
    for (int corner = 0; corner < count; from = outline[corner++]) {
        const Point to = outline[corner];
        if ((from.y <= height) != (to.y <= height) && found < mostCrossings)
            places[found++] = from.x + (height - from.y) * (to.x - from.x) / (to.y - from.y);
    }
    std::sort(places, places + found);
    return found;
}

void coverSpan(float left, float right, float (&cover)[Canvas_Width]) {
    left = Num_Clamp(left, 0.0f, Canvas_Width);
    right = Num_Clamp(right, 0.0f, Canvas_Width);
    for (int x = int(left); float(x) < right; ++x)
        cover[x] += (std::min(right, float(x + 1)) - std::max(left, float(x))) / float(subRows);
}
} // namespace

void Canvas_Add(Canvas& canvas, int x, int y, Colour light) {
    if (Canvas_Holds(x, y))
        canvas.pixels[y][x] = Colour_Add(canvas.pixels[y][x], light);
}

void Canvas_Blend(Canvas& canvas, int x, int y, Colour colour, float share) {
    if (Canvas_Holds(x, y))
        canvas.pixels[y][x] = Colour_Mix(canvas.pixels[y][x], colour, share);
}

void Canvas_Bar(Canvas& canvas, int left, int top, int width, int height, Colour colour) {
    for (int y = std::max(top, 0); y < std::min(top + height, Canvas_Height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + width, Canvas_Width); ++x)
            canvas.pixels[y][x] = colour;
}

void Canvas_Glow(Canvas& canvas, Point centre, float radius, Colour light) {
    const float reach = radius * radius;
    for (int y = int(centre.y - radius); float(y) <= centre.y + radius; ++y)
        for (int x = int(centre.x - radius); float(x) <= centre.x + radius; ++x) {
            const float dx = float(x) - centre.x, dy = float(y) - centre.y;
            const float fade = 1.0f - (dx * dx + dy * dy) / reach;
            if (fade > 0.0f)
                Canvas_Add(canvas, x, y, Colour_Scale(light, fade * fade * fade));
        }
}

void Canvas_Line(Canvas& canvas, Point from, Point to, float width, Colour colour) {
    const float dx = to.x - from.x, dy = to.y - from.y;
    const float length = std::max(std::sqrt(dx * dx + dy * dy), 0.001f);
    const float sideX = -0.5f * width * dy / length, sideY = 0.5f * width * dx / length;
    const Point outline[] = {{from.x + sideX, from.y + sideY},
                             {to.x + sideX, to.y + sideY},
                             {to.x - sideX, to.y - sideY},
                             {from.x - sideX, from.y - sideY}};
    Canvas_Polygon(canvas, outline, colour);
}

Box Canvas_Bound(const Point* outline, int count) {
    Point least = outline[0], most = outline[0];
    for (int corner = 1; corner < count; ++corner) {
        least = {std::min(least.x, outline[corner].x), std::min(least.y, outline[corner].y)};
        most = {std::max(most.x, outline[corner].x), std::max(most.y, outline[corner].y)};
    }
    return {int(Num_Clamp(least.x, 0.0f, Canvas_Width)),
            int(Num_Clamp(least.y, 0.0f, Canvas_Height)),
            int(Num_Clamp(most.x + 1.0f, 0.0f, Canvas_Width)),
            int(Num_Clamp(most.y + 1.0f, 0.0f, Canvas_Height))};
}

void Canvas_CoverRow(const Point* outline, int count, const Box& box, int y,
                     float (&cover)[Canvas_Width]) {
    std::fill(cover + box.left, cover + box.right, 0.0f);
    for (int step = 0; step < subRows; ++step) {
        float places[mostCrossings];
        const float height = float(y) + (float(step) + 0.5f) / float(subRows);
        const int found = findCrossings(outline, count, height, places);
        for (int crossing = 0; crossing + 1 < found; crossing += 2)
            coverSpan(places[crossing], places[crossing + 1], cover);
    }
}
