// Pebbles in a turning drum: they are lifted, roll over each other, and grow no smaller for it.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 9 M4 Pebblegrind";

const char Intro_Tune[] = R"(
// A drum of pebbles: it rumbles and clatters, and the clatter falls into a dark machine beat.
tempo 122
volume 87
delay 3/16 50
reverb 50
rumble = noise adsr 300 300 90 600 lowpass 150 40 wobble 0.24 0.8 level 80
grind = noise adsr 40 150 40 90 bandpass 700 30 tremolo 13 60 level 26 pan -25 reverb 15
stone = sine adsr 1 50 0 10 fm 2.7 3 20 level 30 pan 30 reverb 20 delay 20
pebble = sine adsr 1 35 0 10 fm 3.9 2.5 15 level 24 pan -40 reverb 20 delay 25
gravel = noise adsr 2 50 20 20 bandpass 3200 30 hold 90 12 tremolo 61 100 level 24 pan 15
bass = saw adsr 3 200 40 60 lowpass 260 55 sweep 2 110 level 62
motor = pulse width 20 adsr 5 100 80 40 lowpass 420 40 tremolo 8.13 50 level 24
dub = saw adsr 2 200 10 80 bandpass 1100 50 sweep 1 150 detune 16 level 26 delay 60 reverb 30
kick = sine adsr 1 220 0 20 drop 26 50 key b1 level 95
I rumble l1 x^1
I stone o6 l16 r c r r e r g r r r c r d r r r | r e r c r r r g r r d r r c r r
I gravel l16 v50 x8 r8 x8 x r x8 r r x8 x8
A kick l4 x x x x
A rumble l1 x^1^1^1
A bass o1 l16 r8 b r b8 r b r8 b r >d8 <r b | r8 b r b8 r b r8 f+ r a8 r b | r8 b r b8 r b r8 b r >d8 <r b | r8 g r g8 r g r8 a r a8 r a+
A stone o6 l16 c r r e r r g r c r r d r e r r | c r r e r r g r r a r d r r c r
A pebble o7 l16 r r c r g r r r e r r r r c r a | r e r r r c r r r g r r e r r r
A gravel l16 v80 x r v40 x x v90 x r v40 x x
A motor o1 l1 b^1^1 | g2 a2
B kick l4 x x x x8. x16
B rumble l1 x^1^1^1
B bass o1 l16 r8 e r e8 r e r8 e r g8 r e | r8 e r e8 r e r8 b r >d8< r e | r8 g r g8 r g r8 g r b8 r g | r8 f+ r f+8 r f+ r8 a r a+8 r a+
B dub o4 l8 r4 (e g b) r r4 r (e g b) | r1 | r4 (d g b) r r4 r (d g b) | r4 (c+ f+ a+) r r2
B stone o6 l16 e r e r r g r r e r r b r r g r
B pebble o7 l16 r r r c r r e r r g r r r r c e
B gravel l16 v90 x r x x r x x r x r x x v50 x x x x
B grind l2 x x
play I |: A A B A B
)";

namespace {
constexpr int pebbleCount = 74;
constexpr float drumRadius = 176, drumX = 256, drumY = 186;
constexpr float stepSeconds = 1.0f / 120.0f;
constexpr float drumSpeed = 1.5f; // radians a second
constexpr Colour stones[] = {0x8C96A0, 0xB8A890, 0x6C7884, 0xC8C4B8, 0x947C6C, 0x5C6C64, 0xA89CA8};

const Title name = Letters_MakeTitle("PEBBLEGRIND", Face::Sans, 62);

struct Pebble {
    Point place, speed; // from the drum's middle
    float radius;
    float turn; // how far it has rolled, in turns
};

Pebble pebbles[pebbleCount];

void pourPebbles() {
    for (int number = 0; number < pebbleCount; ++number) {
        const float turn = 0.381966f * float(number), reach = 15 * std::sqrt(float(number));
        pebbles[number] = {{reach * Num_Cos(turn), reach * Num_Sin(turn)},
                           {0, 0},
                           10 + 9 * Num_Hash(number),
                           Num_Hash(number, 1)};
    }
}

// Two that overlap are pushed apart, and lose the speed with which they met.
void partPebbles(Pebble& one, Pebble& other) {
    const float dx = other.place.x - one.place.x, dy = other.place.y - one.place.y;
    const float reach = one.radius + other.radius, square = dx * dx + dy * dy;
    if (square >= reach * reach || square < 0.001f)
        return;
    const float distance = std::sqrt(square), push = 0.5f * (reach - distance) / distance;
    const float meeting = (other.speed.x - one.speed.x) * dx + (other.speed.y - one.speed.y) * dy;
    const float brake = 0.6f * std::fmin(meeting, 0.0f) / square;
    one.place = {one.place.x - push * dx, one.place.y - push * dy};
    other.place = {other.place.x + push * dx, other.place.y + push * dy};
    one.speed = {one.speed.x + brake * dx, one.speed.y + brake * dy};
    other.speed = {other.speed.x - brake * dx, other.speed.y - brake * dy};
}

// The wall carries along what leans on it.
void holdPebble(Pebble& pebble) {
    const Point at = pebble.place;
    const float distance = std::sqrt(at.x * at.x + at.y * at.y), room = drumRadius - pebble.radius;
    if (distance <= room)
        return;
    const float outX = at.x / distance, outY = at.y / distance;
    const float rest = std::fmin(pebble.speed.x * outX + pebble.speed.y * outY, 0.0f);
    const float along = pebble.speed.y * outX - pebble.speed.x * outY;
    const float carried = Num_Mix(along, drumSpeed * drumRadius, 0.12f);
    pebble.place = {outX * room, outY * room};
    pebble.speed = {rest * outX - carried * outY, rest * outY + carried * outX};
    pebble.turn += carried * stepSeconds / (pebble.radius * Num_Turn);
}

void stepPebbles() {
    for (Pebble& pebble : pebbles) {
        pebble.speed.y += 620 * stepSeconds;
        pebble.place.x += pebble.speed.x * stepSeconds;
        pebble.place.y += pebble.speed.y * stepSeconds;
        pebble.turn += pebble.speed.x * stepSeconds / (pebble.radius * Num_Turn);
    }
    for (int pass = 0; pass < 2; ++pass)
        for (int one = 0; one < pebbleCount; ++one) {
            for (int other = one + 1; other < pebbleCount; ++other)
                partPebbles(pebbles[one], pebbles[other]);
            holdPebble(pebbles[one]);
        }
}

// Veined stone, wet where it looks towards the light.
void drawPebble(Canvas& canvas, int number) {
    const Pebble& pebble = pebbles[number];
    const float cosine = Num_Cos(pebble.turn), sine = Num_Sin(pebble.turn);
    const Point centre = {drumX + pebble.place.x, drumY + pebble.place.y};
    Canvas_PaintBall(canvas, centre, pebble.radius, pebble.radius, [=](float x, float y, float z) {
        const float u = x * cosine + y * sine + 10 * float(number), v = y * cosine - x * sine;
        const float vein = std::fabs(Num_Noise(3 * u, 3 * v) - 0.5f);
        const float light = 0.26f + 0.55f * z - 0.34f * x - 0.46f * y;
        const Colour stone = Colour_Mix(0xF0ECE4, stones[number % 7], vein * 14);
        return Colour_Mix(Colour_Scale(stone, light - 0.2f * Num_Noise(14 * u, 14 * v)), 0xFFFFFF,
                          Num_Smooth(0.86f, 1, 0.62f * z - 0.45f * x - 0.64f * y));
    });
}

// The drum: a dark inside and a rim of iron with rivets that turns.
Colour shadeDrum(float x, float y, float time) {
    const float dx = x - drumX, dy = y - drumY;
    const float radius = std::sqrt(dx * dx + dy * dy), rim = radius - drumRadius;
    if (rim < 0)
        return Colour_Mix(0x283038, 0x0C0E12, radius / drumRadius);
    const float wall = 0.12f + 0.05f * Num_Noise(x / 60, y / 8);
    if (rim > 20)
        return Colour_Make(wall * 1.5f, wall * 1.25f, wall);
    const float turn = std::atan2(dy, dx) / Num_Turn - drumSpeed / Num_Turn * time;
    const float off = 40 * (Num_Fract(turn * 28) - 0.5f), down = rim - 10;
    const float head = Num_Smooth(5, 3, std::sqrt(off * off + down * down));
    const float light = 0.32f + 0.16f * Num_Sin(rim / 40) - 0.13f * (dx + dy) / radius;
    return Colour_Mix(Colour_Make(light, light, light * 1.06f), 0xC0B8B0, 0.6f * head);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (pebbles[0].radius == 0)
        pourPebbles();
    for (int due = Stage_TakeSteps(time, 1 / stepSeconds); due > 0; --due)
        stepPebbles();
    Canvas_Fill(canvas, [=](float x, float y) { return shadeDrum(x, y, time); });
    for (int number = 0; number < pebbleCount; ++number)
        drawPebble(canvas, number);
    Letters_PaintTitle(canvas, name, 322, 0x080808, [](float x, float y) {
        const float grit = Num_Noise(x / 4, y / 4);
        return Colour_Scale(Colour_Mix(0xF0ECE4, 0x788490, y / 62), 0.75f + 0.35f * grit);
    });
}
