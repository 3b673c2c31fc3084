// Lanternfish on their way through the deep: dark bodies, rows of lights, and snow that sinks.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 4 Lanternfish";

const char Intro_Tune[] = R"(
// The deep: slow chords that swell like water, bells of light, and a bass that one rather feels.
tempo 60
volume 30
delay 3/8 55
reverb 95
deep = saw adsr 1800 2000 70 3000 lowpass 420 15 wobble 0.11 0.9 detune 16 level 34 reverb 55
high = triangle adsr 2500 2000 60 3000 detune 20 vibrato 3 15 level 13 pan 30 reverb 70
light = sine adsr 2 1500 0 800 fm 3.01 1.6 500 level 20 pan -35 delay 60 reverb 50
far = light level 12 pan 50
sub = sine adsr 500 1000 80 1500 level 42
current = noise adsr 3000 1000 80 3000 lowpass 350 20 wobble 0.13 1.2 level 26 reverb 30
bubble = sine adsr 2 120 20 60 drop -14 110 level 14 pan 20 delay 30 reverb 40
sonar = sine adsr 4 1400 0 500 level 12 reverb 90 delay 60
A deep o3 l1 (e b >f+ g) | (e b >f+ g) | (c g b >d) | (c g b >d) | (<a >e g >c) | (<a >e g >c) |
  (d a >c+ e) | (d a >c+ e)
A high o5 l1 r | b | r | >d< | r | >c< | r | a2 f+2
A light o5 l8 r4 b >e r f+ r4 | r1 | r4 <g >d r e r4 | r2 <b4 r4 | r4 e b r >c r4 | r1 |
  r4 <a >e r f+ r4 | r4 c+ e r2
A far o6 l8 r1 | r e r4 r b r4 | r1 | r4 d r g r4. | r1 | r <b r4 r >e r4 | r1 | r2 <a r4.
A sub o1 l1 e^1 | >c^1< | a^1 | >d^1<
A current l1 x^1^1^1
A bubble o5 l16 r2. r8 c e | r1 | r4 g r d r r2 | r1 | r1 | r2 e g b r8. r8 | r1 | r8 c r8. g e r2
A sonar o6 l1 e | r | r | r | e | r | r | r
play |: A A-2
)";

namespace {
constexpr int fishCount = 11;
constexpr int snowCount = 260;
constexpr int sideSteps = 14; // points along a fish's back, and along its belly

const Title name = Letters_MakeTitle("Lanternfish", Face::Serif, 76, Slant::Italic);

Colour shadeDeep(float x, float y, float time) {
    const float height = 1 - y / 384;
    const float shaft = Num_Noise((x - 0.35f * y) / 42, 0.25f * time);
    const float light = height * height * (0.35f + 0.65f * shaft);
    return Colour_Make(0.01f + 0.03f * light, 0.03f + 0.30f * light, 0.10f + 0.42f * light);
}

void drawFlake(Canvas& canvas, int flake, float time) {
    const float size = Num_Hash(flake, 7);
    const float sway = 0.02f * Num_Sin(0.2f * time + Num_Hash(flake, 8));
    const float x = Num_Fract(Num_Hash(flake, 1) + sway - 0.01f * time * size);
    const float y = Num_Fract(Num_Hash(flake, 2) + time * (0.01f + 0.03f * size));
    Canvas_Add(canvas, int(x * 512), int(y * 384), Colour_Scale(0x90C0D0, 0.2f + size / 2));
}

struct Fish {
    Point centre;
    float length; // half of it, nose to tail
    float beat;   // of the tail, in turns
    Colour light;
};

// Far fish are small, dim and slow.
Fish placeFish(int number, float time) {
    const float nearness = float(number + 2) / float(fishCount + 2);
    const float way = Num_Hash(number, 1) + time * (0.02f + 0.05f * nearness);
    const float lane = Num_Fract(0.381966f * float(number) + 0.1f);
    const float y = 60 + 290 * lane + 14 * Num_Sin(0.13f * time + lane);
    const Colour light = Colour_Mix(0x40B0FF, 0x70FFD0, Num_Hash(number, 3));
    return {{640 - 768 * Num_Fract(way), y},
            26 + 66 * nearness,
            (1.2f - 0.5f * nearness) * time + lane,
            Colour_Scale(light, 0.35f + 0.65f * nearness)};
}

// A place on the fish: `along` from -1 at the nose to 1 at the tail, `across` from -1 to 1.
Point onFish(const Fish& fish, float along, float across) {
    const float slim = std::fmax((1 - along) * (along + 1.02f), 0.0f);
    const float half = 0.06f + 0.26f * std::sqrt(slim) * (0.92f - 0.35f * along);
    const float bend = 0.05f * (along + 1.2f) * Num_Sin(fish.beat - 0.28f * along);
    const float x = fish.length * along, y = fish.length * (half * across + bend);
    return {fish.centre.x + x, fish.centre.y + y};
}

void drawBody(Canvas& canvas, const Fish& fish) {
    const Colour skin = Colour_Mix(0x041018, Colour_Scale(fish.light, 0.35f), 0.55f);
    const Point root = onFish(fish, 0.93f, 0), end = onFish(fish, 1.35f, 0);
    const float fin = 0.24f * fish.length;
    const Point tail[] = {
        root, {end.x, end.y - fin}, {end.x - fin / 2, end.y}, {end.x, end.y + fin}};
    Canvas_Polygon(canvas, tail, skin);
    Point outline[2 * sideSteps];
    for (int step = 0; step < sideSteps; ++step) {
        const float along = -1 + 2 * float(step) / float(sideSteps - 1);
        outline[step] = onFish(fish, along, -1);
        outline[2 * sideSteps - 1 - step] = onFish(fish, along, 0.9f);
    }
    Canvas_PaintPolygon(canvas, outline, [&](float, float y) {
        const float back = (fish.centre.y - y) / (0.34f * fish.length);
        return Colour_Mix(skin, fish.light, Num_Clamp(0.30f * back));
    });
}

// The eye, and two rows along the belly; a wave of brightness runs through them.
void drawLights(Canvas& canvas, const Fish& fish, float time) {
    const Point eye = onFish(fish, -0.74f, -0.25f);
    const float pupil = 0.045f * fish.length;
    Canvas_Glow(canvas, eye, 0.17f * fish.length, fish.light);
    Canvas_PaintBall(canvas, eye, pupil, pupil, [](float, float, float) { return 0x020810u; });
    for (int lamp = 0; lamp < 18; ++lamp) {
        const float wave = 0.55f + 0.45f * Num_Sin(0.9f * time - 0.09f * float(lamp));
        const Point place = onFish(fish, -0.8f + 0.2f * float(lamp % 9), lamp < 9 ? 0.75f : 0.2f);
        const float size = lamp < 9 ? 0.13f : 0.08f;
        Canvas_Glow(canvas, place, size * fish.length, Colour_Scale(fish.light, wave));
        Canvas_Glow(canvas, place, 0.035f * fish.length, Colour_Scale(0xFFFFFF, wave));
    }
}

void drawFish(Canvas& canvas, int number, float time) {
    const Fish fish = placeFish(number, time);
    Canvas_Glow(canvas, fish.centre, 1.5f * fish.length, Colour_Scale(fish.light, 0.16f));
    drawBody(canvas, fish);
    drawLights(canvas, fish, time);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeDeep(x, y, time); });
    for (int flake = 0; flake < snowCount; ++flake)
        drawFlake(canvas, flake, time);
    for (int number = 0; number < fishCount / 2; ++number)
        drawFish(canvas, number, time);
    Letters_PaintTitle(canvas, name, 24, 0x0C4074, [=](float x, float) {
        const float wave = 0.5f + 0.5f * Num_Sin(0.5f * time - x / 400);
        return Colour_Mix(0x50A8E0, 0xE8FFFF, wave * wave);
    });
    for (int number = fishCount / 2; number < fishCount; ++number)
        drawFish(canvas, number, time);
}
