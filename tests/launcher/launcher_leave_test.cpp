// The ways out of the program, which all go through one end sequence.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/end.h"
#include "launcher/variables.h"
#include "runtime/file.h"

namespace {

void watchEnd(CallRecorder& calls) {
    calls.only({"FindFirstFileA",
                "RemoveDirectoryA",
                "ClipCursor",
                "IDirectInputDevice7A::Unacquire",
                "IDirectInputDevice7A::Release",
                "IDirectInput7A::Release",
                "IDirectSoundBuffer::Stop",
                "IDirectSoundBuffer::Release",
                "IDirectSound::Release",
                "FreeLibrary",
                "timeEndPeriod",
                "IDirectDraw7::SetCooperativeLevel",
                "IDirectDrawSurface7::Release",
                "IDirectDraw7::Release",
                "ShowCursor",
                "ShowWindow",
                "DeleteObject",
                "DestroyIcon",
                "CloseHandle",
                "HeapDestroy",
                "MessageBoxA",
                "ExitProcess"});
}

// Runs a start that fails, and compares what follows its box.
void expectEndBehindTheBox(LauncherStage& stage, const char* expected) {
    watchEnd(stage.calls);
    stage.calls.before("MessageBoxA", 1, [&] { stage.calls.take(); });
    EXPECT_EQ(stage.run().exitCode, 0u);
    EXPECT_TRUE(stage.calls.match(expected));
}

// Behind the first tear-down step, the mouse's ClipCursor.
constexpr const char* endOfAnOpenScreen = R"(
    IDirectInputDevice7A::Release(device2) -> 0
    IDirectSoundBuffer::Stop(buffer2) -> 0
    IDirectSoundBuffer::Release(buffer2) -> 0
    FreeLibrary(library3) -> 1
    IDirectInputDevice7A::Unacquire(device1)
    IDirectInputDevice7A::Release(device1) -> 0
    timeEndPeriod(1)
    IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
    IDirectDrawSurface7::Release(surface2)
    IDirectDrawSurface7::Release(surface1)
    ShowCursor(1)
    ShowWindow(*, 0)
    IDirectDraw7::Release(ddraw1) -> 0
    FreeLibrary(library2) -> 1
    DeleteObject(bitmap1) -> 1
    DeleteObject(font1) -> 1
    DeleteObject(font2) -> 1
    DeleteObject(font3) -> 1
    HeapDestroy(heap1) -> 1
    ExitProcess(0)
)";

// The screen has not been opened, and the song has not been loaded.
constexpr const char* endOfAllDevices = R"(
    ClipCursor(null)
    IDirectInputDevice7A::Release(device2) -> 0
    FreeLibrary(library3) -> 1
    IDirectInputDevice7A::Unacquire(device1)
    IDirectInputDevice7A::Release(device1) -> 0
    IDirectDraw7::Release(ddraw1) -> 0
    FreeLibrary(library2) -> 1
    HeapDestroy(heap1) -> 1
    ExitProcess(0)
)";

} // namespace

TEST(WaysOut, EscapeRemovesTheStagingFolderFirst) {
    onStage([](LauncherStage& stage) {
        watchEnd(stage.calls);
        stage.calls.before("ClipCursor", 1, [&] {
            EXPECT_FALSE(std::filesystem::exists(stage.stagingFolder()));
            stage.calls.take();
        });
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_TRUE(stage.calls.match(endOfAnOpenScreen));
        EXPECT_FALSE(std::filesystem::exists(stage.stagingFolder()));
    });
}

TEST(WaysOut, CloseAFileThatIsStillOpenBehindTheFonts) {
    onStage([](LauncherStage& stage) {
        watchEnd(stage.calls);
        stage.calls.before("IDirectDrawSurface7::Flip", 1,
                           [] { EXPECT_NE(File_OpenRead(5, "OstrikVelmora2009.dat"), 0); });
        stage.calls.before("ClipCursor", 1, [&] { stage.calls.take(); });
        stage.run();
        std::string end = endOfAnOpenScreen;
        end.insert(end.find("HeapDestroy"), "CloseHandle(file1) -> 1\n");
        EXPECT_TRUE(stage.calls.match(end.c_str()));
    });
}

TEST(WaysOut, QuitRowLeavesTheStagingFolder) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_LEFT);
        stage.devices.input.press(DIK_UP);
        stage.devices.input.press(DIK_RETURN);
        watchEnd(stage.calls);
        stage.calls.before("ClipCursor", 1, [&] { stage.calls.take(); });
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_TRUE(stage.calls.match(endOfAnOpenScreen));
        EXPECT_TRUE(std::filesystem::exists(stage.stagingFolder() / "BlahBlubber.exe"));
        EXPECT_EQ(stage.children.size(), 1u);
    });
}

TEST(WaysOut, WithoutWindowHaveNothingToGiveBack) {
    onStage([](LauncherStage& stage) {
        stage.calls.failAlways("RegisterClassExA", 0);
        expectEndBehindTheBox(stage, R"(
            HeapDestroy(heap1) -> 1
            ExitProcess(0)
        )");
    });
}

TEST(WaysOut, WithoutKeyboardGiveDirectInputBack) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("IDirectInput7A::CreateDeviceEx", 1, E_FAIL);
        expectEndBehindTheBox(stage, R"(
            IDirectInput7A::Release(input1) -> 0
            FreeLibrary(library1) -> 1
            HeapDestroy(heap1) -> 1
            ExitProcess(0)
        )");
    });
}

TEST(WaysOut, WithoutScreenGiveTheKeyboardBackThatItAskedFor) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("DirectDrawCreateEx", 1, E_FAIL);
        expectEndBehindTheBox(stage, R"(
            IDirectInputDevice7A::Unacquire(device1)
            IDirectInputDevice7A::Release(device1) -> 0
            IDirectInput7A::Release(input1) -> 0
            FreeLibrary(library1) -> 1
            HeapDestroy(heap1) -> 1
            ExitProcess(0)
        )");
    });
}

TEST(WaysOut, WithoutMouseGiveKeyboardAndScreenBack) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("IDirectInput7A::CreateDeviceEx", 2, E_FAIL);
        expectEndBehindTheBox(stage, R"(
            ClipCursor(null)
            IDirectInputDevice7A::Unacquire(device1)
            IDirectInputDevice7A::Release(device1) -> 0
            IDirectDraw7::Release(ddraw1) -> 0
            FreeLibrary(library2) -> 1
            HeapDestroy(heap1) -> 1
            ExitProcess(0)
        )");
    });
}

TEST(WaysOut, WithoutSoundGiveAllDevicesBack) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("DirectSoundCreate", 1, E_FAIL);
        expectEndBehindTheBox(stage, endOfAllDevices);
    });
}

TEST(WaysOut, WithoutDataFileGiveAllDevicesBack) {
    onStage([](LauncherStage& stage) {
        std::filesystem::remove(stage.folder / "OstrikVelmora2009.dat");
        expectEndBehindTheBox(stage, endOfAllDevices);
    });
}

TEST(WaysOut, EndSequenceCopesWithAProgramThatNeverStarted) {
    onStage([](LauncherStage& stage) {
        stage.calls.take();
        const ProgramEnd end = runToExit(stage.calls, [] { Launcher_End(); });
        EXPECT_TRUE(end.calledExitProcess);
        EXPECT_EQ(end.exitCode, 0u);
        EXPECT_TRUE(stage.calls.match("HeapDestroy(null)\nExitProcess(0)"));
    });
}

TEST(WaysOut, GiveTheVariablesExitCode) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.ExitCode = 7; });
        EXPECT_EQ(stage.run().exitCode, 7u);
    });
}

TEST(WaysOut, LeaveOneUserOfDirectInputAndSoundHeld) {
    onStage([](LauncherStage& stage) {
        stage.run();
        EXPECT_EQ(stage.devices.loads("DDRAW.DLL"), 0);
        EXPECT_EQ(stage.devices.loads("DSOUND.DLL"), 0);
        EXPECT_EQ(stage.devices.loads("DINPUT.DLL"), 1) << "acquired three times, released twice";
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::Release"), 0);
        EXPECT_EQ(stage.calls.uses("IDirectSound::Release"), 0);
        EXPECT_EQ(stage.calls.uses("timeBeginPeriod"), stage.calls.uses("timeEndPeriod"));
    });
}

TEST(WaysOut, CloseCommandIsNone) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 2,
                           [&] { stage.devices.desktop->post(WM_CLOSE); });
        stage.devices.input.rest(5);
        stage.run();
        EXPECT_GE(stage.devices.ddraw.flips(), 6);
    });
}
