// Stand-ins for DDRAW.DLL, DINPUT.DLL and DSOUND.DLL, which a program gets from LoadLibraryA and
// GetProcAddress in the place of the real ones, and for the desktop. The whole launcher runs on
// them, from its first instruction to its end, without a display or a sound server:
//
//     TEST(QuitRow, LeavesWithoutRemovingTheFolder) {
//         const ChildReport child = runInChild([] {
//             CallRecorder calls;
//             StandInDevices devices(calls);
//             devices.input.press(DIK_UP);                     // row 0 goes to row 14
//             devices.input.press(DIK_RETURN);
//             const ProgramEnd end = runToExit(calls, [] { WinMain(nullptr, nullptr, nullptr, 0);
//             }); EXPECT_TRUE(end.calledExitProcess); EXPECT_EQ(end.exitCode, 0u);
//             EXPECT_TRUE(devices.wereUsed());
//             EXPECT_EQ(calls.take().back(), "ExitProcess(0)");
//         });
//         EXPECT_TRUE(child.succeeded());
//     }
//
// The methods of the objects given out are recorded and made to fail like all other calls.
#pragma once

#include "tests/support/call_recorder.h"
#include "tests/support/stand_in_ddraw.h"
#include "tests/support/stand_in_desktop.h"
#include "tests/support/stand_in_dinput.h"
#include "tests/support/stand_in_dsound.h"

#include <memory>

class StandInDevices {
public:
    // With `withDesktop` false the program makes real windows.
    explicit StandInDevices(CallRecorder& calls, bool withDesktop = true);
    StandInDevices(const StandInDevices&) = delete;
    StandInDevices& operator=(const StandInDevices&) = delete;

    StandInDDraw ddraw;
    StandInDInput input;
    StandInDSound sound;
    std::unique_ptr<StandInDesktop> desktop; // null without one

    // Whether a program got DirectDraw, DirectInput and DirectSound from here.
    bool wereUsed() const;
    // Stand-in objects that were not given back.
    static int liveObjects();
    // How often a library was loaded less how often it was given back.
    int loads(const char* library) const;

    // The user switches to another program, with the surfaces lost or not, and comes back. The
    // window gets its activation message at once, from inside the call that is just running.
    void switchAway(bool surfacesLost);
    void switchBack();

private:
    void takeOverLibraries(CallRecorder& calls);

    struct Library {
        const char* name;
        const char* entry;
        void* routine;
        int loads = 0;
    };
    Library* find(const char* name);
    Library* find(HMODULE module);

    std::vector<Library> libraries;
};
