// Pebbles in a turning drum: they are lifted, roll over each other, and grow no smaller for it.

#include "letters.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 9 M4 Pebblegrind";

namespace {

constexpr int pebbleCount = 74;
constexpr float drumRadius = 176.0f, drumX = 256.0f, drumY = 186.0f;
constexpr float stepSeconds = 1.0f / 120.0f;
constexpr float drumSpeed = 1.5f; // radians a second
constexpr Colour stones[] = {0x8C96A0, 0xB8A890, 0x6C7884, 0xC8C4B8, 0x947C6C, 0x5C6C64, 0xA89CA8};

const Lettering name = Letters_Make("PEBBLEGRIND", Face::Sans, 62);
const Lettering nameShadow = Letters_Soften(name, 10);

struct Pebble {
    Point place, speed;
    float radius;
    float turn; // how far it has rolled, in turns
};

Pebble pebbles[pebbleCount];

void pourPebbles() {
    for (int number = 0; number < pebbleCount; ++number) {
        const float turn = 0.381966f * float(number);
        const float reach = 15.0f * std::sqrt(float(number));
        pebbles[number] = {{reach * Maths_Cos(turn), reach * Maths_Sin(turn)},
                           {0.0f, 0.0f},
                           10.0f + 9.0f * Maths_Hash(number),
                           Maths_Hash(number, 1)};
    }
}

// Two that overlap are pushed apart, and lose the speed with which they met.
void partPebbles(Pebble& one, Pebble& other) {
    const float dx = other.place.x - one.place.x, dy = other.place.y - one.place.y;
    const float reach = one.radius + other.radius, square = dx * dx + dy * dy;
    if (square >= reach * reach || square < 0.001f)
        return;
    const float distance = std::sqrt(square), push = 0.5f * (reach - distance) / distance;
    const float meeting =
        ((other.speed.x - one.speed.x) * dx + (other.speed.y - one.speed.y) * dy) / square;
    const float brake = meeting < 0.0f ? 0.6f * meeting : 0.0f;
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
    const float outward = pebble.speed.x * outX + pebble.speed.y * outY;
    const float along = pebble.speed.y * outX - pebble.speed.x * outY;
    const float carried = Maths_Mix(along, drumSpeed * drumRadius, 0.12f);
    const float rest = outward > 0.0f ? 0.0f : outward;
    pebble.place = {outX * room, outY * room};
    pebble.speed = {rest * outX - carried * outY, rest * outY + carried * outX};
    pebble.turn += carried * stepSeconds / (pebble.radius * Maths_Turn);
}

void stepPebbles() {
    for (Pebble& pebble : pebbles) {
        pebble.speed.y += 620.0f * stepSeconds;
        pebble.place.x += pebble.speed.x * stepSeconds;
        pebble.place.y += pebble.speed.y * stepSeconds;
        pebble.turn += pebble.speed.x * stepSeconds / (pebble.radius * Maths_Turn);
    }
    for (int pass = 0; pass < 2; ++pass)
        for (int one = 0; one < pebbleCount; ++one) {
            for (int other = one + 1; other < pebbleCount; ++other)
                partPebbles(pebbles[one], pebbles[other]);
            holdPebble(pebbles[one]);
        }
}

Colour shadePebble(int number, float dx, float dy, float height) {
    const Pebble& pebble = pebbles[number];
    const float cosine = Maths_Cos(pebble.turn), sine = Maths_Sin(pebble.turn);
    const float u = dx * cosine + dy * sine, v = dy * cosine - dx * sine;
    const float offset = 10.0f * float(number);
    const float vein = std::fabs(Maths_Noise(3.0f * u + offset, 3.0f * v) - 0.5f);
    const float speck = 0.2f * Maths_Noise(14.0f * u + offset, 14.0f * v);
    const float light = 0.55f * height - 0.34f * dx - 0.46f * dy + 0.16f;
    const Colour stone = Colour_Mix(0xF0ECE4, stones[number % 7], Maths_Clamp(vein * 14.0f));
    const float wet = Maths_Smooth(0.86f, 0.98f, 0.62f * height - 0.45f * dx - 0.64f * dy);
    return Colour_Mix(Colour_Scale(stone, light - speck + 0.1f), 0xFFFFFF, 0.8f * wet);
}

void drawPebble(Canvas& canvas, int number) {
    const Pebble& pebble = pebbles[number];
    const float centreX = drumX + pebble.place.x, centreY = drumY + pebble.place.y;
    const float reach = pebble.radius;
    for (int y = int(centreY - reach); float(y) <= centreY + reach; ++y)
        for (int x = int(centreX - reach); float(x) <= centreX + reach; ++x) {
            const float dx = (float(x) - centreX) / reach, dy = (float(y) - centreY) / reach;
            const float square = 1.0f - dx * dx - dy * dy;
            if (square > 0.0f)
                Canvas_Blend(canvas, x, y, shadePebble(number, dx, dy, std::sqrt(square)),
                             square * 0.6f * reach);
        }
}

// The drum: a dark inside and a rim of iron with rivets that turns.
Colour shadeDrum(int x, int y, float seconds) {
    const float dx = float(x) - drumX, dy = float(y) - drumY;
    const float radius = std::sqrt(dx * dx + dy * dy), rim = radius - drumRadius;
    if (rim < 0.0f)
        return Colour_Mix(0x283038, 0x0C0E12, radius / drumRadius);
    const float wall = 0.12f + 0.05f * Maths_Noise(float(x) / 60.0f, float(y) / 8.0f);
    if (rim > 20.0f)
        return Colour_Make(wall * 1.5f, wall * 1.25f, wall);
    const float turn = std::atan2(dy, dx) / Maths_Turn - drumSpeed / Maths_Turn * seconds;
    const float rivet = std::fabs(Maths_Fract(turn * 28.0f) - 0.5f) * 40.0f;
    const float head = Maths_Smooth(5.0f, 3.0f, std::sqrt(rivet * rivet + (rim - 10) * (rim - 10)));
    const float light = 0.32f + 0.16f * Maths_Sin(rim / 40.0f) - 0.13f * (dx + dy) / radius;
    return Colour_Make(light + 0.25f * head, light + 0.22f * head, light * 1.06f + 0.2f * head);
}

void drawName(Canvas& canvas) {
    const int left = Letters_Centred(name), top = 322;
    for (int twice = 0; twice < 2; ++twice)
        Letters_Colour(canvas, nameShadow, left - 8, top - 8, 0x080808);
    Letters_Colour(canvas, name, left - 1, top - 2, 0xFFFFFF);
    Letters_Paint(canvas, name, left, top, [](int x, int y) {
        const float grit = Maths_Noise(float(x) / 4.0f, float(y) / 4.0f);
        return Colour_Scale(Colour_Mix(0xE0DCD4, 0x788490, float(y) / 62.0f), 0.75f + 0.35f * grit);
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (pebbles[0].radius == 0.0f)
        pourPebbles();
    for (int due = Stage_TakeSteps(seconds, 1.0f / stepSeconds); due > 0; --due)
        stepPebbles();
    Canvas_Fill(canvas, [=](int x, int y) { return shadeDrum(x, y, seconds); });
    for (int number = 0; number < pebbleCount; ++number)
        drawPebble(canvas, number);
    drawName(canvas);
}
