// Dusk over a valley, ridge behind ridge, and paper lanterns that rise out of it.
#include "stage.h"
const char Intro_Title[] = "BQLV - Bluequay and Lantern Vale Inc. Intro";

const char Intro_Tune[] = R"(
// A lullaby for the lanterns: a waltz in F on a music box, with strings that come with the dusk.
tempo 92
meter 3/4
volume 110
delay 3/8 35
reverb 88
box = sine adsr 1 1100 0 500 fm 4 1.4 220 level 38 pan 15 delay 30 reverb 35
harp = triangle adsr 1 900 0 400 lowpass 2600 10 level 22 pan -25 reverb 35
strings = saw adsr 350 500 75 700 lowpass 1500 10 detune 16 vibrato 4.8 14 level 13 reverb 50
bass = triangle adsr 10 900 30 300 level 36 reverb 20
breeze = noise adsr 2500 500 80 2500 bandpass 600 30 wobble 0.09 1 level 13 reverb 40
A box o5 l4 c f a | g2 f | d f b- | a2. | c f a | >c2 <a | g a b- | g2. |
  c f a | g2 f | d f b- | >d2. | c <a f | g2 e | f2. | r2.
A harp o4 l8 [<f> c f a f c]2 | <b-> d f b- f d | <f> c f a f c | <f> c f a f c |
  <a> c f a f c | <g> d g b- g d | c e g >c< g e | [<f> c f a f c]2 | [<b-> d f b- f d]2 |
  <f> c f a f c | <g >c e b- e c< | [<f> c f a f c]2
A bass o2 l2. f | f | b- | f | f | a | g | c | f | f | b- | b- | f | c | f | f
B box o5 l4 d2 e | f2 a | g f d | c2. | d2 e | f2 >c | <b- g e | f2. |
  a b- >c | d2 c | <b- a g | a2. | g a b- | >c2 <e | f2. | r2.
B strings o4 l2. (d f a) | (d f a) | (<b- >d g) | (c e g) | (<b- >d f) | (<a >c f) | (c e b-) | (c f a) |
  (c f a) | (d f b-) | (d g b-) | (c+ e a) | (d g b-) | (c e b-) | (c f a) | (c f a)
B bass o2 l2. d | d | g | c | b- | a | c | f | f | b- | g | a | g | c | f | f
B harp o5 l4 r f a | r f a | r d g | r e g | r d f | r f a | r e b- | r f a |
  r f a | r f b- | r d g | r e a | r d g | r e b- | r f a | r f a
A breeze l2. x^2.^2.^2.^2.^2.^2.^2.
B breeze l2. x^2.^2.^2.^2.^2.^2.^2.
play |: A B A B+3
)";

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
