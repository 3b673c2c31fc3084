// Life in standing water: two substances of which one feeds on the other. Where that is so spots
// form, grow and divide like cells under a lens.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M2 Brackwater";

namespace {
constexpr int pondWidth = Canvas_Width / 2, pondHeight = Canvas_Height / 2;
constexpr float stepsPerSecond = 420;
constexpr int earlySteps = 1600;
constexpr float feed = 0.0340f, kill = 0.0618f;
constexpr Colour water[] = {0x051410, 0x0A2C28, 0x14564C, 0x2E8C68, 0x8CC070, 0xE8E890, 0xFFFFE8};

const Title name = Letters_MakeTitle("Brackwater", Face::Serif, 84);

// How much there is of a substance, with a border all around that mirrors the other side.
using Layer = float[pondHeight + 2][pondWidth + 2];

struct Pond {
    Layer food, life;
};

Pond ponds[2];
int current = 0;

void sowPond() {
    for (int y = 0; y < pondHeight + 2; ++y)
        for (int x = 0; x < pondWidth + 2; ++x) {
            const bool isSown = Num_Hash(x / 6, y / 6) < 0.08f;
            ponds[0].food[y][x] = isSown ? 0.5f : 1;
            ponds[0].life[y][x] = isSown ? 0.3f + 0.1f * Num_Hash(x, y) : 0;
        }
}

void closeBorder(Layer& layer) {
    for (int y = 1; y <= pondHeight; ++y) {
        layer[y][0] = layer[y][pondWidth];
        layer[y][pondWidth + 1] = layer[y][1];
    }
    std::copy_n(layer[pondHeight], pondWidth + 2, layer[0]);
    std::copy_n(layer[1], pondWidth + 2, layer[pondHeight + 1]);
}

// How much more there is around a place than at it.
inline float spread(const Layer& layer, int x, int y) {
    const float* above = layer[y - 1] + x;
    const float* here = layer[y] + x;
    const float* below = layer[y + 1] + x;
    return 0.2f * (above[0] + below[0] + here[-1] + here[1]) +
           0.05f * (above[-1] + above[1] + below[-1] + below[1]) - here[0];
}

void stepPond() {
    Pond& now = ponds[current];
    Pond& next = ponds[current = 1 - current];
    closeBorder(now.food);
    closeBorder(now.life);
    for (int y = 1; y <= pondHeight; ++y)
        for (int x = 1; x <= pondWidth; ++x) {
            const float food = now.food[y][x], life = now.life[y][x], eaten = food * life * life;
            next.food[y][x] = food + spread(now.food, x, y) - eaten + feed * (1 - food);
            next.life[y][x] = life + 0.5f * spread(now.life, x, y) + eaten - (feed + kill) * life;
        }
}

// Light from the upper left over bodies that are as high as they are alive.
Colour shadePond(float x, float y, float time) {
    const Layer& life = ponds[current].life;
    const int column = int(x) / 2 + 1, row = int(y) / 2 + 1;
    const float height =
        Num_Between(&life[row][column], &life[row + 1][column], Num_Fract(x / 2), Num_Fract(y / 2));
    const float slope = life[row + 1][column + 1] - life[row - 1][column - 1];
    const float gleam = 0.10f * Num_Noise(x / 90 + 0.3f * time, y / 60);
    return Colour_Ramp(water, gleam + 1.9f * height + 2 * slope);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (ponds[0].food[0][0] == 0) {
        sowPond();
        for (int early = 0; early < earlySteps; ++early)
            stepPond();
    }
    for (int due = Stage_TakeSteps(time, stepsPerSecond); due > 0; --due)
        stepPond();
    Canvas_Fill(canvas, [=](float x, float y) { return shadePond(x, y, time); });
    Letters_PaintTitle(canvas, name, 146, 0x04100C, [=](float x, float y) {
        const float gleam = 0.3f * Num_Sin(x / 200 + 0.3f * time);
        return Colour_Mix(0xFFFCE0, 0x9CC8A0, y / 84 + gleam);
    });
}
