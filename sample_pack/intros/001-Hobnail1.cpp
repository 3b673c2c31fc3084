// Copper bars behind a plate that is nailed on with hobnails: the first cut of a cracktro.

#include "letters.h"
#include "pixel_font.h"
#include "stage.h"

const char Intro_Title[] = "Hobnail Intro 2 First Cut";

namespace {

constexpr int barCount = 14;
constexpr int barHeight = 26;
constexpr Colour barColours[] = {0xFF3020, 0xFF8020, 0xFFE030, 0x60E040,
                                 0x30C0FF, 0x6060FF, 0xD050FF};
constexpr int plateTop = 118, plateHeight = 132, plateLeft = 36, plateWidth = 440;
constexpr char words[] =
    "HOBNAIL PRESENTS ITS SECOND INTRO IN THE FIRST CUT +++ FRESH FROM THE "
    "ANVIL, THE EDGES ARE STILL SHARP +++ CODE: PELLWICK +++ NAILS: OSTRIK +++ ";

const Lettering name = Letters_Make("HOBNAIL", Face::Sans, 88, Slant::Upright);

float barPlace(int bar, float seconds) {
    const float phase = seconds * 0.28f - float(bar) * 0.036f;
    return Canvas_CentreY + 150.0f * Maths_Sin(phase) + 26.0f * Maths_Sin(phase * 2.3f);
}

// A round bar: bright along its middle.
void drawBar(Canvas& canvas, float middle, Colour colour) {
    for (int row = -barHeight / 2; row <= barHeight / 2; ++row) {
        const float across = float(row) / float(barHeight / 2 + 1);
        const float light = std::sqrt(1.0f - across * across);
        const Colour line = Colour_Mix(Colour_Scale(colour, light), 0xFFFFFF,
                                       Maths_Clamp(light * light * light * light - 0.45f));
        Canvas_Bar(canvas, 0, int(middle) + row, Canvas_Width, 1, line);
    }
}

// Bars that are on their way back pass behind those that come.
void drawBars(Canvas& canvas, float seconds) {
    for (int half = 0; half < 2; ++half)
        for (int bar = barCount - 1; bar >= 0; --bar) {
            const bool comes = Maths_Cos(seconds * 0.28f - float(bar) * 0.036f) > 0.0f;
            if (comes == (half == 1))
                drawBar(canvas, barPlace(bar, seconds),
                        Colour_Scale(barColours[bar % 7], half ? 1.0f : 0.55f));
        }
}

void drawGround(Canvas& canvas) {
    Canvas_Fill(canvas, [](int, int y) {
        return Colour_Mix(0x08081C, 0x2C1030, float(y) / float(Canvas_Height));
    });
}

// Brushed steel that the bars throw some colour upon.
void drawPlate(Canvas& canvas, float seconds) {
    for (int y = 0; y < plateHeight; ++y)
        for (int x = 0; x < plateWidth; ++x) {
            const float grain = Maths_Hash(x / 24 + y * 31, y) * 0.10f;
            const float sheen = Maths_Sin(float(x + y) / 420.0f - 0.12f * seconds);
            const float light = 0.26f + grain + 0.12f * sheen;
            const bool edge = x < 3 || y<3, foot = x> plateWidth - 4 || y > plateHeight - 4;
            const float raised = edge ? 0.25f : foot ? -0.2f : 0.0f;
            const Colour steel =
                Colour_Make(light + raised, light + raised, light * 1.15f + raised);
            Canvas_Blend(canvas, plateLeft + x, plateTop + y, steel, 0.86f);
        }
}

// A nail's head: a small ball of metal in the light from the upper left.
void drawNail(Canvas& canvas, float centreX, float centreY, float radius) {
    for (int y = int(centreY - radius); float(y) <= centreY + radius; ++y)
        for (int x = int(centreX - radius); float(x) <= centreX + radius; ++x) {
            const float dx = (float(x) - centreX) / radius, dy = (float(y) - centreY) / radius;
            const float height = 1.0f - dx * dx - dy * dy;
            if (height <= 0.0f)
                continue;
            const float light = 0.5f * std::sqrt(height) - 0.45f * (dx + dy);
            const float spark = Maths_Smooth(0.75f, 1.0f, light);
            Canvas_Blend(canvas, x, y,
                         Colour_Make(light + spark, light * 0.92f + spark, light * 0.78f + spark),
                         height * 6.0f);
        }
}

void drawNails(Canvas& canvas) {
    for (int nail = 0; nail < 14; ++nail) {
        const float x = float(plateLeft + 16) + float(nail) * float(plateWidth - 32) / 13.0f;
        drawNail(canvas, x, float(plateTop + 14), 7.0f);
        drawNail(canvas, x, float(plateTop + plateHeight - 14), 7.0f);
    }
}

// Letters cut out of the plate, so that the bars are seen through them.
void drawName(Canvas& canvas, const Canvas& bars) {
    const int left = Letters_Centred(name), top = plateTop + 12;
    Letters_Colour(canvas, name, left + 2, top + 2, 0xC8D0E0);
    Letters_Colour(canvas, name, left - 2, top - 2, 0x080810);
    Letters_Paint(canvas, name, left, top,
                  [&](int x, int y) { return bars.pixels[top + y][left + x]; });
    PixelFont_WriteCentred(canvas, "INTRO 2 - FIRST CUT", plateTop + 97, 2, 0x101018);
    PixelFont_WriteCentred(canvas, "INTRO 2 - FIRST CUT", plateTop + 96, 2, 0xF0E8D0);
}

void drawWords(Canvas& canvas, float seconds) {
    Canvas_Bar(canvas, 0, 352, Canvas_Width, 32, 0x000000);
    Canvas_Bar(canvas, 0, 350, Canvas_Width, 2, 0xC08040);
    const int gone = int(seconds * 110.0f), length = PixelFont_Length(words);
    for (int x = 0; x < Canvas_Width; ++x)
        for (int y = 0; y < 14; ++y)
            if (PixelFont_IsSet(words[(gone + x) / 16 % length], (gone + x) / 2 % 8, y / 2))
                Canvas_Blend(canvas, x, 361 + y, Colour_Mix(0xFFF0C0, 0xC05018, float(y) / 14.0f),
                             1.0f);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static Canvas bars;
    drawGround(bars);
    drawBars(bars, seconds);
    canvas = bars;
    drawPlate(canvas, seconds);
    drawNails(canvas);
    drawName(canvas, bars);
    drawWords(canvas, seconds);
}
