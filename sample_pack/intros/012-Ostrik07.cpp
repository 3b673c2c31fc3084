// A poster of three letters, printed without end and turned and drawn near under the eye.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 7 KTZ";

const char Intro_Tune[] = R"(
// A poster of the machine age: a press that stamps, brass in bare fifths, a march in C sharp.
tempo 126
volume 64
delay 1/8 15
reverb 40
press = noise adsr 1 140 0 30 lowpass 2400 40 sweep -3 120 level 80 reverb 25
iron = sine adsr 1 200 0 40 fm 3.3 7 90 key c+4 level 30 pan 35 reverb 30
low = saw adsr 8 120 75 50 lowpass 900 40 detune 12 level 40
brass = saw adsr 25 150 75 90 lowpass 1500 25 sweep 1.2 160 detune 9 level 26 reverb 25
horn = saw adsr 30 150 80 140 lowpass 2400 15 detune 6 vibrato 4.5 15 level 28 pan -20 reverb 30
steam = noise adsr 5 200 0 60 highpass 4500 0 level 20 pan -45
kick = sine adsr 1 160 0 20 drop 28 40 key c+2 level 85
roll = noise adsr 1 70 0 10 bandpass 2600 20 level 45 pan 10
A low o2 l8 c+4 c+ c+ g+4 c+4 | c+4 c+ c+ d4 c+4 | c+4 c+ c+ g+4 c+4 | d4 d d e4 d c+
A press l4 x r x r
A iron l8 r4 x r r x x r
A kick l4 x x x x
A roll l16 r4 x r x x r4 x8 x x
A steam l1 r2 r8 x8 r4
B brass o4 l4 (c+ g+) (c+ g+)8 (e b)8 (f+ >c+) (e b) | (d a)2 (c+ g+)2 | (c+ g+) (c+ g+)8 (e b)8 (g+ >d+) (f+ >c+) |
  (a >e)2 (g+ >d+)2 | (a >e) (a >e)8 (g+ >d+)8 (f+ >c+) (e b) | (d a)2. (e b)4 | (d a) (<b >f+) (d a) (e b) | (c+ g+)2 r2
B low o2 l8 c+4 c+ c+ g+4 c+4 | d4 d d c+4 c+4 | c+4 c+ c+ g+4 c+4 | <a4 a a g+4 g+4> |
  <a4 a a g+4 g+4> | d4 d d e4 e4 | <b4 b b >d4 e4 | c+4 g+4 c+ c+ c+ c+
B press l4 x r x r
B kick l4 x x x x8 x8
B roll l16 r4 x r x x r4 x8 x x
C horn o4 l4 g+2 f+ e | d2 c+ d | e f+ g+ b | a2 g+2 | >c+2 <b a | g+ f+ e d | e d c+ <b | >c+1
C brass o3 l2 (c+ g+) (c+ g+) | (d a) (d a) | (e b) (e b) | (f+ >c+) (e b) | (a >e) (a >e) | (e b) (d a) | (d a) (<b >f+) | (c+ g+)1
C low o2 l4 c+ r c+ r | d r d r | e r e r | f+ r e r | <a r a r> | e r d r | d r <b> r | c+ r c+8 c+8 c+
C press l2 x r
C iron l4 r x r x8 x8
C roll l16 x8 x x x8 x8 x x x x x8 x8
A brass o3 l1 r | r | r | r2 r8 (d a)8 (d a)8 (c+ g+)8
play A |: A B A C B+2
)";

namespace {
constexpr int tileSize = 256, mask = tileSize - 1;
constexpr Colour red = 0xD8281C, cream = 0xF4E8CC, black = 0x181410, steel = 0x5C7C88;

const Lettering letters = Letters_Make("KTZ", Face::Sans, 128);

Colour tile[tileSize][tileSize];

// A disc, two diagonal beams and a frame, as posters had them when the presses were new.
Colour shadeGround(int x, int y) {
    const int dx = x - 84, dy = y - 150, diagonal = (x + y) & mask;
    if (dx * dx + dy * dy < 62 * 62)
        return dx * dx + dy * dy < 46 * 46 ? black : steel;
    if (diagonal > 222 && diagonal < 246)
        return steel;
    return ((x - y) & mask) < 14 ? black : x < 4 || y < 4 ? red : cream;
}

void makeTile() {
    for (int y = 0; y < tileSize; ++y)
        for (int x = 0; x < tileSize; ++x)
            tile[y][x] = shadeGround(x, y);
    const int left = 128 - letters.width / 2, top = 40;
    for (int step = 8; step >= 0; --step) // from the foot of their shadow up to the letters
        for (int y = 0; y < letters.height; ++y)
            for (int x = 0; x < letters.width; ++x)
                if (Letters_CoverAt(letters, x, y) > 0.5f)
                    tile[(top + y + step) & mask][(left + x + step) & mask] = step ? black : red;
}

// The mean of the four nearest points of the tile.
Colour readTile(float x, float y) {
    const float left = Num_Floor(x), top = Num_Floor(y);
    const int column = int(left), row = int(top), next = (column + 1) & mask;
    const Colour* upper = tile[row & mask];
    const Colour* lower = tile[(row + 1) & mask];
    return Colour_Mix(Colour_Mix(upper[column & mask], upper[next], x - left),
                      Colour_Mix(lower[column & mask], lower[next], x - left), y - top);
}

// The darker a place, the farther it lies from the light that wanders over the table.
float lightAt(float x, float y, float time) {
    const float dx = (x - 256 - 150 * Num_Sin(0.07f * time)) / 400;
    const float dy = (y - 170 - 80 * Num_Sin(0.11f * time)) / 330;
    return Num_Clamp(1.08f - dx * dx - dy * dy, 0.25f, 1);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (tile[0][0] == 0)
        makeTile();
    const float turn = 0.04f * time + 0.12f * Num_Sin(0.09f * time);
    const float blow = 0.06f * Music_NoteAt("press", time).level; // the press shakes the table
    const float zoom = (0.95f - 0.55f * Num_Cos(0.10f * time)) * (1 - blow);
    const float cosine = zoom * Num_Cos(turn), sine = zoom * Num_Sin(turn);
    const float left = 60 * time + 128, top = 110 + 90 * Num_Sin(0.05f * time);
    Canvas_Fill(canvas, [=](float x, float y) {
        const float dx = x - Canvas_MidX, dy = y - Canvas_MidY;
        const Colour ink = readTile(dx * cosine - dy * sine + left, dx * sine + dy * cosine + top);
        return Colour_Scale(ink, lightAt(x, y, time));
    });
    Canvas_Bar(canvas, 0, 344, Canvas_Width, 26, black);
    Canvas_Bar(canvas, 0, 346, Canvas_Width, 22, red);
    PixelFont_WriteCentred(canvas, "* * *  OSTRIK INTRO 7 - KTZ FOR KETZIL  * * *", 353, 1, cream);
}
