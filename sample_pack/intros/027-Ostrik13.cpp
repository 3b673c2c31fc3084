// Signs of a script that nobody can read rain down; where they cross the name they stay and shine.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 13 Glyphwork";

namespace {

constexpr int cell = 8;
constexpr int columns = Canvas_Width / cell, rows = Canvas_Height / cell;
constexpr Colour glow[] = {0x000400, 0x00280C, 0x00641C, 0x10B838, 0x70FF80, 0xE8FFE8};

const Lettering name = Letters_Make("Glyphwork", Face::Sans, 108);

// A sign is made by lot: the left half of seven rows, mirrored, and always a stroke in the middle.
bool isSet(int sign, int x, int y) {
    if (x > 6 || y > 6)
        return false;
    const int half = x < 4 ? x : 6 - x;
    if (half == 3)
        return Maths_Hash(sign * 7 + y, 3) < 0.62f;
    return Maths_Hash(sign * 31 + half, y) < 0.40f;
}

struct Drop {
    float head;   // the row of its first sign
    float length; // in rows
};

// Two drops to a column, of their own speed and length.
Drop dropAt(int column, int which, float seconds) {
    const float chance = Maths_Hash(column, which + 40);
    const float length = 10.0f + 26.0f * Maths_Hash(column, which + 50);
    const float way = seconds * (9.0f + 17.0f * chance) + 130.0f * Maths_Hash(column, which + 60);
    return {std::fmod(way, float(rows) + length + 12.0f), length};
}

float lightAt(int column, int row, float seconds) {
    float light = 0.0f;
    for (int which = 0; which < 2; ++which) {
        const Drop drop = dropAt(column, which, seconds);
        const float behind = drop.head - float(row);
        if (behind >= 0.0f && behind < 1.0f)
            return 1.0f;
        if (behind > 0.0f && behind < drop.length)
            light = std::fmax(light, 0.72f * (1.0f - behind / drop.length));
    }
    return light;
}

// How much of a cell the name takes; it is drawn in cells of half the size.
float nameAt(int x, int y) {
    return Letters_CoverAt(name, x - Letters_Centred(name), y - (Canvas_Height - name.height) / 2);
}

void drawCell(Canvas& canvas, int column, int row, float seconds) {
    const float rain = lightAt(column, row, seconds);
    const float change = seconds * (0.6f + 3.0f * Maths_Hash(column, row));
    const int sign = int(change) + 97 * column + 13 * row;
    for (int y = 0; y < cell; ++y)
        for (int x = 0; x < cell; ++x) {
            const int left = column * cell + x, top = row * cell + y;
            const float kept = nameAt(left, top);
            const float light = Maths_Mix(rain * 0.85f, 0.80f + 0.2f * rain, kept);
            const float ground = 0.10f * rain + 0.42f * kept;
            canvas.pixels[top][left] = Colour_Ramp(glow, isSet(sign, x, y) ? light : ground);
        }
}

// Lines of a tube, and its dim corners.
void drawTube(Canvas& canvas) {
    for (int y = 0; y < Canvas_Height; ++y) {
        const float dy = float(y) / Canvas_CentreY - 1.0f;
        for (int x = 0; x < Canvas_Width; ++x) {
            const float dx = float(x) / Canvas_CentreX - 1.0f;
            const float light =
                (y & 1 ? 0.78f : 1.0f) - 0.4f * (dx * dx * dx * dx + dy * dy * dy * dy);
            canvas.pixels[y][x] = Colour_Scale(canvas.pixels[y][x], light);
        }
    }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            drawCell(canvas, column, row, seconds);
    for (int column = 0; column < columns; ++column)
        for (int which = 0; which < 2; ++which) {
            const Point head = {float(column * cell) + 3.5f,
                                Maths_Floor(dropAt(column, which, seconds).head) * cell + 3.5f};
            Canvas_Glow(canvas, head, 13.0f, 0x188030);
        }
    drawTube(canvas);
}
