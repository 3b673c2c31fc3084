#include "display/frame.h"

#include "display/screen_device.h"
#include "display/screen_steps.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;

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
    const ScreenSurface* record = addSurface(0, "surface");
    auto* surface = static_cast<IDirectDrawSurface7*>(record->surface);
    Screen_ClearSurface(surface);
    devices.desktop->send(WM_SYSKEYUP, VK_MENU); // saves before the switch takes the surfaces
    devices.switchAway(true);
    EXPECT_NE(record->saved, nullptr);
    devices.switchBack();
    Screen_Flip();
    EXPECT_EQ(record->saved, nullptr);
    HDC dc = nullptr;
    ASSERT_EQ(surface->GetDC(&dc), DD_OK);
    EXPECT_EQ(GetPixel(dc, 4, 2), 0u);
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
    // The lines that the raster is at, one look after the other; then it is near the bottom.
    int sleepsFor(std::vector<DWORD> lines) {
        lines.push_back(0x7FFFFFFF);
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
    EXPECT_EQ(sleepsFor({0, 0, 0, 0}), 2);
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

} // namespace
