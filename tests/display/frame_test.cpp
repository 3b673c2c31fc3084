#include "display/frame.h"

#include "display/draw.h"
#include "display/draw_target.h"
#include "display/frame_target.h"
#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF white = 0xFFFFFF;

// --- Pixel values ---

struct NativePixel {
    int32_t depth;
    PixelFormatCode format;
    uint32_t r, g, b;
    uint32_t pixel;
};

void PrintTo(const NativePixel& from, std::ostream* out) {
    *out << "depth " << from.depth << " code " << from.format << " of " << from.r << " " << from.g
         << " " << from.b;
}

class ScreenNativeColor : public ScreenTest, public testing::WithParamInterface<NativePixel> {};

TEST_P(ScreenNativeColor, PacksByDepth) {
    const NativePixel& from = GetParam();
    Screen.depth = from.depth;
    Screen.pixelFormat = from.format;
    EXPECT_EQ(Screen_NativeColor(from.r, from.g, from.b), from.pixel);
}

const NativePixel pixels[] = {
    {15, PixelFormat_Palette, 255, 255, 255, 0x7FFF},
    {15, PixelFormat_Palette, 7, 7, 7, 0},
    {15, PixelFormat_Palette, 8, 8, 8, 0x0421},
    {15, PixelFormat_Palette, 0xAB, 0xCD, 0xEF, 0x15 << 10 | 0x19 << 5 | 0x1D},
    {16, PixelFormat_565, 255, 255, 255, 0xFFFF},
    {16, PixelFormat_565, 7, 3, 7, 0},
    {16, PixelFormat_565, 8, 4, 8, 0x0821},
    {16, PixelFormat_565, 0xAB, 0xCD, 0xEF, 0x15 << 11 | 0x33 << 5 | 0x1D},
    {16, PixelFormat_555, 0xAB, 0xCD, 0xEF, 0x15 << 11 | 0x33 << 5 | 0x1D}, // 5-6-5 all the same
    {16, PixelFormat_32RedLow, 255, 0, 0, 0xF800},
    {24, PixelFormat_24RedLow, 0x12, 0x34, 0x56, 0x563412},
    {24, PixelFormat_24RedHigh, 0x12, 0x34, 0x56, 0x123456},
    {24, PixelFormat_32RedLow, 0x12, 0x34, 0x56, 0x563412},
    {24, PixelFormat_Unknown, 0x12, 0x34, 0x56, 0x123456},
    {32, PixelFormat_32RedLow, 0x12, 0x34, 0x56, 0x563412},
    {32, PixelFormat_32RedHigh, 0x12, 0x34, 0x56, 0x123456},
    {32, PixelFormat_24RedLow, 0x12, 0x34, 0x56, 0x563412},
    {32, PixelFormat_24RedHigh, 0x12, 0x34, 0x56, 0x123456},
    {8, PixelFormat_Palette, 0x12, 0x34, 0x56, 0},
    {0, PixelFormat_Unknown, 255, 255, 255, 0},
    {14, PixelFormat_565, 255, 255, 255, 0},
    {17, PixelFormat_565, 255, 255, 255, 0},
};

INSTANTIATE_TEST_SUITE_P(Pixels, ScreenNativeColor, testing::ValuesIn(pixels));

// --- Clear ---

using ScreenClear = OpenScreenTest;

TEST_F(ScreenClear, FillsTheWholeBackBuffer) {
    Screen_Clear(red);
    EXPECT_EQ(devices.ddraw.drawn(0, 0), red);
    EXPECT_EQ(devices.ddraw.drawn(width - 1, height - 1), red);
    EXPECT_EQ(devices.ddraw.shown(0, 0), 0u);
    EXPECT_EQ(Screen.fillFx.dwFillColor, 0xF800u);
}

TEST_F(ScreenClear, TakesRedFromTheLowByte) {
    Screen_Clear(0xAA563412); // the top byte does not count
    EXPECT_EQ(Screen.fillFx.dwFillColor, Screen_NativeColor(0x12, 0x34, 0x56));
}

TEST_F(ScreenClear, OfUpToEightBitsTakesTheColourAsItStands) {
    Screen.depth = 8;
    Screen_Clear(0xAA563412);
    EXPECT_EQ(Screen.fillFx.dwFillColor, 0xAA563412);
    Screen.depth = 9;
    Screen_Clear(0xAA563412);
    EXPECT_EQ(Screen.fillFx.dwFillColor, 0u);
}

TEST_F(ScreenClear, ThatFailsIsDropped) {
    calls.fail("IDirectDrawSurface7::Blt", 1, DDERR_WASSTILLDRAWING);
    Screen_Clear(red);
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Blt"), 1) << "and not tried again";
    EXPECT_EQ(devices.ddraw.drawn(0, 0), 0u);
}

TEST_F(ScreenClear, FillsWhatTheTargetIs) {
    Screen.target = Screen.primary;
    Screen_Clear(red);
    EXPECT_EQ(devices.ddraw.shown(0, 0), red);
    EXPECT_EQ(devices.ddraw.drawn(0, 0), 0u);
}

// --- Flip ---

struct SeenByPresent {
    int calls;
    int32_t flags;
    int32_t targetWidth;
    int32_t targetHeight;
    int64_t targetDc;
    IDirectDrawSurface7* target;
};

class ScreenFlip : public OpenScreenTest {
protected:
    ScreenFlip() {
        seen = {};
        Screen.present = note;
    }
    static void note(int32_t flags) {
        seen = {seen.calls + 1,      flags,           Screen.targetWidth,
                Screen.targetHeight, Screen.targetDc, Screen.target};
        Screen.target = nullptr;
    }
    static inline SeenByPresent seen;
};

TEST_F(ScreenFlip, PresentsTheBackBufferAtTheScreensSize) {
    Screen.target = Screen.primary;
    Screen.targetWidth = 1;
    Screen.targetHeight = 2;
    Screen_BackBuffer();
    EXPECT_EQ(Screen_FlipWith(6), Screen.backBuffer);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.flags, 6);
    EXPECT_EQ(seen.targetWidth, width);
    EXPECT_EQ(seen.targetHeight, height);
    EXPECT_EQ(seen.targetDc, 0) << "drawing left open is ended first";
    EXPECT_EQ(seen.target, Screen.backBuffer);
}

TEST_F(ScreenFlip, HasTheBackBufferAsTargetAfterwards) {
    Screen_FlipWith(0);
    EXPECT_EQ(Screen.target, Screen.backBuffer);
}

TEST_F(ScreenFlip, WaitsForTheRetraceAlone) {
    EXPECT_EQ(Screen_Flip(), Screen.backBuffer);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.flags, 1);
}

TEST_F(ScreenFlip, OfAPassLeftOpenLetsItsEndDoNothing) {
    Draw_SubsystemInit();
    Draw_Begin(Screen_BackBuffer());
    Screen_Flip();
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::ReleaseDC"), 3); // two of them at open
    Draw_End();
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::ReleaseDC"), 3);
    EXPECT_NE(Screen_BackBuffer(), nullptr);
}

using ShownFrame = OpenScreenTest;

TEST_F(ShownFrame, IsWhatWasDrawn) {
    Screen_Clear(red);
    const DrawTarget* target = Screen_BackBuffer();
    SetPixel(target->dc, 5, 6, white);
    Screen_ReleaseTargetDc();
    Screen_Flip();
    EXPECT_EQ(devices.ddraw.flips(), 1);
    EXPECT_EQ(devices.ddraw.shown(0, 0), red);
    EXPECT_EQ(devices.ddraw.shown(5, 6), white);
}

} // namespace
