// Dusk over a valley, ridge behind ridge, and paper lanterns that rise out of it.
#include "stage.h"
const char Intro_Title[] = "BQLV - Bluequay and Lantern Vale Inc. Intro";

namespace {
constexpr int ridgeCount = 5;
constexpr int lanternCount = 46;
constexpr Colour sky[] = {0x0A1038, 0x20285C, 0x504080, 0xB06080, 0xF8A878, 0xFFD8A0};

const Title sign = Letters_MakeTitle("BQLV", Face::Serif, 120);
const Lettering line =
    Letters_Make("Bluequay and Lantern Vale Inc.", Face::Serif, 30, Slant::Italic);

void drawSky(Canvas& canvas) {
    Canvas_Fill(canvas, [](float x, float y) {
        const float dx = (x - 380) / 420;
        return Colour_Ramp(sky, y / 265 - 0.12f * dx * dx);
    });
    for (int star = 0; star < 90; ++star) {
        const float x = Num_Hash(star, 1), y = Num_Hash(star, 2);
        Canvas_Add(canvas, int(x * 512), int(y * y * 160),
                   Colour_Scale(0xC0C8FF, (1 - y) * Num_Hash(star, 3)));
    }
}

float ridgeTop(int ridge, float x, float time) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const float shift = time * 9 * nearness * nearness + 300 * float(ridge);
    const float shape = Num_Clouds((x + shift) / (150 - 12 * float(ridge)), float(ridge), 4);
    return 190 + 150 * nearness - 130 * shape * (1.25f - 0.5f * nearness);
}

// Mist gathers at the foot of each ridge, so that the next one stands out.
void drawRidge(Canvas& canvas, int ridge, float time) {
    const float nearness = float(ridge + 1) / float(ridgeCount);
    const Colour rock = Colour_Mix(0x7C5488, 0x080E20, nearness);
    const Colour mist = Colour_Mix(0xE09890, 0x182848, nearness);
    for (int x = 0; x < Canvas_Width; ++x) {
        const float top = ridgeTop(ridge, float(x), time);
        for (int y = int(top); y < Canvas_Height; ++y) {
            const float down = float(y) - top, fog = 0.75f * Num_Smooth(0, 110, down);
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
void drawLanterns(Canvas& canvas, int ridge, float time) {
    for (int lantern = ridge; lantern < lanternCount; lantern += ridgeCount) {
        const float size = 1.8f + 1.9f * float(ridge) + 1.5f * Num_Hash(lantern, 3);
        const float rise = Num_Fract(Num_Hash(lantern) + time * (0.012f + 0.004f * size));
        const float way = Num_Fract(Num_Hash(lantern, 2) + 0.006f * time * size);
        const float sway = 16 * Num_Sin(0.07f * time + Num_Hash(lantern, 4));
        drawLantern(canvas, {way * 600 - 44 + sway, 404 - 440 * rise}, size,
                    0.8f + 0.2f * Num_Noise(5 * time, float(lantern) * 3));
    }
}

void drawSign(Canvas& canvas) {
    Letters_PaintTitle(canvas, sign, 12, 0x8C5050, [](float, float y) {
        return Colour_Mix(0xFFF8D8, 0xF89838, (y - 20) / 90);
    });
    Letters_Colour(canvas, line, Letters_Centred(line) + 1, 125, 0x301030);
    Letters_Colour(canvas, line, Letters_Centred(line), 124, 0xFFF0D8);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    drawSky(canvas);
    for (int ridge = 0; ridge < ridgeCount; ++ridge) {
        drawLanterns(canvas, ridge, time);
        drawRidge(canvas, ridge, time);
        if (ridge == 1)
            drawSign(canvas);
    }
    drawLanterns(canvas, ridgeCount - 1, time + 40);
}
