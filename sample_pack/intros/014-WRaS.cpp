// A picture that comes off a tape: first a tone, then its lines in the old machine's odd order, in
// black and white, then the colours, square by square.

#include "letters.h"
#include "pixel_font.h"
#include "stage.h"

const char Intro_Title[] = "WRaS - The Wren and Sparrow Loader";

namespace {

constexpr int left = 64, top = 48, width = 384, height = 288;
constexpr int square = 16; // the side of a colour square; lines come in groups of it
constexpr int columns = width / square, squares = columns * (height / square);
constexpr float toneSeconds = 1.0f, lineSeconds = 8.0f, colourSeconds = 3.0f, showSeconds = 8.0f;

const Lettering name = Letters_Make("The Wren and Sparrow", Face::Serif, 38, Slant::Italic);

Canvas picture; // as it is when all is loaded

void drawLeaf(Point root, float turn, float size, Colour colour) {
    const float cosine = Maths_Cos(turn), sine = Maths_Sin(turn);
    const auto at = [=](float along, float across) {
        return Point{root.x + size * (along * cosine - across * sine),
                     root.y + size * (along * sine + across * cosine)};
    };
    const Point outline[] = {at(0, 0), at(0.4f, 0.22f), at(1, 0), at(0.4f, -0.22f)};
    Canvas_Polygon(picture, outline, 4, colour);
}

struct Plumage {
    Colour back, breast, wing;
};

// A small round bird; `side` -1 looks to the left, `tail` is how steeply the tail stands.
void drawBird(Point at, float side, float tail, float size, const Plumage& plumage) {
    const auto place = [=](float x, float y) {
        return Point{at.x + side * size * x, at.y + size * y};
    };
    const Point tailFan[] = {place(-30, -2), place(-62, -40 * tail), place(-48, -48 * tail - 8),
                             place(-18, -18)};
    Canvas_Polygon(picture, tailFan, 4, plumage.wing);
    Point body[32], head[24], breast[24];
    for (int corner = 0; corner < 32; ++corner)
        body[corner] =
            place(37 * Maths_Cos(float(corner) / 32), 29 * Maths_Sin(float(corner) / 32));
    for (int corner = 0; corner < 24; ++corner) {
        const float x = Maths_Cos(float(corner) / 24), y = Maths_Sin(float(corner) / 24);
        head[corner] = place(30 + 19 * x, -26 + 18 * y);
        breast[corner] = place(16 + 24 * x, 7 + 21 * y);
    }
    const Point beak[] = {place(46, -30), place(66, -25), place(46, -20)};
    const Point wing[] = {place(12, -16), place(-40, 2), place(-22, 12), place(4, 12)};
    Canvas_Polygon(picture, beak, 3, 0xE8A010);
    Canvas_Polygon(picture, body, 32, plumage.back);
    Canvas_Polygon(picture, breast, 24, plumage.breast);
    Canvas_Polygon(picture, head, 24, plumage.back);
    Canvas_Polygon(picture, wing, 4, plumage.wing);
    const Point eye = place(36, -30);
    Canvas_Bar(picture, int(eye.x) - 2, int(eye.y) - 2, 5, 5, 0x000000);
    Canvas_Bar(picture, int(eye.x) - 1, int(eye.y) - 2, 2, 2, 0xFFFFFF);
    constexpr float legs[] = {-4.0f, 10.0f};
    for (const float leg : legs)
        Canvas_Line(picture, place(leg, 26), place(leg + 3, 48), 2.5f, 0x502808);
}

void drawPicture() {
    Canvas_Fill(picture, [](int x, int y) {
        const float dx = float(x) - 256.0f, dy = float(y) - 170.0f;
        const bool ray = Maths_Fract(std::atan2(dy, dx) * 16.0f / Maths_Turn) < 0.5f;
        const bool sun = dx * dx + dy * dy < 84.0f * 84.0f;
        return sun ? 0xFFF0A0u : ray ? 0x30B8E8u : 0x58D0F8u;
    });
    Canvas_Line(picture, {40, 292}, {480, 252}, 9.0f, 0x603008);
    Canvas_Line(picture, {330, 264}, {450, 200}, 5.0f, 0x603008);
    for (int leaf = 0; leaf < 22; ++leaf)
        drawLeaf({70.0f + 18.0f * float(leaf), 291.0f - 1.7f * float(leaf)},
                 leaf & 1 ? 0.12f + 0.1f * Maths_Hash(leaf) : -0.2f + 0.1f * Maths_Hash(leaf),
                 28.0f, leaf % 3 ? 0x189028 : 0x50C030);
    drawBird({178, 226}, 1.0f, 1.2f, 0.95f, {0x8C4818, 0xE8C890, 0x582808});
    drawBird({328, 208}, -1.0f, -0.5f, 1.15f, {0x787078, 0xF0E8E0, 0x904010});
    Letters_Colour(picture, name, Letters_Centred(name) + 2, 60, 0xFFFFFF);
    Letters_Colour(picture, name, Letters_Centred(name), 58, 0x181880);
}

// The place in the order of loading: in each third of the picture first the upper lines of all
// groups, then the second ones, and so on.
int lineOrder(int y) {
    constexpr int third = height / 3, groups = third / square;
    return y / third * third + y % square * groups + y % third / square;
}

void drawBorder(Canvas& canvas, float time, float seconds) {
    const bool isTone = time<toneSeconds, isQuiet = time> toneSeconds + lineSeconds + colourSeconds;
    const float shift = Maths_Fract(seconds * (isTone ? 0.7f : 17.0f)) * 48.0f;
    for (int y = 0; y < Canvas_Height; ++y) {
        const int bit = int(2.0f * Maths_Hash(int(float(y) / 24.0f), int(seconds * 50.0f)));
        const float length = isTone ? 24.0f : bit ? 12.0f : 6.0f;
        const bool high = Maths_Fract((float(y) + shift) / length) < 0.5f;
        const Colour tone = high ? 0xD01010 : 0x10D0D0, data = high ? 0xE0E010 : 0x1010C8;
        Canvas_Bar(canvas, 0, y, Canvas_Width, 1, isQuiet ? 0x1010C8 : isTone ? tone : data);
    }
}

bool isInk(Colour colour, int x, int y) {
    const float light =
        float((colour >> 16 & 255) + 2 * (colour >> 8 & 255) + (colour & 255)) / 1020.0f;
    return light < 0.42f + 0.25f * float((x ^ y) & 1);
}

Colour shadeLoaded(int x, int y, float lines, float colours) {
    if (float(lineOrder(y)) > lines)
        return 0xD0D0D0;
    const Colour colour = picture.pixels[top + y][left + x];
    if (float(y / square * columns + x / square) < colours)
        return colour;
    return isInk(colour, x, y) ? 0x000000 : 0xD0D0D0;
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (picture.pixels[0][0] == 0)
        drawPicture();
    const float time = std::fmod(seconds, toneSeconds + lineSeconds + colourSeconds + showSeconds);
    const float lines = (time - toneSeconds) / lineSeconds * float(height);
    const float colours = (time - toneSeconds - lineSeconds) / colourSeconds * float(squares);
    drawBorder(canvas, time, seconds);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            canvas.pixels[top + y][left + x] = shadeLoaded(x, y, lines, colours);
    if (lines < 0.0f)
        PixelFont_Write(canvas, "NOW: WREN + SPARROW", left + 2, top + 8, 2, 0x000000);
}
