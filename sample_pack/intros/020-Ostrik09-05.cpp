// A kettle on a dying fire: steam above, embers below, and ash that falls like snow.

#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 M5 Ashkettle";

namespace {

constexpr int flakeCount = 170;
constexpr Point spout = {334.0f, 196.0f};
constexpr Colour embers[] = {0x100808, 0x3C0C08, 0x98240C, 0xF06818, 0xFFD068};

const Title name = Letters_MakeTitle("Ashkettle", Face::Serif, 80, Slant::Italic);

// Steam at a place: wide and thin far above the spout, narrow and thick close to it.
float steamAt(float x, float y, float seconds) {
    const float rise = spout.y - y;
    const float lean = 0.22f * rise + 14.0f * Maths_Sin(0.09f * seconds - rise / 300.0f);
    const float off = (x - spout.x - lean) / (14.0f + 0.50f * rise);
    if (rise < -6.0f || off * off > 1.0f)
        return 0.0f;
    const float curl = 3.0f * Maths_Noise(x / 50.0f, (y + 70.0f * seconds) / 60.0f);
    const float cloud = Maths_Clouds(x / 34.0f + curl, (y + 95.0f * seconds) / 42.0f, 3);
    const float fade = Maths_Smooth(210.0f, 20.0f, rise) * Maths_Smooth(-6.0f, 6.0f, rise);
    return fade * (1.0f - off * off) * Maths_Smooth(0.18f, 0.50f, cloud);
}

// The night behind, with a breath of warm light from below.
Colour shadeAir(float x, float y, float seconds) {
    const float dx = (x - 250.0f) / 260.0f, dy = (y - 340.0f) / 240.0f;
    const float near = Maths_Clamp(1.0f - std::sqrt(dx * dx + dy * dy)), warm = near * near;
    const Colour night = Colour_Make(0.07f + 0.8f * warm, 0.08f + 0.3f * warm, 0.11f + 0.1f * near);
    return Colour_Mix(night, Colour_Mix(0xA8B0C0, 0xF0C8A0, y / 260.0f),
                      0.85f * steamAt(x, y, seconds));
}

Colour shadeEmbers(float x, float y, float seconds) {
    const float middle = (x - 256.0f) / 170.0f;
    const float coal = Maths_Noise(x / 8.0f, y / 6.0f);
    const float breath = Maths_Noise(x / 40.0f, 0.5f * seconds + y / 30.0f);
    const float crack = Maths_Smooth(0.22f, 0.0f, std::fabs(coal - 0.5f));
    return Colour_Ramp(embers, (0.25f + 0.95f * crack * breath) * (1.1f - 0.5f * middle * middle));
}

void drawEmbers(Canvas& canvas, float seconds) {
    for (int x = 0; x < Canvas_Width; ++x) {
        const float middle = (float(x) - 256.0f) / 170.0f;
        const float heap = Maths_Noise(float(x) / 16.0f, 7.0f) * 14.0f;
        for (int y = int(338.0f - heap + 16.0f * middle * middle); y < Canvas_Height; ++y)
            canvas.pixels[y][x] = shadeEmbers(float(x), float(y), seconds);
    }
}

// Iron: black against the night, lit by the embers from below and by the moon along one line.
Colour shadeIron(float x, float y) {
    const float below = Maths_Smooth(262.0f, 338.0f, y);
    const float side = Maths_Smooth(70.0f, 105.0f, std::fabs(x - 250.0f));
    const float warm = 0.03f + 0.04f * Maths_Noise(x / 3.0f, y / 3.0f) + 0.55f * below * below +
                       0.22f * side * below;
    const float gleam = Maths_Smooth(26.0f, 0.0f, std::fabs(x - 214.0f + 0.2f * (y - 260.0f)));
    const float cool = 0.30f * gleam * Maths_Smooth(330.0f, 220.0f, y);
    return Colour_Make(warm + cool, 0.5f * warm + cool, 0.4f * warm + 1.3f * cool);
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
    Canvas_PaintPolygon(canvas, handle, shadeIron);
    Canvas_PaintPolygon(canvas, neck, shadeIron);
    Canvas_PaintPolygon(canvas, body, shadeIron);
    Canvas_PaintPolygon(canvas, lid, shadeIron);
}

void drawFlake(Canvas& canvas, int flake, float seconds) {
    const float size = Maths_Hash(flake, 3);
    const float fall = Maths_Fract(Maths_Hash(flake, 1) + seconds * (0.03f + 0.05f * size));
    const float sway = 12.0f * Maths_Sin(0.3f * seconds * (0.5f + size) + Maths_Hash(flake, 4));
    const float x = 540.0f * Maths_Hash(flake, 2) + sway, y = fall * 400.0f - 8.0f;
    const Colour ash = Colour_Mix(0xB0B0B8, 0xFF9040, Maths_Smooth(220.0f, 370.0f, y));
    Canvas_PaintBall(canvas, {x, y}, 0.8f + 1.1f * size, 0.8f + 1.1f * size,
                     [=](float, float, float) { return ash; });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeAir(x, y, seconds); });
    Letters_PaintTitle(canvas, name, 20, 0x300C08, [=](float x, float y) {
        return Colour_Ramp(embers,
                           0.4f + 0.75f * Maths_Clouds(x / 26.0f, y / 20.0f - 0.25f * seconds, 3));
    });
    drawEmbers(canvas, seconds);
    drawKettle(canvas);
    for (int flake = 0; flake < flakeCount; ++flake)
        drawFlake(canvas, flake, seconds);
}
