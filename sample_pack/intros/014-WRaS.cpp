// A picture that comes off a tape: first a tone, then its lines in an odd order, in black and
// white, then the colours, square by square.
#include "stage.h"
const char Intro_Title[] = "WRaS - The Wren and Sparrow Loader";

const char Intro_Tune[] = R"(
// A loader of twenty seconds: a pilot tone, the lines, the colors, and then two birds sing.
tempo 120
volume 70
delay 3/16 30
reverb 40
pilot = pulse width 50 adsr 5 50 100 20 level 34
lines = pulse width 50 adsr 2 10 100 10 hold 1100 9 level 20 pan 15
colors = pulse width 50 adsr 2 10 100 10 hold 500 16 level 18 pan -15
wren = pulse width 30 adsr 4 80 70 50 vibrato 7 25 level 34 pan -25 delay 25 reverb 15
sparrow = pulse width 15 adsr 4 120 50 50 level 24 pan 25 delay 20
bass = triangle adsr 2 180 50 30 level 56
chirp = sine adsr 4 40 60 30 drop 12 50 vibrato 30 150 level 16 pan 50 delay 40
tick = noise adsr 1 25 0 10 highpass 6000 0 level 22
P pilot o5 l2 b
L lines o6 l2 d d e d f d e c
L bass o2 l8 [d r d r r d r d]3 | c r c r r c r c
L tick l8 r x r x r x r x16 x16
L chirp o7 l16 r1 | r2 r d r e r4 | r1 | r2 g e r8 r4
D colors o6 l4 c e d g c g
D bass o2 l8 c > c < c > c < c > c < c > c < c > c < c > c
S wren o6 l8 d4 c d <a4 f a | g4. a b-4 a g | f4 g a >c4 <a f | g4 e4 c4 r4
S sparrow o5 l8 f a f a d f d f | g b- g b- d g d g | f a f a c f c f | e g e g c e g b-
S bass o2 l8 d d >d <d d d >d <d | g g >g <g g g >g <g | f f >f <f f f >f <f | c c >c <c c c >c <c
S chirp o7 l16 r2 r4 r d e r | r1 | r2 r8 g e r4 | r4 e g e r r2
S tick l8 r x r x r x r x16 x16
play |: P L D S
)";

namespace {
constexpr int left = 64, top = 48, width = 384, height = 288;
constexpr int square = 16; // the side of a colour square; lines come in groups of it
constexpr int columns = width / square, squares = columns * (height / square);
constexpr float toneTime = 1, lineTime = 8, colourTime = 3; // as long as the tune's sections

const Lettering name = Letters_Make("The Wren and Sparrow", Face::Serif, 38, Slant::Italic);

Canvas picture; // as it is when all is loaded

void drawLeaf(Point root, float turn, Colour colour) {
    const auto at = [=](float along, float across) {
        return Point{root.x + 28 * (along * Num_Cos(turn) - across * Num_Sin(turn)),
                     root.y + 28 * (along * Num_Sin(turn) + across * Num_Cos(turn))};
    };
    Canvas_Polygon(picture, {at(0, 0), at(0.4f, 0.22f), at(1, 0), at(0.4f, -0.22f)}, colour);
}

// A small round bird; `side` -1 looks to the left, `tail` is how steeply the tail stands.
void drawBird(Point at, float side, float tail, float size, Colour back, Colour front, Colour fan) {
    const auto place = [=](float x, float y) {
        return Point{at.x + side * size * x, at.y + size * y};
    };
    const auto ball = [=](float x, float y, float wide, float high, Colour colour) {
        Canvas_PaintBall(picture, place(x, y), size * wide, size * high,
                         [=](float, float, float) { return colour; });
    };
    const Point tails[] = {place(-18, -18), place(-30, -2), place(-62, -40 * tail),
                           place(-48, -48 * tail - 8)};
    Canvas_Polygon(picture, tails, fan);
    Canvas_Polygon(picture, {place(46, -30), place(66, -25), place(46, -20)}, 0xE8A010);
    ball(0, 0, 37, 29, back);
    ball(16, 7, 24, 21, front);
    ball(30, -26, 19, 18, back);
    ball(36, -29, 3, 3, 0x000000);
    ball(35, -30, 1.2f, 1.2f, 0xFFFFFF);
    Canvas_Polygon(picture, {place(12, -16), place(-40, 2), place(-22, 12), place(4, 12)}, fan);
    Canvas_Line(picture, place(-4, 26), place(-1, 48), 2.5f, 0x502808);
    Canvas_Line(picture, place(10, 26), place(13, 48), 2.5f, 0x502808);
}

void drawPicture() {
    Canvas_Fill(picture, [](float x, float y) {
        const float dx = x - 256, dy = y - 170;
        const bool ray = Num_Fract(std::atan2(dy, dx) * 16 / Num_Turn) < 0.5f;
        return dx * dx + dy * dy < 84 * 84 ? 0xFFF0A0u : ray ? 0x30B8E8u : 0x58D0F8u;
    });
    Canvas_Line(picture, {40, 292}, {480, 252}, 9, 0x603008);
    Canvas_Line(picture, {330, 264}, {450, 200}, 5, 0x603008);
    for (int leaf = 0; leaf < 22; ++leaf)
        drawLeaf({70 + 18 * float(leaf), 291 - 1.7f * float(leaf)},
                 0.1f * Num_Hash(leaf) + (leaf & 1 ? 0.12f : -0.2f),
                 leaf % 3 ? 0x189028 : 0x50C030);
    drawBird({178, 226}, 1, 1.2f, 0.95f, 0x8C4818, 0xE8C890, 0x582808);
    drawBird({328, 208}, -1, -0.5f, 1.15f, 0x787078, 0xF0E8E0, 0x904010);
    Letters_Colour(picture, name, Letters_Centred(name) + 2, 60, 0xFFFFFF);
    Letters_Colour(picture, name, Letters_Centred(name), 58, 0x181880);
}

// The place in the order of loading: in each third of the picture first the upper lines of all
// groups, then the second ones, and so on.
int lineOrder(int y) {
    constexpr int third = height / 3, groups = third / square;
    return y / third * third + y % square * groups + y % third / square;
}

void drawBorder(Canvas& canvas, float phase, float time) {
    const bool isTone = phase<toneTime, isQuiet = phase> toneTime + lineTime + colourTime;
    const float shift = Num_Fract(time * (isTone ? 0.7f : 17)) * 48;
    for (int y = 0; y < Canvas_Height; ++y) {
        const bool bit = Num_Hash(y / 24, int(time * 50)) < 0.5f;
        const bool high = Num_Fract((float(y) + shift) / (isTone ? 24 : bit ? 12 : 6)) < 0.5f;
        const Colour tone = high ? 0xD01010 : 0x10D0D0, data = high ? 0xE0E010 : 0x1010C8;
        Canvas_Bar(canvas, 0, y, Canvas_Width, 1, isQuiet ? 0x1010C8 : isTone ? tone : data);
    }
}

Colour shadeLoaded(int x, int y, float lines, float colours) {
    const Colour colour = picture.pixels[top + y][left + x];
    if (float(lineOrder(y)) <= lines && float(y / square * columns + x / square) < colours)
        return colour;
    const uint32_t light = (colour >> 16 & 255) + 2 * (colour >> 8 & 255) + (colour & 255);
    const bool isInk = light < ((x ^ y) & 1 ? 683 : 428);
    return isInk && float(lineOrder(y)) <= lines ? 0x000000 : 0xD0D0D0;
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (picture.pixels[0][0] == 0)
        drawPicture();
    const float phase = Music_LoopTimeAt(time);
    const float lines = (phase - toneTime) / lineTime * float(height);
    const float colours = (phase - toneTime - lineTime) / colourTime * float(squares);
    drawBorder(canvas, phase, time);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            canvas.pixels[top + y][left + x] = shadeLoaded(x, y, lines, colours);
    if (lines < 0)
        PixelFont_Write(canvas, "NOW: WREN + SPARROW", left + 2, top + 8, 2, 0x000000);
}
