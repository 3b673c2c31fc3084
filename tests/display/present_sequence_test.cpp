#include "display/frame.h"

#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

namespace {

using PresentSequence = OpenScreenTest;

// --- Present ---

TEST_F(PresentSequence, PresentPumpsEveryMessageFirst) {
    devices.desktop->post(WM_USER, 1, 2);
    devices.desktop->post(WM_QUIT);
    Screen_Present(1);
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(&{window, 0x400, 1, 2}, null, 0, 0, 1) -> 1
        TranslateMessage({window, 0x400, 1, 2})
        DispatchMessageA({window, 0x400, 1, 2})
        DefWindowProcA(window, 0x400, 1, 2)
        PeekMessageA(&{window, 0x12, 0, 0}, null, 0, 0, 1) -> 1
        TranslateMessage({window, 0x12, 0, 0})
        DispatchMessageA({window, 0x12, 0, 0})
        DefWindowProcA(window, 0x12, 0, 0)
        PeekMessageA(*, null, 0, 0, 1) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

struct FlagCalls {
    int32_t flags;
    bool waitsForRaster;
    int flipFlags;
};

void PrintTo(const FlagCalls& parameter, std::ostream* out) { *out << "flags " << parameter.flags; }

constexpr const char* rasterWait = R"(
    GetCurrentThread() -> *
    GetThreadPriority(*) -> 0
    SetThreadPriority(*, 2) -> 1
    IDirectDraw7::GetScanLine(ddraw1, &617) -> 0
    Sleep(1)
    IDirectDraw7::GetScanLine(ddraw1, &618) -> 0
    SetThreadPriority(*, 0) -> 1
)";

class PresentFlags : public PresentSequence, public testing::WithParamInterface<FlagCalls> {};

TEST_P(PresentFlags, DecideRetraceAndRaster) {
    Screen.targetHeight = 768;
    devices.ddraw.scanLines = {617, 618};
    Screen_Present(GetParam().flags);
    EXPECT_TRUE(calls.match(std::string("PeekMessageA(*) -> 0\n") +
                            (GetParam().waitsForRaster ? rasterWait : "") +
                            "IDirectDrawSurface7::Flip(primary, null, " +
                            std::to_string(GetParam().flipFlags) + ") -> 0"));
}

const FlagCalls flags[] = {
    {0, false, 9}, {1, false, 1}, {2, true, 9}, {3, true, 1}, {4, false, 9}, {5, false, 1},
};

INSTANTIATE_TEST_SUITE_P(Flags, PresentFlags, testing::ValuesIn(flags));

TEST_F(PresentSequence, FlipWithHandsItsFlagsOn) {
    Screen_FlipWith(0);
    EXPECT_TRUE(calls.match("PeekMessageA(*)\n IDirectDrawSurface7::Flip(primary, null, 9)"));
    Screen_Flip();
    EXPECT_TRUE(calls.match("PeekMessageA(*)\n IDirectDrawSurface7::Flip(primary, null, 1)"));
}

TEST_F(PresentSequence, ARasterThatCannotBeReadIsNotWaitedFor) {
    calls.fail("IDirectDraw7::GetScanLine", 1, DDERR_UNSUPPORTED);
    Screen_Present(3);
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        GetCurrentThread()
        GetThreadPriority(*)
        SetThreadPriority(*, 2)
        IDirectDraw7::GetScanLine(ddraw1, *) -> *
        SetThreadPriority(*, 0)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(PresentSequence, TheRasterIsWaitedForWhateverBecomesOfThePriority) {
    Screen.targetHeight = 768;
    devices.ddraw.scanLines = {618};
    calls.fail("GetThreadPriority", 1, THREAD_PRIORITY_ERROR_RETURN);
    calls.fail("SetThreadPriority", 1, 0);
    calls.fail("SetThreadPriority", 2, 0);
    Screen_Present(3);
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        GetCurrentThread()
        GetThreadPriority(*) -> 0x7FFFFFFF
        SetThreadPriority(*, 2) -> 0
        IDirectDraw7::GetScanLine(ddraw1, &618) -> 0
        SetThreadPriority(*, 0x7FFFFFFF) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(PresentSequence, AnInactiveScreenPumpsAndReturns) {
    Screen.active = 0;
    Screen_Present(3);
    EXPECT_TRUE(calls.match("PeekMessageA(*) -> 0"));
}

TEST_F(PresentSequence, AnArmedLimiterWaitsAtTheEnd) {
    Screen_SetFrameRate(1000);
    EXPECT_TRUE(calls.match("QueryPerformanceFrequency(*) -> 1"));
    Screen.limiterTicks = -1;
    calls.replace<hook::QueryPerformanceCounter>([](LARGE_INTEGER* now) {
        now->QuadPart = 7;
        return TRUE;
    });
    Screen_Present(1);
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
        QueryPerformanceCounter(&7) -> 1
    )"));
}

// --- Recovery ---

constexpr const char* recovery = R"(
    IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11) -> 0
    IDirectDraw7::SetDisplayMode(ddraw1, 96, 64, 16, 0, 0) -> 0
    IDirectDraw7::RestoreAllSurfaces(ddraw1) -> 0
    ShowWindow(window, 3)
)";

TEST_F(PresentSequence, ALostFlipTakesModeAndSurfacesBackAndIsNotRepeated) {
    devices.ddraw.loseSurfaces();
    Screen_Flip();
    EXPECT_TRUE(calls.match(std::string(R"(
        PeekMessageA(*) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0x887601C2
    )") + recovery));
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(PresentSequence, TheRecoveryTakesTheTargetsSizeAndTheRateAsItIs) {
    Screen.targetWidth = 11;
    Screen.targetHeight = 12;
    Screen.refreshRate = 72;
    devices.ddraw.loseSurfaces();
    Screen_Present(1);
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDraw7::SetDisplayMode(ddraw1, 11, 12, 16, 72, 0) -> 0
        ...
    )"));
    Screen.refreshRate = 0;
}

TEST_F(PresentSequence, TheRecoveryChecksNoResult) {
    devices.ddraw.loseSurfaces();
    calls.fail("IDirectDraw7::SetCooperativeLevel", 1, E_FAIL);
    calls.fail("IDirectDraw7::SetDisplayMode", 1, E_FAIL);
    calls.fail("IDirectDraw7::RestoreAllSurfaces", 1, E_FAIL);
    calls.fail("ShowWindow", 1, 0);
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0x887601C2
        IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11) -> *
        IDirectDraw7::SetDisplayMode(ddraw1, 96, 64, 16, 0, 0) -> *
        IDirectDraw7::RestoreAllSurfaces(ddraw1) -> *
        ShowWindow(window, 3)
    )"));
}

class PaletteSequence : public ScreenTest {
protected:
    PaletteSequence() { open(8); }
};

TEST_F(PaletteSequence, TheRecoveryAtEightBitsSetsThePaletteAgain) {
    devices.ddraw.loseSurfaces();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        PeekMessageA(*)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0x887601C2
        IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11)
        IDirectDraw7::SetDisplayMode(ddraw1, 96, 64, 8, 0, 0)
        IDirectDraw7::RestoreAllSurfaces(ddraw1)
        ShowWindow(window, 3)
        IDirectDrawSurface7::GetPalette(primary, &colors1) -> 0
        IDirectDrawSurface7::SetPalette(primary, colors1) -> 0
        IDirectDrawPalette::Release(colors1)
    )"));
}

TEST_F(PaletteSequence, TheRecoveryWithoutAPaletteGoesOn) {
    devices.ddraw.loseSurfaces();
    calls.fail("IDirectDrawSurface7::GetPalette", 1, DDERR_NOPALETTEATTACHED);
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDrawSurface7::GetPalette(primary, *) -> *
        IDirectDrawSurface7::SetPalette(primary, null)
    )"));
}

TEST_F(PaletteSequence, TheRecoveryReleasesAPaletteThatCannotBeSet) {
    devices.ddraw.loseSurfaces();
    calls.fail("IDirectDrawSurface7::SetPalette", 1, DDERR_GENERIC);
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDrawSurface7::GetPalette(primary, &colors1) -> 0
        IDirectDrawSurface7::SetPalette(primary, colors1) -> *
        IDirectDrawPalette::Release(colors1)
    )"));
}

} // namespace
