// Grapes that run into each other: balls whose surfaces melt where they come close, on the label of
// a bottle.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 Dornfeld";

namespace {

constexpr int ballCount = 13;
constexpr int halfWidth = Canvas_Width / 2, halfHeight = Canvas_Height / 2;
constexpr Colour skin[] = {0x14020C, 0x3C0828, 0x701048, 0xA82868, 0xE87898, 0xFFF0F0};

const Lettering name = Letters_Make("Dornfeld", Face::Serif, 66, Slant::Italic, 1.1f);
const Lettering above = Letters_Make("OSTRIK  \267  INTRO  9", Face::Serif, 19);

float field[halfHeight + 1][halfWidth + 1]; // at every second pixel
Colour label[Canvas_Height][Canvas_Width];

Colour shadeLabel(int x, int y) {
    const float grain = 0.05f * Maths_Noise(float(x) / 3.0f, float(y) / 50.0f);
    const float fade = 0.06f * Maths_Noise(float(x) / 80.0f, float(y) / 80.0f);
    const int edge =
        std::min(std::min(x, Canvas_Width - 1 - x), std::min(y, Canvas_Height - 1 - y));
    if (edge < 14)
        return Colour_Make(0.05f, 0.10f + grain, 0.06f);
    if ((edge >= 20 && edge < 23) || edge == 26)
        return Colour_Mix(0xB08830, 0xE8CC80, Maths_Noise(float(x + y) / 30.0f, 0.0f));
    return Colour_Make(0.93f - grain - fade, 0.88f - grain - fade, 0.76f - grain - fade);
}

void makeLabel() {
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x)
            label[y][x] = shadeLabel(x, y);
}

// The cluster hangs together and still never rests.
Point placeBall(int ball, float seconds) {
    const float phase = float(ball) * 0.381966f;
    const float reach = 20.0f + 74.0f * Maths_Fract(phase * 3.7f);
    const float x = 128.0f + 1.25f * reach * Maths_Sin(phase + 0.06f * seconds);
    const float y = 78.0f + 0.62f * reach * Maths_Cos(1.7f * phase + 0.083f * seconds);
    return {x, y};
}

void addBall(Point centre, float size) {
    for (int y = 0; y <= halfHeight; ++y) {
        const float dy = float(y) - centre.y;
        for (int x = 0; x <= halfWidth; ++x) {
            const float dx = float(x) - centre.x;
            field[y][x] += size / (dx * dx + dy * dy + 12.0f);
        }
    }
}

void makeField(float seconds) {
    for (auto& row : field)
        for (float& place : row)
            place = 0.0f;
    for (int ball = 0; ball < ballCount; ++ball)
        addBall(placeBall(ball, seconds), 190.0f + 130.0f * Maths_Hash(ball));
}

float fieldAt(int x, int y) {
    const float across = 0.5f * float(x & 1), down = 0.5f * float(y & 1);
    const float* upper = &field[y / 2][x / 2];
    const float* lower = &field[y / 2 + 1][x / 2];
    return Maths_Mix(Maths_Mix(upper[0], upper[1], across), Maths_Mix(lower[0], lower[1], across),
                     down);
}

// The field is taken for a height: its slope tells where the light falls.
Colour shadeGrape(int x, int y, float level) {
    const float slopeX = (field[y / 2][x / 2 + 1] - field[y / 2][x / 2]) / level;
    const float slopeY = (field[y / 2 + 1][x / 2] - field[y / 2][x / 2]) / level;
    const float lean = 9.0f * (slopeX + 1.3f * slopeY);
    const float light = 0.36f + 0.55f * lean - 0.05f * level;
    const float aimX = 12.0f * slopeX - 0.45f, aimY = 12.0f * slopeY - 0.55f;
    const float spark = Maths_Smooth(0.22f, 0.02f, aimX * aimX + aimY * aimY);
    const float bloom = 0.10f * Maths_Noise(float(x) / 12.0f, float(y) / 12.0f);
    return Colour_Mix(Colour_Ramp(skin, light + bloom), 0xFFF4F8, 0.85f * spark);
}

Colour shade(int x, int y) {
    const float level = fieldAt(x, y);
    const float inside = Maths_Smooth(0.96f, 1.04f, level);
    const float shadow = Maths_Smooth(0.45f, 1.15f, y > 8 && x > 6 ? fieldAt(x - 6, y - 8) : 0.0f);
    const Colour paper = Colour_Scale(label[y][x], 1.0f - 0.42f * shadow);
    return inside > 0.0f ? Colour_Mix(paper, shadeGrape(x, y, level), inside) : paper;
}

void drawName(Canvas& canvas) {
    const int left = Letters_Centred(name), top = 288;
    Letters_Colour(canvas, above, Letters_Centred(above), 270, 0x6C5020);
    Letters_Colour(canvas, name, left + 1, top + 2, 0xC8A860);
    Letters_Colour(canvas, name, left, top, 0x580C30);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (label[0][0] == 0)
        makeLabel();
    makeField(seconds);
    Canvas_Fill(canvas, shade);
    drawName(canvas);
}
