// A home computer of one's childhood: it says hello, loads a program from tape with stripes in its
// border, and runs it; the program fills the screen with a maze, and a myrtle grows in it.

#include "stage.h"

const char Intro_Title[] = "Myrtle Home Computer Loader Remake";

namespace {

constexpr int left = 64, top = 56, columns = 24, rows = 17, cell = 16;
constexpr Colour frame = 0x6CB088, screen = 0x18402C, text = 0xA8F0B8;
constexpr float tapeStart = 2.0f, tapeEnd = 5.0f, runStart = 6.0f, allSeconds = 22.0f;
constexpr float mazeCellsPerSecond = 140.0f;

// What is typed and answered, and when each line begins.
struct Line {
    float start;
    const char* words;
    bool isTyped; // sign by sign, by somebody at the keys
};
constexpr Line lines[] = {{0.0f, "** MYRTLE 2 BASIC **", false},
                          {0.0f, "26112 LEAVES FREE", false},
                          {0.0f, "READY.", false},
                          {0.1f, "LOAD \"MYRTLE\"", true},
                          {1.0f, "START THE TAPE", false},
                          {1.5f, "FOUND MYRTLE", false},
                          {2.0f, "LOADING", false},
                          {5.3f, "READY.", false},
                          {5.5f, "RUN", true}};

void drawTyping(Canvas& canvas, float time) {
    int row = 1, cursor = 0;
    for (const Line& line : lines)
        if (time >= line.start) {
            const int length = PixelFont_Length(line.words);
            const int count =
                line.isTyped ? std::min(length, int((time - line.start) * 18.0f)) : length;
            char shown[columns + 1] = "";
            std::copy_n(line.words, count, shown);
            PixelFont_Write(canvas, shown, left, top + ++row * cell + 1, 2, text);
            cursor = line.isTyped ? count : 0;
        }
    if (Maths_Fract(time * 1.8f) < 0.5f)
        Canvas_Bar(canvas, left + cursor * cell, top + (cursor ? row : row + 1) * cell, cell, cell,
                   text);
}

// Broad stripes of leaf and berry while the tape runs.
void drawBorder(Canvas& canvas, float time) {
    constexpr Colour stripe[] = {0x103020, 0xE8F0D0, 0x30A050, 0x9040A0, 0xF0C040};
    const int moment = int(time * 40.0f), high = 5 + int(16.0f * Maths_Hash(moment / 3));
    for (int y = 0; y < Canvas_Height; ++y) {
        const int choice = int(5.0f * Maths_Hash((y + moment * 37) / high, moment / 2));
        Canvas_Bar(canvas, 0, y, Canvas_Width, 1,
                   time > tapeStart && time < tapeEnd ? stripe[choice] : frame);
    }
}

// One stroke to a cell, falling or rising by chance; the picture scrolls when it is full.
void drawMaze(Canvas& canvas, float running) {
    const int made = int(running * mazeCellsPerSecond);
    const int hidden = std::max(0, made / columns - rows + 1);
    for (int number = hidden * columns; number < made; ++number) {
        const float x = float(left + number % columns * cell), size = float(cell);
        const float y = float(top + (number / columns - hidden) * cell);
        const float fall = Maths_Hash(number, 64) < 0.5f ? 0.0f : size;
        Canvas_Line(canvas, {x, y + fall}, {x + size, y + size - fall}, 4.0f,
                    Colour_Mix(0x2C8048, 0x80D878, Maths_Hash(number, 65)));
    }
}

void drawLeaf(Canvas& canvas, Point root, float side, float size, Colour colour) {
    const auto at = [=](float along, float across) {
        return Point{root.x + side * size * (along + 0.3f * across),
                     root.y + size * (across - 0.55f * along)};
    };
    Canvas_Polygon(canvas,
                   {at(0.0f, 0.0f), at(0.35f, 0.24f), at(0.75f, 0.17f), at(1.0f, 0.0f),
                    at(0.7f, -0.2f), at(0.3f, -0.2f)},
                   colour);
    Canvas_Line(canvas, at(0.0f, 0.0f), at(0.8f, 0.0f), 1.2f, 0x0C3018);
}

void drawFlower(Canvas& canvas, Point middle, float size, float turn) {
    for (int petal = 0; petal < 6; ++petal) { // the sixth lies in the middle
        const float angle = float(petal) / 5.0f + turn, out = petal < 5 ? size : 0.0f;
        const Colour colour = petal == 5 ? 0xF0C020 : petal & 1 ? 0xFFFFFF : 0xF0E8F4;
        const float wide = petal < 5 ? 0.75f * size : 0.35f * size;
        Canvas_PaintBall(canvas,
                         {middle.x + out * Maths_Cos(angle), middle.y + out * Maths_Sin(angle)},
                         wide, wide, [=](float, float, float) { return colour; });
    }
}

void drawMyrtle(Canvas& canvas, float running) {
    const float grown = Maths_Smooth(0.5f, 6.0f, running), sway = 16.0f * Maths_Sin(0.2f * running);
    const auto stem = [=](float share) {
        return Point{256.0f + sway * share * share * grown, 326.0f - 236.0f * share * grown};
    };
    for (int part = 0; part < 24; ++part)
        Canvas_Line(canvas, stem(float(part) / 24.0f), stem(float(part + 1) / 24.0f),
                    7.0f - 0.2f * float(part), 0x704820);
    for (int pair = 1; pair <= 7; ++pair) {
        const float share = 0.13f * float(pair),
                    open = Maths_Smooth(share, share + 0.35f, grown * 1.35f);
        const float size = 72.0f * open * (1.15f - 0.6f * share);
        drawLeaf(canvas, stem(share), 1.0f, size, 0x1C6830);
        drawLeaf(canvas, stem(share), -1.0f, size, 0x2C8840);
        if (pair % 2 == 0)
            drawFlower(canvas, stem(share), 0.19f * size, 0.02f * running);
    }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    const float time = std::fmod(seconds, allSeconds), running = time - runStart;
    drawBorder(canvas, time);
    Canvas_Bar(canvas, left, top, columns * cell, rows * cell, screen);
    if (running < 0.0f)
        return drawTyping(canvas, time);
    drawMaze(canvas, running);
    drawMyrtle(canvas, running);
    Canvas_Bar(canvas, left, top, columns * cell, 22, screen);
    PixelFont_WriteCentred(canvas, "M Y R T L E", top + 4, 2, 0xF8FFE8);
}
