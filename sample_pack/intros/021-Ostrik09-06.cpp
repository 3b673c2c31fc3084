// A lamp of salt: a clear crystal turns around its own light, every face lets the others through.
#include "space.h"
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M6 Salt Lantern";

namespace {
constexpr int facetCount = 4 * Space_BallFaces;
constexpr Colour salt[] = {0xFF5828, 0xFF8048, 0xFFA070, 0xFF6848, 0xFFC090};

const Title name = Letters_MakeTitle("Salt Lantern", Face::Serif, 64);

struct Facet {
    Vector corners[3];
};

Facet facets[facetCount];

// A ball with its faces cut in four, then knocked about and drawn out to a point.
Vector roughen(Vector corner) {
    const Vector out = Space_Unit(corner);
    const int key = int(out.x * 50 + 99) * 211 + int(out.y * 50 + 99);
    const float chip = 0.82f + 0.3f * Num_Hash(key, int(out.z * 50 + 99));
    const float taper = out.y < 0 ? 1 + 0.22f * out.y : 1 - 0.05f * out.y;
    return {out.x * chip * taper, out.y * chip * 1.45f, out.z * chip * taper};
}

void cutFacets() {
    int made = 0;
    for (const auto& face : Space_BallFace) {
        const Vector a = Space_BallCorner[face[0]], b = Space_BallCorner[face[1]],
                     c = Space_BallCorner[face[2]];
        const Vector ab = roughen(a + b), bc = roughen(b + c), ca = roughen(c + a);
        facets[made++] = {{roughen(a), ab, ca}};
        facets[made++] = {{roughen(b), bc, ab}};
        facets[made++] = {{roughen(c), ca, bc}};
        facets[made++] = {{ab, bc, ca}};
    }
}

Colour shadeRoom(float x, float y, float flicker) {
    const float dx = x - Canvas_MidX, dy = y - 165;
    if (y < 300) {
        const float glow = flicker * 90 / (60 + std::sqrt(dx * dx + dy * dy)) - 0.16f;
        return Colour_Make(0.04f + 0.55f * glow, 0.05f + 0.20f * glow, 0.11f + 0.12f * glow);
    }
    const float pool = Num_Clamp(1 - std::fabs(dx) / 250) * flicker;
    const float wood = 0.5f + 0.5f * Num_Noise(x / 90, y / 2.5f);
    const float light = wood * (0.12f + 0.5f * pool * pool);
    return Colour_Make(light * 1.25f, light * 0.62f, light * 0.38f);
}

// Light is added, so that faces behind shine through; only the front ones have edges.
void drawFacet(Canvas& canvas, int number, Vector turns, float flicker) {
    Vector placed[3];
    Point corners[3];
    for (int corner = 0; corner < 3; ++corner) {
        placed[corner] = Space_Rotate(facets[number].corners[corner], turns);
        corners[corner] = Space_Project(placed[corner] + Vector{0, -0.22f, 4.6f}, 520);
    }
    const Vector normal = Space_FaceNormal(placed[0], placed[1], placed[2]);
    const bool isFront = normal.z * Space_Dot(normal, placed[0]) < 0;
    const float edgeOn = 1 - std::fabs(normal.z);
    const float light = ((isFront ? 0.20f : 0.28f) + 0.26f * edgeOn * edgeOn) * flicker;
    Canvas_ForPolygon(corners, 3, [&](int x, int y, float share) {
        const float dx = float(x) - 256, dy = float(y) - 180;
        const float lamp = 0.55f + 0.75f * Num_Clamp(1 - (dx * dx + dy * dy) / 17000);
        const float grain = 0.85f + 0.3f * Num_Hash(x / 2 + number * 7, y / 2);
        Canvas_Add(canvas, x, y, Colour_Scale(salt[number % 5], share * light * lamp * grain));
    });
    for (int corner = 0; isFront && corner < 3; ++corner)
        Canvas_Line(canvas, corners[corner], corners[(corner + 1) % 3], 1, 0xFFC8A0);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (facets[0].corners[0].y == 0)
        cutFacets();
    const float flicker = 0.86f + 0.14f * Num_Noise(2.2f * time, 0);
    const Vector turns = {0.015f * Num_Sin(0.08f * time), 0.055f * time, 0.02f};
    Canvas_Fill(canvas, [=](float x, float y) { return shadeRoom(x, y, flicker); });
    for (int number = 0; number < facetCount; ++number)
        drawFacet(canvas, number, turns, flicker);
    Canvas_Glow(canvas, {256, 180}, 90, Colour_Scale(0xFFB060, 0.6f * flicker));
    constexpr Point foot[] = {{172, 296}, {340, 296}, {352, 312},
                              {346, 322}, {166, 322}, {160, 312}};
    Canvas_PaintPolygon(canvas, foot, [](float x, float y) {
        const float shine = Num_Clamp(1 - std::fabs(x - 256) / 120);
        return Colour_Mix(0x201008, 0xB85C30, shine * Num_Smooth(322, 296, y));
    });
    Letters_PaintTitle(canvas, name, 322, Colour_Scale(0x802808, flicker), [](float x, float y) {
        return Colour_Mix(0xFFFAF4, 0xFFC0A0, 0.014f * y * Num_Hash(int(x) / 2, int(y) / 2));
    });
}
