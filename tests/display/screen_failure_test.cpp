#include "display/screen.h"

#include "display/screen_device.h"
#include "tests/support/child_run.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr int16_t w = 96;
constexpr int16_t h = 64;

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

// --- Used although it never opened ---

// Made and ended inside of the child.
class ScreenThatNeverOpened : public ScreenTest {
public:
    ScreenThatNeverOpened() {
        setUp();
        calls.fail("IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTEDMODE);
        EXPECT_EQ(Screen_Open(w, h, 16, ""), 0);
    }
    void TestBody() override {}
};

ChildReport useScreenThatNeverOpened(void (*use)()) {
    return runInChild([use] {
        const ScreenThatNeverOpened screen;
        use();
    });
}

TEST(NeverOpened, FaultsWhenItIsCleared) {
    EXPECT_TRUE(useScreenThatNeverOpened([] { Screen_Clear(0); }).diedOfMemoryFault());
}

TEST(NeverOpened, FaultsWhenItIsFlipped) {
    EXPECT_TRUE(useScreenThatNeverOpened([] { Screen_Flip(); }).diedOfMemoryFault());
}

TEST(NeverOpened, CanBeClosed) {
    EXPECT_TRUE(useScreenThatNeverOpened([] { Screen_Close(); }).succeeded());
}

} // namespace
