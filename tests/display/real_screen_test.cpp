// The screen on the system's own display: its window, DirectDraw and messages.

#include "display/screen.h"

#include "display/draw.h"
#include "display/draw_target.h"
#include "display/frame.h"
#include "display/frame_target.h"
#include "display/screen_device.h"
#include "display/window.h"
#include "input/keyboard.h"
#include "input/keyboard_state.h"
#include "tests/support/runtime_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;

class RealScreen : public RuntimeTest {
protected:
    RealScreen() {
        ProgramInstance = GetModuleHandleA(nullptr);
        Draw_SubsystemInit();
    }
    ~RealScreen() override {
        Draw_End();
        Screen_SubsystemEnd2();
        Keyboard_SubsystemEnd();
        DestroyWindow(Screen.hiddenWindow);
        UnregisterClassA("MultimediaBase Class", ProgramInstance);
        Keyboard = {};
        Screen = {};
    }

    static void open() {
        ASSERT_NE(Screen_SubsystemInit(), nullptr);
        ASSERT_EQ(Screen_Open(1024, 768, 16, "Real"), 1);
    }

    static COLORREF backBufferPixel(int x, int y) {
        const DrawTarget* target = Screen_BackBuffer();
        const COLORREF colour = target ? GetPixel(target->dc, x, y) : CLR_INVALID;
        Screen_ReleaseTargetDc();
        return colour;
    }

    static DDSURFACEDESC2 displayMode() {
        DDSURFACEDESC2 mode{};
        mode.dwSize = sizeof mode;
        Screen.ddraw->GetDisplayMode(&mode);
        return mode;
    }
};

TEST_F(RealScreen, OpensInTheModeItAsksFor) {
    open();
    EXPECT_EQ(displayMode().dwWidth, 1024u);
    EXPECT_EQ(displayMode().dwHeight, 768u);
    EXPECT_EQ(displayMode().ddpfPixelFormat.dwRGBBitCount, 16u);
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_565);
    EXPECT_TRUE(IsWindowVisible(Screen.window));
    char title[16];
    GetWindowTextA(Screen.window, title, sizeof title);
    EXPECT_STREQ(title, "Real");
}

TEST_F(RealScreen, GivesTheModeBackAndOpensAgain) {
    ASSERT_NE(Screen_SubsystemInit(), nullptr);
    const DWORD desktopDepth = displayMode().ddpfPixelFormat.dwRGBBitCount;
    HWND window = Screen.hiddenWindow;
    for (int pass = 0; pass < 3; ++pass) {
        ASSERT_EQ(Screen_Open(1024, 768, 16, "Real"), 1);
        EXPECT_EQ(backBufferPixel(1023, 767), 0u) << "new and black";
        Screen_Clear(red);
        Screen_Flip();
        Screen_Close();
        EXPECT_FALSE(IsWindowVisible(window));
        EXPECT_EQ(displayMode().ddpfPixelFormat.dwRGBBitCount, desktopDepth);
    }
    EXPECT_EQ(Screen.hiddenWindow, window);
}

TEST_F(RealScreen, ClearsAndDrawsOnItsBackBuffer) {
    open();
    Screen_Clear(red);
    EXPECT_EQ(backBufferPixel(0, 0), red);
    EXPECT_EQ(backBufferPixel(1023, 767), red);
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Draw_Text(10, 10, " ", 0, 0xFFFFFF);
    Draw_End();
    EXPECT_EQ(backBufferPixel(10, 10), 0xFFFFFFu);
    EXPECT_EQ(backBufferPixel(9, 10), red);
}

TEST_F(RealScreen, GivesNoSecondTargetWhileOneIsOpen) {
    open();
    EXPECT_NE(Screen_BackBuffer(), nullptr);
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
}

TEST_F(RealScreen, ExchangesContextAndPixels) {
    open();
    Screen_Clear(0);
    Screen_BackBuffer();
    int32_t pitch = 0;
    auto* pixels = static_cast<uint8_t*>(Screen_LockPixels(&pitch));
    ASSERT_NE(pixels, nullptr);
    EXPECT_GE(pitch, 2048);
    *reinterpret_cast<uint16_t*>(pixels + 5 * pitch + 2 * 7) = 0xF800;
    HDC dc = Screen_ReacquireDc();
    EXPECT_EQ(GetPixel(dc, 7, 5), red);
    Screen_ReleaseTargetDc();
}

TEST_F(RealScreen, EmptiesTheQueueOfItsThread) {
    open();
    for (int message = 0; message < 100; ++message)
        PostMessageA(Screen.window, WM_APP, 0, 0);
    PostMessageA(Screen.window, WM_CLOSE, 0, 0);
    PostMessageA(Screen.window, WM_LBUTTONDOWN, 0, 0);
    Screen_Flip();
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, Screen.window, WM_APP, WM_APP, PM_NOREMOVE));
    EXPECT_TRUE(IsWindow(Screen.window));
}

TEST_F(RealScreen, OpenedTwiceHasOneSetOfSurfaces) {
    open();
    EXPECT_EQ(Screen_Open(1024, 768, 16, "Again"), 1);
    Screen_Clear(red);
    EXPECT_EQ(backBufferPixel(3, 3), red);
}

TEST_F(RealScreen, RefusesAModeThatTheDisplayDoesNotHave) {
    ASSERT_NE(Screen_SubsystemInit(), nullptr);
    EXPECT_EQ(Screen_Open(1027, 771, 16, "Real"), 0);
    EXPECT_EQ(Screen.primary, nullptr);
    EXPECT_FALSE(IsWindowVisible(Screen.hiddenWindow));
}

} // namespace
