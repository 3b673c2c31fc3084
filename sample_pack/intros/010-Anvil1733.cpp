// A forge: fire, an anvil before it, and a hammer that strikes sparks in time.

#include "stage.h"

const char Intro_Title[] = "Anvil 1733 Intro";

namespace {

constexpr int fireWidth = Canvas_Width / 2, fireHeight = Canvas_Height / 2;
constexpr float secondsEach = 1.1f; // from stroke to stroke
constexpr int sparkCount = 130;
constexpr Colour heatColours[] = {0x060204, 0x300804, 0x801404, 0xD84008,
                                  0xFF9020, 0xFFE070, 0xFFFFE0};
constexpr Point iron = {268.0f, 254.0f};

const Title name = Letters_MakeTitle("ANVIL 1733", Face::Serif, 84);

float heat[fireHeight + 2][fireWidth + 1];

// New fuel comes and goes in clumps along the lower edge. Heat rises, spreads and is lost; a
// draught pushes a grain of it aside now and then.
void stepFire(int step) {
    for (int x = 0; x < fireWidth; ++x) {
        const float clump = Maths_Noise(float(x) / 11.0f, float(step) / 14.0f);
        const float lump = Maths_Hash(x / 2, step / 2);
        heat[fireHeight][x] = heat[fireHeight + 1][x] = 1.7f * clump * (0.35f + lump);
    }
    for (int y = 0; y < fireHeight; ++y)
        for (int x = 0; x < fireWidth; ++x) {
            const float chance = Maths_Hash(x + 7 * step, y);
            const int from = (x + (chance < 0.22f ? fireWidth - 1 : chance > 0.8f)) % fireWidth;
            const int left = (from + fireWidth - 1) % fireWidth, right = (from + 1) % fireWidth;
            const float sum = heat[y + 1][left] + 0.8f * heat[y + 1][from] + heat[y + 1][right] +
                              1.2f * heat[y + 2][from];
            heat[y][x] = std::fmax(0.25f * sum - 0.013f * chance, 0.0f);
        }
}

Colour shadeFire(int x, int y, float flash) {
    const float* row = heat[y / 2];
    const float mean = Maths_Between(&row[x / 2], &row[x / 2 + fireWidth + 1], 0.5f * float(x & 1),
                                     0.5f * float(y & 1));
    return Colour_Ramp(heatColours, 0.92f * mean + 0.05f * flash);
}

void drawAnvil(Canvas& canvas, float flash) {
    constexpr Point outline[] = {{112, 262}, {150, 252}, {190, 250}, {360, 250}, {392, 262},
                                 {392, 274}, {340, 284}, {308, 300}, {298, 326}, {304, 344},
                                 {344, 356}, {352, 384}, {152, 384}, {160, 356}, {200, 344},
                                 {206, 326}, {196, 302}, {170, 288}, {132, 278}};
    Canvas_PaintPolygon(canvas, outline, [=](float x, float y) {
        const float face = Maths_Smooth(258.0f, 250.0f, y);
        const float near = Maths_Clamp(1.0f - std::fabs(x - iron.x) / 130.0f);
        const float light =
            0.05f + 0.05f * Maths_Noise(x / 7.0f, y / 7.0f) + face * near * (0.35f + 0.5f * flash);
        return Colour_Make(light * 1.6f, light * 0.9f, light * 0.6f);
    });
    Canvas_Glow(canvas, iron, 46.0f + 50.0f * flash, 0xFF7018);
    Canvas_Bar(canvas, 228, 242, 84, 9, Colour_Mix(0xFF7818, 0xFFFFD0, 0.35f + 0.65f * flash));
}

// Up slowly, down at once; upright it stands behind the words.
void drawHammer(Canvas& canvas, float beat) {
    const float lift = 0.16f * Maths_Smooth(0.06f, 0.6f, beat) * Maths_Smooth(1.0f, 0.86f, beat);
    const float cosine = Maths_Cos(lift), sine = Maths_Sin(lift);
    const auto place = [=](float x, float y) {
        return Point{470.0f - x * cosine + y * sine, 236.0f - x * sine - y * cosine};
    };
    const Point head[] = {place(176, -6), place(222, -6), place(228, 38),
                          place(218, 48), place(180, 48), place(170, 38)};
    Canvas_Line(canvas, place(0, 0), place(230, 0), 10.0f, 0x38200C);
    Canvas_PaintPolygon(canvas, head, [](float x, float y) {
        return Colour_Scale(0x604030, 0.55f + 0.45f * Maths_Sin((x + y) / 120.0f));
    });
}

void drawSpark(Canvas& canvas, int spark, int stroke, float age) {
    const float angle = -0.5f * Maths_Hash(spark, stroke);
    const float speed = 60.0f + 330.0f * Maths_Hash(stroke, spark);
    const auto place = [=](float time) {
        return Point{iron.x + speed * time * Maths_Cos(angle),
                     iron.y - 8.0f + speed * time * Maths_Sin(angle) + 240.0f * time * time};
    };
    const float light = Maths_Clamp(1.1f - 1.2f * age * (0.6f + Maths_Hash(spark)));
    Canvas_Line(canvas, place(age), place(age + 0.022f), 1.0f + 1.2f * light,
                Colour_Ramp(heatColours, 0.3f + 0.7f * light));
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static int step = 0;
    for (int due = Stage_TakeSteps(seconds, 60.0f); due > 0; --due)
        stepFire(++step);
    const float beat = Maths_Fract(seconds / secondsEach), flash = Maths_Clamp(1.0f - 3.0f * beat);
    Canvas_Fill(canvas, [=](float x, float y) { return shadeFire(int(x), int(y), flash); });
    drawHammer(canvas, beat);
    Letters_PaintTitle(canvas, name, 26, 0x000000, [=](float x, float y) {
        const float grain = 0.2f * Maths_Noise(x / 6.0f, y / 6.0f);
        return Colour_Ramp(heatColours, 0.36f + 0.5f * y / 84.0f + 0.3f * flash + grain);
    });
    drawAnvil(canvas, flash);
    for (int spark = 0; spark < sparkCount; ++spark)
        drawSpark(canvas, spark, int(seconds / secondsEach), beat * secondsEach);
}
