// A drawing pass: Draw_Begin on a target opens it, the drawing operations work on its device
// context, Draw_End closes it. There is one pass at a time. A pass without a device context is a
// valid, empty pass whose operations do nothing: that is how a frame passes while the screen is
// lost.
//
// Colours are GDI colour values, red in the low byte. One thread; GDI's own failures are not
// noticed.
#pragma once

#include <cstdint>
#include <windows.h>

// Where a target's device context comes from, and how Draw_End gives it back. Any other kind is a
// context handed over to the pass, which deletes it.
constexpr int32_t DrawTarget_Window = 1;  // taken from the window and given back to it
constexpr int32_t DrawTarget_Context = 2; // the target's own; given back by its release routine
constexpr int32_t DrawTarget_Bits = 5;    // the same, taking images as device-independent bits only
constexpr int32_t DrawTarget_Surface = 7; // a DirectDraw surface's; the same

using TargetRelease = void (*)();
using TargetResume = HDC (*)();
using TargetLock = void* (*)(int32_t* pitch);

// Something drawable. Owned by whoever made it.
struct DrawTarget {
    int32_t kind;
    HWND window; // DrawTarget_Window only
    HDC dc;      // all other kinds
    TargetRelease release;
    // From here on for DrawTarget_Surface only.
    void* buffer;       // not filled by the screen
    int32_t bufferInfo; // the same
    int32_t width;      // pixels
    int32_t height;
    int32_t depth;       // bits per pixel
    int32_t format;      // a PixelFormatCode
    TargetResume resume; // gives the context back after pixel work
    TargetLock lock;     // gives the context up for pixel work; null on failure
};

// The pass between Draw_Begin and Draw_End.
struct DrawPass {
    HDC dc;              // null: no pass
    COLORREF textColor;  // standing text colour, black
    int32_t mode;        // bits of Draw_SetMode
    int32_t dcState;     // 1; -1 once the context was given up for pixel work
    COLORREF backColor;  // white
    HBRUSH brush;        // owned by the pass
    HPEN pen;            // owned by the pass; none is made here
    HFONT font;          // not owned
    HBRUSH defaultBrush; // black, for the life of the process
    HPEN defaultPen;     // black hairline, for the life of the process
    HGDIOBJ savedBrush;  // what the context held before
    HGDIOBJ savedPen;
    int32_t kind; // from here on as in DrawTarget
    HWND window;
    TargetRelease release;
    void* buffer;
    int32_t bufferInfo;
    int32_t width;
    int32_t height;
    int32_t depth;
    int32_t format;
    TargetResume resume;
    TargetLock lock;
};

extern DrawPass Pass;

// Bits of Draw_SetMode. A clear bit sets the opposite.
constexpr int32_t DrawMode_Transparent = 1; // text without a box of its background colour
constexpr int32_t DrawMode_Invert = 2;      // shapes and bitmaps combine with what is there
constexpr int32_t DrawMode_Unfilled = 4;

void Draw_SubsystemInit();

// Ends the pass before, if there is one. Gives the device context; 0 for a null target or one
// without a context.
HDC Draw_Begin(const DrawTarget* target);
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
int32_t Draw_Text(int32_t x, int32_t y, const char* text, COLORREF foreground, COLORREF background);

// Ahead of every drawing operation: takes the context back and rebuilds its state if it was given
// up for pixel work.
void Draw_ResumeDc();

// A GlobalAlloc block with the bitmap as a BITMAPINFOHEADER and 24-bit rows, or null. The caller
// frees it. `palette` may be null.
HGLOBAL Bitmap_ToPackedDib(HBITMAP image, HPALETTE palette);
