// The road of one Enter press, from key to child process and back.

#include "tests/support/launcher_stage.h"

#include "desktop/process_state.h"
#include "display/screen_device.h"
#include "input/direct_input.h"
#include "input/keyboard.h"
#include "launcher/variables.h"

namespace {

// Presses Enter `count` times on the row that is selected.
void pressEnter(LauncherStage& stage, int count = 1) {
    for (int press = 0; press < count; ++press)
        stage.devices.input.press(DIK_RETURN);
}

// A cursor key let go together with Enter, on row 0.
void expectRunBehind(uint8_t key, const char* exeName) {
    onStage([=](LauncherStage& stage) {
        stage.devices.input.script({{key, DIK_RETURN}, {}});
        stage.run();
        ASSERT_EQ(stage.children.size(), 2u);
        EXPECT_NE(stage.children[1].commandLine.find(exeName), std::string::npos)
            << stage.children[1].commandLine;
    });
}

bool isIntro(const std::string& commandLine) {
    return commandLine.find("BlahBlubber") == std::string::npos;
}

// What the process owns at one moment.
struct Possessions {
    size_t blocks, processes;      // heap blocks and process handles, as recorded
    size_t named;                  // everything that is recorded and not given back
    DWORD gdiObjects, userObjects; // as the system counts them
};

Possessions possessions(const CallRecorder& calls) {
    const QuietScope quiet;
    Possessions now{};
    now.blocks = calls.live("block");
    now.processes = calls.live("process");
    now.named = calls.liveNames().size();
    now.gdiObjects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    now.userObjects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    return now;
}

} // namespace

TEST(Launch, StopsTheMusicGivesTheScreenBackRunsWaitsAndComesBack) {
    onStage([](LauncherStage& stage) {
        // How often the stop sleeps until the render thread has ended is a matter of chance.
        stage.calls.except({"GDI32", "Sleep"});
        pressEnter(stage);
        stage.calls.before("IDirectDrawSurface7::Blt", 2, [&] { stage.calls.take(); });
        stage.calls.before("IDirectDrawSurface7::Blt", 4, [&] {
            EXPECT_TRUE(stage.calls.match(R"(
                // The frame that sees Enter up: its key test stands behind the flip.
                IDirectInputDevice7A::GetDeviceState(device1, 256, *) -> 0
                IDirectDrawSurface7::GetDC(surface2, *) -> 0
                IDirectDrawSurface7::ReleaseDC(surface2, *) -> 0
                PeekMessageA(*, null, 0, 0, 1) -> 0
                IDirectDrawSurface7::Flip(surface1, null, 1) -> 0

                // The title of the row's program.
                HeapAlloc(heap2, *)

                // The music stops.
                IDirectSoundBuffer::Stop(buffer2) -> 0

                // The screen is given back.
                timeEndPeriod(1)
                IDirectDraw7::SetCooperativeLevel(ddraw1, null, 8) -> 0
                IDirectDrawSurface7::Release(surface2)
                IDirectDrawSurface7::Release(surface1)
                ShowCursor(1)
                ShowWindow(window1, 0)

                // The intro runs; starting it waits, and the launcher waits once more.
                HeapAlloc(heap1, 0, *) -> block86
                CreateProcessA(null, *000-Velmora2009.exe*, null, null, 0, 32, null, *) -> 1
                CloseHandle(thread1) -> 1
                WaitForSingleObject(process1, 0xFFFFFFFF) -> 0
                HeapAlloc(heap3, 8, *)
                HeapFree(heap1, 0, block86) -> 1
                WaitForSingleObject(process1, 0xFFFFFFFF) -> 0

                // The music comes back, from where it stood.
                IDirectSoundBuffer::Lock(buffer2, 0, 0x19000, *, *, null, null, 0) -> 0
                IDirectSoundBuffer::Unlock(buffer2, *, 0x19000, null, 0) -> 0
                CreateThread(null, 8192, *, *, 0, null)
                CloseHandle(thread1) -> 1
                IDirectSoundBuffer::SetCurrentPosition(buffer2, 0) -> 0
                IDirectSoundBuffer::Play(buffer2, 0, 0, 1) -> 0

                // The screen opens again.
                SetWindowTextA(window1, "Ostrik Tessel Intros 2009 Keldara")
                MoveWindow(window1, 0, 0, 1024, 768, 1)
                ShowCursor(0)
                IDirectDraw7::SetCooperativeLevel(ddraw1, window1, 0x11) -> 0
                IDirectDraw7::SetDisplayMode(ddraw1, 1024, 768, 16, 0, 0) -> 0
                IDirectDraw7::CreateSurface(ddraw1, {*, backs 1, *}, &surface1, null) -> 0
                IDirectDrawSurface7::GetAttachedSurface(surface1, *, &surface2) -> 0
                ShowWindow(window1, 3)
                IDirectDrawSurface7::GetDC(surface2, *) -> 0
                FillRect(*, {0, 0, 1024, 768}, *)
                IDirectDrawSurface7::ReleaseDC(surface2, *) -> 0
                IDirectDrawSurface7::GetDC(surface1, *) -> 0
                FillRect(*, {0, 0, 1024, 768}, *)
                IDirectDrawSurface7::ReleaseDC(surface1, *) -> 0
                IDirectDraw7::GetMonitorFrequency(ddraw1, *)
                IDirectDrawSurface7::Lock(surface1, null, *, 1, null) -> 0
                IDirectDrawSurface7::Unlock(surface1, null) -> 0
                timeBeginPeriod(1)

                // The next frame.
                IDirectDrawSurface7::Blt(surface2, *) -> 0
                IDirectInputDevice7A::GetDeviceState(device1, 256, *) -> 0
                IDirectDrawSurface7::GetDC(surface2, *) -> 0
                IDirectDrawSurface7::ReleaseDC(surface2, *) -> 0
                PeekMessageA(*, null, 0, 0, 1) -> 0
                IDirectDrawSurface7::Flip(surface1, null, 1) -> 0
                IDirectDrawSurface7::Blt(*)
            )"));
        });
        stage.run();
        EXPECT_EQ(stage.children.size(), 2u);
    });
}

TEST(Launch, RunsTheIntroVisiblyInTheStagingFolderWithoutArguments) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage);
        stage.run();
        ASSERT_EQ(stage.children.size(), 2u);
        const LauncherStage::Child& intro = stage.children[1];
        const std::string staging = stage.stagingFolder().string();
        EXPECT_EQ(intro.commandLine, "\"" + staging + "\\000-Velmora2009.exe\"");
        EXPECT_EQ(intro.folder, staging + "\\");
        EXPECT_EQ(intro.creationFlags, DWORD{NORMAL_PRIORITY_CLASS});
        EXPECT_EQ(intro.showCommand, SW_SHOWNORMAL);
    });
}

TEST(Launch, FindsNoScreenNoModeAndNoMusicWhileTheIntroRuns) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage);
        int looked = 0;
        stage.onChild = [&](const std::string& commandLine) {
            if (!isIntro(commandLine))
                return;
            ++looked;
            EXPECT_EQ(stage.devices.ddraw.mode().width, 0u);
            EXPECT_FALSE(stage.devices.ddraw.isExclusive());
            EXPECT_EQ(stage.devices.ddraw.surfaceCount(), 0u);
            EXPECT_FALSE(stage.devices.desktop->isShown());
            EXPECT_FALSE(stage.devices.sound.isPlaying());
        };
        stage.run();
        EXPECT_EQ(looked, 1);
    });
}

TEST(Launch, ComesBackToTheSameRowOnTheCataloguePage) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.press(DIK_RIGHT);
        pressEnter(stage);
        stage.run();
        EXPECT_NE(stage.children[1].commandLine.find("018-Ostrik09-03.exe"), std::string::npos);
        EXPECT_EQ(Launcher.SelectedRow, 16);
        EXPECT_EQ(Launcher.MenuMode, MenuMode_Catalogue);
    });
}

TEST(Launch, SkipsTheRestOfTheFrameThatLaunched) {
    onStage([](LauncherStage& stage) {
        // Escape is let go together with Enter, and its turn comes after Enter's: its release is
        // seen in the first frame after the intro.
        stage.devices.input.script({{DIK_RETURN, DIK_ESCAPE}, {}});
        stage.doNotLeave();
        int flipsThen = 0;
        stage.calls.before("CreateProcessA", 2, [&] { flipsThen = stage.devices.ddraw.flips(); });
        stage.calls.only({"Sleep", "SetWindowTextA", "CreateProcessA"});
        stage.run();
        EXPECT_EQ(stage.devices.ddraw.flips(), flipsThen + 1);
        EXPECT_TRUE(stage.calls.match(R"(
            CreateProcessA(*BlahBlubber.exe*)
            SetWindowTextA(*)
            Sleep(1)
            ...
            CreateProcessA(*000-Velmora2009.exe*)
            SetWindowTextA(*)
            ...
        )")) << "no delay ends the frame that launched";
    });
}

TEST(Launch, FiftyTimesLeavesOneProcessHandleEachAndNothingElse) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage, 50);
        Possessions early, late;
        // The first launch and its title make room that later ones use again.
        stage.calls.before("SetWindowTextA", 2, [&] { early = possessions(stage.calls); });
        stage.calls.before("SetWindowTextA", 51, [&] { late = possessions(stage.calls); });
        stage.run();
        EXPECT_EQ(stage.children.size(), 51u);
        int kept = 0;
        for (LooseBlock* block = processList; block; block = block->older)
            ++kept;
        EXPECT_EQ(kept, 50);
        // 49 launches more: a record each, and the process handle in it.
        EXPECT_EQ(late.blocks, early.blocks + 49);
        EXPECT_EQ(late.processes, early.processes + 49);
        EXPECT_EQ(late.named, early.named + 2 * 49);
        EXPECT_EQ(late.gdiObjects, early.gdiObjects);
        EXPECT_EQ(late.userObjects, early.userObjects);
    });
}

TEST(Launch, KeepsPathHandleAndResultOfTheLastIntroInItsVariables) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage, 2);
        stage.run();
        EXPECT_EQ(stage.children.size(), 3u);
        EXPECT_STREQ(Launcher.IntroPath,
                     (stage.stagingFolder() / "000-Velmora2009.exe").string().c_str());
        EXPECT_EQ(static_cast<const void*>(Launcher.ChildHandle), processList + 1);
        EXPECT_EQ(Launcher.WaitResult, 1);
    });
}

TEST(Launch, TenTimesAsksOnceForEachDevice) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage, 10);
        int32_t usersOfDirectDraw = 0;
        stage.calls.before("SetWindowTextA", 11, [&] { usersOfDirectDraw = Screen.ddrawUsers; });
        stage.run();
        EXPECT_EQ(stage.children.size(), 11u);
        EXPECT_EQ(stage.devices.ddraw.made(), 1);
        EXPECT_EQ(stage.devices.input.made(), 1);
        EXPECT_EQ(stage.devices.sound.made(), 1);
        EXPECT_EQ(usersOfDirectDraw, 1);
        EXPECT_EQ(stage.devices.loads("DDRAW.DLL"), 0);
        EXPECT_EQ(stage.calls.uses("timeBeginPeriod"), 11);
        EXPECT_EQ(stage.calls.uses("timeEndPeriod"), 11);
        EXPECT_EQ(stage.calls.uses("CreateWindowExA"), 1);
        EXPECT_EQ(stage.calls.uses("CreateFontA"), 3);
        EXPECT_EQ(stage.calls.uses("CreateDIBSection"), 1);
        // Acquired three times at the start and released twice at the end: one user is left.
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::Release"), 0);
        DirectInput_Release();
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::Release"), 1);
        EXPECT_EQ(stage.devices.loads("DINPUT.DLL"), 0);
    });
}

TEST(Launch, OfAMissingIntroTriesTheShellAndThenIsBusyForEver) {
    const ChildReport child = reportFromStage(
        [](LauncherStage& stage) {
            stage.missing = "000-Velmora2009";
            pressEnter(stage);
            stage.calls.replace<hook::ShellExecuteExA>([&](SHELLEXECUTEINFOA* info) {
                EXPECT_NE(std::string(info->lpFile).find("000-Velmora2009.exe"), std::string::npos);
                EXPECT_EQ(stage.devices.ddraw.mode().width, 0u) << "the screen was closed";
                EXPECT_FALSE(stage.devices.sound.isPlaying());
                stage.calls.echo();
                return FALSE;
            });
            stage.run();
        },
        std::chrono::seconds(2));
    EXPECT_TRUE(child.wasBusy);
    EXPECT_EQ(child.output.find("Failure"), std::string::npos) << child.output;
    // The last call frees the command line. Then the loop looks at the null handle without a call,
    // so nothing ends it, and nothing is ever said.
    EXPECT_TRUE(child.output.ends_with("HeapFree(heap1, 0, block86)\r\n")) << child.output;
}

TEST(Launch, KeyHeldWhenTheScreenComesBackCountsAsAPress) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage);
        stage.devices.input.script({{DIK_ESCAPE}, {DIK_ESCAPE}, {}});
        stage.doNotLeave();
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.devices.input.snapshotsLeft(), 0u);
    });
}

TEST(Launch, TakesTheRowThatUpHasReachedInTheSameSnapshot) {
    expectRunBehind(DIK_UP, "016-Ostrik09-01.exe");
}
TEST(Launch, TakesTheRowThatDownHasReachedInTheSameSnapshot) {
    expectRunBehind(DIK_DOWN, "001-Hobnail1.exe");
}
TEST(Launch, TakesTheRowThatLeftHasReachedInTheSameSnapshot) {
    expectRunBehind(DIK_LEFT, "017-Ostrik09-02.exe");
}
TEST(Launch, TakesTheRowThatRightHasReachedInTheSameSnapshot) {
    expectRunBehind(DIK_RIGHT, "017-Ostrik09-02.exe");
}

TEST(Launch, SetsTheTopOfTheListAnew) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage);
        stage.calls.before("CreateProcessA", 2, [] { Launcher.MenuTop = 0; });
        stage.run();
        EXPECT_EQ(Launcher.MenuTop, 145);
    });
}

TEST(Launch, KeySeenDownBeforeAndLetGoMeanwhileActsInTheFirstFrameAfter) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_RETURN, DIK_DOWN}, {DIK_DOWN}, {}});
        stage.run();
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

TEST(Launch, NeedsEnterDownAgainBeforeItActsOnceMore) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage);
        stage.devices.input.rest(5);
        stage.run();
        EXPECT_EQ(stage.children.size(), 2u);
    });
}

TEST(Launch, KeyHeldOverAnIntroActsInTheFirstFrameAfterIt) {
    onStage([](LauncherStage& stage) {
        int64_t rowInThatFrame = -1, rowAfterIt = -1;
        stage.devices.input.script({{DIK_RETURN, DIK_DOWN}, {DIK_DOWN}, {}});
        stage.calls.before("IDirectDrawSurface7::Flip", 3,
                           [&] { rowInThatFrame = Launcher.SelectedRow; });
        stage.calls.before("IDirectDrawSurface7::Flip", 4,
                           [&] { rowAfterIt = Launcher.SelectedRow; });
        stage.run();
        EXPECT_EQ(rowInThatFrame, 0);
        EXPECT_EQ(rowAfterIt, 1);
    });
}

TEST(Launch, DoesNotWaitBetweenTheScreenAndTheIntro) {
    onStage([](LauncherStage& stage) {
        std::vector<std::string> lines;
        pressEnter(stage);
        stage.calls.before("timeEndPeriod", 1, [&] { stage.calls.take(); });
        stage.calls.before("CreateProcessA", 2, [&] { lines = stage.calls.take(); });
        stage.run();
        ASSERT_FALSE(lines.empty());
        for (const std::string& line : lines)
            EXPECT_FALSE(line.starts_with("Sleep") || line.starts_with("Wait")) << line;
    });
}
