// A home computer of one's childhood: it says hello, loads a program from tape with stripes in its
// border, and runs it; the program fills the screen with a maze, and a myrtle grows in it.
#include "stage.h"
const char Intro_Title[] = "Myrtle Home Computer Loader Remake";

const char Intro_Tune[] = R"(
// A home computer with one sound chip of three voices: it beeps, loads, and then plays for itself.
tempo 120
volume 51
lead = pulse width 50 adsr 2 150 60 80 vibrato 6 22 level 40
harmony = pulse width 25 adsr 2 200 60 20 arpeggio 50 level 30
bass = triangle adsr 1 160 75 30 level 70
bell = pulse width 50 adsr 1 180 0 30 level 30
key = noise adsr 1 14 0 6 highpass 2500 20 level 34
tape = pulse width 50 adsr 2 10 100 10 hold 900 12 level 26
T bell o5 l8 b >e r4 r2 | r1 | r1
T key l16 r8 x r x x r x x r x x r x x r | r1 | r2 r4 r x x r
T tape o5 l1 r | e2 g2 | e2 r2
V lead o5 l8 g4 b- >d4 c <b- a | b-4 g4 d2 | e-4 g b-4 a g f | g2. r4 |
  g4 b- >d4 f e- d | c4. d e-4 <a4 | a4 b- a4 f+ g a | g2 r2
V harmony o4 l1 (g b- >d) | (g b- >d) | (e- g b-) | (d g b-) | (g b- >d) | (c e- a) | (d f+ a) | (g b- >d)
V bass o2 l8 [g g > g <]2 g g | [g g > g <]2 g g | [e- e- > e- <]2 e- e- | [d d > d <]2 d d |
  [g g > g <]2 g g | [c c > c <]2 c c | [d d > d <]2 d d | [g g > g <]2 g d
play |: T V
)";

namespace {
constexpr int left = 64, top = 56, columns = 24, rows = 17, cell = 16;
constexpr Colour frame = 0x6CB088, screen = 0x18402C, text = 0xA8F0B8;
constexpr float tapeStart = 2, tapeEnd = 5, runStart = 6; // as in the tune
constexpr float mazeCellsPerSecond = 140;

// What is typed and answered, and when each line begins.
struct Line {
    float start;
    const char* words;
    bool isTyped; // sign by sign, by somebody at the keys
};
constexpr Line lines[] = {{0, "** MYRTLE 2 BASIC **", false},
                          {0, "26112 LEAVES FREE", false},
                          {0, "READY.", false},
                          {0.1f, "LOAD \"MYRTLE\"", true},
                          {1, "START THE TAPE", false},
                          {1.5f, "FOUND MYRTLE", false},
                          {2, "LOADING", false},
                          {5.3f, "READY.", false},
                          {5.5f, "RUN", true}};

void drawTyping(Canvas& canvas, float phase) {
    int row = 1, cursor = 0;
    for (const Line& line : lines)
        if (phase >= line.start) {
            const int length = PixelFont_Length(line.words);
            const int come = line.isTyped ? int((phase - line.start) * 18) : length;
            const int count = std::min(length, come);
            char shown[columns + 1] = "";
            std::copy_n(line.words, count, shown);
            PixelFont_Write(canvas, shown, left + 8, top + ++row * cell + 1, 2, text);
            cursor = line.isTyped ? count : 0;
        }
    if (Num_Fract(phase * 1.8f) < 0.5f)
        Canvas_Bar(canvas, left + 8 + cursor * cell, top + (cursor ? row : row + 1) * cell, cell,
                   cell, text);
}

// Broad stripes of leaf and berry while the tape runs.
void drawBorder(Canvas& canvas, float phase) {
    constexpr Colour stripe[] = {0x103020, 0xE8F0D0, 0x30A050, 0x9040A0, 0xF0C040};
    const int moment = int(phase * 40), high = 5 + int(16 * Num_Hash(moment / 3));
    for (int y = 0; y < Canvas_Height; ++y) {
        const int choice = int(5 * Num_Hash((y + moment * 37) / high, moment / 2));
        Canvas_Bar(canvas, 0, y, Canvas_Width, 1,
                   phase > tapeStart && phase < tapeEnd ? stripe[choice] : frame);
    }
}

// One stroke to a cell, falling or rising by chance; the picture scrolls when it is full.
void drawMaze(Canvas& canvas, float running) {
    const int made = int(running * mazeCellsPerSecond);
    const int hidden = std::max(0, made / columns - rows + 1);
    for (int number = hidden * columns; number < made; ++number) {
        const float x = float(left + number % columns * cell), size = float(cell);
        const float y = float(top + (number / columns - hidden) * cell);
        const float fall = Num_Hash(number, 64) < 0.5f ? 0 : size;
        Canvas_Line(canvas, {x, y + fall}, {x + size, y + size - fall}, 4,
                    Colour_Mix(0x2C8048, 0x80D878, Num_Hash(number, 65)));
    }
}

void drawLeaf(Canvas& canvas, Point root, float side, float size, Colour colour) {
    const auto at = [=](float along, float across) {
        return Point{root.x + side * size * (along + 0.3f * across),
                     root.y + size * (across - 0.55f * along)};
    };
    Canvas_Polygon(canvas, {at(0, 0), at(0.4f, 0.23f), at(1, 0), at(0.4f, -0.2f)}, colour);
    Canvas_Line(canvas, at(0, 0), at(0.8f, 0), 1.2f, 0x0C3018);
}

void drawFlower(Canvas& canvas, Point middle, float size, float turn) {
    for (int petal = 0; petal < 6; ++petal) { // the sixth lies in the middle
        const float angle = float(petal) / 5 + turn, out = petal < 5 ? size : 0;
        const Colour colour = petal == 5 ? 0xF0C020 : petal & 1 ? 0xFFFFFF : 0xF0E8F4;
        const float wide = petal < 5 ? 0.75f * size : 0.35f * size;
        Canvas_PaintBall(canvas, {middle.x + out * Num_Cos(angle), middle.y + out * Num_Sin(angle)},
                         wide, wide, [=](float, float, float) { return colour; });
    }
}

// The flowers open a little with each note.
void drawMyrtle(Canvas& canvas, float running, float note) {
    const float grown = Num_Smooth(0.5f, 6, running), sway = 16 * Num_Sin(0.2f * running);
    const auto stem = [=](float share) {
        return Point{256 + sway * share * share * grown, 326 - 236 * share * grown};
    };
    for (int part = 0; part < 24; ++part)
        Canvas_Line(canvas, stem(float(part) / 24), stem(float(part + 1) / 24), 5, 0x704820);
    for (int pair = 1; pair <= 7; ++pair) {
        const float share = 0.13f * float(pair);
        const float open = Num_Smooth(share, share + 0.35f, grown * 1.35f);
        const float size = 72 * open * (1.15f - 0.6f * share);
        drawLeaf(canvas, stem(share), 1, size, 0x1C6830);
        drawLeaf(canvas, stem(share), -1, size, 0x2C8840);
        if (pair % 2 == 0)
            drawFlower(canvas, stem(share), (0.17f + 0.05f * note) * size, 0.02f * running);
    }
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    const float phase = Music_LoopTimeAt(time), running = phase - runStart;
    drawBorder(canvas, phase);
    Canvas_Bar(canvas, left, top, columns * cell, rows * cell, screen);
    if (running < 0)
        return drawTyping(canvas, phase);
    drawMaze(canvas, running);
    drawMyrtle(canvas, running, Music_NoteAt("lead", time).level);
    Canvas_Bar(canvas, left, top, columns * cell, 22, screen);
    PixelFont_WriteCentred(canvas, "M Y R T L E", top + 4, 2, 0xF8FFE8);
}
