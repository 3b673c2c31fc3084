// The start of the program: every step in its place, and each of the four devices that cannot be
// had.

#include "tests/support/launcher_stage.h"

#include "launcher/variables.h"

namespace {

// What tells the steps of the start from each other.
void watchSteps(CallRecorder& calls) {
    calls.only({"GetModuleHandleA",
                "HeapCreate",
                "HeapDestroy",
                "CreateSolidBrush",
                "CreatePen",
                "InitializeCriticalSection",
                "InitCommonControls",
                "CoInitialize",
                "RegisterClassExA",
                "CreateWindowExA",
                "LoadLibraryA",
                "FreeLibrary",
                "DirectInputCreateEx",
                "DirectDrawCreateEx",
                "DirectSoundCreate",
                "IDirectInput7A",
                "IDirectSound",
                "CreateFileA",
                "GetCurrentDirectoryA",
                "GetTempPathA",
                "FindFirstFileA",
                "CreateDirectoryA",
                "CopyFileA",
                "CreateProcessA",
                "CreateThread",
                "IDirectSoundBuffer::Play",
                "CreateDIBSection",
                "CreateFontA",
                "SetWindowTextA",
                "MessageBoxA",
                "ExitProcess",
                "ClipCursor"});
}

// What follows a device that cannot be had, up to the end.
void expectGivesUp(LauncherStage& stage) {
    const ProgramEnd end = stage.run();
    EXPECT_TRUE(end.calledExitProcess);
    EXPECT_EQ(end.exitCode, 0u);
    ASSERT_EQ(stage.devices.desktop->messageBoxes.size(), 1u);
    const StandInDesktop::Box& box = stage.devices.desktop->messageBoxes[0];
    EXPECT_EQ(box.title, "Error");
    EXPECT_EQ(box.text, "Can't initialize system");
    EXPECT_EQ(box.flags, 0u);
    EXPECT_EQ(stage.calls.uses("IDirectDraw7::SetDisplayMode"), 0);
    EXPECT_EQ(stage.calls.uses("GetCurrentDirectoryA"), 0) << "the staging was not begun";
    EXPECT_EQ(stage.calls.uses("CreateProcessA"), 0);
    EXPECT_EQ(stage.calls.uses("HeapDestroy"), 1) << "the end sequence ran to its end";
}

} // namespace

TEST(ProgramStart, TakesEveryStepInOrder) {
    onStage([](LauncherStage& stage) {
        watchSteps(stage.calls);
        stage.run();
        EXPECT_TRUE(stage.devices.wereUsed());
        EXPECT_TRUE(stage.calls.match(R"(
            GetModuleHandleA(null)
            HeapCreate(0, 4096, 0) -> heap1
            HeapCreate(1, 4096, 0) -> heap2
            HeapCreate(0, 1024, 0) -> heap3
            CreateSolidBrush(0)
            CreatePen(0, 0, 0)
            InitializeCriticalSection(*)
            InitCommonControls()
            CoInitialize(null)
            RegisterClassExA(*)
            CreateWindowExA(*)
            LoadLibraryA("DINPUT.DLL")
            DirectInputCreateEx(*)
            IDirectInput7A::CreateDeviceEx(*GUID_SysKeyboard*)
            LoadLibraryA("DDRAW.DLL")
            DirectDrawCreateEx(*)
            IDirectInput7A::CreateDeviceEx(*GUID_SysMouse*)
            LoadLibraryA("DSOUND.DLL")
            DirectSoundCreate(null, *, null) -> 0
            IDirectSound::SetCooperativeLevel(*, 2) -> 0
            IDirectSound::CreateSoundBuffer(*) -> 0
            CreateFileA("ostrik.nfo", *) -> *
            GetCurrentDirectoryA(260, *)
            GetTempPathA(260, *)
            LoadLibraryA("Kernel32.DLL")
            FreeLibrary(*)
            FindFirstFileA("*\\Qev\\*.*", *)
            FindFirstFileA("*\\OstrikVelmora2009.dat", *)
            CreateDirectoryA("*\\Qev", null) -> 1
            CopyFileA("*\\OstrikVelmora2009.dat", "*\\Qev\\BlahBlubber.exe", 0) -> 1
            CreateProcessA(*) -> 1
            IDirectSound::CreateSoundBuffer(*) -> 0
            CreateThread(*)
            IDirectSoundBuffer::Play(*, 0, 0, 1) -> 0
            CreateDIBSection(*)
            CreateFontA(-19, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial")
            CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial")
            CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Terminal")
            SetWindowTextA(*, "Ostrik Tessel Intros 2009 Keldara")
            ...
            ExitProcess(0)
        )"));
    });
}

TEST(ProgramStart, StartsTheSelfExtractorHiddenAndDetachedInItsFolder) {
    onStage([](LauncherStage& stage) {
        stage.run();
        ASSERT_EQ(stage.children.size(), 1u);
        const LauncherStage::Child& extractor = stage.children[0];
        const std::string staging = stage.stagingFolder().string();
        EXPECT_EQ(extractor.commandLine, "\"" + staging + "\\BlahBlubber.exe\"");
        EXPECT_EQ(extractor.folder, staging + "\\");
        EXPECT_EQ(extractor.creationFlags, DWORD{NORMAL_PRIORITY_CLASS | DETACHED_PROCESS});
        EXPECT_EQ(extractor.showCommand, SW_HIDE);
    });
}

TEST(ProgramStart, DoesNotWaitForTheSelfExtractor) {
    onStage([](LauncherStage& stage) {
        stage.run();
        EXPECT_EQ(stage.calls.uses("WaitForSingleObject"), 0);
    });
}

TEST(ProgramStart, ClearsWhatAnEarlierRunLeft) {
    onStage([](LauncherStage& stage) {
        std::filesystem::create_directories(stage.stagingFolder() / "old");
        stage.writeFile("temp\\Qev\\old\\left.exe", "left");
        bool wasClear = false;
        stage.onChild = [&](const std::string&) {
            wasClear = !std::filesystem::exists(stage.stagingFolder() / "old");
        };
        stage.run();
        EXPECT_TRUE(wasClear);
    });
}

TEST(ProgramStart, ReadsTheInfoFileBeforeTheCatalogueIsFilled) {
    onStage([](LauncherStage& stage) {
        const char* titleThen = "never looked";
        stage.calls.before("CreateFileA", 1, [&] { titleThen = Launcher.IntroCatalogue[0].Title; });
        stage.run();
        EXPECT_EQ(titleThen, nullptr);
        EXPECT_STREQ(Launcher.IntroCatalogue[0].Title, "01. Velmora 2009 Intro");
    });
}

TEST(ProgramStart, WithoutTheWindowAsksForNoDevice) {
    onStage([](LauncherStage& stage) {
        stage.calls.failAlways("RegisterClassExA", 0);
        expectGivesUp(stage);
        EXPECT_FALSE(stage.devices.input.wasMade());
        EXPECT_FALSE(stage.devices.ddraw.wasMade());
        EXPECT_FALSE(stage.devices.sound.wasMade());
    });
}

TEST(ProgramStart, WithoutKeyboardAsksForNoScreenMouseOrSound) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("IDirectInput7A::CreateDeviceEx", 1, E_FAIL);
        expectGivesUp(stage);
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::CreateDeviceEx"), 1);
        EXPECT_FALSE(stage.devices.ddraw.wasMade());
        EXPECT_FALSE(stage.devices.sound.wasMade());
    });
}

TEST(ProgramStart, WithoutScreenAsksForNoMouseOrSound) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("DirectDrawCreateEx", 1, E_FAIL);
        expectGivesUp(stage);
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::CreateDeviceEx"), 1) << "the keyboard alone";
        EXPECT_FALSE(stage.devices.sound.wasMade());
    });
}

TEST(ProgramStart, WithoutMouseAsksForNoSound) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("IDirectInput7A::CreateDeviceEx", 2, E_FAIL);
        expectGivesUp(stage);
        EXPECT_TRUE(stage.devices.ddraw.wasMade());
        EXPECT_FALSE(stage.devices.sound.wasMade());
    });
}

TEST(ProgramStart, WithoutSoundOpensNoScreen) {
    onStage([](LauncherStage& stage) {
        stage.calls.fail("DirectSoundCreate", 1, E_FAIL);
        expectGivesUp(stage);
        EXPECT_EQ(stage.devices.loads("DSOUND.DLL"), 0) << "the library is given back all the same";
    });
}

TEST(ProgramStart, WithoutDataFileSaysSoAndEnds) {
    onStage([](LauncherStage& stage) {
        std::filesystem::create_directories(stage.stagingFolder());
        std::filesystem::remove(stage.folder / "OstrikVelmora2009.dat");
        const ProgramEnd end = stage.run();
        EXPECT_EQ(end.exitCode, 0u);
        ASSERT_EQ(stage.devices.desktop->messageBoxes.size(), 1u);
        const StandInDesktop::Box& box = stage.devices.desktop->messageBoxes[0];
        EXPECT_EQ(box.title, "Error");
        EXPECT_EQ(box.text, "Can't open OstrikVelmora2009.dat");
        EXPECT_EQ(box.flags, 0u);
        EXPECT_FALSE(std::filesystem::exists(stage.stagingFolder()));
        EXPECT_EQ(stage.calls.uses("CreateThread"), 0) << "no music";
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::SetDisplayMode"), 0) << "no screen";
    });
}

TEST(ProgramStart, TakesAFolderForTheDataFile) {
    onStage([](LauncherStage& stage) {
        std::filesystem::remove(stage.folder / "OstrikVelmora2009.dat");
        std::filesystem::create_directory(stage.folder / "OstrikVelmora2009.dat");
        stage.missing = "BlahBlubber";
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_TRUE(stage.devices.desktop->messageBoxes.empty());
        EXPECT_GT(stage.devices.ddraw.flips(), 0) << "the menu came up";
    });
}

TEST(ProgramStart, TakesAnEmptyFileForTheDataFile) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("OstrikVelmora2009.dat", "");
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_TRUE(stage.devices.desktop->messageBoxes.empty());
        EXPECT_GT(stage.devices.ddraw.flips(), 0) << "the menu came up";
    });
}

TEST(ProgramStart, LeavesTheAccumulatorEmpty) {
    onStage([](LauncherStage& stage) {
        int64_t position = -1;
        stage.calls.before("SetWindowTextA", 1, [&] { position = TextPosition; });
        stage.run();
        EXPECT_EQ(position, 0);
    });
}
