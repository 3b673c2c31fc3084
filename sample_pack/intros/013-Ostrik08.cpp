// A flight over the mountains, drawn column by column from a map of heights, past marmots who sit
// up to look.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 8 Marmots";

const char Intro_Tune[] = R"(
// A country dance of the mountains in G: concertina, a yodel that leaps, and a marmot's whistle.
tempo 168
meter 3/4
volume 78
delay 3/8 20
reverb 65
concertina = pulse width 38 adsr 25 100 85 80 lowpass 2600 10 detune 12 level 17 pan -20 reverb 18
yodel = triangle adsr 20 80 85 120 vibrato 5.5 18 breath 3 level 44 pan 10 delay 25 reverb 35
bass = triangle adsr 4 260 30 60 level 52
chord = pulse width 30 adsr 4 120 20 40 lowpass 2000 10 level 15 pan 30 reverb 15
whistle = sine adsr 8 60 80 60 drop -7 60 vibrato 20 30 level 22 pan 45 delay 40 reverb 60
bells = sine adsr 1 600 0 200 fm 1.48 2.2 300 level 12 pan -50 reverb 30
A yodel o5 l4 d g b | >d2 <b | a b >c | <a2. | d f+ a | >c2 <a | b a g | b2. |
  d g b | >d2 g | e d c | <a2. | d f+ a | >c <a f+ | g2. | r2.
A bass o2 l4 g r r d r r a r r d r r d r r a r r g r r b r r g r r d r r >c< r r a r r d r r d r r g r r g d g
A chord o4 l4 [r (d g b) (d g b)]2 r (c e a) (c e a) r (c f+ a) (c f+ a)
  [r (c f+ a) (c f+ a)]2 [r (d g b) (d g b)]2 [r (d g b) (d g b)]2 r (e g >c) (e g >c) r (c e a) (c e a)
  [r (c f+ a) (c f+ a)]2 r (d g b) (d g b) r2.
A bells l2. o6 d | r | r | a | r | r | g | r
B concertina o5 l8 b4 >d4 <b4 | a b >c4 <a4 | g a b4 g4 | f+2. | e4 g4 e4 | d e f+4 d4 | c+ d e4 c+4 | d2. |
  b4 >d4 <b4 | a b >c4 e4 | d c <b4 g4 | e2. | a b >c4 <a4 | f+ g a4 f+4 | g4 d4 <b4 | >g2.
B bass o2 l4 g r r d r r g r r d r r c r r g r r a r r d r r g r r a r r g r r c r r a r r d r r g r d g r r
B chord o4 l4 r (d g b) (d g b) r (c f+ a) (c f+ a) r (d g b) (d g b) r (d f+ a) (d f+ a)
  r (c e g) (c e g) r (d f+ a) (d f+ a) r (c+ e a) (c+ e a) r (d f+ a) (d f+ a)
  r (d g b) (d g b) r (c e a) (c e a) r (d g b) (d g b) r (c e g) (c e g)
  r (c e a) (c e a) r (c f+ a) (c f+ a) [r (d g b) (d g b)]2
A whistle o7 l8 [r2.]14 | r2. | r4 d4 d4
B whistle o7 l8 [r2.]3 | r4 d r d r | [r2.]3 | r4 e r e r | [r2.]7 | r4 d d d4
play |: A B A B A+5
)";

namespace {
constexpr int mapSize = 512, mask = mapSize - 1;
constexpr float farthest = 420;

const Title name = Letters_MakeTitle("Marmots", Face::Serif, 80);

uint8_t heights[mapSize][mapSize];
Colour ground[mapSize][mapSize];

// Hills that meet themselves at the borders of the map.
float shapeHill(float x, float y) {
    constexpr float size = mapSize;
    const float wide = Num_Sin(x / size) * Num_Cos(y / size) * 0.3f;
    const float fold = Num_Sin((3 * x + 2 * y) / size) * 0.18f;
    return Num_Clamp(0.1f + wide + fold + 0.75f * Num_ClosedClouds(x, y, size, 64, 6));
}

// Meadow, rock and snow, one above the other, lit from the side.
Colour shadeHill(int x, int y) {
    const float height = float(heights[y][x]) / 255, grit = Num_Hash(x, y);
    const float slope = float(heights[y][(x + 2) & mask] - heights[y][(x - 2) & mask]) / 40;
    const Colour meadow = Colour_Mix(0x2C5C20, 0x8CB040, height * 1.6f + 0.25f * grit - 0.2f);
    const Colour rock = Colour_Mix(meadow, 0x84786C, Num_Smooth(0.44f, 0.6f, height + grit / 20));
    const Colour snow = Colour_Mix(rock, 0xF8FCFF, Num_Smooth(0.6f, 0.7f, height + grit / 30));
    return Colour_Scale(snow, Num_Clamp(0.72f + 0.6f * slope, 0.3f, 1));
}

void makeMap() {
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            heights[y][x] = uint8_t(254 * shapeHill(float(x), float(y)));
    for (int y = 0; y < mapSize; ++y)
        for (int x = 0; x < mapSize; ++x)
            ground[y][x] = shadeHill(x, y);
}

Colour shadeSky(float x, float y, float time) {
    const float cloud = Num_Clouds(x / 120 + 0.1f * time, y / 34, 4);
    const Colour blue = Colour_Mix(0x2868C8, 0xC8E4F8, y / 158);
    return Colour_Mix(blue, 0xFFFFFF, Num_Smooth(0.48f, 0.75f, cloud));
}

// From near to far: each part of the ground that stands higher than all before it is seen.
void drawColumn(Canvas& canvas, int column, float turn, Point eye) {
    const float side = (float(column) - Canvas_MidX) / 300;
    const float stepX = Num_Cos(turn) - side * Num_Sin(turn);
    const float stepY = Num_Sin(turn) + side * Num_Cos(turn);
    int covered = Canvas_Height;
    for (float depth = 26, step = 0.8f; depth < farthest && covered > 0; depth += step) {
        const int x = int(eye.x + depth * stepX) & mask, y = int(eye.y + depth * stepY) & mask;
        const float drop = 265 - 0.9f * float(heights[y][x]);
        const int top = std::max(int(78 + 115 * drop / depth), 0);
        if (top < covered) {
            const float haze = Num_Smooth(120, farthest, depth);
            Canvas_Bar(canvas, column, top, 1, covered - top,
                       Colour_Mix(ground[y][x], 0xB8D4EC, haze));
            covered = top;
        }
        step += 0.010f;
    }
}

// Round parts, furred: place and size, from the feet upwards.
struct Part {
    float x, y, wide, high;
    Colour fur;
};
constexpr Part parts[] = {
    {0, 28, 36, 44, 0x9C7448},    {-5, 30, 20, 34, 0xD0A468},     {-2, 86, 23, 22, 0xA87C4C},
    {13, 104, 7, 7, 0x7C5430},    {-15, 104, 6, 7, 0x8C6038},     {-16, 80, 13, 10, 0xE0C090},
    {-26, 84, 4.5f, 4, 0x201810}, {-9, 92, 3.6f, 4.2f, 0x100808}, {-10, 94, 1.2f, 1.2f, 0xFFFFFF},
    {-14, 56, 7, 11, 0x845C34},   {12, 52, 8, 12, 0x7C5430}};

// Sits up, ducks when somebody whistles, and sits up again.
void drawMarmot(Canvas& canvas, float left, float size, float time) {
    const float since = Music_NoteAt("whistle", time).age;
    const float up = 1 - Num_Smooth(0.1f, 0.3f, since) * Num_Smooth(2.6f, 2.0f, since);
    const float nod = 2 * Num_Sin(0.8f * time), foot = 396 + (1 - up) * 92 * size;
    for (const Part& part : parts) {
        const Point centre = {left + size * part.x, foot - size * part.y + (part.y > 70 ? nod : 0)};
        Canvas_PaintBall(canvas, centre, part.wide * size, part.high * size,
                         [&](float x, float y, float) {
                             const float hair = 0.14f * Num_Hash(int(x * 40), int(y * 40));
                             return Colour_Scale(part.fur, 0.85f - 0.3f * x - 0.12f * y + hair);
                         });
    }
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (heights[0][0] == 0)
        makeMap();
    Canvas_Fill(canvas, [=](float x, float y) { return y < 200 ? shadeSky(x, y, time) : 0; });
    const float turn = 0.10f + 0.08f * Num_Sin(0.035f * time);
    const Point eye = {40 + 34 * time, 100 + 90 * Num_Sin(0.02f * time)};
    for (int column = 0; column < Canvas_Width; ++column)
        drawColumn(canvas, column, turn, eye);
    Letters_PaintTitle(canvas, name, 14, 0x0A2048, [](float x, float y) {
        const bool isSnow = y < 40 + 9 * Num_Noise(x / 9, 3);
        return isSnow ? 0xFFFFFF : Colour_Mix(0xFFE8A0, 0xF09830, (y - 40) / 34);
    });
    drawMarmot(canvas, 412, 1.35f, time);
    drawMarmot(canvas, 322, 0.7f, time - 0.2f); // the smaller one is a little later
}
