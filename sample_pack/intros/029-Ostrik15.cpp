// Stars inlaid in wood: brass bands over four kinds of timber, whose angle changes while one looks.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 15 Inlaid";

const char Intro_Tune[] = R"(
// Inlaid wood: a galliard in G minor for lute and recorder over a small drum, in six beats.
tempo 132
meter 3/4
volume 60
reverb 50
lute = saw adsr 1 500 5 150 lowpass 2600 15 sweep 1.2 60 level 22 pan -22 reverb 22
recorder = sine adsr 22 60 88 70 vibrato 5 12 breath 4 fm 3 0.25 0 level 42 pan 15 reverb 35
viol = saw adsr 70 150 80 150 lowpass 1000 20 detune 6 vibrato 4.8 14 level 24 pan -5 reverb 30
tabor = noise adsr 1 90 0 15 bandpass 900 30 level 46 pan 20 reverb 20
skin = sine adsr 1 180 0 20 drop 7 40 key g2 level 46 pan 10
chime = sine adsr 1 800 0 300 fm 3.5 1.4 200 level 9 pan 45 reverb 40
A recorder o5 l4 g g a | b-. a8 g | f f g | a. g8 f | e- e- d | c d e- | d2 d | d2. |
  g g a | b-. >c8 d | c <b- a | b-. a8 g | a g f+ | g2 f+ | g2. | r2.
A lute o4 l4 (<g> d g) d <b-> | (<g> d g) d g | (<f> c f) c <a> | (<f> c f) c f | (<c> g) e- c | (<c> g) c e- | (<d> f+ a) d f+ | (<d> f+ a) d <a> |
  (<g> d g) d <b-> | (<b-> d f) b- f | (<c> e- g) c e- | (<g> d g) d <b-> | (<d> f+ a) d c | (<d> f+ a) d <a> | (<g> d g) d <b-> | (<g> d g)2.
A viol o2 l2. g | g | f | f | c | c | d | d | g | b- | c | g | d | d | g | g
B recorder o5 l8 >d4 d4 c <b- | >c4 c4 <b- a | b-4 b4 a g | a2. | b- a g a b- >c | d4 <b-4 g4 | f g a4 f4 | g2. |
  >d c <b- >c d e- | f4 d4 <b-4 | >e- d c d e- c | d2. | c <b- a b- >c <a | b- a g a b- g | a g f+4 a4 | g2.
B lute o4 l4 (<b-> d f) f b- | (<a> c f) f a | (<g> d g) d g | (<d> f+ a) d <a> | (<g> d g) d g | (<g> d g) b- g | (<d> f a) d f | (<g> d g) d <b-> |
  (<b-> d f) f b- | (<b-> d f) b- f | (<c> e- g) g >c< | (<d> f+ a) d f+ | (<c> e- a) e- c | (<g> d g) d g | (<d> f+ a) d f+ | (<g> d g)2.
B viol o2 l2. b- | f | g | d | g | g | d | g | b- | b- | c | d | c | g | d | g
A tabor l8 x4 x x x4
A skin l2. x | x2 x4
B tabor l8 x x x x x4 | x4 x4 x4
B skin l2. x2 x4 | x
B chime l2. o6 d | r | r | a | r | r | r | g
play |: A A B B A B
)";

namespace {
constexpr float cellSize = 96;
constexpr Colour woods[] = {0x8C4A20, 0xD8A868, 0x4C2414, 0xB87038};

const Lettering name = Letters_Make("INLAID", Face::Serif, 92);

// One octant of a cell, to which all others are mirrored: 0 <= y <= x <= 0.5.
Point fold(float x, float y) {
    x = std::fabs(Num_Fract(x) - 0.5f);
    y = std::fabs(Num_Fract(y) - 0.5f);
    return {std::max(x, y), std::min(x, y)};
}

// The two bands of the octant, as lines: from the middle of the cell's edge inward, and the one
// that cuts off the cell's corner.
struct Bands {
    float normalX, normalY; // of the first one
    float corner;           // how far the second lies from the middle
};

Bands bandsAt(float time) {
    const float turn = 0.095f + 0.055f * Num_Sin(0.06f * time);
    return {Num_Sin(turn), Num_Cos(turn), 0.70f + 0.10f * Num_Sin(0.045f * time + 0.3f)};
}

float grainAt(float x, float y, int kind) {
    const float along = kind & 1 ? x : y, across = kind & 1 ? y : x;
    const float wave = 3 * Num_Sin(along / 140 + across / 400);
    return Num_Noise(across / 2.2f + wave, along / 34);
}

// Brass, with light that slides over the room.
Colour shadeBrass(float edge, float x, float y, float time) {
    const float sweep = std::fmax(Num_Sin((x + y) / 420 - 0.17f * time), 0.0f);
    const float light = 0.64f - 0.22f * edge * edge + 0.4f * sweep * sweep * sweep * sweep;
    return Colour_Mix(Colour_Scale(0xFFCA58, light * 1.2f), 0xFFFBE0, light - 0.75f);
}

Colour shade(float x, float y, const Bands& bands, float time) {
    const float u = x / cellSize + 0.05f * time, v = y / cellSize + 0.03f * time;
    const Point place = fold(u, v);
    const float first = bands.normalX * (place.x - 0.5f) + bands.normalY * place.y;
    const float second = (place.x + place.y - bands.corner) * 0.7071f;
    const int inner = (first > 0 ? 1 : 0) + (second > 0 ? 2 : 0);
    const int kind = inner ^ ((int(u) + int(v)) & 1);
    const float distance = std::min(std::fabs(first), std::fabs(second)) * cellSize;
    const float grain = 0.70f + 0.42f * grainAt(u * cellSize, v * cellSize, kind);
    const float joint = Num_Smooth(1.8f, 4.2f, distance);
    const Colour wood = Colour_Scale(woods[kind], grain * (0.55f + 0.45f * joint));
    const float brass = Num_Smooth(2.9f, 2, distance);
    return brass > 0 ? Colour_Mix(wood, shadeBrass(distance / 2.6f, x, y, time), brass) : wood;
}

// A plate of dark wood in a brass frame, the letters let into it.
void drawName(Canvas& canvas, float time) {
    const int left = Letters_Centred(name), top = 146, right = Canvas_Width - left;
    for (int y = 138; y < 246; ++y)
        for (int x = left - 28; x < right + 28; ++x) {
            const int edge =
                std::min(std::min(x - left, right - 1 - x) + 28, std::min(y - 138, 245 - y));
            const float grain = 0.7f + 0.5f * grainAt(float(x), float(y), 1);
            canvas.pixels[y][x] = edge < 2 || (edge >= 6 && edge < 8)
                                      ? shadeBrass(0.3f, float(x), float(y), time)
                                      : Colour_Scale(0x3C1C10, grain);
        }
    Letters_Colour(canvas, name, left - 1, top - 1, 0x140804);
    Letters_Colour(canvas, name, left + 1, top + 1, 0xA86838);
    Letters_Paint(canvas, name, left, top, [=](float x, float y) {
        return shadeBrass(0.2f, x + float(left), y + 146, time);
    });
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    const Bands bands = bandsAt(time);
    Canvas_Fill(canvas, [=](float x, float y) { return shade(x, y, bands, time); });
    drawName(canvas, time);
}
