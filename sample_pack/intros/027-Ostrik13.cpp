// Signs of a script that nobody can read rain down; where they cross the name they stay and shine.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 13 Glyphwork";

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

// The name glows in the signs that lie on it, and a little between them.
void drawCell(Canvas& canvas, int column, int row, float time) {
    const float rain = lightAt(column, row, time);
    const int sign = int(time * (0.6f + 3 * Num_Hash(column, row))) + 97 * column + 13 * row;
    for (int y = 0; y < cell; ++y)
        for (int x = 0; x < cell; ++x) {
            const int left = column * cell + x, top = row * cell + y;
            const float kept = Letters_CoverAt(name, left - Letters_Centred(name),
                                               top - (Canvas_Height - name.height) / 2);
            const float light = Num_Mix(rain * 0.85f, 0.80f + 0.2f * rain, kept);
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
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            drawCell(canvas, column, row, time);
    for (int number = 0; number < 2 * columns; ++number) {
        const float head = Num_Floor(dropAt(number / 2, number % 2, time).head);
        Canvas_Glow(canvas, {float(number / 2 * cell) + 3.5f, head * cell + 3.5f}, 13, 0x188030);
    }
    Canvas_Fill(canvas, [&](float x, float y) {
        return Colour_Scale(canvas.pixels[int(y)][int(x)], tubeAt(x, y));
    });
}
