// Rain on a tiled pool: the waves spread, cross and bend the sight of the ground.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 11 Ripples";

namespace {

constexpr int poolWidth = Canvas_Width / 2, poolHeight = Canvas_Height / 2;
constexpr int tile = 24;

const Lettering name = Letters_Make("RIPPLES", Face::Serif, 118);

// Two moments of the water's height; a step makes the one after out of both.
float water[2][poolHeight][poolWidth];
int current = 0;
Colour ground[Canvas_Height][Canvas_Width];

void letFall(int centreX, int centreY, int reach, float force) {
    for (int y = centreY - reach; y <= centreY + reach; ++y)
        for (int x = centreX - reach; x <= centreX + reach; ++x) {
            const float dx = float(x - centreX), dy = float(y - centreY);
            const float near = 1.0f - (dx * dx + dy * dy) / float(reach * reach);
            if (near > 0.0f && x > 0 && x < poolWidth - 1 && y > 0 && y < poolHeight - 1)
                water[current][y][x] -= force * near;
        }
}

// Heights strive for the mean of their neighbours, overshoot, and tire.
void stepWater() {
    const auto& now = water[current];
    auto& next = water[1 - current];
    for (int y = 1; y < poolHeight - 1; ++y)
        for (int x = 1; x < poolWidth - 1; ++x) {
            const float around = now[y - 1][x] + now[y + 1][x] + now[y][x - 1] + now[y][x + 1];
            next[y][x] = (0.5f * around - next[y][x]) * 0.991f;
        }
    current = 1 - current;
}

// Drops by chance, and now and then something heavier.
void stepRain(int step) {
    stepWater();
    if (step % 9 == 0)
        letFall(int(float(poolWidth) * Maths_Hash(step, 1)),
                int(float(poolHeight) * Maths_Hash(step, 2)), 2 + int(3.0f * Maths_Hash(step, 3)),
                1.6f);
    if (step % 150 == 20)
        letFall(40 + int(176.0f * Maths_Hash(step, 4)), 30 + int(132.0f * Maths_Hash(step, 5)), 9,
                4.0f);
}

// Small tiles in blue, a border in gold, and the name laid in white.
Colour shadeTile(int x, int y) {
    const int column = x / tile, row = y / tile, within = std::min(x % tile, y % tile);
    const float chance = Maths_Hash(column, row);
    const bool isGold =
        (row == 1 || row == 14 || column == 1 || column == 20) && (column + row) % 2;
    const Colour blue = Colour_Mix(0x0C5C94, 0x30B0C8, chance);
    const Colour glaze = isGold ? Colour_Mix(0xC89030, 0xF0D070, chance) : blue;
    const float gleam = 0.86f + 0.14f * Maths_Noise(float(x) / 7.0f, float(y) / 7.0f);
    return within < 2 ? 0x084060 : Colour_Scale(glaze, gleam);
}

void layGround() {
    static Canvas floor;
    Canvas_Fill(floor, shadeTile);
    const int left = Letters_Centred(name), top = 130;
    Letters_Colour(floor, name, left - 2, top - 2, 0x084060);
    Letters_Colour(floor, name, left + 3, top + 3, 0x084060);
    Letters_Paint(floor, name, left, top, [](int x, int y) {
        const bool isJoint = (x + 3) % 8 == 0 || y % 8 == 0;
        return isJoint ? 0xB8C8C8 : Colour_Mix(0xFFFFFF, 0xE8DCC0, Maths_Hash(x / 8, y / 8));
    });
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x)
            ground[y][x] = floor.pixels[y][x];
}

int within(float place, int size) { return int(Maths_Clamp(place, 0.0f, float(size - 1))); }

Colour shadeWater(int x, int y) {
    const int column = std::min(x / 2, poolWidth - 2), row = std::min(y / 2, poolHeight - 2);
    const auto& now = water[current];
    const float right = float(x & 1) * 0.5f, down = float(y & 1) * 0.5f;
    const float slopeX = Maths_Mix(now[row][column + 1] - now[row][column],
                                   now[row + 1][column + 1] - now[row + 1][column], down);
    const float slopeY = Maths_Mix(now[row + 1][column] - now[row][column],
                                   now[row + 1][column + 1] - now[row][column + 1], right);
    const Colour seen = ground[within(float(y) + 26.0f * slopeY, Canvas_Height)]
                              [within(float(x) + 26.0f * slopeX, Canvas_Width)];
    const float light = 0.82f - 1.1f * (slopeX + slopeY);
    const float spark = Maths_Smooth(0.30f, 0.75f, -slopeX - slopeY);
    return Colour_Mix(Colour_Scale(seen, light), 0xFFFFFF,
                      Maths_Clamp(spark + 0.2f * (light - 0.9f)));
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static int step = 0;
    if (ground[0][0] == 0) {
        layGround();
        for (; step < 120; ++step)
            stepRain(step);
    }
    for (int due = Stage_TakeSteps(seconds, 75.0f); due > 0; --due)
        stepRain(++step);
    Canvas_Fill(canvas, shadeWater);
}
