// Finches over the dunes at dusk; the air keeps the way they flew as ribbons.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M7 Dunefinch";

const char Intro_Tune[] = R"(
// Finches at dusk: a light bossa in E minor; nylon strings, a whistled tune, chirps between.
tempo 126
volume 57
delay 3/16 30
reverb 55
whistle = sine adsr 25 80 85 90 vibrato 5.4 24 breath 3 glide 30 level 40 pan 12 delay 30 reverb 35
guitar = triangle adsr 1 420 5 90 lowpass 2600 20 sweep 1 50 level 24 pan -25 reverb 20
bass = triangle adsr 4 300 45 50 lowpass 700 20 level 60
finch = sine adsr 3 30 70 25 drop 10 40 vibrato 26 120 level 15 pan 55 delay 40 reverb 40
strings = saw adsr 300 400 75 500 lowpass 1600 10 detune 16 level 9 pan 20 reverb 45
shaker = noise adsr 12 45 0 15 highpass 6000 0 level 15 pan 35
stick = sine adsr 1 40 0 10 fm 2.2 2 20 key e6 level 20 pan -40 reverb 15
kick = sine adsr 1 140 0 20 drop 14 30 key c2 level 50
A whistle o5 l8 b4. a g4 f+4 | e4. f+ g4 b4 | a4. g f+4 e4 | d2. r4 | >c4. <b a4 g4 | f+4. g a4 >c4 | <b4. a g4 f+4 | b2. r4
A guitar o4 l8 [(e g b >d)4. (e g b >d) r (e g b >d) r (e g b >d)]2 | (e g a >c)4. (e g a >c) r (e g a >c) r (e g a >c) |
  (d f+ a >c)4. (d f+ a >c) r (d f+ a >c) r (d f+ a >c) | (e g b >c)4. (e g b >c) r (e g b >c) r (e g b >c) |
  (e f+ a >c)4. (e f+ a >c) r (e f+ a >c) r (e f+ a >c) | [(d+ f+ a b)4. (d+ f+ a b) r (d+ f+ a b) r (d+ f+ a b)]2
A bass o2 l4 e. b8 b. e8 | e. b8 b. e8 | a. e8 e. a8 | d. a8 a. d8 | c. g8 g. c8 | f+. c8 c. f+8 | b. f+8 f+. b8 | b. f+8 b a
B whistle o5 l8 g f+ e g b4. a | g f+ e4 >d2 | c <b a >c e4. d | c <b a4 f+2 | >d4 c4 <b4 a4 | b4 a4 g4 f+4 | g f+ e d+ e f+ g a | e2. r4
B guitar o4 l8 [(e g b >d)4. (e g b >d) r (e g b >d) r (e g b >d)]2 | (e g a >c)4. (e g a >c) r (e g a >c) r (e g a >c) |
  (d f+ a >c)4. (d f+ a >c) r (d f+ a >c) r (d f+ a >c) | (d g b)4. (d g b) r (d g b) r (d g b) |
  (e g b >c)4. (e g b >c) r (e g b >c) r (e g b >c) | (d+ f+ a >c)4. (d+ f+ a >c) r (d+ f+ a b) r (d+ f+ a b) | (e g b >d)4. (e g b >d) r (e g b) r (e g b)
B bass o2 l4 e. b8 b. e8 | e. b8 b. e8 | a. e8 e. a8 | d. a8 a. d8 | g. d8 d. g8 | c. g8 g. c8 | f+. c8 b. f+8 | e. b8 e r
B strings o4 l1 b | >d | c | <a | >d | c | <a | g
A finch o7 l16 r1 | r1 | r1 | r4 e g r e r4 r4 | r1 | r1 | r1 | r4 g e g r8 e r8 r4
B finch o7 l16 r1 | r2 r g e r r4 | r1 | r2 e r g r b r8. | r1 | r1 | r1 | r4 b g b g r2
A shaker l8 v90 x v50 x x v80 x v50 x x v90 x v50 x
B shaker l8 v90 x v50 x x v80 x v50 x x v90 x v50 x
A stick l8 x r r x r r x r | r r x r r x r r
B stick l8 x r r x r r x r | r r x r r x r r
A kick l8 x r r x x r r x
B kick l8 x r r x x r r x
play |: A A B A B
)";

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
    const float beat = Num_Sin(2 * Music_BeatAt(time) + 0.27f * float(finch));
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
