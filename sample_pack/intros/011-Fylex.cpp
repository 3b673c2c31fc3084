// Colours that flow into each other like marbled paper, and words that swim on them.

#include "letters.h"
#include "pixel_font.h"
#include "stage.h"

const char Intro_Title[] = "Fylex - Fluent Lexical Systems Intro Remake";

namespace {

constexpr Colour paper[] = {0x0B3C5D, 0x1D7A9C, 0x7FD1C7, 0xF4F1DE,
                            0xF2CC8F, 0xE07A5F, 0x81335A, 0x0B3C5D};
constexpr float bands = 14.0f;
constexpr int letterSize = 4; // pixels of the canvas to a pixel of the font
constexpr char words[] =
    "FLUENT LEXICAL SYSTEMS ... WORDS FLOW WHERE THEY LIKE ... A REMAKE FROM "
    "MEMORY, AND MEMORY WAS ONLY 64 K THEN ... NOUNS BY ILMAR, VERBS BY FYLEX, "
    "ADVERBS MOSTLY AVOIDED ...    ";

const Lettering name = Letters_Make("Fylex", Face::Serif, 150, Slant::Italic);
const Lettering nameShadow = Letters_Soften(name, 12);

float flow(float x, float y, float seconds) {
    const float bendX = x + 0.16f * Maths_Sin(1.1f * y + 0.07f * seconds);
    const float bendY = y + 0.18f * Maths_Sin(0.9f * x - 0.05f * seconds);
    const float wide = Maths_Sin(0.7f * bendX + 0.06f * seconds) + Maths_Sin(0.8f * bendY);
    const float fine = Maths_Sin(1.3f * (bendX + bendY) - 0.04f * seconds);
    return 0.25f * wide + 0.2f * fine + 0.3f * Maths_Sin(bendX * bendY + 0.03f * seconds);
}

// Bands of one colour each, with a fine dark vein where two meet.
Colour shadeFlow(float x, float y, float seconds) {
    const float level = flow(x, y, seconds) * bands + 0.6f * seconds;
    const float within = Maths_Fract(level);
    const Colour band = Colour_Ramp(paper, Maths_Fract((level - within) / bands));
    const float vein = Maths_Smooth(0.0f, 0.10f, within) * Maths_Smooth(1.0f, 0.90f, within);
    return Colour_Scale(band, 0.55f + 0.45f * vein - 0.12f * within);
}

void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 66;
    for (int twice = 0; twice < 2; ++twice)
        Letters_Colour(canvas, nameShadow, left - 8, top - 6, 0x101828);
    for (int row = 0; row < name.height; ++row) {
        const int sway = int(7.0f * Maths_Sin(float(row) / 120.0f + 0.3f * seconds));
        for (int x = 0; x < name.width; ++x)
            Canvas_Blend(canvas, left + x + sway, top + row, 0xFFFDF4,
                         Letters_CoverAt(name, x, row));
    }
}

// Every sign rides the wave for itself and keeps upright.
void drawSign(Canvas& canvas, char sign, float x, float seconds) {
    const float height = 26.0f * Maths_Sin(x / 330.0f - 0.5f * seconds) +
                         12.0f * Maths_Sin(x / 140.0f + 0.31f * seconds);
    const char single[] = {sign, '\0'};
    const int left = int(x), top = 300 + int(height);
    PixelFont_Write(canvas, single, left + 4, top + 4, letterSize, 0x201830);
    PixelFont_Write(canvas, single, left, top, letterSize, 0xFFFDF4);
    for (int y = 0; y < 7 * letterSize; ++y)
        for (int column = 0; column < 8 * letterSize; ++column)
            if (PixelFont_IsSet(sign, column / letterSize, y / letterSize))
                Canvas_Blend(canvas, left + column, top + y, 0xE07A5F, float(y) / 34.0f);
}

void drawWords(Canvas& canvas, float seconds) {
    constexpr float cell = PixelFont_Cell * letterSize;
    const float gone = seconds * 130.0f;
    const int first = int(gone / cell), length = PixelFont_Length(words);
    for (int place = 0; place < 18; ++place)
        drawSign(canvas, words[(first + place) % length], float(first + place) * cell - gone,
                 seconds);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    Canvas_Fill(canvas, [=](int x, int y) {
        return shadeFlow(float(x) / 300.0f, float(y) / 300.0f, seconds);
    });
    drawName(canvas, seconds);
    drawWords(canvas, seconds);
}
