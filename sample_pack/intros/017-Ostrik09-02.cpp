// Life in standing water: two substances of which one feeds on the other. Where that is so spots
// form, grow and divide like cells under a lens.

#include "letters.h"
#include "stage.h"

#include <algorithm>

const char Intro_Title[] = "Ostrik Intro 9 M2 Brackwater";

namespace {

constexpr int pondWidth = Canvas_Width / 2, pondHeight = Canvas_Height / 2;
constexpr float stepsPerSecond = 420.0f;
constexpr int earlySteps = 1600;
constexpr float feed = 0.0340f, kill = 0.0618f;
constexpr Colour water[] = {0x051410, 0x0A2C28, 0x14564C, 0x2E8C68, 0x8CC070, 0xE8E890, 0xFFFFE8};

const Lettering name = Letters_Make("Brackwater", Face::Serif, 84);
const Lettering nameShadow = Letters_Soften(name, 14);

// What feeds and what eats, with a border all around that mirrors the other side.
struct Pond {
    float food[pondHeight + 2][pondWidth + 2];
    float life[pondHeight + 2][pondWidth + 2];
};

Pond ponds[2];
int current = 0;

void sowPond() {
    for (int y = 0; y < pondHeight + 2; ++y)
        for (int x = 0; x < pondWidth + 2; ++x) {
            const bool isSown = Maths_Hash(x / 6, y / 6) < 0.08f;
            ponds[0].food[y][x] = isSown ? 0.5f : 1.0f;
            ponds[0].life[y][x] = isSown ? 0.3f + 0.1f * Maths_Hash(x, y) : 0.0f;
        }
}

void closeBorder(float (&layer)[pondHeight + 2][pondWidth + 2]) {
    for (int y = 1; y <= pondHeight; ++y) {
        layer[y][0] = layer[y][pondWidth];
        layer[y][pondWidth + 1] = layer[y][1];
    }
    std::copy_n(layer[pondHeight], pondWidth + 2, layer[0]);
    std::copy_n(layer[1], pondWidth + 2, layer[pondHeight + 1]);
}

// How much more there is around a place than at it.
inline float spread(const float* above, const float* here, const float* below) {
    return 0.2f * (above[0] + below[0] + here[-1] + here[1]) +
           0.05f * (above[-1] + above[1] + below[-1] + below[1]) - here[0];
}

void stepRow(const Pond& now, Pond& next, int y) {
    for (int x = 1; x <= pondWidth; ++x) {
        const float food = now.food[y][x], life = now.life[y][x], eaten = food * life * life;
        next.food[y][x] = food + spread(&now.food[y - 1][x], &now.food[y][x], &now.food[y + 1][x]) -
                          eaten + feed * (1.0f - food);
        next.life[y][x] = life +
                          0.5f * spread(&now.life[y - 1][x], &now.life[y][x], &now.life[y + 1][x]) +
                          eaten - (feed + kill) * life;
    }
}

void stepPond() {
    Pond& now = ponds[current];
    current = 1 - current;
    closeBorder(now.food);
    closeBorder(now.life);
    for (int y = 1; y <= pondHeight; ++y)
        stepRow(now, ponds[current], y);
}

// Light from the upper left over bodies that are as high as they are alive.
Colour shadePond(int x, int y, float seconds) {
    const auto& life = ponds[current].life;
    const int column = x / 2 + 1, row = y / 2 + 1;
    const float right = 0.5f * float(x & 1), down = 0.5f * float(y & 1);
    const float across = life[row][column + 1] - life[row][column];
    const float below = life[row + 1][column] - life[row][column];
    const float height = life[row][column] + right * across + down * below;
    const float slope = life[row + 1][column + 1] - life[row - 1][column - 1];
    const float gleam = 0.10f * Maths_Noise(float(x) / 90.0f + 0.3f * seconds, float(y) / 60.0f);
    return Colour_Ramp(water, gleam + 1.9f * height + 2.0f * slope);
}

void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 146;
    for (int thrice = 0; thrice < 3; ++thrice)
        Letters_Colour(canvas, nameShadow, left - 13, top - 12, 0x04100C);
    for (int y = 0; y < name.height; ++y) {
        const int sway = int(3.0f * Maths_Sin(float(y) / 40.0f + 0.4f * seconds));
        for (int x = 0; x < name.width; ++x)
            Canvas_Blend(canvas, left + x + sway, top + y,
                         Colour_Mix(0xFFFCE0, 0x9CC8A0, float(y) / 84.0f),
                         Letters_CoverAt(name, x, y));
    }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static bool isSown = false;
    if (!isSown) {
        sowPond();
        for (int early = 0; early < earlySteps; ++early)
            stepPond();
        isSown = true;
    }
    for (int due = Stage_TakeSteps(seconds, stepsPerSecond); due > 0; --due)
        stepPond();
    Canvas_Fill(canvas, [=](int x, int y) { return shadePond(x, y, seconds); });
    drawName(canvas, seconds);
}
