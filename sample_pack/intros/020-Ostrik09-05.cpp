// A kettle on a dying fire: steam above, embers below, and ash that falls like snow.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M5 Ashkettle";

const char Intro_Tune[] = R"(
// A kettle comes to the boil: embers crackle, the water sings higher and higher, the lid rattles.
tempo 60
volume 92
delay 3/8 40
reverb 70
crackle = noise adsr 1 25 0 8 highpass 2500 20 level 40 pan -30 reverb 15
embers = noise adsr 1200 800 90 2000 lowpass 260 20 wobble 0.3 0.7 level 52
water = noise adsr 3000 1000 100 2500 bandpass 500 65 wobble 0.19 0.5 hold 30 5 level 40 reverb 10
bubble = sine adsr 2 70 10 30 drop -12 60 level 16 pan 20 reverb 25
hiss = noise adsr 2500 500 100 1800 highpass 3400 0 level 10 pan 30
whistle = sine adsr 1800 500 100 900 vibrato 6.3 12 breath 8 fm 2 0.4 0 level 11 pan 30 reverb 50
lid = sine adsr 1 70 0 15 fm 1.83 4 40 key e5 level 18 pan 10 reverb 15
night = triangle adsr 500 800 60 1200 detune 10 level 20 pan -15 reverb 60
harp = triangle adsr 2 900 0 400 lowpass 2200 10 level 26 pan -35 delay 35 reverb 40
A embers l1 x^1
A crackle l16 v40 x r v80 x r r v50 x x r r r v90 x r v30 x r r x | r x r v70 x r r x v30 x r v90 x r r x r v50 x r
A night o3 l1 (e b) | (c g)
A harp o4 l8 e b >e4 g4 f+4 | <c g >e4 d4 <b4
B embers l1 x^1
B water l1 x^1
B bubble o4 l16 e r r g r r b r r r e r a r r r | c r e r r g r r b r r e r >c <r r
B night o3 l1 (a >e) | (<b >f+)
B harp o4 l8 a >c e4 d4 c4 | <b >d f+4 e4 d+4
C embers l1 x^1
C water l1 x^1
C hiss l1 x^1
C whistle o6 l1 r2 e2^1
C bubble o4 l16 e r g b r e a r c r g e r b r g | c e r g r b e r g b r e >c <r e g
C lid l16 r1 | r2 x r r x x r x x
C crackle l16 r x r x r r x r x r r x r x r r
C night o3 l1 (c g) | (d a)
D embers l1 x^1^1^1
D water l1 x^1^1^1
D hiss l1 x^1^1^1
D whistle o6 l1 e2 g2^1 | b1^2 f+2
D bubble o4 l16 e b g b >e <b a e c g b e a b >c <g | c e b g a b e >c <g b a e >c <b e g
D lid l16 x r x x r x x r x x r x r x x r | x x r x x r x r x x x r x r r x
D night o3 l1 (e b) | (e b) | (c g) | (<b >f+)
D harp o4 l8 e b >e4 g4 b4 | a g e4 f+4 d+4 | e4 <b4 >g4 f+4 | d+4 <b4 f+4 r4
play |: A A B B C D
)";

namespace {
constexpr int flakeCount = 170;
constexpr Point spout = {334, 196};
constexpr Colour embers[] = {0x100808, 0x3C0C08, 0x98240C, 0xF06818, 0xFFD068};

const Title name = Letters_MakeTitle("Ashkettle", Face::Serif, 80, Slant::Italic);

// Steam at a place: wide and thin far above the spout, narrow and thick close to it.
float steamAt(float x, float y, float time) {
    const float rise = spout.y - y;
    const float lean = 0.22f * rise + 14 * Num_Sin(0.09f * time - rise / 300);
    const float off = (x - spout.x - lean) / (14 + 0.50f * rise);
    if (rise < -6 || off * off > 1)
        return 0;
    const float curl = 3 * Num_Noise(x / 50, (y + 70 * time) / 60);
    const float cloud = Num_Clouds(x / 34 + curl, (y + 95 * time) / 42, 3);
    const float fade = Num_Smooth(210, 20, rise) * Num_Smooth(-6, 6, rise);
    return fade * (1 - off * off) * Num_Smooth(0.18f, 0.50f, cloud);
}

// The night behind, with a breath of warm light from below.
Colour shadeAir(float x, float y, float time) {
    const float dx = (x - 250) / 260, dy = (y - 340) / 240;
    const float near = Num_Clamp(1 - std::sqrt(dx * dx + dy * dy)), warm = near * near;
    const Colour night = Colour_Make(0.07f + 0.8f * warm, 0.08f + 0.3f * warm, 0.11f + 0.1f * near);
    return Colour_Mix(night, Colour_Mix(0xA8B0C0, 0xF0C8A0, y / 260), 0.85f * steamAt(x, y, time));
}

Colour shadeEmbers(float x, float y, float time) {
    const float middle = (x - 256) / 170;
    const float coal = Num_Noise(x / 8, y / 6);
    const float breath = Num_Noise(x / 40, 0.5f * time + y / 30);
    const float crack = Num_Smooth(0.22f, 0, std::fabs(coal - 0.5f));
    return Colour_Ramp(embers, (0.25f + 0.95f * crack * breath) * (1.1f - 0.5f * middle * middle));
}

void drawEmbers(Canvas& canvas, float time) {
    for (int x = 0; x < Canvas_Width; ++x) {
        const float middle = (float(x) - 256) / 170;
        const float heap = Num_Noise(float(x) / 16, 7) * 14;
        for (int y = int(338 - heap + 16 * middle * middle); y < Canvas_Height; ++y)
            canvas.pixels[y][x] = shadeEmbers(float(x), float(y), time);
    }
}

// Iron: black against the night, lit by the embers from below and by the moon along one line.
Colour shadeIron(float x, float y) {
    const float below = Num_Smooth(262, 338, y);
    const float side = Num_Smooth(70, 105, std::fabs(x - 250));
    const float warm =
        0.05f + 0.04f * Num_Noise(x / 3, y / 3) + below * (0.55f * below + 0.22f * side);
    const float gleam = Num_Smooth(26, 0, std::fabs(x - 214 + 0.2f * (y - 260)));
    const float cool = 0.30f * gleam * Num_Smooth(330, 220, y);
    return Colour_Make(warm + cool, 0.5f * warm + cool, 0.4f * warm + 1.3f * cool);
}

void drawKettle(Canvas& canvas) {
    constexpr Point body[] = {{212, 212}, {190, 226}, {168, 252}, {156, 286},
                              {160, 318}, {174, 338}, {326, 338}, {340, 318},
                              {344, 286}, {332, 252}, {310, 226}, {288, 212}};
    constexpr Point neck[] = {{322, 300}, {352, 262}, {330, 206}, {326, 196}, {344, 192},
                              {350, 204}, {374, 258}, {368, 276}, {338, 324}};
    constexpr Point lid[] = {{206, 214}, {216, 204}, {238, 198}, {240, 190},
                             {234, 184}, {240, 178}, {260, 178}, {266, 184},
                             {260, 190}, {262, 198}, {284, 204}, {294, 214}};
    Point handle[40];
    for (int corner = 0; corner < 20; ++corner) {
        const float turn = 0.5f + 0.5f * float(corner) / 19;
        handle[corner] = {250 + 78 * Num_Cos(turn), 232 + 96 * Num_Sin(turn)};
        handle[39 - corner] = {250 + 70 * Num_Cos(turn), 232 + 87 * Num_Sin(turn)};
    }
    Canvas_PaintPolygon(canvas, handle, shadeIron);
    Canvas_PaintPolygon(canvas, neck, shadeIron);
    Canvas_PaintPolygon(canvas, body, shadeIron);
    Canvas_PaintPolygon(canvas, lid, shadeIron);
}

void drawFlake(Canvas& canvas, int flake, float time) {
    const float size = Num_Hash(flake, 3);
    const float fall = Num_Fract(Num_Hash(flake, 1) + time * (0.03f + 0.05f * size));
    const float sway = 12 * Num_Sin(0.3f * time * (0.5f + size) + Num_Hash(flake, 4));
    const float x = 540 * Num_Hash(flake, 2) + sway, y = fall * 400 - 8;
    const Colour ash = Colour_Mix(0xB0B0B8, 0xFF9040, Num_Smooth(220, 370, y));
    Canvas_PaintBall(canvas, {x, y}, 0.8f + 1.1f * size, 0.8f + 1.1f * size,
                     [=](float, float, float) { return ash; });
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    Canvas_Fill(canvas, [=](float x, float y) { return shadeAir(x, y, time); });
    Letters_PaintTitle(canvas, name, 20, 0x300C08, [=](float x, float y) {
        return Colour_Ramp(embers, 0.4f + 0.75f * Num_Clouds(x / 26, y / 20 - 0.25f * time, 3));
    });
    drawEmbers(canvas, time);
    drawKettle(canvas);
    for (int flake = 0; flake < flakeCount; ++flake)
        drawFlake(canvas, flake, time);
}
