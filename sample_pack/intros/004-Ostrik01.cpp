// A plane filled without gaps: squares whose edges grow into birds and back again. Opposite edges
// of a tile keep the same shape, so that every tile still fits into its neighbours.
#include "stage.h"
const char Intro_Title[] = "Ostrik Tessel Intro 1";

const char Intro_Tune[] = R"(
// A canon: three voices with the same four phrases, which fit into each other like the tiles.
tempo 88
volume 80
reverb 45
upper = saw adsr 1 500 15 120 lowpass 3200 10 sweep 1.5 80 level 30 pan -35 reverb 22
middle = upper pan 35 level 27
lower = pulse width 30 adsr 1 600 20 120 lowpass 1500 10 sweep 2 90 level 32 reverb 20
bass = triangle adsr 4 500 60 120 level 50 reverb 12
bird = sine adsr 20 60 50 60 vibrato 28 120 drop -9 90 level 9 pan 50 reverb 50
A bass o2 l4 g >c d e | c <g a >d
B bass o2 l8 g b >c e d f+ e <b | >c e <g b a >c d <f+
A upper o5 l4 d e f+ g | e d c <a
B upper o4 l4 b >c <a b | g b a f+
B middle o5 l4 d e f+ g | e d c <a
C upper o5 l8 g d e g a f+ g b | >c <g b g a e f+ a
C middle o4 l4 b >c <a b | g b a f+
C lower o4 l4 d e f+ g | e d c <a
C bass o2 l4 g >c d e | c <g a >d
D upper o5 l16 b a g a g e c e d e f+ a g f+ e g | >c <b a g b g d g a b >c <a a f+ d f+
D middle o5 l8 g d e g a f+ g b | >c <g b g a e f+ a
D lower o3 l4 b >c <a b | g b a f+
D bass o2 l8 g b >c e d f+ e <b | >c e <g b a >c d <f+
E upper o5 l4 d e f+ g | e d c d
E middle o5 l16 b a g a g e c e d e f+ a g f+ e g | >c <b a g b g d g a b >c <a a f+ d f+
E lower o4 l8 g d e g a f+ g b | >c <g b g a e f+ a
E bass o2 l4 g >c d e | c <g a >d
C bird o6 l8 r2 r d r e | r1
E bird o6 l8 r1 | r4 g r e r d r
play A |: B C D E D+5 E+5 C B
)";

namespace {
constexpr int edgePoints = 9, corners = 4 * (edgePoints - 1);
constexpr float tileSize = 92;
constexpr Colour fills[] = {0x173F5F, 0x20639B, 0x2F4B7C, 0x1B6B72,  // cool
                            0xF2B134, 0xED553B, 0xD1495B, 0xF79256}; // warm

// The upper edge is the bird's wing, the left edge its tail and, on the other side, its head; in a
// tile of size 1.
constexpr Point upperEdge[edgePoints] = {{0, 0},          {0.16f, 0.07f},  {0.30f, -0.06f},
                                         {0.38f, -0.34f}, {0.58f, -0.52f}, {0.54f, -0.26f},
                                         {0.64f, -0.07f}, {0.82f, -0.06f}, {1, 0}};
constexpr Point leftEdge[edgePoints] = {{0, 0},         {0.10f, 0.05f},  {0.20f, 0.12f},
                                        {0.36f, 0.22f}, {0.18f, 0.26f},  {0.09f, 0.40f},
                                        {0, 0.62f},     {-0.14f, 0.86f}, {0, 1}};
constexpr Point feathers[][2] = {{{0.46f, -0.30f}, {0.40f, 0.10f}},
                                 {{0.51f, -0.20f}, {0.49f, 0.12f}},
                                 {{0.56f, -0.06f}, {0.58f, 0.14f}},
                                 {{0.10f, 0.80f}, {0.26f, 0.70f}},
                                 {{0.12f, 0.64f}, {0.30f, 0.58f}}};

const Title name = Letters_MakeTitle("OSTRIK", Face::Serif, 110);
const Lettering below = Letters_Make("tessel intro 1", Face::Serif, 40, Slant::Italic);

// From a place on the plane, counted in tiles, to the canvas: a slowly swaying view that drifts.
struct View {
    float cosine, sine, driftX, driftY;
};

Point place(const View& view, float column, float row) {
    const float x = column * tileSize - view.driftX, y = row * tileSize - view.driftY;
    return {256 + x * view.cosine - y * view.sine, 192 + x * view.sine + y * view.cosine};
}

// How far an edge has grown depends on its own place alone: both of its tiles see the same.
float growth(float column, float row, float time) {
    const float wave = Num_Sin(time * 0.11f - column * 0.075f - row * 0.05f);
    return Num_Smooth(-0.5f, 0.3f, 0.25f + wave);
}

Point alongUpper(int point, float column, float row, float time) {
    const float share = growth(column + 0.5f, row, time), straight = float(point) / 8;
    const Point grown = upperEdge[point];
    return {column + Num_Mix(straight, grown.x, share), row + grown.y * share};
}

Point alongLeft(int point, float column, float row, float time) {
    const float share = growth(column, row + 0.5f, time), straight = float(point) / 8;
    return {column + leftEdge[point].x * share, row + Num_Mix(straight, leftEdge[point].y, share)};
}

// Once round the tile, clockwise from its upper left corner.
Point alongTile(int corner, float column, float row, float time) {
    const int step = corner % (edgePoints - 1), last = edgePoints - 1;
    switch (corner / last) {
    case 0: return alongUpper(step, column, row, time);
    case 1: return alongLeft(step, column + 1, row, time);
    case 2: return alongUpper(last - step, column, row + 1, time);
    default: return alongLeft(last - step, column, row, time);
    }
}

// Half the outline is inked: the other half is, with the neighbours.
void drawTile(Canvas& canvas, const View& view, int column, int row, float time) {
    Point outline[corners];
    for (int corner = 0; corner < corners; ++corner) {
        const Point at = alongTile(corner, float(column), float(row), time);
        outline[corner] = place(view, at.x, at.y);
    }
    const int choice = int(4 * Num_Hash(column, row)) + ((column + row) & 1) * 4;
    const float light = 0.86f + 0.14f * Num_Sin(time * 0.2f + Num_Hash(row, column));
    Canvas_Polygon(canvas, outline, Colour_Scale(fills[choice], light));
    for (int corner = 0; corner < corners / 2; ++corner)
        Canvas_Line(canvas, outline[corner], outline[corner + 1], 1.6f, 0x140C14);
}

// Feathers and the eye come with the bird; the eye lies in the head, beyond the tile's square.
void drawMarks(Canvas& canvas, const View& view, float column, float row, float share) {
    for (const auto& feather : feathers)
        if (share > 0.5f)
            Canvas_Line(canvas, place(view, column + feather[0].x, row + feather[0].y),
                        place(view, column + feather[1].x, row + feather[1].y), 2 * share,
                        Colour_Scale(0x40303C, share));
    Canvas_Glow(canvas, place(view, column + 1.13f, row + 0.145f), 6 * share + 0.1f, 0xFFFFFF);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    const float sway = 0.03f + 0.045f * Num_Sin(time * 0.07f);
    const View view = {Num_Cos(sway), Num_Sin(sway), 14 * time, 9 * time};
    const int left = int(view.driftX / tileSize) - 5, top = int(view.driftY / tileSize) - 4;
    for (int number = 0; number < 90; ++number)
        drawTile(canvas, view, left + number % 10, top + number / 10, time);
    for (int number = 0; number < 90; ++number) {
        const float column = float(left + number % 10), row = float(top + number / 10);
        drawMarks(canvas, view, column, row, growth(column + 0.5f, row + 0.5f, time));
    }
    Letters_PaintTitle(canvas, name, 118, 0x0C0810, [=](float x, float y) {
        return Colour_Mix(0xFFF4DC, 0xFFC860, 0.5f + 0.5f * Num_Sin((x - 2 * y) / 300 - time / 4));
    });
    Letters_Colour(canvas, below, Letters_Centred(below) + 2, 220, 0x0C0810);
    Letters_Colour(canvas, below, Letters_Centred(below), 218, 0xFFF4DC);
}
