#include "display/window.h"

#include "display/screen_device.h"
#include "display/window_procedure.h"
#include "input/mouse_state.h"
#include "tests/support/screen_fixture.h"

namespace {

class WindowFocus : public ScreenTest {
protected:
    WindowFocus() {
        saves = 0;
        activeWhenSaved = -1;
        notifiedWhenSaved = -1;
        Screen.onFocusLost = save;
        Screen.active = 1;
        Screen.lostNotified = 0;
    }

    static void save() {
        ++saves;
        activeWhenSaved = Screen.active;
        notifiedWhenSaved = Screen.lostNotified;
    }
    static LRESULT activate(WPARAM wParam) {
        return Screen_WindowProc(nullptr, WM_ACTIVATE, wParam, 0);
    }
    static void expectState(int32_t active, int32_t lostNotified) {
        EXPECT_EQ(Screen.active, active);
        EXPECT_EQ(Screen.lostNotified, lostNotified);
    }

    static inline int saves = 0;
    static inline int activeWhenSaved = 0;
    static inline int notifiedWhenSaved = 0;
};

TEST_F(WindowFocus, LostSavesTheSurfacesOnceAndThenStopsPresenting) {
    EXPECT_EQ(activate(WA_INACTIVE), 0);
    expectState(0, 1);
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(activeWhenSaved, 1);
    EXPECT_EQ(notifiedWhenSaved, 0);
    EXPECT_EQ(activate(WA_INACTIVE), 0);
    expectState(0, 1);
    EXPECT_EQ(saves, 1);
}

TEST_F(WindowFocus, GainedPresentsAgain) {
    for (WPARAM how : {WPARAM{WA_ACTIVE}, WPARAM{WA_CLICKACTIVE}}) {
        Screen.active = 0;
        Screen.lostNotified = 1;
        EXPECT_EQ(activate(how), 0);
        expectState(1, 0);
    }
    EXPECT_EQ(saves, 0);
}

TEST_F(WindowFocus, IsJudgedByTheLowWordAlone) {
    EXPECT_EQ(activate(MAKEWPARAM(WA_INACTIVE, 1)), 0); // minimised
    expectState(0, 1);
    EXPECT_EQ(activate(MAKEWPARAM(0x8000, 0)), 0);
    expectState(1, 0);
    EXPECT_EQ(activate(MAKEWPARAM(0x0100, 1)), 0);
    expectState(1, 0);
}

TEST_F(WindowFocus, GainedAndLostAgainSavesAgain) {
    activate(WA_INACTIVE);
    activate(WA_ACTIVE);
    activate(WA_INACTIVE);
    EXPECT_EQ(saves, 2);
}

TEST_F(WindowFocus, LostBeforeTheFirstOpenOnlyStopsPresenting) {
    Screen.onFocusLost = nullptr;
    EXPECT_EQ(activate(WA_INACTIVE), 0);
    expectState(0, 0);
}

TEST_F(WindowFocus, IsNoMatterOfAWindowedScreen) {
    Screen.windowed = 1;
    EXPECT_EQ(activate(WA_INACTIVE), 0);
    expectState(1, 0);
    EXPECT_EQ(saves, 0);
    Screen.active = 0;
    Screen.lostNotified = 1;
    EXPECT_EQ(activate(WA_ACTIVE), 0);
    expectState(0, 1);
}

TEST_F(WindowFocus, LostLetsGoOfTheMouseAfterPresentingHasStopped) {
    Mouse_SubsystemInit();
    calls.name(Mouse.device, "mouse");
    calls.take();
    int activeThen = -1;
    calls.before("IDirectInputDevice7A::Unacquire", 1, [&] { activeThen = Screen.active; });
    activate(WA_INACTIVE);
    EXPECT_TRUE(calls.match("IDirectInputDevice7A::Unacquire(mouse)"));
    EXPECT_EQ(activeThen, 0);
    EXPECT_EQ(saves, 1);
    activate(WA_ACTIVE);
    EXPECT_TRUE(calls.match("")) << "it is not taken back here";
}

TEST_F(WindowFocus, OfAWindowedScreenLeavesTheMouseAlone) {
    Mouse_SubsystemInit();
    calls.take();
    Screen.windowed = 1;
    activate(WA_INACTIVE);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(WindowFocus, LostWithoutAMouseCallsNothing) {
    activate(WA_INACTIVE);
    EXPECT_TRUE(calls.match(""));
}

class SwitchKey : public WindowFocus, public testing::WithParamInterface<std::tuple<UINT, WPARAM>> {
protected:
    static LRESULT letGo() {
        return Screen_WindowProc(nullptr, std::get<0>(GetParam()), std::get<1>(GetParam()), 0);
    }
};

TEST_P(SwitchKey, GoingUpSavesEarlyAndChangesNothingElse) {
    EXPECT_EQ(letGo(), 0);
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(notifiedWhenSaved, 0);
    expectState(1, 1);
}

TEST_P(SwitchKey, GoingUpAgainSavesNothing) {
    letGo();
    letGo();
    EXPECT_EQ(saves, 1);
    activate(WA_INACTIVE);
    EXPECT_EQ(saves, 1) << "nor does the switch itself";
    expectState(0, 1);
}

TEST_P(SwitchKey, GoingUpLeavesTheMouseToTheSwitchItself) {
    Mouse_SubsystemInit();
    calls.name(Mouse.device, "mouse");
    calls.take();
    letGo();
    EXPECT_TRUE(calls.match(""));
    activate(WA_INACTIVE);
    EXPECT_TRUE(calls.match("IDirectInputDevice7A::Unacquire(mouse)"));
}

TEST_P(SwitchKey, GoingUpAfterTheNextActivationSavesAgain) {
    letGo();
    activate(WA_ACTIVE);
    expectState(1, 0);
    letGo();
    EXPECT_EQ(saves, 2);
}

TEST_P(SwitchKey, GoingUpBeforeTheFirstOpenDoesNothing) {
    Screen.onFocusLost = nullptr;
    EXPECT_EQ(letGo(), 0);
    expectState(1, 0);
}

TEST_P(SwitchKey, GoingUpSavesForAWindowedScreenToo) {
    Screen.windowed = 1;
    letGo();
    EXPECT_EQ(saves, 1);
}

TEST_P(SwitchKey, GoingUpInTheBackgroundLeavesItInactive) {
    Screen.active = 0;
    letGo();
    expectState(0, 1);
}

INSTANTIATE_TEST_SUITE_P(AltAndTab, SwitchKey,
                         testing::Combine(testing::Values(0x101, 0x105),
                                          testing::Values(0x9, 0x12)));

class OtherKey : public WindowFocus, public testing::WithParamInterface<WPARAM> {};

TEST_P(OtherKey, GoingUpSavesNothing) {
    EXPECT_EQ(Screen_WindowProc(nullptr, WM_KEYUP, GetParam(), 0), 0);
    EXPECT_EQ(Screen_WindowProc(nullptr, WM_SYSKEYUP, GetParam(), 0), 0);
    EXPECT_EQ(saves, 0);
    expectState(1, 0);
}

INSTANTIATE_TEST_SUITE_P(Keys, OtherKey, testing::Values(0, 8, 10, 0xD, 0x11, 0x13, 0x1B, 0x109));

TEST_F(WindowFocus, IsNotTouchedByKeysGoingDown) {
    Screen_WindowProc(nullptr, WM_KEYDOWN, VK_TAB, 0);
    Screen_WindowProc(nullptr, WM_SYSKEYDOWN, VK_MENU, 0);
    EXPECT_EQ(saves, 0);
    expectState(1, 0);
}

} // namespace
