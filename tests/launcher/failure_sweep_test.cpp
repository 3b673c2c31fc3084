// Every platform call that the launcher's run depends on, made to fail once, and what must follow.
// A new call gets a row here.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/variables.h"

#include <algorithm>
#include <cctype>
#include <ddraw.h>
#include <ostream>
#include <set>

namespace {

enum class Outcome {
    goesOn,      // not noticed: the menu comes up, runs an intro, shows the info page, ends with 0
    retried,     // as goesOn, and the call is made once more
    cannotStart, // the box "Can't initialize system", no screen, ends with 0
    noDataFile,  // the box "Can't open ...", no screen, ends with 0
    noRetry,     // as goesOn, but the intro's start failed and the program waits for ever
    fault,       // dies of an access to memory that is not there
};

struct Row {
    const char* call;
    int use; // the n-th of the run
    int64_t result;
    Outcome outcome;
    void (*also)(LauncherStage&) = nullptr; // what else holds after the run
    const char* lastCall = nullptr;         // where it faults: the call just before
    const char* otherLastCall = nullptr;    // the same on another version of the system
};

void startedNoMusic(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectSoundBuffer::Play"), 0);
    EXPECT_EQ(stage.calls.uses("CreateThread"), 0);
    EXPECT_EQ(stage.calls.uses("IDirectSoundBuffer::Lock"), 0);
}
void playedBothTimes(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectSoundBuffer::Play"), 2);
    EXPECT_EQ(stage.calls.uses("CreateThread"), 2);
}
void unlockedNothingForIt(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectSoundBuffer::Unlock"),
              stage.calls.uses("IDirectSoundBuffer::Lock") - 1);
    EXPECT_EQ(stage.calls.uses("IDirectSoundBuffer::Play"), 2);
}
void recoveredOnce(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), 1);
    EXPECT_EQ(stage.calls.uses("IDirectDraw7::SetDisplayMode"), 3) << "two opens and the recovery";
}
void recoveredNever(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), 0);
}
void boundTheKeyboardAgain(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("IDirectInputDevice7A::SetCooperativeLevel"), 2);
    EXPECT_EQ(stage.calls.uses("IDirectInputDevice7A::Acquire"), 2);
}
void askedTheShell(LauncherStage& stage) {
    EXPECT_EQ(stage.calls.uses("ShellExecuteExA"), 1);
    EXPECT_EQ(stage.children.size(), 1u) << "the intro alone";
}
void foundNoTempFolder(LauncherStage& stage) {
    EXPECT_STREQ(Launcher.TempDir, "");
    EXPECT_NE(stage.children[0].commandLine.find("\"Qev\\"), std::string::npos);
}
// Its text is where the current folder's has just been built.
void tookTheCurrentFolderForTheTempFolder(LauncherStage& stage) {
    EXPECT_EQ(Launcher.TempDir, stage.folder.string() + "\\");
}
bool drew(LauncherStage& stage, const std::string& text) {
    const std::vector<std::string> lines = stage.calls.take();
    return std::any_of(lines.begin(), lines.end(), [&text](const std::string& line) {
        return line.starts_with("TextOutA(") && line.find('"' + text + '"') != std::string::npos;
    });
}
void showedThatThereIsNoInfoFile(LauncherStage& stage) {
    EXPECT_TRUE(drew(stage, "No NFO File Found"));
}
void showedThatTheInfoFileIsEmpty(LauncherStage& stage) {
    EXPECT_TRUE(drew(stage, "NFO File is empty"));
}
void leftTheStagingFolder(LauncherStage& stage) {
    EXPECT_TRUE(std::filesystem::exists(stage.stagingFolder()));
}

constexpr auto busy = std::chrono::seconds(2); // of processor time: many times what a run takes
constexpr int64_t failed = E_FAIL;
// The last step of an open that fails. The clear of the next frame then finds no surface.
constexpr const char* givenUp = "ShowWindow(window1, 0)";
constexpr auto noHandle = static_cast<int64_t>(-1); // INVALID_HANDLE_VALUE

constexpr Row rows[] = {
    // The start: the desktop's window, and the libraries that are loaded at run time.
    {"HeapCreate", 1, 0, Outcome::fault, nullptr, "HeapAlloc(null, 8, 56)"},
    // The platform documents no result for a null heap. The first call on it returns null in Wine
    // 8, and faults in Wine 10.
    {"HeapCreate", 2, 0, Outcome::fault, nullptr, "HeapReAlloc(null, 1, null, 20485)",
     "HeapAlloc(null, 1, 16)"},
    {"HeapCreate", 3, 0, Outcome::fault, nullptr, "HeapAlloc(null, 8, 56)"}, // at the launch
    {"GetModuleHandleA", 1, 0, Outcome::goesOn},
    {"CoInitialize", 1, failed, Outcome::goesOn},
    {"LoadIconA", 1, 0, Outcome::goesOn},
    {"RegisterClassExA", 1, 0, Outcome::cannotStart},
    {"CreateWindowExA", 1, 0, Outcome::cannotStart},
    {"LoadLibraryA", 1, 0, Outcome::cannotStart}, // DINPUT.DLL
    {"LoadLibraryA", 2, 0, Outcome::cannotStart}, // DDRAW.DLL
    {"LoadLibraryA", 3, 0, Outcome::cannotStart}, // DSOUND.DLL
    {"LoadLibraryA", 4, 0, Outcome::goesOn},      // Kernel32.DLL
    {"GetProcAddress", 1, 0, Outcome::cannotStart},
    {"GetProcAddress", 2, 0, Outcome::cannotStart},
    {"GetProcAddress", 3, 0, Outcome::cannotStart},
    {"GetProcAddress", 4, 0, Outcome::goesOn},
    {"FreeLibrary", 1, 0, Outcome::goesOn},

    // Input.
    {"DirectInputCreateEx", 1, failed, Outcome::cannotStart},
    {"IDirectInput7A::CreateDeviceEx", 1, failed, Outcome::cannotStart}, // keyboard
    {"IDirectInput7A::CreateDeviceEx", 2, failed, Outcome::cannotStart}, // mouse
    {"IDirectInputDevice7A::SetDataFormat", 1, failed, Outcome::cannotStart},
    {"IDirectInputDevice7A::SetDataFormat", 2, failed, Outcome::cannotStart},
    {"IDirectInputDevice7A::SetCooperativeLevel", 1, failed, Outcome::goesOn},
    {"IDirectInputDevice7A::Acquire", 1, failed, Outcome::goesOn},
    {"IDirectInputDevice7A::GetDeviceState", 1, failed, Outcome::goesOn, boundTheKeyboardAgain},
    {"IDirectInputDevice7A::GetDeviceState", 3, failed, Outcome::goesOn, boundTheKeyboardAgain},
    {"IDirectInputDevice7A::Unacquire", 1, failed, Outcome::goesOn},
    {"ClipCursor", 1, 0, Outcome::goesOn},

    // The screen. A first open that fails is not noticed, and the first frame has no surface.
    {"DirectDrawCreateEx", 1, failed, Outcome::cannotStart},
    {"SetWindowTextA", 1, 0, Outcome::goesOn},
    {"MoveWindow", 1, 0, Outcome::goesOn},
    {"ShowCursor", 1, 0, Outcome::goesOn},
    {"ShowWindow", 1, 0, Outcome::goesOn},
    {"IDirectDraw7::SetCooperativeLevel", 1, failed, Outcome::fault, nullptr, givenUp},
    {"IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE, Outcome::fault, nullptr, givenUp},
    {"IDirectDraw7::CreateSurface", 1, failed, Outcome::fault, nullptr, givenUp},
    {"IDirectDrawSurface7::GetAttachedSurface", 1, failed, Outcome::fault, nullptr, givenUp},
    {"IDirectDraw7::GetMonitorFrequency", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Lock", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Unlock", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::GetDC", 1, failed, Outcome::goesOn}, // the back buffer's black fill
    {"IDirectDrawSurface7::GetDC", 2, failed, Outcome::goesOn}, // the primary's
    {"IDirectDrawSurface7::GetDC", 3, failed, Outcome::goesOn}, // the first frame's
    {"FillRect", 1, 0, Outcome::goesOn},
    {"timeBeginPeriod", 1, 97, Outcome::goesOn},
    {"timeEndPeriod", 1, 97, Outcome::goesOn},

    // The screen again: given back for an intro, and taken back.
    {"IDirectDraw7::SetCooperativeLevel", 2, failed, Outcome::goesOn},
    {"ShowCursor", 2, 0, Outcome::goesOn},
    {"ShowWindow", 2, 0, Outcome::goesOn},
    {"IDirectDraw7::SetCooperativeLevel", 3, failed, Outcome::fault, nullptr, givenUp},
    {"IDirectDraw7::SetDisplayMode", 2, DDERR_UNSUPPORTEDMODE, Outcome::fault, nullptr, givenUp},
    {"IDirectDraw7::CreateSurface", 2, failed, Outcome::fault, nullptr, givenUp},
    {"IDirectDrawSurface7::GetAttachedSurface", 2, failed, Outcome::fault, nullptr, givenUp},

    // A frame.
    {"IDirectDrawSurface7::Blt", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Blt", 2, DDERR_SURFACELOST, Outcome::goesOn, recoveredNever},
    {"IDirectDrawSurface7::ReleaseDC", 3, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Flip", 1, failed, Outcome::goesOn, recoveredNever},
    {"IDirectDrawSurface7::Flip", 2, DDERR_SURFACELOST, Outcome::goesOn, recoveredOnce},
    {"SetTextAlign", 1, -1, Outcome::goesOn},
    {"CreateSolidBrush", 1, 0, Outcome::goesOn}, // the standing brush
    {"CreateSolidBrush", 2, 0, Outcome::goesOn}, // a pass's
    {"CreatePen", 1, 0, Outcome::goesOn},
    {"SelectObject", 1, 0, Outcome::goesOn},
    {"SetTextColor", 1, CLR_INVALID, Outcome::goesOn},
    {"SetBkColor", 1, CLR_INVALID, Outcome::goesOn},
    {"SetBkMode", 1, 0, Outcome::goesOn},
    {"SetROP2", 1, 0, Outcome::goesOn},
    {"MoveToEx", 1, 0, Outcome::goesOn},
    {"TextOutA", 1, 0, Outcome::goesOn},
    {"GetObjectType", 1, 0, Outcome::goesOn}, // the banner is taken for an icon
    {"CreateCompatibleDC", 2, 0, Outcome::goesOn},
    {"GetObjectA", 2, 0, Outcome::goesOn},
    {"BitBlt", 1, 0, Outcome::goesOn},
    {"DeleteDC", 6, 0, Outcome::goesOn},
    {"DeleteObject", 1, 0, Outcome::goesOn},

    // Banner and fonts.
    {"CreateDCA", 1, 0, Outcome::goesOn},
    {"CreateDCA", 2, 0, Outcome::goesOn},
    {"CreateDIBSection", 1, 0, Outcome::goesOn},
    {"CreateCompatibleDC", 1, 0, Outcome::goesOn},
    {"SetDIBits", 1, 0, Outcome::goesOn},
    {"GetObjectA", 1, 0, Outcome::goesOn},
    {"GetDeviceCaps", 1, 0, Outcome::goesOn},
    {"CreateFontA", 1, 0, Outcome::goesOn},
    {"CreateFontA", 2, 0, Outcome::goesOn},
    {"CreateFontA", 3, 0, Outcome::goesOn},

    // Sound and song.
    {"DirectSoundCreate", 1, failed, Outcome::cannotStart},
    {"IDirectSound::SetCooperativeLevel", 1, failed, Outcome::cannotStart},
    {"IDirectSound::CreateSoundBuffer", 1, failed, Outcome::cannotStart}, // the primary buffer
    {"IDirectSound::CreateSoundBuffer", 2, failed, Outcome::goesOn, startedNoMusic},
    {"IDirectSoundBuffer::Lock", 1, failed, Outcome::goesOn, unlockedNothingForIt},
    {"IDirectSoundBuffer::Lock", 2, failed, Outcome::goesOn, unlockedNothingForIt},
    {"IDirectSoundBuffer::Unlock", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::GetCurrentPosition", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::SetCurrentPosition", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Play", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Stop", 1, failed, Outcome::goesOn},
    {"CreateThread", 1, 0, Outcome::goesOn, playedBothTimes},
    {"CreateThread", 2, 0, Outcome::goesOn, playedBothTimes},

    // Files and staging.
    {"CreateFileA", 1, noHandle, Outcome::goesOn, showedThatThereIsNoInfoFile},
    {"ReadFile", 1, 0, Outcome::goesOn, showedThatTheInfoFileIsEmpty},
    {"GetCurrentDirectoryA", 1, 0, Outcome::goesOn},
    {"GetTempPathA", 1, 0, Outcome::goesOn, tookTheCurrentFolderForTheTempFolder},
    {"GetLongPathNameA", 1, 0, Outcome::goesOn, foundNoTempFolder},
    {"FindFirstFileA", 1, noHandle, Outcome::goesOn},     // there is no old folder
    {"FindFirstFileA", 2, noHandle, Outcome::noDataFile}, // the data file
    {"CreateDirectoryA", 1, 0, Outcome::goesOn},
    {"CopyFileA", 1, 0, Outcome::goesOn},
    {"CreateProcessA", 1, 0, Outcome::goesOn,
     askedTheShell}, // the self-extractor; the shell fails as well
    {"FindFirstFileA", 3, noHandle, Outcome::goesOn, leftTheStagingFolder}, // at the end
    {"FindNextFileA", 1, 0, Outcome::goesOn, leftTheStagingFolder},
    {"DeleteFileA", 1, 0, Outcome::goesOn, leftTheStagingFolder},
    {"RemoveDirectoryA", 1, 0, Outcome::goesOn, leftTheStagingFolder},
    {"FindClose", 1, 0, Outcome::goesOn},

    // The launch.
    {"CreateProcessA", 2, 0, Outcome::noRetry}, // the intro; the shell fails as well
    {"WaitForSingleObject", 1, WAIT_FAILED, Outcome::goesOn},
    {"WaitForSingleObject", 2, WAIT_FAILED, Outcome::retried},
    {"CloseHandle", 1, 0, Outcome::goesOn},
    {"HeapDestroy", 1, 0, Outcome::goesOn},
};

// What a run calls and has no row.
constexpr const char* withoutRow[] = {
    // Nothing that they give can mean a failure.
    "ExitProcess", "GetStockObject", "GlobalFree", "HeapFree", "InitCommonControls",
    "IDirectDraw7::Release", "IDirectDrawSurface7::Release", "IDirectInputDevice7A::Release",
    "IDirectSoundBuffer::Release", "MulDiv", "PeekMessageA", "Sleep",
    // The tests of texts, heaps, pools, registries, lists, files, children and the keyboard make
    // them fail.
    "HeapAlloc", "HeapReAlloc",
    // The player's library's own.
    "GlobalAlloc"};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.call << ", use " << row.use;
}

// A run that comes by every call of the table: an intro, the info page, and Escape at the end.
ProgramEnd runThroughAll(LauncherStage& stage) {
    stage.writeFile("ostrik.nfo", "a line\r\n");
    stage.devices.input.rest(2);
    stage.press({DIK_RETURN, DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN, DIK_ESCAPE});
    return stage.run();
}

ProgramEnd runThroughAll(LauncherStage& stage, const Row& row) {
    stage.calls.fail(row.call, row.use, row.result);
    return runThroughAll(stage);
}

void expectGoesOn(LauncherStage& stage, const Row& row) {
    const ProgramEnd end = runThroughAll(stage, row);
    EXPECT_EQ(end.exitCode, 0u);
    EXPECT_TRUE(stage.devices.desktop->messageBoxes.empty());
    EXPECT_GT(stage.devices.ddraw.flips(), 10) << "the menu came up";
    EXPECT_GE(stage.calls.uses("timeBeginPeriod"), 2) << "and came back after the intro";
    EXPECT_NE(stage.children.back().commandLine.find("000-Velmora2009.exe"), std::string::npos);
    EXPECT_EQ(Launcher.SelectedRow, 28) << "and the keys went on to the info page";
    EXPECT_GE(stage.calls.uses(row.call), row.use) << "the call was there to fail";
    EXPECT_EQ(stage.calls.uses("HeapDestroy"), 1);
    if (row.also)
        row.also(stage);
}

void expectBox(LauncherStage& stage, const Row& row, const char* text) {
    const ProgramEnd end = runThroughAll(stage, row);
    EXPECT_TRUE(end.calledExitProcess);
    EXPECT_EQ(end.exitCode, 0u);
    ASSERT_EQ(stage.devices.desktop->messageBoxes.size(), 1u);
    EXPECT_EQ(stage.devices.desktop->messageBoxes[0].title, "Error");
    EXPECT_EQ(stage.devices.desktop->messageBoxes[0].text, text);
    EXPECT_EQ(stage.devices.ddraw.flips(), 0);
    EXPECT_EQ(stage.calls.uses("HeapDestroy"), 1);
}

void expectFault(const Row& row) {
    const ChildReport child = reportFromStage([&](LauncherStage& stage) {
        stage.calls.before(row.call, row.use, [&stage] { stage.calls.echo(); });
        runThroughAll(stage, row);
    });
    EXPECT_TRUE(child.diedOfMemoryFaultAfter(row.lastCall) ||
                (row.otherLastCall && child.diedOfMemoryFaultAfter(row.otherLastCall)));
}

class FailureSweep : public testing::TestWithParam<Row> {};

std::string nameOf(const testing::TestParamInfo<Row>& info) {
    std::string name;
    for (const char* letter = info.param.call; *letter; ++letter)
        if (std::isalnum(static_cast<unsigned char>(*letter)))
            name += *letter;
    return name + "_Use" + std::to_string(info.param.use);
}

} // namespace

TEST_P(FailureSweep, HasItsOutcome) {
    const Row row = GetParam();
    switch (row.outcome) {
    case Outcome::goesOn: onStage([&](LauncherStage& stage) { expectGoesOn(stage, row); }); break;
    case Outcome::retried:
        onStage([&](LauncherStage& stage) {
            expectGoesOn(stage, row);
            EXPECT_EQ(stage.calls.uses(row.call), row.use + 1);
        });
        break;
    case Outcome::cannotStart:
        onStage([&](LauncherStage& stage) { expectBox(stage, row, "Can't initialize system"); });
        break;
    case Outcome::noDataFile:
        onStage([&](LauncherStage& stage) {
            expectBox(stage, row, "Can't open OstrikVelmora2009.dat");
        });
        break;
    case Outcome::noRetry:
        EXPECT_TRUE(
            reportFromStage([&](LauncherStage& stage) { runThroughAll(stage, row); }, busy).wasBusy)
            << "the loop never sleeps";
        break;
    case Outcome::fault: expectFault(row); break;
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FailureSweep, testing::ValuesIn(rows), nameOf);

TEST(FailureTable, HasARowForEveryCallOfARun) {
    std::set<std::string> known;
    for (const Row& row : rows)
        known.insert(row.call);
    known.insert(std::begin(withoutRow), std::end(withoutRow));
    onStage([&known](LauncherStage& stage) {
        runThroughAll(stage);
        std::set<std::string> missing;
        std::vector<std::string> lines = stage.calls.take();
        const std::vector<std::string> threadLines = stage.calls.takeOtherThreads();
        lines.insert(lines.end(), threadLines.begin(), threadLines.end());
        EXPECT_GT(lines.size(), 1000u);
        for (const std::string& line : lines)
            if (const std::string call = line.substr(0, line.find('(')); !known.contains(call))
                missing.insert(call);
        EXPECT_EQ(missing, std::set<std::string>());
    });
}
