// A runtime with stand-in devices and no windows of the system's: `calls` records, `devices` play
// the parts of DirectInput and DirectSound. The screen is not opened; its window is just a name.
#pragma once

#include "display/screen_device.h"
#include "tests/support/runtime_fixture.h"
#include "tests/support/stand_in_devices.h"

class DeviceTest : public RuntimeTest {
protected:
    DeviceTest() {
        ProgramInstance = reinterpret_cast<HMODULE>(0x400000);
        Screen.window = reinterpret_cast<HWND>(0x10ABC);
        calls.name(ProgramInstance, "program");
        calls.name(Screen.window, "screen");
        calls.name(GeneralHeap, "general");
        calls.name(LooseHeap, "loose");
    }
    ~DeviceTest() override {
        Screen.window = nullptr;
        ProgramInstance = nullptr;
    }

    CallRecorder calls;
    StandInDevices devices{calls};
};
