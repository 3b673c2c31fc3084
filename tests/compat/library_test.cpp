// What the library beside the program does where the system's own cannot be compared with it.

#include "tests/compat/session.h"
#include "tests/support/wait_until.h"

#include <gtest/gtest.h>

namespace {

constexpr DWORD exclusive = DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN;
constexpr DWORD sized = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;

class Library : public testing::Test {
protected:
    static RECT areaOf(HWND window) {
        RECT area;
        GetWindowRect(window, &area);
        return area;
    }
    static bool coversTheScreen(HWND window) {
        const RECT area = areaOf(window);
        return area.left == 0 && area.top == 0 && area.right == GetSystemMetrics(SM_CXSCREEN) &&
               area.bottom == GetSystemMetrics(SM_CYSCREEN);
    }
    HWND pictureWindow() const {
        return FindWindowExA(session.window, nullptr, "DirectDraw picture", nullptr);
    }

    COLORREF shown(int x, int y) {
        HDC dc = GetDC(pictureWindow());
        const COLORREF color = GetPixel(dc, x, y);
        ReleaseDC(pictureWindow(), dc);
        return color;
    }
    void draw(IDirectDrawSurface7* surface, const RECT& area, COLORREF color) {
        HDC dc = nullptr;
        ASSERT_EQ(surface->GetDC(&dc), DD_OK);
        HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &area, brush);
        DeleteObject(brush);
        ASSERT_EQ(surface->ReleaseDC(dc), DD_OK);
    }
    void open(DWORD width, DWORD height) {
        ASSERT_EQ(session.ddraw->SetCooperativeLevel(session.window, exclusive), DD_OK);
        ASSERT_EQ(session.ddraw->SetDisplayMode(width, height, 16, 0, 0), DD_OK);
        session.makeSurfaces();
        ASSERT_NE(session.back, nullptr);
    }
    HRESULT flip() { return session.primary->Flip(nullptr, DDFLIP_WAIT | DDFLIP_NOVSYNC); }

    Session session{"compat.dll"};
};

TEST_F(Library, ShowsWhatIsDrawnOnThePrimaryAtItsRelease) {
    open(1024, 768);
    draw(session.primary, {100, 100, 200, 200}, 0xFF);
    EXPECT_EQ(shown(99, 100), 0u);
    EXPECT_EQ(shown(100, 100), 0xFFu);
    EXPECT_EQ(shown(199, 199), 0xFFu);
}

TEST_F(Library, ShowsASmallModeInWholePixelsWithBars) {
    open(500, 370); // twice as large on 1024 by 768
    draw(session.back, {0, 0, 1, 1}, 0xFF);
    draw(session.back, {499, 369, 500, 370}, 0xFF00);
    EXPECT_EQ(flip(), DD_OK);
    EXPECT_EQ(shown(11, 14), 0u);
    EXPECT_EQ(shown(14, 14), 0u);
    EXPECT_EQ(shown(12, 13), 0u);
    EXPECT_EQ(shown(12, 14), 0xFFu);
    EXPECT_EQ(shown(13, 15), 0xFFu);
    EXPECT_EQ(shown(1010, 752), 0xFF00u);
    EXPECT_EQ(shown(1011, 753), 0xFF00u);
    EXPECT_EQ(shown(1012, 753), 0u);
}

TEST_F(Library, FlipsNothingBusy) {
    open(1024, 768);
    for (IDirectDrawSurface7* surface : {session.primary, session.back}) {
        HDC dc = nullptr;
        surface->GetDC(&dc);
        EXPECT_EQ(flip(), DDERR_SURFACEBUSY);
        surface->ReleaseDC(dc);
        DDSURFACEDESC2 description = wanted(0, 0);
        surface->Lock(nullptr, &description, DDLOCK_WAIT, nullptr);
        EXPECT_EQ(flip(), DDERR_SURFACEBUSY);
        surface->Unlock(nullptr);
        EXPECT_EQ(flip(), DD_OK);
    }
}

TEST_F(Library, RefusesAContextThatIsNotItsOwn) {
    open(1024, 768);
    HDC dc = nullptr;
    session.back->GetDC(&dc);
    EXPECT_EQ(session.back->ReleaseDC(nullptr), DDERR_INVALIDPARAMS);
    EXPECT_EQ(session.back->ReleaseDC(dc), DD_OK);
}

TEST_F(Library, RefusesMissingPlaces) {
    open(1024, 768);
    EXPECT_EQ(session.ddraw->GetScanLine(nullptr), DDERR_INVALIDPARAMS);
    EXPECT_EQ(session.ddraw->GetMonitorFrequency(nullptr), DDERR_INVALIDPARAMS);
    EXPECT_EQ(session.create(nullptr, nullptr, IID_IDirectDraw7, nullptr), DDERR_INVALIDPARAMS);
    EXPECT_EQ(session.primary->GetAttachedSurface(nullptr, nullptr), DDERR_INVALIDPARAMS);
}

TEST_F(Library, HasNoMoreThanItOffers) {
    open(1024, 768);
    DDSURFACEDESC2 description = wanted(0, 0);
    EXPECT_EQ(session.ddraw->GetDisplayMode(&description), DDERR_UNSUPPORTED);
    EXPECT_EQ(session.ddraw->RestoreDisplayMode(), DDERR_UNSUPPORTED);
    EXPECT_EQ(session.primary->GetSurfaceDesc(&description), DDERR_UNSUPPORTED);
    EXPECT_EQ(session.primary->SetPalette(nullptr), DDERR_UNSUPPORTED);
}

TEST_F(Library, SaysThatMemoryIsExhausted) {
    open(1024, 768);
    DDSURFACEDESC2 huge = wanted(sized, DDSCAPS_OFFSCREENPLAIN, 60000, 60000);
    auto* made = session.primary;
    EXPECT_EQ(session.ddraw->CreateSurface(&huge, &made, nullptr), DDERR_OUTOFMEMORY);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(flip(), DD_OK);
}

TEST_F(Library, CoversTheMonitorWhateverMovesTheWindow) {
    open(1024, 768);
    EXPECT_TRUE(coversTheScreen(session.window));
    MoveWindow(session.window, 50, 60, 70, 80, TRUE);
    EXPECT_TRUE(coversTheScreen(session.window));
    SendMessageA(session.window, WM_DISPLAYCHANGE, 32, MAKELPARAM(1024, 768));
    EXPECT_TRUE(coversTheScreen(session.window));
    EXPECT_TRUE(coversTheScreen(pictureWindow()));
    ShowWindow(session.window, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(pictureWindow()));
}

TEST_F(Library, OutlivesItsWindow) {
    open(1024, 768);
    DestroyWindow(session.window);
    EXPECT_EQ(pictureWindow(), nullptr);
    EXPECT_EQ(session.primary->IsLost(), DDERR_SURFACELOST);
    EXPECT_EQ(flip(), DDERR_SURFACELOST);
    EXPECT_EQ(session.ddraw->RestoreAllSurfaces(), DDERR_WRONGMODE);
    EXPECT_EQ(session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL), DD_OK);
}

TEST_F(Library, LeavesTheWindowToItsOwner) {
    open(1024, 768);
    EXPECT_EQ(session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL), DD_OK);
    EXPECT_EQ(pictureWindow(), nullptr);
    MoveWindow(session.window, 50, 60, 70, 80, TRUE);
    EXPECT_EQ(areaOf(session.window).left, 50);
}

TEST_F(Library, LeavesTheModeOfTheDesktopAlone) {
    DEVMODEA before{}, during{};
    before.dmSize = during.dmSize = sizeof before;
    EnumDisplaySettingsA(nullptr, ENUM_CURRENT_SETTINGS, &before);
    open(640, 480);
    EnumDisplaySettingsA(nullptr, ENUM_CURRENT_SETTINGS, &during);
    EXPECT_EQ(during.dmPelsWidth, before.dmPelsWidth);
    EXPECT_EQ(during.dmBitsPerPel, before.dmBitsPerPel);
}

TEST_F(Library, FlipsAtTheMonitorsRate) {
    open(1024, 768);
    DWORD rate = 0;
    ASSERT_EQ(session.ddraw->GetMonitorFrequency(&rate), DD_OK);
    ASSERT_GE(rate, 10u);
    const ULONGLONG begin = GetTickCount64();
    for (DWORD count = 0; count <= rate; ++count)
        session.primary->Flip(nullptr, DDFLIP_WAIT);
    EXPECT_GE(GetTickCount64() - begin, 950u) << "a second of pictures";
}

TEST_F(Library, RestoresOnlyInTheModeOfTheSurface) {
    open(1024, 768);
    session.goAway();
    session.comeBack();
    session.ddraw->SetDisplayMode(1024, 768, 32, 0, 0);
    EXPECT_EQ(session.ddraw->RestoreAllSurfaces(), DDERR_WRONGMODE);
    session.ddraw->SetDisplayMode(1024, 768, 16, 0, 0);
    EXPECT_EQ(session.ddraw->RestoreAllSurfaces(), DD_OK);
    EXPECT_EQ(flip(), DD_OK);
}

} // namespace
