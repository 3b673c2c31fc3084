#include "display/screen.h"

#include "display/screen_device.h"
#include "input/keyboard_state.h"
#include "tests/support/screen_fixture.h"

#include <algorithm>
#include <cstddef>

namespace {

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

TEST_F(ScreenSubsystemInit, ResetsItsStateBeforeItMakesTheRegistry) {
    Screen.limiterStamp = 8;
    calls.before("HeapAlloc", 1, [] { EXPECT_EQ(Screen.limiterStamp, 0); });
    Screen_SubsystemInit();
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
INSTANTIATE_TEST_SUITE_P(
    Entries, BlendTable,
    testing::Values(BlendEntry{0, 1, 0}, BlendEntry{0, 256, 0}, BlendEntry{254, 1, 0},
                    BlendEntry{255, 1, 1}, BlendEntry{1, 254, 0}, BlendEntry{1, 255, 1},
                    BlendEntry{1, 256, 1}, BlendEntry{128, 128, 64}, BlendEntry{200, 3, 2},
                    BlendEntry{100, 200, 78}, BlendEntry{127, 129, 64}, BlendEntry{254, 256, 254},
                    BlendEntry{254, 255, 254}, BlendEntry{255, 255, 255}, BlendEntry{255, 256, 256},
                    // where i * j / 255 would be one less
                    BlendEntry{4, 191, 3}, BlendEntry{21, 97, 8}, BlendEntry{22, 243, 21},
                    BlendEntry{8, 223, 7}));

TEST_F(ScreenSubsystemInit, BuildsTheBlendTableForEveryOpenToCome) {
    setUp();
    Screen.blendTable[300] = -7;
    open();
    Screen_Close();
    open();
    EXPECT_EQ(Screen.blendTable[300], -7);
}

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

} // namespace
