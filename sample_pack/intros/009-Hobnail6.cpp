// A turbo loader: stripes race through the border, rings beat against each other in the middle, and
// the blocks are counted off.
#include "stage.h"
const char Intro_Title[] = "Hobnail Loader Intro #6";

const char Intro_Tune[] = R"(
// A turbo loader: its pilot tone, data that chirps along, and a driving beat over it in E minor.
tempo 144
delay 1/8 35
pilot = pulse width 50 adsr 5 50 100 30 vibrato 7 12 level 11 pan -20
data = pulse width 50 adsr 2 20 100 10 hold 700 13 level 12 pan 20
chirp = pulse width 35 adsr 1 90 0 10 drop 26 60 level 17 pan 40 delay 30
lead = pulse width 25 adsr 2 150 60 80 vibrato 6 20 level 25 delay 25
bass = saw adsr 1 120 40 20 lowpass 700 55 sweep 2.2 70 level 48
stab = pulse width 50 adsr 1 160 30 40 arpeggio 48 level 16 pan -30 delay 30
kick = sine adsr 1 140 0 10 drop 34 35 key c2 level 90
snare = noise adsr 1 120 0 10 bandpass 2200 10 level 60
hat = noise adsr 1 25 0 10 highpass 8500 0 level 20
P pilot o6 l1 c | r | r | r
P data o5 l1 r | e | e | e2 f+2
P chirp o6 l16 r2. e r g b | r1 | r2 b g e r r4 | r2 b g e r b g e r
P kick l4 r1 | r1 | x x x x | x x x x8 x8
P bass o1 l16 r1 | r1 | [e r e e]4 | [e r e e]4
A bass o1 l16 [e r e e > e < e r e]2 | [e r e e > e < e r e]2 | [g r g g > g < g r g]2 |
  a r a a > a < a r a b r b b > b < b r b
A stab o4 l8 r (e g b) r4 r (e g b) r4 | r (e g b) r4 (e g b)4 r4 | r (d g b) r4 r (d g b) r4 |
  r (e a >c) r4 (d+ f+ b)4 r4
A kick l16 x8 r8 x8 r8 x8 x r x8 r8
A snare l4 r x r x
A hat l16 x x v40 x v80 x
A chirp o6 l16 r2. r8 e g | r1 | r2. b g e r | r1
A data o6 l16 v30 e8 r8 r4 r2 | r2 e8 r4 r8 | g8 r8 r4 r2 | r2 r4 b4
B lead o5 l8 e4 g b4 a g f+ | g4. e b2 | d4 g b4 >d c <b | a4 >c4 <b4 f+4 |
  e4 g b4 a g f+ | g4 b >e4. d8 c8 | <b4 a g4 f+ e d+ | e2 r2
B bass o1 l16 [e r e e > e < e r e]2 | [e r e e > e < e r e]2 | [g r g g > g < g r g]2 |
  a r a a > a < a r a b r b b > b < b r b | [>c r c c > c < c r c <]2 |
  [e r e e > e < e r e]2 | [b r b b > b < b r b]2 | [e r e e > e < e r e]2
B kick l16 x8 r8 x8 r8 x8 x r x8 r8
B snare l4 r x r x8 x16 x16
B hat l16 x x v40 x v80 x
play P |: A A B A B
)";

namespace {
constexpr int left = 48, top = 40, width = 416, height = 304;
constexpr Colour stripes[] = {0xFFFFFF, 0x68D0A8, 0xB85890, 0xE8E868, 0x5048C0,
                              0x70C0E8, 0xD07838, 0x80E070, 0x181818, 0xF0A0A0};
constexpr int blockCount = 206;
constexpr float secondsToLoad = 24;

const Lettering name = Letters_Make("HOBNAIL", Face::Sans, 84, Slant::Italic);

// The stripes' heights change with what is read: short ones for zeros, long ones for ones. The drum
// makes all of them broad.
void drawBorder(Canvas& canvas, float time) {
    const int moment = int(12 * Music_BeatAt(time));
    const float broad = 9 + 24 * Music_NoteAt("kick", time).level;
    for (int y = 0, count = 0; y < Canvas_Height; ++count) {
        const int high = 3 + int(broad * Num_Hash(count, moment));
        const int choice = int(10 * Num_Hash(count, moment / 2 + 77));
        Canvas_Bar(canvas, 0, y, Canvas_Width, high, stripes[choice]);
        y += high;
    }
}

float ring(int x, int y, Point centre) {
    const float dx = float(x) - centre.x, dy = float(y) - centre.y;
    return Num_Sin(std::sqrt(dx * dx + dy * dy) / 15);
}

// Where the rings of one centre cross those of the other, light turns into dark.
void drawRings(Canvas& canvas, float time) {
    const auto wander = [=](float fastX, float fastY) {
        return Point{Canvas_MidX + 130 * Num_Sin(time * fastX),
                     Canvas_MidY + 90 * Num_Sin(time * fastY + 0.2f)};
    };
    const Point one = wander(0.083f, 0.111f), other = wander(-0.097f, 0.071f);
    const Colour light = Colour_Mix(0xF83878, 0xF8A020, 0.5f + 0.5f * Num_Sin(0.05f * time));
    for (int y = top; y < top + height; ++y)
        for (int x = left; x < left + width; ++x) {
            const float beat = 9 * ring(x, y, one) * ring(x, y, other);
            const float shade = 1 - 0.5f * std::fabs(float(y) - Canvas_MidY) / 152;
            canvas.pixels[y][x] = Colour_Mix(0x180828, Colour_Scale(light, shade), 0.5f + beat);
        }
}

void drawName(Canvas& canvas, float time) {
    const int nameLeft = Letters_Centred(name), nameTop = 76;
    for (int step = 7; step >= -2; step -= step == 1 ? 3 : 1)
        Letters_Colour(canvas, name, nameLeft + step, nameTop + step, 0x100418);
    Letters_Paint(canvas, name, nameLeft, nameTop, [=](float x, float y) {
        const float gleam = Num_Sin((x + y) / 260 - 0.4f * time);
        return Colour_Mix(0xFFFFFF, 0x60E8F0, y / 84 + 0.4f * gleam);
    });
}

void drawPanel(Canvas& canvas, float time) {
    const float share = Num_Fract(time / secondsToLoad);
    char line[] = "LOADER #6 000 OF 206";
    for (int digit = 12, rest = int(share * float(blockCount)); digit >= 10; --digit, rest /= 10)
        line[digit] = char('0' + rest % 10);
    Canvas_Bar(canvas, 76, 214, 360, 84, 0x100418);
    Canvas_Bar(canvas, 80, 218, 352, 76, 0x281048);
    PixelFont_WriteCentred(canvas, line, 232, 2, 0xFFFFFF);
    Canvas_Bar(canvas, 92, 262, 328, 20, 0x100418);
    for (int block = 0; block * 4 < int(share * 322); ++block)
        Canvas_Bar(canvas, 95 + block * 4, 265, 3, 14, Colour_Hue(float(block) / 110 - time / 3));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    drawBorder(canvas, time);
    drawRings(canvas, time);
    drawName(canvas, time);
    drawPanel(canvas, time);
}
