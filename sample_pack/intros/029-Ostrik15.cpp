// Stars inlaid in wood: brass bands over four kinds of timber, whose angle changes while one looks.

#include "letters.h"
#include "stage.h"

#include <algorithm>

const char Intro_Title[] = "Ostrik Intro 15 Inlaid";

namespace {

constexpr float cellSize = 96.0f;
constexpr Colour woods[] = {0x8C4A20, 0xD8A868, 0x4C2414, 0xB87038};

const Lettering name = Letters_Make("INLAID", Face::Serif, 92, Slant::Upright, 1.12f);

// One octant of a cell, to which all others are mirrored: 0 <= y <= x <= 0.5.
Point fold(float x, float y) {
    x = std::fabs(Maths_Fract(x) - 0.5f);
    y = std::fabs(Maths_Fract(y) - 0.5f);
    return {std::max(x, y), std::min(x, y)};
}

// The two bands of the octant, as lines: from the middle of the cell's edge inward, and the one
// that cuts off the cell's corner.
struct Bands {
    float normalX, normalY; // of the first one
    float corner;           // how far the second lies from the middle
};

Bands bandsAt(float seconds) {
    const float turn = 0.095f + 0.055f * Maths_Sin(0.06f * seconds);
    return {Maths_Sin(turn), Maths_Cos(turn), 0.70f + 0.10f * Maths_Sin(0.045f * seconds + 0.3f)};
}

float grainAt(float x, float y, int kind) {
    const float along = kind & 1 ? x : y, across = kind & 1 ? y : x;
    const float wave = 3.0f * Maths_Sin(along / 140.0f + across / 400.0f);
    return Maths_Noise(across / 2.2f + wave, along / 34.0f);
}

// Brass, with light that slides over the room.
Colour shadeBrass(float edge, int x, int y, float seconds) {
    const float sweep = Maths_Sin(float(x + y) / 420.0f - 0.17f * seconds);
    const float round = 1.0f - edge * edge;
    const float light =
        0.42f + 0.22f * round + 0.4f * sweep * sweep * sweep * sweep * (sweep > 0.0f);
    return Colour_Mix(Colour_Make(light * 1.2f, light * 0.95f, light * 0.42f), 0xFFFBE0,
                      Maths_Clamp(light - 0.75f));
}

Colour shade(int x, int y, const Bands& bands, float seconds) {
    const float u = float(x) / cellSize + 0.05f * seconds,
                v = float(y) / cellSize + 0.03f * seconds;
    const Point place = fold(u, v);
    const float first = bands.normalX * (place.x - 0.5f) + bands.normalY * place.y;
    const float second = (place.x + place.y - bands.corner) * 0.7071f;
    const int inner = (first > 0.0f ? 1 : 0) + (second > 0.0f ? 2 : 0);
    const int kind = inner ^ ((int(u) + int(v)) & 1);
    const float distance = std::min(std::fabs(first), std::fabs(second)) * cellSize;
    const float grain = 0.70f + 0.42f * grainAt(u * cellSize, v * cellSize, kind);
    const float joint = Maths_Smooth(1.8f, 4.2f, distance);
    const Colour wood = Colour_Scale(woods[kind], grain * (0.55f + 0.45f * joint));
    const float brass = Maths_Smooth(2.9f, 2.0f, distance);
    return brass > 0.0f ? Colour_Mix(wood, shadeBrass(distance / 2.6f, x, y, seconds), brass)
                        : wood;
}

// A plate of dark wood in a brass frame, the letters let into it.
void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 146;
    for (int y = top - 8; y < top + name.height + 8; ++y)
        for (int x = left - 28; x < left + name.width + 28; ++x) {
            const int edge = std::min(std::min(x - left + 28, left + name.width + 27 - x),
                                      std::min(y - top + 8, top + name.height + 7 - y));
            const float grain = 0.7f + 0.5f * grainAt(float(x), float(y), 1);
            const bool isFrame = edge < 2 || (edge >= 6 && edge < 8);
            canvas.pixels[y][x] =
                isFrame ? shadeBrass(0.3f, x, y, seconds) : Colour_Scale(0x3C1C10, grain);
        }
    Letters_Colour(canvas, name, left - 1, top - 1, 0x140804);
    Letters_Colour(canvas, name, left + 1, top + 1, 0xA86838);
    Letters_Paint(canvas, name, left, top,
                  [=](int x, int y) { return shadeBrass(0.2f, left + x, top + y, seconds); });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    const Bands bands = bandsAt(seconds);
    Canvas_Fill(canvas, [=](int x, int y) { return shade(x, y, bands, seconds); });
    drawName(canvas, seconds);
}
