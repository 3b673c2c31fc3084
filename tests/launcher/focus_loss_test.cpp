// The user switches to another program between any two steps of a frame, with the surfaces lost or
// not, and comes back: the frame is dropped, the next one is whole.

#include "tests/support/launcher_stage.h"

#include "display/screen_device.h"
#include "input/keyboard.h"
#include "launcher/variables.h"

#include <ostream>
#include <tuple>

namespace {

constexpr int leavingFrame = 6;    // in which the user leaves
constexpr int returningFrame = 12; // before which the user is back
constexpr RECT wholeScreen{0, 0, 1024, 768};

// A moment of the leaving frame: just before or behind one of its calls.
struct Step {
    const char* name;
    const char* call;
    int use; // the n-th of the run
    bool isBehind = false;
};

constexpr int textsInFrame = 34;
constexpr int fillsAtOpen = 2; // each takes a device context

constexpr Step steps[] = {
    {"BeforeClear", "IDirectDrawSurface7::Blt", leavingFrame},
    {"BeforePoll", "IDirectInputDevice7A::GetDeviceState", leavingFrame},
    {"BeforeBackBuffer", "IDirectDrawSurface7::GetDC", fillsAtOpen + leavingFrame},
    {"BeforePass", "SetTextAlign", leavingFrame},
    {"BeforeMode", "SetROP2", leavingFrame},
    {"BeforeBanner", "BitBlt", leavingFrame},
    {"BetweenTexts", "TextOutA", (leavingFrame - 1) * textsInFrame + textsInFrame / 2},
    {"BeforeRelease", "IDirectDrawSurface7::ReleaseDC", fillsAtOpen + leavingFrame},
    {"BeforeMessages", "PeekMessageA", leavingFrame},
    {"BeforeFlip", "IDirectDrawSurface7::Flip", leavingFrame},
    {"BehindFlip", "IDirectDrawSurface7::Flip", leavingFrame, true},
};

class FocusLoss : public testing::TestWithParam<std::tuple<Step, bool>> {};

std::string nameOf(const testing::TestParamInfo<std::tuple<Step, bool>>& info) {
    const auto& [step, lost] = info.param;
    return std::string(step.name) + (lost ? "_SurfacesLost" : "_SurfacesKept");
}

void leaveAt(LauncherStage& stage, const Step& step, bool lost) {
    const auto leave = [&stage, lost] { stage.devices.switchAway(lost); };
    if (step.isBehind)
        stage.calls.after(step.call, step.use, leave);
    else
        stage.calls.before(step.call, step.use, leave);
}

// Whether the flip of the leaving frame has begun by then.
bool isTooLateForTheFlip(const Step& step) {
    return std::string(step.call) == "IDirectDrawSurface7::Flip";
}

// Runs the action at the beginning of the n-th frame, which is its clear.
void atFrame(LauncherStage& stage, int frame, std::function<void()> action) {
    stage.calls.before("IDirectDrawSurface7::Blt", frame, std::move(action));
}

void comeBackLater(LauncherStage& stage) {
    atFrame(stage, returningFrame, [&stage] { stage.devices.switchBack(); });
}

// What of the shown picture tells whether it is whole: texts, highlight, banner.
struct Picture {
    int white, cyan, red, black;
    bool operator==(const Picture&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Picture& picture) {
    return out << picture.white << " white, " << picture.cyan << " cyan, " << picture.red
               << " red, " << picture.black << " black";
}

Picture shownBy(const StandInDevices& devices) {
    const auto count = [&devices](COLORREF color) {
        return devices.ddraw.shownCount(wholeScreen, color);
    };
    return {count(RGB(255, 255, 255)), count(RGB(0, 255, 255)), count(RGB(255, 0, 0)), count(0)};
}

// Keeps what is shown at the beginning of the n-th frame.
void lookAtFrame(LauncherStage& stage, int frame, Picture* seen) {
    atFrame(stage, frame, [&stage, seen] { *seen = shownBy(stage.devices); });
}

} // namespace

TEST_P(FocusLoss, DropsTheFrameAndPresentsNothingUntilTheReturn) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        int flipsBefore = -1, flipsAway = -1, flipsBack = -1;
        atFrame(stage, leavingFrame, [&] { flipsBefore = stage.devices.ddraw.flips(); });
        leaveAt(stage, step, lost);
        atFrame(stage, leavingFrame + 1, [&] { flipsAway = stage.devices.ddraw.flips(); });
        atFrame(stage, returningFrame, [&] { flipsBack = stage.devices.ddraw.flips(); });
        comeBackLater(stage);
        EXPECT_EQ(stage.run().exitCode, 0u);
        const bool wasPresented = isTooLateForTheFlip(step) && (step.isBehind || !lost);
        EXPECT_EQ(flipsAway, flipsBefore + (wasPresented ? 1 : 0));
        EXPECT_EQ(flipsBack, flipsAway) << "nothing is presented in the background";
        EXPECT_GT(stage.devices.ddraw.flips(), flipsBack + 3) << "and frames go on afterwards";
    });
}

TEST_P(FocusLoss, ShowsTheSamePictureAsBefore) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        Picture before{}, after{};
        lookAtFrame(stage, leavingFrame - 1, &before);
        leaveAt(stage, step, lost);
        comeBackLater(stage);
        // Where surfaces were lost, the first frame after the return is the one that meets the
        // loss.
        lookAtFrame(stage, returningFrame + (lost ? 2 : 1), &after);
        stage.run();
        EXPECT_GT(before.white, 5000);
        EXPECT_GT(before.cyan, 1000);
        EXPECT_GT(before.red, 1000);
        EXPECT_EQ(after, before);
    });
}

TEST_P(FocusLoss, RecoversOnceIfSurfacesWereLostAndNotAtAllIfNot) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        leaveAt(stage, step, lost);
        comeBackLater(stage);
        stage.run();
        // A switch right before the flip is met by that very flip, which cannot recover yet.
        const bool metAtOnce = lost && isTooLateForTheFlip(step) && !step.isBehind;
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), lost ? 1 + metAtOnce : 0);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::SetDisplayMode"), 1 + (lost ? 1 + metAtOnce : 0));
    });
}

INSTANTIATE_TEST_SUITE_P(Steps, FocusLoss,
                         testing::Combine(testing::ValuesIn(steps), testing::Bool()), nameOf);

TEST(FocusLossKeys, AreNotReadInTheBackgroundAndAPendingReleaseActsAfterTheReturn) {
    onStage([](LauncherStage& stage) {
        // Down is seen pressed in the frame before the switch and let go while away.
        stage.devices.input.script({{}, {}, {}, {}, {DIK_DOWN}});
        atFrame(stage, leavingFrame, [&] { stage.devices.switchAway(true); });
        int64_t rowAway = -1;
        atFrame(stage, returningFrame, [&] { rowAway = Launcher.SelectedRow; });
        comeBackLater(stage);
        stage.devices.input.onScriptEnd = [&, reads = 0]() mutable {
            if (++reads > 6)
                stage.devices.input.press(DIK_ESCAPE);
        };
        stage.run();
        EXPECT_EQ(rowAway, 0);
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

TEST(FocusLossKeys, ThatWereReadBeforeTheSwitchStillAct) {
    onStage([](LauncherStage& stage) {
        // Down is let go in the leaving frame; its test stands behind the flip.
        stage.devices.input.script({{}, {}, {}, {}, {DIK_DOWN}, {}});
        stage.devices.input.rest(8);
        stage.calls.after("IDirectDrawSurface7::Flip", leavingFrame,
                          [&] { stage.devices.switchAway(true); });
        int64_t rowAway = -1;
        atFrame(stage, leavingFrame + 1, [&] { rowAway = Launcher.SelectedRow; });
        comeBackLater(stage);
        stage.run();
        EXPECT_EQ(rowAway, 1);
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

class FocusLossKinds : public testing::TestWithParam<bool> {}; // surfaces lost

TEST_P(FocusLossKinds, InTheMiddleOfTheInfoPageKeepsPageAndPlace) {
    onStage([lost = GetParam()](LauncherStage& stage) {
        constexpr int framesOfCatalogue = 8; // the page turns with the eighth frame's last key test
        std::string text;
        for (int line = 0; line < 121; ++line)
            text += "line\n";
        stage.writeFile("ostrik.nfo", text);
        stage.press({DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN});
        stage.devices.input.rest(20);
        const int textsBefore = framesOfCatalogue * textsInFrame;
        atFrame(stage, 13, [&] {
            ASSERT_EQ(stage.calls.uses("TextOutA"), textsBefore + 4 * 60);
            stage.calls.before("TextOutA", 30, [&] { stage.devices.switchAway(lost); });
        });
        Picture before{}, after{};
        lookAtFrame(stage, 12, &before);
        atFrame(stage, 18, [&] { stage.devices.switchBack(); });
        lookAtFrame(stage, 20, &after);
        atFrame(stage, 20, [&] {
            EXPECT_EQ(Launcher.MenuMode, MenuMode_Info);
            EXPECT_EQ(Launcher.InfoFirstLine, 60);
        });
        stage.run();
        EXPECT_GT(before.white, 1000);
        EXPECT_EQ(after, before);
    });
}

TEST_P(FocusLossKinds, DirectlyBeforeALaunchComesBackWhole) {
    onStage([lost = GetParam()](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(6);
        stage.calls.before("IDirectSoundBuffer::Stop", 1, [&] { stage.devices.switchAway(lost); });
        stage.onChild = [&](const std::string&) {
            if (stage.children.size() == 2)
                stage.devices.switchBack();
        };
        Picture before{}, after{};
        lookAtFrame(stage, 2, &before);
        lookAtFrame(stage, 5, &after);
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), 0) << "they were made anew";
        EXPECT_GT(before.white, 5000);
        EXPECT_EQ(after, before);
    });
}

TEST_P(FocusLossKinds, DirectlyAfterALaunchRecovers) {
    onStage([lost = GetParam()](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(12);
        Picture before{}, after{};
        lookAtFrame(stage, 2, &before);
        atFrame(stage, 3, [&] { // the first frame after the intro
            EXPECT_EQ(stage.children.size(), 2u);
            stage.devices.switchAway(lost);
        });
        atFrame(stage, 7, [&] { stage.devices.switchBack(); });
        lookAtFrame(stage, 9, &after);
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), lost ? 1 : 0);
        EXPECT_GT(before.white, 5000);
        EXPECT_EQ(after, before);
    });
}

INSTANTIATE_TEST_SUITE_P(Surfaces, FocusLossKinds, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "Lost" : "Kept"; });

TEST(FocusLossLaunch, ComesBackWholeForAUserWhoIsAwayWhenTheIntroEnds) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(12);
        Picture before{}, after{};
        lookAtFrame(stage, 2, &before);
        stage.onChild = [&](const std::string&) {
            if (stage.children.size() == 2)
                stage.devices.switchAway(false);
        };
        atFrame(stage, 7, [&] { stage.devices.switchBack(); });
        lookAtFrame(stage, 9, &after);
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_GT(before.white, 5000);
        EXPECT_EQ(after, before);
    });
}

TEST(FocusLossLaunch, OfAnEnterThatIsLetGoWhileAwayComesAfterTheReturn) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(12);
        size_t childrenAway = 0;
        atFrame(stage, 2, [&] { stage.devices.switchAway(true); }); // Enter was seen down before
        atFrame(stage, 6, [&] {
            childrenAway = stage.children.size();
            stage.devices.switchBack();
        });
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(childrenAway, 1u);
        EXPECT_EQ(stage.children.size(), 2u);
    });
}

TEST(FocusLossRelease, OfAltSavesEarlyAndChangesNothingElse) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.rest(8);
        atFrame(stage, 3, [&] { stage.devices.desktop->post(WM_SYSKEYUP, VK_MENU); });
        int32_t notified = -1, active = -1;
        atFrame(stage, 5, [&] {
            notified = Screen.lostNotified;
            active = Screen.active;
        });
        stage.run();
        EXPECT_EQ(notified, 1);
        EXPECT_EQ(active, 1);
    });
}

TEST(FocusLossKeys, ArePolledInEveryFrameWhileAway) {
    onStage([](LauncherStage& stage) {
        int readsBefore = 0, readsBack = 0;
        stage.devices.input.rest(returningFrame + 8);
        const auto reads = [&stage] {
            return stage.calls.uses("IDirectInputDevice7A::GetDeviceState");
        };
        atFrame(stage, leavingFrame, [&] { readsBefore = reads(); });
        leaveAt(stage, steps[0], false);
        atFrame(stage, returningFrame, [&] { readsBack = reads(); });
        comeBackLater(stage);
        stage.run();
        EXPECT_EQ(readsBack - readsBefore, returningFrame - leavingFrame);
    });
}
