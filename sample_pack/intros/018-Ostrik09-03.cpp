// Bodies bristling with quills tumble over a sheet of paper, drawn in ink: what lies behind is
// hidden, what lies in shade is hatched.
#include "space.h"
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M3 Tumblequill";

const char Intro_Tune[] = R"(
// Something tumbles over the sheet: a rag in B flat, plucked, with a thud where it lands.
tempo 96
volume 74
delay 1/8 15
reverb 35
clarinet = pulse width 50 adsr 12 60 80 50 lowpass 2200 15 sweep 0.5 60 level 34 pan -10 reverb 15
pluck = triangle adsr 1 190 0 40 lowpass 3000 10 level 34 pan 25 reverb 12
bass = triangle adsr 2 240 10 40 level 62
bassoon = saw adsr 15 80 75 50 lowpass 900 30 level 30 pan -30 reverb 12
thud = sine adsr 1 220 0 30 drop 14 60 key b-2 level 80
quill = noise adsr 2 60 0 15 bandpass 5200 30 level 22 pan 40
block = sine adsr 1 60 0 10 fm 2.4 2 30 key f6 level 20 pan -35
A clarinet o5 l16 d8 f d8 f g g+ a8 f8 d8 c <b-> | <b-8> d <b-8> d e- e f8 d8 <b-4> | e-8 g e-8. g a b- >c8 <a8 f8 e- | d8 f8 b-8 a8 b-4 r4
A pluck o4 l8 r (d f) r (d f) r (d f) r (d f) | r (d f) r (d f) r (d f) r (d f) |
  r (e- a) r (e- a) r (e- a) r (e- a) | r (d f) r (e- a) (d f)4 r4
A bass o2 l4 b- f b- f | b- f b- d | c f <a >f | b- f b- r
B bassoon o3 l8 d4 d16 e-16 f g4 f4 | e-4 e-16 f16 g a4 g4 | f a >c <a b- g e c | f2 r4 f16 g16 a16 b16
B pluck o5 l8 r (<b- >d) r (<b- >d) r (<b- >e-) r (<b- >d) | r (c e-) r (c e-) r (c f) r (c e-) |
  r (c f) r (c f) r (<b- >e) r (<b- >e) | r (<a >c) r (<a >c) (<a >c)4 r4
B bass o2 l4 b- f e- b- | c g f c | f c c <g> | f c f r
C clarinet o5 l16 f4 g a b- b >c4. <a f | g4 a b- >c c+ d4. <b- g | >c8 <b- a g8 f e- d8 f b-8 >d c <b- | a8 f8 g a b-8 b-4 r8 f8
C bassoon o3 l4 d f e- f | e- g f g | e- c d f | c f8 a8 b- r
C bass o2 l4 b- d f <a | b- >e- f <g> | c f b- d | f <f> b- r
A thud l1 x | r
A block l8 r4 x r r4 x x16 x16
A quill l8 v50 x v90 x
B thud l1 x | r
B block l8 r x r x r x x r
B quill l8 v50 x v90 x
C thud l1 x | r
C block l16 x8 x x x8 x8 x8 x x x8 r8
C quill l8 v50 x v90 x
play |: A A B A C B
)";

namespace {
constexpr Colour paper = 0xF2E6C8, ink = 0x241C38;
constexpr int bodyCount = 3;
constexpr int sides = 3 * Space_BallFaces; // a quill of three sides on each face of the ball

const Lettering name = Letters_Make("Tumblequill", Face::Serif, 84, Slant::Italic);

struct Side {
    Point corners[3];
    float depth, light;
    bool isSeen;
};

// Thrown across the sheet, bouncing from lower edge to lower edge every eight beats.
Vector placeBody(int number, float time) {
    const float beat = Music_BeatAt(time);
    const float share = Num_Fract(beat / 24 + float(number) / float(bodyCount));
    const float hop = Num_Fract(share * 3);
    return {4.4f * share - 2.2f, 0.52f - 2.6f * hop * (1 - hop), 3.6f};
}

Side makeSide(Vector place, Vector one, Vector other, Vector tip) {
    const Vector corners[] = {one, other, tip};
    Side side = {};
    for (int corner = 0; corner < 3; ++corner) {
        const Vector placed = corners[corner] * 0.42f + place;
        side.corners[corner] = Space_Project(placed, 410);
        side.depth += placed.z;
    }
    const Vector normal = Space_FaceNormal(one, other, tip);
    side.light = Space_Dot(normal, {-0.54f, -0.72f, -0.45f});
    side.isSeen = Space_Dot(normal, one * 0.42f + place) * Space_Dot(normal, one) < 0; // looks here
    return side;
}

// The far ones first: each covers what it hides.
void makeSides(Vector place, Vector turns, float quill, Side (&list)[sides]) {
    int made = 0;
    for (const auto& face : Space_BallFace) {
        Vector corners[3], tip = {0, 0, 0};
        for (int corner = 0; corner < 3; ++corner) {
            corners[corner] = Space_Rotate(Space_BallCorner[face[corner]], turns);
            tip = tip + corners[corner] * (quill / 3);
        }
        for (int corner = 0; corner < 3; ++corner)
            list[made++] = makeSide(place, corners[corner], corners[(corner + 1) % 3], tip);
    }
    std::sort(list, list + sides, [](const Side& a, const Side& b) { return a.depth > b.depth; });
}

// Strokes of a pen, denser in deeper shade; they lie on the sheet and not on the body.
Colour hatch(float x, float y, float light) {
    if (light >= 0.35f)
        return 0xFBF4E0;
    const float jitter = 0.6f * Num_Noise(x / 5, y / 5);
    const bool first = Num_Fract((x + y + jitter) / 5) < 0.24f;
    const bool second = Num_Fract((x - y + jitter) / 5) < 0.24f && light < -0.15f;
    return Colour_Mix(0xFBF4E0, ink, (first ? 0.75f : 0) + (second ? 0.6f : 0));
}

void drawBody(Canvas& canvas, int number, float time) {
    const float spin = 0.23f * time + 0.3f * float(number);
    const float quill = 2.05f + 0.55f * Num_Sin(0.21f * time + 0.37f * float(number));
    Side list[sides];
    makeSides(placeBody(number, time), {spin, 0.6f * spin, 0.35f * spin}, quill, list);
    for (const Side& side : list) {
        if (!side.isSeen)
            continue;
        const auto shade = [&](float x, float y) { return hatch(x, y, side.light); };
        Canvas_PaintPolygon(canvas, side.corners, shade);
        for (int corner = 0; corner < 3; ++corner)
            Canvas_Line(canvas, side.corners[corner], side.corners[(corner + 1) % 3], 1.5f, ink);
    }
}

void drawShadow(Canvas& canvas, Vector place) {
    const Point middle = Space_Project({place.x, 0.92f, place.z}, 410);
    const float size = 60 + 30 * place.y;
    Canvas_PaintBall(canvas, middle, size, 0.16f * size, [&](float x, float y, float) {
        return Num_Fract((x + y) * size / 8) < 0.5f ? 0x8A8080 : paper;
    });
}

// A ruled sheet with a margin, darker towards its corners.
Colour shadePaper(float x, float y) {
    const float fibre = Num_Noise(x / 2, y / 7) + Num_Noise(x / 70, y / 70);
    const float dx = x / Canvas_MidX - 1, dy = y / Canvas_MidY - 1;
    const float light = 1 - 0.035f * fibre - 0.14f * (dx * dx * dx * dx + dy * dy * dy * dy);
    const bool margin = x == 44 || x == 46, line = int(y) % 24 == 20 && y > 60;
    return Colour_Scale(margin ? 0xE09080 : line ? 0xC8CCD0 : paper, light);
}

// The name is written again and again, and dries from blue to black.
void drawName(Canvas& canvas, float time) {
    const int left = Letters_Centred(name), top = 18;
    const float written = Num_Clamp(Num_Fract(time / 12 + 0.08f) * 6);
    const float nib = written * 1.1f * float(name.width);
    Letters_Paint(canvas, name, left, top, [&](float x, float y) {
        const Colour fresh = Colour_Mix(0x3058C8, ink, (nib - x) / 200);
        return x + 0.25f * y < nib ? fresh : canvas.pixels[top + int(y)][left + int(x)];
    });
    Canvas_Line(canvas, {50, 104}, {50 + 412 * written, 100}, 1.8f, 0x3058C8);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, shadePaper);
    drawName(canvas, time);
    for (int number = 0; number < bodyCount; ++number)
        drawShadow(canvas, placeBody(number, time));
    for (int number = 0; number < bodyCount; ++number)
        drawBody(canvas, number, time);
}
