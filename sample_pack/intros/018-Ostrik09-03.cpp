// Bodies bristling with quills tumble over a sheet of paper, drawn in ink: what lies behind is
// hidden, what lies in shade is hatched.

#include "letters.h"
#include "space.h"
#include "stage.h"

#include <algorithm>

const char Intro_Title[] = "Ostrik Intro 9 M3 Tumblequill";

namespace {

constexpr Colour paper = 0xF2E6C8, ink = 0x241C38;
constexpr int bodyCount = 3;
constexpr int sides = 3 * Space_BallFaces; // a quill of three sides on each face of the ball

const Lettering name = Letters_Make("Tumblequill", Face::Serif, 84, Slant::Italic);

struct Side {
    Point corners[3];
    float depth;
    float light;
};

struct Body {
    Vector place;
    Vector turns;
    float size;
    float quill; // how far the quills stand out
};

// Thrown across the sheet, bouncing lower edge to lower edge, each at its own pace.
Body placeBody(int number, float seconds) {
    const float share = Maths_Fract(seconds * 0.065f + float(number) / float(bodyCount) + 0.12f);
    const float hop = Maths_Fract(share * 3.0f);
    const float x = 4.4f * share - 2.2f, y = 0.52f - 2.6f * hop * (1.0f - hop);
    const float spin = 0.23f * seconds + 0.3f * float(number);
    return {{x, y, 3.6f},
            {spin, 0.6f * spin, 0.35f * spin},
            0.42f,
            2.05f + 0.55f * Maths_Sin(0.21f * seconds + 0.37f * float(number))};
}

Side makeSide(const Body& body, Vector one, Vector other, Vector tip) {
    const Vector normal = Space_FaceNormal(one, other, tip);
    const Vector corners[] = {one, other, tip};
    Side side = {};
    for (int corner = 0; corner < 3; ++corner) {
        const Vector placed = corners[corner] * body.size + body.place;
        side.corners[corner] = Space_Project(placed, 410.0f);
        side.depth += placed.z;
    }
    side.light = Space_Dot(normal, Space_Unit({-0.6f, -0.8f, -0.5f}));
    return side;
}

// The far ones first: each covers what it hides.
void makeSides(const Body& body, Side (&list)[sides]) {
    int made = 0;
    for (const auto& face : Space_BallFace) {
        Vector corners[3], tip = {0, 0, 0};
        for (int corner = 0; corner < 3; ++corner) {
            corners[corner] = Space_Rotate(Space_BallCorner[face[corner]], body.turns);
            tip = tip + corners[corner];
        }
        tip = tip * (body.quill / 3.0f);
        for (int corner = 0; corner < 3; ++corner)
            list[made++] = makeSide(body, corners[corner], corners[(corner + 1) % 3], tip);
    }
    std::sort(list, list + sides, [](const Side& a, const Side& b) { return a.depth > b.depth; });
}

// Strokes of a pen, denser in deeper shade; they lie on the sheet and not on the body.
Colour hatch(int x, int y, float light) {
    const float jitter = 0.6f * Maths_Noise(float(x) / 5.0f, float(y) / 5.0f);
    const float first = Maths_Fract((float(x + y) + jitter) / 5.0f);
    const float second = Maths_Fract((float(x - y) + jitter) / 5.0f);
    float darkness = first < 0.24f && light < 0.35f ? 0.75f : 0.0f;
    darkness += second < 0.24f && light < -0.15f ? 0.6f : 0.0f;
    return Colour_Mix(0xFBF4E0, ink, Maths_Clamp(darkness));
}

void drawBody(Canvas& canvas, const Body& body) {
    Side list[sides];
    makeSides(body, list);
    for (const Side& side : list) {
        Canvas_PaintPolygon(side.corners, 3, [&](int x, int y, float share) {
            Canvas_Blend(canvas, x, y, hatch(x, y, side.light), share);
        });
        for (int corner = 0; corner < 3; ++corner)
            Canvas_Line(canvas, side.corners[corner], side.corners[(corner + 1) % 3], 1.5f, ink);
    }
}

void drawPaper(Canvas& canvas) {
    Canvas_Fill(canvas, [](int x, int y) {
        const float fibre = Maths_Noise(float(x) / 2.0f, float(y) / 7.0f) +
                            Maths_Noise(float(x) / 70.0f, float(y) / 70.0f);
        const float dx = float(x) / Canvas_CentreX - 1.0f, dy = float(y) / Canvas_CentreY - 1.0f;
        const float light = 1.0f - 0.035f * fibre - 0.14f * (dx * dx * dx * dx + dy * dy * dy * dy);
        const bool margin = x == 44 || x == 46, line = y % 24 == 20 && y > 60;
        const Colour ruled = margin ? 0xE09080 : line ? 0xC8CCD0 : paper;
        return Colour_Scale(ruled, light);
    });
}

void drawShadow(Canvas& canvas, const Body& body) {
    Point outline[20];
    const Point middle = Space_Project({body.place.x, 0.92f, body.place.z}, 410.0f);
    const float size = 60.0f + 30.0f * body.place.y;
    for (int corner = 0; corner < 20; ++corner)
        outline[corner] = {middle.x + size * Maths_Cos(float(corner) / 20.0f),
                           middle.y + 0.16f * size * Maths_Sin(float(corner) / 20.0f)};
    Canvas_PaintPolygon(outline, 20, [&](int x, int y, float share) {
        if ((x + 2 * y) % 4 < 2)
            Canvas_Blend(canvas, x, y, ink, 0.6f * share);
    });
}

// The name is written again and again, and dries from blue to black.
void drawName(Canvas& canvas, float seconds) {
    const int left = Letters_Centred(name), top = 18;
    const float written = Maths_Clamp(Maths_Fract(seconds / 12.0f + 0.08f) * 6.0f) * 1.1f;
    const float nib = written * float(name.width);
    Letters_Paint(canvas, name, left, top, [&](int x, int y) {
        const float wet = Maths_Clamp((nib - float(x)) / 200.0f);
        const Colour fresh = Colour_Mix(0x3058C8, ink, wet);
        return float(x) + 0.25f * float(y) < nib ? fresh : canvas.pixels[top + y][left + x];
    });
    Canvas_Line(canvas, {float(left), 104.0f},
                {float(left) + Maths_Clamp(nib, 0.0f, 400.0f), 100.0f}, 1.8f, 0x3058C8);
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    drawPaper(canvas);
    drawName(canvas, seconds);
    for (int number = 0; number < bodyCount; ++number)
        drawShadow(canvas, placeBody(number, seconds));
    for (int number = 0; number < bodyCount; ++number)
        drawBody(canvas, placeBody(number, seconds));
}
