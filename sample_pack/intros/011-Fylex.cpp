// Colours that flow into each other like marbled paper, and words that swim on them.
#include "stage.h"
const char Intro_Title[] = "Fylex - Fluent Lexical Systems Intro Remake";

const char Intro_Tune[] = R"(
// Words that flow: an easy, swinging tune in C minor on an electric piano with a walking bass.
tempo 104
volume 68
swing 64
delay 3/8 25
reverb 50
piano = sine adsr 2 1200 25 180 fm 1 1.6 500 detune 5 tremolo 4.5 25 level 19 pan -20 reverb 25
flute = sine adsr 35 100 85 110 vibrato 5.2 26 breath 5 level 36 pan 15 delay 25 reverb 30
bass = triangle adsr 3 400 40 60 lowpass 900 20 level 60
brush = noise adsr 12 110 0 20 bandpass 4200 10 level 17 pan 25
ride = noise adsr 1 130 0 20 highpass 9000 0 level 12 pan -30
kick = sine adsr 1 150 0 20 drop 18 30 key c2 level 48
A flute o5 l8 r g >c <b- g e- f g | r4 g f e-4 c4 | r8 f a- >c <b- a- f a- | g2. r4 |
  r8 g >c <b- >e- d c <b- | a-4. f >c4 <a-4 | g f+ g a- g f d <b | >c2. r4
A piano o4 l4 r4. (e- g b- >d)8 r2 | r (e- g b-)8 r8 r2 | r4. (e- a- >c)8 r2 | r (f b- >d)8 r8 (d g b)2 |
  r4. (e- g b- >d)8 r2 | r (e- a- >c)8 r8 r2 | r4. (f a- b >d)8 r2 | r (e- g b-)8 r8 (e- a >c)4 r4
A bass o2 l4 c d e- g | c <b- g b- | >f a- >c <a- | b- f g <g | >c e- g b- | a- g f e- | d <a- g b | >c <g >c r
B flute o5 l4 >e-. d8 c <b- | >d. c8 <b- g | a- b-8 >c8 d c8 <b-8 | >c2 <g2 |
  >e-. d8 c <b- | >d f8 d8 <b-2 | a-8 g8 f8 e-8 d8 f8 a-8 b8 | >c2 r2
B piano o4 l2 (e- a- >c) (g b- >e-) | (f b- >d) (g b- >d) | (e- a- >c) (f a- >d) | (e g b- >d-) (e- g >c) |
  (e- a- >c) (g b- >e-) | (f b- >d) (g b- >d) | (f a- >c) (f g b) | (e- g b- >d)1
B bass o2 l4 a- e- a- g | b- f g d | f g a- b- | c e g b- | a- e- a- g | b- f g d | f a- g <g | >c g c r
A ride l8 x4 v60 x v90 x x4 v60 x v90 x
A brush l4 r x r x
A kick l4 x r8 v40 x8 v80 x r
B ride l8 x4 v60 x v90 x x4 v60 x v90 x
B brush l8 r4 x r x r x16 x16 x
B kick l4 x r8 v40 x8 v80 x r
play |: A A B A
)";

namespace {
constexpr Colour paper[] = {0x0B3C5D, 0x1D7A9C, 0x7FD1C7, 0xF4F1DE,
                            0xF2CC8F, 0xE07A5F, 0x81335A, 0x0B3C5D};
constexpr float bands = 14;
constexpr int letterSize = 4; // pixels of the canvas to a pixel of the font
constexpr float cell = PixelFont_Cell * letterSize;
constexpr char words[] =
    "FLUENT LEXICAL SYSTEMS ... WORDS FLOW WHERE THEY LIKE ... A REMAKE FROM "
    "MEMORY, AND MEMORY WAS ONLY 64 K THEN ... NOUNS BY ILMAR, VERBS BY FYLEX, "
    "ADVERBS MOSTLY AVOIDED ...    ";

const Title name = Letters_MakeTitle("Fylex", Face::Serif, 150, Slant::Italic);

float flow(float x, float y, float time) {
    const float bendX = x + 0.16f * Num_Sin(1.1f * y + 0.07f * time);
    const float bendY = y + 0.18f * Num_Sin(0.9f * x - 0.05f * time);
    const float wide = Num_Sin(0.7f * bendX + 0.06f * time) + Num_Sin(0.8f * bendY);
    const float fine = Num_Sin(1.3f * (bendX + bendY) - 0.04f * time);
    return 0.25f * wide + 0.2f * fine + 0.3f * Num_Sin(bendX * bendY + 0.03f * time);
}

// Bands of one colour each, with a fine dark vein where two meet.
Colour shadeFlow(float x, float y, float time) {
    const float level = flow(x, y, time) * bands + 0.6f * time;
    const float within = Num_Fract(level);
    const Colour band = Colour_Ramp(paper, Num_Fract((level - within) / bands));
    const float vein = Num_Smooth(0, 0.10f, within) * Num_Smooth(1, 0.90f, within);
    return Colour_Scale(band, 0.55f + 0.45f * vein - 0.12f * within);
}

// Every sign rides the wave for itself and keeps upright.
void drawSign(Canvas& canvas, char sign, float x, float time) {
    const float height = 26 * Num_Sin(x / 330 - 0.5f * time) + 12 * Num_Sin(x / 140 + 0.31f * time);
    const char single[] = {sign, '\0'};
    const int left = int(x), top = 300 + int(height);
    PixelFont_Write(canvas, single, left + 4, top + 4, letterSize, 0x201830);
    for (int row = 0; row < PixelFont_Cell; ++row)
        for (int column = 0; column < PixelFont_Cell; ++column)
            if (PixelFont_IsSet(sign, column, row))
                Canvas_Bar(canvas, left + column * letterSize, top + row * letterSize, letterSize,
                           letterSize, Colour_Mix(0xFFFDF4, 0xE07A5F, float(row) / 8));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeFlow(x / 300, y / 300, time); });
    Letters_PaintTitle(canvas, name, 66, 0x101828, [=](float x, float y) {
        const float sheen = Num_Sin((x + 2 * y) / 500 - 0.2f * time);
        return Colour_Mix(0xFFFDF4, 0xF2CC8F, 0.6f * sheen);
    });
    const float gone = time * 130;
    for (int place = int(gone / cell); float(place) * cell < gone + 512; ++place)
        drawSign(canvas, words[place % PixelFont_Length(words)], float(place) * cell - gone, time);
}
