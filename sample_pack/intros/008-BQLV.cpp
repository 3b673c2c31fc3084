// Dusk over a valley, ridge behind ridge, and paper lanterns that rise out of it.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "BQLV - Bluequay and Lantern Vale Inc. Intro";

namespace {

constexpr int ridgeCount = 5;
constexpr int lanternCount = 46;
constexpr Colour sky[] = {0x0A1038, 0x20285C, 0x504080, 0xB06080, 0xF8A878, 0xFFD8A0};

const Lettering sign = Letters_Make("BQLV", Face::Serif, 120, Slant::Upright, 1.15f);
const Lettering signShine = Letters_Soften(sign, 20);
const Lettering below =
    Letters_Make("Bluequay and Lantern Vale Inc.", Face::Serif, 30, Slant::Italic);

float ridgeHeight(int ridge, float x, float seconds) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const float shift = seconds * 9.0f * nearness * nearness + 300.0f * float(ridge);
    const float shape =
        Maths_Clouds((x + shift) / (150.0f - 12.0f * float(ridge)), float(ridge), 4);
    return 190.0f + 150.0f * nearness - 130.0f * shape * (1.25f - 0.5f * nearness);
}

void drawSky(Canvas& canvas) {
    Canvas_Fill(canvas, [](int x, int y) {
        const float dx = (float(x) - 380.0f) / 420.0f;
        return Colour_Ramp(sky, float(y) / 265.0f - 0.12f * dx * dx);
    });
    for (int star = 0; star < 90; ++star) {
        const float x = Maths_Hash(star, 1), y = Maths_Hash(star, 2);
        Canvas_Add(canvas, int(x * Canvas_Width), int(y * y * 160.0f),
                   Colour_Scale(0xC0C8FF, (1.0f - y) * Maths_Hash(star, 3)));
    }
}

// Mist gathers at the foot of each ridge, so that the next one stands out.
void drawRidge(Canvas& canvas, int ridge, float seconds) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const Colour rock = Colour_Mix(0x7C5488, 0x080E20, nearness);
    const Colour mist = Colour_Mix(0xE09890, 0x182848, nearness);
    for (int x = 0; x < Canvas_Width; ++x) {
        const float top = ridgeHeight(ridge, float(x), seconds);
        for (int y = int(top); y < Canvas_Height; ++y) {
            const float fog = Maths_Smooth(0.0f, 110.0f, float(y) - top);
            Canvas_Blend(canvas, x, y, Colour_Mix(rock, mist, 0.75f * fog), float(y) - top + 0.9f);
        }
    }
}

void drawLantern(Canvas& canvas, Point foot, float size, float flicker) {
    Canvas_Glow(canvas, foot, 5.5f * size, Colour_Scale(0xFF8828, 0.5f * flicker));
    const Point outline[] = {{foot.x - 0.62f * size, foot.y + 0.9f * size},
                             {foot.x - 0.95f * size, foot.y - 0.8f * size},
                             {foot.x - 0.4f * size, foot.y - 1.25f * size},
                             {foot.x + 0.4f * size, foot.y - 1.25f * size},
                             {foot.x + 0.95f * size, foot.y - 0.8f * size},
                             {foot.x + 0.62f * size, foot.y + 0.9f * size}};
    Canvas_PaintPolygon(outline, 6, [&](int x, int y, float share) {
        const float height = (foot.y + 0.9f * size - float(y)) / (2.1f * size);
        const float side = std::fabs(float(x) - foot.x) / size;
        const Colour paper =
            Colour_Mix(0xFFF0A0, 0xE85010, Maths_Clamp(height + 0.4f * side - 0.1f));
        Canvas_Blend(canvas, x, y, Colour_Scale(paper, 0.75f + 0.25f * flicker), share);
    });
}

// Lanterns of one depth: those of a far ridge are small, and pass behind the nearer ones.
void drawLanterns(Canvas& canvas, int ridge, float seconds) {
    for (int lantern = ridge; lantern < lanternCount; lantern += ridgeCount) {
        const float size = 1.8f + 1.9f * float(ridge) + 1.5f * Maths_Hash(lantern, 3);
        const float rise = Maths_Fract(Maths_Hash(lantern) + seconds * (0.012f + 0.004f * size));
        const float sway = 16.0f * Maths_Sin(0.07f * seconds + Maths_Hash(lantern, 4));
        const float drift = 0.006f * seconds * size;
        const Point foot = {Maths_Fract(Maths_Hash(lantern, 2) + drift) * 600.0f - 44.0f + sway,
                            float(Canvas_Height) + 20.0f - 440.0f * rise};
        drawLantern(canvas, foot, size,
                    0.8f + 0.2f * Maths_Noise(5.0f * seconds, float(lantern) * 3.0f));
    }
}

void drawSign(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(sign), top = 12;
    Letters_Shine(canvas, signShine, left - 20, top - 20,
                  Colour_Scale(0xFF9840, 0.45f + 0.15f * Maths_Noise(3.0f * seconds, 0.0f)));
    Letters_Paint(canvas, sign, left, top,
                  [](int, int y) { return Colour_Mix(0xFFF8D8, 0xF89838, float(y - 20) / 90.0f); });
    Letters_Colour(canvas, below, Letters_Centred(below) + 1, top + 113, 0x301030);
    Letters_Colour(canvas, below, Letters_Centred(below), top + 112, 0xFFF0D8);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    drawSky(canvas);
    for (int ridge = 0; ridge < ridgeCount; ++ridge) {
        drawLanterns(canvas, ridge, seconds);
        drawRidge(canvas, ridge, seconds);
        if (ridge == 1)
            drawSign(canvas, seconds);
    }
    drawLanterns(canvas, ridgeCount - 1, seconds + 40.0f);
}
