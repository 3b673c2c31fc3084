// Finches over the dunes at dusk; the air keeps the way they flew as ribbons.

#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 M7 Dunefinch";

namespace {

constexpr int finchCount = 4;
constexpr int ribbonParts = 130;
constexpr float partSeconds = 0.022f;
constexpr Colour ribbons[] = {0xFFD040, 0xFF4858, 0x40D0C0, 0xC870FF};
constexpr Colour sky[] = {0x28103C, 0x601848, 0xA82C48, 0xE85C38, 0xFFA848};

const Title name = Letters_MakeTitle("Dunefinch", Face::Serif, 80, Slant::Italic);

// Two swings of different pace, one across and one up and down.
Point flyTo(int finch, float seconds) {
    const float paceX = 0.113f + 0.017f * float(finch), paceY = 0.171f - 0.013f * float(finch);
    const float phase = 0.19f * float(finch);
    return {Canvas_CentreX + 220.0f * Maths_Sin(paceX * seconds + phase),
            158.0f + 124.0f * Maths_Sin(paceY * seconds + 2.0f * phase) +
                14.0f * Maths_Sin(0.5f * seconds + phase)};
}

Colour shadeSky(float x, float y) {
    const float dx = x - 150.0f, dy = y - 236.0f, away = std::sqrt(dx * dx + dy * dy);
    const Colour glow = Colour_Scale(0xFF9040, 22.0f / (away + 14.0f) - 0.08f);
    return Colour_Mix(Colour_Add(Colour_Ramp(sky, y / 270.0f), glow), 0xFFF0B0, 46.0f - away);
}

// Sharp ridges, round valleys.
float duneTop(int dune, float x, float seconds) {
    const float number = float(dune),
                shift = x + 5.0f * (number + 1.0f) * seconds + 210.0f * number;
    const float crest = 1.0f - std::fabs(Maths_Sin(shift / (560.0f - 70.0f * number)));
    return 292.0f + 30.0f * number - (34.0f - 4.0f * number) * crest * crest -
           6.0f * Maths_Sin(shift / 170.0f);
}

// The side towards the sun is lit, the lee lies in violet shade; ridges run down aslant.
Colour shadeDune(int dune, float x, float depth, float seconds) {
    const float nearness = float(dune) / 3.0f, foot = x + 0.9f * depth;
    const float slope = duneTop(dune, foot + 2.0f, seconds) - duneTop(dune, foot, seconds);
    const float lit = Maths_Smooth(0.35f, -0.55f, slope) * (1.0f - 0.45f * nearness);
    const float rib = 0.95f + 0.05f * Maths_Sin((depth + 0.3f * x) / 13.0f);
    const float sunk = Maths_Clamp(depth / 90.0f) * (0.55f + 0.4f * nearness);
    return Colour_Scale(Colour_Mix(Colour_Mix(0x481838, 0xE87840, lit), 0x28102C, sunk), rib);
}

void drawDune(Canvas& canvas, int dune, float seconds) {
    for (int x = 0; x < Canvas_Width; ++x) {
        const float top = duneTop(dune, float(x), seconds);
        for (int y = int(top); y < Canvas_Height; ++y) {
            const float depth = float(y) - top;
            Canvas_Blend(canvas, x, y, shadeDune(dune, float(x), depth, seconds), depth + 0.9f);
        }
    }
}

// A band that twists on its way: broad, then edge-on, its two sides of different brightness. Each
// part reaches a little into the next, so that no seam is seen.
void drawRibbon(Canvas& canvas, int finch, float seconds) {
    for (int part = ribbonParts; part > 0; --part) {
        const float age = float(part) / float(ribbonParts),
                    moment = seconds - float(part) * partSeconds;
        const Point from = flyTo(finch, moment), to = flyTo(finch, moment + 1.3f * partSeconds);
        const float twist = Maths_Sin(0.8f * moment + 0.3f * float(finch));
        const float width = (14.0f * std::fabs(twist) + 0.8f) * (1.0f - age * age);
        const Colour silk = Colour_Mix(ribbons[finch], 0x902840, 0.7f * age);
        Canvas_Polygon(canvas,
                       {{from.x, from.y - width},
                        {to.x, to.y - width},
                        {to.x, to.y + width},
                        {from.x, from.y + width}},
                       Colour_Scale(silk, twist > 0.0f ? 0.75f + 0.25f * twist : 0.55f));
    }
}

void drawFinch(Canvas& canvas, int finch, float seconds) {
    const Point at = flyTo(finch, seconds);
    const float side = flyTo(finch, seconds + 0.05f).x > at.x ? 1.0f : -1.0f;
    const float beat = Maths_Sin(3.2f * seconds + 0.27f * float(finch));
    const auto place = [=](float x, float y) { return Point{at.x + side * x, at.y + y}; };
    Canvas_Polygon(canvas,
                   {place(17, -2), place(11, -7), place(4, -7), place(-9, -1), place(-22, 2),
                    place(-20, 5), place(-7, 6), place(6, 6), place(12, 2)},
                   0x200C18);
    Canvas_Polygon(canvas,
                   {place(6, -4), place(-4, -6.0f - 20.0f * beat), place(-12, -4.0f - 17.0f * beat),
                    place(-7, 1)},
                   0x401828);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    Canvas_Fill(canvas, shadeSky);
    for (int dune = 0; dune < 2; ++dune)
        drawDune(canvas, dune, seconds);
    for (int finch = 0; finch < finchCount; ++finch)
        drawRibbon(canvas, finch, seconds);
    for (int dune = 2; dune < 4; ++dune)
        drawDune(canvas, dune, seconds);
    for (int finch = 0; finch < finchCount; ++finch)
        drawFinch(canvas, finch, seconds);
    Letters_PaintTitle(canvas, name, 296, 0x1C0820, [](float, float y) {
        return Colour_Mix(0xFFF4D0, 0xFF8040, (y - 10.0f) / 62.0f);
    });
}
