// The system's own DirectSound, for tests that need no stand-in.
#pragma once

#include "audio/sound_device.h"
#include "audio/sound_device_state.h"
#include "tests/support/runtime_fixture.h"

#include <utility>

class RealSoundTest : public RuntimeTest {
protected:
    RealSoundTest() { ProgramInstance = GetModuleHandleA(nullptr); }
    ~RealSoundTest() override { releaseDevice(); }

    // The product ends with the device object still held. Wine's sound driver then crashes in about
    // one end of a process in twenty, and the test that has passed would count as failed.
    static void releaseDevice() {
        if (IDirectSound* device = std::exchange(Sound.directSound, nullptr))
            device->Release();
    }
};
