// Grains of sand that the wind makes into a ball, a lark and a ring.
#include "space.h"
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M1 Sandlark";

const char Intro_Tune[] = R"(
// A lark over the desert: a lute in a scale with a wide step, a flute that trills, hand drums.
tempo 96
volume 84
delay 3/8 35
reverb 70
lute = saw adsr 1 420 5 120 lowpass 2400 15 sweep 1.5 60 level 30 pan -25 reverb 20
low = triangle adsr 2 700 10 200 level 46 pan -10
flute = sine adsr 40 100 85 140 vibrato 5.5 35 breath 6 glide 50 level 36 pan 15 delay 30 reverb 45
trill = sine adsr 10 40 80 40 vibrato 17 140 drop -4 60 level 15 pan 50 delay 40 reverb 50
dum = sine adsr 1 240 0 30 drop 8 50 key d2 level 62
tek = noise adsr 1 60 0 10 bandpass 2400 40 level 40 pan 25 reverb 15
sand = noise adsr 900 600 30 900 bandpass 3500 10 wobble 0.4 0.8 level 7 pan -40 reverb 30
gust = noise adsr 700 900 0 500 bandpass 900 30 sweep 1.2 900 level 26 reverb 40
A lute o3 l8 d a >d <a >e- <a >d <a | d a >d <a >f+ e- d <a | d a >d <a >g f+ e- d | c <g >c <g >e- d c <a
A flute o5 l4 r1 | r2 a8 b-8 a8 g8 | f+2 e-4 d4 | e-8 f+8 e-8 d8 d2
A low o2 l1 d | d | d | c2 d2
B lute o3 l8 [g >d g d <]2 | [d a >d <a>]2 | [<c g >c <g>]2 | [<d a >d <a>]2
B flute o5 l8 >d4. c <b- a g4 | a b- a g f+4 d4 | g4. f+ e-4 c4 | d e- f+ g f+ e- d4
B low o2 l1 g | d | c | d
A dum l8 x r r x r r x r
A tek l8 r r x r r x r x16 x16
A sand l1 x
A trill o7 l8 r1 | r1 | r2 d r4. | r1
A gust l1 r4 x2. | r
B dum l8 x r x r r x x r
B tek l16 r4 x8 r8 r8 x8 r8 x x
B sand l1 x
B trill o7 l8 r1 | r2. r f+ | r1 | r2 g r4 a
B gust l1 r4 x2. | r
play |: A A B B A B
)";

namespace {
constexpr int grainCount = 4200;
constexpr float golden = 0.6180340f;

const Lettering name = Letters_Make("Sandlark", Face::Serif, 86, Slant::Italic);

Vector onBall(int grain) {
    const float height = 1 - 2 * (float(grain) + 0.5f) / float(grainCount);
    const float radius = std::sqrt(1 - height * height), turn = golden * float(grain);
    return {radius * Num_Cos(turn), height, radius * Num_Sin(turn)};
}

Vector onRing(int grain) {
    const float along = float(grain) / float(grainCount) * 89, turn = golden * float(grain);
    const float radius = 0.85f + 0.38f * Num_Cos(turn);
    return {radius * Num_Cos(along), 0.38f * Num_Sin(turn), radius * Num_Sin(along)};
}

// Half of the grains are body, head and tail, the others are the beating wings.
Vector onLark(int grain, float time) {
    const float u = Num_Hash(grain, 11), v = Num_Hash(grain, 12);
    const float side = grain & 2 ? 1 : -1;
    if (grain & 1) {
        const float span = std::sqrt(u) * 1.45f, beat = Num_Sin(1.4f * time - 0.12f * span);
        const float sweep = 0.84f * (1 - span / 1.7f) * (v - 0.5f);
        return {0.1f - 0.2f * span + sweep, -0.05f - 0.55f * beat * span, side * (span + 0.08f)};
    }
    const float along = u * 2.3f - 1.2f;
    const float fat = along > 0.55f ? 0.29f * std::sqrt(std::fmax(1.15f - along, 0.0f))
                                    : 0.32f * Num_Smooth(-1.1f, 0.3f, along) + 0.03f;
    const float fan = along < -0.6f ? 0.5f * (-0.6f - along) : 0;
    return {along, fat * Num_Sin(v) - 0.10f * along, fat * Num_Cos(v) + side * fan * v};
}

Vector onShape(int shape, int grain, float time) {
    switch (shape % 3) {
    case 0: return onBall(grain);
    case 1: return onLark(grain, time);
    default: return onRing(grain);
    }
}

// On the way from one shape to the next each grain leaves at its own moment and is blown aside by
// the gust that is heard.
Vector placeGrain(int grain, float time, const NoteState& wind) {
    const int shape = std::max(wind.number - 1, 0);
    const float start = 1.1f * Num_Hash(grain, 21);
    const float share = wind.number > 0 ? Num_Smooth(start, start + 1.1f, wind.age) : 0;
    const Vector from = onShape(shape, grain, time), to = onShape(shape + 1, grain, time);
    const float gust = 4 * share * (1 - share) * Num_Hash(grain, 22);
    return from * (1 - share) + to * share + Vector{0.9f * gust, -0.3f * gust, 0.4f * gust};
}

Colour shadeDesert(float x, float y, float time) {
    const float down = y - 292 - 18 * Num_Sin(x / 420 + 0.15f) - 7 * Num_Sin(x / 150);
    if (down < 0)
        return Colour_Mix(0x78A8C0, 0xFCE8C4, y / 300);
    const float rib = y / 9 + 0.8f * Num_Noise(x / 50, down / 20) + x / 160;
    const float grit = 0.05f * Num_Hash(int(x), int(y));
    return Colour_Scale(Colour_Mix(0xF4D498, 0xC88848, down / 110),
                        0.86f + 0.05f * Num_Sin(rib - 0.05f * time) + grit);
}

void drawGrain(Canvas& canvas, int grain, float time, const NoteState& wind) {
    const Vector turns = {0.03f * Num_Sin(0.11f * time), 0.06f * time + 0.4f, 0.0f};
    const Vector turned = Space_Rotate(placeGrain(grain, time, wind), turns);
    Canvas_Blend(canvas, int(256 + 120 * turned.x), int(330 - 26 * turned.z), 0x603010, 0.16f);
    const Point point = Space_Project(turned + Vector{0, -0.28f, 3.4f}, 400);
    const float nearness = Num_Clamp(0.5f - 0.45f * turned.z);
    const Colour tint = Colour_Mix(0xC89058, 0x401808, nearness);
    Canvas_Blend(canvas, int(point.x), int(point.y), tint, 0.35f + 0.65f * nearness);
    Canvas_Blend(canvas, int(point.x) + 1, int(point.y), tint, 0.8f * nearness);
    Canvas_Blend(canvas, int(point.x), int(point.y) + 1, tint, 0.5f * nearness);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeDesert(x, y, time); });
    Letters_Colour(canvas, name, Letters_Centred(name) + 2, 294, 0xFFF0C8);
    Letters_Paint(canvas, name, Letters_Centred(name), 292, [](float x, float y) {
        return Colour_Mix(0x502008, 0x985020, 0.6f * Num_Hash(int(x), int(y)) + y / 200);
    });
    const NoteState wind = Music_NoteAt("gust", time);
    for (int grain = 0; grain < grainCount; ++grain)
        drawGrain(canvas, grain, time, wind);
}
