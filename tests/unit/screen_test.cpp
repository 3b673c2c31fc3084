#include "display/screen.h"

#include "tests/support/screen_fixture.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int16_t w = 96;
constexpr int16_t h = 64;

// Whether all of a record behind its size is zero.
template <typename Record>
bool isEmptyBehindItsSize(const Record& record) {
    Record expected{};
    expected.dwSize = record.dwSize;
    return memcmp(&record, &expected, sizeof record) == 0;
}

// --- The record ---

TEST(ScreenDeviceRecord, HasItsFieldsInOrder) {
    const size_t offsets[] = {
        offsetof(ScreenDevice, initDone),         offsetof(ScreenDevice, hiddenWindow),
        offsetof(ScreenDevice, windowMade),       offsetof(ScreenDevice, window),
        offsetof(ScreenDevice, windowed),         offsetof(ScreenDevice, ddraw),
        offsetof(ScreenDevice, ddrawLibrary),     offsetof(ScreenDevice, ddrawUsers),
        offsetof(ScreenDevice, primary),          offsetof(ScreenDevice, backBuffer),
        offsetof(ScreenDevice, target),           offsetof(ScreenDevice, targetWidth),
        offsetof(ScreenDevice, targetHeight),     offsetof(ScreenDevice, screenWidth),
        offsetof(ScreenDevice, screenHeight),     offsetof(ScreenDevice, depth),
        offsetof(ScreenDevice, refreshRate),      offsetof(ScreenDevice, monitorFrequency),
        offsetof(ScreenDevice, active),           offsetof(ScreenDevice, lostNotified),
        offsetof(ScreenDevice, onFocusLost),      offsetof(ScreenDevice, present),
        offsetof(ScreenDevice, pixelFormat),      offsetof(ScreenDevice, primaryDesc),
        offsetof(ScreenDevice, fillFx),           offsetof(ScreenDevice, targetDc),
        offsetof(ScreenDevice, backBufferTarget), offsetof(ScreenDevice, surfaces),
        offsetof(ScreenDevice, blendTable),       offsetof(ScreenDevice, limiterRate),
        offsetof(ScreenDevice, limiterTicks),     offsetof(ScreenDevice, limiterStamp),
    };
    EXPECT_TRUE(std::is_sorted(std::begin(offsets), std::end(offsets)));
    EXPECT_EQ(sizeof Screen.targetDc, 8u);
    EXPECT_EQ(sizeof Screen.pixelFormat, 4u);
    EXPECT_EQ(sizeof Screen.blendTable, 65536u * 4);
    EXPECT_EQ(sizeof Screen.primaryDesc, 136u);
}

// --- Set-up ---

using ScreenSubsystemInit = ScreenTest;

TEST_F(ScreenSubsystemInit, GivesTheRegistryOfSurfaces) {
    ObjectRegistry* surfaces = Screen_SubsystemInit();
    ASSERT_NE(surfaces, nullptr);
    EXPECT_EQ(surfaces, Screen.surfaces);
    EXPECT_EQ(surfaces->recordSize, static_cast<int32_t>(sizeof(ScreenSurface)));
    EXPECT_EQ(surfaces->growthStep, 64);
    EXPECT_EQ(surfaces->capacity, 64);
    EXPECT_EQ(surfaces->onFree, &Screen_FreeSurface);
}

TEST_F(ScreenSubsystemInit, EmptiesTheWorkRecords) {
    memset(&Screen.fillFx, 0x5A, sizeof Screen.fillFx);
    memset(&Screen.primaryDesc, 0x5A, sizeof Screen.primaryDesc);
    memset(&ScreenLockDesc, 0x5A, sizeof ScreenLockDesc);
    memset(&ScreenCopyDesc, 0x5A, sizeof ScreenCopyDesc);
    Screen_SubsystemInit();
    EXPECT_EQ(Screen.fillFx.dwSize, sizeof(DDBLTFX));
    EXPECT_EQ(Screen.primaryDesc.dwSize, 136u);
    EXPECT_EQ(ScreenLockDesc.dwSize, 136u);
    EXPECT_EQ(ScreenCopyDesc.dwSize, 136u);
    EXPECT_TRUE(isEmptyBehindItsSize(Screen.fillFx));
    EXPECT_TRUE(isEmptyBehindItsSize(Screen.primaryDesc));
    EXPECT_TRUE(isEmptyBehindItsSize(ScreenLockDesc));
    EXPECT_TRUE(isEmptyBehindItsSize(ScreenCopyDesc));
}

TEST_F(ScreenSubsystemInit, ResetsRateContextAndLimiter) {
    Screen.refreshRate = 60;
    Screen.targetDc = 5;
    Screen.limiterRate = 6;
    Screen.limiterTicks = 7;
    Screen.limiterStamp = 8;
    Screen_SubsystemInit();
    EXPECT_EQ(Screen.refreshRate, 0);
    EXPECT_EQ(Screen.targetDc, 0);
    EXPECT_EQ(Screen.limiterRate, 0);
    EXPECT_EQ(Screen.limiterTicks, 0);
    EXPECT_EQ(Screen.limiterStamp, 0);
}

struct BlendEntry {
    int32_t i;
    int32_t j;
    int32_t value;
};

void PrintTo(const BlendEntry& entry, std::ostream* out) { *out << entry.i << " x " << entry.j; }

class BlendTable : public ScreenTest, public testing::WithParamInterface<BlendEntry> {};

TEST_P(BlendTable, HoldsTheProductInWholeNumbers) {
    Screen_SubsystemInit();
    EXPECT_EQ(Screen.blendTable[GetParam().i * 256 + GetParam().j - 1], GetParam().value);
}

// Worked out by hand: i * 256 / (65280 / j), both divisions without their remainders.
INSTANTIATE_TEST_SUITE_P(Entries, BlendTable,
                         testing::Values(BlendEntry{0, 1, 0}, BlendEntry{0, 256, 0},
                                         BlendEntry{254, 1, 0}, BlendEntry{255, 1, 1},
                                         BlendEntry{1, 254, 0}, BlendEntry{1, 255, 1},
                                         BlendEntry{1, 256, 1}, BlendEntry{128, 128, 64},
                                         BlendEntry{200, 3, 2}, BlendEntry{100, 200, 78},
                                         BlendEntry{127, 129, 64}, BlendEntry{254, 256, 254},
                                         BlendEntry{254, 255, 254}, BlendEntry{255, 255, 255},
                                         BlendEntry{255, 256, 256}));

TEST_F(ScreenSubsystemInit, LeavesTheScreenClosed) {
    Screen_SubsystemInit();
    EXPECT_EQ(Screen.initDone, 1);
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(Screen.window, nullptr);
    EXPECT_EQ(Screen.present, nullptr);
    EXPECT_EQ(Screen.onFocusLost, nullptr);
    EXPECT_EQ(Screen.active, 0);
    EXPECT_FALSE(devices.desktop->isShown());
}

TEST_F(ScreenSubsystemInit, StartsTheKeyboard) {
    Screen_SubsystemInit();
    EXPECT_NE(Keyboard.device, nullptr);
}

TEST_F(ScreenSubsystemInit, FailsWithoutAWindowClass) {
    calls.fail("RegisterClassExA", 1, 0);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_EQ(Screen.initDone, 0);
    EXPECT_EQ(Keyboard.started, 0);
    EXPECT_EQ(Screen.ddrawUsers, 0);
}

TEST_F(ScreenSubsystemInit, FailsWithoutAWindow) {
    calls.fail("CreateWindowExA", 1, 0);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_EQ(Screen.initDone, 0);
    EXPECT_EQ(Keyboard.started, 0);
    EXPECT_EQ(Screen.ddrawUsers, 0);
}

TEST_F(ScreenSubsystemInit, FailsWithoutAKeyboard) {
    calls.fail("IDirectInput7A::CreateDeviceEx", 1, E_FAIL);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_EQ(Screen.initDone, 0);
    EXPECT_EQ(Screen.ddrawUsers, 0);
    EXPECT_FALSE(devices.ddraw.wasMade());
}

TEST_F(ScreenSubsystemInit, FailsWithoutDirectDrawAndCountsItsUser) {
    calls.fail("DirectDrawCreateEx", 1, E_FAIL);
    EXPECT_EQ(Screen_SubsystemInit(), nullptr);
    EXPECT_EQ(Screen.initDone, 1);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(Screen.ddraw, nullptr);
}

TEST_F(ScreenSubsystemInit, WithoutDirectDrawCanBeEnded) {
    calls.fail("DirectDrawCreateEx", 1, E_FAIL);
    Screen_SubsystemInit();
    calls.take();
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddrawUsers, 0);
    Screen.initDone = 0;
}

// --- Open ---

using ScreenOpen = ScreenTest;

TEST_F(ScreenOpen, TakesModeWindowAndCursor) {
    setUp();
    EXPECT_EQ(Screen_Open(w, h, 16, "The Title"), 1);
    EXPECT_TRUE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.ddraw.mode().width, 96u);
    EXPECT_EQ(devices.ddraw.mode().height, 64u);
    EXPECT_EQ(devices.ddraw.mode().depth, 16u);
    EXPECT_EQ(devices.ddraw.mode().refreshRate, 0u);
    EXPECT_EQ(devices.desktop->title(), "The Title");
    EXPECT_EQ(devices.desktop->place().left, 0);
    EXPECT_EQ(devices.desktop->place().top, 0);
    EXPECT_EQ(devices.desktop->place().right, 96);
    EXPECT_EQ(devices.desktop->place().bottom, 64);
    EXPECT_TRUE(devices.desktop->isShown());
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(ScreenOpen, FillsTheRecord) {
    setUp();
    devices.ddraw.monitorFrequency = 75;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(Screen.window, Screen.hiddenWindow);
    EXPECT_EQ(Screen.onFocusLost, &Screen_SaveSurfaces);
    EXPECT_EQ(Screen.targetWidth, 96);
    EXPECT_EQ(Screen.targetHeight, 64);
    EXPECT_EQ(Screen.screenWidth, 96);
    EXPECT_EQ(Screen.screenHeight, 64);
    EXPECT_EQ(Screen.depth, 16);
    EXPECT_EQ(Screen.monitorFrequency, 75u);
    EXPECT_EQ(Screen.present, &Screen_Present);
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_565);
    EXPECT_NE(Screen.backBuffer, nullptr);
    EXPECT_EQ(Screen.target, Screen.backBuffer);
    EXPECT_NE(Screen.primary, Screen.backBuffer);
}

TEST_F(ScreenOpen, StartsBlackOnBothSurfaces) {
    open();
    for (int y : {0, h - 1})
        for (int x : {0, w - 1}) {
            EXPECT_EQ(devices.ddraw.drawn(x, y), 0u);
            EXPECT_EQ(devices.ddraw.shown(x, y), 0u);
        }
}

TEST_F(ScreenOpen, ActivatesAndLeavesTheLossNotice) {
    setUp();
    Screen.active = 0;
    Screen.lostNotified = 1;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.lostNotified, 1);
}

TEST_F(ScreenOpen, HandsTheRefreshRateOn) {
    setUp();
    Screen.refreshRate = 72;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(devices.ddraw.mode().refreshRate, 72u);
}

TEST_F(ScreenOpen, OfAnOpenScreenClosesItFirst) {
    open();
    calls.only({"timeEndPeriod", "timeBeginPeriod", "IDirectDrawSurface7::Release",
                "IDirectDraw7::CreateSurface"});
    EXPECT_EQ(Screen_Open(48, 32, 16, "Again"), 1);
    EXPECT_TRUE(calls.match(R"(
        timeEndPeriod(1)
        IDirectDrawSurface7::Release(back) -> 0
        IDirectDrawSurface7::Release(primary) -> 0
        IDirectDraw7::CreateSurface(*) -> 0
        timeBeginPeriod(1)
    )"));
    EXPECT_EQ(Screen.screenWidth, 48);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(ScreenOpen, AfterACloseIsAsGoodAsNew) {
    open();
    HWND window = Screen.window;
    for (int pass = 0; pass < 10; ++pass) {
        Screen_Close();
        ASSERT_EQ(Screen_Open(w, h, 16, "Title"), 1);
    }
    EXPECT_EQ(Screen.window, window);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(devices.ddraw.made(), 1);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
    EXPECT_EQ(calls.uses("RegisterClassExA"), 1);
    EXPECT_EQ(calls.uses("CreateWindowExA"), 1);
    EXPECT_EQ(calls.uses("timeBeginPeriod"), 11);
    EXPECT_EQ(calls.uses("timeEndPeriod"), 10);
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

struct DepthFormat {
    int16_t depth;
    PixelMasks masks;
    PixelFormatCode format;
};

void PrintTo(const DepthFormat& parameter, std::ostream* out) {
    *out << "code " << parameter.format;
}

class ScreenFormat : public ScreenTest, public testing::WithParamInterface<DepthFormat> {};

TEST_P(ScreenFormat, IsFoundByDepthAndMask) {
    devices.ddraw.masks = GetParam().masks;
    setUp();
    EXPECT_EQ(Screen_Open(w, h, GetParam().depth, ""), 1);
    EXPECT_EQ(devices.ddraw.mode().depth, static_cast<DWORD>(GetParam().depth));
    EXPECT_EQ(Screen.depth, GetParam().depth);
    EXPECT_EQ(Screen.pixelFormat, GetParam().format);
}

const DepthFormat formats[] = {
    {8, {}, PixelFormat_Palette},
    {16, {0x7C00, 0x03E0, 0x001F}, PixelFormat_555},
    {16, {0xF800, 0x07E0, 0x001F}, PixelFormat_565},
    {24, {0x0000FF, 0x00FF00, 0xFF0000}, PixelFormat_24RedLow},
    {24, {0xFF0000, 0x00FF00, 0x0000FF}, PixelFormat_24RedHigh},
    {32, {0x0000FF, 0x00FF00, 0xFF0000}, PixelFormat_32RedLow},
    {32, {0xFF0000, 0x00FF00, 0x0000FF}, PixelFormat_32RedHigh},
};

INSTANTIATE_TEST_SUITE_P(Formats, ScreenFormat, testing::ValuesIn(formats));

TEST_F(ScreenOpen, HasFormatCodesFromZeroToSeven) {
    EXPECT_EQ(PixelFormat_Unknown, 0);
    EXPECT_EQ(PixelFormat_Palette, 1);
    EXPECT_EQ(PixelFormat_555, 2);
    EXPECT_EQ(PixelFormat_565, 3);
    EXPECT_EQ(PixelFormat_24RedLow, 4);
    EXPECT_EQ(PixelFormat_24RedHigh, 5);
    EXPECT_EQ(PixelFormat_32RedLow, 6);
    EXPECT_EQ(PixelFormat_32RedHigh, 7);
}

using ScreenDetectFormat = ScreenTest;

TEST_F(ScreenDetectFormat, OfFifteenBitsIsTakenForAPalette) {
    open();
    Screen.depth = 15;
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_Palette);
}

TEST_F(ScreenDetectFormat, WithoutASurfaceDoesNothing) {
    Screen.pixelFormat = PixelFormat_555;
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_555);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenDetectFormat, ThatCannotLockKeepsTheOldFormat) {
    open();
    Screen.pixelFormat = PixelFormat_32RedLow;
    calls.fail("IDirectDrawSurface7::Lock", 1, DDERR_SURFACELOST);
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_32RedLow);
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Lock(primary, null, primaryDesc, 1, null)"));
}

// --- What open does not mind ---

class UnimportantFailure : public ScreenTest, public testing::WithParamInterface<CallFailure> {};

TEST_P(UnimportantFailure, LetsTheOpenGoOn) {
    setUp();
    calls.fail(GetParam().call, GetParam().nth, GetParam().result);
    EXPECT_EQ(Screen_Open(w, h, 16, ""), 1);
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.present, &Screen_Present);
    EXPECT_EQ(calls.uses("timeBeginPeriod"), 1);
    EXPECT_EQ(Screen.target, Screen.backBuffer);
}

const CallFailure unimportant[] = {
    {"SetWindowTextA", 1, 0},
    {"MoveWindow", 1, 0},
    {"ShowWindow", 1, 0},
    {"IDirectDrawSurface7::GetDC", 1, DDERR_GENERIC},
    {"IDirectDrawSurface7::GetDC", 2, DDERR_GENERIC},
    {"FillRect", 1, 0},
    {"FillRect", 2, 0},
    {"IDirectDrawSurface7::ReleaseDC", 2, DDERR_GENERIC},
    {"IDirectDraw7::GetMonitorFrequency", 1, DDERR_UNSUPPORTED},
    {"IDirectDrawSurface7::Lock", 1, DDERR_SURFACEBUSY},
    {"timeBeginPeriod", 1, 97},
};

INSTANTIATE_TEST_SUITE_P(Calls, UnimportantFailure, testing::ValuesIn(unimportant));

// --- What open does mind ---

class FailedOpen : public ScreenTest, public testing::WithParamInterface<CallFailure> {
protected:
    int64_t tryToOpen() {
        calls.fail(GetParam().call, 1, GetParam().result);
        return Screen_Open(w, h, 16, "");
    }
};

TEST_P(FailedOpen, GivesZeroAndTheDesktopBack) {
    setUp();
    EXPECT_EQ(tryToOpen(), 0);
    EXPECT_FALSE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_EQ(Screen.primary, nullptr);
    EXPECT_EQ(Screen.backBuffer, nullptr);
    EXPECT_FALSE(devices.desktop->isShown());
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_EQ(calls.uses("timeBeginPeriod"), 0);
    EXPECT_TRUE(devices.desktop->messageBoxes.empty());
}

TEST_P(FailedOpen, LeavesTheScreenUnpresentable) {
    setUp();
    tryToOpen();
    EXPECT_EQ(Screen.present, nullptr);
    EXPECT_EQ(Screen.active, 0);
    EXPECT_EQ(Screen.target, nullptr);
}

TEST_P(FailedOpen, KeepsTheSizesSoThatTheNextCloseEndsATimerPeriodThatNeverBegan) {
    setUp();
    tryToOpen();
    EXPECT_EQ(Screen.screenWidth, 96);
    EXPECT_EQ(Screen.screenHeight, 64);
    Screen_Close();
    EXPECT_EQ(calls.uses("timeBeginPeriod"), 0);
    EXPECT_EQ(calls.uses("timeEndPeriod"), 1);
    EXPECT_EQ(Screen.screenWidth, 0);
}

TEST_P(FailedOpen, CanBeTriedAgain) {
    setUp();
    tryToOpen();
    EXPECT_EQ(Screen_Open(w, h, 16, ""), 1);
    EXPECT_EQ(devices.desktop->cursorCount(), 0) << "shown once too often, as told";
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
}

TEST_P(FailedOpen, ASecondTimeLeavesAStaleTarget) {
    open();
    IDirectDrawSurface7* old = Screen.target;
    Screen_Close();
    EXPECT_EQ(tryToOpen(), 0);
    EXPECT_EQ(Screen.target, old);
    EXPECT_EQ(Screen.present, &Screen_Present);
}

const CallFailure essential[] = {
    {"IDirectDraw7::SetCooperativeLevel", 1, DDERR_EXCLUSIVEMODEALREADYSET},
    {"IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE},
    {"IDirectDraw7::CreateSurface", 1, DDERR_OUTOFVIDEOMEMORY},
    {"IDirectDrawSurface7::GetAttachedSurface", 1, DDERR_NOTFOUND},
};

INSTANTIATE_TEST_SUITE_P(Calls, FailedOpen, testing::ValuesIn(essential));

// Positive results are no success either: only 0 is.
class HalfSuccessfulOpen : public FailedOpen {};

TEST_P(HalfSuccessfulOpen, IsAFailure) {
    setUp();
    EXPECT_EQ(tryToOpen(), 0);
}

const CallFailure halfSuccesses[] = {
    {"IDirectDraw7::SetCooperativeLevel", 1, 1},
    {"IDirectDraw7::SetDisplayMode", 1, 1},
    {"IDirectDrawSurface7::GetAttachedSurface", 1, 1},
};

INSTANTIATE_TEST_SUITE_P(Calls, HalfSuccessfulOpen, testing::ValuesIn(halfSuccesses));

TEST_F(ScreenOpen, WithoutAWindowFailsBeforeItTakesAnything) {
    setUp();
    Screen.hiddenWindow = nullptr;
    EXPECT_EQ(Screen_Open(w, h, 16, ""), 0);
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_EQ(calls.uses("IDirectDraw7::SetDisplayMode"), 0);
}

// --- Close and end ---

using ScreenClose = ScreenTest;

TEST_F(ScreenClose, GivesTheDesktopBackAndKeepsTheRest) {
    open();
    IDirectDrawSurface7* target = Screen.target;
    Screen_Close();
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(Screen.screenHeight, 0);
    EXPECT_EQ(Screen.primary, nullptr);
    EXPECT_EQ(Screen.backBuffer, nullptr);
    EXPECT_FALSE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.ddraw.mode().width, 0u) << "the desktop's own mode";
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_FALSE(devices.desktop->isShown());
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_NE(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(Screen.window, Screen.hiddenWindow);
    EXPECT_NE(Screen.window, nullptr);
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_565);
    EXPECT_EQ(Screen.present, &Screen_Present);
    EXPECT_EQ(Screen.target, target) << "stale";
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.targetWidth, 96);
}

TEST_F(ScreenClose, KeepsTheStateOfTheContext) {
    open();
    Screen.targetDc = 77;
    Screen_Close();
    EXPECT_EQ(Screen.targetDc, 77);
    Screen.targetDc = 0;
}

TEST_F(ScreenClose, ASecondTimeDoesNothing) {
    open();
    Screen_Close();
    calls.take();
    Screen_Close();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(calls.uses("timeBeginPeriod"), calls.uses("timeEndPeriod"));
}

TEST_F(ScreenClose, OfAScreenThatNeverOpenedDoesNothing) {
    setUp();
    Screen_Close();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenClose, FreesTheNumberedSurfaces) {
    open();
    for (ObjectId id : {ObjectId{0}, ObjectId{70}, ObjectId_Any}) {
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        record->kind = SurfaceKind_Memory;
        record->surface = HeapAlloc(GeneralHeap, 0, 16);
    }
    const size_t blocks = calls.live("block");
    Screen_Close();
    EXPECT_EQ(calls.live("block"), blocks - 4) << "three pixel blocks and a loose record";
    EXPECT_EQ(Registry_Lookup(Screen.surfaces, 70), nullptr);
}

using ScreenEnd = ScreenTest;

TEST_F(ScreenEnd, InItsFirstFormDoesNothing) {
    open();
    Screen_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.screenWidth, 96);
}

TEST_F(ScreenEnd, ClosesAndGivesDirectDrawBack) {
    open();
    Screen_SubsystemEnd2();
    EXPECT_EQ(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 0);
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_EQ(devices.loads("DDRAW.DLL"), 0);
    EXPECT_EQ(Screen.windowMade, 1) << "the window is left to the process's end";
    Screen.initDone = 0;
}

TEST_F(ScreenEnd, WithoutASetUpTouchesNothing) {
    Screen.screenWidth = 96;
    Screen.ddrawUsers = 1;
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.screenWidth, 96);
    EXPECT_EQ(Screen.ddrawUsers, 1);
}

TEST_F(ScreenEnd, AfterASetUpThatNeverGotToDirectDrawLeavesItAlone) {
    calls.fail("CreateWindowExA", 1, 0);
    Screen_SubsystemInit();
    IDirectDraw7* elsewhere = DirectDraw_Acquire();
    calls.take();
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddraw, elsewhere);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    DirectDraw_Release();
}

// --- Steps ---

TEST_F(ScreenTest, ClearSurfaceGivesTheResultOfTheContext) {
    open();
    EXPECT_EQ(Screen_ClearSurface(Screen.backBuffer), DD_OK);
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    EXPECT_EQ(Screen_ClearSurface(Screen.backBuffer), DDERR_SURFACELOST);
}

TEST_F(ScreenTest, ClearSurfacePaintsTheTargetsSizeBlack) {
    open();
    Screen_Clear(0xFFFFFF);
    Screen.targetWidth = 10;
    Screen.targetHeight = 5;
    Screen_ClearSurface(Screen.backBuffer);
    EXPECT_EQ(devices.ddraw.drawn(9, 4), 0u);
    EXPECT_EQ(devices.ddraw.drawn(10, 4), 0xFFFFFFu);
    EXPECT_EQ(devices.ddraw.drawn(9, 5), 0xFFFFFFu);
}

} // namespace
