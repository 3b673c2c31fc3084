// The ways out of the program, which all go through one end sequence.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/end.h"
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
                "ExitProcess"});
}

// Behind the first tear-down step, the mouse's ClipCursor.
constexpr const char* endOfAnOpenScreen = R"(
    IDirectInputDevice7A::Release(*) -> 0
    IDirectSoundBuffer::Stop(*) -> 0
    IDirectSoundBuffer::Release(*) -> 0
    FreeLibrary(*) -> 1
    IDirectInputDevice7A::Unacquire(*)
    IDirectInputDevice7A::Release(*) -> 0
    timeEndPeriod(1)
    IDirectDraw7::SetCooperativeLevel(*, null, 8) -> 0
    IDirectDrawSurface7::Release(*)
    IDirectDrawSurface7::Release(*)
    ShowCursor(1)
    ShowWindow(*, 0)
    IDirectDraw7::Release(*) -> 0
    FreeLibrary(*) -> 1
    DeleteObject(bitmap1) -> 1
    DeleteObject(font1) -> 1
    DeleteObject(font2) -> 1
    DeleteObject(font3) -> 1
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

TEST(WaysOut, EndSequenceCopesWithAProgramThatNeverStarted) {
    onStage([](LauncherStage& stage) {
        const ProgramEnd end = runToExit(stage.calls, [] { Launcher_End(); });
        EXPECT_TRUE(end.calledExitProcess);
        EXPECT_EQ(end.exitCode, 0u);
        EXPECT_EQ(stage.calls.uses("ClipCursor"), 0);
        EXPECT_EQ(stage.calls.uses("FreeLibrary"), 0);
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
