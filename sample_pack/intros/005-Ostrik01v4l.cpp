// A struck plate of tin rings, and the sand upon it gathers in figures where the plate stands
// still. Each tone has its own figure; one passes into the next.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 1 V4 Ringing Tinplate";

namespace {

constexpr int figureCount = 7;
constexpr int waves[figureCount][2] = {{1, 3}, {2, 5}, {3, 5}, {1, 6}, {4, 7}, {3, 8}, {5, 8}};
constexpr int mostWaves = 8;
constexpr float secondsEach = 3.0f;
constexpr int plateSize = 328, plateLeft = 92, plateTop = 10;

const Lettering name = Letters_Make("Ringing Tinplate", Face::Serif, 58, Slant::Italic);
const Lettering nameShadow = Letters_Soften(name, 8);

// The cosines of all waves along one side of the plate: a figure is made of four of them.
float cosines[mostWaves + 1][plateSize + 1];

void makeCosines() {
    for (int wave = 0; wave <= mostWaves; ++wave)
        for (int place = 0; place <= plateSize; ++place)
            cosines[wave][place] = Maths_Cos(0.5f * float(wave * place) / float(plateSize));
}

// How high a point of the square swings in one figure.
float swing(int figure, int x, int y) {
    const int n = waves[figure % figureCount][0], m = waves[figure % figureCount][1];
    return cosines[n][x] * cosines[m][y] - cosines[m][x] * cosines[n][y];
}

struct Tone {
    int figure;
    float share; // how far the next figure has come
    float loud;  // just struck: 1, then dying away
};

Tone toneAt(float seconds) {
    const float place = seconds / secondsEach;
    const float within = Maths_Fract(place);
    return {int(place), Maths_Smooth(0.75f, 1.0f, within), 1.0f - 0.7f * within};
}

float height(const Tone& tone, int x, int y) {
    return Maths_Mix(swing(tone.figure, x, y), swing(tone.figure + 1, x, y), tone.share);
}

// Rolled tin: fine lines across, and light that slides over it as it swings.
Colour shadeTin(float lift, float slope, int x, int y, float seconds) {
    const float grain =
        0.06f * Maths_Hash(x / 17, y) + 0.05f * Maths_Noise(float(x) / 9.0f, float(y) / 2.0f);
    const float sheen = 0.10f * Maths_Sin(float(x + y) / 330.0f + 0.07f * seconds);
    const float light = 0.36f + grain + sheen + 0.9f * slope + 0.06f * lift;
    return Colour_Make(light * 0.92f, light, light * 1.10f);
}

Colour shadePlate(const Tone& tone, int x, int y, float seconds) {
    const float here = height(tone, x, y);
    const float dx = height(tone, x + 1, y) - here, dy = height(tone, x, y + 1) - here;
    const float swinging = tone.loud * Maths_Sin(9.0f * seconds);
    const Colour tin = shadeTin(here * swinging, (dx + dy) * (0.8f + swinging), x, y, seconds);
    const float away = std::fabs(here) / (std::sqrt(dx * dx + dy * dy) * 15.0f + 0.03f);
    const float heap = Maths_Smooth(1.0f, 0.35f, away + 0.5f * Maths_Hash(x, y));
    const float dust = Maths_Hash(y, x + int(seconds * 12.0f)) < 0.012f * tone.loud;
    const Colour sand = Colour_Mix(0xB07828, 0xFFE9B0, Maths_Hash(x * 3, y * 5));
    return Colour_Mix(tin, sand, Maths_Clamp(heap + dust));
}

bool isOnPlate(int x, int y) { return x >= 0 && x < plateSize && y >= 0 && y < plateSize; }

// The table beneath trembles a little with each stroke.
Colour shadeTable(int x, int y, float loud) {
    const float grain = Maths_Noise(float(x) / 60.0f, float(y) / 3.0f + loud);
    const float dx = float(x) - Canvas_CentreX, dy = float(y) - 180.0f;
    const float shadow = Maths_Smooth(130.0f, 230.0f, std::fmax(std::fabs(dx), std::fabs(dy)));
    const float light = (0.18f + 0.14f * grain) * (0.45f + 0.55f * shadow);
    return Colour_Make(light * 1.25f, light * 0.62f, light * 0.36f);
}

void drawName(Canvas& canvas) {
    const int left = Letters_Centred(name), top = 326;
    Letters_Colour(canvas, nameShadow, left - 6, top - 6, 0x000000);
    Letters_Colour(canvas, nameShadow, left - 6, top - 6, 0x000000);
    Letters_Colour(canvas, name, left - 1, top - 1, 0xFFFFFF);
    Letters_Paint(canvas, name, left, top, [](int x, int y) {
        const float light = 0.55f + 0.4f * Maths_Sin(float(y) / 40.0f + float(x) / 400.0f);
        return Colour_Make(light * 0.95f, light, light * 1.12f);
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    const Tone tone = toneAt(seconds);
    if (cosines[0][0] == 0.0f) // not made yet: each begins with 1
        makeCosines();
    Canvas_Fill(canvas, [&](int x, int y) {
        return isOnPlate(x - plateLeft, y - plateTop)
                   ? shadePlate(tone, x - plateLeft, y - plateTop, seconds)
                   : shadeTable(x, y, tone.loud);
    });
    drawName(canvas);
}
