// A drawing pass: Draw_Begin on a target opens it, the drawing operations work on its device
// context, Draw_End closes it. There is one pass at a time. A pass without a device context is a
// valid, empty pass whose operations do nothing: that is how a frame passes while the screen is
// lost.
//
// Colours are GDI colour values, red in the low byte. One thread; GDI's own failures are not
// noticed.
#pragma once

#include <cstdint>

struct DrawTarget;

// A drawing color: red in the low byte, green next, blue above. The channels are not masked: a
// value above 255 runs into its neighbor.
constexpr int64_t Color_Rgb(int32_t red, int32_t green, int32_t blue) {
    const int64_t blueGreen = (static_cast<int64_t>(blue) << 8) | green;
    return (blueGreen << 8) | red;
}

// Bits of Draw_SetMode. A clear bit sets the opposite.
constexpr int32_t DrawMode_Transparent = 1; // text without a box of its background colour
constexpr int32_t DrawMode_Invert = 2;      // shapes and bitmaps combine with what is there
constexpr int32_t DrawMode_Unfilled = 4;

void Draw_SubsystemInit();

// Ends the pass before, if there is one. Gives the device context; 0 for a null target or one
// without a context.
void* Draw_Begin(const DrawTarget* target);
void Draw_End();

void Draw_SetMode(int32_t mode);

constexpr int64_t DrawFont_System = -1;

// Selects a GDI font for the rest of the pass. A zero handle leaves the font as it was.
void Draw_SetFont(int64_t font);

// Draws a GDI bitmap or icon at its own size. Bitmaps cover their whole rectangle.
void Draw_Image(int64_t image, int32_t x, int32_t y);

// The same, scaled. A width or height of 0 stands for the image's own size in both.
void Draw_ImageSized(int64_t image, int32_t x, int32_t y, int32_t width, int32_t height);

// Draws `text` with its top left corner at x, y, neither clipped nor wrapped. Both colours are for
// this call alone. Gives the x behind the text, 0 without a pass.
int32_t Draw_Text(int32_t x, int32_t y, const char* text, uint32_t foreground, uint32_t background);

// Ahead of every drawing operation: takes the context back and rebuilds its state if it was given
// up for pixel work.
void Draw_ResumeDc();
