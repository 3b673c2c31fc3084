// A rose window: panes of coloured glass in lead that wander, mirrored into sixteen parts, with the
// sun behind them.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 5 Glasswork";

const char Intro_Tune[] = R"(
// A hymn in the dorian mode for organ, with small bells where the sun meets a pane.
tempo 72
volume 42
delay 3/8 30
reverb 97
principal = triangle adsr 30 200 90 350 detune 7 level 30 reverb 45
reed = saw adsr 40 200 85 350 lowpass 2200 10 detune 10 level 15 reverb 45
flute = sine adsr 40 200 90 300 vibrato 4.5 8 breath 2 level 24 reverb 60
choir = saw adsr 250 600 80 700 bandpass 850 35 detune 22 vibrato 4.8 12 level 25 reverb 75
pedal = triangle adsr 50 200 90 400 detune 5 level 40 reverb 30
bell = sine adsr 1 1500 0 800 fm 3.5 2.2 400 level 14 pan 40 delay 40 reverb 60
A principal o4 l4 d2 e f | a2 g2 | f e d e | c2 d2 | a2 a b | >c2 <b a | g a f e | d1
A reed o3 l2 (a >d) (a >c) | (>c f) (c e) | (<a >d) (<a >c) | (<g >c) (<a >d) |
  (>c f)1 | (e a) (d g) | (c e) (<a >c) | (<f a >d)1
A pedal o2 l2 d a | f c | d a | c d | f f | a g | c a | d1
B flute o5 l4 a2. g | f e f a | g2. f | e2 c2 | d2 f g | a b >c <a | g f e c | d1
B choir o4 l1 (d f a) | (c f a) | (c e g) | (<a >c e) | (<b- >d f) | (c f a) |
  (<b- >d g)2 (c e g)2 | (<a >d f)
B pedal o2 l1 d | f | c | a | b- | f | g2 c2 | d
B bell o6 l8 r4 a r d r4 r | r1 | r4 g r e r4. | r1 | r4 f r b- r4. | r1 | r4 d r g r4. | r4 a >d <r2
A bell o6 l8 r1 | r2 >c r <g r | r1 | r2 a r4. | r1 | r2 g r >d< r | r1 | r4 d r a r4.
C principal o5 l4 d2 e f | a2 g2 | f e d e | c2 d2 | a2 a b | >c2 <b a | g a f e | d1
C reed o4 l2 (a >d) (a >c) | (>c f) (c e) | (<a >d) (<a >c) | (<g >c) (<a >d) |
  (>c f)1 | (e a) (d g) | (c e) (<a >c) | (<f a >d)1
C choir o4 l2 (d f a) (d f a) | (f a >c) (e g >c) | (d f a) (c e a) | (c e g) (d f a) |
  (f a >c) (f a >c) | (e a >c) (d g b) | (c e g) (c e a) | (d f a) (d f a)
C pedal o2 l2 d a | f c | d a | c d | f f | a g | c a | d1
play |: A B C B
)";

namespace {
constexpr int parts = 16;
constexpr int rings = 200, rays = 96; // one part of the window, as a picture of its own
constexpr float windowRadius = 172, centreY = 186;
constexpr Colour glass[] = {0x1030C0, 0xC01828, 0xF0A010, 0x0C8048,
                            0x6018A0, 0x20A0D8, 0xE04888, 0xF8E070};

const Title name = Letters_MakeTitle("Glasswork", Face::Serif, 70);

struct Pane {
    int number; // which of the panes
    float lead; // distance from its border
    Point away; // from the pane's middle
};

// The pane at a place: that of the nearest of the wandering middles, one to a square of size 1.
Pane findPane(float x, float y, float time) {
    float nearest = 9, second = 9;
    Pane pane = {};
    for (int near = 0; near < 9; ++near) {
        const int column = int(Num_Floor(x)) + near % 3 - 1, row = int(Num_Floor(y)) + near / 3 - 1;
        const float chance = Num_Hash(column, row);
        const float dx = float(column) + 0.5f + 0.42f * Num_Sin(chance + 0.09f * time) - x;
        const float dy = float(row) + 0.5f + 0.42f * Num_Sin(7 * chance + 0.07f * time) - y;
        const float distance = std::sqrt(dx * dx + dy * dy);
        second = std::min(second, std::max(nearest, distance));
        if (distance < nearest) {
            nearest = distance;
            pane = {int(chance * 997), 0, {dx, dy}};
        }
    }
    pane.lead = second - nearest;
    return pane;
}

// Uneven glass, brighter where the sun stands.
Colour shadePane(const Pane& pane, float x, float y, float sun) {
    const float uneven = 0.72f + 0.5f * Num_Noise(9 * x, 9 * y);
    const float light = (0.5f + 0.75f * sun + 0.25f * (pane.away.x + pane.away.y)) * uneven;
    const Colour bright = Colour_Mix(glass[pane.number & 7], 0xFFFFFF, Num_Clamp(light - 0.75f));
    return Colour_Mix(0x1A1A21, Colour_Scale(bright, light), Num_Smooth(0.05f, 0.11f, pane.lead));
}

void drawPart(Colour (&part)[rings][rays], float time) {
    const float shift = 0.06f * time;
    for (int ring = 0; ring < rings; ++ring)
        for (int ray = 0; ray < rays; ++ray) {
            const float radius = float(ring) / rings, angle = float(ray) / (rays * parts);
            const float x = 4.6f * radius * Num_Cos(angle), y = 4.6f * radius * Num_Sin(angle);
            const float sun = 0.5f + 0.5f * Num_Cos(radius - 0.11f * time);
            part[ring][ray] = shadePane(findPane(x + shift, y - shift, time), x, y, sun);
        }
}

// A wall with a rim of dressed stones around the window.
Colour shadeStone(float dx, float dy, float radius, float angle) {
    const float rim = Num_Smooth(26, 0, std::fabs(radius - windowRadius - 15));
    const float lit = dx + dy < 0 ? 0.28f : 0.13f;
    const float joint = Num_Fract(angle * 32) < 0.05f && rim > 0 ? -0.08f : 0;
    const float grain = 0.1f * Num_Hash(int(dx), int(dy)) + 0.16f * Num_Noise(dx / 30, dy / 22);
    const float light = 0.10f + grain + rim * lit + joint;
    return Colour_Make(light * 1.02f, light * 0.95f, light * 0.92f);
}

// The wheel turns slowly; neighbouring parts are mirror images.
Colour shadeWindow(const Colour (&part)[rings][rays], float radius, float angle, float time) {
    const float place = Num_Fract(angle + 0.012f * time) * float(parts);
    const float mirrored = int(place) & 1 ? 1 - Num_Fract(place) : Num_Fract(place);
    const int ring = int(radius / windowRadius * float(rings - 1));
    const float frame = Num_Smooth(3, 5.5f, std::fabs(radius - 62)) *
                        Num_Smooth(2.5f, 5, std::fabs(radius - 122)) *
                        Num_Smooth(windowRadius, windowRadius - 5, radius);
    return Colour_Mix(0x18161C, part[ring][int(mirrored * float(rays - 1))], frame);
}

float radii[Canvas_Height][Canvas_Width], angles[Canvas_Height][Canvas_Width];

void makeTables() {
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x) {
            const float dx = float(x) - Canvas_MidX, dy = float(y) - centreY;
            radii[y][x] = std::sqrt(dx * dx + dy * dy);
            angles[y][x] = std::atan2(dy, dx) / Num_Turn;
        }
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static Colour part[rings][rays];
    if (radii[0][0] == 0)
        makeTables();
    drawPart(part, time);
    Canvas_Fill(canvas, [=](float x, float y) {
        const float radius = radii[int(y)][int(x)], angle = angles[int(y)][int(x)];
        return radius < windowRadius ? shadeWindow(part, radius, angle, time)
                                     : shadeStone(x - Canvas_MidX, y - centreY, radius, angle);
    });
    Letters_PaintTitle(canvas, name, 312, 0x000000, [](float x, float y) {
        return Colour_Mix(0xFFF8E0, glass[int(x) / 42 & 7], y / 110);
    });
}
