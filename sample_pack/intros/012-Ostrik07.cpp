// A poster of three letters, printed without end and turned and drawn near under the eye.
#include "stage.h"
const char Intro_Title[] = "Ostrik Intro 7 KTZ";

namespace {
constexpr int tileSize = 256, mask = tileSize - 1;
constexpr Colour red = 0xD8281C, cream = 0xF4E8CC, black = 0x181410, steel = 0x5C7C88;

const Lettering letters = Letters_Make("KTZ", Face::Sans, 128);

Colour tile[tileSize][tileSize];

// A disc, two diagonal beams and a frame, as posters had them when the presses were new.
Colour shadeGround(int x, int y) {
    const int dx = x - 84, dy = y - 150, diagonal = (x + y) & mask;
    if (dx * dx + dy * dy < 62 * 62)
        return dx * dx + dy * dy < 46 * 46 ? black : steel;
    if (diagonal > 222 && diagonal < 246)
        return steel;
    return ((x - y) & mask) < 14 ? black : x < 4 || y < 4 ? red : cream;
}

void makeTile() {
    for (int y = 0; y < tileSize; ++y)
        for (int x = 0; x < tileSize; ++x)
            tile[y][x] = shadeGround(x, y);
    const int left = 128 - letters.width / 2, top = 40;
    for (int step = 8; step >= 0; --step) // from the foot of their shadow up to the letters
        for (int y = 0; y < letters.height; ++y)
            for (int x = 0; x < letters.width; ++x)
                if (Letters_CoverAt(letters, x, y) > 0.5f)
                    tile[(top + y + step) & mask][(left + x + step) & mask] = step ? black : red;
}

// The mean of the four nearest points of the tile.
Colour readTile(float x, float y) {
    const float left = Num_Floor(x), top = Num_Floor(y);
    const int column = int(left), row = int(top), next = (column + 1) & mask;
    const Colour* upper = tile[row & mask];
    const Colour* lower = tile[(row + 1) & mask];
    return Colour_Mix(Colour_Mix(upper[column & mask], upper[next], x - left),
                      Colour_Mix(lower[column & mask], lower[next], x - left), y - top);
}

// The darker a place, the farther it lies from the light that wanders over the table.
float lightAt(float x, float y, float time) {
    const float dx = (x - 256 - 150 * Num_Sin(0.07f * time)) / 400;
    const float dy = (y - 170 - 80 * Num_Sin(0.11f * time)) / 330;
    return Num_Clamp(1.08f - dx * dx - dy * dy, 0.25f, 1);
}
} // namespace

void Intro_Draw(Canvas& canvas, float time) {
    if (tile[0][0] == 0)
        makeTile();
    const float turn = 0.04f * time + 0.12f * Num_Sin(0.09f * time);
    const float zoom = 0.95f - 0.55f * Num_Cos(0.10f * time);
    const float cosine = zoom * Num_Cos(turn), sine = zoom * Num_Sin(turn);
    const float left = 60 * time + 128, top = 110 + 90 * Num_Sin(0.05f * time);
    Canvas_Fill(canvas, [=](float x, float y) {
        const float dx = x - Canvas_MidX, dy = y - Canvas_MidY;
        const Colour ink = readTile(dx * cosine - dy * sine + left, dx * sine + dy * cosine + top);
        return Colour_Scale(ink, lightAt(x, y, time));
    });
    Canvas_Bar(canvas, 0, 344, Canvas_Width, 26, black);
    Canvas_Bar(canvas, 0, 346, Canvas_Width, 22, red);
    PixelFont_WriteCentred(canvas, "* * *  OSTRIK INTRO 7 - KTZ FOR KETZIL  * * *", 353, 1, cream);
}
