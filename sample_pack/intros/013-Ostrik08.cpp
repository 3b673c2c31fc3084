// A flight over the mountains, drawn column by column from a map of heights, past marmots who sit
// up to look.

#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 8 Marmots";

namespace {

constexpr int mapSize = 512, mask = mapSize - 1;
constexpr float farthest = 420.0f;

const Title name = Letters_MakeTitle("Marmots", Face::Serif, 80, Slant::Upright, 1.1f);

uint8_t heights[mapSize][mapSize];
Colour ground[mapSize][mapSize];

// Hills that meet themselves at the borders of the map.
float shapeHill(float x, float y) {
    constexpr float size = mapSize;
    const float wide = Maths_Sin(x / size) * Maths_Cos(y / size) * 0.3f;
    const float fold = Maths_Sin((3.0f * x + 2.0f * y) / size) * 0.18f;
    const auto rough = [](float u, float v) { return Maths_Clouds(u / 64.0f, v / 64.0f, 6); };
    const float upper[] = {rough(x, y), rough(x - size, y)};
    const float lower[] = {rough(x, y - size), rough(x - size, y - size)};
    return Maths_Clamp(0.1f + wide + fold +
                       0.75f * Maths_Between(upper, lower, Maths_Smooth(448.0f, 511.0f, x),
                                             Maths_Smooth(448.0f, 511.0f, y)));
}

// Meadow, rock and snow, one above the other, lit from the side.
Colour shadeHill(int x, int y) {
    const float height = float(heights[y][x]) / 255.0f, speck = Maths_Hash(x, y);
    const float slope = float(heights[y][(x + 2) & mask] - heights[y][(x - 2) & mask]) / 40.0f;
    const Colour meadow = Colour_Mix(0x2C5C20, 0x8CB040, height * 1.6f + 0.25f * speck - 0.2f);
    const Colour rock =
        Colour_Mix(meadow, 0x84786C, Maths_Smooth(0.44f, 0.6f, height + 0.05f * speck));
    const Colour snow =
        Colour_Mix(rock, 0xF8FCFF, Maths_Smooth(0.6f, 0.7f, height + 0.03f * speck));
    return Colour_Scale(snow, Maths_Clamp(0.72f + 0.6f * slope, 0.3f, 1.0f));
}

void makeMap() {
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            heights[y][x] = uint8_t(254.0f * shapeHill(float(x), float(y)));
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            ground[y][x] = shadeHill(x, y);
}

Colour shadeSky(float x, float y, float seconds) {
    const float cloud = Maths_Clouds(x / 120.0f + 0.1f * seconds, y / 34.0f, 4);
    return Colour_Mix(Colour_Mix(0x2868C8, 0xC8E4F8, y / 158.0f), 0xFFFFFF,
                      Maths_Smooth(0.48f, 0.75f, cloud));
}

// From near to far: each part of the ground that stands higher than all before it is seen.
void drawColumn(Canvas& canvas, int column, float turn, Point eye) {
    const float side = (float(column) - Canvas_CentreX) / 300.0f;
    const float stepX = Maths_Cos(turn) - side * Maths_Sin(turn);
    const float stepY = Maths_Sin(turn) + side * Maths_Cos(turn);
    int covered = Canvas_Height;
    for (float depth = 26.0f, step = 0.8f; depth < farthest && covered > 0; depth += step) {
        const int x = int(eye.x + depth * stepX) & mask, y = int(eye.y + depth * stepY) & mask;
        const float drop = 265.0f - 0.9f * float(heights[y][x]);
        const int top = std::max(int(78.0f + 115.0f * drop / depth), 0);
        if (top < covered) {
            const float haze = Maths_Smooth(120.0f, farthest, depth);
            Canvas_Bar(canvas, column, top, 1, covered - top,
                       Colour_Mix(ground[y][x], 0xB8D4EC, haze));
            covered = top;
        }
        step += 0.010f;
    }
}

// Round parts, furred: place and size, from the feet upwards.
struct Part {
    float x, y, wide, high;
    Colour fur;
};
constexpr Part parts[] = {
    {0, 28, 36, 44, 0x9C7448},    {-5, 30, 20, 34, 0xD0A468},     {-2, 86, 23, 22, 0xA87C4C},
    {13, 104, 7, 7, 0x7C5430},    {-15, 104, 6, 7, 0x8C6038},     {-16, 80, 13, 10, 0xE0C090},
    {-26, 84, 4.5f, 4, 0x201810}, {-9, 92, 3.6f, 4.2f, 0x100808}, {-10, 94, 1.2f, 1.2f, 0xFFFFFF},
    {-14, 56, 7, 11, 0x845C34},   {12, 52, 8, 12, 0x7C5430}};

// Sits up, ducks, and sits up again.
void drawMarmot(Canvas& canvas, float left, float size, float seconds) {
    const float up = Maths_Smooth(-0.9f, -0.5f, Maths_Sin(0.14f * seconds));
    const float nod = 2.0f * Maths_Sin(0.8f * seconds), foot = 396.0f + (1.0f - up) * 92.0f * size;
    for (const Part& part : parts) {
        const Point centre = {left + size * part.x, foot - size * part.y + (part.y > 70 ? nod : 0)};
        Canvas_PaintBall(canvas, centre, part.wide * size, part.high * size,
                         [&](float x, float y, float) {
                             const float hair = 0.14f * Maths_Hash(int(x * 40.0f), int(y * 40.0f));
                             return Colour_Scale(part.fur, 0.85f - 0.3f * x - 0.12f * y + hair);
                         });
    }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (heights[0][0] == 0)
        makeMap();
    Canvas_Fill(canvas, [=](float x, float y) { return y < 200 ? shadeSky(x, y, seconds) : 0; });
    Letters_PaintTitle(canvas, name, 14, 0x3C68A0, [](float x, float y) {
        const bool isSnow = y < 34.0f + 9.0f * Maths_Noise(x / 9.0f, 3.0f);
        return isSnow ? 0xFFFFFF : Colour_Mix(0x8CA0B8, 0x4C6488, (y - 34.0f) / 40.0f);
    });
    const float turn = 0.10f + 0.08f * Maths_Sin(0.035f * seconds);
    const Point eye = {40.0f + 34.0f * seconds, 100.0f + 90.0f * Maths_Sin(0.02f * seconds)};
    for (int column = 0; column < Canvas_Width; ++column)
        drawColumn(canvas, column, turn, eye);
    drawMarmot(canvas, 412.0f, 1.35f, seconds);
    drawMarmot(canvas, 322.0f, 0.7f, seconds * 1.2f + 3.4f);
}
