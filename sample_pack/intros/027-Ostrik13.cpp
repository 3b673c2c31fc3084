// Signs of a script that nobody can read rain down; where they cross the name they stay and shine.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 13 Glyphwork";

const char Intro_Tune[] = R"(
// The glyphs tick down: a dry pulse in F minor, tones that nobody can read, and a voice of the tube.
tempo 132
volume 76
delay 3/16 55
reverb 55
tick = noise adsr 1 12 0 5 highpass 6500 30 level 30 pan -35
tock = sine adsr 1 18 0 6 fm 5.3 3 10 key c7 level 22 pan 35 delay 15
glyph = sine adsr 1 110 0 40 fm 2.5 2.2 60 hold 8 0 level 24 pan 20 delay 55 reverb 25
cipher = pulse width 12 adsr 1 70 0 30 hold 16.5 7 lowpass 4200 30 level 15 pan -45 delay 50
bass = sine adsr 3 260 60 60 fm 1 1.8 120 level 62
hum = saw adsr 900 600 80 1200 bandpass 520 55 wobble 0.2 1 detune 10 level 34 reverb 40
kick = sine adsr 1 180 0 15 drop 30 40 key f1 level 95
snap = noise adsr 1 70 0 12 bandpass 3400 30 level 46 reverb 35
I tick l16 v40 x v90 x v30 x v60 x
I tock l16 r r r x r r r r r r x r r x r r
I cipher o6 l16 f r r c r r a- r f r r e- r r c r
A tick l16 v40 x v90 x v30 x v60 x
A tock l16 r r r x r r r r r r x r r x r r | r r x r r r r x r r r r x r r r
A kick l4 x x x x
A snap l4 r x r x
A bass o1 l16 f8 r f r8 f r f8 r8 a-8 r f | f8 r f r8 f r f8 r8 e-8 r e- | d-8 r d- r8 d- r d-8 r8 f8 r d- | e-8 r e- r8 e- r e-8 r8 g8 r8
A glyph o5 l16 f r >c r r <a- r r f r r >e- r <b- r r | >c r r <f r r a- r r r >c r r <f r r
A cipher o6 l16 f r r c r r a- r f r r e- r r c r
B tick l16 v90 x v30 x v60 x v40 x
B tock l8 x r x r
B kick l8 x r r x r x r r
B snap l4 r x r x16 x16 x8
B bass o1 l8 f2. f8 f8 | d-2. d-8 d-8 | b-2. b-8 b-8 | c2 g4 c4
B hum o4 l1 (f a- >c) | (d- f a-) | (<b- >d- f) | (c e g)
B glyph o6 l16 c r r <a-> r r <f> r c r r e- r <b-> r r | d- r r <a-> r r <f> r d- r r e- r f r r |
  f r r d- r r <b-> r f r r e- r d- r r | g r r e r r c r g r r f r e r r
play I I |: A A B A B B
)";

namespace {
constexpr int cell = 8;
constexpr int columns = Canvas_Width / cell, rows = Canvas_Height / cell;
constexpr Colour glow[] = {0x000400, 0x00280C, 0x00641C, 0x10B838, 0x70FF80, 0xE8FFE8};

const Lettering name = Letters_Make("Glyphwork", Face::Sans, 108);

// A sign is made by lot: the left half of seven rows, mirrored, and most often a stroke between.
bool isSet(int sign, int x, int y) {
    const int half = x < 4 ? x : 6 - x;
    const bool isInk =
        half == 3 ? Num_Hash(sign * 7 + y) < 0.62f : Num_Hash(sign * 31 + half, y) < 0.4f;
    return x < 7 && y < 7 && isInk;
}

struct Drop {
    float head;   // the row of its first sign
    float length; // in rows
};

// Two drops to a column, of their own speed and length.
Drop dropAt(int column, int which, float time) {
    const float length = 10 + 26 * Num_Hash(column, which + 50);
    const float speed = 9 + 17 * Num_Hash(column, which + 40);
    const float way = time * speed + 130 * Num_Hash(column, which + 60);
    return {std::fmod(way, float(rows) + length + 12), length};
}

float lightAt(int column, int row, float time) {
    float light = 0;
    for (int which = 0; which < 2; ++which) {
        const Drop drop = dropAt(column, which, time);
        const float behind = drop.head - float(row);
        if (behind >= 0 && behind < drop.length)
            light = std::max(light, behind < 1 ? 1 : 0.72f * (1 - behind / drop.length));
    }
    return light;
}

// The name glows in the signs that lie on it, and a little between them. Signs change with the
// ticks that are heard, some at every one and some more rarely.
void drawCell(Canvas& canvas, int column, int row, float time, float kick) {
    const float rain = lightAt(column, row, time);
    const int ticks = int(4 * Music_BeatAt(time)), every = 1 + int(7 * Num_Hash(column, row));
    const int sign = (ticks + column) / every + 97 * column + 13 * row;
    for (int y = 0; y < cell; ++y)
        for (int x = 0; x < cell; ++x) {
            const int left = column * cell + x, top = row * cell + y;
            const float kept = Letters_CoverAt(name, left - Letters_Centred(name),
                                               top - (Canvas_Height - name.height) / 2);
            const float light = Num_Mix(rain * 0.85f, 0.74f + 0.2f * rain + 0.22f * kick, kept);
            canvas.pixels[top][left] =
                Colour_Ramp(glow, isSet(sign, x, y) ? light : 0.10f * rain + 0.42f * kept);
        }
}

// Lines of a tube, and its dim corners.
float tubeAt(float x, float y) {
    const float dx = x / Canvas_MidX - 1, dy = y / Canvas_MidY - 1;
    return (int(y) & 1 ? 0.78f : 1) - 0.4f * (dx * dx * dx * dx + dy * dy * dy * dy);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    const float kick = Music_NoteAt("kick", time).level;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            drawCell(canvas, column, row, time, kick);
    for (int number = 0; number < 2 * columns; ++number) {
        const float head = Num_Floor(dropAt(number / 2, number % 2, time).head);
        Canvas_Glow(canvas, {float(number / 2 * cell) + 3.5f, head * cell + 3.5f}, 13, 0x188030);
    }
    Canvas_Fill(canvas, [&](float x, float y) {
        return Colour_Scale(canvas.pixels[int(y)][int(x)], tubeAt(x, y));
    });
}
