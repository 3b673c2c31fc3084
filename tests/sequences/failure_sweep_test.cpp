// Every platform call that the launcher's run depends on, made to fail once, and what must follow.
// A new call gets a row here.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/variables.h"

#include <cctype>
#include <ddraw.h>
#include <ostream>

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
};

constexpr int64_t failed = E_FAIL;
constexpr auto noHandle = static_cast<int64_t>(-1); // INVALID_HANDLE_VALUE

constexpr Row rows[] = {
    // The start: the desktop's window, and the libraries that are loaded at run time.
    {"HeapCreate", 1, 0, Outcome::fault},
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
    {"IDirectInputDevice7A::GetDeviceState", 1, failed, Outcome::goesOn},
    {"IDirectInputDevice7A::GetDeviceState", 3, failed, Outcome::goesOn},
    {"IDirectInputDevice7A::Unacquire", 1, failed, Outcome::goesOn},
    {"ClipCursor", 1, 0, Outcome::goesOn},

    // The screen. A first open that fails is not noticed, and the first frame has no surface.
    {"DirectDrawCreateEx", 1, failed, Outcome::cannotStart},
    {"SetWindowTextA", 1, 0, Outcome::goesOn},
    {"MoveWindow", 1, 0, Outcome::goesOn},
    {"ShowCursor", 1, 0, Outcome::goesOn},
    {"ShowWindow", 1, 0, Outcome::goesOn},
    {"IDirectDraw7::SetCooperativeLevel", 1, failed, Outcome::fault},
    {"IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE, Outcome::fault},
    {"IDirectDraw7::CreateSurface", 1, failed, Outcome::fault},
    {"IDirectDrawSurface7::GetAttachedSurface", 1, failed, Outcome::fault},
    {"IDirectDraw7::GetMonitorFrequency", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Lock", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::GetDC", 1, failed, Outcome::goesOn}, // the back buffer's black fill
    {"IDirectDrawSurface7::GetDC", 2, failed, Outcome::goesOn}, // the primary's
    {"IDirectDrawSurface7::GetDC", 3, failed, Outcome::goesOn}, // the first frame's
    {"FillRect", 1, 0, Outcome::goesOn},
    {"timeBeginPeriod", 1, 97, Outcome::goesOn},
    {"timeEndPeriod", 1, 97, Outcome::goesOn},

    // A frame.
    {"IDirectDrawSurface7::Blt", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Blt", 2, DDERR_SURFACELOST, Outcome::goesOn},
    {"IDirectDrawSurface7::ReleaseDC", 3, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Flip", 1, failed, Outcome::goesOn},
    {"IDirectDrawSurface7::Flip", 2, DDERR_SURFACELOST, Outcome::goesOn},
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
    {"IDirectSound::CreateSoundBuffer", 2, failed, Outcome::goesOn},      // no music
    {"IDirectSoundBuffer::Lock", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Lock", 2, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Unlock", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::GetCurrentPosition", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::SetCurrentPosition", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Play", 1, failed, Outcome::goesOn},
    {"IDirectSoundBuffer::Stop", 1, failed, Outcome::goesOn},
    {"CreateThread", 1, 0, Outcome::goesOn},
    {"CreateThread", 2, 0, Outcome::goesOn},

    // Files and staging.
    {"CreateFileA", 1, noHandle, Outcome::goesOn}, // the info file
    {"ReadFile", 1, 0, Outcome::goesOn},
    {"GetCurrentDirectoryA", 1, 0, Outcome::goesOn},
    {"GetTempPathA", 1, 0, Outcome::goesOn}, // the current folder takes its place
    {"GetLongPathNameA", 1, 0, Outcome::goesOn},
    {"FindFirstFileA", 1, noHandle, Outcome::goesOn},     // there is no old folder
    {"FindFirstFileA", 2, noHandle, Outcome::noDataFile}, // the data file
    {"CreateDirectoryA", 1, 0, Outcome::goesOn},
    {"CopyFileA", 1, 0, Outcome::goesOn},
    {"CreateProcessA", 1, 0, Outcome::goesOn}, // the self-extractor; the shell fails as well
    {"FindNextFileA", 1, 0, Outcome::goesOn},
    {"DeleteFileA", 1, 0, Outcome::goesOn},
    {"RemoveDirectoryA", 1, 0, Outcome::goesOn},
    {"FindClose", 1, 0, Outcome::goesOn},

    // The launch.
    {"CreateProcessA", 2, 0, Outcome::noRetry}, // the intro; the shell fails as well
    {"WaitForSingleObject", 1, WAIT_FAILED, Outcome::goesOn},
    {"WaitForSingleObject", 2, WAIT_FAILED, Outcome::retried},
    {"CloseHandle", 1, 0, Outcome::goesOn},
    {"HeapDestroy", 1, 0, Outcome::goesOn},
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.call << ", use " << row.use;
}

// A run that comes by every call of the table: an intro, the info page, and Escape at the end.
ProgramEnd runThroughAll(LauncherStage& stage, const Row& row) {
    stage.writeFile("ostrik.nfo", "a line\r\n");
    stage.calls.fail(row.call, row.use, row.result);
    stage.devices.input.rest(2);
    stage.press({DIK_RETURN, DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN, DIK_ESCAPE});
    return stage.run();
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
    case Outcome::noRetry: {
        const ChildReport child = reportFromStage(
            [&](LauncherStage& stage) { runThroughAll(stage, row); }, std::chrono::seconds(5));
        EXPECT_TRUE(child.timedOut);
        EXPECT_GT(child.processorTime, std::chrono::milliseconds(500)) << "the loop never sleeps";
        break;
    }
    case Outcome::fault:
        EXPECT_TRUE(reportFromStage([&](LauncherStage& stage) {
                        // The first frame's clear is where it dies; it gets no further.
                        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { ExitProcess(0); });
                        runThroughAll(stage, row);
                    }).diedOfMemoryFault());
        break;
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FailureSweep, testing::ValuesIn(rows), nameOf);
