// A forge: fire, an anvil before it, and a hammer that strikes sparks in time.
#include "stage.h"
const char Intro_Title[] = "Anvil 1733 Intro";

const char Intro_Tune[] = R"(
// A work song in D dorian: the hammer on every second beat, bellows, a drone and a low voice.
tempo 108
volume 56
delay 3/8 20
reverb 75
hammer = sine adsr 1 900 0 300 fm 2.83 6 120 detune 8 key a5 level 34 reverb 40
body = sine adsr 1 260 0 60 drop 18 35 key d2 level 80
ring = sine adsr 1 1900 0 500 fm 1.71 1.5 900 key d6 level 9 pan 20 reverb 60
bellows = noise adsr 420 500 0 200 bandpass 520 25 sweep 1 500 level 34 pan -30 reverb 20
drone = saw adsr 400 400 90 600 lowpass 420 25 wobble 0.23 0.5 detune 14 level 26 reverb 20
voice = saw adsr 60 300 75 180 lowpass 1100 35 detune 8 vibrato 5 22 level 36 glide 40 reverb 35
fiddle = saw adsr 40 200 80 120 lowpass 2600 20 vibrato 5.6 28 level 21 pan 30 reverb 35
drum = sine adsr 1 170 0 20 drop 9 40 key a2 level 46 pan -15
fire = noise adsr 5 40 30 20 highpass 3000 0 tremolo 17 100 level 7 pan 40
A voice o3 l4 d. e8 f g | a2 g4. e8 | f4. e8 d c | d2 r2 | a4. b8 >c <a | g2 f4. e8 | f e d c | d2 r2
B voice o3 l4 >c4. <b8 a g | a2 d2 | b-4. a8 g f | g2 c2 | f4. g8 a4 g8 f8 | e4. f8 g4 e4 | d f e c | d1
B fiddle o5 l8 e d e f e d c4 | d c d e f4 d4 | d c d e d c <b-4 | >c <b- >c d e4 c4 |
  a g a b a g f4 | g f g a g f e4 | f a g f e g f e | d2 r2
A drone o2 l1 (d a)^1^1^1
B drone o2 l1 (a >e) | (d a) | (<b- >f) | (c g) | (d a) | (c g) | (d a) | (d a)
A hammer l2 x x
A body l2 x x
A ring l1 x
A bellows l2 r4 x4 r4 x4
A drum l8 r4 x r x r v50 x v80 x
A fire l8 v30 x v60 x v40 x v80 x v30 x x v90 x v50 x
B hammer l2 x x
B body l2 x x
B ring l1 x
B bellows l2 r4 x4 r4 x4
B drum l8 x r x x r x x r
B fire l8 v30 x v60 x v40 x v80 x v30 x x v90 x v50 x
I hammer l2 x x
I body l2 x x
I bellows l2 r4 x4 r4 x4
I drone o2 l1 (d a)^1
play I |: A B A B+5
)";

namespace {
constexpr int fireWidth = Canvas_Width / 2, fireHeight = Canvas_Height / 2;
constexpr int sparkCount = 130;
constexpr Colour heats[] = {0x060204, 0x300804, 0x801404, 0xD84008, 0xFF9020, 0xFFE070, 0xFFFFE0};
constexpr Point iron = {268, 254};

const Title name = Letters_MakeTitle("ANVIL 1733", Face::Serif, 84);

float heat[fireHeight + 2][fireWidth + 1];

// New fuel comes and goes in clumps along the lower edge. Heat rises, spreads and is lost; a
// draught pushes a grain of it aside now and then.
void stepFire(int step) {
    for (int x = 0; x < fireWidth; ++x) {
        const float clump = Num_Noise(float(x) / 11, float(step) / 14);
        const float lump = Num_Hash(x / 2, step / 2);
        heat[fireHeight][x] = heat[fireHeight + 1][x] = 1.7f * clump * (0.35f + lump);
    }
    for (int y = 0; y < fireHeight; ++y)
        for (int x = 0; x < fireWidth; ++x) {
            const float chance = Num_Hash(x + 7 * step, y);
            const int from = (x + (chance < 0.22f ? fireWidth - 1 : chance > 0.8f)) % fireWidth;
            const int left = (from + fireWidth - 1) % fireWidth, right = (from + 1) % fireWidth;
            const float sum =
                heat[y + 1][left] + heat[y + 1][from] + heat[y + 1][right] + heat[y + 2][from];
            heat[y][x] = std::fmax(0.25f * sum - 0.013f * chance, 0.0f);
        }
}

Colour shadeFire(int x, int y, float flash) {
    const float* row = heat[y / 2];
    const float mean = Num_Between(&row[x / 2], &row[x / 2 + fireWidth + 1], 0.5f * float(x & 1),
                                   0.5f * float(y & 1));
    return Colour_Ramp(heats, 0.92f * mean + 0.05f * flash);
}

void drawAnvil(Canvas& canvas, float flash) {
    constexpr Point outline[] = {{112, 262}, {150, 252}, {190, 250}, {360, 250}, {392, 262},
                                 {392, 274}, {340, 284}, {308, 300}, {298, 326}, {304, 344},
                                 {344, 356}, {352, 384}, {152, 384}, {160, 356}, {200, 344},
                                 {206, 326}, {196, 302}, {170, 288}, {132, 278}};
    Canvas_PaintPolygon(canvas, outline, [=](float x, float y) {
        const float face = Num_Smooth(258, 250, y);
        const float near = Num_Clamp(1 - std::fabs(x - iron.x) / 130);
        const float light =
            0.05f + 0.05f * Num_Noise(x / 7, y / 7) + face * near * (0.4f + flash / 2);
        return Colour_Make(light * 1.6f, light * 0.9f, light * 0.6f);
    });
    Canvas_Glow(canvas, iron, 46 + 50 * flash, 0xFF7018);
    Canvas_Bar(canvas, 228, 242, 84, 9, Colour_Mix(0xFF7818, 0xFFFFD0, 0.35f + 0.65f * flash));
}

// Up slowly, down at once; upright it stands behind the words.
void drawHammer(Canvas& canvas, float beat) {
    const float lift = 0.16f * Num_Smooth(0.06f, 0.6f, beat) * Num_Smooth(1, 0.86f, beat);
    const float cosine = Num_Cos(lift), sine = Num_Sin(lift);
    const auto place = [=](float x, float y) {
        return Point{470 - x * cosine + y * sine, 236 - x * sine - y * cosine};
    };
    const Point head[] = {place(176, -6), place(222, -6), place(228, 38),
                          place(218, 48), place(180, 48), place(170, 38)};
    Canvas_Line(canvas, place(0, 0), place(230, 0), 10, 0x38200C);
    Canvas_PaintPolygon(canvas, head, [](float x, float y) {
        return Colour_Scale(0x604030, 0.55f + 0.45f * Num_Sin((x + y) / 120));
    });
}

void drawSpark(Canvas& canvas, int spark, int stroke, float age) {
    const float angle = -0.5f * Num_Hash(spark, stroke);
    const float speed = 60 + 330 * Num_Hash(stroke, spark);
    const auto place = [=](float flown) {
        return Point{iron.x + speed * flown * Num_Cos(angle),
                     iron.y - 8 + speed * flown * Num_Sin(angle) + 240 * flown * flown};
    };
    const float light = Num_Clamp(1.1f - 1.2f * age * (0.6f + Num_Hash(spark)));
    Canvas_Line(canvas, place(age), place(age + 0.022f), 1 + 1.2f * light,
                Colour_Ramp(heats, 0.3f + 0.7f * light));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static int step = 0;
    for (int due = Stage_TakeSteps(time, 60); due > 0; --due)
        stepFire(++step);
    const float beat = Num_Fract(Music_BeatAt(time) / 2); // the hammer comes down every two beats
    const NoteState stroke = Music_NoteAt("hammer", time);
    const float flash = Num_Clamp(1 - 2.7f * stroke.age);
    Canvas_Fill(canvas, [=](float x, float y) { return shadeFire(int(x), int(y), flash); });
    drawHammer(canvas, beat);
    Letters_PaintTitle(canvas, name, 26, 0x000000, [=](float x, float y) {
        const float grain = 0.2f * Num_Noise(x / 6, y / 6);
        return Colour_Ramp(heats, 0.36f + 0.5f * y / 84 + 0.3f * flash + grain);
    });
    drawAnvil(canvas, flash);
    for (int spark = 0; spark < sparkCount; ++spark)
        drawSpark(canvas, spark, stroke.number, stroke.age);
}
