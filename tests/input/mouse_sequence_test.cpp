// What the mouse asks of DirectInput, call by call.

#include "input/mouse.h"

#include "display/screen_device.h"
#include "input/mouse_state.h"
#include "tests/support/device_fixture.h"

namespace {

class MouseSequence : public InputTest {
protected:
    MouseSequence() {
        Screen.windowed = 0;
        Screen.screenWidth = 1024;
        Screen.screenHeight = 768;
        Screen.active = 1;
        calls.name(Mouse.eventBuffer, "events");
    }

    void setUp() {
        Mouse_SubsystemInit();
        calls.take();
    }

    // Nothing turns it on in this system; the calls are made all the same.
    void makeWindowed() {
        Screen.windowed = 1;
        devices.desktop->foreground = Screen.window;
        calls.replace<hook::GetWindowRect>([](HWND, RECT* place) {
            *place = {100, 50, 1124, 818};
            return TRUE;
        });
        calls.replace<hook::ClipCursor>([](const RECT*) { return TRUE; });
        calls.replace<hook::SetCursorPos>([](int, int) { return TRUE; });
    }
};

TEST_F(MouseSequence, OfASetUp) {
    Mouse_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DINPUT.DLL") -> library1
        GetProcAddress(library1, "DirectInputCreateEx") -> routine
        DirectInputCreateEx(program, 0x0700, IID_IDirectInput7A, &input1, null) -> 0
        IDirectInput7A::CreateDeviceEx(input1, GUID_SysMouse, IID_IDirectInputDevice7A, &device1, null) -> 0
        IDirectInputDevice7A::SetDataFormat(device1, {32, 24, flags 2, bytes 16, objects 7}) -> 0
    )"));
}

TEST_F(MouseSequence, OfTheFirstPollAndTheNext) {
    setUp();
    Mouse_Poll();
    Mouse_Poll();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::SetCooperativeLevel(device1, screen, 5) -> 0
        IDirectInputDevice7A::SetProperty(device1, *, {20, 16, object 0, how 0, value 24}) -> 0
        IDirectInputDevice7A::Acquire(device1) -> 0
        IDirectInputDevice7A::GetProperty(device1, *, *) -> 0
        IDirectInputDevice7A::GetDeviceData(device1, 16, events, &0, 0) -> 0
        IDirectInputDevice7A::GetDeviceData(device1, 16, events, &0, 0) -> 0
    )"));
}

TEST_F(MouseSequence, OfTheQuestionForTheWheelsStep) {
    setUp();
    const GUID* asked = nullptr;
    DIPROPDWORD question{};
    calls.replace<hook::IDirectInputDevice7A_GetProperty>(
        [&](IDirectInputDevice7A*, const GUID& property, DIPROPHEADER* header) {
            asked = &property;
            question = *reinterpret_cast<DIPROPDWORD*>(header);
            reinterpret_cast<DIPROPDWORD*>(header)->dwData = 40;
            return DI_OK;
        });
    Mouse_Poll();
    EXPECT_EQ(asked, &DIPROP_GRANULARITY);
    EXPECT_EQ(question.diph.dwSize, sizeof question);
    EXPECT_EQ(question.diph.dwHeaderSize, sizeof question.diph);
    EXPECT_EQ(question.diph.dwObj, static_cast<DWORD>(DIMOFS_Z));
    EXPECT_EQ(question.diph.dwHow, static_cast<DWORD>(DIPH_BYOFFSET));
    EXPECT_EQ(Mouse.wheelStep, 40);
}

TEST_F(MouseSequence, OfTheBuffersSize) {
    setUp();
    const GUID* set = nullptr;
    calls.replace<hook::IDirectInputDevice7A_SetProperty>(
        [&](IDirectInputDevice7A*, const GUID& property, const DIPROPHEADER*) {
            set = &property;
            return DI_OK;
        });
    Mouse_Poll();
    EXPECT_EQ(set, &DIPROP_BUFFERSIZE);
}

TEST_F(MouseSequence, AsksForAWholeBufferAtEveryRead) {
    setUp();
    std::vector<DWORD> asked;
    calls.replace<hook::IDirectInputDevice7A_GetDeviceData>(
        [&](IDirectInputDevice7A*, DWORD, DIDEVICEOBJECTDATA*, DWORD* count, DWORD) {
            asked.push_back(*count);
            *count = 0;
            return DI_OK;
        });
    Mouse_Poll();
    Mouse_Poll();
    EXPECT_EQ(asked, (std::vector<DWORD>{24, 24}));
}

TEST_F(MouseSequence, OfARefusedCooperativeLevel) {
    setUp();
    calls.fail("IDirectInputDevice7A::SetCooperativeLevel", 1, E_HANDLE);
    Mouse_Poll();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::SetCooperativeLevel(device1, screen, 5) -> 0x80070006
        IDirectInputDevice7A::GetDeviceData(device1, 16, events, *, 0) -> 0x8007000C
        IDirectInputDevice7A::Acquire(device1) -> 0
    )"));
}

TEST_F(MouseSequence, OfARefusedBuffer) {
    setUp();
    calls.fail("IDirectInputDevice7A::SetProperty", 1, DIERR_UNSUPPORTED);
    Mouse_Poll();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::SetCooperativeLevel(device1, screen, 5) -> 0
        IDirectInputDevice7A::SetProperty(device1, *, {20, 16, object 0, how 0, value 24})
        IDirectInputDevice7A::GetDeviceData(device1, 16, events, *, 0) -> 0x8007000C
        IDirectInputDevice7A::Acquire(device1) -> 0
    )"));
}

TEST_F(MouseSequence, OfAPollInTheBackground) {
    setUp();
    Screen.active = 0;
    Mouse_Poll();
    EXPECT_TRUE(calls.match("IDirectInputDevice7A::Unacquire(device1)"));
}

TEST_F(MouseSequence, OfAPollWhileTheMouseIsReleased) {
    setUp();
    Mouse_SetReleased(1);
    Mouse_Poll();
    Mouse_SetReleased(0);
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::Unacquire(device1)
        IDirectInputDevice7A::Unacquire(device1)
    )"));
}

TEST_F(MouseSequence, OfAPollAndLettingGoOnAWindowedScreen) {
    setUp();
    makeWindowed();
    devices.input.move(3, 4);
    Mouse_Poll();
    Mouse_Unhook();
    EXPECT_TRUE(calls.match(R"(
        GetForegroundWindow() -> screen
        GetWindowRect(screen, &{100, 50, 1124, 818}) -> 1
        ClipCursor({100, 50, 1124, 818}) -> 1
        ShowCursor(0) -> -1
        IDirectInputDevice7A::SetCooperativeLevel(device1, screen, 6) -> 0
        IDirectInputDevice7A::SetProperty(device1, *, {20, 16, object 0, how 0, value 24}) -> 0
        IDirectInputDevice7A::Acquire(device1) -> 0
        IDirectInputDevice7A::GetProperty(device1, *, *) -> 0
        IDirectInputDevice7A::GetDeviceData(device1, 16, events, &2, 0) -> 0
        SetCursorPos(103, 54) -> 1
        ClipCursor(null) -> 1
        ShowCursor(1) -> 0
        IDirectInputDevice7A::Unacquire(device1) -> 0
    )"));
}

TEST_F(MouseSequence, OfAPollOnAWindowedScreenInTheBackground) {
    setUp();
    makeWindowed();
    devices.desktop->foreground = nullptr;
    Mouse_Poll();
    EXPECT_TRUE(calls.match(R"(
        GetForegroundWindow() -> null
        ClipCursor(null)
        IDirectInputDevice7A::Unacquire(device1)
    )"));
}

TEST_F(MouseSequence, OfAPollOnAWindowedScreenWhileTheMouseIsReleased) {
    setUp();
    makeWindowed();
    Mouse.releasedByProgram = 1;
    Mouse_Poll();
    EXPECT_TRUE(calls.match(R"(
        ClipCursor(null)
        IDirectInputDevice7A::Unacquire(device1)
    )"));
}

class IgnoredByMouse : public MouseSequence, public testing::WithParamInterface<const char*> {};

TEST_P(IgnoredByMouse, GoesOnOnAWindowedScreenAsIfTheCallHadSucceeded) {
    setUp();
    makeWindowed();
    devices.input.move(3, 4);
    calls.fail(GetParam(), 1, 0);
    Mouse_Poll();
    Mouse_Unhook();
    EXPECT_TRUE(calls.match(R"(
        GetForegroundWindow()
        GetWindowRect(screen, *)
        ClipCursor(*)
        ShowCursor(0)
        IDirectInputDevice7A::SetCooperativeLevel(*)
        IDirectInputDevice7A::SetProperty(*)
        IDirectInputDevice7A::Acquire(*)
        IDirectInputDevice7A::GetProperty(*)
        IDirectInputDevice7A::GetDeviceData(*)
        SetCursorPos(*)
        ClipCursor(null)
        ShowCursor(1)
        IDirectInputDevice7A::Unacquire(*)
    )"));
}

INSTANTIATE_TEST_SUITE_P(Calls, IgnoredByMouse,
                         testing::Values("GetWindowRect", "ClipCursor", "ShowCursor",
                                         "SetCursorPos"));

TEST_F(MouseSequence, OfTheEndDoesNotUnacquire) {
    setUp();
    Mouse_Poll();
    calls.take();
    Mouse_SubsystemEnd();
    EXPECT_TRUE(calls.match(R"(
        ClipCursor(null)
        IDirectInputDevice7A::Release(device1) -> 0
        IDirectInput7A::Release(input1) -> 0
        FreeLibrary(library1) -> 1
    )"));
}

TEST_F(MouseSequence, OfTheEndAfterAFailedSetUp) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DIERR_DEVICENOTREG);
    setUp();
    Mouse_SubsystemEnd();
    EXPECT_TRUE(calls.match(R"(
        ClipCursor(null)
        IDirectInput7A::Release(input1) -> 0
        FreeLibrary(library1) -> 1
    )"));
}

} // namespace
