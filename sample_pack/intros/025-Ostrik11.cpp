// Rain on a tiled pool, a drop to each note: the waves spread, cross and bend the sight of the
// ground.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 11 Ripples";

const char Intro_Tune[] = R"(
// Rain on a pool: each drop is a note; two marimbas of unequal length drift through each other.
tempo 112
volume 58
delay 3/16 40
reverb 60
drop = sine adsr 1 420 0 120 fm 3.98 1.2 60 level 34 pan -35 delay 25 reverb 25
wood = drop pan 35 level 32
splash = sine adsr 3 500 0 200 drop -10 300 fm 0.5 1.5 300 level 30 delay 50 reverb 60
pool = triangle adsr 400 500 80 900 detune 10 level 17 reverb 50
bass = sine adsr 10 600 30 200 level 50 reverb 15
rain = noise adsr 1500 500 100 1500 bandpass 4800 5 wobble 0.12 0.4 level 7 reverb 10
A drop o5 l8 e b g >d <b >e <a b | e b g >d <b >e <a r
A wood o4 l8 b >e <g >d e r <b >e <g r a b b >e <g >d e r <b >e <g r a b16 b16 b >e <g >d r2
A pool o4 l1 (e g b) | (e g b) | (d g b) | (e a b)
A bass o2 l2. e2. b4 | e2. a4 | g2. d4 | a2 b2
A splash o5 l1 e | r | r | b
A rain l1 x^1^1^1
B drop o5 l8 c+ a e b a >c+ <f+ a | c+ a e b a >c+ <f+ r
B wood o4 l8 a >c+ <e b >e r <a b | a >e <f+ b >c+ r <a r
B pool o4 l1 (c+ e a) | (c+ f+ a) | (d f+ b) | (e g+ b)
B bass o2 l2. a2. e4 | f+2. c+4 | d2. a4 | e2 b2
B splash o5 l1 a | r | f+ | r
B rain l1 x^1^1^1
play |: A A B A B B
)";

namespace {
constexpr int poolWidth = Canvas_Width / 2, poolHeight = Canvas_Height / 2;
constexpr int tile = 24;

const Lettering name = Letters_Make("RIPPLES", Face::Serif, 118);

// Two moments of the water's height; a step makes the one after out of both.
float water[2][poolHeight][poolWidth];
int current = 0;
Canvas ground;

void letFall(float centreX, float centreY, float reach, float force) {
    for (int y = 1; y < poolHeight - 1; ++y)
        for (int x = 1; x < poolWidth - 1; ++x) {
            const float dx = float(x) - centreX, dy = float(y) - centreY;
            const float near = 1 - (dx * dx + dy * dy) / (reach * reach);
            water[current][y][x] -= force * std::fmax(near, 0.0f);
        }
}

// Heights strive for the mean of their neighbours, overshoot, and tire.
void stepWater() {
    const auto& now = water[current];
    auto& next = water[1 - current];
    for (int y = 1; y < poolHeight - 1; ++y)
        for (int x = 1; x < poolWidth - 1; ++x) {
            const float around = now[y - 1][x] + now[y + 1][x] + now[y][x - 1] + now[y][x + 1];
            next[y][x] = (0.5f * around - next[y][x]) * 0.991f;
        }
    current = 1 - current;
}

// A drop falls with each note of an instrument, each at a place of its own.
void dropNotes(const char* instrument, float time, int& fallen, float reach, float force) {
    const NoteState note = Music_NoteAt(instrument, time);
    if (note.number == fallen)
        return;
    fallen = note.number;
    letFall(float(poolWidth) * Num_Hash(fallen, note.pitch),
            float(poolHeight) * Num_Hash(note.pitch, fallen),
            reach * (0.6f + 0.6f * Num_Hash(fallen, 3)), force);
}

// Small tiles in blue, and a border in gold.
Colour shadeTile(float x, float y) {
    const int column = int(x) / tile, row = int(y) / tile;
    const bool isBorder = row == 1 || row == 14 || column == 1 || column == 20;
    const float chance = Num_Hash(column, row);
    const Colour glaze = isBorder && (column + row) % 2 ? Colour_Mix(0xC89030, 0xF0D070, chance)
                                                        : Colour_Mix(0x0C5C94, 0x30B0C8, chance);
    const bool isJoint = std::min(int(x) % tile, int(y) % tile) < 2;
    return isJoint ? 0x084060 : Colour_Scale(glaze, 0.86f + 0.14f * Num_Noise(x / 7, y / 7));
}

// The name is laid in white, of smaller stones.
void layGround() {
    Canvas_Fill(ground, shadeTile);
    const int left = Letters_Centred(name), top = 130;
    Letters_Colour(ground, name, left - 2, top - 2, 0x084060);
    Letters_Colour(ground, name, left + 3, top + 3, 0x084060);
    Letters_Paint(ground, name, left, top, [](float x, float y) {
        const int column = int(x) + 3, row = int(y);
        const Colour stone = Colour_Mix(0xFFFFFF, 0xE8DCC0, Num_Hash(column / 8, row / 8));
        return column % 8 == 0 || row % 8 == 0 ? 0xB8C8C8 : stone;
    });
}

Colour shadeWater(float x, float y) {
    const int column = std::min(int(x / 2), poolWidth - 2),
              row = std::min(int(y / 2), poolHeight - 2);
    const float* upper = &water[current][row][column];
    const float* lower = &water[current][row + 1][column];
    const float slopeX = Num_Mix(upper[1] - upper[0], lower[1] - lower[0], Num_Fract(y / 2));
    const float slopeY = Num_Mix(lower[0] - upper[0], lower[1] - upper[1], Num_Fract(x / 2));
    const int seenX = int(Num_Clamp(x + 26 * slopeX, 0, Canvas_Width - 1));
    const int seenY = int(Num_Clamp(y + 26 * slopeY, 0, Canvas_Height - 1));
    const float light = 0.82f - 1.1f * (slopeX + slopeY);
    const float spark = Num_Smooth(0.30f, 0.75f, -slopeX - slopeY);
    return Colour_Mix(Colour_Scale(ground.pixels[seenY][seenX], light), 0xFFFFFF,
                      spark + 0.2f * (light - 0.9f));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static int drops = 0, woods = 0, splashes = 0;
    if (ground.pixels[0][0] == 0)
        layGround();
    for (int due = Stage_TakeSteps(time, 75); due > 0; --due)
        stepWater();
    dropNotes("drop", time, drops, 4, 1.6f);
    dropNotes("wood", time, woods, 4, 1.6f);
    dropNotes("splash", time, splashes, 9, 4);
    Canvas_Fill(canvas, shadeWater);
}
