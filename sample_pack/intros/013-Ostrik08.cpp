// A flight over the mountains, drawn column by column from a map of heights, past a marmot who
// looks up and whistles.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 8 Marmots";

namespace {

constexpr int mapSize = 512;
constexpr float farthest = 420.0f;
constexpr float horizon = 138.0f;

const Lettering name = Letters_Make("Marmots", Face::Serif, 80, Slant::Upright, 1.1f);
const Lettering nameShadow = Letters_Soften(name, 8);

uint8_t heights[mapSize][mapSize];
Colour ground[mapSize][mapSize];

// Hills that meet themselves at the borders of the map.
float shapeHill(int x, int y) {
    constexpr float turn = 1.0f / mapSize;
    const float wide = Maths_Sin(turn * float(x)) * Maths_Cos(turn * float(y)) * 0.3f;
    const float fold = Maths_Sin(turn * float(3 * x + 2 * y)) * 0.18f;
    const float edgeX = Maths_Smooth(448.0f, 511.0f, float(x));
    const float edgeY = Maths_Smooth(448.0f, 511.0f, float(y));
    const auto rough = [](float u, float v) { return Maths_Clouds(u / 64.0f, v / 64.0f, 6); };
    const float u = float(x), v = float(y), size = float(mapSize);
    const float upper = Maths_Mix(rough(u, v), rough(u - size, v), edgeX);
    const float lower = Maths_Mix(rough(u, v - size), rough(u - size, v - size), edgeX);
    return Maths_Clamp(0.1f + wide + fold + 0.75f * Maths_Mix(upper, lower, edgeY));
}

Colour shadeHill(int x, int y) {
    const auto at = [](int column, int row) {
        return float(heights[row & (mapSize - 1)][column & (mapSize - 1)]);
    };
    const float height = at(x, y) / 255.0f;
    const float slope = (at(x + 2, y) - at(x - 2, y)) / 40.0f;
    const float speck = 0.25f * Maths_Hash(x, y);
    const Colour meadow = Colour_Mix(0x2C5C20, 0x8CB040, Maths_Clamp(height * 1.6f + speck - 0.2f));
    const Colour rock =
        Colour_Mix(meadow, 0x84786C, Maths_Smooth(0.44f, 0.60f, height + speck * 0.2f));
    const Colour snow =
        Colour_Mix(rock, 0xF8FCFF, Maths_Smooth(0.60f, 0.70f, height + speck * 0.1f));
    return Colour_Scale(snow, Maths_Clamp(0.72f + 0.6f * slope, 0.3f, 1.0f));
}

void makeMap() {
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            heights[y][x] = uint8_t(254.0f * shapeHill(x, y));
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            ground[y][x] = shadeHill(x, y);
}

Colour skyAt(int x, int y, float seconds) {
    const float cloud = Maths_Clouds(float(x) / 120.0f + 0.1f * seconds, float(y) / 34.0f, 4);
    const Colour blue = Colour_Mix(0x2868C8, 0xC8E4F8, float(y) / (horizon + 20.0f));
    return Colour_Mix(blue, 0xFFFFFF, Maths_Smooth(0.48f, 0.75f, cloud));
}

struct Flight {
    float x, y, height, cosine, sine;
};

Flight flyTo(float seconds) {
    const float turn = 0.10f + 0.08f * Maths_Sin(0.035f * seconds);
    const float x = 40.0f + 34.0f * seconds, y = 100.0f + 90.0f * Maths_Sin(0.02f * seconds);
    return {x, y, 265.0f, Maths_Cos(turn), Maths_Sin(turn)};
}

// From near to far: each part of the ground that stands higher than all before it is seen.
void drawColumn(Canvas& canvas, int column, const Flight& flight) {
    const float side = (float(column) - Canvas_CentreX) / 300.0f;
    const float stepX = flight.cosine - side * flight.sine;
    const float stepY = flight.sine + side * flight.cosine;
    int covered = Canvas_Height;
    for (float depth = 26.0f, step = 0.8f; depth < farthest && covered > 0; depth += step) {
        const int x = int(flight.x + depth * stepX) & (mapSize - 1);
        const int y = int(flight.y + depth * stepY) & (mapSize - 1);
        const float drop = flight.height - 0.9f * float(heights[y][x]);
        const int top = int(horizon + 115.0f * drop / depth - 60.0f);
        if (top < covered) {
            const float haze = Maths_Smooth(120.0f, farthest, depth);
            const Colour colour = Colour_Mix(ground[y][x], 0xB8D4EC, haze);
            Canvas_Bar(canvas, column, top, 1, covered - top, colour);
            covered = top < 0 ? 0 : top;
        }
        step += 0.010f;
    }
}

void drawBlob(Canvas& canvas, Point centre, float wide, float high, Colour colour) {
    Point outline[24];
    for (int corner = 0; corner < 24; ++corner) {
        const float turn = float(corner) / 24.0f;
        outline[corner] = {centre.x + wide * Maths_Cos(turn), centre.y + high * Maths_Sin(turn)};
    }
    Canvas_PaintPolygon(outline, 24, [&](int x, int y, float share) {
        const float light = 0.78f - 0.35f * (float(x) - centre.x) / wide -
                            0.12f * (float(y) - centre.y) / high + 0.14f * Maths_Hash(x, y);
        Canvas_Blend(canvas, x, y, Colour_Scale(colour, light), share);
    });
}

// Sits up, ducks, and sits up again; at its highest it whistles.
void drawMarmot(Canvas& canvas, float x, float size, float seconds) {
    const float up = Maths_Smooth(-0.9f, -0.5f, Maths_Sin(0.14f * seconds));
    const float foot = 396.0f + (1.0f - up) * 92.0f * size;
    const float nod = 2.0f * Maths_Sin(0.8f * seconds);
    const auto at = [=](float dx, float dy) {
        return Point{x + size * dx, foot - size * dy + nod * (dy > 70.0f)};
    };
    drawBlob(canvas, at(0, 28), 36.0f * size, 44.0f * size, 0x9C7448);
    drawBlob(canvas, at(-5, 30), 20.0f * size, 34.0f * size, 0xD0A468);
    drawBlob(canvas, at(-2, 86), 23.0f * size, 22.0f * size, 0xA87C4C);
    drawBlob(canvas, at(13, 104), 7.0f * size, 7.0f * size, 0x7C5430);
    drawBlob(canvas, at(-15, 104), 6.0f * size, 7.0f * size, 0x8C6038);
    drawBlob(canvas, at(-16, 80), 13.0f * size, 10.0f * size, 0xE0C090);
    drawBlob(canvas, at(-26, 84), 4.5f * size, 4.0f * size, 0x201810);
    drawBlob(canvas, at(-9, 92), 3.6f * size, 4.2f * size, 0x100808);
    drawBlob(canvas, at(-14, 56), 7.0f * size, 11.0f * size, 0x845C34);
    drawBlob(canvas, at(12, 52), 8.0f * size, 12.0f * size, 0x7C5430);
    Canvas_Add(canvas, int(at(-10, 94).x), int(at(-10, 94).y), 0xFFFFFF);
}

void drawName(Canvas& canvas) {
    const int left = Letters_Centred(name), top = 14;
    Letters_Colour(canvas, nameShadow, left - 5, top - 4, 0x204880);
    Letters_Paint(canvas, name, left, top, [](int x, int y) {
        const float edge = 34.0f + 9.0f * Maths_Noise(float(x) / 9.0f, 3.0f);
        return float(y) < edge ? 0xFFFFFF : Colour_Mix(0x8CA0B8, 0x4C6488, float(y - 34) / 40.0f);
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (heights[0][0] == 0)
        makeMap();
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < Canvas_Width; ++x)
            canvas.pixels[y][x] = skyAt(x, y, seconds);
    drawName(canvas);
    const Flight flight = flyTo(seconds);
    for (int column = 0; column < Canvas_Width; ++column)
        drawColumn(canvas, column, flight);
    drawMarmot(canvas, 412.0f, 1.35f, seconds);
    drawMarmot(canvas, 322.0f, 0.7f, seconds * 1.2f + 3.4f);
}
