// A pillar of four sides, one letter to a side, that twists like wet cloth.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 14 Mopa";

const char Intro_Tune[] = R"(
// For a friend: a happy tune in E flat with a marimba, claps and a bass that bounces.
tempo 116
volume 72
delay 3/16 30
reverb 45
marimba = sine adsr 1 320 0 90 fm 4 1.3 50 level 46 pan 10 delay 25 reverb 18
organ = pulse width 50 adsr 5 100 80 50 lowpass 1800 10 detune 8 level 13 pan -25 reverb 18
sing = saw adsr 20 120 75 100 bandpass 1100 30 vibrato 5.5 22 detune 8 level 46 pan -8 delay 25 reverb 25
bass = saw adsr 2 190 45 40 lowpass 620 30 sweep 1.5 80 level 50
kick = sine adsr 1 180 0 20 drop 26 45 key c2 level 88
clap = noise adsr 1 130 0 20 bandpass 1700 30 level 58 reverb 25
shaker = noise adsr 8 40 0 12 highpass 7500 0 level 16 pan 35
pop = sine adsr 1 70 0 20 drop -12 50 key e-5 level 26 pan -40 delay 30
A marimba o5 l8 e- r g b- r g a- b- | r >c4 <b- g4 e-4 | f r a- >c r <a- b- >c | r d4 c <b-4 f4 |
  e- r g b- r g a- b- | r >e-4 d c4 <b-4 | a-4 g f r f g a- | g4 e-4 e-4 r4
A organ o4 l8 [r (e- g b-) r (e- g b-) r (e- g b-) r (e- g b-)]2 | r (f a- >c) r (f a- >c) r (f a- >c) r (f a- >c) |
  r (f b- >d) r (f b- >d) r (f b- >d) r (f b- >d) | r (e- g b-) r (e- g b-) r (e- g b-) r (e- g b-) |
  r (e- g >c) r (e- g >c) r (e- g >c) r (e- g >c) | r (c f a-) r (c f a-) r (d f b-) r (d f b-) | r (e- g b-) r (e- g b-) r (e- g b-) r (e- g b-)
A bass o2 l8 e-4 r e- b-4 e-4 | e-4 r e- b-4 g4 | f4 r f >c4 <f4 | <b-4 r b- >f4 <b-4> | e-4 r e- b-4 e-4 | c4 r c g4 c4 | f4 f4 <b-4 b-4> | e-4 <b-4> e- e- f g
B sing o4 l4 >c. <b-8 g e- | a-2 g4 f | >c. d8 e- d | c <b-2 r4 | >c. <b-8 g e- | a- >c e- d | c. <b-8 a- f | e-1
B marimba o5 l16 [c8 e- g8 e- c8]2 | [c8 e- a-8 e- c8]2 | [<a-8> c e-8 c <a-8>]2 | [<b-8> d f8 d <b-8>]2 |
  [c8 e- g8 e- c8]2 | [c8 e- a-8 e- c8]2 | <a-8> c f8 c <a-8> <b-8> d f8 d <b-8> | [e-8 g b-8 g e-8]2
B organ o4 l2 (e- g >c) (e- g >c) | (e- a- >c) (e- a- >c) | (e- a- >c) (e- a- >c) | (d f b-) (d f b-) |
  (e- g >c) (e- g >c) | (e- a- >c) (e- a- >c) | (c f a-) (d f b-) | (e- g b-) (e- g b-)
B bass o2 l8 c4 r c g4 c4 | a-4 r a- e-4 a-4 | a-4 r a- e-4 a-4 | b-4 r b- f4 b-4 | c4 r c g4 c4 | a-4 r a- e-4 a-4 | f4 f4 b-4 b-4 | e-4 b-4 e- e- e- g
A kick l4 x x x x
A clap l4 r x r x
A shaker l16 v50 x x v90 x v50 x
A pop l8 r2 r4 r x | r x r4 r2
B kick l4 x x x x8 x8
B clap l8 r4 x r r4 x x16 x16
B shaker l16 v50 x x v90 x v50 x
play |: A A B A B+2
)";

namespace {
constexpr Colour sides[] = {0xFF3C78, 0xFFC020, 0x18C0B0, 0x6848E8};
constexpr int letterSize = 150;

const Lettering letters[] = {
    Letters_Make("M", Face::Sans, letterSize), Letters_Make("O", Face::Sans, letterSize),
    Letters_Make("P", Face::Sans, letterSize), Letters_Make("A", Face::Sans, letterSize)};

// Rays in two tones of cream, turning slowly, under a net of dots.
Colour shadeGround(int x, int y, float turn) {
    const float dx = float(x) - Canvas_MidX, dy = float(y) - Canvas_MidY;
    const float radius = std::sqrt(dx * dx + dy * dy);
    const float angle = std::atan2(dy, dx) / Num_Turn + turn + radius / 2600;
    const float edge = std::fabs(Num_Fract(angle * 12) - 0.5f) - 0.25f;
    const Colour cream = Colour_Mix(0xFFF0D8, 0xFFC8B8, Num_Smooth(-0.7f, 0.7f, edge * radius));
    const int dotX = (x + 6) % 12 - 6, dotY = (y + 6 * (x / 12 % 2)) % 12 - 6;
    const bool isDot = float(dotX * dotX + dotY * dotY) < radius * radius / 5200;
    return isDot ? Colour_Mix(cream, 0xFF8090, 0.5f) : cream;
}

// The ground turns once in a long while: a third of its lines is drawn anew in a picture.
void drawGround(Canvas& ground, float time) {
    static int line = 0;
    const int lines = ground.pixels[0][0] == 0 ? Canvas_Height : Canvas_Height / 3;
    for (int count = 0; count < lines; ++count, line = (line + 1) % Canvas_Height)
        for (int x = 0; x < Canvas_Width; ++x)
            ground.pixels[line][x] = shadeGround(x, line, 0.008f * time);
}

float twistAt(float height, float time) {
    const float force = 0.26f * Num_Sin(0.09f * time);
    return 0.16f * time + force * Num_Sin(height * 0.9f - 0.11f * time) +
           0.10f * Num_Sin(height * 1.6f + 0.17f * time);
}

Colour shadeSide(int side, float across, int y, float facing) {
    const Lettering& letter = letters[side];
    const int x = int((across - 0.5f) * 150) + letter.width / 2;
    const int row = (y + side * 48) % 192 - (192 - letterSize) / 2;
    const float shadow = Letters_CoverAt(letter, x - 5, row - 5);
    const float rim = 0.7f * Num_Smooth(0.06f, 0.03f, std::min(across, 1 - across));
    const Colour cloth = Colour_Scale(sides[side], 1 - 0.35f * shadow);
    const Colour lit = Colour_Mix(cloth, 0xFFFFFF, std::max(rim, Letters_CoverAt(letter, x, row)));
    return Colour_Mix(Colour_Scale(lit, 0.25f + 0.75f * facing), 0xFFFFFF,
                      0.18f * Num_Smooth(0.75f, 1, facing));
}

// One row of one side, between two of the pillar's four edges; those that look away are not seen.
// `reach` is half the pillar's width at its broadest.
void drawSide(Canvas& canvas, int side, int y, float centre, float twist, float reach) {
    const float left = centre + reach * Num_Cos(twist + 0.25f * float(side));
    const float right = centre + reach * Num_Cos(twist + 0.25f * float(side) - 0.25f);
    for (int x = int(left); float(x) < right; ++x) {
        const float cover = std::min(float(x + 1) - left, right - float(x));
        const float across = Num_Clamp((float(x) + 0.5f - left) / (right - left));
        const float facing = (right - left) / (reach * 1.4142f);
        Canvas_Blend(canvas, x, y, shadeSide(side, across, y, facing), cover);
    }
}

void drawShadow(Canvas& canvas, int y, float centre, float twist, float reach) {
    const float spread = reach * (0.7f + 0.3f * std::fabs(Num_Cos(2 * twist)));
    for (int x = 0; x < Canvas_Width; ++x) {
        const float away = std::fabs(float(x) - centre - 26) - spread;
        Canvas_Blend(canvas, x, y, 0x602040, 0.42f * Num_Smooth(26, -6, away));
    }
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static Canvas ground;
    const float reach = 100 + 11 * Music_NoteAt("kick", time).level;
    drawGround(ground, time);
    canvas = ground;
    for (int y = 0; y < Canvas_Height; ++y) {
        const float height = float(y) / float(Canvas_Height), twist = twistAt(height, time);
        const float centre = Canvas_MidX + 46 * Num_Sin(0.43f * height + 0.08f * time);
        drawShadow(canvas, y, centre, twist, reach);
        for (int side = 0; side < 4; ++side)
            drawSide(canvas, side, y, centre, twist, reach);
    }
    PixelFont_Write(canvas, "OSTRIK", 20, 20, 2, 0x602040);
    PixelFont_Write(canvas, "INTRO 14", 20, 40, 2, 0x602040);
    PixelFont_Write(canvas, "MOPA", 396, 332, 3, 0xFF3C78);
    PixelFont_Write(canvas, "FOR A FRIEND", 396, 360, 1, 0x602040);
}
