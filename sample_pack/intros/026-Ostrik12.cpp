// A harbour at night: windows, a lighthouse that turns, a boat that waits, and all of it once more
// in the water.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 12 Your Harbour";

const char Intro_Tune[] = R"(
// A harbor at night: a barcarole for concertina in B flat; swell, a bell buoy, a horn far out.
tempo 78
meter 3/4
volume 62
swing 50
delay 3/8 35
reverb 85
concertina = pulse width 40 adsr 60 150 80 180 lowpass 2000 10 detune 10 vibrato 4.6 12 level 21 pan -12 reverb 35
guitar = triangle adsr 2 700 0 200 lowpass 1900 10 level 26 pan 25 reverb 30
bass = triangle adsr 8 800 20 250 level 38 reverb 15
swell = noise adsr 1600 1200 30 1800 lowpass 700 10 wobble 0.25 0.9 level 26 reverb 20
buoy = sine adsr 1 1800 0 700 fm 2.76 2.6 900 key f5 level 14 pan 50 delay 30 reverb 60
horn = saw adsr 180 200 90 500 lowpass 420 30 detune 5 level 30 pan 20 delay 50 reverb 70
A concertina o5 l8 d4. e- f4 | b-2 a4 | g4. f e-4 | f2. | e-4. d c4 | f2 e-4 | d4. c <b-4 | >c2. |
  d4. e- f4 | b-2 >d4 | c4. <b- g4 | b-2. | a4. g f4 | e-4 c4 <a4 | b-2. | r2.
A guitar o3 l8 [b- >f b- >d <b- f <]2 | e- b- >e- g e- <b- | b- >f b- >d <b- f < | c g >c e- c <g | f >c f a f c < |
  b- >f b- >d <b- f < | f >c f a f c < | [b- >f b- >d <b- f <]2 | [e- b- >e- g e- <b-]2 | [f >c f a f c <]2 | [b- >f b- >d <b- f <]2
A bass o2 l2. b- | b- | e- | b- | c | f | b- | f | b- | b- | e- | e- | f | f | b- | b-
B concertina o5 l8 g4. a b-4 | >d2 c4 | <b-4. a g4 | a2 f4 | g4. f e-4 | d2 g4 | c4. d e-4 | f2. |
  g4. a b-4 | >d2 f4 | e-4. d c4 | d2 <b-4 | e-4. f g4 | f2 a4 | b-2. | r2.
B guitar o3 l8 [g >d g b- g d <]2 | g >d g b- g d < | f >c f a f c < | e- b- >e- g e- <b- | g >d g b- g d < | c g >c e- c <g | f >c f a f c < |
  g >d g b- g d < | b- >f b- >d <b- f < | c g >c e- c <g | g >d g b- g d < | e- b- >e- g e- <b- | f >c f a f c < | [b- >f b- >d <b- f <]2
B bass o2 l2. g | g | g | f | e- | g | c | f | g | b- | c | g | e- | f | b- | b-
A swell l2. x^2. | x^2.
B swell l2. x^2. | x^2.
A buoy l2. r | r | r | r4 v90 x4 v50 x4 | r | r | r | r
B buoy l2. r | r | r | r4 v90 x4 v50 x4 | r | r | r | r
A horn o2 l2. r | r | r | r | f^2. | r | r
B horn o2 l2. r | r | r | r | f^2. | r | r
play |: A B
)";

namespace {
constexpr int shore = 246; // above it the town, below it the town's image
constexpr Point lamp = {424, 92};
constexpr int houseCount = 15, starCount = 110;
constexpr Colour walls[] = {0x38284C, 0x2C3458, 0x402C40, 0x243850, 0x342448};

const Lettering name = Letters_Make("Your Harbour", Face::Serif, 68, Slant::Italic);

Colour shadeSky(float x, float y, float time) {
    const float dx = x - 86, dy = y - 74, away = std::sqrt(dx * dx + dy * dy);
    const float cloud = Num_Noise(x / 130 + 0.06f * time, y / 22);
    const Colour night = Colour_Mix(0x060A24, 0x2C3C78, y / float(shore));
    const Colour lit = Colour_Add(night, Colour_Scale(0x8098C8, 14 / (away + 20)));
    const Colour moon = Colour_Scale(0xFFF6DC, 0.86f + 0.14f * Num_Noise(dx / 9, dy / 9));
    return Colour_Mix(Colour_Mix(lit, 0x485088, 0.35f * cloud * cloud), moon, 25 - away);
}

void drawStars(Canvas& canvas, float time) {
    for (int star = 0; star < starCount; ++star) {
        const float twinkle = 0.5f + 0.5f * Num_Sin(0.4f * time + Num_Hash(star));
        Canvas_Add(canvas, int(512 * Num_Hash(star, 1)), int(170 * Num_Hash(star, 2)),
                   Colour_Scale(0xC0D0FF, twinkle * Num_Hash(star, 3)));
    }
}

void drawHouse(Canvas& canvas, int house, float time) {
    const int left = 4 + 24 * house, width = 24 + int(9 * Num_Hash(house, 1));
    const int top = shore - 34 - int(52 * Num_Hash(house, 2));
    const float l = float(left), t = float(top), w = float(width);
    const float ridge = 9 + 12 * Num_Hash(house, 3);
    Canvas_Bar(canvas, left, top, width, shore - top, walls[house % 5]);
    Canvas_Polygon(canvas, {{l - 2, t + 1}, {l + 0.5f * w, t - ridge}, {l + w + 2, t + 1}},
                   Colour_Scale(walls[(house + 2) % 5], 0.6f));
    for (int y = top + 6; y < shore - 8; y += 12)
        for (int x = left + 5; x < left + width - 6; x += 10) {
            const bool isLit = Num_Fract(Num_Hash(x, y) + 0.013f * time) < 0.42f;
            const Colour glow = Colour_Mix(0xFFB040, 0xFFF0A0, Num_Hash(y, house));
            Canvas_Bar(canvas, x, y, 5, 7, isLit ? glow : 0x181838);
        }
}

void drawLighthouse(Canvas& canvas) {
    Canvas_Polygon(canvas, {{376, 246}, {392, 228}, {416, 222}, {446, 226}, {476, 246}}, 0x101428);
    const Point tower[] = {{413, 104}, {435, 104}, {444, 224}, {404, 224}};
    Canvas_PaintPolygon(canvas, tower, [](float x, float y) {
        const float round = 0.72f - 0.45f * (x - lamp.x) / (3 + 0.075f * y);
        return Colour_Scale(int(y - 104) / 20 & 1 ? 0xD8D8E8 : 0xB03038, round);
    });
    Canvas_Bar(canvas, 409, 101, 31, 4, 0x202038);
    Canvas_Bar(canvas, 414, 84, 21, 17, 0xFFE8A0);
    Canvas_Polygon(canvas, {{410, 84}, {424, 70}, {438, 84}}, 0x802028);
}

// The beam swings round: towards the eye it is short and bright, across it is long.
void drawBeam(Canvas& canvas, float turn) {
    const float across = Num_Cos(turn), reach = 560 * across;
    const float half = 12 + 44 * std::fabs(across);
    const Point cone[] = {{lamp.x, lamp.y - 3},
                          {lamp.x + reach, lamp.y - half - 12},
                          {lamp.x + reach, lamp.y + half - 12},
                          {lamp.x, lamp.y + 3}};
    Canvas_ForPolygon(cone, 4, [&](int x, int y, float share) {
        const float away = std::fabs(float(x) - lamp.x) / 560;
        const float off = std::fabs(float(y) - lamp.y + 12 * away) / (6 + 60 * away);
        const float light = 0.75f * share * Num_Clamp(1 - away) * Num_Clamp(1 - off);
        Canvas_Add(canvas, x, y, Colour_Scale(0xFFF0B0, light));
    });
    Canvas_Glow(canvas, lamp, 26 + 60 * Num_Clamp(Num_Sin(turn)), 0xFFF0C0);
}

// The image in the water: the town upside down, drawn apart by the waves, darker with depth.
void drawWater(Canvas& canvas, float time) {
    for (int y = shore; y < Canvas_Height; ++y) {
        const float depth = float(y - shore);
        const float wave = Num_Sin(78 / (depth + 9) + 0.55f * time);
        const int source = std::max(shore - 1 - int(depth * 1.6f + wave * (1 + depth / 22)), 0);
        for (int x = 0; x < Canvas_Width; ++x) {
            const float swell = Num_Noise(float(x) / (14 + depth / 3), depth / 3.5f - 1.6f * time);
            const int column = (x + int((swell - 0.5f) * (4 + depth / 5))) & (Canvas_Width - 1);
            const Colour seen =
                Colour_Scale(canvas.pixels[std::min(source, shore - 1)][column], 0.72f);
            canvas.pixels[y][x] = Colour_Mix(Colour_Mix(seen, 0x040818, depth / 260), 0x7088C0,
                                             0.35f * Num_Smooth(0.80f, 0.98f, swell));
        }
    }
}

void drawBoat(Canvas& canvas, float time) {
    const float roll = 0.012f * Num_Sin(0.22f * time), heave = 3 * Num_Sin(0.17f * time);
    const auto at = [=](float x, float y) {
        return Point{150 + x * Num_Cos(roll) - y * Num_Sin(roll),
                     318 + heave + x * Num_Sin(roll) + y * Num_Cos(roll)};
    };
    Canvas_Line(canvas, at(30, -14), at(30, -118), 3, 0x201820);
    Canvas_Line(canvas, at(30, -112), at(90, -26), 1, 0x30283C);
    Canvas_Line(canvas, at(30, -112), at(-80, -22), 1, 0x30283C);
    Canvas_Polygon(canvas, {at(-34, -14), at(-30, -44), at(14, -44), at(20, -14)}, 0xC8C0B0);
    const Point hull[] = {at(-84, -20), at(-66, 12), at(58, 12), at(92, -26), at(40, -16)};
    Canvas_Polygon(canvas, hull, 0x7C2430);
    Canvas_Line(canvas, at(-82, -18), at(90, -24), 2.5f, 0xE8D8B0);
    Canvas_Line(canvas, at(-22, -31), at(6, -31), 11, 0xFFD060);
    Canvas_Glow(canvas, at(-10, -30), 44, 0x804810);
    Canvas_Glow(canvas, at(30, -116), 20, 0xFF6040);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeSky(x, y, time); });
    drawStars(canvas, time);
    Letters_Colour(canvas, name, 122, 23, 0x080C24);
    Letters_Colour(canvas, name, 120, 20, 0xFFF0D0);
    for (int x = 0; x < Canvas_Width; ++x) // hills behind the town
        Canvas_Bar(canvas, x, 214 - int(58 * Num_Clouds(float(x) / 110, 3, 4)), 1, 90, 0x141C40);
    for (int house = 0; house < houseCount; ++house)
        drawHouse(canvas, house, time);
    drawLighthouse(canvas);
    drawBeam(canvas, Music_BeatAt(time) / 12 + 0.25f); // towards the eye when the horn sounds
    drawWater(canvas, time);
    drawBoat(canvas, time);
}
