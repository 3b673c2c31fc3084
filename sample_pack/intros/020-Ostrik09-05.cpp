// A kettle on a dying fire: steam above, embers below, and ash that falls like snow.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 M5 Ashkettle";

namespace {

constexpr int flakeCount = 170;
constexpr Point spout = {334.0f, 196.0f};
constexpr Colour emberColours[] = {0x100808, 0x3C0C08, 0x98240C, 0xF06818, 0xFFD068};

const Lettering name = Letters_Make("Ashkettle", Face::Serif, 80, Slant::Italic);
const Lettering nameShine = Letters_Soften(name, 14);

// Steam at a place: wide and thin far above the spout, narrow and thick close to it.
float steamAt(float x, float y, float seconds) {
    const float rise = spout.y - y;
    if (rise < -6.0f)
        return 0.0f;
    const float lean = 0.22f * rise + 14.0f * Maths_Sin(0.09f * seconds - rise / 300.0f);
    const float width = 14.0f + 0.50f * rise;
    const float off = (x - spout.x - lean) / width;
    if (off * off > 1.0f)
        return 0.0f;
    const float curl = 3.0f * Maths_Noise(x / 50.0f, (y + 70.0f * seconds) / 60.0f);
    const float cloud = Maths_Clouds(x / 34.0f + curl, (y + 95.0f * seconds) / 42.0f, 3);
    const float fade = Maths_Smooth(210.0f, 20.0f, rise) * Maths_Smooth(-6.0f, 6.0f, rise);
    return fade * (1.0f - off * off) * Maths_Smooth(0.18f, 0.50f, cloud);
}

// The night behind, with a breath of warm light from below.
Colour shadeNight(int x, int y) {
    const float dx = (float(x) - 250.0f) / 260.0f, dy = (float(y) - 340.0f) / 240.0f;
    const float warm = Maths_Clamp(1.0f - std::sqrt(dx * dx + dy * dy));
    return Colour_Make(0.07f + 0.80f * warm * warm, 0.08f + 0.30f * warm * warm,
                       0.11f + 0.10f * warm);
}

// Two by two, as steam has no edges.
void drawAir(Canvas& canvas, float seconds) {
    for (int y = 0; y < Canvas_Height; y += 2)
        for (int x = 0; x < Canvas_Width; x += 2) {
            const float steam = steamAt(float(x), float(y), seconds);
            const Colour tint = Colour_Mix(0xA8B0C0, 0xF0C8A0, float(y) / 260.0f);
            Canvas_Bar(canvas, x, y, 2, 2, Colour_Mix(shadeNight(x, y), tint, 0.85f * steam));
        }
}

void drawEmbers(Canvas& canvas, float seconds) {
    for (int x = 0; x < Canvas_Width; ++x) {
        const float heap = Maths_Noise(float(x) / 16.0f, 7.0f) * 14.0f;
        const float middle = (float(x) - 256.0f) / 170.0f;
        const int top = 338 - int(heap) + int(16.0f * middle * middle);
        for (int y = top; y < Canvas_Height; ++y) {
            const float coal = Maths_Noise(float(x) / 8.0f, float(y) / 6.0f);
            const float breath = Maths_Noise(float(x) / 40.0f, 0.5f * seconds + float(y) / 30.0f);
            const float crack = Maths_Smooth(0.22f, 0.0f, std::fabs(coal - 0.5f));
            const float glow = (0.25f + 0.95f * crack * breath) * (1.1f - 0.5f * middle * middle);
            Canvas_Blend(canvas, x, y, Colour_Ramp(emberColours, glow), 0.95f);
        }
    }
}

// Iron: black against the night, with an edge of light from the embers.
void paintIron(Canvas& canvas, const Point* outline, int count) {
    Canvas_PaintPolygon(outline, count, [&](int x, int y, float share) {
        const float below = Maths_Smooth(262.0f, 338.0f, float(y));
        const float side = Maths_Smooth(70.0f, 105.0f, std::fabs(float(x) - 250.0f));
        const float grain = 0.04f * Maths_Noise(float(x) / 3.0f, float(y) / 3.0f);
        const float warm = 0.03f + grain + 0.55f * below * below + 0.22f * side * below;
        const float gleam =
            Maths_Smooth(26.0f, 0.0f, std::fabs(float(x) - 214.0f + 0.2f * float(y - 260)));
        const float cool = 0.30f * gleam * Maths_Smooth(330.0f, 220.0f, float(y));
        Canvas_Blend(canvas, x, y,
                     Colour_Make(warm + cool, 0.5f * warm + cool, 0.4f * warm + 1.3f * cool),
                     share);
    });
}

void drawKettle(Canvas& canvas) {
    constexpr Point body[] = {{212, 212}, {190, 226}, {168, 252}, {156, 286},
                              {160, 318}, {174, 338}, {326, 338}, {340, 318},
                              {344, 286}, {332, 252}, {310, 226}, {288, 212}};
    constexpr Point neck[] = {{322, 300}, {352, 262}, {330, 206}, {326, 196}, {344, 192},
                              {350, 204}, {374, 258}, {368, 276}, {338, 324}};
    constexpr Point lid[] = {{206, 214}, {216, 204}, {238, 198}, {240, 190},
                             {234, 184}, {240, 178}, {260, 178}, {266, 184},
                             {260, 190}, {262, 198}, {284, 204}, {294, 214}};
    Point handle[40];
    for (int corner = 0; corner < 20; ++corner) {
        const float turn = 0.5f + 0.5f * float(corner) / 19.0f;
        handle[corner] = {250.0f + 78.0f * Maths_Cos(turn), 232.0f + 96.0f * Maths_Sin(turn)};
        handle[39 - corner] = {250.0f + 70.0f * Maths_Cos(turn), 232.0f + 87.0f * Maths_Sin(turn)};
    }
    paintIron(canvas, handle, 40);
    paintIron(canvas, neck, 9);
    paintIron(canvas, body, 12);
    paintIron(canvas, lid, 12);
}

void drawAsh(Canvas& canvas, float seconds) {
    for (int flake = 0; flake < flakeCount; ++flake) {
        const float size = Maths_Hash(flake, 3);
        const float fall = Maths_Fract(Maths_Hash(flake, 1) + seconds * (0.03f + 0.05f * size));
        const float sway = 12.0f * Maths_Sin(0.3f * seconds * (0.5f + size) + Maths_Hash(flake, 4));
        const int x = int(540.0f * Maths_Hash(flake, 2) + sway), y = int(fall * 400.0f) - 8;
        const Colour ash = Colour_Mix(0xB0B0B8, 0xFF9040, Maths_Smooth(220.0f, 370.0f, float(y)));
        Canvas_Blend(canvas, x, y, ash, 0.4f + 0.5f * size);
        Canvas_Blend(canvas, x + 1, y, ash, 0.8f * size);
        Canvas_Blend(canvas, x, y + 1, ash, 0.6f * size);
        if (size > 0.6f)
            Canvas_Blend(canvas, x + 1, y + 1, ash, size);
    }
}

void drawName(Canvas& canvas, float seconds) {
    const int left = 26, top = 20;
    Letters_Shine(canvas, nameShine, left - 14, top - 14, 0x702010);
    Letters_Paint(canvas, name, left, top, [=](int x, int y) {
        const float smoulder =
            Maths_Clouds(float(x) / 26.0f, float(y) / 20.0f - 0.25f * seconds, 3);
        return Colour_Ramp(emberColours, 0.40f + 0.75f * smoulder);
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    drawAir(canvas, seconds);
    drawName(canvas, seconds);
    drawEmbers(canvas, seconds);
    drawKettle(canvas);
    drawAsh(canvas, seconds);
}
