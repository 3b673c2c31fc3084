#include "display/frame.h"

#include "tests/support/screen_fixture.h"

#include <climits>

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

// --- The drawing target ---

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

// --- Present ---

using ScreenPresent = OpenScreenTest;

TEST_F(ScreenPresent, EmptiesTheQueueBeforeTheFlip) {
    for (int message = 0; message < 500; ++message)
        devices.desktop->post(WM_USER);
    size_t queuedAtFlip = 1;
    calls.before("IDirectDrawSurface7::Flip", 1, [&] { queuedAtFlip = devices.desktop->queued(); });
    Screen_Present(1);
    EXPECT_EQ(queuedAtFlip, 0u);
    EXPECT_EQ(calls.uses("DispatchMessageA"), 500);
    EXPECT_EQ(calls.uses("TranslateMessage"), 500);
    EXPECT_EQ(devices.ddraw.flips(), 1);
}

TEST_F(ScreenPresent, GivesNoHeedToQuitAndClose) {
    devices.desktop->post(WM_QUIT);
    devices.desktop->post(WM_CLOSE);
    devices.desktop->post(WM_LBUTTONDOWN);
    devices.desktop->post(WM_RBUTTONUP);
    Screen_Present(1);
    EXPECT_EQ(calls.uses("DispatchMessageA"), 4);
    EXPECT_EQ(devices.ddraw.flips(), 1);
    EXPECT_EQ(Screen.active, 1);
}

TEST_F(ScreenPresent, OfAnInactiveScreenOnlyPumps) {
    Screen.active = 0;
    devices.desktop->post(WM_USER);
    Screen_Present(3);
    EXPECT_EQ(calls.uses("DispatchMessageA"), 1);
    EXPECT_EQ(devices.ddraw.flips(), 0);
    EXPECT_EQ(calls.uses("IDirectDraw7::GetScanLine"), 0);
    EXPECT_EQ(calls.uses("Sleep"), 0);
}

TEST_F(ScreenPresent, NoticesAnActivationInTheSameCall) {
    Screen.active = 0;
    devices.desktop->post(WM_ACTIVATE, WA_ACTIVE);
    Screen_Present(1);
    EXPECT_EQ(devices.ddraw.flips(), 1);
}

TEST_F(ScreenPresent, NoticesADeactivationInTheSameCall) {
    devices.desktop->post(WM_ACTIVATE, WA_INACTIVE);
    Screen_Present(1);
    EXPECT_EQ(devices.ddraw.flips(), 0);
    EXPECT_EQ(Screen.lostNotified, 1);
}

TEST_F(ScreenPresent, IgnoresEveryOtherFailureOfTheFlip) {
    for (HRESULT result : {DDERR_GENERIC, DDERR_SURFACEBUSY, DDERR_NOEXCLUSIVEMODE,
                           DDERR_SURFACELOST + 1, DDERR_SURFACELOST - 1}) {
        calls.fail("IDirectDrawSurface7::Flip", 1, result);
        Screen_Present(1);
    }
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Flip"), 5);
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), 0);
    EXPECT_EQ(devices.ddraw.flips(), 0);
}

TEST_F(ScreenPresent, KnowsTheOneResultThatMatters) {
    EXPECT_EQ(static_cast<uint32_t>(DDERR_SURFACELOST), 0x887601C2u);
}

TEST_F(ScreenPresent, DropsTheFrameThatFindsTheSurfacesLost) {
    devices.ddraw.loseSurfaces();
    Screen_Flip();
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Flip"), 1) << "not tried again";
    EXPECT_EQ(devices.ddraw.flips(), 0);
    Screen_Clear(red);
    Screen_Flip();
    EXPECT_EQ(devices.ddraw.flips(), 1);
    EXPECT_EQ(devices.ddraw.shown(0, 0), red);
    EXPECT_EQ(devices.ddraw.shown(width - 1, height - 1), red);
}

TEST_F(ScreenPresent, RecoversTheSavedSurfaces) {
    DDSURFACEDESC2 desc{};
    desc.dwSize = sizeof desc;
    desc.dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
    desc.dwWidth = 4;
    desc.dwHeight = 4;
    desc.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN;
    auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, 0));
    IDirectDrawSurface7* surface = nullptr;
    Screen.ddraw->CreateSurface(&desc, &surface, nullptr);
    *record = {surface, 0, nullptr, 4, 4};
    Screen_ClearSurface(surface);
    devices.desktop->send(WM_SYSKEYUP, VK_MENU); // saves before the switch takes the surfaces
    devices.switchAway(true);
    EXPECT_NE(record->saved, nullptr);
    devices.switchBack();
    Screen_Flip();
    EXPECT_EQ(record->saved, nullptr);
    HDC dc = nullptr;
    ASSERT_EQ(surface->GetDC(&dc), DD_OK);
    EXPECT_EQ(GetPixel(dc, 3, 3), 0u);
    surface->ReleaseDC(dc);
}

TEST_F(ScreenPresent, RecoversAgainUntilItSucceeds) {
    devices.ddraw.loseSurfaces();
    devices.ddraw.isAway = true;
    Screen_Flip();
    Screen_Flip();
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), 2);
    devices.ddraw.isAway = false;
    Screen_Flip();
    Screen_Flip();
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), 3);
    EXPECT_EQ(devices.ddraw.flips(), 1);
}

class FailedRecovery : public OpenScreenTest, public testing::WithParamInterface<CallFailure> {};

TEST_P(FailedRecovery, GoesOnWithItsOtherStepsAndTheNextFrames) {
    devices.ddraw.loseSurfaces();
    calls.fail(GetParam().call, GetParam().nth, GetParam().result);
    Screen_Flip();
    EXPECT_EQ(calls.uses("ShowWindow"), 2);
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), 1);
    Screen_Flip();
    Screen_Flip();
    Screen_Clear(red);
    Screen_Flip();
    EXPECT_EQ(devices.ddraw.shown(0, 0), red);
}

const CallFailure recoverySteps[] = {
    {"IDirectDraw7::SetCooperativeLevel", 1, DDERR_EXCLUSIVEMODEALREADYSET},
    {"IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE},
    {"IDirectDraw7::RestoreAllSurfaces", 1, DDERR_WRONGMODE},
    {"ShowWindow", 1, 0},
};

INSTANTIATE_TEST_SUITE_P(Calls, FailedRecovery, testing::ValuesIn(recoverySteps));

// --- The raster wait ---

class RasterWait : public OpenScreenTest {
protected:
    RasterWait() {
        Screen.targetHeight = 768;
        calls.replace<hook::Sleep>([](DWORD) {});
    }
    int sleepsFor(std::vector<DWORD> lines) {
        devices.ddraw.scanLines = std::move(lines);
        const int before = calls.uses("Sleep");
        Screen_Present(Present_Raster | Present_Retrace);
        return calls.uses("Sleep") - before;
    }
};

TEST_F(RasterWait, LastsWhileTheLineIsBelowTheHeightLess150) {
    EXPECT_EQ(sleepsFor({0, 300, 617, 618}), 3);
    EXPECT_EQ(sleepsFor({618}), 0);
    EXPECT_EQ(sleepsFor({767}), 0);
    EXPECT_EQ(sleepsFor({617, 619}), 1);
}

TEST_F(RasterWait, EndsWithAnyFailure) {
    calls.fail("IDirectDraw7::GetScanLine", 3, DDERR_VERTICALBLANKINPROGRESS);
    EXPECT_EQ(sleepsFor({0}), 2);
    EXPECT_EQ(devices.ddraw.flips(), 1) << "and the flip goes on";
}

TEST_F(RasterWait, ComparesLinesWithoutSign) {
    Screen.targetHeight = 149; // less 150: a very large number
    calls.fail("IDirectDraw7::GetScanLine", 4, DDERR_GENERIC);
    EXPECT_EQ(sleepsFor({0, 5000, 0xFFFFFFFE}), 3);
    EXPECT_EQ(sleepsFor({0xFFFFFFFF}), 0);
}

TEST_F(RasterWait, RaisesThePriorityForItsTimeAlone) {
    HANDLE thread = GetCurrentThread();
    SetThreadPriority(thread, THREAD_PRIORITY_BELOW_NORMAL);
    std::vector<int> priorities;
    calls.replace<hook::Sleep>([&](DWORD) { priorities.push_back(GetThreadPriority(thread)); });
    sleepsFor({0, 618});
    EXPECT_EQ(priorities, std::vector<int>{THREAD_PRIORITY_HIGHEST});
    EXPECT_EQ(GetThreadPriority(thread), THREAD_PRIORITY_BELOW_NORMAL);
    SetThreadPriority(thread, THREAD_PRIORITY_NORMAL);
}

TEST_F(RasterWait, IsNotForAPlainFlip) {
    Screen_Flip();
    EXPECT_EQ(calls.uses("IDirectDraw7::GetScanLine"), 0);
    EXPECT_EQ(calls.uses("SetThreadPriority"), 0);
}

// --- Whether it may present ---

using ScreenIsActive = ScreenTest;

TEST_F(ScreenIsActive, IsTheFullScreensState) {
    Screen.active = 1;
    EXPECT_EQ(Screen_IsActive(), 1);
    Screen.active = 0;
    EXPECT_EQ(Screen_IsActive(), 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenIsActive, IsAskedOfTheSystemForAWindowedScreen) {
    Screen.windowed = 1;
    Screen.window = reinterpret_cast<HWND>(0x123);
    devices.desktop->foreground = Screen.window;
    EXPECT_EQ(Screen_IsActive(), 1);
    Screen.active = 1;
    devices.desktop->foreground = nullptr;
    EXPECT_EQ(Screen_IsActive(), 0);
}

// --- The frame limiter ---

class FrameLimiter : public OpenScreenTest {
protected:
    static constexpr int64_t refuse = INT64_MIN;

    // The counter gives these values one after the other; `refuse` makes it fail. A wait that wants
    // more is ended by force.
    void setCounter(std::vector<int64_t> values) {
        counter = std::move(values);
        next = 0;
        calls.replace<hook::QueryPerformanceCounter>([this](LARGE_INTEGER* now) {
            if (next == counter.size()) {
                ADD_FAILURE() << "the wait does not end";
                Screen.limiterTicks = INT_MIN;
                return TRUE;
            }
            now->QuadPart = counter[next++];
            return now->QuadPart == refuse ? FALSE : TRUE;
        });
    }
    int32_t wait(int32_t stamp, int32_t ticks, std::vector<int64_t> values) {
        Screen.limiterStamp = stamp;
        Screen.limiterTicks = ticks;
        setCounter(std::move(values));
        const int32_t passes = Screen_WaitFrame();
        EXPECT_EQ(next, counter.size()) << "values left";
        return passes;
    }

    std::vector<int64_t> counter;
    size_t next = 0;
};

TEST_F(FrameLimiter, IsArmedWithTheTicksOfAFrame) {
    calls.replace<hook::QueryPerformanceFrequency>([](LARGE_INTEGER* frequency) {
        frequency->QuadPart = 1000000;
        return TRUE;
    });
    Screen.limiterStamp = 5;
    EXPECT_EQ(Screen_SetFrameRate(60), 1);
    EXPECT_EQ(Screen.limiterRate, 60);
    EXPECT_EQ(Screen.limiterTicks, 1000000 / 61);
    EXPECT_EQ(Screen.limiterStamp, 0);
    EXPECT_EQ(Screen_SetFrameRate(0), 1);
    EXPECT_EQ(Screen.limiterRate, 0);
    EXPECT_EQ(Screen.limiterTicks, 1000000);
}

TEST_F(FrameLimiter, IsNotArmedWithoutACounter) {
    Screen.limiterRate = 1;
    Screen.limiterTicks = 2;
    Screen.limiterStamp = 3;
    calls.fail("QueryPerformanceFrequency", 1, 0);
    EXPECT_EQ(Screen_SetFrameRate(60), 0);
    EXPECT_EQ(Screen.limiterRate, 1);
    EXPECT_EQ(Screen.limiterTicks, 2);
    EXPECT_EQ(Screen.limiterStamp, 3);
}

TEST_F(FrameLimiter, SpinsUntilMoreThanAFrameHasPassed) {
    EXPECT_EQ(wait(1000, 100, {1001, 1099, 1100, 1101}), 3);
    EXPECT_EQ(Screen.limiterStamp, 1101);
    EXPECT_EQ(calls.uses("Sleep"), 0);
}

TEST_F(FrameLimiter, ReturnsAtOnceAfterALongFrame) {
    EXPECT_EQ(wait(1000, 100, {5000}), 0);
    EXPECT_EQ(Screen.limiterStamp, 5000);
}

TEST_F(FrameLimiter, TakesTheLowWordOfTheCounterWithItsSign) {
    EXPECT_EQ(wait(1000, 100, {0x7000003E8 + 101}), 0);
    EXPECT_EQ(Screen.limiterStamp, 1101);
    EXPECT_EQ(wait(-1000, 100, {0x5FFFFFC18 + 101}), 0);
    EXPECT_EQ(Screen.limiterStamp, -899);
}

TEST_F(FrameLimiter, AsksACounterThatFailsAgain) {
    EXPECT_EQ(wait(1000, 100, {refuse, refuse, 1050, refuse, 1101}), 1);
}

TEST_F(FrameLimiter, BeginsAnewWhenTheLowWordHasWrapped) {
    EXPECT_EQ(wait(0x7FFFFFF0, 100, {-2000, -1900, -1899}), 2);
    EXPECT_EQ(Screen.limiterStamp, -1899);
    EXPECT_EQ(wait(-5, 100, {2000, 2100, 2101}), 2);
    EXPECT_EQ(Screen.limiterStamp, 2101);
}

TEST_F(FrameLimiter, BeginsAnewFromAStampOfZeroEitherWay) {
    EXPECT_EQ(wait(0, 100, {2000, 2101}), 1);
    EXPECT_EQ(wait(0, 100, {-2000, -1899}), 1);
}

TEST_F(FrameLimiter, DoesNotBeginAnewAtACounterOfZero) {
    EXPECT_EQ(wait(-101, 100, {0}), 0);
    EXPECT_EQ(Screen.limiterStamp, 0);
    EXPECT_EQ(wait(5, 100, {0, 106}), 1);
}

TEST_F(FrameLimiter, DoesNotBeginAnewWithinOneSign) {
    EXPECT_EQ(wait(1, 100, {102}), 0);
    EXPECT_EQ(wait(-102, 100, {-1}), 0);
}

class LimitedPresent : public FrameLimiter {
protected:
    // How often Screen_Present looked at the counter.
    int looks(int32_t rate, DWORD monitor, int32_t refresh, int32_t active) {
        Screen.limiterRate = rate;
        Screen.monitorFrequency = monitor;
        Screen.refreshRate = refresh;
        Screen.active = active;
        Screen.limiterStamp = 1;
        Screen.limiterTicks = 1;
        setCounter({100});
        Screen_Present(1);
        return static_cast<int>(next);
    }
};

TEST_F(LimitedPresent, WaitsWhileTheDisplaysRateIsItsOwn) {
    EXPECT_EQ(looks(60, 75, 0, 1), 1);
    EXPECT_EQ(looks(60, 0, 75, 1), 1);
    EXPECT_EQ(looks(-1, 75, 0, 1), 1);
}

TEST_F(LimitedPresent, WaitsWhileInactiveToo) { EXPECT_EQ(looks(60, 75, 0, 0), 1); }

TEST_F(LimitedPresent, DoesNotWaitUnlessItIsArmed) { EXPECT_EQ(looks(0, 75, 0, 1), 0); }

TEST_F(LimitedPresent, DoesNotWaitWhereTheRateIsTheProgramsChoice) {
    EXPECT_EQ(looks(60, 75, 75, 1), 0);
    EXPECT_EQ(looks(60, 0, 0, 1), 0);
}

TEST_F(LimitedPresent, WaitsAfterTheFlip) {
    int flipsAtWait = -1;
    Screen.limiterRate = 60;
    Screen.limiterStamp = 1;
    Screen.limiterTicks = 1;
    setCounter({100});
    calls.before("QueryPerformanceCounter", 1, [&] { flipsAtWait = devices.ddraw.flips(); });
    Screen_Present(1);
    EXPECT_EQ(flipsAtWait, 1);
}

} // namespace
