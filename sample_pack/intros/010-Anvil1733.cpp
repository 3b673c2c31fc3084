// A forge: fire, an anvil before it, and a hammer that strikes sparks in time.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Anvil 1733 Intro";

namespace {

constexpr int fireWidth = Canvas_Width / 2, fireHeight = Canvas_Height / 2;
constexpr float secondsEach = 1.1f; // from stroke to stroke
constexpr int sparkCount = 130;
constexpr Colour heatColours[] = {0x060204, 0x300804, 0x801404, 0xD84008,
                                  0xFF9020, 0xFFE070, 0xFFFFE0};
constexpr Point ironPlace = {268.0f, 254.0f};

const Lettering name = Letters_Make("ANVIL 1733", Face::Serif, 84);
const Lettering nameShadow = Letters_Soften(name, 10);

float heat[fireHeight + 2][fireWidth];

// New fuel along the lower edge, in clumps that come and go.
void feedFire(int step) {
    for (int x = 0; x < fireWidth; ++x) {
        const float clump = Maths_Noise(float(x) / 11.0f, float(step) / 14.0f);
        const float lump = Maths_Hash(x / 2, step / 2);
        heat[fireHeight][x] = heat[fireHeight + 1][x] = 1.7f * clump * (0.35f + lump);
    }
}

// Heat rises, spreads and is lost; a draught pushes a grain of it aside now and then.
void stepFire(int step) {
    feedFire(step);
    for (int y = 0; y < fireHeight; ++y)
        for (int x = 0; x < fireWidth; ++x) {
            const float chance = Maths_Hash(x + 7 * step, y);
            const int draught = chance < 0.22f ? -1 : chance > 0.80f ? 1 : 0;
            const int from = (x + draught + fireWidth) % fireWidth;
            const int left = (from + fireWidth - 1) % fireWidth, right = (from + 1) % fireWidth;
            const float below = heat[y + 1][left] + heat[y + 1][right];
            const float sum = below + 0.8f * heat[y + 1][from] + 1.2f * heat[y + 2][from];
            heat[y][x] = std::fmax(0.25f * sum - 0.013f * chance, 0.0f);
        }
}

void drawFire(Canvas& canvas, float flash) {
    Canvas_Fill(canvas, [=](int x, int y) {
        const int column = x / 2, row = y / 2;
        const float mean = 0.25f * (heat[row][column] + heat[(y + 1) / 2][column] +
                                    heat[row][(x + 1) / 2 % fireWidth] + heat[row + 1][column]);
        return Colour_Ramp(heatColours, 0.92f * mean + 0.05f * flash);
    });
}

void drawAnvil(Canvas& canvas, float flash) {
    constexpr Point outline[] = {{112, 262}, {150, 252}, {190, 250}, {360, 250}, {392, 262},
                                 {392, 274}, {340, 284}, {308, 300}, {298, 326}, {304, 344},
                                 {344, 356}, {352, 384}, {152, 384}, {160, 356}, {200, 344},
                                 {206, 326}, {196, 302}, {170, 288}, {132, 278}};
    Canvas_PaintPolygon(outline, 19, [&](int x, int y, float share) {
        const float face = Maths_Smooth(258.0f, 250.0f, float(y));
        const float near = 1.0f - std::fabs(float(x) - ironPlace.x) / 130.0f;
        const float light = 0.05f + 0.05f * Maths_Noise(float(x) / 7.0f, float(y) / 7.0f) +
                            face * Maths_Clamp(near) * (0.35f + 0.5f * flash);
        Canvas_Blend(canvas, x, y, Colour_Make(light * 1.6f, light * 0.9f, light * 0.6f), share);
    });
    Canvas_Glow(canvas, ironPlace, 46.0f + 50.0f * flash, 0xFF7018);
    Canvas_Bar(canvas, 228, 242, 84, 9, Colour_Mix(0xFF7818, 0xFFFFD0, 0.35f + 0.65f * flash));
}

// Up slowly, down at once; upright it stands behind the words.
void drawHammer(Canvas& canvas, float beat) {
    const float lift = Maths_Smooth(0.06f, 0.6f, beat) * Maths_Smooth(1.0f, 0.86f, beat);
    const float cosine = Maths_Cos(0.16f * lift), sine = Maths_Sin(0.16f * lift);
    const auto place = [=](float x, float y) {
        return Point{470.0f - (x * cosine - y * sine), 236.0f - (x * sine + y * cosine)};
    };
    const Point handle[] = {place(0, -5), place(230, -5), place(230, 5), place(0, 5)};
    const Point head[] = {place(176, -6), place(222, -6), place(228, 38),
                          place(218, 48), place(180, 48), place(170, 38)};
    Canvas_Polygon(canvas, handle, 4, 0x38200C);
    Canvas_PaintPolygon(head, 6, [&](int x, int y, float share) {
        const float light = 0.12f + 0.10f * Maths_Sin(float(x + y) / 120.0f);
        Canvas_Blend(canvas, x, y, Colour_Make(light * 1.5f, light, light * 0.8f), share);
    });
}

void drawSpark(Canvas& canvas, int spark, int stroke, float age) {
    const float angle = -0.5f * Maths_Hash(spark, stroke);
    const float speed = 60.0f + 330.0f * Maths_Hash(stroke, spark);
    const auto place = [=](float time) {
        return Point{ironPlace.x + speed * time * Maths_Cos(angle),
                     ironPlace.y - 8.0f + speed * time * Maths_Sin(angle) + 240.0f * time * time};
    };
    const float light = Maths_Clamp(1.1f - 1.2f * age * (0.6f + Maths_Hash(spark)));
    Canvas_Line(canvas, place(age), place(age + 0.022f), 1.0f + 1.2f * light,
                Colour_Ramp(heatColours, 0.3f + 0.7f * light));
}

void drawName(Canvas& canvas, float flash) {
    const int left = Letters_Centred(name), top = 26;
    for (int thrice = 0; thrice < 3; ++thrice)
        Letters_Colour(canvas, nameShadow, left - 10, top - 8, 0x000000);
    Letters_Paint(canvas, name, left, top, [=](int x, int y) {
        const float grain = 0.2f * Maths_Noise(float(x) / 6.0f, float(y) / 6.0f);
        return Colour_Ramp(heatColours, 0.36f + 0.5f * float(y) / 84.0f + 0.3f * flash + grain);
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static int step = 0;
    for (int due = Stage_TakeSteps(seconds, 60.0f); due > 0; --due)
        stepFire(++step);
    const float beat = Maths_Fract(seconds / secondsEach);
    const float flash = Maths_Clamp(1.0f - 3.0f * beat);
    drawFire(canvas, flash);
    drawHammer(canvas, beat);
    drawName(canvas, flash);
    drawAnvil(canvas, flash);
    for (int spark = 0; spark < sparkCount; ++spark)
        drawSpark(canvas, spark, int(seconds / secondsEach), beat * secondsEach);
}
