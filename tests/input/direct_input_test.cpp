#include "input/direct_input.h"

#include "input/direct_input_state.h"
#include "tests/support/device_fixture.h"

namespace {

using DirectInput = DeviceTest;

TEST_F(DirectInput, IsMadeOnceForAllItsUsers) {
    IDirectInput7A* first = DirectInput_Acquire();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(DirectInput_Acquire(), first);
    EXPECT_EQ(devices.input.made(), 1);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 1);
}

TEST_F(DirectInput, IsGivenBackByItsLastUser) {
    DirectInput_Acquire();
    DirectInput_Acquire();
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 1);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 1);
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 0);
}

TEST_F(DirectInput, IsMadeAnewAfterItWasGivenBack) {
    DirectInput_Acquire();
    DirectInput_Release();
    EXPECT_NE(DirectInput_Acquire(), nullptr);
    EXPECT_EQ(devices.input.made(), 2);
    EXPECT_EQ(devices.liveObjects(), 1);
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0);
}

TEST_F(DirectInput, IsNullWithoutTheLibrary) {
    calls.fail("LoadLibraryA", 1, 0);
    EXPECT_EQ(DirectInput_Acquire(), nullptr);
    EXPECT_EQ(calls.uses("GetProcAddress"), 0);
}

TEST_F(DirectInput, IsNullWithoutItsEntry) {
    calls.fail("GetProcAddress", 1, 0);
    EXPECT_EQ(DirectInput_Acquire(), nullptr);
    EXPECT_EQ(devices.input.made(), 0);
}

TEST_F(DirectInput, IsNullWhereItCannotBeMade) {
    calls.fail("DirectInputCreateEx", 1, DIERR_OUTOFMEMORY);
    EXPECT_EQ(DirectInput_Acquire(), nullptr);
    EXPECT_EQ(devices.liveObjects(), 0);
}

TEST_F(DirectInput, KeepsTheLibraryWithoutItsEntry) {
    calls.fail("GetProcAddress", 1, 0);
    DirectInput_Acquire();
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 1);
}

TEST_F(DirectInput, KeepsTheLibraryAfterAFailedCreation) {
    calls.fail("DirectInputCreateEx", 1, DIERR_OUTOFMEMORY);
    DirectInput_Acquire();
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 1);
}

TEST_F(DirectInput, IsNullIfAFailedCreationWritesAPointer) {
    calls.replace<hook::DirectInputCreateEx>(
        [](HINSTANCE, DWORD, const GUID&, void** made, IUnknown*) {
            *made = &Loader;
            return DIERR_OUTOFMEMORY;
        });
    EXPECT_EQ(DirectInput_Acquire(), nullptr);
}

TEST_F(DirectInput, IsTriedAgainByTheNextUser) {
    calls.fail("DirectInputCreateEx", 1, DIERR_OUTOFMEMORY);
    EXPECT_EQ(DirectInput_Acquire(), nullptr);
    EXPECT_NE(DirectInput_Acquire(), nullptr);
}

TEST_F(DirectInput, CountsAUserWhoGotNothing) {
    calls.fail("LoadLibraryA", 1, 0);
    DirectInput_Acquire();
    DirectInput_Acquire();
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 1) << "the second user still has it";
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0);
}

TEST_F(DirectInput, CountsTheReleaseOfAUserWhoGotNothing) {
    calls.fail("LoadLibraryA", 1, 0);
    DirectInput_Acquire();
    DirectInput_Release();
    EXPECT_EQ(calls.uses("FreeLibrary"), 0);
    DirectInput_Acquire();
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 0);
    EXPECT_EQ(devices.loads("DINPUT.DLL"), 0);
}

TEST_F(DirectInput, StaysWhereItWasReleasedTooOften) {
    DirectInput_Release();
    DirectInput_Acquire();
    EXPECT_EQ(devices.liveObjects(), 1);
    DirectInput_Release();
    EXPECT_EQ(devices.liveObjects(), 1) << "the count is below 0, not at it";
}

TEST_F(DirectInput, GivesADevice) {
    IDirectInputDevice7A* device =
        DirectInput_CreateDevice(DirectInput_Acquire(), GUID_SysKeyboard);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->Release(), 0u);
}

TEST_F(DirectInput, GivesNoDeviceWhereItCannotBeMade) {
    IDirectInput7A* directInput = DirectInput_Acquire();
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, DIERR_DEVICENOTREG);
    EXPECT_EQ(DirectInput_CreateDevice(directInput, GUID_SysMouse), nullptr);
}

TEST_F(DirectInput, TakesNoDeviceFromACallThatDidNotGiveZero) {
    IDirectInput7A* directInput = DirectInput_Acquire();
    calls.replace<hook::IDirectInput7A_CreateDeviceEx>(
        [](IDirectInput7A* self, const GUID&, const GUID&, void** made, IUnknown*) {
            *made = self;
            return S_FALSE;
        });
    EXPECT_EQ(DirectInput_CreateDevice(directInput, GUID_SysMouse), nullptr);
}

// The system's own DirectInput.

using RealDirectInput = RuntimeTest;

TEST_F(RealDirectInput, GivesBothDevices) {
    ProgramInstance = GetModuleHandleA(nullptr);
    IDirectInput7A* directInput = DirectInput_Acquire();
    ASSERT_NE(directInput, nullptr);
    for (const GUID& which : {GUID_SysKeyboard, GUID_SysMouse}) {
        IDirectInputDevice7A* device = DirectInput_CreateDevice(directInput, which);
        ASSERT_NE(device, nullptr);
        EXPECT_EQ(device->Release(), 0u);
    }
    DirectInput_Release();
}

TEST_F(RealDirectInput, GivesTheLibraryBack) {
    ProgramInstance = GetModuleHandleA(nullptr);
    ASSERT_EQ(GetModuleHandleA("DINPUT.DLL"), nullptr) << "this program must not import it";
    ASSERT_NE(DirectInput_Acquire(), nullptr);
    EXPECT_NE(GetModuleHandleA("DINPUT.DLL"), nullptr);
    DirectInput_Release();
    EXPECT_EQ(GetModuleHandleA("DINPUT.DLL"), nullptr);
}

} // namespace
