#include "input/mouse.h"

#include "display/screen_device.h"
#include "display/window.h"
#include "display/window_procedure.h"
#include "input/mouse_state.h"
#include "tests/support/device_fixture.h"

#include <cstddef>

static_assert(offsetof(MouseDevice, started) == 0);
static_assert(offsetof(MouseDevice, device) == 8);
static_assert(offsetof(MouseDevice, releasedByProgram) == 16);
static_assert(offsetof(MouseDevice, cursorShown) == 20);
static_assert(offsetof(MouseDevice, acquireState) == 24);
static_assert(offsetof(MouseDevice, mouseX) == 28);
static_assert(offsetof(MouseDevice, mouseY) == 32);
static_assert(offsetof(MouseDevice, deltaX) == 36);
static_assert(offsetof(MouseDevice, deltaY) == 40);
static_assert(offsetof(MouseDevice, deltaWheel) == 44);
static_assert(offsetof(MouseDevice, buttons) == 48);
static_assert(offsetof(MouseDevice, wheelStep) == 60);
static_assert(offsetof(MouseDevice, lastResult) == 64);
static_assert(offsetof(MouseDevice, eventBuffer) == 68);
static_assert(sizeof(MouseDevice::eventBuffer) == 24 * 16);

namespace {

// --- Set-up and tear-down ---

using MouseSetUp = InputTest;

TEST_F(MouseSetUp, MakesTheDeviceAndNothingMore) {
    Mouse.releasedByProgram = 1;
    EXPECT_EQ(Mouse_SubsystemInit(), 1);
    EXPECT_EQ(Mouse.started, 1);
    EXPECT_NE(Mouse.device, nullptr);
    EXPECT_EQ(Mouse.releasedByProgram, 0);
    EXPECT_EQ(Mouse.cursorShown, 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Made);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 0);
    EXPECT_EQ(calls.uses("ClipCursor"), 0);
    EXPECT_EQ(calls.uses("ShowCursor"), 0);
}

TEST_F(MouseSetUp, UsesThePublishedLayout) {
    DIDATAFORMAT format{};
    calls.replace<hook::IDirectInputDevice7A_SetDataFormat>(
        [&format](IDirectInputDevice7A*, const DIDATAFORMAT* given) {
            format = *given;
            return DI_OK;
        });
    ASSERT_EQ(Mouse_SubsystemInit(), 1);
    EXPECT_EQ(format.dwSize, sizeof(DIDATAFORMAT));
    EXPECT_EQ(format.dwObjSize, sizeof(DIOBJECTDATAFORMAT));
    EXPECT_EQ(format.dwFlags, static_cast<DWORD>(DIDF_RELAXIS));
    EXPECT_EQ(format.dwDataSize, 16u);
    ASSERT_EQ(format.dwNumObjs, 7u);
    const DWORD axis = 0x00FFFF03;
    const DWORD button = 0x00FFFF0C;
    const DWORD optional = 0x80000000;
    const DIOBJECTDATAFORMAT layout[] = {{&GUID_XAxis, 0, axis, 0},
                                         {&GUID_YAxis, 4, axis, 0},
                                         {&GUID_ZAxis, 8, optional | axis, 0},
                                         {nullptr, 12, button, 0},
                                         {nullptr, 13, button, 0},
                                         {nullptr, 14, optional | button, 0},
                                         {nullptr, 15, optional | button, 0}};
    for (int number = 0; number < 7; ++number) {
        const DIOBJECTDATAFORMAT& object = format.rgodf[number];
        const DIOBJECTDATAFORMAT& wanted = layout[number];
        ASSERT_EQ(object.pguid != nullptr, wanted.pguid != nullptr) << number;
        EXPECT_TRUE(!wanted.pguid || IsEqualGUID(*object.pguid, *wanted.pguid)) << number;
        EXPECT_EQ(object.dwOfs, wanted.dwOfs) << number;
        EXPECT_EQ(object.dwType, wanted.dwType) << number;
        EXPECT_EQ(object.dwFlags, 0u) << number;
    }
}

TEST_F(MouseSetUp, FailsWithoutDirectInput) {
    calls.fail("LoadLibraryA", 1, 0);
    EXPECT_EQ(Mouse_SubsystemInit(), 0);
    EXPECT_EQ(Mouse.started, 1);
}

TEST_F(MouseSetUp, FailsWithoutADevice) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DIERR_DEVICENOTREG);
    EXPECT_EQ(Mouse_SubsystemInit(), 0);
    EXPECT_EQ(Mouse.started, 1);
    EXPECT_EQ(Mouse.device, nullptr);
}

TEST_F(MouseSetUp, FailsWithANullDevice) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DI_OK);
    EXPECT_EQ(Mouse_SubsystemInit(), 0);
}

TEST_F(MouseSetUp, FailsWhereTheFormatIsRefused) {
    calls.fail("IDirectInputDevice7A::SetDataFormat", 1, DIERR_INVALIDPARAM);
    EXPECT_EQ(Mouse_SubsystemInit(), 0);
}

TEST_F(MouseSetUp, TakesOnlyZeroForAnAcceptedFormat) {
    calls.fail("IDirectInputDevice7A::SetDataFormat", 1, S_FALSE);
    EXPECT_EQ(Mouse_SubsystemInit(), 0);
    EXPECT_EQ(Mouse.acquireState, 0);
}

using MouseTearDown = InputTest;

TEST_F(MouseTearDown, DoesNothingWithoutASetUp) {
    DirectInput_Acquire();
    calls.take();
    Mouse_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0) << "the count is as it was";
}

TEST_F(MouseTearDown, GivesTheDeviceBack) {
    Mouse_SubsystemInit();
    Mouse_SubsystemEnd();
    EXPECT_EQ(Mouse.device, nullptr);
    EXPECT_EQ(devices.liveObjects(), 0);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 0);
}

TEST_F(MouseTearDown, FollowsEveryFailedSetUp) {
    for (const char* step : {"LoadLibraryA", "IDirectInput7A::CreateDeviceEx",
                             "IDirectInputDevice7A::SetDataFormat"}) {
        calls.failAlways(step, step[0] == 'L' ? 0 : DIERR_GENERIC);
        EXPECT_EQ(Mouse_SubsystemInit(), 0) << step;
        calls.failNothing();
        Mouse_SubsystemEnd();
        EXPECT_EQ(devices.liveObjects(), 0) << step;
        EXPECT_EQ(devices.loads("DINPUT.DLL"), 0) << step;
    }
}

// --- Polling ---

class MousePoll : public InputTest {
protected:
    MousePoll() {
        Mouse_SubsystemInit();
        Screen.screenWidth = 1024;
        Screen.screenHeight = 768;
        Screen.active = 1;
        Mouse.mouseX = 500;
        Mouse.mouseY = 300;
    }
};

TEST_F(MousePoll, WithoutEventsGivesOneAndLeavesThePosition) {
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.mouseX, 500);
    EXPECT_EQ(Mouse.mouseY, 300);
    EXPECT_EQ(Mouse.lastResult, DI_OK);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
}

TEST_F(MousePoll, AddsUpTheMotionOfAllEvents) {
    devices.input.move(7, -3);
    devices.input.move(4, -2);
    devices.input.wheel(120);
    devices.input.wheel(-360);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.deltaX, 11);
    EXPECT_EQ(Mouse.deltaY, -5);
    EXPECT_EQ(Mouse.deltaWheel, -240);
    EXPECT_EQ(Mouse.mouseX, 511);
    EXPECT_EQ(Mouse.mouseY, 295);
}

TEST_F(MousePoll, DoesNotCarryMotionIntoTheNextPoll) {
    devices.input.move(7, -3);
    devices.input.wheel(120);
    Mouse_Poll();
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.deltaX, 0);
    EXPECT_EQ(Mouse.deltaY, 0);
    EXPECT_EQ(Mouse.deltaWheel, 0);
    EXPECT_EQ(Mouse.mouseX, 507);
    EXPECT_EQ(Mouse.mouseY, 297);
}

TEST_F(MousePoll, PutsThePositionAtMinusOneWithoutASize) {
    Screen.screenWidth = 0;
    Screen.screenHeight = 0;
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.mouseX, -1);
    EXPECT_EQ(Mouse.mouseY, -1);
}

TEST_F(MousePoll, MovesNothingOnAFailedReadThatFilledTheBuffer) {
    for (const HRESULT result :
         {HRESULT{DI_BUFFEROVERFLOW}, HRESULT{DIERR_INPUTLOST}, HRESULT{DIERR_NOTACQUIRED}}) {
        calls.replace<hook::IDirectInputDevice7A_GetDeviceData>(
            [result](IDirectInputDevice7A*, DWORD, DIDEVICEOBJECTDATA* events, DWORD* count,
                     DWORD) {
                events[0].dwOfs = DIMOFS_X;
                events[0].dwData = 50;
                *count = 1;
                return result;
            });
        EXPECT_EQ(Mouse_Poll(), 0) << result;
        EXPECT_EQ(Mouse.deltaX, 0) << result;
        EXPECT_EQ(Mouse.mouseX, 500) << result;
    }
}

TEST_F(MousePoll, KeepsThePositionWithinTheRightAndLowerEdge) {
    Mouse.mouseX = 1020;
    Mouse.mouseY = 765;
    devices.input.move(3, 2);
    Mouse_Poll();
    EXPECT_EQ(Mouse.mouseX, 1023);
    EXPECT_EQ(Mouse.mouseY, 767);
    devices.input.move(1, 1);
    Mouse_Poll();
    EXPECT_EQ(Mouse.mouseX, 1023);
    EXPECT_EQ(Mouse.mouseY, 767);
    EXPECT_EQ(Mouse.deltaX, 1) << "the motion is told all the same";
    devices.input.move(5000, 5000);
    Mouse_Poll();
    EXPECT_EQ(Mouse.mouseX, 1023);
    EXPECT_EQ(Mouse.mouseY, 767);
}

TEST_F(MousePoll, KeepsThePositionWithinTheLeftAndUpperEdge) {
    Mouse.mouseX = 2;
    Mouse.mouseY = 1;
    devices.input.move(-2, -1);
    Mouse_Poll();
    EXPECT_EQ(Mouse.mouseX, 0);
    EXPECT_EQ(Mouse.mouseY, 0);
    devices.input.move(-1, -1);
    Mouse_Poll();
    EXPECT_EQ(Mouse.mouseX, 0);
    EXPECT_EQ(Mouse.mouseY, 0);
}

TEST_F(MousePoll, TakesBit7OfAButtonsDataForDown) {
    devices.input.event(DIMOFS_BUTTON0, 0x80);
    devices.input.event(DIMOFS_BUTTON1, 0x7F);
    devices.input.event(DIMOFS_BUTTON2, 0xFF);
    Mouse_Poll();
    EXPECT_EQ(Mouse.buttons[0], 1);
    EXPECT_EQ(Mouse.buttons[1], 0);
    EXPECT_EQ(Mouse.buttons[2], 1);
    devices.input.event(DIMOFS_BUTTON1, 0x80);
    devices.input.event(DIMOFS_BUTTON2, 0x100);
    Mouse_Poll();
    EXPECT_EQ(Mouse.buttons[0], 1) << "it has not been let go";
    EXPECT_EQ(Mouse.buttons[1], 1);
    EXPECT_EQ(Mouse.buttons[2], 0);
}

TEST_F(MousePoll, EndsWithTheLastStateOfAButton) {
    devices.input.button(0, true);
    devices.input.button(0, false);
    devices.input.button(1, false);
    devices.input.button(1, true);
    Mouse_Poll();
    EXPECT_EQ(Mouse.buttons[0], 0);
    EXPECT_EQ(Mouse.buttons[1], 1);
}

TEST_F(MousePoll, PassesOverOtherOffsets) {
    devices.input.event(DIMOFS_BUTTON3, 0x80);
    devices.input.event(16, 0x80);
    devices.input.event(1, 0x80);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.deltaX, 0);
    EXPECT_EQ(Mouse.deltaY, 0);
    EXPECT_EQ(Mouse.deltaWheel, 0);
    for (const int32_t button : Mouse.buttons)
        EXPECT_EQ(button, 0);
}

TEST_F(MousePoll, ReadsUpTo24Events) {
    for (int event = 0; event < 24; ++event)
        devices.input.event(DIMOFS_X, 1);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.deltaX, 24);
    for (int event = 0; event < 25; ++event)
        devices.input.event(DIMOFS_X, 1);
    EXPECT_EQ(Mouse_Poll(), 0) << "one more than the buffer holds";
}

TEST_F(MousePoll, LooksAtNoMoreEventsThanWereDelivered) {
    for (int event = 0; event < 5; ++event)
        devices.input.event(DIMOFS_X, 1);
    Mouse_Poll();
    devices.input.event(DIMOFS_Y, 1);
    Mouse_Poll();
    EXPECT_EQ(Mouse.deltaX, 0) << "older events still lie behind the new one";
    EXPECT_EQ(Mouse.deltaY, 1);
}

// --- Reads that fail ---

TEST_F(MousePoll, ForgetsTwoButtonsWhenEventsWereLost) {
    for (int button = 0; button < 3; ++button)
        devices.input.button(button, true);
    Mouse_Poll();
    devices.input.move(10, 10);
    devices.input.overflowMouse();
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.lastResult, DI_BUFFEROVERFLOW);
    EXPECT_EQ(Mouse.buttons[0], 0);
    EXPECT_EQ(Mouse.buttons[1], 0);
    EXPECT_EQ(Mouse.buttons[2], 1) << "the third one is left alone";
    EXPECT_EQ(Mouse.mouseX, 500);
    EXPECT_EQ(Mouse.mouseY, 300);
    EXPECT_EQ(Mouse.deltaX, 0);
}

TEST_F(MousePoll, AcquiresAgainWhenTheDeviceWasLost) {
    Mouse_Poll();
    devices.input.lose();
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.lastResult, DIERR_INPUTLOST);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 2);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 1);
}

TEST_F(MousePoll, AcquiresAgainWhenTheDeviceIsNotAcquired) {
    Mouse_Poll();
    Mouse_UnacquireIfMade();
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.lastResult, DIERR_NOTACQUIRED);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 2);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 1);
}

TEST_F(MousePoll, DoesNotAcquireAgainOnceTheScreenHasGoneInactive) {
    for (const HRESULT result : {DIERR_INPUTLOST, DIERR_NOTACQUIRED}) {
        Screen.active = 1;
        calls.fail("IDirectInputDevice7A::GetDeviceData", 1, result);
        calls.after("IDirectInputDevice7A::GetDeviceData", 1, [] { Screen.active = 0; });
        const int acquisitions = calls.uses("IDirectInputDevice7A::Acquire");
        const bool isFirst = Mouse.acquireState == MouseState_Made;
        EXPECT_EQ(Mouse_Poll(), 0);
        EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), acquisitions + isFirst);
    }
}

TEST_F(MousePoll, GivesZeroAndDoesNothingOnAnyOtherResult) {
    devices.input.button(0, true);
    Mouse_Poll();
    calls.fail("IDirectInputDevice7A::GetDeviceData", 1, DIERR_NOTBUFFERED);
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.lastResult, DIERR_NOTBUFFERED);
    EXPECT_EQ(Mouse.buttons[0], 1);
    EXPECT_EQ(Mouse.mouseX, 500);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 1);
}

// --- Acquiring ---

TEST_F(MousePoll, AcquiresOnlyAfterBothSettings) {
    calls.fail("IDirectInputDevice7A::SetCooperativeLevel", 1, S_FALSE);
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetProperty"), 0);
    EXPECT_EQ(Mouse.acquireState, MouseState_Made);
    calls.fail("IDirectInputDevice7A::SetProperty", 1, S_FALSE);
    // The read that follows says "not acquired" and so acquires on its own.
    calls.fail("IDirectInputDevice7A::GetDeviceData", 1, E_FAIL);
    const int acquisitions = calls.uses("IDirectInputDevice7A::Acquire");
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), acquisitions);
    EXPECT_EQ(Mouse.acquireState, MouseState_Made);
}

TEST_F(MousePoll, TakesOnlyZeroForAnAcquisition) {
    calls.fail("IDirectInputDevice7A::Acquire", 1, S_FALSE);
    Mouse_Poll();
    EXPECT_EQ(Mouse.acquireState, MouseState_Made);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::GetProperty"), 0);
}

TEST_F(MousePoll, ReadsTheWheelsStepOnceAcquired) {
    devices.input.granularity = 30;
    Mouse_Poll();
    EXPECT_EQ(Mouse.wheelStep, 30);
    Mouse_Poll();
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::GetProperty"), 1);
}

TEST_F(MousePoll, TakesOneForTheWheelsStepWhereItIsNotKnown) {
    devices.input.granularity = 0;
    Mouse_Poll();
    EXPECT_EQ(Mouse.wheelStep, 1);
}

// --- Letting go ---

TEST_F(MousePoll, LetsGoWhileTheScreenIsInactive) {
    Mouse_Poll();
    devices.input.move(5, 5);
    Mouse.deltaX = 3;
    Mouse.deltaY = 3;
    Mouse.deltaWheel = 3;
    Screen.active = 0;
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.deltaX, 0);
    EXPECT_EQ(Mouse.deltaY, 0);
    EXPECT_EQ(Mouse.deltaWheel, 0);
    EXPECT_EQ(Mouse.mouseX, 500);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Unacquire"), 1);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::GetDeviceData"), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
}

TEST_F(MousePoll, GetsBackByWayOfAReadThatFails) {
    Mouse_Poll();
    Screen.active = 0;
    Mouse_Poll();
    Screen.active = 1;
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.lastResult, DIERR_NOTACQUIRED);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 1);
}

TEST_F(MousePoll, LetsGoWhileTheProgramHasReleasedTheMouse) {
    Mouse_Poll();
    EXPECT_EQ(Mouse_SetReleased(1), DI_OK) << "what Unacquire gave";
    EXPECT_EQ(Mouse.releasedByProgram, 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Made);
    Mouse.deltaX = 3;
    EXPECT_EQ(Mouse_Poll(), 0);
    EXPECT_EQ(Mouse.deltaX, 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Unacquire"), 2);
}

TEST_F(MousePoll, SetsTheMouseUpAsAWholeOnceItIsTakenBack) {
    Mouse_Poll();
    Mouse_SetReleased(1);
    EXPECT_EQ(Mouse_SetReleased(0), 1);
    EXPECT_EQ(Mouse.releasedByProgram, 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Unacquire"), 1);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 2);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetProperty"), 2);
}

TEST_F(MousePoll, TakesEveryValueButOneForTakingBack) {
    for (const int32_t value : {0, 2, -1}) {
        Mouse.releasedByProgram = 1;
        Mouse.acquireState = MouseState_Acquired;
        EXPECT_EQ(Mouse_SetReleased(value), 1) << value;
        EXPECT_EQ(Mouse.releasedByProgram, 0) << value;
        EXPECT_EQ(Mouse.acquireState, MouseState_Acquired) << value;
    }
}

TEST_F(MousePoll, GivesWhatUnacquireGave) {
    calls.failAlways("IDirectInputDevice7A::Unacquire", DIERR_NOTINITIALIZED);
    EXPECT_EQ(Mouse_Unhook(), DIERR_NOTINITIALIZED);
    EXPECT_EQ(Mouse_SetReleased(1), DIERR_NOTINITIALIZED);
}

TEST_F(MousePoll, LeavesTheSystemsCursorAloneOnAFullScreen) {
    Mouse_Poll();
    Mouse_Unhook();
    for (const char* call : {"GetWindowRect", "ClipCursor", "ShowCursor", "SetCursorPos"})
        EXPECT_EQ(calls.uses(call), 0) << call;
    EXPECT_EQ(Mouse.cursorShown, 1);
}

// --- A windowed screen, which nothing turns on ---

class WindowedMouse : public MousePoll {
protected:
    WindowedMouse() {
        Screen.windowed = 1;
        devices.desktop->foreground = Screen.window;
        calls.replace<hook::GetWindowRect>([](HWND, RECT* place) {
            *place = {100, 50, 1124, 818};
            return TRUE;
        });
        calls.replace<hook::ClipCursor>([this](const RECT* place) {
            isConfined = place != nullptr;
            return TRUE;
        });
        calls.replace<hook::SetCursorPos>([this](int x, int y) {
            cursor = {x, y};
            return TRUE;
        });
    }

    bool isConfined = false;
    POINT cursor{};
};

TEST_F(WindowedMouse, ConfinesAndHidesTheCursorAndPutsItWhereTheMouseIs) {
    devices.input.move(1, 2);
    EXPECT_EQ(Mouse_Poll(), 1);
    EXPECT_TRUE(isConfined);
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
    EXPECT_EQ(Mouse.cursorShown, 0);
    EXPECT_EQ(cursor.x, 100 + 501);
    EXPECT_EQ(cursor.y, 50 + 302);
}

TEST_F(WindowedMouse, HidesTheCursorOnce) {
    Mouse_Poll();
    Mouse_Poll();
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(WindowedMouse, FreesAndShowsTheCursorOnLettingGo) {
    Mouse_Poll();
    EXPECT_EQ(Mouse_Unhook(), DI_OK);
    EXPECT_FALSE(isConfined);
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_EQ(Mouse.cursorShown, 1);
    Mouse_Unhook();
    EXPECT_EQ(devices.desktop->cursorCount(), 0) << "it is shown once";
}

TEST_F(WindowedMouse, LeavesTheCursorWhereItIsWhenTheReadFails) {
    Mouse_Poll();
    devices.input.overflowMouse();
    cursor = {-1, -1};
    Mouse_Poll();
    EXPECT_EQ(cursor.x, -1);
}

// --- The window procedure's part ---

TEST_F(MousePoll, IsLetGoWhenTheWindowGoesInactive) {
    Mouse_Poll();
    Screen_WindowProc(Screen.window, WM_ACTIVATE, WA_INACTIVE, 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Unacquire"), 1);
    EXPECT_EQ(Mouse.acquireState, MouseState_Acquired);
}

TEST_F(MouseSetUp, IsNotNeededWhenTheWindowGoesInactive) {
    Mouse_UnacquireIfMade();
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Unacquire"), 0);
}

} // namespace
