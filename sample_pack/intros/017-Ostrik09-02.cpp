// Life in standing water: two substances of which one feeds on the other. Where that is so spots
// form, grow and divide like cells under a lens.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M2 Brackwater";

const char Intro_Tune[] = R"(
// Standing water at night: frogs, drips, a reed of wind; three notes rise and sink like bubbles.
tempo 70
volume 62
delay 3/16 45
reverb 80
frog = pulse width 30 adsr 20 60 70 40 bandpass 700 60 tremolo 31 95 drop 3 90 level 52 pan -40 reverb 25
toad = pulse width 40 adsr 30 80 70 60 bandpass 380 60 tremolo 22 95 level 62 pan 40 reverb 25
drip = sine adsr 1 140 0 40 drop -16 70 level 26 pan 15 delay 50 reverb 50
cell = sine adsr 5 260 10 90 drop -9 200 fm 0.5 1 200 level 34 pan -15 delay 35 reverb 35
mire = saw adsr 1500 1000 80 2000 lowpass 240 30 wobble 0.17 1 detune 20 level 42 reverb 30
reed = noise adsr 1500 1000 70 1500 bandpass 1200 75 wobble 0.21 0.7 level 22 pan 30 reverb 40
cricket = pulse width 50 adsr 5 20 80 20 tremolo 43 100 level 5 pan 60 reverb 20
glow = triangle adsr 900 800 60 1500 detune 14 level 14 reverb 60
A mire o1 l1 b- | b- | a- | a-
A glow o4 l1 (b- >d- f) | r | (a- >c e-) | r
A cell o4 l8 b- r >f r d- r4. | r2 <a- r >e- r | g- r4 <b- r >d- r4 | r4 e- r <a- r4.
A drip o6 l16 r4 f r8. r2 | r2. b- r d- r | r8 e- r r2 a- r8. | r1
A frog o3 l8 r1 | b- r b- r r2 | r1 | r2 b- r b- b-
A toad o2 l8 r2. f r | r1 | r2 f r4. | r1
A reed l1 x^1^1^1
A cricket o7 l8 [x r]4
B mire o1 l1 g- | g- | f | f
B glow o4 l1 (g- b- >d-) | r | (f a- >c) | r2 (f a >c)2
B cell o4 l16 g-8 r b- r8 >d- r f8 r8 e- r8. | r4 d- r <b- r g-8 r r4 r | >c8 r <a- r4 f r8 r8 >e- r8 | r4 c8 r8 <a8 r8 f8 r8
B drip o6 l16 d- r8. r2. | r4 g- r b- r r2 | r2 r8 c r r4 | e- r4.. r2
B frog o3 l8 b- r b- r r2 | r1 | r4 >c r c r r4< | r1
B toad o2 l8 r1 | r4 g- r r2 | r1 | f r f r r2
B reed l1 x^1^1^1
B cricket o7 l8 x r r x r x r r
play |: A A B A B
)";

namespace {
constexpr int pondWidth = Canvas_Width / 2, pondHeight = Canvas_Height / 2;
constexpr float stepsPerSecond = 420;
constexpr int earlySteps = 1600;
constexpr float feed = 0.0340f, kill = 0.0618f;
constexpr Colour water[] = {0x051410, 0x0A2C28, 0x14564C, 0x2E8C68, 0x8CC070, 0xE8E890, 0xFFFFE8};

const Title name = Letters_MakeTitle("Brackwater", Face::Serif, 84);

// How much there is of a substance, with a border all around that mirrors the other side.
using Layer = float[pondHeight + 2][pondWidth + 2];

struct Pond {
    Layer food, life;
};

Pond ponds[2];
int current = 0;

void sowPond() {
    for (int y = 0; y < pondHeight + 2; ++y)
        for (int x = 0; x < pondWidth + 2; ++x) {
            const bool isSown = Num_Hash(x / 6, y / 6) < 0.08f;
            ponds[0].food[y][x] = isSown ? 0.5f : 1;
            ponds[0].life[y][x] = isSown ? 0.3f + 0.1f * Num_Hash(x, y) : 0;
        }
}

void closeBorder(Layer& layer) {
    for (int y = 1; y <= pondHeight; ++y) {
        layer[y][0] = layer[y][pondWidth];
        layer[y][pondWidth + 1] = layer[y][1];
    }
    std::copy_n(layer[pondHeight], pondWidth + 2, layer[0]);
    std::copy_n(layer[1], pondWidth + 2, layer[pondHeight + 1]);
}

// How much more there is around a place than at it.
inline float spread(const Layer& layer, int x, int y) {
    const float* above = layer[y - 1] + x;
    const float* here = layer[y] + x;
    const float* below = layer[y + 1] + x;
    return 0.2f * (above[0] + below[0] + here[-1] + here[1]) +
           0.05f * (above[-1] + above[1] + below[-1] + below[1]) - here[0];
}

void stepPond() {
    Pond& now = ponds[current];
    Pond& next = ponds[current = 1 - current];
    closeBorder(now.food);
    closeBorder(now.life);
    for (int y = 1; y <= pondHeight; ++y)
        for (int x = 1; x <= pondWidth; ++x) {
            const float food = now.food[y][x], life = now.life[y][x], eaten = food * life * life;
            next.food[y][x] = food + spread(now.food, x, y) - eaten + feed * (1 - food);
            next.life[y][x] = life + 0.5f * spread(now.life, x, y) + eaten - (feed + kill) * life;
        }
}

// Light from the upper left over bodies that are as high as they are alive.
Colour shadePond(float x, float y, float time) {
    const Layer& life = ponds[current].life;
    const int column = int(x) / 2 + 1, row = int(y) / 2 + 1;
    const float height =
        Num_Between(&life[row][column], &life[row + 1][column], Num_Fract(x / 2), Num_Fract(y / 2));
    const float slope = life[row + 1][column + 1] - life[row - 1][column - 1];
    const float gleam = 0.10f * Num_Noise(x / 90 + 0.3f * time, y / 60);
    return Colour_Ramp(water, gleam + 1.9f * height + 2 * slope);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (ponds[0].food[0][0] == 0) {
        sowPond();
        for (int early = 0; early < earlySteps; ++early)
            stepPond();
    }
    for (int due = Stage_TakeSteps(time, stepsPerSecond); due > 0; --due)
        stepPond();
    Canvas_Fill(canvas, [=](float x, float y) { return shadePond(x, y, time); });
    Letters_PaintTitle(canvas, name, 146, 0x04100C, [=](float x, float y) {
        const float gleam = 0.3f * Num_Sin(x / 200 + 0.3f * time);
        return Colour_Mix(0xFFFCE0, 0x9CC8A0, y / 84 + gleam);
    });
}
