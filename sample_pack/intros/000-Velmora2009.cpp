// A flight through coloured stars, the party's name in chrome, and words on a wave below.
#include "stage.h"
const char Intro_Title[] = "Velmora 2009 Intro";

const char Intro_Tune[] = R"(
// A party anthem in A minor: a lead over four on the floor, then a quieter middle part.
tempo 138
volume 68
delay 3/16 35
reverb 60
lead = saw adsr 5 300 70 200 lowpass 3600 20 detune 14 vibrato 5 18 level 34 delay 35 reverb 25
strings = saw adsr 60 400 70 400 lowpass 1300 20 detune 18 level 11 reverb 40
arp = pulse width 25 adsr 2 400 40 60 lowpass 2200 30 arpeggio 18.4 level 14 pan 35 delay 40
bass = saw adsr 2 160 50 40 lowpass 480 40 sweep 2.5 90 level 46
kick = sine adsr 1 200 0 20 drop 32 45 key c2 level 90
clap = noise adsr 1 160 0 20 bandpass 1500 30 level 55 reverb 30
hat = noise adsr 1 45 0 10 highpass 8000 0 level 20 pan -20
A lead o5 l8 a4. e a4 b4 | >c4. <b a4 g4 | e4. g >c4 <b4 | g2. e4 |
  a4. e a4 b4 | >c4. d e4 c4 | d4 c <b a4 b4 | a2. r4
A strings o3 l1 (a >c e) | (f a >c) | (g >c e) | (g b >d) | (a >c e) | (f a >c) | (g b >d) | (a >c e)
A arp o5 l1 (a e c) | (f c <a) | (g e c) | (g d <b) | (a e c) | (f c <a) | (g d <b) | (a e c)
A bass o2 l8 [r a]4 | [r f]4 | [r >c<]4 | [r g]4 | [r a]4 | [r f]4 | [r g]4 | [r a]4
B lead o5 l8 v65 f4. e d4 f4 | e4. d c4 e4 | d4. c <b4 >d4 | c2 <b2 |
  >f4. e d4 a4 | g4. f e4 >c4 | <b4 a g+ e4 g+4 | a1
B strings o4 l1 (d f a) | (c e a) | (<b >d e) | (c e a)2 (<b >e g+)2 |
  (d f a) | (c e g) | (<b >d e g+) | (c e a)
B bass o2 l2 d d | a a | e e | a e | d d | c c | e e | a a4 e4
A kick l4 x x x x
A clap l4 r x r x
A hat l8 r x r x r x r v50 x16 x16
B kick l4 x r r x8 x8
B hat l8 v40 x x v70 x v40 x x x v70 x v40 x
I arp o5 l1 (a e c) | (f c <a)
I kick l4 x x x x | x x x x8 x8
I hat l8 r x r x r x r x
play I |: A A B A A+2 B
)";

namespace {
constexpr int starCount = 500;
constexpr char words[] = "THE OSTRIK CREW IS BACK FROM VELMORA 2009 ... THREE DAYS, NO SLEEP, ONE "
                         "TESSEL FORGE AND TEA BY THE BUCKET ... CHEERS TO HOBNAIL, BLUEQUAY, "
                         "LANTERN VALE, ANVIL 1733 AND ALL MARMOTS ... ";
constexpr Colour chrome[] = {0x081030, 0x2050B0, 0x80C8FF, 0xFFFFFF, 0x301808,
                             0x905018, 0xF0B040, 0xFFF8C0, 0xC07020};

const Title party = Letters_MakeTitle("VELMORA", Face::Sans, 104, Slant::Italic);
const Title year = Letters_MakeTitle("2 0 0 9", Face::Serif, 64, Slant::Italic);

// The haze lights up with each beat of the drum.
Colour shadeSky(float x, float y, float time, float kick) {
    const float haze = (1 + 0.5f * kick) * Num_Noise(x / 110 + time * 0.15f, y / 70);
    const float far = std::fabs(y - 150) / 240;
    return Colour_Make(0.25f * haze * haze, 0.02f + 0.08f * haze * far, 0.10f + 0.22f * haze);
}

void drawStar(Canvas& canvas, int star, float time, float kick) {
    const float x = Num_Hash(star, 1) - 0.5f, y = Num_Hash(star, 2) - 0.5f;
    const auto place = [=](float depth) {
        return Point{Canvas_MidX + x * 260 / depth, 150 + y * 200 / depth};
    };
    const float depth = Num_Fract(Num_Hash(star) - 0.45f * time) + 0.03f;
    const float light = Num_Clamp(1.2f - depth);
    const Colour tint = Colour_Mix(0xFFFFFF, Colour_Hue(Num_Hash(star, 3)), 0.4f);
    Canvas_Line(canvas, place(depth), place(depth + 0.035f + 0.05f * kick),
                1 + light * light * 1.4f, Colour_Scale(tint, light));
}

void drawChrome(Canvas& canvas, const Title& title, int top, float time) {
    const int left = Letters_Centred(title.words);
    const float height = float(title.words.height);
    Letters_Surround(canvas, title, top, Colour_Make(0.1f, 0.14f, 0.5f + 0.2f * Num_Sin(time)));
    Letters_Colour(canvas, title.words, left + 4, top + 5, 0x04040C);
    Letters_Colour(canvas, title.words, left - 1, top - 1, 0xE0F0FF);
    Letters_Paint(canvas, title.words, left, top, [=](float x, float y) {
        const float bent = y / height + 0.02f * Num_Sin(x / 90 + 0.3f * time);
        const float gleam = x + 0.6f * y + 60 - 900 * Num_Fract(time / 3);
        return Colour_Mix(Colour_Ramp(chrome, (bent - 0.18f) / 0.64f), 0xFFFFFF,
                          Num_Clamp(1 - std::fabs(gleam) / 40));
    });
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    const float kick = Music_NoteAt("kick", time).level;
    Canvas_Fill(canvas, [=](float x, float y) { return shadeSky(x, y, time, kick); });
    for (int star = 0; star < starCount; ++star)
        drawStar(canvas, star, time, kick);
    drawChrome(canvas, party, 80, time);
    drawChrome(canvas, year, 190, time + 1.5f);
    PixelFont_Scroll(words, 120 * time, 3, [&](float x, float y) {
        const float wave = 320 + 22 * Num_Sin(x / 300 + 0.35f * time);
        const Colour ink = Colour_Hue(x / 700 - 0.2f * time, 1 - y / 50);
        Canvas_Blend(canvas, int(x) + 2, int(wave + y) + 3, 0x000010, 0.7f);
        Canvas_Blend(canvas, int(x), int(wave + y), ink, 1);
    });
}
