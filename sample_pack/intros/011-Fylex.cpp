// Colours that flow into each other like marbled paper, and words that swim on them.
#include "stage.h"
const char Intro_Title[] = "Fylex - Fluent Lexical Systems Intro Remake";

namespace {
constexpr Colour paper[] = {0x0B3C5D, 0x1D7A9C, 0x7FD1C7, 0xF4F1DE,
                            0xF2CC8F, 0xE07A5F, 0x81335A, 0x0B3C5D};
constexpr float bands = 14;
constexpr int letterSize = 4; // pixels of the canvas to a pixel of the font
constexpr float cell = PixelFont_Cell * letterSize;
constexpr char words[] =
    "FLUENT LEXICAL SYSTEMS ... WORDS FLOW WHERE THEY LIKE ... A REMAKE FROM "
    "MEMORY, AND MEMORY WAS ONLY 64 K THEN ... NOUNS BY ILMAR, VERBS BY FYLEX, "
    "ADVERBS MOSTLY AVOIDED ...    ";

const Title name = Letters_MakeTitle("Fylex", Face::Serif, 150, Slant::Italic);

float flow(float x, float y, float time) {
    const float bendX = x + 0.16f * Num_Sin(1.1f * y + 0.07f * time);
    const float bendY = y + 0.18f * Num_Sin(0.9f * x - 0.05f * time);
    const float wide = Num_Sin(0.7f * bendX + 0.06f * time) + Num_Sin(0.8f * bendY);
    const float fine = Num_Sin(1.3f * (bendX + bendY) - 0.04f * time);
    return 0.25f * wide + 0.2f * fine + 0.3f * Num_Sin(bendX * bendY + 0.03f * time);
}

// Bands of one colour each, with a fine dark vein where two meet.
Colour shadeFlow(float x, float y, float time) {
    const float level = flow(x, y, time) * bands + 0.6f * time;
    const float within = Num_Fract(level);
    const Colour band = Colour_Ramp(paper, Num_Fract((level - within) / bands));
    const float vein = Num_Smooth(0, 0.10f, within) * Num_Smooth(1, 0.90f, within);
    return Colour_Scale(band, 0.55f + 0.45f * vein - 0.12f * within);
}

// Every sign rides the wave for itself and keeps upright.
void drawSign(Canvas& canvas, char sign, float x, float time) {
    const float height = 26 * Num_Sin(x / 330 - 0.5f * time) + 12 * Num_Sin(x / 140 + 0.31f * time);
    const char single[] = {sign, '\0'};
    const int left = int(x), top = 300 + int(height);
    PixelFont_Write(canvas, single, left + 4, top + 4, letterSize, 0x201830);
    for (int row = 0; row < PixelFont_Cell; ++row)
        for (int column = 0; column < PixelFont_Cell; ++column)
            if (PixelFont_IsSet(sign, column, row))
                Canvas_Bar(canvas, left + column * letterSize, top + row * letterSize, letterSize,
                           letterSize, Colour_Mix(0xFFFDF4, 0xE07A5F, float(row) / 8));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeFlow(x / 300, y / 300, time); });
    Letters_PaintTitle(canvas, name, 66, 0x101828, [=](float x, float y) {
        const float sheen = Num_Sin((x + 2 * y) / 500 - 0.2f * time);
        return Colour_Mix(0xFFFDF4, 0xF2CC8F, 0.6f * sheen);
    });
    const float gone = time * 130;
    for (int place = int(gone / cell); float(place) * cell < gone + 512; ++place)
        drawSign(canvas, words[place % PixelFont_Length(words)], float(place) * cell - gone, time);
}
