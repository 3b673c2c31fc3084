// Dusk over a valley, ridge behind ridge, and paper lanterns that rise out of it.

#include "stage.h"

const char Intro_Title[] = "BQLV - Bluequay and Lantern Vale Inc. Intro";

namespace {

constexpr int ridgeCount = 5;
constexpr int lanternCount = 46;
constexpr Colour sky[] = {0x0A1038, 0x20285C, 0x504080, 0xB06080, 0xF8A878, 0xFFD8A0};

const Title sign = Letters_MakeTitle("BQLV", Face::Serif, 120, Slant::Upright, 1.15f);
const Lettering below =
    Letters_Make("Bluequay and Lantern Vale Inc.", Face::Serif, 30, Slant::Italic);

void drawSky(Canvas& canvas) {
    Canvas_Fill(canvas, [](float x, float y) {
        const float dx = (x - 380.0f) / 420.0f;
        return Colour_Ramp(sky, y / 265.0f - 0.12f * dx * dx);
    });
    for (int star = 0; star < 90; ++star) {
        const float x = Maths_Hash(star, 1), y = Maths_Hash(star, 2);
        Canvas_Add(canvas, int(x * 512.0f), int(y * y * 160.0f),
                   Colour_Scale(0xC0C8FF, (1.0f - y) * Maths_Hash(star, 3)));
    }
}

float ridgeTop(int ridge, float x, float seconds) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const float shift = seconds * 9.0f * nearness * nearness + 300.0f * float(ridge);
    const float shape =
        Maths_Clouds((x + shift) / (150.0f - 12.0f * float(ridge)), float(ridge), 4);
    return 190.0f + 150.0f * nearness - 130.0f * shape * (1.25f - 0.5f * nearness);
}

// Mist gathers at the foot of each ridge, so that the next one stands out.
void drawRidge(Canvas& canvas, int ridge, float seconds) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const Colour rock = Colour_Mix(0x7C5488, 0x080E20, nearness);
    const Colour mist = Colour_Mix(0xE09890, 0x182848, nearness);
    for (int x = 0; x < Canvas_Width; ++x) {
        const float top = ridgeTop(ridge, float(x), seconds);
        for (int y = int(top); y < Canvas_Height; ++y) {
            const float down = float(y) - top, fog = 0.75f * Maths_Smooth(0.0f, 110.0f, down);
            Canvas_Blend(canvas, x, y, Colour_Mix(rock, mist, fog), down + 0.9f);
        }
    }
}

void drawLantern(Canvas& canvas, Point at, float size, float flicker) {
    Canvas_Glow(canvas, at, 5.5f * size, Colour_Scale(0xFF8828, 0.5f * flicker));
    const auto place = [=](float x, float y) { return Point{at.x + x * size, at.y + y * size}; };
    const Point outline[] = {place(-0.62f, 0.9f), place(-0.95f, -0.8f), place(-0.4f, -1.25f),
                             place(0.4f, -1.25f), place(0.95f, -0.8f),  place(0.62f, 0.9f)};
    Canvas_PaintPolygon(canvas, outline, [=](float x, float y) {
        const float height = (at.y + 0.9f * size - y) / (2.1f * size);
        const float side = std::fabs(x - at.x) / size;
        return Colour_Scale(Colour_Mix(0xFFF0A0, 0xE85010, height + 0.4f * side - 0.1f),
                            0.75f + 0.25f * flicker);
    });
}

// Lanterns of one depth: those of a far ridge are small, and pass behind the nearer ones.
void drawLanterns(Canvas& canvas, int ridge, float seconds) {
    for (int lantern = ridge; lantern < lanternCount; lantern += ridgeCount) {
        const float size = 1.8f + 1.9f * float(ridge) + 1.5f * Maths_Hash(lantern, 3);
        const float rise = Maths_Fract(Maths_Hash(lantern) + seconds * (0.012f + 0.004f * size));
        const float way = Maths_Fract(Maths_Hash(lantern, 2) + 0.006f * seconds * size);
        const float sway = 16.0f * Maths_Sin(0.07f * seconds + Maths_Hash(lantern, 4));
        drawLantern(canvas, {way * 600.0f - 44.0f + sway, 404.0f - 440.0f * rise}, size,
                    0.8f + 0.2f * Maths_Noise(5.0f * seconds, float(lantern) * 3.0f));
    }
}

void drawSign(Canvas& canvas) {
    Letters_PaintTitle(canvas, sign, 12, 0x8C5050, [](float, float y) {
        return Colour_Mix(0xFFF8D8, 0xF89838, (y - 20.0f) / 90.0f);
    });
    Letters_Colour(canvas, below, Letters_Centred(below) + 1, 125, 0x301030);
    Letters_Colour(canvas, below, Letters_Centred(below), 124, 0xFFF0D8);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    drawSky(canvas);
    for (int ridge = 0; ridge < ridgeCount; ++ridge) {
        drawLanterns(canvas, ridge, seconds);
        drawRidge(canvas, ridge, seconds);
        if (ridge == 1)
            drawSign(canvas);
    }
    drawLanterns(canvas, ridgeCount - 1, seconds + 40.0f);
}
