// A flight through coloured stars, the party's name in chrome, and words on a wave below.

#include "letters.h"
#include "pixel_font.h"
#include "stage.h"

const char Intro_Title[] = "Velmora 2009 Intro";

namespace {

constexpr int starCount = 500;
constexpr char words[] = "THE OSTRIK CREW IS BACK FROM VELMORA 2009 ... THREE DAYS, NO SLEEP, ONE "
                         "TESSEL FORGE AND TEA BY THE BUCKET ... CHEERS TO HOBNAIL, BLUEQUAY, "
                         "LANTERN VALE, ANVIL 1733 AND ALL MARMOTS ... ";
constexpr Colour chrome[] = {0x081030, 0x2050B0, 0x80C8FF, 0xFFFFFF, 0x301808,
                             0x905018, 0xF0B040, 0xFFF8C0, 0xC07020};

const Lettering party = Letters_Make("VELMORA", Face::Sans, 104, Slant::Italic);
const Lettering partyShine = Letters_Soften(party, 16);
const Lettering year = Letters_Make("2 0 0 9", Face::Serif, 64, Slant::Italic);

void drawSky(Canvas& canvas, float seconds) {
    Canvas_Fill(canvas, [=](int x, int y) {
        const float haze = Maths_Noise(float(x) / 110.0f + seconds * 0.15f, float(y) / 70.0f);
        const float far = std::fabs(float(y) - 150.0f) / 240.0f;
        return Colour_Make(0.25f * haze * haze, 0.02f + 0.08f * haze * far, 0.10f + 0.22f * haze);
    });
}

Point placeStar(int star, float depth) {
    const float x = Maths_Hash(star, 1) - 0.5f, y = Maths_Hash(star, 2) - 0.5f;
    return {Canvas_CentreX + x * 260.0f / depth, 150.0f + y * 200.0f / depth};
}

void drawStar(Canvas& canvas, int star, float seconds) {
    const float depth = Maths_Fract(Maths_Hash(star) - 0.45f * seconds) + 0.03f;
    const float light = Maths_Clamp(1.2f - depth);
    const Colour tint = Colour_Mix(0xFFFFFF, Colour_Hue(Maths_Hash(star, 3)), 0.4f);
    Canvas_Line(canvas, placeStar(star, depth), placeStar(star, depth + 0.035f),
                1.0f + light * light * 1.4f, Colour_Scale(tint, light));
}

Colour shadeChrome(const Lettering& lettering, int x, int y, float seconds) {
    const float height = float(y) / float(lettering.height);
    const float bent = height + 0.02f * Maths_Sin(float(x) / 90.0f + 0.3f * seconds);
    const Colour metal = Colour_Ramp(chrome, (bent - 0.18f) / 0.64f);
    const float band = float(x) + 0.6f * float(y) - 900.0f * Maths_Fract(seconds / 3.0f);
    return Colour_Mix(metal, 0xFFFFFF, Maths_Clamp(1.0f - std::fabs(band + 60.0f) / 40.0f));
}

void drawChrome(Canvas& canvas, const Lettering& lettering, int top, float seconds) {
    const int left = Letters_Centred(lettering);
    Letters_Colour(canvas, lettering, left + 4, top + 5, 0x04040C);
    Letters_Colour(canvas, lettering, left - 1, top - 1, 0xE0F0FF);
    Letters_Paint(canvas, lettering, left, top,
                  [&](int x, int y) { return shadeChrome(lettering, x, y, seconds); });
}

void drawWords(Canvas& canvas, float seconds) {
    const int gone = int(seconds * 120.0f), length = PixelFont_Length(words);
    for (int x = 0; x < Canvas_Width; ++x) {
        const int place = (gone + x) / 3,
                  row = 320 + int(22.0f * Maths_Sin(float(x) / 300.0f + 0.35f * seconds));
        const char sign = words[place / PixelFont_Cell % length];
        for (int y = 0; y < 21; ++y)
            if (PixelFont_IsSet(sign, place % PixelFont_Cell, y / 3)) {
                Canvas_Blend(canvas, x + 2, row + y + 3, 0x000010, 0.7f);
                Canvas_Blend(
                    canvas, x, row + y,
                    Colour_Hue(float(x) / 700.0f - 0.2f * seconds, 1.0f - float(y) / 50.0f), 1.0f);
            }
    }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    drawSky(canvas, seconds);
    for (int star = 0; star < starCount; ++star)
        drawStar(canvas, star, seconds);
    const float pulse = 0.45f + 0.25f * Maths_Sin(seconds);
    Letters_Shine(canvas, partyShine, Letters_Centred(partyShine), 64,
                  Colour_Scale(0x4060FF, pulse));
    drawChrome(canvas, party, 80, seconds);
    drawChrome(canvas, year, 190, seconds + 1.5f);
    drawWords(canvas, seconds);
}
