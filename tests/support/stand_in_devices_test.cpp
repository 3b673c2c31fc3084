#include "tests/support/stand_in_devices.h"

#include "tests/support/child_run.h"
#include "tests/support/launcher_stage.h"
#include "tests/support/run_to_exit.h"
#include "tests/support/wait_until.h"

namespace {

using Lines = std::vector<std::string>;

// What a program does to get at an interface, in short.
template <typename Entry>
Entry fetch(const char* library, const char* entry) {
    HMODULE module = LoadLibraryA(library);
    return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module, entry)));
}

IDirectDraw7* makeDDraw() {
    using Entry = HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*);
    void* made = nullptr;
    fetch<Entry>("DDRAW.DLL", "DirectDrawCreateEx")(nullptr, &made, IID_IDirectDraw7, nullptr);
    return static_cast<IDirectDraw7*>(made);
}

IDirectInput7A* makeDInput() {
    using Entry = HRESULT(WINAPI*)(HINSTANCE, DWORD, REFIID, void**, IUnknown*);
    void* made = nullptr;
    fetch<Entry>("DINPUT.DLL", "DirectInputCreateEx")(GetModuleHandleA(nullptr), 0x0700,
                                                      IID_IDirectInput7A, &made, nullptr);
    return static_cast<IDirectInput7A*>(made);
}

IDirectSound* makeDSound() {
    using Entry = HRESULT(WINAPI*)(const GUID*, IDirectSound**, IUnknown*);
    IDirectSound* made = nullptr;
    fetch<Entry>("DSOUND.DLL", "DirectSoundCreate")(nullptr, &made, nullptr);
    return made;
}

IDirectInputDevice7A* makeDevice(IDirectInput7A* input, const GUID& which,
                                 const DIDATAFORMAT& format) {
    void* made = nullptr;
    input->CreateDeviceEx(which, IID_IDirectInputDevice7A, &made, nullptr);
    auto* device = static_cast<IDirectInputDevice7A*>(made);
    device->SetDataFormat(&format);
    return device;
}

// As DirectInput publishes it: 256 keys, one byte each.
const DIDATAFORMAT& keyboardFormat() {
    static DIOBJECTDATAFORMAT keys[256];
    for (DWORD code = 0; code < 256; ++code)
        keys[code] = {&GUID_Key, code,
                      DIDFT_OPTIONAL | DIDFT_BUTTON | static_cast<DWORD>(DIDFT_MAKEINSTANCE(code)),
                      0};
    static const DIDATAFORMAT format = {sizeof format, sizeof keys[0], DIDF_RELAXIS, 256, 256,
                                        keys};
    return format;
}

HWND anyWindow() { return reinterpret_cast<HWND>(0x1234); }

class StandIns : public testing::Test {
protected:
    CallRecorder calls;
    StandInDevices devices{calls};
};

class StandInDisplay : public StandIns {
protected:
    void SetUp() override {
        ddraw = makeDDraw();
        ddraw->SetCooperativeLevel(anyWindow(), DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
        ddraw->SetDisplayMode(320, 200, 16, 0, 0);
        DDSURFACEDESC2 wanted{};
        wanted.dwSize = sizeof wanted;
        wanted.dwFlags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
        wanted.dwBackBufferCount = 1;
        wanted.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
        ddraw->CreateSurface(&wanted, &primary, nullptr);
        DDSCAPS2 caps{};
        caps.dwCaps = DDSCAPS_BACKBUFFER;
        primary->GetAttachedSurface(&caps, &back);
        calls.take();
    }

    HRESULT fill(IDirectDrawSurface7* surface, DWORD pixel) {
        DDBLTFX effects{};
        effects.dwSize = sizeof effects;
        effects.dwFillColor = pixel;
        return surface->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, &effects);
    }

    IDirectDraw7* ddraw = nullptr;
    IDirectDrawSurface7* primary = nullptr;
    IDirectDrawSurface7* back = nullptr;
};

TEST_F(StandIns, ProveThatTheyWereUsed) {
    EXPECT_FALSE(devices.wereUsed());
    makeDDraw();
    makeDInput();
    EXPECT_FALSE(devices.wereUsed());
    makeDSound();
    EXPECT_TRUE(devices.wereUsed());
    EXPECT_EQ(devices.loads("DDRAW.DLL"), 1);
    EXPECT_EQ(StandInDevices::liveObjects(), 3);
}

TEST_F(StandIns, AreRecordedFromTheirLibraryOn) {
    IDirectDraw7* ddraw = makeDDraw();
    ddraw->SetCooperativeLevel(anyWindow(), 0x11);
    ddraw->Release();
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DDRAW.DLL") -> library1
        GetProcAddress(library1, "DirectDrawCreateEx") -> routine
        DirectDrawCreateEx(null, &ddraw1, IID_IDirectDraw7, null) -> 0
        IDirectDraw7::SetCooperativeLevel(ddraw1, window1, 0x11) -> 0
        IDirectDraw7::Release(ddraw1) -> 0
    )"));
    EXPECT_EQ(calls.liveNames(), Lines{"library1"});
    EXPECT_EQ(StandInDevices::liveObjects(), 0);
}

TEST_F(StandIns, LetOtherLibrariesThrough) {
    HMODULE kernel = LoadLibraryA("Kernel32.DLL");
    EXPECT_EQ(kernel, GetModuleHandleA("Kernel32.DLL"));
    EXPECT_NE(GetProcAddress(kernel, "GetLongPathNameA"), nullptr);
    EXPECT_TRUE(FreeLibrary(kernel));
}

TEST_F(StandIns, CanBeMissing) {
    calls.fail("LoadLibraryA", 1, 0, ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(LoadLibraryA("DSOUND.DLL"), nullptr);
    HMODULE library = LoadLibraryA("DSOUND.DLL");
    EXPECT_EQ(GetProcAddress(library, "NoSuchEntry"), nullptr);
    calls.fail("DirectSoundCreate", 1, DSERR_NODRIVER);
    EXPECT_EQ(makeDSound(), nullptr);
    EXPECT_NE(makeDSound(), nullptr);
}

TEST_F(StandInDisplay, FailsMethodsAsItIsTold) {
    calls.fail("IDirectDrawSurface7::Flip", 2, DDERR_SURFACELOST);
    EXPECT_EQ(primary->Flip(nullptr, DDFLIP_WAIT), DD_OK);
    EXPECT_EQ(primary->Flip(nullptr, DDFLIP_WAIT), DDERR_SURFACELOST);
    EXPECT_EQ(primary->Flip(nullptr, DDFLIP_WAIT), DD_OK);
    EXPECT_EQ(devices.ddraw.flips(), 2);
}

TEST_F(StandInDisplay, ShowsWhatWasDrawnOnlyAfterTheFlip) {
    fill(primary, 0);
    fill(back, 0xF800); // red in 5-6-5
    EXPECT_EQ(devices.ddraw.shown(10, 10), RGB(0, 0, 0));
    EXPECT_EQ(devices.ddraw.drawn(10, 10), RGB(255, 0, 0));
    primary->Flip(nullptr, DDFLIP_WAIT);
    EXPECT_EQ(devices.ddraw.shown(10, 10), RGB(255, 0, 0));
    EXPECT_EQ(devices.ddraw.shownCount({0, 0, 320, 200}, RGB(255, 0, 0)), 320 * 200);
}

TEST_F(StandInDisplay, LetsGdiDraw) {
    fill(back, 0);
    HDC dc = nullptr;
    ASSERT_EQ(back->GetDC(&dc), DD_OK);
    const RECT area = {10, 20, 30, 40};
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    back->ReleaseDC(dc);
    EXPECT_EQ(devices.ddraw.drawn(9, 20), RGB(0, 0, 0));
    EXPECT_EQ(devices.ddraw.drawn(10, 20), RGB(255, 255, 255));
    EXPECT_EQ(devices.ddraw.drawn(29, 39), RGB(255, 255, 255));
    EXPECT_EQ(devices.ddraw.drawn(30, 40), RGB(0, 0, 0));
}

TEST_F(StandInDisplay, GivesEachContextAnew) {
    HDC dc = nullptr;
    back->GetDC(&dc);
    SetTextColor(dc, 0xFFFFFF);
    back->ReleaseDC(dc);
    back->GetDC(&dc);
    EXPECT_EQ(SetTextColor(dc, 0), 0u);
    back->ReleaseDC(dc);
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::GetDC(surface2, &dc1) -> 0
        SetTextColor(dc1, 0xFFFFFF) -> 0
        IDirectDrawSurface7::ReleaseDC(surface2, dc1) -> 0
        IDirectDrawSurface7::GetDC(surface2, &dc1) -> 0
        SetTextColor(dc1, 0) -> 0
        IDirectDrawSurface7::ReleaseDC(surface2, dc1) -> 0
    )"));
}

TEST_F(StandInDisplay, LosesSurfacesUntilTheyAreRestored) {
    HDC dc = nullptr;
    DDSURFACEDESC2 description{};
    description.dwSize = sizeof description;
    devices.ddraw.loseSurfaces();
    EXPECT_EQ(fill(back, 0), DDERR_SURFACELOST);
    EXPECT_EQ(back->GetDC(&dc), DDERR_SURFACELOST);
    EXPECT_EQ(back->IsLost(), DDERR_SURFACELOST);
    EXPECT_EQ(primary->Lock(nullptr, &description, DDLOCK_WAIT, nullptr), DDERR_SURFACELOST);
    EXPECT_EQ(primary->Flip(nullptr, DDFLIP_WAIT), DDERR_SURFACELOST);
    EXPECT_EQ(ddraw->RestoreAllSurfaces(), DD_OK);
    EXPECT_EQ(back->IsLost(), DD_OK);
    EXPECT_EQ(primary->Flip(nullptr, DDFLIP_WAIT), DD_OK);
}

TEST_F(StandInDisplay, CannotRestoreWhileTheUserIsAway) {
    devices.switchAway(true);
    EXPECT_EQ(ddraw->RestoreAllSurfaces(), DDERR_WRONGMODE);
    EXPECT_EQ(primary->IsLost(), DDERR_SURFACELOST);
    devices.switchBack();
    EXPECT_EQ(primary->IsLost(), DDERR_SURFACELOST);
    EXPECT_EQ(ddraw->RestoreAllSurfaces(), DD_OK);
    EXPECT_EQ(primary->IsLost(), DD_OK);
}

TEST_F(StandInDisplay, TellsItsPixelFormat) {
    DDSURFACEDESC2 description{};
    description.dwSize = sizeof description;
    EXPECT_EQ(primary->Lock(nullptr, &description, DDLOCK_WAIT, nullptr), DD_OK);
    EXPECT_EQ(description.ddpfPixelFormat.dwGBitMask, 0x7E0u);
    EXPECT_EQ(description.lPitch, 640);
    EXPECT_EQ(primary->Lock(nullptr, &description, DDLOCK_WAIT, nullptr), DDERR_SURFACEBUSY);
    EXPECT_EQ(primary->Unlock(nullptr), DD_OK);
    EXPECT_EQ(primary->Unlock(nullptr), DDERR_NOTLOCKED);
}

TEST_F(StandIns, HaveAPaletteAtEightBits) {
    IDirectDraw7* ddraw = makeDDraw();
    ddraw->SetCooperativeLevel(anyWindow(), DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
    ddraw->SetDisplayMode(320, 200, 8, 0, 0);
    DDSURFACEDESC2 wanted{};
    wanted.dwSize = sizeof wanted;
    wanted.dwFlags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
    wanted.dwBackBufferCount = 1;
    wanted.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
    IDirectDrawSurface7* primary = nullptr;
    ASSERT_EQ(ddraw->CreateSurface(&wanted, &primary, nullptr), DD_OK);
    calls.take();
    IDirectDrawPalette* palette = nullptr;
    primary->GetPalette(&palette);
    primary->SetPalette(palette);
    palette->Release();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::GetPalette(surface1, &colors1) -> 0
        IDirectDrawSurface7::SetPalette(surface1, colors1) -> 0
        IDirectDrawPalette::Release(colors1) -> 1
    )"));
}

TEST_F(StandInDisplay, HasNoPaletteAtSixteenBits) {
    IDirectDrawPalette* palette = nullptr;
    EXPECT_EQ(primary->GetPalette(&palette), DDERR_NOPALETTEATTACHED);
}

TEST_F(StandInDisplay, GivesTheDesktopItsModeBack) {
    EXPECT_EQ(devices.ddraw.mode().width, 320u);
    ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL);
    EXPECT_EQ(devices.ddraw.mode().width, 0u);
    EXPECT_FALSE(devices.ddraw.isExclusive());
    EXPECT_EQ(ddraw->SetDisplayMode(320, 200, 16, 0, 0), DDERR_NOEXCLUSIVEMODE);
}

TEST_F(StandInDisplay, CountsReferences) {
    EXPECT_EQ(back->Release(), 0u);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u) << "the back buffer lives with its primary";
    EXPECT_EQ(primary->Release(), 0u);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_EQ(ddraw->Release(), 0u);
    EXPECT_EQ(StandInDevices::liveObjects(), 0);
}

TEST_F(StandInDisplay, GivesAMethodThatNobodyNeedsAsNotThere) {
    EXPECT_EQ(ddraw->FlipToGDISurface(), E_NOTIMPL);
    EXPECT_TRUE(calls.match("IDirectDraw7::FlipToGDISurface(ddraw1) -> 0x80004001"));
}

TEST(ReleasedSurface, IsNotToBeTouched) {
    const ChildReport child = runInChild([] {
        CallRecorder calls;
        StandInDevices devices(calls);
        IDirectDraw7* ddraw = makeDDraw();
        ddraw->Release();
        ddraw->RestoreAllSurfaces();
    });
    EXPECT_TRUE(child.diedOfMemoryFault()) << child.exitCode;
}

class StandInKeyboard : public StandIns {
protected:
    void SetUp() override {
        keyboard = makeDevice(makeDInput(), GUID_SysKeyboard, keyboardFormat());
        keyboard->SetCooperativeLevel(anyWindow(), 0x16);
        keyboard->Acquire();
    }

    IDirectInputDevice7A* keyboard = nullptr;
    uint8_t state[256] = {};
};

TEST_F(StandInKeyboard, PlaysItsScriptSnapshotBySnapshot) {
    devices.input.press(DIK_DOWN);
    devices.input.script({{DIK_UP, DIK_LEFT}});
    EXPECT_EQ(keyboard->GetDeviceState(256, state), DI_OK);
    EXPECT_EQ(state[DIK_DOWN], 0x80);
    keyboard->GetDeviceState(256, state);
    EXPECT_EQ(state[DIK_DOWN], 0);
    keyboard->GetDeviceState(256, state);
    EXPECT_EQ(state[DIK_UP], 0x80);
    EXPECT_EQ(state[DIK_LEFT], 0x80);
    EXPECT_EQ(devices.input.snapshotsLeft(), 0u);
    keyboard->GetDeviceState(256, state);
    EXPECT_EQ(state[DIK_UP], 0);
    EXPECT_EQ(devices.input.keyboardReads(), 4);
}

TEST_F(StandInKeyboard, TellsWhenItsScriptIsOver) {
    int ends = 0;
    devices.input.rest(1);
    devices.input.onScriptEnd = [&] { ++ends; };
    keyboard->GetDeviceState(256, state);
    EXPECT_EQ(ends, 0);
    keyboard->GetDeviceState(256, state);
    EXPECT_EQ(ends, 1);
}

TEST_F(StandInKeyboard, IsLostOnceAndThenNotAcquired) {
    devices.input.press(DIK_UP);
    devices.input.lose();
    EXPECT_EQ(keyboard->GetDeviceState(256, state), DIERR_INPUTLOST);
    EXPECT_EQ(keyboard->GetDeviceState(256, state), DIERR_NOTACQUIRED);
    EXPECT_EQ(keyboard->Acquire(), DI_OK);
    EXPECT_EQ(keyboard->GetDeviceState(256, state), DI_OK);
    EXPECT_EQ(state[DIK_UP], 0x80) << "a failed read takes no snapshot";
}

TEST_F(StandInKeyboard, CannotBeAcquiredInTheBackground) {
    devices.switchAway(false);
    EXPECT_EQ(keyboard->Acquire(), DIERR_OTHERAPPHASPRIO);
    devices.switchBack();
    EXPECT_EQ(keyboard->Acquire(), DI_OK);
    EXPECT_EQ(keyboard->Acquire(), S_FALSE);
}

class StandInMouse : public StandIns {
protected:
    void SetUp() override {
        DIDATAFORMAT format{};
        format.dwSize = sizeof format;
        format.dwDataSize = 16;
        mouse = makeDevice(makeDInput(), GUID_SysMouse, format);
        mouse->SetCooperativeLevel(anyWindow(), 5);
        DIPROPDWORD size{};
        size.diph.dwSize = sizeof size;
        size.diph.dwHeaderSize = sizeof size.diph;
        size.dwData = 4;
        mouse->SetProperty(DIPROP_BUFFERSIZE, &size.diph);
        mouse->Acquire();
    }

    HRESULT read() {
        count = 24;
        return mouse->GetDeviceData(16, events, &count, 0);
    }

    // Only the short form of each record is read and written.
    const DWORD* event(size_t at) const {
        return reinterpret_cast<const DWORD*>(reinterpret_cast<const uint8_t*>(events) + 16 * at);
    }

    IDirectInputDevice7A* mouse = nullptr;
    DIDEVICEOBJECTDATA events[24] = {};
    DWORD count = 0;
};

TEST_F(StandInMouse, GivesItsEventsOnceAndInOrder) {
    devices.input.move(5, -7);
    devices.input.button(1, true);
    EXPECT_EQ(read(), DI_OK);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(event(0)[0], static_cast<DWORD>(DIMOFS_X));
    EXPECT_EQ(event(1)[1], static_cast<DWORD>(-7));
    EXPECT_EQ(event(2)[0], static_cast<DWORD>(DIMOFS_BUTTON1));
    EXPECT_EQ(event(2)[1], 0x80u);
    EXPECT_EQ(read(), DI_OK);
    EXPECT_EQ(count, 0u);
}

TEST_F(StandInMouse, OverflowsWhenItIsToldToAndWhenItsBufferIsTooSmall) {
    devices.input.overflowMouse();
    EXPECT_EQ(read(), DI_BUFFEROVERFLOW);
    EXPECT_EQ(read(), DI_OK);
    for (int at = 0; at < 5; ++at)
        devices.input.wheel(120);
    EXPECT_EQ(read(), DI_BUFFEROVERFLOW);
    EXPECT_EQ(read(), DI_OK);
    EXPECT_EQ(count, 0u);
}

TEST_F(StandInMouse, NeedsABufferAndAnAcquiredDevice) {
    mouse->Unacquire();
    EXPECT_EQ(read(), DIERR_NOTACQUIRED);
    mouse->Acquire();
    devices.input.lose();
    EXPECT_EQ(read(), DIERR_INPUTLOST);
    EXPECT_EQ(read(), DIERR_NOTACQUIRED);
}

TEST_F(StandInMouse, MayHaveNoWheelStep) {
    DIPROPDWORD step{};
    step.diph.dwSize = sizeof step;
    step.diph.dwHeaderSize = sizeof step.diph;
    step.diph.dwObj = DIMOFS_Z;
    step.diph.dwHow = DIPH_BYOFFSET;
    EXPECT_EQ(mouse->GetProperty(DIPROP_GRANULARITY, &step.diph), DI_OK);
    EXPECT_EQ(step.dwData, 120u);
    devices.input.granularity = 0;
    EXPECT_EQ(mouse->GetProperty(DIPROP_GRANULARITY, &step.diph), DIERR_UNSUPPORTED);
}

class StandInSound : public StandIns {
protected:
    void SetUp() override {
        sound = makeDSound();
        sound->SetCooperativeLevel(anyWindow(), DSSCL_PRIORITY);
        WAVEFORMATEX format{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
        DSBUFFERDESC wanted{};
        wanted.dwSize = sizeof wanted;
        wanted.dwFlags = DSBCAPS_GETCURRENTPOSITION2;
        wanted.dwBufferBytes = 1000;
        wanted.lpwfxFormat = &format;
        sound->CreateSoundBuffer(&wanted, &buffer, nullptr);
    }

    IDirectSound* sound = nullptr;
    IDirectSoundBuffer* buffer = nullptr;
};

TEST_F(StandInSound, KeepsWhatIsWrittenIntoItsBuffer) {
    void* region = nullptr;
    DWORD size = 0;
    EXPECT_EQ(devices.sound.bytes()[500], StandInDSound::newBytes);
    EXPECT_EQ(buffer->Lock(500, 500, &region, &size, nullptr, nullptr, 0), DS_OK);
    EXPECT_EQ(size, 500u);
    memset(region, 7, size);
    EXPECT_EQ(devices.sound.unlocks(), 0);
    buffer->Unlock(region, size, nullptr, 0);
    EXPECT_EQ(devices.sound.unlocks(), 1);
    EXPECT_EQ(devices.sound.bytes()[499], StandInDSound::newBytes);
    EXPECT_EQ(devices.sound.bytes()[500], 7);
}

TEST_F(StandInSound, MovesItsCursorOnlyByHand) {
    buffer->SetCurrentPosition(100);
    buffer->Play(0, 0, DSBPLAY_LOOPING);
    DWORD cursor = 0;
    buffer->GetCurrentPosition(&cursor, nullptr);
    EXPECT_EQ(cursor, 100u);
    devices.sound.moveCursor(501);
    buffer->GetCurrentPosition(&cursor, nullptr);
    EXPECT_EQ(cursor, 501u);
    EXPECT_TRUE(devices.sound.isPlaying());
    EXPECT_TRUE(devices.sound.isLooping());
    buffer->Stop();
    EXPECT_FALSE(devices.sound.isPlaying());
}

DWORD WINAPI pollCursor(void* parameter) {
    auto* polled = static_cast<IDirectSoundBuffer*>(parameter);
    DWORD cursor = 0;
    while (cursor != 999)
        polled->GetCurrentPosition(&cursor, nullptr);
    return 0;
}

TEST_F(StandInSound, ServesASecondThreadAndKeepsItsCallsApart) {
    HANDLE thread = CreateThread(nullptr, 8192, pollCursor, buffer, 0, nullptr);
    ASSERT_TRUE(
        waitUntil([this] { return calls.uses("IDirectSoundBuffer::GetCurrentPosition") > 3; }));
    calls.take();
    devices.sound.moveCursor(999);
    WaitForSingleObject(thread, INFINITE);
    EXPECT_EQ(calls.takeOtherThreads().back(),
              "IDirectSoundBuffer::GetCurrentPosition(buffer1, &999, null) -> 0");
    EXPECT_EQ(calls.take().size(), 1u);
}

TEST(WatchedInterface, HasItsMethodsBackAfterwards) {
    void* const hook = reinterpret_cast<void*>(hook::IDirectDraw7_Release::call);
    void** table = nullptr;
    for (int pass = 0; pass < 2; ++pass) {
        CallRecorder calls;
        StandInDevices devices(calls);
        IDirectDraw7* ddraw = makeDDraw();
        table = *reinterpret_cast<void***>(ddraw);
        EXPECT_EQ(table[2], hook);
        EXPECT_EQ(ddraw->Release(), 0u);
        EXPECT_EQ(calls.uses("IDirectDraw7::Release"), 1);
    }
    EXPECT_NE(table[2], hook);
}

TEST(WholeLauncher, RunsOnStandInsAndShowsItsMenu) {
    onStage([](LauncherStage& stage) {
        int redPixels = 0;
        stage.devices.input.rest(2);
        stage.devices.input.onScriptEnd = [&] {
            redPixels = stage.devices.ddraw.shownCount({100, 145, 500, 175}, RGB(255, 0, 0));
            stage.devices.input.press(DIK_ESCAPE);
        };
        const ProgramEnd end = stage.run();
        EXPECT_TRUE(end.calledExitProcess);
        EXPECT_EQ(end.exitCode, 0u);
        EXPECT_TRUE(stage.devices.wereUsed());
        EXPECT_GT(redPixels, 500) << "the highlight of the first row";
        EXPECT_EQ(stage.devices.ddraw.surfaceCount(), 0u);
        EXPECT_FALSE(stage.devices.desktop->isShown());
    });
}

TEST(StandInDesktopTest, DeliversOnlyTheMessagesOfTheTest) {
    static UINT last;
    CallRecorder calls;
    StandInDesktop desktop(calls);
    WNDCLASSEXA window{};
    window.cbSize = sizeof window;
    window.lpszClassName = "any";
    window.lpfnWndProc = [](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
        last = message;
        return 5;
    };
    RegisterClassExA(&window);
    CreateWindowExA(0, "any", "title", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    desktop.post(WM_CLOSE);
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(DispatchMessageA(&message), 5);
    EXPECT_EQ(last, static_cast<UINT>(WM_CLOSE));
    EXPECT_EQ(desktop.title(), "title");
}

TEST(StandInDesktopTest, KeepsTheWordsOfMessageBoxes) {
    CallRecorder calls;
    StandInDesktop desktop(calls);
    EXPECT_EQ(MessageBoxA(nullptr, "words", "Error", 0), IDOK);
    ASSERT_EQ(desktop.messageBoxes.size(), 1u);
    EXPECT_EQ(desktop.messageBoxes[0].title, "Error");
    EXPECT_EQ(desktop.messageBoxes[0].text, "words");
}

TEST(RunToExit, ComesBackWithTheExitCode) {
    CallRecorder calls;
    bool wentOn = false;
    const ProgramEnd end = runToExit(calls, [&] {
        Sleep(0);
        ExitProcess(3);
        wentOn = true;
    });
    EXPECT_TRUE(end.calledExitProcess);
    EXPECT_EQ(end.exitCode, 3u);
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(calls.take(), (Lines{"Sleep(0)", "ExitProcess(3)"}));
}

TEST(RunToExit, TellsAReturnFromAnExit) {
    CallRecorder calls;
    EXPECT_FALSE(runToExit(calls, [] {}).calledExitProcess);
}

TEST(RunInChild, GivesWhatTheScenarioWrites) {
    const ChildReport child = runInChild([] { printf("hello from the child"); });
    EXPECT_TRUE(child.succeeded());
    EXPECT_NE(child.output.find("hello from the child"), std::string::npos);
}

TEST(RunInChild, SeesAFailedExpectation) {
    const ChildReport child = runInChild([] { EXPECT_EQ(1, 2); });
    EXPECT_EQ(child.exitCode, 1u);
    EXPECT_NE(child.output.find("Failure"), std::string::npos);
}

TEST(RunInChild, SeesAMemoryFault) {
    const ChildReport child = runInChild([] {
        volatile int* nowhere = nullptr;
        *nowhere = 1;
    });
    EXPECT_TRUE(child.diedOfMemoryFault());
}

TEST(RunInChild, EndsAScenarioThatIsBusyForEver) {
    const ChildReport child = runInChild(
        [] {
            CallRecorder calls;
            calls.echo();
            Sleep(1);
            for (volatile bool forEver = true; forEver;) {
            }
        },
        std::chrono::seconds(1));
    EXPECT_TRUE(child.wasBusy);
    EXPECT_FALSE(child.timedOut);
    EXPECT_FALSE(child.succeeded());
    EXPECT_NE(child.output.find("Sleep(1)"), std::string::npos);
}

// The stand-in and Wine's own keyboard give the same answers, where Wine has them.
Lines keyboardStory(CallRecorder& calls, HWND window) {
    calls.only({"IDirectInputDevice7A"});
    IDirectInputDevice7A* keyboard = makeDevice(makeDInput(), GUID_SysKeyboard, keyboardFormat());
    uint8_t state[256];
    keyboard->GetDeviceState(256, state);
    keyboard->Acquire();
    keyboard->SetCooperativeLevel(nullptr, 0x16);
    keyboard->SetCooperativeLevel(window, DISCL_NONEXCLUSIVE | DISCL_BACKGROUND);
    keyboard->Acquire();
    keyboard->Acquire();
    keyboard->SetDataFormat(&keyboardFormat());
    keyboard->GetDeviceState(256, state);
    keyboard->GetDeviceState(255, state);
    keyboard->Unacquire();
    keyboard->Unacquire();
    keyboard->Release();
    return calls.take();
}

TEST(StandInsAgainstTheSystem, KeyboardsAnswerAlike) {
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    Lines real;
    {
        CallRecorder calls;
        real = keyboardStory(calls, window);
        EXPECT_EQ(calls.live("device"), 0u);
    }
    CallRecorder calls;
    StandInDevices devices(calls, false);
    EXPECT_EQ(keyboardStory(calls, window), real);
}

Lines displayStory(CallRecorder& calls, HWND window) {
    calls.only({"IDirectDraw7", "IDirectDrawSurface7"});
    calls.except({"IDirectDraw7::AddRef"}); // the system's surfaces hold on to their maker
    IDirectDraw7* ddraw = makeDDraw();
    DDSURFACEDESC2 wanted{};
    wanted.dwSize = sizeof wanted;
    wanted.dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
    wanted.dwWidth = 64;
    wanted.dwHeight = 32;
    wanted.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
    IDirectDrawSurface7* surface = nullptr;
    ddraw->CreateSurface(&wanted, &surface, nullptr);
    ddraw->SetCooperativeLevel(nullptr, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
    ddraw->SetCooperativeLevel(window, DDSCL_NORMAL);
    ddraw->CreateSurface(&wanted, &surface, nullptr);
    HDC dc = nullptr;
    surface->GetDC(&dc);
    surface->ReleaseDC(dc);
    DDSURFACEDESC2 description{};
    description.dwSize = sizeof description;
    surface->Lock(nullptr, &description, DDLOCK_WAIT, nullptr);
    surface->Unlock(nullptr);
    surface->Unlock(nullptr);
    surface->Flip(nullptr, DDFLIP_WAIT);
    surface->IsLost();
    const Lines story = calls.take();
    surface->Release();
    ddraw->Release();
    return story;
}

TEST(StandInsAgainstTheSystem, DisplaysAnswerAlike) {
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    Lines real;
    {
        CallRecorder calls;
        real = displayStory(calls, window);
    }
    CallRecorder calls;
    StandInDevices devices(calls, false);
    EXPECT_EQ(displayStory(calls, window), real);
}

} // namespace
