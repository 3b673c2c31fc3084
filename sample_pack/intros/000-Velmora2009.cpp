// A flight through coloured stars, the party's name in chrome, and words on a wave below.
#include "stage.h"
const char Intro_Title[] = "Velmora 2009 Intro";

namespace {
constexpr int starCount = 500;
constexpr char words[] = "THE OSTRIK CREW IS BACK FROM VELMORA 2009 ... THREE DAYS, NO SLEEP, ONE "
                         "TESSEL FORGE AND TEA BY THE BUCKET ... CHEERS TO HOBNAIL, BLUEQUAY, "
                         "LANTERN VALE, ANVIL 1733 AND ALL MARMOTS ... ";
constexpr Colour chrome[] = {0x081030, 0x2050B0, 0x80C8FF, 0xFFFFFF, 0x301808,
                             0x905018, 0xF0B040, 0xFFF8C0, 0xC07020};

const Title party = Letters_MakeTitle("VELMORA", Face::Sans, 104, Slant::Italic);
const Title year = Letters_MakeTitle("2 0 0 9", Face::Serif, 64, Slant::Italic);

Colour shadeSky(float x, float y, float time) {
    const float haze = Num_Noise(x / 110 + time * 0.15f, y / 70);
    const float far = std::fabs(y - 150) / 240;
    return Colour_Make(0.25f * haze * haze, 0.02f + 0.08f * haze * far, 0.10f + 0.22f * haze);
}

void drawStar(Canvas& canvas, int star, float time) {
    const float x = Num_Hash(star, 1) - 0.5f, y = Num_Hash(star, 2) - 0.5f;
    const auto place = [=](float depth) {
        return Point{Canvas_MidX + x * 260 / depth, 150 + y * 200 / depth};
    };
    const float depth = Num_Fract(Num_Hash(star) - 0.45f * time) + 0.03f;
    const float light = Num_Clamp(1.2f - depth);
    const Colour tint = Colour_Mix(0xFFFFFF, Colour_Hue(Num_Hash(star, 3)), 0.4f);
    Canvas_Line(canvas, place(depth), place(depth + 0.035f), 1 + light * light * 1.4f,
                Colour_Scale(tint, light));
}

void drawChrome(Canvas& canvas, const Title& title, int top, float time) {
    const int left = Letters_Centred(title.words);
    const float height = float(title.words.height);
    Letters_Surround(canvas, title, top, Colour_Make(0.1f, 0.14f, 0.5f + 0.2f * Num_Sin(time)));
    Letters_Colour(canvas, title.words, left + 4, top + 5, 0x04040C);
    Letters_Colour(canvas, title.words, left - 1, top - 1, 0xE0F0FF);
    Letters_Paint(canvas, title.words, left, top, [=](float x, float y) {
        const float bent = y / height + 0.02f * Num_Sin(x / 90 + 0.3f * time);
        const float gleam = x + 0.6f * y + 60 - 900 * Num_Fract(time / 3);
        return Colour_Mix(Colour_Ramp(chrome, (bent - 0.18f) / 0.64f), 0xFFFFFF,
                          Num_Clamp(1 - std::fabs(gleam) / 40));
    });
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeSky(x, y, time); });
    for (int star = 0; star < starCount; ++star)
        drawStar(canvas, star, time);
    drawChrome(canvas, party, 80, time);
    drawChrome(canvas, year, 190, time + 1.5f);
    PixelFont_Scroll(words, 120 * time, 3, [&](float x, float y) {
        const float wave = 320 + 22 * Num_Sin(x / 300 + 0.35f * time);
        const Colour ink = Colour_Hue(x / 700 - 0.2f * time, 1 - y / 50);
        Canvas_Blend(canvas, int(x) + 2, int(wave + y) + 3, 0x000010, 0.7f);
        Canvas_Blend(canvas, int(x), int(wave + y), ink, 1);
    });
}
