// Copper bars behind a plate that is nailed on with hobnails: the first cut of a cracktro.
#include "stage.h"
const char Intro_Title[] = "Hobnail Intro 2 First Cut";

const char Intro_Tune[] = R"(
// Chip music of a cracktro in D minor: broken chords, a bass in octaves and a cheeky lead.
tempo 150
volume 55
delay 3/16 30
lead = pulse width 40 adsr 2 120 65 60 vibrato 6.5 25 level 30 delay 30
second = pulse width 20 adsr 2 140 40 60 level 16 pan -40 delay 25
chip = pulse width 50 adsr 2 250 55 20 arpeggio 50 level 14 pan 30
bass = triangle adsr 1 140 70 20 level 60
nail = sine adsr 1 90 0 10 fm 3.7 3 60 key d6 level 16 pan 40
kick = triangle adsr 1 120 0 10 drop 30 40 key c2 level 75
snare = noise adsr 1 110 0 10 lowpass 6500 10 level 38
hat = noise adsr 1 25 0 10 highpass 7000 0 level 16
A lead o5 l8 d f a >d4 c <a f | g4. a b-4 a g | f4. g a4 g f | e4 c+4 e2 |
  d f a >d4 e f d | c4. <b- a4 g f | e4 f g b- a g e | d2. r4
A chip o4 l1 (d f a) | (g b- >d) | (f a >c) | (e a >c+) | (d f a) | (f a >c) | (e g b-) | (d f a)
A bass o2 l8 [d >d<]4 | [g >g<]4 | [f >f<]4 | [a >a<]4 | [d >d<]4 | [f >f<]4 | [e >e<]2 [a >a<]2 |
  [d >d<]4
B lead o5 l16 a8 a g f e f8 d8 e8 f4 | g8 g f e d e8 c8 d8 e4 | f8 f e d c+ d8 e8 f8 g4 | a4 >c+4 <a2 |
  b-8 b- a g f g8 b-8 a8 g4 | a8 a g f e f8 a8 g8 f4 | e8 f8 g8 e8 c+8 d8 e8 c+8 | d4 d8 d8 d4 r4
B second o5 l8 f4. f d c+ d4 | e4. e c <b >c4 | d4. d <b-4 >d4 | e4 e4 c+2 |
  d4. d d4 c <b- | >c4. c c4 <b- a | a4 a4 g4 a4 | f4 f8 f8 f4 r4
B chip o4 l1 (d f a) | (c e g) | (<b- >d f) | (<a >c+ e) | (g b- >d) | (f a >c) | (e g a) | (d f a)
B bass o2 l8 [d >d<]4 | [c >c<]4 | [<b->b-]4 | [a >a<]4 | [g >g<]4 | [f >f<]4 | [a >a<]4 | [d >d<]4
A kick l8 x r r x r x r r
A snare l8 r r x r r r x r
A hat l8 x x x x x x x x16 x16
A nail l4 r x r x
B kick l8 x r x r r x x r
B snare l8 r r x r r r x x16 x16
B hat l16 x r x x
B nail l4 r x r x
play |: A A B B A B+2
)";

namespace {
constexpr int barCount = 14;
constexpr int barHeight = 26;
constexpr Colour tints[] = {0xFF3020, 0xFF8020, 0xFFE030, 0x60E040, 0x30C0FF, 0x6060FF, 0xD050FF};
constexpr int plateTop = 118, plateHeight = 132, plateLeft = 36, plateWidth = 440;
constexpr char words[] = "HOBNAIL PRESENTS ITS SECOND INTRO IN THE FIRST CUT +++ FRESH FROM THE "
                         "ANVIL, THE EDGES ARE STILL SHARP +++ CODE: PELLWICK +++ NAILS: OSTRIK + ";

const Lettering name = Letters_Make("HOBNAIL", Face::Sans, 88);

// A round bar: bright along its middle.
void drawBar(Canvas& canvas, float middle, Colour colour) {
    for (int row = -barHeight / 2; row <= barHeight / 2; ++row) {
        const float across = float(row) / float(barHeight / 2 + 1);
        const float light = std::sqrt(1 - across * across);
        const float shine = Num_Clamp(light * light * light * light - 0.45f);
        Canvas_Bar(canvas, 0, int(middle) + row, Canvas_Width, 1,
                   Colour_Mix(Colour_Scale(colour, light), 0xFFFFFF, shine));
    }
}

// Bars that are on their way back pass behind those that come.
void drawBars(Canvas& canvas, float time) {
    for (int half = 0; half < 2; ++half)
        for (int bar = barCount - 1; bar >= 0; --bar) {
            const float phase = time * 0.28f - float(bar) * 0.036f;
            const float middle = 192 + 150 * Num_Sin(phase) + 26 * Num_Sin(phase * 2.3f);
            if ((Num_Cos(phase) > 0) == (half == 1))
                drawBar(canvas, middle, Colour_Scale(tints[bar % 7], half ? 1 : 0.55f));
        }
}

// Brushed steel that the bars throw some colour upon.
void drawPlate(Canvas& canvas, float time) {
    for (int y = 0; y < plateHeight; ++y)
        for (int x = 0; x < plateWidth; ++x) {
            const float grain = Num_Hash(x / 24 + y * 31, y) * 0.10f;
            const float sheen = Num_Sin(float(x + y) / 420 - 0.12f * time);
            const bool edge = x < 3 || y<3, foot = x> plateWidth - 4 || y > plateHeight - 4;
            const float light = 0.26f + grain + 0.12f * sheen + (edge ? 0.25f : foot ? -0.2f : 0);
            const Colour steel = Colour_Make(light, light, light + 0.04f);
            Canvas_Blend(canvas, plateLeft + x, plateTop + y, steel, 0.86f);
        }
}

// A nail gleams when it is struck.
void drawNail(Canvas& canvas, Point centre, float struck) {
    Canvas_PaintBall(canvas, centre, 7, 7, [=](float x, float y, float z) {
        const float light = 0.5f * z - 0.45f * (x + y),
                    spark = Num_Smooth(0.75f, 1, light) + 0.8f * struck * z;
        return Colour_Make(light + spark, light * 0.92f + spark, light * 0.78f + spark);
    });
}

// Letters cut out of the plate, so that the bars are seen through them.
void drawName(Canvas& canvas, const Canvas& bars) {
    const int left = Letters_Centred(name), top = plateTop + 12;
    Letters_Colour(canvas, name, left + 2, top + 2, 0xC8D0E0);
    Letters_Colour(canvas, name, left - 2, top - 2, 0x080810);
    Letters_Paint(canvas, name, left, top,
                  [&](float x, float y) { return bars.pixels[top + int(y)][left + int(x)]; });
    PixelFont_WriteCentred(canvas, "INTRO 2 - FIRST CUT", plateTop + 97, 2, 0x101018);
    PixelFont_WriteCentred(canvas, "INTRO 2 - FIRST CUT", plateTop + 96, 2, 0xF0E8D0);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    static Canvas bars;
    Canvas_Fill(bars, [](float, float y) { return Colour_Mix(0x08081C, 0x2C1030, y / 384); });
    drawBars(bars, time);
    canvas = bars;
    drawPlate(canvas, time);
    const NoteState blow = Music_NoteAt("nail", time);
    for (int nail = 0; nail < 28; ++nail) // every other blow meets the upper row
        drawNail(canvas, {52 + float(nail / 2) * 31.4f, nail & 1 ? 132.0f : 236.0f},
                 (nail & 1) == (blow.number & 1) ? blow.level : 0);
    drawName(canvas, bars);
    Canvas_Bar(canvas, 0, 350, Canvas_Width, 34, 0xC08040);
    Canvas_Bar(canvas, 0, 352, Canvas_Width, 32, 0x000000);
    PixelFont_Scroll(words, 110 * time, 2, [&](float x, float y) {
        canvas.pixels[361 + int(y)][int(x)] = Colour_Mix(0xFFF0C0, 0xC05018, y / 14);
    });
}
