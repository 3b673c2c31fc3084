// Grapes that run into each other: balls whose surfaces melt where they come close, on the label of
// a bottle.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 Dornfeld";

const char Intro_Tune[] = R"(
// A waltz for a cellar in A minor: accordion, double bass, and a clarinet for the second part.
tempo 152
meter 3/4
volume 63
swing 50
reverb 45
accordion = pulse width 42 adsr 20 120 85 70 lowpass 3000 10 detune 22 level 24 pan -10 reverb 20
clarinet = pulse width 50 adsr 25 100 80 90 lowpass 1700 15 vibrato 5 12 level 30 pan 20 reverb 25
chord = pulse width 35 adsr 6 140 35 50 lowpass 1800 10 detune 18 level 13 pan -35 reverb 15
bass = triangle adsr 3 320 30 60 lowpass 800 20 level 60
brush = noise adsr 6 80 0 20 bandpass 5000 10 level 13 pan 40
A accordion o5 l8 e4. d+ e f | e4 c4 <a4 | a4. g+ a b | >c2. | d4. c+ d e | d4 <b4 g+4 | >e4. d+ e4 | c2. |
  e4. d+ e f | e4 >c4 <a4 | g4. f+ g a | f2. | d e f a >d c | <b4 a4 g+4 | a4 e4 c4 | <a2.
A bass o2 l4 a r r e r r a r r e r r >d< r r b r r e r r a r r a r r e r r >c< r r f r r d r r e r r a r r a e a
A chord o4 l4 [r (c e a) (c e a)]4 [r (d f b) (d f b)]2 r (d g+ b) (d g+ b) r (c e a) (c e a)
  [r (c e a) (c e a)]2 r (e g >c) (e g >c) r (c f a) (c f a) r (d f a) (d f a)
  r (d g+ b) (d g+ b) [r (c e a) (c e a)]2
B clarinet o4 l4 >c2 <g | e2 g | >c d e | d2. | <b2 g | f2 g | b >c d | c2. |
  e2 c | <a2 >c | f e d | <b2. | g+ b >d | f e d | c <b >c | <a2.
B bass o2 l4 >c< r r g r r >c< r r g r r g r r d r r g r r >c< r r a r r e r r d r r f r r e r r b r r a r r a e a
B chord o4 l4 [r (c e g) (c e g)]3 r (<b >d g) (<b >d g) [r (<b >d f) (<b >d f)]3 r (c e g) (c e g)
  [r (c e a) (c e a)]2 [r (d f a) (d f a)]2 [r (d e g+) (d e g+)]2 [r (c e a) (c e a)]2
A brush l4 r x x
B brush l4 r x v50 x8 x8
C accordion o5 l8 a g+ a b >c <a | e d+ e g+ a >c | <b a b >c d <b | g+2. | b- a b- >c d <b- | a g+ a b >c e |
  d c <b a g+ f | e2. | a g+ a b >c <a | e d+ e a >c e | f e d c <b a | g+2 e4 | f e d4 f4 | e d c4 e4 | d c <b4 g+4 | a2.
C clarinet o4 l2. a | e | f | e | f | e | d | e | a | >c | <f | e | d | e | g+ | a
C bass o2 l4 a r r a r r d r r e r r b- r r a r r d r r e r r a r r a r r d r r e r r d r r a r r e r r a e a
C brush l4 r x x
play |: A B A C
)";

namespace {
constexpr int ballCount = 13;
constexpr int halfWidth = Canvas_Width / 2, halfHeight = Canvas_Height / 2;
constexpr Colour skin[] = {0x14020C, 0x3C0828, 0x701048, 0xA82868, 0xE87898, 0xFFF0F0};

const Lettering name = Letters_Make("Dornfeld", Face::Serif, 66, Slant::Italic);
const Lettering above = Letters_Make("OSTRIK  \267  INTRO  9", Face::Serif, 19);

float field[halfHeight + 1][halfWidth + 1]; // at every second pixel
Canvas label;

// Paper in a dark frame, with two lines of gold.
Colour shadeLabel(float x, float y) {
    const float grain = 0.05f * Num_Noise(x / 3, y / 50) + 0.06f * Num_Noise(x / 80, y / 80);
    const int edge = int(std::min(std::min(x, 511 - x), std::min(y, 383 - y)));
    if (edge < 14)
        return Colour_Make(0.05f, 0.10f + grain, 0.06f);
    if ((edge >= 20 && edge < 23) || edge == 26)
        return Colour_Mix(0xB08830, 0xE8CC80, Num_Noise((x + y) / 30, 0));
    return Colour_Make(0.93f - grain, 0.88f - grain, 0.76f - grain);
}

// The bunch hangs together in rows of five, four, three and one, and still never rests.
Point placeBall(int ball, float time) {
    const int row = ball < 5 ? 0 : ball < 9 ? 1 : ball < 12 ? 2 : 3;
    const int column = ball - (row == 0 ? 0 : row == 1 ? 5 : row == 2 ? 9 : 12);
    const float x = 128 + 34 * float(column) - (row == 3 ? 0 : 68 - 17 * float(row));
    const float phase = float(ball) * 0.381966f;
    return {x + 6 * Num_Sin(phase + 0.13f * time),
            46 + 25 * float(row) + 6 * Num_Sin(2.6f * phase + 0.17f * time)};
}

void addBall(Point centre, float size) {
    for (int y = 0; y <= halfHeight; ++y)
        for (int x = 0; x <= halfWidth; ++x) {
            const float dx = float(x) - centre.x, dy = float(y) - centre.y;
            const float pull = size / (dx * dx + dy * dy + 1);
            field[y][x] += pull * pull * pull;
        }
}

// For a ball alone the field becomes the square of the distance from its middle, 1 at its skin.
void makeField(float time) {
    for (auto& row : field)
        std::fill_n(row, halfWidth + 1, 0.001f);
    for (int ball = 0; ball < ballCount; ++ball)
        addBall(placeBall(ball, time), 330 + 110 * Num_Hash(ball));
    for (auto& row : field)
        for (float& place : row)
            place = 1 / std::cbrt(place);
}

float fieldAt(int x, int y) {
    return Num_Between(&field[y / 2][x / 2], &field[y / 2 + 1][x / 2], 0.5f * float(x & 1),
                       0.5f * float(y & 1));
}

// The slope of the field is the way the skin looks.
Colour shadeGrape(int x, int y, float level) {
    const float* here = &field[y / 2][x / 2];
    const float lookX = 9.5f * (here[1] - here[0]), lookY = 9.5f * (here[halfWidth + 1] - here[0]);
    const float front = std::sqrt(std::fmax(1 - lookX * lookX - lookY * lookY, 0.0f));
    const float light = -0.42f * lookX - 0.52f * lookY + 0.62f * front;
    const float rim = 0.22f * level * level * level * Num_Clamp(lookX + lookY);
    const float bloom = 0.09f * Num_Noise(float(x) / 12, float(y) / 12);
    const float aimX = lookX + 0.38f, aimY = lookY + 0.45f;
    const float spark = Num_Smooth(0.06f, 0, aimX * aimX + aimY * aimY);
    return Colour_Mix(Colour_Ramp(skin, 0.08f + 0.66f * light + rim + bloom), 0xFFF4F8, spark);
}

Colour shade(int x, int y) {
    const float level = fieldAt(x, y), inside = Num_Smooth(1.02f, 0.95f, level);
    const float shadow = Num_Smooth(1.9f, 0.8f, fieldAt(std::max(x - 8, 0), std::max(y - 10, 0)));
    const Colour paper = Colour_Scale(label.pixels[y][x], 1 - 0.42f * shadow);
    return inside > 0 ? Colour_Mix(paper, shadeGrape(x, y, level), inside) : paper;
}

void drawStalk(Canvas& canvas) {
    constexpr Point leaf[] = {{300, 40}, {322, 26}, {330, 38}, {356, 30},  {360, 48}, {388, 58},
                              {364, 70}, {366, 92}, {342, 84}, {326, 104}, {316, 80}, {294, 78}};
    Canvas_Line(canvas, {256, 92}, {262, 36}, 7, 0x5C4420);
    Canvas_Line(canvas, {214, 38}, {312, 34}, 8, 0x4C3818);
    Canvas_PaintPolygon(canvas, leaf, [](float x, float y) {
        const float vein = std::fabs(y - 40 - 0.42f * (x - 300));
        const float light = 0.55f + 0.3f * Num_Noise(x / 15, y / 15);
        return Colour_Scale(vein < 1.2f ? 0xC8D078 : 0x6C9C30, light);
    });
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (label.pixels[0][0] == 0)
        Canvas_Fill(label, shadeLabel);
    makeField(time);
    Canvas_Fill(canvas, [](float x, float y) { return shade(int(x), int(y)); });
    drawStalk(canvas);
    Letters_Colour(canvas, above, Letters_Centred(above), 270, 0x6C5020);
    Letters_Colour(canvas, name, Letters_Centred(name) + 1, 290, 0xC8A860);
    Letters_Colour(canvas, name, Letters_Centred(name), 288, 0x580C30);
}
