// The whole launcher on stand-in devices, from WinMain to ExitProcess:
//
//     TEST(QuitRow, LeavesTheStagingFolder) {
//         onStage([](LauncherStage& stage) {
//             stage.devices.input.press(DIK_LEFT);
//             EXPECT_TRUE(stage.run().calledExitProcess);
//         });
//     }
//
// Each stage has a folder of its own, which holds a data file and no info file and is the current
// one, and a temp folder of its own in it. Children that the launcher starts are not real: they
// "run" inside of CreateProcessA and have ended behind it. Once the script of keys has been played,
// Escape is pressed until the program ends.
#pragma once

#include "tests/support/call_recorder.h"
#include "tests/support/child_run.h"
#include "tests/support/run_to_exit.h"
#include "tests/support/stand_in_devices.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#define DIRECTINPUT_VERSION 0x0700
#include <dinput.h>

class LauncherStage {
public:
    LauncherStage();
    ~LauncherStage();
    LauncherStage(const LauncherStage&) = delete;
    LauncherStage& operator=(const LauncherStage&) = delete;

    CallRecorder calls;
    StandInDevices devices;

    // --- Decided by the test, before the run ---

    std::filesystem::path folder; // the current one
    std::filesystem::path temp;
    void writeFile(const char* name, const std::string& content) const;
    // A file name in the staging folder that cannot be started, or "" for none.
    std::string missing;
    // Runs while a child runs, with its command line; the self-extractor's is the first.
    std::function<void(const std::string& commandLine)> onChild;

    // --- The run ---

    ProgramEnd run();
    // Adds presses to the script, one after the other: two snapshots each.
    void press(std::initializer_list<int> scanCodes) {
        for (const int code : scanCodes)
            devices.input.press(static_cast<uint8_t>(code));
    }
    // Ends the script: what follows is up to the test.
    void doNotLeave() { devices.input.onScriptEnd = nullptr; }

    struct Child {
        std::string commandLine;
        std::string folder;
        DWORD creationFlags;
        WORD showCommand;
    };
    std::vector<Child> children;

    std::filesystem::path stagingFolder() const { return temp / "Qev"; }

private:
    BOOL startChild(const char* commandLine, const char* workingFolder, DWORD creationFlags,
                    const STARTUPINFOA& info, PROCESS_INFORMATION* made);
};

// Runs the scenario on a stage. The program's variables are as at its start only once in a test.
void onStage(const std::function<void(LauncherStage&)>& scenario);

// The same in a new process: for a scenario that hangs or dies in there.
ChildReport reportFromStage(const std::function<void(LauncherStage&)>& scenario,
                            std::chrono::milliseconds busyLimit = std::chrono::seconds(30));
