// The user leaves between any two steps of a frame, with the surfaces lost or not, and comes back:
// nothing is shown meanwhile, and the frames after the return are whole.

#include "display/frame.h"

#include "display/draw.h"
#include "display/draw_target.h"
#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

#include <functional>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF white = 0xFFFFFF;
constexpr int stepCount = 7;

struct Leaving {
    int step; // of the frame: the user leaves in front of it
    bool surfacesLost;
};

void PrintTo(const Leaving& leaving, std::ostream* out) {
    *out << "before step " << leaving.step << (leaving.surfacesLost ? ", lost" : ", kept");
}

class FocusBetweenSteps : public OpenScreenTest, public testing::WithParamInterface<Leaving> {
protected:
    FocusBetweenSteps() { Draw_SubsystemInit(); }
    ~FocusBetweenSteps() override { Draw_End(); }

    // One frame; `meanwhile` happens in front of a step.
    void frame(int step = -1, const std::function<void()>& meanwhile = nullptr) {
        const std::function<void()> steps[stepCount] = {
            [] { Screen_Clear(red); },
            [this] { target = Screen_BackBuffer(); },
            [this] { Draw_Begin(target); },
            [] { Draw_SetMode(0); },
            [] { Draw_Text(3, 4, " ", 0, white); }, // a white box
            [] { Draw_End(); },
            [] { Screen_Flip(); },
        };
        for (int at = 0; at < stepCount; ++at) {
            if (at == step)
                meanwhile();
            steps[at]();
        }
    }

    void expectWholePicture() const {
        EXPECT_EQ(devices.ddraw.shown(4, 6), white);
        EXPECT_EQ(devices.ddraw.shown(0, 0), red);
        EXPECT_EQ(devices.ddraw.shown(width - 1, height - 1), red);
    }

    const DrawTarget* target = nullptr;
};

TEST_P(FocusBetweenSteps, DropsTheFrameAndShowsWholeOnesAfterTheReturn) {
    frame();
    const int flips = devices.ddraw.flips();
    frame(GetParam().step, [this] { devices.switchAway(GetParam().surfacesLost); });
    EXPECT_EQ(Screen.active, 0);
    EXPECT_EQ(Screen.lostNotified, 1);
    for (int count = 0; count < 3; ++count)
        frame();
    EXPECT_EQ(devices.ddraw.flips(), flips) << "nothing is presented in the background";

    devices.switchBack();
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.lostNotified, 0);
    frame();
    EXPECT_EQ(devices.ddraw.flips(), GetParam().surfacesLost ? flips : flips + 1);
    frame();
    EXPECT_EQ(devices.ddraw.flips(), GetParam().surfacesLost ? flips + 1 : flips + 2);
    expectWholePicture();
}

TEST_P(FocusBetweenSteps, RecoversOnlyWhatWasLost) {
    frame(GetParam().step, [this] { devices.switchAway(GetParam().surfacesLost); });
    devices.switchBack();
    frame();
    frame();
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), GetParam().surfacesLost ? 1 : 0);
    EXPECT_EQ(calls.live("brush"), 1u) << "the default one: every pass deletes its own";
}

TEST_P(FocusBetweenSteps, OutAndBackWithinOneFrameNeedsNoMore) {
    frame(GetParam().step, [this] {
        devices.switchAway(GetParam().surfacesLost);
        devices.switchBack();
    });
    frame();
    frame();
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.targetDc, 0);
    expectWholePicture();
}

TEST_P(FocusBetweenSteps, IsGoodForACloseAndANewOpening) {
    frame(GetParam().step, [this] { devices.switchAway(GetParam().surfacesLost); });
    Screen_Close();
    devices.switchBack();
    ASSERT_EQ(Screen_Open(width, height, 16, "Title"), 1);
    frame();
    expectWholePicture();
}

std::vector<Leaving> everyWayToLeave() {
    std::vector<Leaving> ways;
    for (int step = 0; step < stepCount; ++step)
        for (bool lost : {false, true})
            ways.push_back({step, lost});
    return ways;
}

INSTANTIATE_TEST_SUITE_P(Steps, FocusBetweenSteps, testing::ValuesIn(everyWayToLeave()));

// --- The table of states ---

class FocusStates : public OpenScreenTest {
protected:
    void expectState(int32_t active, int32_t lostNotified) {
        EXPECT_EQ(Screen.active, active);
        EXPECT_EQ(Screen.lostNotified, lostNotified);
    }
    // As the pump delivers it, at the next flip.
    void deliver(UINT message, WPARAM wParam) {
        devices.desktop->post(message, wParam);
        Screen_Flip();
    }
};

TEST_F(FocusStates, GoFromNormalToTheBackgroundAndBack) {
    expectState(1, 0);
    deliver(WM_ACTIVATE, WA_INACTIVE);
    expectState(0, 1);
    deliver(WM_ACTIVATE, WA_ACTIVE);
    expectState(1, 0);
}

TEST_F(FocusStates, GoFromASavedScreenToTheBackgroundAndBack) {
    deliver(WM_SYSKEYUP, VK_MENU);
    expectState(1, 1);
    deliver(WM_ACTIVATE, WA_INACTIVE);
    expectState(0, 1);
    deliver(WM_ACTIVATE, WA_CLICKACTIVE);
    expectState(1, 0);
}

TEST_F(FocusStates, GoFromASavedScreenBackToNormalByAnActivation) {
    deliver(WM_KEYUP, VK_TAB);
    expectState(1, 1);
    deliver(WM_ACTIVATE, WA_ACTIVE);
    expectState(1, 0);
}

TEST_F(FocusStates, StaySavedOverFurtherKeys) {
    deliver(WM_KEYUP, VK_TAB);
    deliver(WM_SYSKEYUP, VK_MENU);
    expectState(1, 1);
    EXPECT_EQ(devices.ddraw.flips(), 2) << "and go on presenting";
}

TEST_F(FocusStates, FlipOnAfterAnActivationWithoutALoss) {
    deliver(WM_ACTIVATE, WA_ACTIVE);
    EXPECT_EQ(devices.ddraw.flips(), 1);
    EXPECT_EQ(calls.uses("IDirectDraw7::RestoreAllSurfaces"), 0);
}

TEST_F(FocusStates, AreSetByOpenButForTheNotice) {
    deliver(WM_ACTIVATE, WA_INACTIVE);
    Screen_Close();
    expectState(0, 1);
    Screen_Open(width, height, 16, "Title");
    expectState(1, 1);
}

TEST_F(FocusStates, ComeFromInsideACallOfThePlatformToo) {
    calls.after("ShowWindow", 1, [this] { devices.switchAway(false); });
    Screen_Close();
    expectState(0, 1);
}

TEST_F(FocusStates, SaveTheSurfacesOnceALoss) {
    const ScreenSurface* record = addSurface(0, "surface");
    deliver(WM_SYSKEYUP, VK_MENU);
    EXPECT_NE(record->saved, nullptr);
    const int made = calls.uses("IDirectDraw7::CreateSurface");
    deliver(WM_ACTIVATE, WA_INACTIVE);
    EXPECT_EQ(calls.uses("IDirectDraw7::CreateSurface"), made);
}

} // namespace
