// A pillar of four sides, one letter to a side, that twists like wet cloth.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 14 Mopa";

namespace {
constexpr Colour sides[] = {0xFF3C78, 0xFFC020, 0x18C0B0, 0x6848E8};
constexpr float reach = 104; // half the pillar's width at its broadest
constexpr int letterSize = 150;

const Lettering letters[] = {
    Letters_Make("M", Face::Sans, letterSize), Letters_Make("O", Face::Sans, letterSize),
    Letters_Make("P", Face::Sans, letterSize), Letters_Make("A", Face::Sans, letterSize)};

// Rays in two tones of cream, turning slowly, under a net of dots.
Colour shadeGround(int x, int y, float turn) {
    const float dx = float(x) - Canvas_MidX, dy = float(y) - Canvas_MidY;
    const float radius = std::sqrt(dx * dx + dy * dy);
    const float angle = std::atan2(dy, dx) / Num_Turn + turn + radius / 2600;
    const float edge = std::fabs(Num_Fract(angle * 12) - 0.5f) - 0.25f;
    const Colour cream = Colour_Mix(0xFFF0D8, 0xFFC8B8, Num_Smooth(-0.7f, 0.7f, edge * radius));
    const int dotX = (x + 6) % 12 - 6, dotY = (y + 6 * (x / 12 % 2)) % 12 - 6;
    const bool isDot = float(dotX * dotX + dotY * dotY) < radius * radius / 5200;
    return isDot ? Colour_Mix(cream, 0xFF8090, 0.5f) : cream;
}

// The ground turns once in a long while: a third of its lines is drawn anew in a picture.
void drawGround(Canvas& ground, float time) {
    static int line = 0;
    const int lines = ground.pixels[0][0] == 0 ? Canvas_Height : Canvas_Height / 3;
    for (int count = 0; count < lines; ++count, line = (line + 1) % Canvas_Height)
        for (int x = 0; x < Canvas_Width; ++x)
            ground.pixels[line][x] = shadeGround(x, line, 0.008f * time);
}

float twistAt(float height, float time) {
    const float force = 0.26f * Num_Sin(0.09f * time);
    return 0.16f * time + force * Num_Sin(height * 0.9f - 0.11f * time) +
           0.10f * Num_Sin(height * 1.6f + 0.17f * time);
}

Colour shadeSide(int side, float across, int y, float facing) {
    const Lettering& letter = letters[side];
    const int x = int((across - 0.5f) * 150) + letter.width / 2;
    const int row = (y + side * 48) % 192 - (192 - letterSize) / 2;
    const float shadow = Letters_CoverAt(letter, x - 5, row - 5);
    const float rim = 0.7f * Num_Smooth(0.06f, 0.03f, std::min(across, 1 - across));
    const Colour cloth = Colour_Scale(sides[side], 1 - 0.35f * shadow);
    const Colour lit = Colour_Mix(cloth, 0xFFFFFF, std::max(rim, Letters_CoverAt(letter, x, row)));
    return Colour_Mix(Colour_Scale(lit, 0.25f + 0.75f * facing), 0xFFFFFF,
                      0.18f * Num_Smooth(0.75f, 1, facing));
}

// One row of one side, between two of the pillar's four edges; those that look away are not seen.
void drawSide(Canvas& canvas, int side, int y, float centre, float twist) {
    const float left = centre + reach * Num_Cos(twist + 0.25f * float(side));
    const float right = centre + reach * Num_Cos(twist + 0.25f * float(side) - 0.25f);
    for (int x = int(left); float(x) < right; ++x) {
        const float cover = std::min(float(x + 1) - left, right - float(x));
        const float across = Num_Clamp((float(x) + 0.5f - left) / (right - left));
        const float facing = (right - left) / (reach * 1.4142f);
        Canvas_Blend(canvas, x, y, shadeSide(side, across, y, facing), cover);
    }
}

void drawShadow(Canvas& canvas, int y, float centre, float twist) {
    const float spread = reach * (0.7f + 0.3f * std::fabs(Num_Cos(2 * twist)));
    for (int x = 0; x < Canvas_Width; ++x) {
        const float away = std::fabs(float(x) - centre - 26) - spread;
        Canvas_Blend(canvas, x, y, 0x602040, 0.42f * Num_Smooth(26, -6, away));
    }
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static Canvas ground;
    drawGround(ground, time);
    canvas = ground;
    for (int y = 0; y < Canvas_Height; ++y) {
        const float height = float(y) / float(Canvas_Height), twist = twistAt(height, time);
        const float centre = Canvas_MidX + 46 * Num_Sin(0.43f * height + 0.08f * time);
        drawShadow(canvas, y, centre, twist);
        for (int side = 0; side < 4; ++side)
            drawSide(canvas, side, y, centre, twist);
    }
    PixelFont_Write(canvas, "OSTRIK", 20, 20, 2, 0x602040);
    PixelFont_Write(canvas, "INTRO 14", 20, 40, 2, 0x602040);
    PixelFont_Write(canvas, "MOPA", 396, 332, 3, 0xFF3C78);
    PixelFont_Write(canvas, "FOR A FRIEND", 396, 360, 1, 0x602040);
}
