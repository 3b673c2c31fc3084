// Finches over the dunes at dusk; the air keeps the way they flew as ribbons.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M7 Dunefinch";

namespace {
constexpr int finchCount = 4;
constexpr int parts = 130;
constexpr float pace = 0.022f;
constexpr Colour ribbons[] = {0xFFD040, 0xFF4858, 0x40D0C0, 0xC870FF};
constexpr Colour sky[] = {0x28103C, 0x601848, 0xA82C48, 0xE85C38, 0xFFA848};

const Title name = Letters_MakeTitle("Dunefinch", Face::Serif, 80, Slant::Italic);

// Two swings of different pace, one across and one up and down.
Point flyTo(int finch, float time) {
    const float paceX = 0.113f + 0.017f * float(finch), paceY = 0.171f - 0.013f * float(finch);
    const float phase = 0.19f * float(finch);
    return {Canvas_MidX + 220 * Num_Sin(paceX * time + phase),
            158 + 124 * Num_Sin(paceY * time + 2 * phase) + 14 * Num_Sin(0.5f * time + phase)};
}

Colour shadeSky(float x, float y) {
    const float dx = x - 150, dy = y - 236, away = std::sqrt(dx * dx + dy * dy);
    const Colour glow = Colour_Scale(0xFF9040, 22 / (away + 14) - 0.08f);
    return Colour_Mix(Colour_Add(Colour_Ramp(sky, y / 270), glow), 0xFFF0B0, 46 - away);
}

// Sharp ridges, round valleys.
float duneTop(int dune, float x, float time) {
    const float number = float(dune), shift = x + 5 * (number + 1) * time + 210 * number;
    const float crest = 1 - std::fabs(Num_Sin(shift / (560 - 70 * number)));
    return 292 + 30 * number - (34 - 4 * number) * crest * crest - 6 * Num_Sin(shift / 170);
}

// The side towards the sun is lit, the lee lies in violet shade; ridges run down aslant.
Colour shadeDune(int dune, float x, float depth, float time) {
    const float nearness = float(dune) / 3, foot = x + 0.9f * depth;
    const float slope = duneTop(dune, foot + 2, time) - duneTop(dune, foot, time);
    const float lit = Num_Smooth(0.35f, -0.55f, slope) * (1 - 0.45f * nearness);
    const float rib = 0.95f + 0.05f * Num_Sin((depth + 0.3f * x) / 13);
    const float sunk = Num_Clamp(depth / 90) * (0.55f + 0.4f * nearness);
    return Colour_Scale(Colour_Mix(Colour_Mix(0x481838, 0xE87840, lit), 0x28102C, sunk), rib);
}

void drawDune(Canvas& canvas, int dune, float time) {
    for (int x = 0; x < Canvas_Width; ++x) {
        const float top = duneTop(dune, float(x), time);
        for (int y = int(top); y < Canvas_Height; ++y) {
            const float depth = float(y) - top;
            Canvas_Blend(canvas, x, y, shadeDune(dune, float(x), depth, time), depth + 0.9f);
        }
    }
}

// A band that twists on its way: broad, then edge-on, its two sides of different brightness. Each
// part reaches a little into the next, so that no seam is seen.
void drawRibbon(Canvas& canvas, int finch, float time) {
    for (int part = parts; part > 0; --part) {
        const float age = float(part) / float(parts), moment = time - float(part) * pace;
        const Point from = flyTo(finch, moment), to = flyTo(finch, moment + 1.3f * pace);
        const float twist = Num_Sin(0.8f * moment + 0.3f * float(finch));
        const float width = (14 * std::fabs(twist) + 0.8f) * (1 - age * age);
        const Colour silk = Colour_Mix(ribbons[finch], 0x902840, 0.7f * age);
        const float light = twist > 0 ? 0.75f + 0.25f * twist : 0.55f;
        const Point band[] = {{from.x, from.y - width},
                              {to.x, to.y - width},
                              {to.x, to.y + width},
                              {from.x, from.y + width}};
        Canvas_Polygon(canvas, band, Colour_Scale(silk, light));
    }
}

void drawFinch(Canvas& canvas, int finch, float time) {
    const Point at = flyTo(finch, time);
    const float side = flyTo(finch, time + 0.05f).x > at.x ? 1 : -1;
    const float beat = Num_Sin(3.2f * time + 0.27f * float(finch));
    const auto place = [=](float x, float y) { return Point{at.x + side * x, at.y + y}; };
    const Point body[] = {place(17, -2), place(11, -7), place(4, -7), place(-9, -1), place(-22, 2),
                          place(-20, 5), place(-7, 6),  place(6, 6),  place(12, 2)};
    const float lift = 20 * beat;
    Canvas_Polygon(canvas, body, 0x200C18);
    Canvas_Polygon(canvas,
                   {place(6, -4), place(-4, -6 - lift), place(-12, -4 - lift), place(-7, 1)},
                   0x401828);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, shadeSky);
    for (int dune = 0; dune < 2; ++dune)
        drawDune(canvas, dune, time);
    for (int finch = 0; finch < finchCount; ++finch)
        drawRibbon(canvas, finch, time);
    for (int dune = 2; dune < 4; ++dune)
        drawDune(canvas, dune, time);
    for (int finch = 0; finch < finchCount; ++finch)
        drawFinch(canvas, finch, time);
    Letters_PaintTitle(canvas, name, 296, 0x1C0820, [](float, float y) {
        return Colour_Mix(0xFFF4D0, 0xFF8040, (y - 10) / 62);
    });
}
