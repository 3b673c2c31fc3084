#include "display/frame.h"

#include "tests/support/screen_fixture.h"

namespace {

constexpr COLORREF white = 0xFFFFFF;

class FrameSequence : public OpenScreenTest {
protected:
    FrameSequence() {
        Draw_SubsystemInit();
        calls.name(Pass.defaultBrush, "defaultBrush");
        calls.name(Pass.defaultPen, "defaultPen");
        calls.take();
    }
    ~FrameSequence() override { Draw_End(); }
};

// --- Clear and target ---

TEST_F(FrameSequence, ClearIsOneFillWithoutAWait) {
    Screen_Clear(0x0000FF);
    const std::string size = std::to_string(sizeof(DDBLTFX));
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Blt(back, null, null, null, 0x400, {" + size +
                            ", fill 0xF800}) -> 0"));
}

TEST_F(FrameSequence, BackBufferTakesOneContext) {
    Screen_BackBuffer();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, &dc1) -> 0"));
    Screen_BackBuffer();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FrameSequence, BackBufferThatFailsTriesOnce) {
    devices.ddraw.loseSurfaces();
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, *) -> 0x887601C2"));
}

// --- A whole frame ---

TEST_F(FrameSequence, AFrameIsOneFillOneContextAndOneFlip) {
    Screen_Clear(0);
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Draw_Text(3, 4, "row", white, 0);
    Draw_End();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Blt(back, null, null, null, 0x400, {*, fill 0}) -> 0
        IDirectDrawSurface7::GetDC(back, &dc1) -> 0
        SetTextAlign(dc1, 1)
        SelectObject(dc1, defaultBrush) -> old1
        SelectObject(dc1, defaultPen) -> old2
        CreateSolidBrush(0) -> brush1
        SetTextColor(dc1, 0)
        SetROP2(dc1, 13)
        SelectObject(dc1, brush1) -> defaultBrush
        SetBkMode(dc1, 2)
        SetTextColor(dc1, 0xFFFFFF)
        SetBkColor(dc1, 0)
        MoveToEx(dc1, 3, 4, null)
        TextOutA(dc1, 0, 0, "row", 3)
        SetBkColor(dc1, 0xFFFFFF)
        SetTextColor(dc1, 0)
        MoveToEx(dc1, 0, 0, &{*, 4})
        SelectObject(dc1, old1) -> brush1
        SelectObject(dc1, old2) -> defaultPen
        DeleteObject(brush1) -> 1
        IDirectDrawSurface7::ReleaseDC(back, dc1) -> 0
        PeekMessageA(*, null, 0, 0, 1) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, TheSameFrameRunsTheSameCalls) {
    const auto frame = [this] {
        Screen_Clear(0);
        Draw_Begin(Screen_BackBuffer());
        Draw_SetMode(0);
        Draw_Text(3, 4, "row", white, 0);
        Draw_End();
        Screen_Flip();
        return calls.take();
    };
    const std::vector<std::string> first = frame();
    EXPECT_EQ(frame(), first);
    EXPECT_EQ(frame(), first);
}

TEST_F(FrameSequence, AFlipEndsDrawingThatWasLeftOpen) {
    Draw_Begin(Screen_BackBuffer());
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::ReleaseDC(back, dc1) -> 0
        PeekMessageA(*) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, AFlipUnlocksWhatWasLeftLocked) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Unlock(back, null) -> 0
        PeekMessageA(*) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, AnEmptyPassDrawsNothing) {
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Draw_SetFont(DrawFont_System);
    Draw_Text(3, 4, "row", white, 0);
    Draw_Image(5, 0, 0);
    Draw_End();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, *)"));
}

// --- Present ---

TEST_F(FrameSequence, PresentPumpsEveryMessageFirst) {
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

class PresentFlags : public FrameSequence, public testing::WithParamInterface<FlagCalls> {};

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

TEST_F(FrameSequence, FlipWithHandsItsFlagsOn) {
    Screen_FlipWith(0);
    EXPECT_TRUE(calls.match("PeekMessageA(*)\n IDirectDrawSurface7::Flip(primary, null, 9)"));
    Screen_Flip();
    EXPECT_TRUE(calls.match("PeekMessageA(*)\n IDirectDrawSurface7::Flip(primary, null, 1)"));
}

TEST_F(FrameSequence, ARasterThatCannotBeReadIsNotWaitedFor) {
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

TEST_F(FrameSequence, AnInactiveScreenPumpsAndReturns) {
    Screen.active = 0;
    Screen_Present(3);
    EXPECT_TRUE(calls.match("PeekMessageA(*) -> 0"));
}

TEST_F(FrameSequence, AnArmedLimiterWaitsAtTheEnd) {
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

TEST_F(FrameSequence, ALostFlipTakesModeAndSurfacesBackAndIsNotRepeated) {
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

TEST_F(FrameSequence, TheRecoveryTakesTheTargetsSizeAndTheRateAsItIs) {
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

TEST_F(FrameSequence, TheRecoveryChecksNoResult) {
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

// --- The saved surfaces, call by call ---

class SavedSurfaceSequence : public OpenScreenTest {
protected:
    SavedSurfaceSequence() {
        first = make(0, "first");
        second = make(9, "second");
        calls.take();
    }

    ScreenSurface* make(ObjectId id, const char* name) {
        DDSURFACEDESC2 desc{};
        desc.dwSize = sizeof desc;
        desc.dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
        desc.dwWidth = 5;
        desc.dwHeight = 3;
        desc.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN;
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        IDirectDrawSurface7* surface = nullptr;
        EXPECT_EQ(Screen.ddraw->CreateSurface(&desc, &surface, nullptr), DD_OK);
        *record = {surface, 0, nullptr, 5, 3};
        calls.name(surface, name);
        return record;
    }

    ScreenSurface* first;
    ScreenSurface* second;
};

TEST_F(SavedSurfaceSequence, ASurfaceIsCopiedByWayOfSystemMemory) {
    second->kind = SurfaceKind_Memory;
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::CreateSurface(ddraw1, {136, flags 7, width 5, height 3, caps 0x840}, &surface1, null) -> 0
        IDirectDrawSurface7::Blt(surface1, null, first, null, 0x1000000, null) -> 0
        IDirectDrawSurface7::Lock(surface1, null, copyDesc, 1, null) -> 0
        HeapAlloc(general, 0, 40) -> *
        IDirectDrawSurface7::Unlock(surface1, null) -> 0
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, EverySurfaceIsCopiedInOrderOfNumber) {
    calls.only({"IDirectDrawSurface7::Blt"});
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Blt(surface1, null, first, null, 0x1000000, null)
        IDirectDrawSurface7::Blt(surface1, null, second, null, 0x1000000, null)
    )"));
}

TEST_F(SavedSurfaceSequence, ACopyThatCannotBeMadeIsSkipped) {
    calls.fail("IDirectDraw7::CreateSurface", 1, DDERR_OUTOFMEMORY);
    calls.fail("IDirectDrawSurface7::Blt", 1, DDERR_SURFACELOST);
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::CreateSurface(*) -> *
        IDirectDraw7::CreateSurface(*) -> 0
        IDirectDrawSurface7::Blt(surface1, null, second, null, 0x1000000, null) -> 0x887601C2
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
}

TEST_F(SavedSurfaceSequence, ACopyWithoutMemoryIsUnlockedAndReleased) {
    second->kind = SurfaceKind_Memory;
    calls.fail("HeapAlloc", 1, 0);
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        ...
        HeapAlloc(general, 0, 40) -> null
        IDirectDrawSurface7::Unlock(surface1, null)
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, LostSurfacesAreRestoredAndWrittenBack) {
    Screen_SaveSurfaces();
    calls.name(first->saved, "firstCopy");
    calls.name(second->saved, "secondCopy");
    devices.ddraw.loseSurfaces();
    calls.take();
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::IsLost(first) -> 0x887601C2
        IDirectDrawSurface7::Restore(first) -> 0
        IDirectDrawSurface7::Lock(first, null, copyDesc, 1, null) -> 0
        IDirectDrawSurface7::Unlock(first, null) -> 0
        HeapFree(general, 0, firstCopy) -> 1
        IDirectDrawSurface7::IsLost(second) -> 0x887601C2
        IDirectDrawSurface7::Restore(second) -> 0
        IDirectDrawSurface7::Lock(second, null, copyDesc, 1, null) -> 0
        IDirectDrawSurface7::Unlock(second, null) -> 0
        HeapFree(general, 0, secondCopy) -> 1
    )"));
}

TEST_F(SavedSurfaceSequence, SurfacesWithoutCopiesAreOnlyRestored) {
    second->kind = SurfaceKind_Memory;
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::IsLost(first) -> 0x887601C2
        IDirectDrawSurface7::Restore(first) -> 0
    )"));
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::IsLost(first) -> 0"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, TheRecoveryRestoresThemAfterTheWindowIsShown) {
    Screen_SaveSurfaces();
    devices.ddraw.loseSurfaces();
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(std::string(R"(
        PeekMessageA(*)
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0x887601C2
    )") + recovery + R"(
        // not lost any more:
        IDirectDrawSurface7::IsLost(first) -> 0
        IDirectDrawSurface7::Lock(first, *) -> 0
        IDirectDrawSurface7::Unlock(first, null)
        HeapFree(general, 0, *)
        IDirectDrawSurface7::IsLost(second) -> 0
        IDirectDrawSurface7::Lock(second, *) -> 0
        IDirectDrawSurface7::Unlock(second, null)
        HeapFree(general, 0, *)
    )"));
}

} // namespace
