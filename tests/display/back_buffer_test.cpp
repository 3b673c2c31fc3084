#include "display/frame.h"

#include "display/draw.h"
#include "display/draw_state.h"
#include "display/draw_target.h"
#include "display/frame_target.h"
#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF white = 0xFFFFFF;

using ScreenBackBuffer = OpenScreenTest;

TEST_F(ScreenBackBuffer, IsASurfaceTargetWithAnOpenContext) {
    Screen.targetWidth = 11;
    Screen.targetHeight = 12;
    const DrawTarget* target = Screen_BackBuffer();
    ASSERT_EQ(target, &Screen.backBufferTarget);
    EXPECT_EQ(target->kind, 7);
    EXPECT_NE(target->dc, nullptr);
    EXPECT_EQ(Screen.targetDc, reinterpret_cast<int64_t>(target->dc));
    EXPECT_EQ(target->width, 11);
    EXPECT_EQ(target->height, 12);
    EXPECT_EQ(target->depth, 16);
    EXPECT_EQ(target->format, 3);
    EXPECT_EQ(target->release, &Screen_ReleaseTargetDc);
    EXPECT_EQ(target->resume, &Screen_ReacquireDc);
    EXPECT_EQ(target->lock, &Screen_LockPixels);
}

TEST_F(ScreenBackBuffer, IsNotFilledWithABuffer) {
    Screen.backBufferTarget.buffer = &calls;
    Screen.backBufferTarget.bufferInfo = 5;
    const DrawTarget* target = Screen_BackBuffer();
    EXPECT_EQ(target->buffer, &calls);
    EXPECT_EQ(target->bufferInfo, 5);
}

TEST_F(ScreenBackBuffer, IsDrawnOnByGdi) {
    const DrawTarget* target = Screen_BackBuffer();
    SetPixel(target->dc, 5, 6, white);
    EXPECT_EQ(devices.ddraw.drawn(5, 6), white);
}

TEST_F(ScreenBackBuffer, ASecondTimeIsNothingAndLeavesTheFirstGood) {
    const DrawTarget* first = Screen_BackBuffer();
    HDC dc = first->dc;
    calls.take();
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(first->dc, dc);
    EXPECT_EQ(Screen.targetDc, reinterpret_cast<int64_t>(dc));
    SetPixel(dc, 5, 6, white);
    EXPECT_EQ(devices.ddraw.drawn(5, 6), white);
}

TEST_F(ScreenBackBuffer, IsNothingWhileTheSurfaceIsLocked) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
}

TEST_F(ScreenBackBuffer, IsNothingWhileTheSurfaceIsLost) {
    devices.ddraw.loseSurfaces();
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
    EXPECT_EQ(Screen.targetDc, 0);
}

TEST_F(ScreenBackBuffer, IsThereAgainAfterARelease) {
    Screen_BackBuffer();
    Screen_ReleaseTargetDc();
    EXPECT_NE(Screen_BackBuffer(), nullptr);
}

using ScreenReleaseTargetDc = OpenScreenTest;

TEST_F(ScreenReleaseTargetDc, OfNothingDoesNothing) {
    Screen_ReleaseTargetDc();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenReleaseTargetDc, GivesTheContextBack) {
    calls.name(Screen_BackBuffer()->dc, "open");
    calls.take();
    Screen_ReleaseTargetDc();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::ReleaseDC(back, open) -> 0"));
    EXPECT_EQ(Screen.targetDc, 0);
}

TEST_F(ScreenReleaseTargetDc, UnlocksALockedSurface) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    calls.take();
    Screen_ReleaseTargetDc();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Unlock(back, null) -> 0"));
    EXPECT_EQ(Screen.targetDc, 0);
}

using ScreenLockPixels = OpenScreenTest;

TEST_F(ScreenLockPixels, ExchangesTheContextForThePixels) {
    calls.name(Screen_BackBuffer()->dc, "open");
    calls.take();
    int32_t pitch = 0;
    void* first = Screen_LockPixels(&pitch);
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::ReleaseDC(back, open) -> 0
        IDirectDrawSurface7::Lock(back, null, lockDesc, 1, null) -> 0
    )"));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(pitch, width * 2);
    EXPECT_EQ(Screen.targetDc, -1);
    static_cast<uint16_t*>(first)[3] = 0xF800;
    Screen_ReleaseTargetDc();
    EXPECT_EQ(devices.ddraw.drawn(3, 0), red);
}

TEST_F(ScreenLockPixels, ThatFailsCountsAsLockedAllTheSame) {
    Screen_BackBuffer();
    calls.fail("IDirectDrawSurface7::Lock", 1, DDERR_SURFACELOST);
    int32_t pitch = 5;
    EXPECT_EQ(Screen_LockPixels(&pitch), nullptr);
    EXPECT_EQ(pitch, 5);
    EXPECT_EQ(Screen.targetDc, -1);
}

using ScreenReacquireDc = OpenScreenTest;

TEST_F(ScreenReacquireDc, GivesAnOpenContextAsItStands) {
    HDC dc = Screen_BackBuffer()->dc;
    calls.take();
    EXPECT_EQ(Screen_ReacquireDc(), dc);
    EXPECT_TRUE(calls.match(""));
    Screen_ReleaseTargetDc();
    calls.take();
    EXPECT_EQ(Screen_ReacquireDc(), nullptr);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenReacquireDc, TakesTheContextAnewAfterALock) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    calls.take();
    HDC dc = Screen_ReacquireDc();
    EXPECT_NE(dc, nullptr);
    EXPECT_EQ(Screen.targetDc, reinterpret_cast<int64_t>(dc));
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Unlock(back, null) -> 0
        IDirectDrawSurface7::GetDC(back, *) -> 0
    )"));
}

TEST_F(ScreenReacquireDc, GivesNothingWhenTheContextCannotBeHad) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    EXPECT_EQ(Screen_ReacquireDc(), nullptr);
    EXPECT_NE(Screen_BackBuffer(), nullptr) << "nothing is left open or locked";
}

TEST_F(ScreenReacquireDc, ServesADrawingPassAfterPixelWork) {
    Draw_SubsystemInit();
    Draw_Begin(Screen_BackBuffer());
    int32_t pitch = 0;
    void* first = Pass.lock(&pitch);
    ASSERT_NE(first, nullptr);
    Pass.dcState = -1;
    Draw_SetMode(0);
    EXPECT_EQ(reinterpret_cast<int64_t>(Pass.dc), Screen.targetDc);
    Draw_End();
    EXPECT_EQ(Screen.targetDc, 0);
}

} // namespace
