// The road of one Enter press, from key to child process and back.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/variables.h"

namespace {

// Presses Enter `count` times on the row that is selected.
void pressEnter(LauncherStage& stage, int count = 1) {
    for (int press = 0; press < count; ++press)
        stage.devices.input.press(DIK_RETURN);
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
        stage.calls.only({"IDirectSoundBuffer::Stop", "IDirectSoundBuffer::Play",
                          "IDirectSoundBuffer::SetCurrentPosition", "CreateThread", "timeEndPeriod",
                          "timeBeginPeriod", "IDirectDraw7", "CreateProcessA",
                          "WaitForSingleObject", "ShowWindow", "ShowCursor", "SetWindowTextA",
                          "MoveWindow", "IDirectDrawSurface7::Release",
                          "IDirectDrawSurface7::Flip"});
        pressEnter(stage);
        stage.run();
        EXPECT_TRUE(stage.calls.match(R"(
            CreateProcessA(*BlahBlubber.exe*)
            CreateThread(null, 8192, *, *, 0, null)
            IDirectSoundBuffer::SetCurrentPosition(*, 0) -> 0
            IDirectSoundBuffer::Play(*, 0, 0, 1) -> 0
            SetWindowTextA(*, "Ostrik Tessel Intros 2009 Keldara")
            MoveWindow(*, 0, 0, 1024, 768, 1)
            ShowCursor(0)
            IDirectDraw7::SetCooperativeLevel(*, *, 0x11) -> 0
            IDirectDraw7::SetDisplayMode(*, 1024, 768, 16, 0, 0) -> 0
            IDirectDraw7::CreateSurface(*) -> 0
            ShowWindow(*, 3)
            IDirectDraw7::GetMonitorFrequency(*)
            timeBeginPeriod(1)
            IDirectDrawSurface7::Flip(*)
            IDirectDrawSurface7::Flip(*)
            IDirectSoundBuffer::Stop(*) -> 0
            timeEndPeriod(1)
            IDirectDraw7::SetCooperativeLevel(*, null, 8) -> 0
            IDirectDrawSurface7::Release(*)
            IDirectDrawSurface7::Release(*)
            ShowCursor(1)
            ShowWindow(*, 0)
            CreateProcessA(*000-Velmora2009.exe*)
            WaitForSingleObject(*, 0xFFFFFFFF) -> 0
            WaitForSingleObject(*, 0xFFFFFFFF) -> 0
            CreateThread(null, 8192, *, *, 0, null)
            IDirectSoundBuffer::SetCurrentPosition(*, 0) -> 0
            IDirectSoundBuffer::Play(*, 0, 0, 1) -> 0
            SetWindowTextA(*, "Ostrik Tessel Intros 2009 Keldara")
            MoveWindow(*, 0, 0, 1024, 768, 1)
            ShowCursor(0)
            IDirectDraw7::SetCooperativeLevel(*, *, 0x11) -> 0
            IDirectDraw7::SetDisplayMode(*, 1024, 768, 16, 0, 0) -> 0
            IDirectDraw7::CreateSurface(*) -> 0
            ShowWindow(*, 3)
            IDirectDraw7::GetMonitorFrequency(*)
            timeBeginPeriod(1)
            IDirectDrawSurface7::Flip(*)
            ...
        )"));
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

TEST(Launch, TenTimesAsksOnceForEachDevice) {
    onStage([](LauncherStage& stage) {
        pressEnter(stage, 10);
        stage.run();
        EXPECT_EQ(stage.devices.ddraw.made(), 1);
        EXPECT_EQ(stage.devices.input.made(), 1);
        EXPECT_EQ(stage.devices.sound.made(), 1);
        EXPECT_EQ(stage.calls.uses("timeBeginPeriod"), 11);
        EXPECT_EQ(stage.calls.uses("timeEndPeriod"), 11);
        EXPECT_EQ(stage.calls.uses("CreateWindowExA"), 1);
        EXPECT_EQ(stage.calls.uses("CreateFontA"), 3);
        EXPECT_EQ(stage.calls.uses("CreateDIBSection"), 1);
    });
}

TEST(Launch, OfAMissingIntroTriesTheShellAndThenWaitsForEver) {
    onStage([](LauncherStage& stage) {
        stage.missing = "000-Velmora2009";
        pressEnter(stage);
        // The loop looks at the null handle without a wait, so nothing ends it: the shell's turn is
        // the last call there is, and the test leaves from inside it.
        bool screenWasClosed = false;
        stage.calls.replace<hook::ShellExecuteExA>([&](SHELLEXECUTEINFOA* info) {
            EXPECT_NE(std::string(info->lpFile).find("000-Velmora2009.exe"), std::string::npos);
            screenWasClosed = stage.devices.ddraw.mode().width == 0;
            ExitProcess(0);
            return FALSE;
        });
        EXPECT_TRUE(stage.run().calledExitProcess);
        EXPECT_TRUE(screenWasClosed);
        EXPECT_EQ(stage.calls.uses("WaitForSingleObject"), 0);
    });
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

TEST(Launch, TakesTheRowThatDownHasReachedInTheSameSnapshot) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_DOWN, DIK_RETURN}, {}});
        stage.run();
        ASSERT_EQ(stage.children.size(), 2u);
        EXPECT_NE(stage.children[1].commandLine.find("001-"), std::string::npos)
            << stage.children[1].commandLine;
    });
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
