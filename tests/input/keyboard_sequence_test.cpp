// What the keyboard asks of DirectInput, call by call.

#include "display/screen_device.h"
#include "input/keyboard.h"
#include "input/keyboard_state.h"
#include "input/mouse.h"

#include "tests/support/child_run.h"
#include "tests/support/device_fixture.h"

namespace {

using KeyboardSequence = InputTest;

TEST_F(KeyboardSequence, OfASetUp) {
    Keyboard_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DINPUT.DLL") -> library1
        GetProcAddress(library1, "DirectInputCreateEx") -> routine
        DirectInputCreateEx(program, 0x0700, IID_IDirectInput7A, &input1, null) -> 0
        HeapAlloc(general, 0, 6144) -> block1
        IDirectInput7A::CreateDeviceEx(input1, GUID_SysKeyboard, IID_IDirectInputDevice7A, &device1, null) -> 0
        IDirectInputDevice7A::SetDataFormat(device1, {32, 24, flags 2, bytes 256, objects 256}) -> 0
    )"));
}

TEST_F(KeyboardSequence, OfASecondSetUpIsEmpty) {
    Keyboard_SubsystemInit();
    calls.take();
    Keyboard_SubsystemInit();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(KeyboardSequence, OfTheFirstPollAndTheNext) {
    Keyboard_SubsystemInit();
    calls.name(Keyboard.keyState, "snapshot");
    calls.take();
    Keyboard_Poll();
    Keyboard_Poll();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::SetCooperativeLevel(device1, screen, 0x16) -> 0
        IDirectInputDevice7A::Acquire(device1) -> 0
        IDirectInputDevice7A::GetDeviceState(device1, 256, snapshot) -> 0
        IDirectInputDevice7A::GetDeviceState(device1, 256, snapshot) -> 0
    )"));
}

TEST_F(KeyboardSequence, OfALostDeviceThatIsBoundToANewWindow) {
    Keyboard_SubsystemInit();
    calls.name(Keyboard.keyState, "snapshot");
    Keyboard_Poll();
    calls.take();
    devices.input.lose();
    Keyboard_Poll();
    Screen.window = reinterpret_cast<HWND>(0x20DEF);
    calls.name(Screen.window, "next");
    Keyboard_Poll();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::GetDeviceState(device1, 256, snapshot) -> 0x8007001E
        IDirectInputDevice7A::SetCooperativeLevel(device1, next, 0x16) -> 0
        IDirectInputDevice7A::Acquire(device1) -> 0
        IDirectInputDevice7A::GetDeviceState(device1, 256, snapshot) -> 0
    )"));
}

TEST_F(KeyboardSequence, OfQueriesIsEmpty) {
    Keyboard_SubsystemInit();
    Keyboard_Poll();
    calls.take();
    Keyboard_IsReleased(DIK_UP);
    Keyboard_IsReleased(Keyboard_AnyKey);
    EXPECT_TRUE(calls.match(""));
}

// A failed allocation is not looked for: the table is written where there is no memory.
TEST_F(KeyboardSequence, EndsInAFaultWithoutMemoryForTheFormat) {
    const ChildReport child = runInChild([this] {
        calls.fail("HeapAlloc", 1, 0);
        calls.echo();
        Keyboard_SubsystemInit();
    });
    EXPECT_TRUE(child.diedOfMemoryFaultAfter("HeapAlloc(general, 0, 6144)"));
}

TEST_F(KeyboardSequence, OfTheEnd) {
    Keyboard_SubsystemInit();
    Keyboard_Poll();
    calls.take();
    Keyboard_SubsystemEnd();
    EXPECT_TRUE(calls.match(R"(
        IDirectInputDevice7A::Unacquire(device1) -> 0
        IDirectInputDevice7A::Release(device1) -> 0
        IDirectInput7A::Release(input1) -> 0
        FreeLibrary(library1) -> 1
    )"));
}

TEST_F(KeyboardSequence, OfTheEndAfterASetUpWithoutADevice) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DIERR_DEVICENOTREG);
    Keyboard_SubsystemInit();
    calls.take();
    Keyboard_SubsystemEnd();
    EXPECT_TRUE(calls.match(R"(
        IDirectInput7A::Release(input1) -> 0
        FreeLibrary(library1) -> 1
    )"));
}

TEST_F(KeyboardSequence, OfTheEndAfterASetUpWithoutDirectInputIsEmpty) {
    calls.fail("LoadLibraryA", 1, 0);
    Keyboard_SubsystemInit();
    calls.take();
    Keyboard_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
}

// Three times acquired and twice released: the object lives until the process ends.
TEST_F(KeyboardSequence, OfTheWholeProgramLeavesDirectInputStanding) {
    Keyboard_SubsystemInit();
    Keyboard_SubsystemInit();
    Mouse_SubsystemInit();
    calls.take();
    Mouse_SubsystemEnd();
    Keyboard_SubsystemEnd();
    EXPECT_TRUE(calls.match(R"(
        ClipCursor(null)
        IDirectInputDevice7A::Release(device2) -> 0
        IDirectInputDevice7A::Unacquire(device1)
        IDirectInputDevice7A::Release(device1) -> 0
    )"));
    EXPECT_EQ(devices.liveObjects(), 1);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 1);
}

} // namespace
