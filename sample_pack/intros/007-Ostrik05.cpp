// A rose window: panes of coloured glass in lead that wander, mirrored into sixteen parts, with the
// sun behind them.

#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 5 Glasswork";

namespace {

constexpr int parts = 16;
constexpr int rings = 200, rays = 96; // one part of the window, as a picture of its own
constexpr float windowRadius = 172.0f, centreY = 186.0f;
constexpr Colour glass[] = {0x1030C0, 0xC01828, 0xF0A010, 0x0C8048,
                            0x6018A0, 0x20A0D8, 0xE04888, 0xF8E070};

const Title name = Letters_MakeTitle("Glasswork", Face::Serif, 70);

struct Pane {
    int number; // which of the panes
    float lead; // distance from its border
    Point away; // from the pane's middle
};

// The pane at a place: that of the nearest of the wandering middles, one to a square of size 1.
Pane findPane(float x, float y, float seconds) {
    float nearest = 9.0f, second = 9.0f;
    Pane pane = {};
    for (int near = 0; near < 9; ++near) {
        const int column = int(Maths_Floor(x)) + near % 3 - 1,
                  row = int(Maths_Floor(y)) + near / 3 - 1;
        const float chance = Maths_Hash(column, row);
        const float dx = float(column) + 0.5f + 0.42f * Maths_Sin(chance + 0.09f * seconds) - x;
        const float dy = float(row) + 0.5f + 0.42f * Maths_Sin(7.0f * chance + 0.07f * seconds) - y;
        const float distance = std::sqrt(dx * dx + dy * dy);
        second = std::min(second, std::max(nearest, distance));
        if (distance < nearest) {
            nearest = distance;
            pane = {int(chance * 997.0f), 0.0f, {dx, dy}};
        }
    }
    pane.lead = second - nearest;
    return pane;
}

// Uneven glass, brighter where the sun stands.
Colour shadePane(const Pane& pane, float x, float y, float sun) {
    const float uneven = 0.72f + 0.5f * Maths_Noise(9.0f * x, 9.0f * y);
    const float light = (0.5f + 0.75f * sun + 0.25f * (pane.away.x + pane.away.y)) * uneven;
    const Colour bright = Colour_Mix(glass[pane.number & 7], 0xFFFFFF, Maths_Clamp(light - 0.75f));
    return Colour_Mix(0x1A1A21, Colour_Scale(bright, light), Maths_Smooth(0.05f, 0.11f, pane.lead));
}

void drawPart(Colour (&part)[rings][rays], float seconds) {
    const float shift = 0.06f * seconds;
    for (int ring = 0; ring < rings; ++ring)
        for (int ray = 0; ray < rays; ++ray) {
            const float radius = float(ring) / float(rings),
                        angle = float(ray) / float(rays * parts);
            const float x = 4.6f * radius * Maths_Cos(angle), y = 4.6f * radius * Maths_Sin(angle);
            const float sun = 0.5f + 0.5f * Maths_Cos(radius - 0.11f * seconds);
            part[ring][ray] = shadePane(findPane(x + shift, y - shift, seconds), x, y, sun);
        }
}

// A wall with a rim of dressed stones around the window.
Colour shadeStone(float dx, float dy, float radius, float angle) {
    const float rim = Maths_Smooth(26.0f, 0.0f, std::fabs(radius - windowRadius - 15.0f));
    const float lit = dx + dy < 0.0f ? 0.28f : 0.13f;
    const float joint = Maths_Fract(angle * 32.0f) < 0.05f && rim > 0.0f ? -0.08f : 0.0f;
    const float grain = 0.10f * Maths_Hash(int(dx), int(dy)) +
                        0.16f * Maths_Noise(dx / 30.0f + 50.0f, dy / 22.0f + 50.0f);
    const float light = 0.10f + grain + rim * lit + joint;
    return Colour_Make(light * 1.02f, light * 0.95f, light * 0.92f);
}

// The wheel turns slowly; neighbouring parts are mirror images.
Colour shadeWindow(const Colour (&part)[rings][rays], float radius, float angle, float seconds) {
    const float place = Maths_Fract(angle + 0.012f * seconds) * float(parts);
    const float mirrored = int(place) & 1 ? 1.0f - Maths_Fract(place) : Maths_Fract(place);
    const int ring = int(radius / windowRadius * float(rings - 1));
    const float frame = Maths_Smooth(3.0f, 5.5f, std::fabs(radius - 62.0f)) *
                        Maths_Smooth(2.5f, 5.0f, std::fabs(radius - 122.0f)) *
                        Maths_Smooth(windowRadius, windowRadius - 5.0f, radius);
    return Colour_Mix(0x18161C, part[ring][int(mirrored * float(rays - 1))], frame);
}

float radii[Canvas_Height][Canvas_Width], angles[Canvas_Height][Canvas_Width];

void makeTables() {
    for (int y = 0; y < Canvas_Height; ++y)
        for (int x = 0; x < Canvas_Width; ++x) {
            const float dx = float(x) - Canvas_CentreX, dy = float(y) - centreY;
            radii[y][x] = std::sqrt(dx * dx + dy * dy);
            angles[y][x] = std::atan2(dy, dx) / Maths_Turn;
        }
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    static Colour part[rings][rays];
    if (radii[0][0] == 0.0f)
        makeTables();
    drawPart(part, seconds);
    Canvas_Fill(canvas, [=](float x, float y) {
        const float radius = radii[int(y)][int(x)], angle = angles[int(y)][int(x)];
        return radius < windowRadius ? shadeWindow(part, radius, angle, seconds)
                                     : shadeStone(x - Canvas_CentreX, y - centreY, radius, angle);
    });
    Letters_PaintTitle(canvas, name, 312, 0x000000, [](float x, float y) {
        return Colour_Mix(0xFFF8E0, glass[int(x) / 42 & 7], y / 110.0f);
    });
}
