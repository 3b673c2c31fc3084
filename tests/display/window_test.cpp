#include "display/window.h"

#include "display/screen_device.h"
#include "display/window_procedure.h"
#include "runtime/program.h"
#include "tests/support/screen_fixture.h"

#include <windowsx.h>

namespace {

constexpr char className[] = "MultimediaBase Class";

// A window of the system's own.
class WindowTest : public testing::Test {
protected:
    WindowTest() {
        Screen = {};
        ProgramInstance = GetModuleHandleA(nullptr);
    }
    ~WindowTest() override {
        if (Screen.hiddenWindow)
            DestroyWindow(Screen.hiddenWindow);
        UnregisterClassA(className, ProgramInstance);
        Screen = {};
        ProgramInstance = nullptr;
    }
    WindowTest(const WindowTest&) = delete;
    WindowTest& operator=(const WindowTest&) = delete;

    HWND window() const { return Screen.hiddenWindow; }
};

// --- Making it ---

using WindowCreate = WindowTest;

TEST_F(WindowCreate, MakesAHiddenPopUpOfOnePixel) {
    EXPECT_EQ(Window_Create(), 1);
    EXPECT_EQ(Screen.windowMade, 1);
    ASSERT_TRUE(IsWindow(window()));
    EXPECT_FALSE(IsWindowVisible(window()));
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongA(window(), GWL_STYLE)) & ~DWORD{WS_CLIPSIBLINGS},
              DWORD{WS_POPUP});
    EXPECT_EQ(GetWindowLongA(window(), GWL_EXSTYLE), 0);
    EXPECT_EQ(GetWindowTextLengthA(window()), 0);
    EXPECT_EQ(GetAncestor(window(), GA_PARENT), GetDesktopWindow());
    RECT place{};
    GetWindowRect(window(), &place);
    EXPECT_EQ(place.left, 0);
    EXPECT_EQ(place.top, 0);
    EXPECT_EQ(place.right, 1);
    EXPECT_EQ(place.bottom, 1);
}

TEST_F(WindowCreate, RegistersTheClass) {
    Window_Create();
    WNDCLASSEXA found{};
    found.cbSize = sizeof found;
    ASSERT_TRUE(GetClassInfoExA(ProgramInstance, className, &found));
    EXPECT_EQ(found.style, 8u);
    EXPECT_EQ(found.lpfnWndProc, &Screen_WindowProc);
    EXPECT_EQ(found.cbClsExtra, 0);
    EXPECT_EQ(found.cbWndExtra, 0);
    EXPECT_EQ(found.hInstance, ProgramInstance);
    EXPECT_EQ(found.hIcon, nullptr) << "the program holds no icon";
    EXPECT_EQ(found.hCursor, nullptr);
    EXPECT_EQ(found.hbrBackground, GetStockObject(BLACK_BRUSH));
    EXPECT_EQ(found.lpszMenuName, nullptr);
}

TEST_F(WindowCreate, CalledAgainMakesNoSecondWindow) {
    Window_Create();
    HWND first = window();
    EXPECT_EQ(Window_Create(), 1);
    EXPECT_EQ(window(), first);
}

TEST_F(WindowCreate, LeavesTheWindowInUseToTheScreen) {
    Window_Create();
    EXPECT_EQ(Screen.window, nullptr);
}

TEST_F(WindowCreate, IsNotUndoneBySubsystemEnd) {
    Window_Create();
    CallRecorder calls;
    Window_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    EXPECT_TRUE(IsWindow(window()));
}

// --- The same, call by call ---

class WindowCalls : public ScreenTest {};

TEST_F(WindowCalls, AreOneClassAndOneWindow) {
    EXPECT_EQ(Window_Create(), 1);
    EXPECT_TRUE(calls.match(R"(
        LoadIconA(program, #1) -> null
        GetStockObject(4) -> stock4
        RegisterClassExA({80, style 8, routine, 0, 0, program, icon null, cursor null, brush stock4, menu null, "MultimediaBase Class", small null})
        CreateWindowExA(0, "MultimediaBase Class", "", 0x80000000, 0, 0, 1, 1, null, null, program, null) -> window1
    )"));
    EXPECT_EQ(Screen.hiddenWindow, devices.desktop->window());
    EXPECT_EQ(Window_Create(), 1);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(WindowCalls, AreNoneOnceAWindowIsInUse) {
    Screen.window = reinterpret_cast<HWND>(5);
    EXPECT_EQ(Window_Create(), 0) << "the answer is windowMade as it stands";
    EXPECT_TRUE(calls.match(""));
}

TEST_F(WindowCalls, StopAtAClassThatCannotBeRegistered) {
    calls.fail("RegisterClassExA", 1, 0);
    EXPECT_EQ(Window_Create(), 0);
    EXPECT_TRUE(calls.match("LoadIconA(*)\n GetStockObject(4)\n RegisterClassExA(*) -> 0"));
    EXPECT_EQ(Screen.windowMade, 0);
    EXPECT_EQ(Screen.hiddenWindow, nullptr);
}

TEST_F(WindowCalls, LeaveNothingMadeWithoutAWindow) {
    calls.fail("CreateWindowExA", 1, 0);
    EXPECT_EQ(Window_Create(), 0);
    EXPECT_EQ(Screen.windowMade, 0);
    EXPECT_EQ(Screen.hiddenWindow, nullptr);
}

// --- Messages to the system's own window ---

class WindowMessage : public WindowTest {
protected:
    WindowMessage() { Window_Create(); }
};

TEST_F(WindowMessage, ToCloseHasNoEffect) {
    EXPECT_EQ(SendMessageA(window(), WM_CLOSE, 0, 0), 0);
    EXPECT_TRUE(IsWindow(window()));
    SendMessageA(window(), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(IsWindow(window())) << "nor has the system menu's close command";
}

TEST_F(WindowMessage, ToPaintValidatesAndDrawsNothing) {
    ShowWindow(window(), SW_SHOWNOACTIVATE);
    InvalidateRect(window(), nullptr, FALSE);
    CallRecorder calls;
    calls.name(window(), "window");
    calls.only({"USER32", "GDI32"});
    EXPECT_EQ(Screen_WindowProc(window(), WM_PAINT, 0, 0), 1);
    EXPECT_TRUE(calls.match("BeginPaint(window, *)\n EndPaint(window, *)"));
    EXPECT_FALSE(GetUpdateRect(window(), nullptr, FALSE));
}

TEST_F(WindowMessage, ToEraseErasesNothing) {
    CallRecorder calls;
    EXPECT_EQ(SendMessageA(window(), WM_ERASEBKGND, 0, 0), 1);
    EXPECT_TRUE(calls.match(""));
}

class SwallowedMessage : public WindowMessage, public testing::WithParamInterface<UINT> {};

TEST_P(SwallowedMessage, GivesZeroAndGoesNoFurther) {
    CallRecorder calls;
    EXPECT_EQ(SendMessageA(window(), GetParam(), 0, 0), 0);
    EXPECT_TRUE(calls.match(""));
}

INSTANTIATE_TEST_SUITE_P(Messages, SwallowedMessage,
                         testing::Values(0x6, 0x10, 0x101, 0x105, 0x201, 0x202, 0x204, 0x205));

class DefaultMessage : public WindowMessage, public testing::WithParamInterface<UINT> {};

TEST_P(DefaultMessage, GoesToTheSystem) {
    CallRecorder calls;
    calls.name(window(), "window");
    calls.replace<hook::DefWindowProcA>([](HWND, UINT, WPARAM, LPARAM) { return 77; });
    EXPECT_EQ(Screen_WindowProc(window(), GetParam(), 3, 4), 77);
    EXPECT_TRUE(calls.match("DefWindowProcA(window, " + std::to_string(GetParam()) + ", 3, 4)"));
}

// Destruction, the end of the program, system commands, key presses and double clicks among them.
INSTANTIATE_TEST_SUITE_P(Messages, DefaultMessage,
                         testing::Values(0x2, 0x5, 0x7, 0xE, 0x12, 0x13, 0x15, 0x20, 0x100, 0x102,
                                         0x104, 0x106, 0x112, 0x200, 0x203, 0x206, 0x207, 0x400));

} // namespace
