// A home computer of one's childhood: it says hello, loads a program from tape with stripes in its
// border, and runs it; the program fills the screen with a maze, and a myrtle grows in it.

#include "pixel_font.h"
#include "stage.h"

#include <algorithm>

const char Intro_Title[] = "Myrtle Home Computer Loader Remake";

namespace {

constexpr int left = 64, top = 56, columns = 24, rows = 17, cell = 16;
constexpr int width = columns * cell, height = rows * cell;
constexpr Colour frame = 0x6CB088, screen = 0x18402C, text = 0xA8F0B8;
constexpr float helloSeconds = 1.0f, loadSeconds = 5.0f, showSeconds = 16.0f;
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

void writeAt(Canvas& canvas, const char* words, int column, int row) {
    PixelFont_Write(canvas, words, left + column * cell, top + row * cell + 1, 2, text);
}

int typeLine(Canvas& canvas, const Line& line, int row, float time) {
    char shown[columns + 1] = "";
    const int length = PixelFont_Length(line.words);
    const int count = line.isTyped ? std::min(length, int((time - line.start) * 18.0f)) : length;
    std::copy(line.words, line.words + count, shown);
    writeAt(canvas, shown, 0, row);
    return count;
}

void drawTyping(Canvas& canvas, float time) {
    int row = 1, column = 0;
    for (const Line& line : lines)
        if (time >= line.start) {
            column = typeLine(canvas, line, ++row, time);
            if (!line.isTyped)
                column = 0;
        }
    const int cursorRow = column ? row : row + 1;
    if (Maths_Fract(time * 1.8f) < 0.5f)
        Canvas_Bar(canvas, left + column * cell, top + cursorRow * cell, cell, cell, text);
}

// Broad stripes of leaf and berry while the tape runs.
void drawBorder(Canvas& canvas, float time) {
    constexpr Colour stripe[] = {0x103020, 0xE8F0D0, 0x30A050, 0x9040A0, 0xF0C040};
    const bool isLoading = time > 2.0f * helloSeconds && time < loadSeconds;
    const int moment = int(time * 40.0f);
    for (int y = 0; y < Canvas_Height; ++y) {
        const int band = (y + moment * 37) / (5 + int(16.0f * Maths_Hash(moment / 3)));
        const Colour colour = stripe[int(5.0f * Maths_Hash(band, moment / 2))];
        Canvas_Bar(canvas, 0, y, Canvas_Width, 1, isLoading ? colour : frame);
    }
}

// One stroke to a cell, falling or rising by chance; the picture scrolls when it is full.
void drawMaze(Canvas& canvas, float running) {
    const int made = int(running * mazeCellsPerSecond);
    const int hidden = std::max(0, made / columns - rows + 1);
    for (int number = hidden * columns; number < made; ++number) {
        const float x = float(left + number % columns * cell);
        const float y = float(top + (number / columns - hidden) * cell), size = float(cell);
        const bool falls = Maths_Hash(number, 64) < 0.5f;
        const Colour green = Colour_Mix(0x2C8048, 0x80D878, Maths_Hash(number, 65));
        Canvas_Line(canvas, {x, falls ? y : y + size}, {x + size, falls ? y + size : y}, 4.0f,
                    green);
    }
}

Point alongStem(float share, float sway) {
    return {256.0f + sway * share * share, 326.0f - 236.0f * share};
}

void drawLeaf(Canvas& canvas, Point root, float side, float size, Colour colour) {
    const auto at = [=](float along, float across) {
        return Point{root.x + side * size * (along + 0.3f * across),
                     root.y + size * (across - 0.55f * along)};
    };
    const Point outline[] = {at(0.0f, 0.0f), at(0.35f, 0.24f), at(0.75f, 0.17f),
                             at(1.0f, 0.0f), at(0.7f, -0.2f),  at(0.3f, -0.2f)};
    Canvas_Polygon(canvas, outline, 6, colour);
    Canvas_Line(canvas, at(0.0f, 0.0f), at(0.8f, 0.0f), 1.2f, 0x0C3018);
}

void drawFlower(Canvas& canvas, Point middle, float size, float turn) {
    for (int petal = 0; petal < 5; ++petal) {
        const float angle = float(petal) / 5.0f + turn;
        Point outline[12];
        for (int corner = 0; corner < 12; ++corner)
            outline[corner] = {
                middle.x + size * (Maths_Cos(angle) + 0.72f * Maths_Cos(float(corner) / 12.0f)),
                middle.y + size * (Maths_Sin(angle) + 0.72f * Maths_Sin(float(corner) / 12.0f))};
        Canvas_Polygon(canvas, outline, 12, petal & 1 ? 0xFFFFFF : 0xF0E8F4);
    }
    Canvas_Glow(canvas, middle, size * 0.9f, 0xF0C020);
    Canvas_Bar(canvas, int(middle.x) - 2, int(middle.y) - 2, 4, 4, 0xD09010);
}

void drawMyrtle(Canvas& canvas, float running) {
    const float grown = Maths_Smooth(0.5f, 6.0f, running);
    const float sway = 16.0f * Maths_Sin(0.2f * running);
    for (int part = 0; part < 24; ++part)
        Canvas_Line(canvas, alongStem(grown * float(part) / 24.0f, sway),
                    alongStem(grown * float(part + 1) / 24.0f, sway), 7.0f - 0.2f * float(part),
                    0x704820);
    for (int pair = 1; pair <= 7; ++pair) {
        const float share = 0.13f * float(pair);
        const float size =
            72.0f * Maths_Smooth(share, share + 0.35f, grown * 1.35f) * (1.15f - 0.6f * share);
        drawLeaf(canvas, alongStem(share * grown, sway), 1.0f, size, 0x1C6830);
        drawLeaf(canvas, alongStem(share * grown, sway), -1.0f, size, 0x2C8840);
        if (pair % 2 == 0)
            drawFlower(canvas, alongStem(share * grown, sway), 0.19f * size, 0.02f * running);
    }
}

void drawProgram(Canvas& canvas, float running) {
    drawMaze(canvas, running);
    drawMyrtle(canvas, running);
    Canvas_Bar(canvas, left, top, width, 22, screen);
    PixelFont_WriteCentred(canvas, "M Y R T L E", top + 4, 2, 0xF8FFE8);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    const float time = std::fmod(seconds, loadSeconds + helloSeconds + showSeconds);
    const float running = time - loadSeconds - helloSeconds;
    drawBorder(canvas, time);
    Canvas_Bar(canvas, left, top, width, height, screen);
    if (running < 0.0f)
        drawTyping(canvas, time);
    else
        drawProgram(canvas, running);
}
