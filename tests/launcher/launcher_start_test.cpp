// The start of the program: every step in its place, and each of the four devices that cannot be
// had.

#include "tests/support/launcher_stage.h"

#include "audio/module_player.h"
#include "display/image_decoder.h"
#include "display/image_decoder_state.h"
#include "launcher/variables.h"

#include <cstring>
#include <utility>

namespace {

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

// The call that makes the block of a stored text.
std::string blockFor(const std::filesystem::path& text) {
    return "HeapAlloc(heap2, 1, " + std::to_string(text.string().size() + 5) + ")\n";
}

using Results = std::vector<int64_t>;

// What stands in the variable for results when each step of the staging begins, and behind the
// last of them.
Results resultsOfTheStaging(LauncherStage& stage) {
    Results results;
    const auto note = [&results] { results.push_back(std::exchange(Launcher.RowIndex, 99)); };
    for (const char* step : {"FindFirstFileA", "CreateDirectoryA", "CopyFileA", "CreateProcessA"})
        stage.calls.before(step, 1, note);
    stage.calls.before("IDirectSound::CreateSoundBuffer", 2, note);
    stage.run();
    return results;
}

} // namespace

TEST(ProgramStart, TakesEveryStepInOrder) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", "a line");
        stage.calls.only({"KERNEL32", "InitializeCriticalSection", "USER32", "GDI32", "COMCTL32",
                          "OLE32", "WINMM", "DirectInputCreateEx", "DirectDrawCreateEx",
                          "DirectSoundCreate", "IDirectInput7A", "IDirectInputDevice7A",
                          "IDirectDraw7", "IDirectDrawSurface7", "IDirectSound",
                          "IDirectSoundBuffer"});
        stage.calls.before("IDirectDrawSurface7::Blt", 1, [&] {
            EXPECT_TRUE(stage.calls.match(R"(
                GetModuleHandleA(null) -> module1
                HeapCreate(0, 4096, 0) -> heap1

                // Text and heap.
                HeapCreate(1, 4096, 0) -> heap2
                HeapAlloc(heap2, 1, 16) -> block1
                HeapCreate(0, 1024, 0) -> heap3

                // Drawing, then the registries of files, fonts, images and modules.
                CreateSolidBrush(0) -> brush1
                CreatePen(0, 0, 0) -> pen1
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 512)
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 128)
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 256)
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 512)

                // Child processes and the desktop.
                InitializeCriticalSection(*)
                InitCommonControls()
                CoInitialize(null)

                // The screen, with its window and its keyboard; the keyboard needs no more calls.
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 2048)
                LoadIconA(module1, #1)
                GetStockObject(4)
                RegisterClassExA(*"MultimediaBase Class"*)
                CreateWindowExA(0, "MultimediaBase Class", "", *, 0, 0, 1, 1, *) -> window1
                LoadLibraryA("DINPUT.DLL") -> library1
                GetProcAddress(library1, "DirectInputCreateEx")
                DirectInputCreateEx(module1, 0x700, IID_IDirectInput7A, &input1, null) -> 0
                HeapAlloc(heap1, 0, 6144)
                IDirectInput7A::CreateDeviceEx(input1, GUID_SysKeyboard, *, &device1, null) -> 0
                IDirectInputDevice7A::SetDataFormat(device1, *bytes 256*) -> 0
                LoadLibraryA("DDRAW.DLL") -> library2
                GetProcAddress(library2, "DirectDrawCreateEx")
                DirectDrawCreateEx(null, &ddraw1, IID_IDirectDraw7, null) -> 0

                // The mouse.
                IDirectInput7A::CreateDeviceEx(input1, GUID_SysMouse, *, &device2, null) -> 0
                IDirectInputDevice7A::SetDataFormat(device2, *bytes 16*) -> 0

                // Sound.
                HeapAlloc(heap1, 8, 56)
                HeapAlloc(heap1, 8, 512)
                LoadLibraryA("DSOUND.DLL") -> library3
                GetProcAddress(library3, "DirectSoundCreate")
                DirectSoundCreate(null, &sound1, null) -> 0
                IDirectSound::SetCooperativeLevel(sound1, window1, 2) -> 0
                IDirectSound::CreateSoundBuffer(sound1, {40, flags 1*}, &buffer1, null) -> 0

                // The list of info lines, the catalogue's array, the info file, the catalogue.
                HeapAlloc(heap1, 0, 80)
                HeapAlloc(heap1, 8, 40)
                CreateFileA("ostrik.nfo", 0x80000000, 1, null, 3, 128, null) -> file1
                ...
                CloseHandle(file1) -> 1
                HeapAlloc(heap2, 1, 27)
                ...

                // The payload: each path is stored behind the names that it is made of.
                HeapAlloc(heap2, 1, 26)
                HeapAlloc(heap2, 1, 20)
                GetCurrentDirectoryA(260, *)
                HeapAlloc(heap2, *)
                GetTempPathA(260, *)
                LoadLibraryA("Kernel32.DLL") -> library4
                GetProcAddress(library4, "GetLongPathNameA")
                GetLongPathNameA("*\\temp\\", *, 260)
                FreeLibrary(library4) -> 1
                HeapAlloc(heap2, *)
                )" + blockFor(stage.folder / "OstrikVelmora2009.dat") +
                                          blockFor(stage.stagingFolder() / "BlahBlubber.exe") + R"(
                FindFirstFileA("*\\temp\\Qev\\*.*", *) -> -1
                FindFirstFileA("*\\OstrikVelmora2009.dat", *) -> search1
                FindClose(search1) -> 1
                CreateDirectoryA("*\\Qev", null) -> 1
                CopyFileA("*\\OstrikVelmora2009.dat", "*\\Qev\\BlahBlubber.exe", 0) -> 1
                HeapAlloc(heap1, 0, *) -> *
                CreateProcessA(null, "\"*\\Qev\\BlahBlubber.exe\"", null, null, 0, 40, null, *) -> 1
                CloseHandle(thread1) -> 1
                CloseHandle(process1) -> 1
                HeapFree(heap1, 0, *)

                // The song; the player's library allocates for itself.
                ...
                IDirectSound::CreateSoundBuffer(sound1, {40, flags 0x180E2*}, &buffer2, null) -> 0
                IDirectSoundBuffer::Lock(buffer2, 0, 0x19000, *, *, null, null, 0) -> 0
                IDirectSoundBuffer::Unlock(buffer2, ptr, 0x19000, null, 0) -> 0
                CreateThread(null, 8192, *, *, 0, null) -> thread1
                CloseHandle(thread1) -> 1
                IDirectSoundBuffer::SetCurrentPosition(buffer2, 0) -> 0
                IDirectSoundBuffer::Play(buffer2, 0, 0, 1) -> 0

                // The banner.
                CreateDCA("DISPLAY", null, null, null) -> dc1
                CreateDIBSection(dc1, {40, 640, 135, 1, 32, 0}, 0, *, null, 0) -> bitmap1
                DeleteDC(dc1) -> 1
                CreateCompatibleDC(null) -> dc1
                SetDIBits(dc1, bitmap1, 0, 135, *, {40, 640, 135, 1, 24, 0, and more}, 0) -> 135
                DeleteDC(dc1) -> 1
                GetObjectA(bitmap1, 32, *)

                // The fonts.
                CreateDCA("DISPLAY", null, null, null) -> dc1
                GetDeviceCaps(dc1, 90)
                MulDiv(14, *, 72)
                CreateFontA(-19, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial") -> font1
                DeleteDC(dc1) -> 1
                CreateDCA("DISPLAY", null, null, null) -> dc1
                GetDeviceCaps(dc1, 90)
                MulDiv(10, *, 72)
                CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial") -> font2
                DeleteDC(dc1) -> 1
                CreateDCA("DISPLAY", null, null, null) -> dc1
                GetDeviceCaps(dc1, 90)
                MulDiv(10, *, 72)
                CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Terminal") -> font3
                DeleteDC(dc1) -> 1

                // The screen opens.
                SetWindowTextA(window1, "Ostrik Tessel Intros 2009 Keldara") -> 1
                MoveWindow(window1, 0, 0, 1024, 768, 1) -> 1
                ShowCursor(0)
                IDirectDraw7::SetCooperativeLevel(ddraw1, window1, 0x11) -> 0
                IDirectDraw7::SetDisplayMode(ddraw1, 1024, 768, 16, 0, 0) -> 0
                IDirectDraw7::CreateSurface(ddraw1, {*, backs 1, *}, &surface1, null) -> 0
                IDirectDrawSurface7::GetAttachedSurface(surface1, *, &surface2) -> 0
                ShowWindow(window1, 3)
                IDirectDrawSurface7::GetDC(surface2, &dc1) -> 0
                GetStockObject(4)
                FillRect(dc1, {0, 0, 1024, 768}, *)
                IDirectDrawSurface7::ReleaseDC(surface2, dc1) -> 0
                IDirectDrawSurface7::GetDC(surface1, &dc1) -> 0
                GetStockObject(4)
                FillRect(dc1, {0, 0, 1024, 768}, *)
                IDirectDrawSurface7::ReleaseDC(surface1, dc1) -> 0
                IDirectDraw7::GetMonitorFrequency(ddraw1, *)
                IDirectDrawSurface7::Lock(surface1, null, *, 1, null) -> 0
                IDirectDrawSurface7::Unlock(surface1, null) -> 0
                timeBeginPeriod(1)

                // The first frame.
                IDirectDrawSurface7::Blt(*)
            )"));
        });
        stage.run();
        EXPECT_TRUE(stage.devices.wereUsed());
        EXPECT_GT(stage.devices.ddraw.flips(), 0) << "the first frame was reached";
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

TEST(ProgramStart, ClearsItsVariablesBeforeAnythingElse) {
    onStage([](LauncherStage& stage) {
        memset(&Launcher, 0xFF, sizeof Launcher);
        stage.calls.before("HeapCreate", 1, [] {
            const LauncherVariables none{};
            EXPECT_EQ(memcmp(&Launcher, &none, sizeof none), 0);
        });
        EXPECT_TRUE(stage.run().calledExitProcess);
    });
}

TEST(ProgramStart, ForgetsEveryImageDecoder) {
    onStage([](LauncherStage& stage) {
        ImageDecoders.count = 1;
        stage.calls.before("InitCommonControls", 1, [] { EXPECT_EQ(ImageDecoders.count, 0); });
        stage.run();
    });
}

TEST(ProgramStart, MakesTheListOfInfoLinesBeforeTheCatalogue) {
    onStage([](LauncherStage& stage) {
        const void* catalogueThen = &stage;
        stage.calls.after("IDirectSound::CreateSoundBuffer", 1, [&] {
            stage.calls.before("HeapAlloc", 1, [&] { catalogueThen = Launcher.IntroCatalogue; });
        });
        stage.run();
        EXPECT_EQ(catalogueThen, nullptr);
    });
}

TEST(ProgramStart, KeepsEachResultOfTheStagingUntilTheNext) {
    onStage([](LauncherStage& stage) {
        EXPECT_EQ(resultsOfTheStaging(stage), (Results{30, 0, 1, 1, 1})) << "no folder to remove";
    });
}

TEST(ProgramStart, KeepsTheResultOfASelfExtractorThatCannotBeStarted) {
    onStage([](LauncherStage& stage) {
        stage.missing = "BlahBlubber";
        EXPECT_EQ(resultsOfTheStaging(stage), (Results{30, 0, 1, 1, 0}));
    });
}

TEST(ProgramStart, BuildsTheStagingFoldersPathBehindItsTerminator) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("CreateDirectoryA", 1, [&stage] {
            const size_t length = stage.stagingFolder().string().size() + 1; // with the backslash
            EXPECT_EQ(TextPosition, static_cast<int64_t>(length) + 1);
        });
        stage.run();
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
        EXPECT_EQ(stage.calls.uses("IDirectInput7A::CreateDeviceEx"), 1) << "the screen's keyboard";
        EXPECT_EQ(stage.devices.loads("DINPUT.DLL"), 0)
            << "a keyboard's own set-up would leave one";
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

TEST(ProgramStart, PlaysTheSongAsModuleZero) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("CreateProcessA", 1, [] { Launcher.ModuleNumber = 5; });
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [&stage] {
            EXPECT_EQ(Launcher.ModuleNumber, 0);
            EXPECT_TRUE(stage.devices.sound.isPlaying());
            Module_Stop(0);
        });
        stage.calls.after("IDirectDrawSurface7::Flip", 1,
                          [&stage] { EXPECT_FALSE(stage.devices.sound.isPlaying()); });
        stage.run();
    });
}

TEST(ProgramStart, LaysTheMenuOutBehindThePictures) {
    onStage([](LauncherStage& stage) {
        int64_t linesBefore = -1;
        stage.calls.before("CreateFontA", 3, [&] {
            linesBefore = Launcher.InfoPageSize;
            Launcher.MenuMode = MenuMode_Info;
            Launcher.InfoFirstLine = 60;
            Launcher.SelectedRow = 7;
        });
        LauncherVariables behind{};
        stage.calls.before("SetWindowTextA", 1, [&] { behind = Launcher; });
        stage.run();
        EXPECT_EQ(linesBefore, 0);
        EXPECT_EQ(behind.InfoPageSize, 60);
        EXPECT_EQ(behind.MenuMode, MenuMode_Catalogue);
        EXPECT_EQ(behind.InfoFirstLine, 0);
        EXPECT_EQ(behind.SelectedRow, 0);
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
