// A plane filled without gaps: squares whose edges grow into birds and back again. Opposite edges
// of a tile keep the same shape, so that every tile still fits into its neighbours.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Tessel Intro 1";

namespace {

constexpr int edgePoints = 9;
constexpr float tileSize = 92.0f;
constexpr Colour warm[] = {0xF2B134, 0xED553B, 0xD1495B, 0xF79256};
constexpr Colour cool[] = {0x173F5F, 0x20639B, 0x2F4B7C, 0x1B6B72};

// The upper edge is the bird's wing, the left edge its tail and, on the other side, its head; in a
// tile of size 1.
constexpr Point upperEdge[edgePoints] = {{0.0f, 0.0f},    {0.16f, 0.07f},  {0.30f, -0.06f},
                                         {0.38f, -0.34f}, {0.58f, -0.52f}, {0.54f, -0.26f},
                                         {0.64f, -0.07f}, {0.82f, -0.06f}, {1.0f, 0.0f}};
constexpr Point leftEdge[edgePoints] = {{0.0f, 0.0f},   {0.10f, 0.05f},  {0.20f, 0.12f},
                                        {0.36f, 0.22f}, {0.18f, 0.26f},  {0.09f, 0.40f},
                                        {0.0f, 0.62f},  {-0.14f, 0.86f}, {0.0f, 1.0f}};
// Feathers in the wing: pairs of ends.
constexpr Point feathers[][2] = {{{0.46f, -0.30f}, {0.40f, 0.10f}},
                                 {{0.51f, -0.20f}, {0.49f, 0.12f}},
                                 {{0.56f, -0.06f}, {0.58f, 0.14f}},
                                 {{0.10f, 0.80f}, {0.26f, 0.70f}},
                                 {{0.12f, 0.64f}, {0.30f, 0.58f}}};
constexpr Point eye = {1.13f, 0.145f};

const Lettering name = Letters_Make("OSTRIK", Face::Serif, 110);
const Lettering nameShadow = Letters_Soften(name, 10);
const Lettering below = Letters_Make("tessel intro 1", Face::Serif, 40, Slant::Italic);

// A slowly turning and breathing view of the plane.
struct View {
    float cosine, sine, zoom, driftX, driftY;
};

View lookAt(float seconds) {
    const float turn = 0.045f * Maths_Sin(seconds * 0.07f) + 0.03f;
    return {Maths_Cos(turn), Maths_Sin(turn), 1.0f + 0.18f * Maths_Sin(seconds * 0.05f),
            14.0f * seconds, 9.0f * seconds};
}

Point toScreen(const View& view, Point plane) {
    const float x = (plane.x * view.cosine - plane.y * view.sine) * view.zoom;
    const float y = (plane.x * view.sine + plane.y * view.cosine) * view.zoom;
    return {Canvas_CentreX + x, Canvas_CentreY + y};
}

// The state of an edge depends on its own place alone: both of its tiles see the same.
float growth(float column, float row, float seconds) {
    return Maths_Smooth(-0.5f, 0.3f, Maths_Sin(seconds * 0.16f + column * 0.045f - row * 0.06f));
}

Point alongUpper(int point, float column, float row, float seconds) {
    const float share = growth(column + 0.5f, row, seconds);
    const float straight = float(point) / float(edgePoints - 1);
    return {column + Maths_Mix(straight, upperEdge[point].x, share),
            row + upperEdge[point].y * share};
}

Point alongLeft(int point, float column, float row, float seconds) {
    const float share = growth(column, row + 0.5f, seconds);
    const float straight = float(point) / float(edgePoints - 1);
    return {column + leftEdge[point].x * share,
            row + Maths_Mix(straight, leftEdge[point].y, share)};
}

// Once round the tile, clockwise from its upper left corner.
Point alongTile(int corner, float column, float row, float seconds) {
    const int step = corner % (edgePoints - 1), last = edgePoints - 1;
    switch (corner / last) {
    case 0: return alongUpper(step, column, row, seconds);
    case 1: return alongLeft(step, column + 1.0f, row, seconds);
    case 2: return alongUpper(last - step, column, row + 1.0f, seconds);
    default: return alongLeft(last - step, column, row, seconds);
    }
}

// Where the tiles lie just now: their drift is a wandering origin.
Point place(const View& view, float column, float row) {
    return toScreen(view, {column * tileSize - view.driftX, row * tileSize - view.driftY});
}

void drawMarks(Canvas& canvas, const View& view, float column, float row, float share) {
    const Colour ink = Colour_Scale(0x40303C, share);
    for (const auto& feather : feathers)
        if (share > 0.5f)
            Canvas_Line(canvas, place(view, column + feather[0].x, row + feather[0].y),
                        place(view, column + feather[1].x, row + feather[1].y), 2.0f * share, ink);
    const Point middle = place(view, column + eye.x, row + eye.y);
    Canvas_Glow(canvas, middle, 6.0f * share + 0.1f, 0xFFFFFF);
}

void drawTile(Canvas& canvas, const View& view, int column, int row, float seconds) {
    constexpr int corners = 4 * (edgePoints - 1);
    Point outline[corners];
    for (int corner = 0; corner < corners; ++corner) {
        const Point at = alongTile(corner, float(column), float(row), seconds);
        outline[corner] = place(view, at.x, at.y);
    }
    const int choice = int(4.0f * Maths_Hash(column, row)) & 3;
    const float light = 0.86f + 0.14f * Maths_Sin(seconds * 0.2f + Maths_Hash(row, column));
    const Colour fill = (column + row) & 1 ? warm[choice] : cool[choice];
    Canvas_Polygon(canvas, outline, corners, Colour_Scale(fill, light));
    // Half the outline: the other half is drawn with the neighbours.
    for (int corner = 0; corner < corners / 2; ++corner)
        Canvas_Line(canvas, outline[corner], outline[corner + 1], 1.6f, 0x140C14);
}

// A pass over all tiles that can be seen.
template <class Draw>
void forEachTile(const View& view, const Draw& draw) {
    const int midColumn = int(view.driftX / tileSize), midRow = int(view.driftY / tileSize);
    for (int row = midRow - 4; row <= midRow + 4; ++row)
        for (int column = midColumn - 5; column <= midColumn + 4; ++column)
            draw(column, row);
}

void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 118;
    for (int twice = 0; twice < 2; ++twice)
        Letters_Colour(canvas, nameShadow, left - 6, top - 4, 0x0C0810);
    Letters_Paint(canvas, name, left, top, [=](int x, int y) {
        const float wave = Maths_Sin(float(x - 2 * y) / 300.0f - 0.25f * seconds);
        return Colour_Mix(0xFFF4DC, 0xFFC860, 0.5f + 0.5f * wave);
    });
    Letters_Colour(canvas, below, Letters_Centred(below) + 2, top + 102, 0x0C0810);
    Letters_Colour(canvas, below, Letters_Centred(below), top + 100, 0xFFF4DC);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    const View view = lookAt(seconds);
    forEachTile(view, [&](int column, int row) { drawTile(canvas, view, column, row, seconds); });
    forEachTile(view, [&](int column, int row) {
        const float share = growth(float(column) + 0.5f, float(row) + 0.5f, seconds);
        drawMarks(canvas, view, float(column), float(row), share);
    });
    drawName(canvas, seconds);
}
