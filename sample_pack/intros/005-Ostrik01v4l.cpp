// A struck plate of tin rings, and the sand upon it gathers in figures where the plate stands
// still. Each stroke has its own figure; one passes into the next.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 1 V4 Ringing Tinplate";

const char Intro_Tune[] = R"(
// The plate is struck on each first beat; smaller plates answer, in five unequal steps.
tempo 80
volume 76
delay 3/8 40
reverb 85
plate = sine adsr 1 2600 0 900 fm 1.414 5 700 detune 9 level 52 reverb 45
rim = sine adsr 1 1800 0 600 fm 2.76 3.5 300 level 20 pan -30 reverb 40 delay 20
small = sine adsr 1 700 0 300 fm 3.5 2 200 level 24 pan -45 reverb 35
answer = small pan 45
gong = sine adsr 8 4000 0 1500 fm 0.503 2.5 2500 detune 6 level 46 reverb 50
dust = noise adsr 2 500 0 100 highpass 5200 0 level 9 reverb 40
A plate o3 l1 e | b | >c | <g | f | b | e
A rim o5 l1 e | b | >c | <g | f | b | e
A small o5 l8 v55 [e f r e b r f r]2 | b >c< r b g r f r | g b r g >c< r b r | f g r f b r g r |
  b >c< r b f r e r | e f r e f e r r
A answer o5 l8 v55 [r r g r r e r f]2 | r r f r r >c< r b | r r f r r f r g | r r e r r e r f |
  r r g r r g r f | r r g r r r b >c<
A gong o2 l1 e | r | r | f | r | r | e
A dust l1 x
B plate o3 l1 e | >c< | b | f | g | b | e
B rim o5 l1 e | >c< | b | f | g | b | e
B small o6 l16 v45 e r f e r e b r f e r f r b r r | [c r <b> c r <b r g r> c <b r g r f r>]2 |
  [<f r g f r f b r g f r g r b r r>]2 | <b r> c <b r g r f r g f r e r f r> |
  <e r f e r e b r f e r f r e r r>
B answer o5 l4 v60 b g f e | >c <b g f | b g f e | g f e f | b g f g | >c <b g f | e f g b
B gong o2 l1 e | r | r | f | r | g | r
B dust l1 x
play |: A B
)";

namespace {
constexpr int figureCount = 7, mostWaves = 8;
constexpr int waves[figureCount][2] = {{1, 3}, {2, 5}, {3, 5}, {1, 6}, {4, 7}, {3, 8}, {5, 8}};
constexpr int plateSize = 328, plateLeft = 92, plateTop = 10;

const Title name = Letters_MakeTitle("Ringing Tinplate", Face::Serif, 58, Slant::Italic);

// The cosines of all waves along one side of the plate: a figure is made of four of them.
float cosines[mostWaves + 1][plateSize + 1];

void makeCosines() {
    for (int wave = 0; wave <= mostWaves; ++wave)
        for (int place = 0; place <= plateSize; ++place)
            cosines[wave][place] = Num_Cos(0.5f * float(wave * place) / float(plateSize));
}

// How high a point of the square swings in one figure.
float swing(int figure, int x, int y) {
    const int n = waves[figure % figureCount][0], m = waves[figure % figureCount][1];
    return cosines[n][x] * cosines[m][y] - cosines[m][x] * cosines[n][y];
}

struct Tone {
    int figure;
    float share; // how far the next figure has come
    float loud;  // just struck: 1, then dying away
};

float height(const Tone& tone, int x, int y) {
    return Num_Mix(swing(tone.figure, x, y), swing(tone.figure + 1, x, y), tone.share);
}

// Rolled tin: fine lines across, and light that slides over it as it swings.
Colour shadeTin(float slope, int x, int y, float time) {
    const float grain = 0.06f * Num_Hash(x / 17, y) + 0.05f * Num_Noise(float(x) / 9, float(y) / 2);
    const float sheen = 0.10f * Num_Sin(float(x + y) / 330 + 0.07f * time);
    const float light = 0.36f + grain + sheen + 0.9f * slope;
    return Colour_Make(light * 0.92f, light, light * 1.10f);
}

Colour shadePlate(const Tone& tone, int x, int y, float time) {
    const float here = height(tone, x, y);
    const float dx = height(tone, x + 1, y) - here, dy = height(tone, x, y + 1) - here;
    const float swinging = tone.loud * Num_Sin(9 * time);
    const float lean = (dx + dy) * (0.8f + swinging) + 0.06f * here * swinging;
    const float away = std::fabs(here) / (std::sqrt(dx * dx + dy * dy) * 15 + 0.03f);
    const float heap = Num_Smooth(1, 0.35f, away + 0.5f * Num_Hash(x, y));
    const float dust = Num_Hash(y, x + int(time * 12)) < 0.012f * tone.loud;
    const Colour sand = Colour_Mix(0xB07828, 0xFFE9B0, Num_Hash(x * 3, y * 5));
    return Colour_Mix(shadeTin(lean, x, y, time), sand, Num_Clamp(heap + dust));
}

// The table beneath trembles a little with each stroke.
Colour shadeTable(float x, float y, float loud) {
    const float grain = Num_Noise(x / 60, y / 3 + loud);
    const float away = std::fmax(std::fabs(x - Canvas_MidX), std::fabs(y - 180));
    const float light = (0.18f + 0.14f * grain) * Num_Smooth(70, 230, away);
    return Colour_Make(light * 1.25f, light * 0.62f, light * 0.36f);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (cosines[0][0] == 0) // not made yet: each begins with 1
        makeCosines();
    const NoteState stroke = Music_NoteAt("plate", time); // once in three seconds
    const float within = stroke.age / 3;
    const Tone tone = {stroke.number, Num_Smooth(0.75f, 1, within), 1 - 0.7f * within};
    Canvas_Fill(canvas, [=](float x, float y) { return shadeTable(x, y, tone.loud); });
    for (int y = 0; y < plateSize; ++y)
        for (int x = 0; x < plateSize; ++x)
            canvas.pixels[plateTop + y][plateLeft + x] = shadePlate(tone, x, y, time);
    Letters_PaintTitle(canvas, name, 326, 0x000000, [](float x, float y) {
        const float light = 0.86f + 0.14f * Num_Sin(y / 40 + x / 400);
        return Colour_Make(light * 0.95f, light, light * 1.12f);
    });
}
