#include "input/keyboard.h"

#include "display/screen_device.h"
#include "input/keyboard_state.h"
#include "tests/support/device_fixture.h"

#include <cstddef>

static_assert(offsetof(KeyboardDevice, started) == 0);
static_assert(offsetof(KeyboardDevice, state) == 4);
static_assert(offsetof(KeyboardDevice, device) == 8);
static_assert(offsetof(KeyboardDevice, keyState) == 16);
static_assert(offsetof(KeyboardDevice, wasDown) == 272);
static_assert(offsetof(KeyboardDevice, useKeyMap) == 528);
static_assert(offsetof(KeyboardDevice, keyMap) == 532);
static_assert(offsetof(KeyboardDevice, formatTable) == 792);

namespace {

// --- Queries, on snapshots that the test writes itself ---

class KeyboardQuery : public testing::Test {
protected:
    KeyboardQuery() { Keyboard.state = KeyboardState_Acquired; }

    static void down(int code) { Keyboard.keyState[code] = 0x80; }
    static void up(int code) { Keyboard.keyState[code] = 0; }
    // Down at one query, up from then on: the next query of the key has its release to report.
    static void leavePending(int code) {
        down(code);
        Keyboard_IsReleased(code);
        up(code);
    }
};

TEST_F(KeyboardQuery, GivesZeroForAKeyThatWasNeverDown) {
    EXPECT_EQ(Keyboard_IsReleased(DIK_RETURN), 0);
    EXPECT_EQ(Keyboard_IsReleased(DIK_RETURN), 0);
}

TEST_F(KeyboardQuery, CountsAHeldKeyOnceAndOnItsRelease) {
    down(DIK_UP);
    for (int frame = 0; frame < 50; ++frame)
        EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
    up(DIK_UP);
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 1);
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
}

TEST_F(KeyboardQuery, CountsEveryPress) {
    for (int press = 0; press < 3; ++press) {
        leavePending(DIK_UP);
        EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 1);
    }
}

TEST_F(KeyboardQuery, RemembersADownKeyAsOne) {
    down(DIK_UP);
    Keyboard_IsReleased(DIK_UP);
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 1);
    up(DIK_UP);
    Keyboard_IsReleased(DIK_UP);
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 0);
}

TEST_F(KeyboardQuery, MissesAPressBetweenTwoQueries) {
    EXPECT_EQ(Keyboard_IsReleased(DIK_LEFT), 0);
    down(DIK_LEFT);
    up(DIK_LEFT);
    EXPECT_EQ(Keyboard_IsReleased(DIK_LEFT), 0);
}

TEST_F(KeyboardQuery, ReportsTwoKeysThatAreReleasedTogether) {
    down(DIK_LEFT);
    down(DIK_RIGHT);
    Keyboard_IsReleased(DIK_LEFT);
    Keyboard_IsReleased(DIK_RIGHT);
    up(DIK_LEFT);
    up(DIK_RIGHT);
    EXPECT_EQ(Keyboard_IsReleased(DIK_LEFT), 1);
    EXPECT_EQ(Keyboard_IsReleased(DIK_RIGHT), 1);
}

TEST_F(KeyboardQuery, TakesTheTopBitAloneForDown) {
    Keyboard.keyState[DIK_UP] = 0x7F;
    Keyboard_IsReleased(DIK_UP);
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 0);
    Keyboard.keyState[DIK_UP] = 0xFF;
    Keyboard_IsReleased(DIK_UP);
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 1);
    Keyboard.keyState[DIK_UP] = 0x7F;
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 1);
}

TEST_F(KeyboardQuery, KnowsTheFirstAndTheLastKey) {
    for (const int code : {0, 255}) {
        leavePending(code);
        EXPECT_EQ(Keyboard_IsReleased(code), 1) << code;
    }
}

TEST_F(KeyboardQuery, GivesZeroAndChangesNothingUnlessAcquired) {
    leavePending(DIK_UP);
    down(DIK_DOWN);
    for (const KeyboardState state : {KeyboardState_Made, KeyboardState_None}) {
        Keyboard.state = state;
        EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
        EXPECT_EQ(Keyboard_IsReleased(DIK_DOWN), 0);
        EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 0);
    }
    EXPECT_EQ(Keyboard.wasDown[DIK_DOWN], 0);
    Keyboard.state = KeyboardState_Acquired;
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 1) << "the release stayed pending";
}

TEST_F(KeyboardQuery, ReplacesTheCodeByTheMapWhileTheMapIsOn) {
    Keyboard.keyMap[5] = DIK_UP;
    leavePending(DIK_UP);
    EXPECT_EQ(Keyboard_IsReleased(5), 0) << "the map is off";
    Keyboard.useKeyMap = 1;
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0) << "mapped to key 0";
    EXPECT_EQ(Keyboard_IsReleased(5), 1);
}

// --- The any-key query ---

static_assert(Keyboard_AnyKey == -1);

TEST_F(KeyboardQuery, OfAnyKeyGivesZeroWhenNothingWasReleased) {
    down(DIK_UP);
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 0);
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 0);
}

TEST_F(KeyboardQuery, OfAnyKeySeesEveryKeyFrom0To254) {
    for (int code = 0; code < 255; ++code) {
        leavePending(code);
        EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 1) << code;
        EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 0) << code;
    }
}

TEST_F(KeyboardQuery, OfAnyKeyDoesNotSeeKey255) {
    leavePending(255);
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 0);
    EXPECT_EQ(Keyboard_IsReleased(255), 1);
    down(255);
    Keyboard_IsReleased(Keyboard_AnyKey);
    EXPECT_EQ(Keyboard.wasDown[255], 0);
}

TEST_F(KeyboardQuery, OfAnyKeyConsumesTheReleasesOfAllKeys) {
    leavePending(0);
    leavePending(DIK_UP);
    leavePending(254);
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 1);
    EXPECT_EQ(Keyboard_IsReleased(0), 0);
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
    EXPECT_EQ(Keyboard_IsReleased(254), 0);
}

TEST_F(KeyboardQuery, OfAnyKeyKeepsUpTheHistoryOfEveryKey) {
    leavePending(0);
    down(254);
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 1);
    up(254);
    EXPECT_EQ(Keyboard_IsReleased(254), 1) << "the walk did not stop at key 0";
}

TEST_F(KeyboardQuery, OfAnyKeyDoesNotGoByTheMap) {
    Keyboard.useKeyMap = 1;
    leavePending(0); // every code is mapped to key 0
    Keyboard.wasDown[DIK_UP] = 1;
    EXPECT_EQ(Keyboard_IsReleased(Keyboard_AnyKey), 1);
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 0);
}

// --- Set-up ---

using KeyboardSetUp = InputTest;

TEST_F(KeyboardSetUp, GivesOneAndADeviceThatIsNotAcquiredYet) {
    EXPECT_EQ(Keyboard_SubsystemInit(), 1);
    EXPECT_EQ(Keyboard.started, 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_Made);
    EXPECT_NE(Keyboard.device, nullptr);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 0);
}

TEST_F(KeyboardSetUp, NeedsNoWindowYet) {
    Screen.window = nullptr;
    EXPECT_EQ(Keyboard_SubsystemInit(), 1);
}

TEST_F(KeyboardSetUp, DescribesEveryKeyByItsScanCode) {
    DIDATAFORMAT format{};
    calls.replace<hook::IDirectInputDevice7A_SetDataFormat>(
        [&format](IDirectInputDevice7A*, const DIDATAFORMAT* given) {
            format = *given;
            return DI_OK;
        });
    ASSERT_EQ(Keyboard_SubsystemInit(), 1);
    EXPECT_EQ(format.dwSize, sizeof(DIDATAFORMAT));
    EXPECT_EQ(format.dwObjSize, sizeof(DIOBJECTDATAFORMAT));
    EXPECT_EQ(format.dwFlags, static_cast<DWORD>(DIDF_RELAXIS));
    EXPECT_EQ(format.dwDataSize, 256u);
    EXPECT_EQ(format.dwNumObjs, 256u);
    ASSERT_EQ(format.rgodf, Keyboard.formatTable);
    for (DWORD key = 0; key < 256; ++key) {
        const DIOBJECTDATAFORMAT& object = Keyboard.formatTable[key];
        EXPECT_TRUE(IsEqualGUID(*object.pguid, GUID_Key));
        EXPECT_EQ(object.dwOfs, key);
        EXPECT_EQ(object.dwType, 0x80000000 | DIDFT_BUTTON | key << 8);
        EXPECT_EQ(object.dwFlags, 0u);
    }
}

TEST_F(KeyboardSetUp, SucceedsAgainWithoutASecondDevice) {
    Keyboard_SubsystemInit();
    IDirectInputDevice7A* device = Keyboard.device;
    DIOBJECTDATAFORMAT* table = Keyboard.formatTable;
    Keyboard_Poll();
    EXPECT_NE(Keyboard_SubsystemInit(), 0);
    EXPECT_EQ(Keyboard.device, device);
    EXPECT_EQ(Keyboard.formatTable, table);
    EXPECT_EQ(Keyboard.state, KeyboardState_Acquired);
    EXPECT_EQ(devices.input.deviceCount(), 1u);
}

TEST_F(KeyboardSetUp, CountsAUserOfDirectInputEveryTime) {
    Keyboard_SubsystemInit();
    Keyboard_SubsystemInit();
    Keyboard_SubsystemEnd();
    EXPECT_EQ(devices.liveObjects(), 1) << "set up twice, ended once: DirectInput lives on";
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0);
}

TEST_F(KeyboardSetUp, FailsWithoutDirectInput) {
    calls.fail("LoadLibraryA", 1, 0);
    EXPECT_EQ(Keyboard_SubsystemInit(), 0);
    EXPECT_EQ(Keyboard.started, 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_None);
    EXPECT_EQ(Keyboard.formatTable, nullptr);
}

TEST_F(KeyboardSetUp, FailsWithoutADevice) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DIERR_DEVICENOTREG);
    EXPECT_EQ(Keyboard_SubsystemInit(), 0);
    EXPECT_EQ(Keyboard.started, 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_None);
    EXPECT_EQ(Keyboard.device, nullptr);
}

TEST_F(KeyboardSetUp, FailsWhereTheFormatIsRefused) {
    calls.fail("IDirectInputDevice7A::SetDataFormat", 1, DIERR_INVALIDPARAM);
    EXPECT_EQ(Keyboard_SubsystemInit(), 0);
    EXPECT_EQ(Keyboard.state, KeyboardState_None);
}

TEST_F(KeyboardSetUp, TakesOnlyZeroForAnAcceptedFormat) {
    calls.fail("IDirectInputDevice7A::SetDataFormat", 1, S_FALSE);
    EXPECT_EQ(Keyboard_SubsystemInit(), 0);
    EXPECT_EQ(Keyboard.state, KeyboardState_None);
}

// --- Tear-down ---

using KeyboardTearDown = InputTest;

TEST_F(KeyboardTearDown, DoesNothingWithoutASetUp) {
    DirectInput_Acquire();
    calls.take();
    Keyboard_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0) << "the count is as it was";
}

TEST_F(KeyboardTearDown, GivesTheDeviceBack) {
    Keyboard_SubsystemInit();
    Keyboard_SubsystemEnd();
    EXPECT_EQ(Keyboard.device, nullptr);
    EXPECT_EQ(devices.liveObjects(), 0);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 0);
}

TEST_F(KeyboardTearDown, LeavesStateAndTable) {
    Keyboard_SubsystemInit();
    Keyboard_Poll();
    DIOBJECTDATAFORMAT* table = Keyboard.formatTable;
    calls.take();
    Keyboard_SubsystemEnd();
    EXPECT_EQ(Keyboard.started, 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_Acquired);
    EXPECT_EQ(Keyboard.formatTable, table);
    EXPECT_EQ(calls.uses("HeapFree"), 0);
}

TEST_F(KeyboardTearDown, FollowsEveryFailedSetUp) {
    for (const char* step : {"LoadLibraryA", "IDirectInput7A::CreateDeviceEx",
                             "IDirectInputDevice7A::SetDataFormat"}) {
        calls.failAlways(step, step[0] == 'L' ? 0 : DIERR_GENERIC);
        EXPECT_EQ(Keyboard_SubsystemInit(), 0) << step;
        calls.failNothing();
        Keyboard_SubsystemEnd();
        EXPECT_EQ(devices.liveObjects(), 0) << step;
        EXPECT_EQ(devices.loads("DINPUT.DLL"), 0) << step;
        Keyboard = {};
    }
}

// --- Polling ---

class KeyboardPoll : public InputTest {
protected:
    KeyboardPoll() { Keyboard_SubsystemInit(); }
};

TEST_F(KeyboardPoll, AcquiresOnceAndTakesASnapshotEveryTime) {
    devices.input.script({{DIK_UP}, {DIK_DOWN, 255}, {}});
    EXPECT_EQ(Keyboard_Poll(), 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_Acquired);
    EXPECT_EQ(Keyboard.keyState[DIK_UP], 0x80);
    EXPECT_EQ(Keyboard_Poll(), 1);
    EXPECT_EQ(Keyboard.keyState[DIK_UP], 0);
    EXPECT_EQ(Keyboard.keyState[DIK_DOWN], 0x80);
    EXPECT_EQ(Keyboard.keyState[255], 0x80);
    EXPECT_EQ(Keyboard_Poll(), 1);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 1);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 1);
}

TEST_F(KeyboardPoll, WritesNoHistory) {
    devices.input.script({{DIK_UP}, {}});
    Keyboard_Poll();
    Keyboard_Poll();
    EXPECT_EQ(Keyboard.wasDown[DIK_UP], 0);
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
}

TEST_F(KeyboardPoll, CountsAKeyThatWasDownWhenTheProgramStarted) {
    devices.input.script({{DIK_RETURN}, {DIK_RETURN}, {}});
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_RETURN), 0);
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_RETURN), 0);
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_RETURN), 1);
}

TEST_F(KeyboardPoll, FailsAndKeepsTheSnapshotWhenTheDeviceIsLost) {
    devices.input.script({{DIK_UP}});
    Keyboard_Poll();
    devices.input.lose();
    EXPECT_EQ(Keyboard_Poll(), 0);
    EXPECT_EQ(Keyboard.state, KeyboardState_Made);
    EXPECT_EQ(Keyboard.keyState[DIK_UP], 0x80);
}

TEST_F(KeyboardPoll, TakesOnlyZeroForASnapshot) {
    Keyboard_Poll();
    calls.fail("IDirectInputDevice7A::GetDeviceState", 1, S_FALSE);
    EXPECT_EQ(Keyboard_Poll(), 0);
    EXPECT_EQ(Keyboard.state, KeyboardState_Made);
}

TEST_F(KeyboardPoll, BindsTheDeviceAgainAfterAFailure) {
    Keyboard_Poll();
    devices.input.lose();
    Keyboard_Poll();
    devices.input.script({{DIK_DOWN}});
    EXPECT_EQ(Keyboard_Poll(), 1);
    EXPECT_EQ(Keyboard.keyState[DIK_DOWN], 0x80);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 2);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 2);
}

TEST_F(KeyboardPoll, TriesAgainAndAgainInTheBackground) {
    devices.input.isForeground = false;
    for (int frame = 0; frame < 5; ++frame)
        EXPECT_EQ(Keyboard_Poll(), 0);
    EXPECT_EQ(calls.uses("IDirectInputDevice7A::Acquire"), 5);
    devices.input.isForeground = true;
    EXPECT_EQ(Keyboard_Poll(), 1);
}

TEST_F(KeyboardPoll, DoesNotMindWhatTheCooperativeLevelAndTheAcquisitionGave) {
    calls.fail("IDirectInputDevice7A::SetCooperativeLevel", 1, E_HANDLE);
    calls.fail("IDirectInputDevice7A::Acquire", 1, S_FALSE);
    calls.fail("IDirectInputDevice7A::GetDeviceState", 1, DI_OK);
    EXPECT_EQ(Keyboard_Poll(), 1);
    EXPECT_EQ(Keyboard.state, KeyboardState_Acquired);
}

TEST_F(KeyboardPoll, ReportsAReleaseThatHappenedInTheBackgroundAfterTheReturn) {
    devices.input.script({{DIK_UP}});
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
    devices.input.lose();
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 0);
    Keyboard_Poll();
    EXPECT_EQ(Keyboard_IsReleased(DIK_UP), 1);
}

} // namespace
