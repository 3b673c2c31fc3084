// A lamp of salt: a clear crystal turns around its own light, every face lets the others through.
#include "space.h"
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M6 Salt Lantern";

const char Intro_Tune[] = R"(
// A lamp of salt: a slow song in D flat on a celesta, warm chords below, and much air.
tempo 66
volume 50
delay 3/8 40
reverb 92
celesta = sine adsr 2 1300 0 600 fm 4 0.9 300 level 40 pan 10 delay 30 reverb 45
warm = triangle adsr 500 600 80 1200 detune 12 level 22 pan -10 reverb 45
glass = sine adsr 900 600 70 1500 detune 8 vibrato 4 10 level 12 pan 35 reverb 70
bass = sine adsr 80 800 60 600 level 44 reverb 15
grain = noise adsr 1 20 0 10 highpass 6500 0 level 9 pan -40 delay 40 reverb 50
A celesta o5 l4 a-. b-8 >d- <a- | f2 e-4. f8 | g-. a-8 b- >d- | <a-1 | >d-. c8 <b- a- | g-2 f4. e-8 | f a- e- g- | d-1
A warm o3 l1 (d- a- >f) | (b- >d- f) | (g- b- >d-) | (a- >c e-) | (b- >d- f) | (g- b- >e-) | (a- >c g-) | (d- a- >f)
A bass o2 l1 d- | <b- | g- | a- | b- | g- | a- | >d-
B celesta o5 l8 r a- >d- e- f4 e-4 | r <b- >d- f g-4 f4 | e-4. d-8 c4 <a-4 | b-2. r4 |
  r8 g- b- >d- f4 d-4 | r8 <a- >c e- g-4 e-4 | d-4 <b-4 a-4 g-4 | a-1
B glass o5 l1 f | g- | e- | d- | d- | c | <b- | >c
B warm o3 l1 (b- >d- f) | (g- b- >d-) | (a- >c e-) | (g- b- >d-) | (g- b- >d-) | (a- >c e-) | (e- b- >d-) | (a- >c g-)
B bass o2 l1 b- | g- | a- | g- | g- | a- | e- | a-
A grain l8 r4 v40 x r r v70 x r4
B grain l8 r x r4 v70 x r v30 x r
play |: A B A B-2
)";

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
    const float tone = Music_NoteAt("celesta", time).level; // the light breathes with the melody
    const float flicker = 0.80f + 0.12f * Num_Noise(2.2f * time, 0) + 0.22f * tone;
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
