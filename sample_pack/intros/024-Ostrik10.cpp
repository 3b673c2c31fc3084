// Down a shaft through amber: bubbles and old bark pass by, and honey light lies at its end.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 10 Amber";

const char Intro_Tune[] = R"(
// Down the shaft: a choir that changes like honey, a heart far below, and light that rings.
tempo 76
volume 20
delay 3/8 50
reverb 96
choir = saw adsr 900 800 80 1600 bandpass 700 45 wobble 0.1 0.5 detune 24 vibrato 4.4 14 level 54 reverb 60
ah = saw adsr 1200 800 80 1600 bandpass 1300 55 detune 18 vibrato 5 14 level 30 pan 30 reverb 70
heart = sine adsr 4 260 0 80 drop 7 60 key f+1 level 86
drone = saw adsr 800 500 90 1500 lowpass 180 30 wobble 0.07 0.7 detune 10 level 44
ring = sine adsr 3 1800 0 900 fm 2.01 1.4 800 level 20 pan -30 delay 50 reverb 60
bark = noise adsr 200 300 0 200 bandpass 300 40 sweep 2 400 level 22 pan 40 delay 40 reverb 50
A choir o3 l1 (f+ >c+ f+ a+)^1 | (g+ b+ >d+ g+)^1 | (e b >e g+)^1 | (f+ >c+ f+ a+)^1
A heart l4 x8 v50 x8 r v90 x8 v50 x8 r
A drone o1 l1 f+^1^1^1 | e^1 | f+^1
A ring o5 l8 r4 c+ r f+ r4. | r1 | r4 d+ r g+ r b+ r | r1 | r4 <b r >e r g+ r | r1 | r4 a+ r f+ r c+ r | r1
A bark l1 r | x | r | x
B choir o3 l1 (d+ a+ >d+ f+)^1 | (b >d+ f+ a+)^1 | (g+ b+ >d+ g+)^1 | (c+ g+ >c+ f)^1
B ah o5 l1 a+ | f+ | d+ | f+ | d+ | c | c+ | f
B heart l4 x8 v50 x8 r v90 x8 v50 x8 r
B drone o1 l1 d+^1 | b^1 | g+^1 | c+^1
B ring o6 l8 d+ r <a+ r f+ r4. | r1 | f+ r d+ r <b r4. | r1 | g+ r d+ r <b+ r4. | r1 | r g+ r >c+ r f r g+ | r1
B bark l1 r | x | r | x
play |: A B
)";

namespace {
constexpr int resinSize = 256, mask = resinSize - 1;
constexpr Colour honey[] = {0x1C0802, 0x4C1804, 0x943C06, 0xD87810, 0xFFB830, 0xFFE88C};

const Title name = Letters_MakeTitle("AMBER", Face::Serif, 118);

float resin[resinSize][resinSize]; // how light the wall is; it goes on without a seam
float depths[2 * Canvas_Height][2 * Canvas_Width], turns[2 * Canvas_Height][2 * Canvas_Width];

// A bubble lights up at one side, a grain of bark is dark.
void enclose(int number) {
    const int left = int(256 * Num_Hash(number, 1)), top = int(256 * Num_Hash(number, 2));
    const int reach = 3 + int(11 * Num_Hash(number, 3) * Num_Hash(number, 4));
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const float away = std::sqrt(float(dx * dx + dy * dy)) / float(reach);
            float& place = resin[(top + dy) & mask][(left + dx) & mask];
            if (number % 3 == 0)
                place -= 0.45f * Num_Smooth(1, 0.5f, away + 0.3f * Num_Hash(dx, dy));
            else if (away < 1)
                place += 0.5f * away * away * away - 0.22f * float(dx + dy) / float(reach) * away;
        }
}

void makeResin() {
    for (int y = 0; y < resinSize; ++y)
        for (int x = 0; x < resinSize; ++x) {
            const float cloud = Num_ClosedClouds(float(x), float(y), resinSize, 40, 5);
            const float vein = Num_Smooth(0.05f, 0, std::fabs(cloud - 0.5f));
            resin[y][x] = 0.15f + 0.75f * cloud + 0.20f * vein;
        }
    for (int number = 0; number < 90; ++number)
        enclose(number);
}

// Larger than the canvas, so that the end of the shaft can wander.
void makeTables() {
    for (int y = 0; y < 2 * Canvas_Height; ++y)
        for (int x = 0; x < 2 * Canvas_Width; ++x) {
            const float dx = float(x - Canvas_Width) + 0.5f, dy = float(y - Canvas_Height) + 0.5f;
            const float turn = std::atan2(dy, dx) / Num_Turn;
            const float ripple = 1 + 0.06f * Num_Sin(3 * turn) + 0.03f * Num_Sin(7 * turn);
            depths[y][x] = 9000 / (std::sqrt(dx * dx + dy * dy) * ripple + 6);
            turns[y][x] = turn * 2 * float(resinSize);
        }
}

float readResin(float around, float along) {
    const float left = Num_Floor(around), top = Num_Floor(along);
    const int column = int(left) & mask, next = (column + 1) & mask;
    const float* one = resin[int(top) & mask];
    const float* other = resin[(int(top) + 1) & mask];
    const float upper[] = {one[column], one[next]}, lower[] = {other[column], other[next]};
    return Num_Between(upper, lower, around - left, along - top);
}

Colour shadeShaft(float depth, float turn, float time) {
    const float along = depth + 75 * time;
    const float around = turn + 26 * Num_Sin(0.05f * time + depth / 1400);
    const float wall = readResin(around, along) + 0.10f * Num_Sin(along / 128);
    return Colour_Ramp(honey, wall * Num_Clamp(0.55f + depth / 260) + Num_Smooth(120, 950, depth));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (depths[0][0] == 0) {
        makeResin();
        makeTables();
    }
    const int left = 256 + int(110 * Num_Sin(0.071f * time));
    const int top = 192 + int(80 * Num_Sin(0.097f * time));
    Canvas_Fill(canvas, [=](float x, float y) {
        const int row = top + int(y), column = left + int(x);
        return shadeShaft(depths[row][column], turns[row][column], time);
    });
    Letters_Colour(canvas, name.words, Letters_Centred(name.words) - 2, 130, 0xFFF4C0);
    Letters_PaintTitle(canvas, name, 132, 0x200800, [=](float x, float y) {
        const float inner = readResin(2 * x, 2 * y + 9 * time);
        return Colour_Ramp(honey, 0.32f + 0.55f * inner + 0.35f * Num_Smooth(58, 26, y));
    });
}
