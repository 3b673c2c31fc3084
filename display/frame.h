// A frame around its drawing: the back buffer is cleared, handed out as a drawing target and
// flipped. The flip is also the only place where window messages are pumped, so it is where a loss
// of focus is noticed and where the screen recovers from it: the frame that meets the loss is given
// up, the next one is shown. Main thread only.
#pragma once

#include <cstdint>

struct DrawTarget;
struct IDirectDrawSurface7;

// Bits of Screen_Present's flags.
constexpr int32_t Present_Retrace = 1; // the flip waits for the vertical retrace
constexpr int32_t Present_Raster = 2;  // wait for the raster to near the bottom before the flip

// Fills the back buffer. `colour` has red in the low byte. A fill that finds the surface busy or
// lost is dropped.
void Screen_Clear(uint32_t colour);

// The back buffer's drawing target, with an open device context; null while one is open already,
// or if it cannot be had.
const DrawTarget* Screen_BackBuffer();

// Ends drawing that was left open, and presents. Give the back buffer.
IDirectDrawSurface7* Screen_Flip();
IDirectDrawSurface7* Screen_FlipWith(int32_t flags);

// Pumps the messages, flips, recovers lost surfaces. An inactive screen returns at once.
void Screen_Present(int32_t flags);

// A pixel in the screen's form. At 16 bits that is always 5-6-5.
uint32_t Screen_NativeColor(uint32_t r, uint32_t g, uint32_t b);

// Arms the frame limiter. 1, or 0 where the performance counter is missing.
int32_t Screen_SetFrameRate(int32_t framesPerSecond);

// Spins until a frame's time has passed; gives the passes spun.
int32_t Screen_WaitFrame();
