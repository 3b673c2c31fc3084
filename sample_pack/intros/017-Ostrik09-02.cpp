// Life in standing water: every cell is eaten by a neighbour of the next kind, until the whole pond
// turns in spirals.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 M2 Brackwater";

namespace {

constexpr int pondWidth = Canvas_Width / 2, pondHeight = Canvas_Height / 2;
constexpr int kinds = 15;
constexpr float stepsPerSecond = 24.0f;
constexpr Colour water[] = {0x06140F, 0x0E2E22, 0x1B5038, 0x3F7A48, 0x86A548, 0xD8D070, 0xF4F0C0,
                            0xA8C8A0, 0x4A9088, 0x1C6068, 0x103C48, 0x0A2428, 0x06140F};

const Lettering name = Letters_Make("Brackwater", Face::Serif, 84);
const Lettering nameShadow = Letters_Soften(name, 10);

uint8_t pond[2][pondHeight][pondWidth];
int current = 0;

void sowPond() {
    for (int y = 0; y < pondHeight; ++y)
        for (int x = 0; x < pondWidth; ++x)
            pond[0][y][x] = uint8_t(float(kinds) * Maths_Hash(x / 2, y / 2));
}

// The pond's borders meet, so that nothing is lost there.
void stepPond() {
    const auto& now = pond[current];
    auto& next = pond[1 - current];
    for (int y = 0; y < pondHeight; ++y) {
        const uint8_t* above = now[(y + pondHeight - 1) % pondHeight];
        const uint8_t* below = now[(y + 1) % pondHeight];
        for (int x = 0; x < pondWidth; ++x) {
            const int left = (x + pondWidth - 1) % pondWidth, right = (x + 1) % pondWidth;
            const uint8_t eater = uint8_t((now[y][x] + 1) % kinds);
            const bool isEaten = now[y][left] == eater || now[y][right] == eater ||
                                 above[x] == eater || below[x] == eater;
            next[y][x] = isEaten ? eater : now[y][x];
        }
    }
    current = 1 - current;
}

Colour shadePond(int x, int y, float seconds) {
    // The surface moves a little and bends what is seen through it.
    const float swell = 1.6f * Maths_Sin(float(y) / 61.0f + 0.21f * seconds);
    const int column = (x + int(swell) + Canvas_Width) / 2 % pondWidth, row = y / 2;
    const auto& now = pond[current];
    const int kind = now[row][column];
    const int step =
        kind - now[(row + pondHeight - 1) % pondHeight][(column + pondWidth - 1) % pondWidth];
    const float edge = step == 0 ? 0.0f : step == 1 || step < -1 ? 0.22f : -0.18f;
    const float gleam = Maths_Noise(float(x) / 90.0f + 0.2f * seconds, float(y) / 60.0f);
    const float light = 0.55f + 0.45f * gleam + edge;
    return Colour_Scale(Colour_Ramp(water, float(kind) / float(kinds)), light);
}

void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 146;
    for (int twice = 0; twice < 2; ++twice)
        Letters_Colour(canvas, nameShadow, left - 9, top - 8, 0x04100C);
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
        for (int early = 0; early < 90; ++early)
            stepPond();
        isSown = true;
    }
    for (int due = Stage_TakeSteps(seconds, stepsPerSecond); due > 0; --due)
        stepPond();
    Canvas_Fill(canvas, [=](int x, int y) { return shadePond(x, y, seconds); });
    drawName(canvas, seconds);
}
