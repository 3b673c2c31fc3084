#include "display/screen.h"

#include "display/screen_device.h"
#include "display/screen_steps.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr const char* keyboardCalls = R"(
    LoadLibraryA("DINPUT.DLL") -> library1
    GetProcAddress(library1, "DirectInputCreateEx") -> routine
    DirectInputCreateEx(program, 0x700, IID_IDirectInput7A, &input1, null) -> 0
    HeapAlloc(general, 0, 6144) -> block3
    IDirectInput7A::CreateDeviceEx(input1, GUID_SysKeyboard, IID_IDirectInputDevice7A, &device1, null) -> 0
    IDirectInputDevice7A::SetDataFormat(device1, *) -> 0
)";

constexpr const char* windowCalls = R"(
    LoadIconA(program, #1) -> null
    GetStockObject(4) -> stock4
    RegisterClassExA(*) -> *
    CreateWindowExA(0, "MultimediaBase Class", "", 0x80000000, 0, 0, 1, 1, null, null, program, null) -> window1
)";

constexpr const char* directDrawCalls = R"(
    LoadLibraryA("DDRAW.DLL") -> library2
    GetProcAddress(library2, "DirectDrawCreateEx") -> routine
    DirectDrawCreateEx(null, &ddraw1, IID_IDirectDraw7, null) -> 0
)";

constexpr const char* registryCalls = R"(
    HeapAlloc(general, 8, 56) -> block1
    HeapAlloc(general, 8, 2048) -> block2
)";

std::string allOf(std::initializer_list<const char*> parts) {
    std::string text;
    for (const char* part : parts)
        text += part;
    return text;
}

// --- Set-up ---

using ScreenSetUp = ScreenTest;

TEST_F(ScreenSetUp, MakesRegistryWindowKeyboardAndDirectDraw) {
    EXPECT_NE(Screen_SubsystemInit(), nullptr);
    EXPECT_TRUE(calls.match(allOf({registryCalls, windowCalls, keyboardCalls, directDrawCalls})));
}

TEST_F(ScreenSetUp, StopsWithoutAWindow) {
    calls.fail("CreateWindowExA", 1, 0);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_TRUE(calls.match(allOf({registryCalls, R"(
        LoadIconA(program, #1)
        GetStockObject(4)
        RegisterClassExA(*)
        CreateWindowExA(*) -> null
    )"})));
}

TEST_F(ScreenSetUp, StopsWithoutAKeyboard) {
    calls.fail("IDirectInputDevice7A::SetDataFormat", 1, E_FAIL);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_TRUE(calls.match(allOf({registryCalls, windowCalls, R"(
        LoadLibraryA("DINPUT.DLL")
        ...
        IDirectInputDevice7A::SetDataFormat(device1, *) -> *
    )"})));
}

TEST_F(ScreenSetUp, FindsAWindowThatTheSoundMade) {
    Window_Create();
    calls.take();
    EXPECT_NE(Screen_SubsystemInit(), nullptr);
    EXPECT_TRUE(calls.match(allOf({registryCalls, keyboardCalls, directDrawCalls})));
}

// --- Open ---

class ScreenOpenSequence : public ScreenTest {
protected:
    ScreenOpenSequence() { setUp(); }
};

constexpr const char* windowIsPlaced = R"(
    SetWindowTextA(window, "Velmora") -> 1
    MoveWindow(window, 0, 0, 1024, 768, 1) -> 1
)";

constexpr const char* modeIsTaken = R"(
    ShowCursor(0) -> -1
    IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11) -> 0
    IDirectDraw7::SetDisplayMode(ddraw1, 1024, 768, 16, 0, 0) -> 0
)";

constexpr const char* surfacesAreMade = R"(
    IDirectDraw7::CreateSurface(ddraw1, {136, flags 0x21, backs 1, caps 0x2218}, &surface1, null) -> 0
    IDirectDrawSurface7::GetAttachedSurface(surface1, {caps 0x2004}, &surface2) -> 0
)";

constexpr const char* pictureStarts = R"(
    ShowWindow(window, 3)
    IDirectDrawSurface7::GetDC(surface2, &dc1) -> 0
    GetStockObject(4) -> stock4
    FillRect(dc1, {0, 0, 1024, 768}, stock4)
    IDirectDrawSurface7::ReleaseDC(surface2, dc1) -> 0
    IDirectDrawSurface7::GetDC(surface1, &dc1) -> 0
    GetStockObject(4) -> stock4
    FillRect(dc1, {0, 0, 1024, 768}, stock4)
    IDirectDrawSurface7::ReleaseDC(surface1, dc1) -> 0
    IDirectDraw7::GetMonitorFrequency(ddraw1, &60) -> 0
    IDirectDrawSurface7::Lock(surface1, null, primaryDesc, 1, null) -> 0
    IDirectDrawSurface7::Unlock(surface1, null) -> 0
    timeBeginPeriod(1)
)";

constexpr const char* surfacesAreReleased = R"(
    IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
    IDirectDrawSurface7::Release(surface2) -> 0
    IDirectDrawSurface7::Release(surface1) -> 0
    ShowCursor(1) -> 0
    ShowWindow(window, 0)
)";

int64_t openScreen() { return Screen_Open(1024, 768, 16, "Velmora"); }

TEST_F(ScreenOpenSequence, TakesWindowModeAndSurfaces) {
    EXPECT_EQ(openScreen(), 1);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, modeIsTaken, surfacesAreMade, pictureStarts})));
}

TEST_F(ScreenOpenSequence, OnAnOpenScreenClosesFirst) {
    openScreen();
    calls.take();
    EXPECT_EQ(openScreen(), 1);
    EXPECT_TRUE(calls.match(allOf({"timeEndPeriod(1)", surfacesAreReleased, windowIsPlaced,
                                   modeIsTaken, surfacesAreMade, pictureStarts})));
}

TEST_F(ScreenOpenSequence, AfterACloseRunsTheSameCalls) {
    openScreen();
    Screen_Close();
    calls.take();
    EXPECT_EQ(openScreen(), 1);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, modeIsTaken, surfacesAreMade, pictureStarts})));
}

TEST_F(ScreenOpenSequence, SkipsTheFillOfASurfaceWithoutAContext) {
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    openScreen();
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDrawSurface7::GetDC(surface2, *) -> 0x887601C2
        IDirectDrawSurface7::GetDC(surface1, &dc1) -> 0
        GetStockObject(4)
        FillRect(dc1, {0, 0, 1024, 768}, stock4)
        IDirectDrawSurface7::ReleaseDC(surface1, dc1)
        IDirectDraw7::GetMonitorFrequency(*)
        ...
    )"));
}

TEST_F(ScreenOpenSequence, UnlocksNothingThatItCouldNotLock) {
    calls.fail("IDirectDrawSurface7::Lock", 1, DDERR_SURFACEBUSY);
    openScreen();
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDrawSurface7::Lock(surface1, null, primaryDesc, 1, null) -> *
        timeBeginPeriod(1)
    )"));
}

// --- Open, failing at each of its steps ---

TEST_F(ScreenOpenSequence, FailsWithoutAWindow) {
    Screen.hiddenWindow = nullptr;
    EXPECT_EQ(openScreen(), 0);
    EXPECT_TRUE(calls.match(R"(
        SetWindowTextA(null, "Velmora")
        MoveWindow(null, 0, 0, 1024, 768, 1)
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
        ShowWindow(null, 0)
    )"));
}

TEST_F(ScreenOpenSequence, FailsWithoutTheExclusiveLevel) {
    calls.fail("IDirectDraw7::SetCooperativeLevel", 1, DDERR_EXCLUSIVEMODEALREADYSET);
    EXPECT_EQ(openScreen(), 0);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, R"(
        ShowCursor(0)
        IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11) -> *
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
        ShowCursor(1) -> 0
        ShowWindow(window, 0)
    )"})));
}

TEST_F(ScreenOpenSequence, FailsOnADisplayThatRefusesTheMode) {
    calls.fail("IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE);
    EXPECT_EQ(openScreen(), 0);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, R"(
        ShowCursor(0)
        IDirectDraw7::SetCooperativeLevel(ddraw1, window, 0x11) -> 0
        IDirectDraw7::SetDisplayMode(ddraw1, 1024, 768, 16, 0, 0) -> *
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
        ShowCursor(1) -> 0
        ShowWindow(window, 0)
    )"})));
}

TEST_F(ScreenOpenSequence, FailsWithoutSurfaces) {
    calls.fail("IDirectDraw7::CreateSurface", 1, DDERR_OUTOFVIDEOMEMORY);
    EXPECT_EQ(openScreen(), 0);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, modeIsTaken, R"(
        IDirectDraw7::CreateSurface(ddraw1, *) -> *
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
        ShowCursor(1) -> 0
        ShowWindow(window, 0)
    )"})));
}

TEST_F(ScreenOpenSequence, FailsWithoutABackBuffer) {
    calls.fail("IDirectDrawSurface7::GetAttachedSurface", 1, DDERR_NOTFOUND);
    EXPECT_EQ(openScreen(), 0);
    EXPECT_TRUE(calls.match(allOf({windowIsPlaced, modeIsTaken, R"(
        IDirectDraw7::CreateSurface(ddraw1, *) -> 0
        IDirectDrawSurface7::GetAttachedSurface(surface1, {caps 0x2004}, *) -> *
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
        IDirectDrawSurface7::Release(surface1) -> 0
        ShowCursor(1) -> 0
        ShowWindow(window, 0)
    )"})));
}

class ScreenOpenFailing : public ScreenOpenSequence,
                          public testing::WithParamInterface<CallFailure> {};

TEST_P(ScreenOpenFailing, IsTornDownInFullByTheNextCloseAndTheEnd) {
    calls.fail(GetParam().call, 1, GetParam().result);
    EXPECT_EQ(openScreen(), 0);
    calls.take();
    Screen_Close();
    EXPECT_TRUE(calls.match(R"(
        timeEndPeriod(1)
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8)
        ShowCursor(1) -> 1
        ShowWindow(window, 0)
    )"));
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match("IDirectDraw7::Release(ddraw1) -> 0\n FreeLibrary(library2)"));
    Screen.initDone = 0;
    EXPECT_EQ(calls.live("surface"), 0u);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
}

TEST_P(ScreenOpenFailing, DoesTheSameOnAReOpening) {
    openScreen();
    Screen_Close();
    calls.fail(GetParam().call, 1, GetParam().result);
    EXPECT_EQ(openScreen(), 0);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_FALSE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_FALSE(devices.desktop->isShown());
}

const CallFailure openSteps[] = {
    {"IDirectDraw7::SetCooperativeLevel", 1, DDERR_EXCLUSIVEMODEALREADYSET},
    {"IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE},
    {"IDirectDraw7::CreateSurface", 1, DDERR_OUTOFVIDEOMEMORY},
    {"IDirectDrawSurface7::GetAttachedSurface", 1, DDERR_NOTFOUND},
};

INSTANTIATE_TEST_SUITE_P(Steps, ScreenOpenFailing, testing::ValuesIn(openSteps));

// --- Close and end ---

TEST_F(ScreenOpenSequence, CloseGivesTheDesktopBack) {
    openScreen();
    calls.take();
    Screen_Close();
    EXPECT_TRUE(calls.match(allOf({"timeEndPeriod(1)", surfacesAreReleased})));
    EXPECT_EQ(calls.live("surface"), 0u);
}

TEST_F(ScreenOpenSequence, CloseFreesTheNumberedSurfacesFirst) {
    openScreen();
    for (ObjectId id = 0; id < 2; ++id) {
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        record->kind = SurfaceKind_Memory;
        record->surface = HeapAlloc(GeneralHeap, 0, 16);
        calls.name(record->surface, id == 0 ? "first" : "second");
    }
    calls.take();
    Screen_Close();
    EXPECT_TRUE(calls.match(allOf({R"(
        timeEndPeriod(1)
        HeapFree(general, 0, first) -> 1
        HeapFree(general, 0, second) -> 1
    )",
                                   surfacesAreReleased})));
}

TEST_F(ScreenOpenSequence, EndClosesAndReleasesDirectDraw) {
    openScreen();
    calls.take();
    Screen_SubsystemEnd();
    Screen_SubsystemEnd2();
    Window_SubsystemEnd();
    EXPECT_TRUE(calls.match(allOf({"timeEndPeriod(1)", surfacesAreReleased, R"(
        IDirectDraw7::Release(ddraw1) -> 0
        FreeLibrary(library2) -> 1
    )"})));
    Screen.initDone = 0;
}

TEST_F(ScreenOpenSequence, EndOfAClosedScreenReleasesDirectDrawAlone) {
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match("IDirectDraw7::Release(ddraw1) -> 0\n FreeLibrary(library2) -> 1"));
    Screen.initDone = 0;
}

// --- Giving the device up ---

TEST_F(ScreenTest, ReleaseDeviceWithoutDirectDrawOrWindowHidesNothing) {
    Screen.surfaces = Registry_New(sizeof(ScreenSurface), 64, Screen_FreeSurface);
    calls.take();
    Screen_ReleaseDevice();
    EXPECT_TRUE(calls.match("ShowWindow(null, 0)"));
}

TEST_F(ScreenOpenSequence, ReleaseDeviceASecondTimeReleasesNoSurfaceAgain) {
    openScreen();
    Screen_ReleaseDevice();
    calls.take();
    Screen_ReleaseDevice();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8)
        ShowCursor(1)
        ShowWindow(window, 0)
    )"));
}

TEST_F(ScreenOpenSequence, TheModeIsNeverRestoredByAnyOtherCall) {
    openScreen();
    Screen_Close();
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreDisplayMode"), 0);
}

} // namespace
