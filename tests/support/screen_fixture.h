// A screen on the stand-in devices, as at the program's start; the test sets it up and opens it.
// What the test leaves open is ended after it, so that many tests can run in one process.
#pragma once

#include "display/direct_draw.h"
#include "display/frame.h"
#include "display/screen.h"
#include "display/screen_device.h"
#include "display/surfaces.h"
#include "display/window.h"
#include "input/keyboard.h"
#include "input/keyboard_state.h"
#include "input/mouse.h"
#include "input/mouse_state.h"
#include "tests/support/runtime_fixture.h"
#include "tests/support/stand_in_devices.h"

class ScreenTest : public RuntimeTest {
protected:
    ScreenTest() {
        Screen = {};
        ScreenLockDesc = {};
        ScreenCopyDesc = {};
        Keyboard = {};
        Mouse = {};
        ProgramInstance = reinterpret_cast<HMODULE>(0x400000);
        devices.ddraw.scanLines = {0x7FFFFFFF}; // nobody waits for the raster by mistake
        calls.name(ProgramInstance, "program");
        calls.name(GeneralHeap, "general");
        calls.name(&Screen.primaryDesc, "primaryDesc");
        calls.name(&ScreenLockDesc, "lockDesc");
        calls.name(&ScreenCopyDesc, "copyDesc");
    }

    ~ScreenTest() override {
        calls.failNothing();
        Screen.onFocusLost = nullptr;
        if (Mouse.started)
            Mouse_SubsystemEnd();
        if (Keyboard.started)
            Keyboard_SubsystemEnd();
        if (Screen.initDone)
            Screen_SubsystemEnd2();
    }

    static constexpr int16_t width = 96;
    static constexpr int16_t height = 64;

    // The steps of set-up up to an open screen. Their calls are forgotten.
    void setUp() {
        ASSERT_NE(Screen_SubsystemInit(), nullptr);
        calls.name(Screen.hiddenWindow, "window");
        calls.take();
    }
    void open(int16_t depth = 16) {
        if (!Screen.initDone)
            setUp();
        ASSERT_EQ(Screen_Open(width, height, depth, "Title"), 1);
        calls.name(Screen.primary, "primary");
        calls.name(Screen.backBuffer, "back");
        calls.take();
    }
    // A surface of 5 by 3 pixels beside those of the open screen.
    ScreenSurface* addSurface(ObjectId id, const char* name) {
        DDSURFACEDESC2 desc{};
        desc.dwSize = sizeof desc;
        desc.dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
        desc.dwWidth = 5;
        desc.dwHeight = 3;
        desc.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN;
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        IDirectDrawSurface7* surface = nullptr;
        EXPECT_EQ(Screen.ddraw->CreateSurface(&desc, &surface, nullptr), DD_OK);
        *record = {surface, 0, nullptr, 5, 3};
        calls.name(surface, name);
        return record;
    }

    CallRecorder calls;
    StandInDevices devices{calls};
};

// A call that is to fail, as a test's parameter.
struct CallFailure {
    const char* call;
    int nth;
    int64_t result;
};

inline void PrintTo(const CallFailure& failure, std::ostream* out) {
    *out << failure.call << " use " << failure.nth << " gives " << failure.result;
}

// A test whose screen is open from its start.
class OpenScreenTest : public ScreenTest {
protected:
    OpenScreenTest() { open(); }
};
