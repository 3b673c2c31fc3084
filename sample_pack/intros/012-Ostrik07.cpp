// A poster of three letters, printed without end and turned and drawn near under the eye.

#include "letters.h"
#include "pixel_font.h"
#include "stage.h"

const char Intro_Title[] = "Ostrik Intro 7 KTZ";

namespace {

constexpr int tileSize = 256;
constexpr Colour red = 0xD8281C, cream = 0xF4E8CC, black = 0x181410, steel = 0x5C7C88;

const Lettering letters = Letters_Make("KTZ", Face::Sans, 128);

Colour tile[tileSize][tileSize];

void paintTile(int x, int y, Colour colour) {
    tile[y & (tileSize - 1)][x & (tileSize - 1)] = colour;
}

// A disc, two diagonal beams and a frame, as posters had them when the presses were new.
Colour shadeGround(int x, int y) {
    const int dx = x - 84, dy = y - 150, diagonal = (x + y) & (tileSize - 1);
    if (dx * dx + dy * dy < 62 * 62)
        return dx * dx + dy * dy < 46 * 46 ? black : steel;
    if (diagonal > 222 && diagonal < 246)
        return steel;
    if (((x - y) & (tileSize - 1)) < 14)
        return black;
    return x < 4 || y < 4 ? red : cream;
}

void makeTile() {
    for (int y = 0; y < tileSize; ++y)
        for (int x = 0; x < tileSize; ++x)
            paintTile(x, y, shadeGround(x, y));
    for (int y = 0; y < letters.height; ++y)
        for (int x = 0; x < letters.width; ++x)
            if (Letters_CoverAt(letters, x, y) > 0.5f) {
                const int left = 128 - letters.width / 2 + x, top = 40 + y;
                for (int step = 1; step < 8; ++step)
                    if (Letters_CoverAt(letters, x + step, y + step) < 0.5f)
                        paintTile(left + step, top + step, black);
                paintTile(left, top, red);
            }
}

// The darker a place, the farther it lies from the light that wanders over the table.
float lightAt(int x, int y, float seconds) {
    const float dx = (float(x) - 256.0f - 150.0f * Maths_Sin(0.07f * seconds)) / 400.0f;
    const float dy = (float(y) - 170.0f - 80.0f * Maths_Sin(0.11f * seconds)) / 330.0f;
    return Maths_Clamp(1.08f - dx * dx - dy * dy, 0.25f, 1.0f);
}

// The mean of the four nearest points of the tile.
Colour readTile(float x, float y) {
    constexpr int mask = tileSize - 1;
    const float left = Maths_Floor(x), top = Maths_Floor(y);
    const int column = int(left), row = int(top);
    const Colour* upper = tile[row & mask];
    const Colour* lower = tile[(row + 1) & mask];
    const float across = x - left;
    return Colour_Mix(Colour_Mix(upper[column & mask], upper[(column + 1) & mask], across),
                      Colour_Mix(lower[column & mask], lower[(column + 1) & mask], across),
                      y - top);
}

void drawTiles(Canvas& canvas, float seconds) {
    const float turn = 0.04f * seconds + 0.12f * Maths_Sin(0.09f * seconds);
    const float zoom = 0.95f - 0.55f * Maths_Cos(0.10f * seconds);
    const float cosine = zoom * Maths_Cos(turn), sine = zoom * Maths_Sin(turn);
    const float driftX = 60.0f * seconds + 128.0f,
                driftY = 110.0f + 90.0f * Maths_Sin(0.05f * seconds);
    Canvas_Fill(canvas, [=](int x, int y) {
        const float dx = float(x) - Canvas_CentreX, dy = float(y) - Canvas_CentreY;
        const Colour ink =
            readTile(dx * cosine - dy * sine + driftX, dx * sine + dy * cosine + driftY);
        return Colour_Scale(ink, lightAt(x, y, seconds));
    });
}

} // namespace

void Intro_Draw(Canvas& canvas, float seconds) {
    if (tile[0][0] == 0)
        makeTile();
    drawTiles(canvas, seconds);
    Canvas_Bar(canvas, 0, 344, Canvas_Width, 26, black);
    Canvas_Bar(canvas, 0, 346, Canvas_Width, 22, red);
    PixelFont_WriteCentred(canvas, "OSTRIK INTRO 7 - KTZ - FOR KETZIL", 353, 1, cream);
    PixelFont_Write(canvas, "* * * * *", 24, 353, 1, black);
    PixelFont_Write(canvas, "* * * * *", 416, 353, 1, black);
}
