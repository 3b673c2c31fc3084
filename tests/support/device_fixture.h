// A runtime with stand-in devices and no windows of the system's: `calls` records, `devices` play
// the parts of DirectInput and DirectSound. The screen is not opened.
#pragma once

#include "display/screen_device.h"
#include "runtime/heap_state.h"
#include "tests/support/runtime_fixture.h"
#include "tests/support/stand_in_devices.h"

class DeviceTest : public RuntimeTest {
protected:
    DeviceTest() {
        ProgramInstance = reinterpret_cast<HMODULE>(0x400000);
        calls.name(ProgramInstance, "program");
        calls.name(GeneralHeap, "general");
        calls.name(LooseHeap, "loose");
    }
    ~DeviceTest() override { ProgramInstance = nullptr; }

    CallRecorder calls;
    StandInDevices devices{calls};
};

// The same with a window for the input devices, which is just a name.
class InputTest : public DeviceTest {
protected:
    InputTest() {
        Screen.window = reinterpret_cast<HWND>(0x10ABC);
        calls.name(Screen.window, "screen");
    }
    ~InputTest() override { Screen.window = nullptr; }
};
