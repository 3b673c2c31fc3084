// A turbo loader: stripes race through the border, rings beat against each other in the middle, and
// the blocks are counted off.
#include "stage.h"
const char Intro_Title[] = "Hobnail Loader Intro #6";

namespace {
constexpr int left = 48, top = 40, width = 416, height = 304;
constexpr Colour stripes[] = {0xFFFFFF, 0x68D0A8, 0xB85890, 0xE8E868, 0x5048C0,
                              0x70C0E8, 0xD07838, 0x80E070, 0x181818, 0xF0A0A0};
constexpr int blockCount = 206;
constexpr float secondsToLoad = 24;

const Lettering name = Letters_Make("HOBNAIL", Face::Sans, 84, Slant::Italic);

// The stripes' heights change with what is read: short ones for zeros, long ones for ones.
void drawBorder(Canvas& canvas, float time) {
    const int moment = int(time * 30);
    for (int y = 0, count = 0; y < Canvas_Height; ++count) {
        const int high = 3 + int(9 * Num_Hash(count, moment));
        const int choice = int(10 * Num_Hash(count, moment / 2 + 77));
        Canvas_Bar(canvas, 0, y, Canvas_Width, high, stripes[choice]);
        y += high;
    }
}

float ring(int x, int y, Point centre) {
    const float dx = float(x) - centre.x, dy = float(y) - centre.y;
    return Num_Sin(std::sqrt(dx * dx + dy * dy) / 15);
}

// Where the rings of one centre cross those of the other, light turns into dark.
void drawRings(Canvas& canvas, float time) {
    const auto wander = [=](float fastX, float fastY) {
        return Point{Canvas_MidX + 130 * Num_Sin(time * fastX),
                     Canvas_MidY + 90 * Num_Sin(time * fastY + 0.2f)};
    };
    const Point one = wander(0.083f, 0.111f), other = wander(-0.097f, 0.071f);
    const Colour light = Colour_Mix(0xF83878, 0xF8A020, 0.5f + 0.5f * Num_Sin(0.05f * time));
    for (int y = top; y < top + height; ++y)
        for (int x = left; x < left + width; ++x) {
            const float beat = 9 * ring(x, y, one) * ring(x, y, other);
            const float shade = 1 - 0.5f * std::fabs(float(y) - Canvas_MidY) / 152;
            canvas.pixels[y][x] = Colour_Mix(0x180828, Colour_Scale(light, shade), 0.5f + beat);
        }
}

void drawName(Canvas& canvas, float time) {
    const int nameLeft = Letters_Centred(name), nameTop = 76;
    for (int step = 7; step >= -2; step -= step == 1 ? 3 : 1)
        Letters_Colour(canvas, name, nameLeft + step, nameTop + step, 0x100418);
    Letters_Paint(canvas, name, nameLeft, nameTop, [=](float x, float y) {
        const float gleam = Num_Sin((x + y) / 260 - 0.4f * time);
        return Colour_Mix(0xFFFFFF, 0x60E8F0, y / 84 + 0.4f * gleam);
    });
}

void drawPanel(Canvas& canvas, float time) {
    const float share = Num_Fract(time / secondsToLoad);
    char line[] = "LOADER #6 000 OF 206";
    for (int digit = 12, rest = int(share * float(blockCount)); digit >= 10; --digit, rest /= 10)
        line[digit] = char('0' + rest % 10);
    Canvas_Bar(canvas, 76, 214, 360, 84, 0x100418);
    Canvas_Bar(canvas, 80, 218, 352, 76, 0x281048);
    PixelFont_WriteCentred(canvas, line, 232, 2, 0xFFFFFF);
    Canvas_Bar(canvas, 92, 262, 328, 20, 0x100418);
    for (int block = 0; block * 4 < int(share * 322); ++block)
        Canvas_Bar(canvas, 95 + block * 4, 265, 3, 14, Colour_Hue(float(block) / 110 - time / 3));
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    drawBorder(canvas, time);
    drawRings(canvas, time);
    drawName(canvas, time);
    drawPanel(canvas, time);
}
